// Reports and dialogs on an account of the tests' own, called as quillon calls them: directly in a native build, through
// COM under Wine.
#pragma once

#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "tests/faults/tiny_account.h"
#include "tests/workbench/account/leftovers.h"
#include "workbench/account/account.h"
#include "workbench/catalogue/catalogue.h"
#include "workbench/catalogue/library_runner.h"
#include "workbench/platform/account_source.h"

namespace quillon::bad_values {

// Keeps the statements that were sent and the one that was refused.
class Statements : public workbench::SessionMonitor {
 public:
  void opened() override {}
  void started(std::string_view sql) override { sent.emplace_back(sql); }
  void finished(std::string_view /*sql*/, double /*seconds*/, std::int64_t /*rows*/) override {}
  void failed(const workbench::StatementFailure& failure) override { failures.push_back(failure); }
  void closed() override {}

  std::vector<std::string> sent;
  std::vector<workbench::StatementFailure> failures;
};

struct ReportRun {
  std::vector<std::string> sent;
  std::vector<workbench::StatementFailure> failures;
  std::optional<std::string> error;  // what the report passed on
  std::string rows;                  // of the result table; empty when there is none
};

struct Setting {
  std::string key;
  std::string value;
  std::string value2 = {};
};

// An account of the tests' own, and report runs on it.
class ReportTester {
 public:
  ReportTester() : account_(account::Valuation::inventory, 4) {
    std::string checks = "Update Inventory Set bCheckBatch = 1, bCheckFree1 = 1, bCheckFree2 = 1";
    for (int item = 3; item <= 10; ++item)
      checks += ", bCheckFree" + std::to_string(item) + " = 0";
    account_.open()->execute(checks);
  }

  const faults::TinyAccount& account() const { return account_; }
  // As reports have it.
  std::unique_ptr<tsql::Database> open() const { return account_.source().open(tsql::OpenMode::existing); }

  // The report's filter with its initial values, the values that the report needs, and `settings`, unchecked: the host
  // platform's dialog checks nothing either.
  static std::shared_ptr<workbench::FilterObject> filterOf(const workbench::Report& report,
                                                           const std::vector<Setting>& settings) {
    auto filter = std::make_shared<workbench::FilterObject>(report.registration);
    if (workbench::FilterEntry* year = filter->find("iYear")) year->value = "2024";
    if (report.registration.name == "fx-detail") filter->find("cInvCode")->value = faults::TinyAccount::inventory;
    for (const Setting& setting : settings) {
      workbench::FilterEntry& entry = *filter->entry(setting.key);
      entry.value = setting.value;
      entry.value2 = setting.value2;
    }
    return filter;
  }

  // One run. Removes the result table and the library's work tables afterwards, and no others.
  ReportRun run(const workbench::Report& report, const std::vector<Setting>& settings) {
    ReportRun result;
    Statements statements;
    workbench::EmbeddedPlatform platform({.account = account_.source(), .monitor = &statements});
    const auto argument = std::make_shared<workbench::WorkbenchArgument>(filterOf(report, settings), account_.login(),
                                                                         workbench::freshResultTable());
    try {
      workbench::makeReportRunner(platform)->run(report, argument);
    } catch (const AutomationError& error) {
      result.error = error.description();
    }
    const auto account = open();
    const std::string& table = argument->dataSourceState().resultTable;
    if (!account->describe(table).empty()) {
      if (statements.failures.empty() && !result.error) result.rows = account_.rows("Select * From " + table);
      account->execute("Drop Table " + table);
    }
    account::testing::dropLeftovers(*account);
    result.sent = std::move(statements.sent);
    result.failures = std::move(statements.failures);
    return result;
  }

 private:
  faults::TinyAccount account_;
};

}  // namespace quillon::bad_values
