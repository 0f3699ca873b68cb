// What the tests with FreeTDS share: an account, the endpoint that serves it, and how programs reach it.
#pragma once

#include <gtest/gtest.h>

#include <chrono>
#include <memory>
#include <thread>

#include "tests/workbench/platform/one_inventory.h"
#include "tests/workbench/platform/temporary_file.h"
#include "tests/workbench/tds/endpoint.h"
#include "workbench/account/account.h"
#include "workbench/tsql/values/utf8_path.h"

namespace quillon::tds::test {

class WireTest : public testing::Test {
 protected:
  static void SetUpTestSuite() {
    constexpr int ledgerLines = 600;
    makeAccount(ledgerLines);
  }
  static void TearDownTestSuite() { file_.reset(); }

  static void makeAccount(int ledgerLines) {
    file_ = std::make_unique<workbench::test::TemporaryFile>(".qacc");
    account::createSample(file_->path(), {.rows = ledgerLines, .years = 1});
  }

  static std::string file() { return utf8FromPath(file_->path()); }
  static std::string databaseName() { return utf8FromPath(file_->path().filename()); }
  static std::vector<std::string> tables() {
    return tsql::Connection::open(file_->path(), tsql::OpenMode::readOnly)->tables("");
  }

  // FreeTDS's driver, on the endpoint. `more` are further attributes, each behind a semicolon.
  static std::string connectionStringTo(const Endpoint& endpoint, const std::string& more = {}) {
    return std::string("Driver=") + QUILLON_FREETDS_DRIVER +
           ";Server=127.0.0.1;Port=" + std::to_string(endpoint.port()) + ";Database=" + databaseName() +
           ";UID=tester;PWD=geheim;TDS_Version=7.4" + more;
  }
  std::string connectionString(const std::string& more = {}) const { return connectionStringTo(endpoint_, more); }

  // Whether every client has gone; the endpoint notices a little later than the client itself.
  static bool nobodyStays(const Endpoint& endpoint) {
    constexpr int tries = 10'000;
    for (int i = 0; i < tries && endpoint.connections() > 0; ++i)
      std::this_thread::sleep_for(std::chrono::milliseconds(1));
    return endpoint.connections() == 0;
  }

  static std::vector<std::string> oneInventory() { return workbench::test::oneInventory(file_->path()); }

  static inline std::unique_ptr<workbench::test::TemporaryFile> file_;
  Endpoint endpoint_{{.accounts = {file_->path()}}};
};

}  // namespace quillon::tds::test
