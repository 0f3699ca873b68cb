#include "workbench/cli/serve_command.h"

#include <CLI/CLI.hpp>
#include <chrono>
#include <iostream>
#include <memory>
#include <nlohmann/json.hpp>
#include <optional>
#include <string>

#include "workbench/cli/account_option.h"
#include "workbench/cli/browser.h"
#include "workbench/cli/checked_values.h"
#include "workbench/desk/gate.h"
#include "workbench/desk/http_server.h"
#include "workbench/desk/secret.h"
#include "workbench/platform/user_error.h"
#include "workbench/tsql/values/stop.h"
#include "workbench/tsql/values/utf8_path.h"

namespace quillon::workbench {

namespace {

// Which account the desk has open.
class AccountName : public desk::DeskHandler {
 public:
  explicit AccountName(const AccountSource& account)
      : name_(account.onServer() ? std::string() : utf8FromPath(account.file().filename())) {}

  desk::DeskResponse handle(const desk::DeskRequest& request) override {
    desk::DeskResponse response;
    if (request.method == "GET" && request.path == "account") {
      response.body = nlohmann::json{{"name", name_}}.dump();
    } else {
      response.status = 404;
      response.body = R"({"error":{"code":"path","message":"there is no such thing","item":null}})";
    }
    return response;
  }

 private:
  std::string name_;
};

}  // namespace

void runServe(const ServeOptions& options, std::ostream& out, std::ostream& notes) {
  // An account that cannot be opened is said here, and not in the browser.
  options.account.readOnly().open(tsql::OpenMode::readOnly);
  AccountName handler(options.account);
  desk::ServerLimits limits;
  limits.unused = std::chrono::minutes(options.idleMinutes);
  desk::HttpServer server(options.port, limits);
  desk::Gate gate(server.port(), desk::newSecret(), desk::newSecret());
  out << gate.link() << std::endl;
  if (!out) throw UserError("the link could not be written to standard output");
  std::optional<LinkFile> file;
  if (options.open) {
    file.emplace(gate.link());
    if (!showInBrowser(file->path())) notes << "quillon: no browser was found; open the link by hand\n";
  }
  if (server.run(gate, handler, tsql::stopRequested) == desk::HttpServer::End::unused) {
    notes << "quillon: nobody used the desk for " << options.idleMinutes << " minutes; it has ended\n";
    return;
  }
  throw UserError("the desk is closed, and what it had made is gone");
}

void addServeCommand(CLI::App& app) {
  CLI::App& command = *app.add_subcommand("serve", "Open the desk: the reports in a browser on this machine");
  const auto options = std::make_shared<ServeOptions>();
  addAccountOption(command, "--account", options->account).required();
  // Those below are the system's.
  constexpr unsigned short leastPort = 1024, mostPort = 65535;
  command.add_option("--port", options->port, "The port to listen on; without it, one that is free")
      ->transform(wholeNumber<int>(leastPort, mostPort));
  command.add_flag("--open", options->open, "Show the desk in the browser");
  constexpr int mostMinutes = 7 * 24 * 60;
  command.add_option("--idle", options->idleMinutes, "End after so many minutes in which nobody used the desk")
      ->transform(wholeNumber<int>(1, mostMinutes));
  command.callback([options] { runServe(*options, std::cout, std::cerr); });
}

}  // namespace quillon::workbench
