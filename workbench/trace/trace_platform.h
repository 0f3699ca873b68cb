// The trace platform: a host platform that is described in a file, with a database that executes nothing. Each call on
// its database is written out as one JSON object a line, so that anyone can hold what the library does against what it
// should do.
#pragma once

#include <iosfwd>
#include <map>
#include <memory>
#include <nlohmann/json.hpp>
#include <optional>
#include <regex>
#include <stdexcept>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "frame/filter_dialog.h"
#include "frame/platform.h"
#include "workbench/messages/told_error.h"

namespace quillon::workbench {

// What is wrong with a described filter or platform, and where: the path of the value that cannot be used.
class DescriptionError : public Told<std::runtime_error> {
 public:
  using Told::Told;
};

// A filter: {"id":"...","items":[{"name":"cModal","value":"1","value2":"","range":false,"multi":false,"caption":"...",
// "sql":"..."}]}. Only `name` must be there. Text, numbers and flags may stand for a text.
class TraceFilter final : public Filter {
 public:
  struct Item {
    std::string name;
    std::string value;
    std::string value2;
    std::string caption;
    std::string sql;  // the item's strSqlString, and its condition in whereWithToken()
    bool range = false;
    bool multiple = false;
    int token = tokenFilter;
  };

  // Throws DescriptionError.
  explicit TraceFilter(const nlohmann::ordered_json& description);

  int count() override { return static_cast<int>(items_.size()); }
  // Throws AutomationError (subscript out of range) when there is no such item.
  std::unique_ptr<FilterItem> item(int position) override;
  std::unique_ptr<FilterItem> item(std::string_view key) override;
  // The non-empty `sql` texts of the token's items, joined with " And ".
  std::string whereWithToken(int token) override;

  const std::string& identifier() const { return identifier_; }
  // The item itself. Throws AutomationError (subscript out of range) when there is none.
  const std::shared_ptr<Item>& entry(int position);
  const std::shared_ptr<Item>& entry(std::string_view key);

 private:
  std::string identifier_;
  std::vector<std::shared_ptr<Item>> items_;
};

// The row of a report and what the user wants of it: {"Action":"Vouch","row":{"cVouType":"...","ID":17}}. A column that
// is left out is empty. "report" names the report that it is a row of; it may be left out.
struct TraceRow {
  // Throws DescriptionError.
  explicit TraceRow(const nlohmann::ordered_json& description);

  std::string report;
  std::string action;
  std::map<std::string, std::string, std::less<>> columns;
};

// What the file says of the platform. What it leaves out answers: a text "", a number 0, a flag false, a resource or
// enumeration text its own key or code, a period its calendar month, a date the period of its calendar month, a unique
// part u1, u2, ..., a number for work tables 1, 2, ...
struct TraceDescription {
  // Throws DescriptionError.
  explicit TraceDescription(const nlohmann::ordered_json& description);

  struct Query {
    std::regex pattern;
    std::vector<std::vector<std::optional<std::string>>> rows;
  };
  struct Failure {
    std::string text;
    std::regex pattern;
  };
  using Texts = std::map<std::string, std::string, std::less<>>;

  // login
  std::string accountConnection;
  std::string password;
  std::string accountCode;
  std::string accountingYear;
  std::string accountingYearText;
  std::string languageRegion;
  std::string languageId;
  int loginPeriodYear = 0;
  std::string businessDate;
  // dataSource
  std::string resultTable;
  // publicComponent
  Texts accountInformation;  // by "SYSTEM.NAME" or by "NAME"
  int currentPeriodYear = 0;
  std::map<std::string, int, std::less<>> costItemStartMonths;  // by year
  std::vector<std::string> usedYears;
  std::map<std::string, bool, std::less<>> finishedOpenings;  // IsFxFinishQC, by year
  AccountingPeriod moduleStart;
  std::map<std::string, PeriodDates, std::less<>> periodDates;       // by year, a point and the month
  std::map<std::string, AccountingPeriod, std::less<>> datePeriods;  // by date
  std::map<std::string, bool, std::less<>> settledPeriods;           // by year, a point and the month
  std::string workstationName;
  // naming
  std::string namingNumber;
  std::vector<std::string> uniqueParts;
  std::vector<int> workTableNumbers;
  Texts resources;  // by key
  Texts enums;      // by "TYPE/CODE"
  // environment and accountOptions
  std::string environmentResultTable;
  std::string costingBasis;
  std::string inventoryTable;
  std::string warehouseTable;
  // The rows of a recordset: those of the first pattern that is found in its SQL; none when none is found.
  std::vector<Query> queries;
  // An execute or a query whose SQL holds one of these patterns fails, and so does open for the text "(open)".
  std::vector<Failure> failures;
};

// Where the lines go. The availability of items is held back until something else happens, so that an item which a rule
// makes available and then unavailable is told once, as it ends.
class TraceLog {
 public:
  explicit TraceLog(std::ostream& out) : out_(out) {}

  void print(const nlohmann::ordered_json& line);
  void available(std::string_view key, bool value);
  // Writes what is held back: at the end of each event, and before a line that does not come from here.
  void flush();

 private:
  std::ostream& out_;
  std::vector<std::pair<std::string, bool>> held_;  // in the order in which the items were first touched
};

class TracePlatform final : public Platform {
 public:
  // Both must outlive the platform and what it makes.
  TracePlatform(const TraceDescription& description, std::ostream& out) : description_(description), log_(out) {}

  std::shared_ptr<Session> createSession() override;
  std::shared_ptr<PublicComponent> createPublicComponent() override;
  std::shared_ptr<ResourceService> createResourceService() override;
  std::shared_ptr<UniqueNameSource> createUniqueNameSource() override;
  std::shared_ptr<DrillThroughHelper> createDrillThroughHelper() override;
  std::string namingNumber() override { return description_.namingNumber; }
  std::int32_t workTableNumber() override;
  std::unique_ptr<AccountLogin> createAccountLogin() override;
  std::unique_ptr<InventoryEnvironment> createInventoryEnvironment() override;
  std::unique_ptr<SourceVoucherComponent> createSourceVoucherComponent() override;
  std::unique_ptr<LedgerModule> createLedgerModule() override;
  std::unique_ptr<LedgerVoucherComponent> createLedgerVoucherComponent() override;

  // The argument object of a run with `filter`.
  std::unique_ptr<ReportArgument> argument(std::shared_ptr<Filter> filter);
  // The argument object of a drill-through from `row`, which must outlive it.
  std::unique_ptr<ReportArgument> argument(const TraceRow& row);
  // The login, as argument and dialog hand it out.
  std::shared_ptr<Login> login();
  // The dialog side of `filter`. Its own connection runs on the described database too.
  std::unique_ptr<FilterDialog> dialog(std::shared_ptr<TraceFilter> filter);
  TraceLog& log() { return log_; }
  // What the database refused last, for whoever wants to know why a build stopped; empty when nothing failed.
  const std::string& lastFailure() const { return lastFailure_; }

 private:
  const TraceDescription& description_;
  TraceLog log_;
  std::string lastFailure_;
  std::size_t workTablesNumbered_ = 0;
};

}  // namespace quillon::workbench
