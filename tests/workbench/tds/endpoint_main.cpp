// tds_endpoint ACCOUNT...: serves account files until its standard input ends. One that is not there is made, without
// tables. The only line that it prints is its port. Clients sign in as tester with the password geheim.
#include <cstdio>
#include <exception>
#include <iostream>

#include "tests/workbench/tds/endpoint.h"
#include "workbench/tsql/values/utf8_path.h"

int main(int count, char** arguments) {
  try {
    quillon::tds::EndpointOptions options;
    for (int i = 1; i < count; ++i)
      options.accounts.push_back(quillon::pathFromUtf8(arguments[i]));
    if (options.accounts.empty()) {
      std::cerr << "usage: tds_endpoint ACCOUNT...\n";
      return 2;
    }
    for (const std::filesystem::path& account : options.accounts) {
      if (!exists(account)) quillon::tsql::Connection::open(account, quillon::tsql::OpenMode::createNew);
    }
    const quillon::tds::Endpoint endpoint(std::move(options));
    std::cout << endpoint.port() << std::endl;
    while (std::cin.get() != EOF) {
    }
    return 0;
  } catch (const std::exception& error) {
    std::cerr << "tds_endpoint: " << error.what() << '\n';
    return 1;
  }
}
