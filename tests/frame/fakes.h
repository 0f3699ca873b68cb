// A host platform for tests: every port of frame/, with a record of each call in order, a failure at any call that a
// test names, and a count of the objects that are still alive.
#pragma once

#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "frame/automation_error.h"
#include "frame/platform.h"
#include "frame/text.h"

namespace quillon::fakes {

using Row = std::vector<std::optional<std::string>>;

// What a failing call says; the description names the call.
inline constexpr HResult failure = static_cast<HResult>(0x80040E14U);
inline constexpr std::string_view failingSource = "Fake";

// What all objects of one fake platform share.
class Record {
 public:
  std::vector<std::string> calls;  // "Session.execute Drop Table x"; in order
  std::size_t failAt = 0;          // this call, counted from 1, throws; 0: none does
  int alive = 0;                   // objects that were handed out and not yet released
  std::optional<QueryOptions> lastQueryOptions;
  // Runs at every call whose text ends with `first`, before the call is answered.
  std::pair<std::string, std::function<void()>> atCall;

  void call(std::string what) {
    calls.push_back(std::move(what));
    if (atCall.second && calls.back().ends_with(atCall.first)) atCall.second();
    if (calls.size() == failAt) throw AutomationError(failure, std::string(failingSource), calls.back());
  }

  // The texts behind `prefix` of the calls that begin with it.
  std::vector<std::string> with(std::string_view prefix) const {
    std::vector<std::string> found;
    for (const std::string& text : calls) {
      if (text.starts_with(prefix)) found.push_back(text.substr(prefix.size()));
    }
    return found;
  }
  std::vector<std::string> statements() const { return with("Session.execute "); }
  std::vector<std::string> queries() const { return with("Session.query "); }
};

// An object that the platform hands out.
class Counted {
 public:
  explicit Counted(Record& record) : record_(record) { ++record_.alive; }
  Counted(const Counted&) = delete;
  Counted& operator=(const Counted&) = delete;
  ~Counted() { --record_.alive; }

 protected:
  void call(std::string what) const { record_.call(std::move(what)); }
  Record& record() const { return record_; }

 private:
  Record& record_;
};

struct ItemValues {
  std::string name;
  std::string value = {};
  std::string value2 = {};
  std::string sql = {};
  int token = tokenFilter;
  bool range = false;
  bool multiple = false;
};

class FakeFilterItem final : public FilterItem, private Counted {
 public:
  FakeFilterItem(Record& record, ItemValues& values) : Counted(record), values_(values) {}

  void setGroupToken(int token) override {
    call("FilterItem.LngGrouptoken = " + std::to_string(token));
    values_.token = token;
  }
  std::string name() override { return read("Name", values_.name); }
  std::string value() override { return read("varValue", values_.value); }
  std::string value2() override { return read("varValue2", values_.value2); }
  bool rangeInput() override {
    call("FilterItem.RangeInput");
    return values_.range;
  }
  bool multipleSelection() override {
    call("FilterItem.IsMultSel");
    return values_.multiple;
  }
  std::string sqlText() override { return read("strSqlString", values_.sql); }

 private:
  std::string read(std::string_view member, const std::string& value) const {
    call("FilterItem." + std::string(member));
    return value;
  }

  ItemValues& values_;
};

class FakeFilter final : public Filter, private Counted {
 public:
  FakeFilter(Record& record, std::vector<ItemValues> values) : Counted(record), items(std::move(values)) {}

  std::vector<ItemValues> items;

  int count() override {
    call("FilterList.Count");
    return static_cast<int>(items.size());
  }
  std::unique_ptr<FilterItem> item(int position) override {
    call("FilterList(" + std::to_string(position) + ")");
    return std::make_unique<FakeFilterItem>(record(), items.at(static_cast<std::size_t>(position) - 1));
  }
  std::unique_ptr<FilterItem> item(std::string_view key) override {
    call("FilterList(\"" + std::string(key) + "\")");
    for (ItemValues& values : items) {
      if (equalIgnoringCase(values.name, key)) return std::make_unique<FakeFilterItem>(record(), values);
    }
    throw AutomationError(hresult::subscriptOutOfRange, std::string(failingSource), "no item " + std::string(key));
  }
  std::string whereWithToken(int token) override {
    call("GetWhereWithToken(" + std::to_string(token) + ")");
    std::string where;
    for (const ItemValues& values : items) {
      if (values.token == token && !values.sql.empty()) where += (where.empty() ? "" : " And ") + values.sql;
    }
    return where;
  }
};

class FakeRecordset final : public Recordset, private Counted {
 public:
  FakeRecordset(Record& record, std::vector<Row> rows) : Counted(record), rows_(std::move(rows)) {}

  bool eof() override {
    call("Recordset.EOF");
    return row_ >= rows_.size();
  }
  void moveNext() override {
    call("Recordset.MoveNext");
    ++row_;
  }
  std::optional<std::string> text(int position) override {
    call("Recordset.Fields(" + std::to_string(position) + ")");
    return rows_.at(row_).at(static_cast<std::size_t>(position));
  }
  void close() override { call("Recordset.Close"); }

 private:
  std::vector<Row> rows_;
  std::size_t row_ = 0;
};

// The rows of the queries whose text holds `part`.
struct Answer {
  std::string part;
  std::vector<Row> rows;
};

class FakeSession : public Session, private Counted {
 public:
  FakeSession(Record& record, const std::vector<Answer>& answers) : Counted(record), answers_(answers) {}

  void setCursorLocation(CursorLocation location) override {
    call("Session.CursorLocation = " + std::to_string(static_cast<int>(location)));
  }
  void setConnectionString(std::string_view text) override { call("Session.ConnectionString = " + std::string(text)); }
  void setConnectionTimeout(int seconds) override { call("Session.ConnectionTimeout = " + std::to_string(seconds)); }
  void setCommandTimeout(int seconds) override { call("Session.CommandTimeout = " + std::to_string(seconds)); }
  void open(std::string_view user, std::string_view password, int options) override {
    call("Session.open(\"" + std::string(user) + "\", \"" + std::string(password) + "\", " + std::to_string(options) +
         ")");
    state_ = 1;
  }
  std::int64_t execute(std::string_view sql) override {
    call("Session.execute " + std::string(sql));
    return 0;
  }
  std::unique_ptr<Recordset> query(std::string_view sql, const QueryOptions& options) override {
    call("Session.query " + std::string(sql));
    record().lastQueryOptions = options;
    for (const Answer& answer : answers_) {
      if (sql.find(answer.part) != std::string_view::npos) {
        return std::make_unique<FakeRecordset>(record(), answer.rows);
      }
    }
    return std::make_unique<FakeRecordset>(record(), std::vector<Row>());
  }
  int state() override {
    call("Session.state");
    return state_;
  }
  void close() override {
    call("Session.close");
    state_ = stateClosed;
  }
  // As after a connection that the server dropped.
  void lose() { state_ = stateClosed; }

 private:
  const std::vector<Answer>& answers_;
  int state_ = stateClosed;
};

class FakeLogin final : public Login, private Counted {
 public:
  explicit FakeLogin(Record& record, std::string moduleCode = "IA")
      : Counted(record), moduleCode_(std::move(moduleCode)) {}

  std::string accountConnection() override { return read("OrvDbName", "the account's connection"); }
  std::string password() override { return read("SysPassword", "secret"); }
  std::string accountCode() override { return read("cAcc_Id", "001"); }
  std::string accountingYear() override { return read("iYear", "2024"); }
  std::string accountingYearText() override { return read("cIYear", "2024"); }
  std::string languageRegion() override { return read("LanguageRegion", "zh-CN"); }
  std::string languageId() override { return read("LangID", "2052"); }
  int currentPeriodYear() override {
    call("Login.CurPeriodYear");
    return 2024;
  }
  std::string businessDate() override { return read("date", "2024-06-30"); }
  std::string moduleCode() override { return read("module code", moduleCode_); }
  void setAuthString(std::string_view rights) override { call("Login.AuthString = " + std::string(rights)); }

 private:
  std::string read(std::string_view member, std::string value) const {
    call("Login." + std::string(member));
    return value;
  }

  std::string moduleCode_;
};

class FakeDataSource final : public DataSource, private Counted {
 public:
  using Counted::Counted;

  void setType(int type) override { call("DataSource.Type = " + std::to_string(type)); }
  std::string resultTable() override {
    call("DataSource.SQL");
    return "tmp_result";
  }
  void setResultTable(std::string_view name) override { call("DataSource.SQL = " + std::string(name)); }
};

// A column that it does not have is null.
class FakeRow final : public ReportRow, private Counted {
 public:
  FakeRow(Record& record, std::map<std::string, std::string, std::less<>> columns)
      : Counted(record), columns_(std::move(columns)) {}

  std::string value(std::string_view column) override {
    call("GetData(" + std::string(column) + ")");
    const auto found = columns_.find(column);
    return found == columns_.end() ? std::string() : found->second;
  }

 private:
  std::map<std::string, std::string, std::less<>> columns_;
};

class FakeArgument final : public ReportArgument {
 public:
  FakeArgument(Record& record, std::shared_ptr<Filter> filter) : record_(record), filter_(std::move(filter)) {}

  std::string actionText;
  std::string moduleCode = "IA";
  std::map<std::string, std::string, std::less<>> rowColumns;

  std::shared_ptr<Filter> rawFilter() override {
    record_.call("e.rawFilter");
    return filter_;
  }
  std::shared_ptr<Login> login() override {
    record_.call("e.Login");
    return std::make_shared<FakeLogin>(record_, moduleCode);
  }
  std::shared_ptr<Login> filterLogin() override {
    record_.call("e.LoginObj");
    return std::make_shared<FakeLogin>(record_);
  }
  std::unique_ptr<DataSource> dataSource() override {
    record_.call("e.DataSource");
    return std::make_unique<FakeDataSource>(record_);
  }
  std::string action() override {
    record_.call("e.Action");
    return actionText;
  }
  std::string languageId() override {
    record_.call("e.LangID");
    return "zh-CN";
  }
  std::unique_ptr<ReportRow> row() override {
    record_.call("e.RelateData");
    return std::make_unique<FakeRow>(record_, rowColumns);
  }

 private:
  Record& record_;
  std::shared_ptr<Filter> filter_;
};

// What the fake components answer.
struct Answers {
  std::vector<Answer> queries;
  int costItemStartMonth = 0;                                   // of every year that is not among the following
  std::map<std::string, int, std::less<>> costItemStartMonths;  // by year
  std::vector<std::string> usedYears{"2023", "2024"};
  int currentPeriodYear = 2024;
  std::string valuationMethod = "按仓库核算";
  std::string namingNumber = "77";

  std::map<std::string, std::string, std::less<>> options;  // by "SYSTEM.NAME"; others answer with valuationMethod
  bool costItemOpeningsFinished = true;
  AccountingPeriod moduleStart{.year = 2024, .month = 1};
  int lastSettledMonth = 12;  // of every year
  std::string costingBasis = "按仓库核算";
};

class FakePublicComponent final : public PublicComponent, private Counted {
 public:
  FakePublicComponent(Record& record, const Answers& answers) : Counted(record), answers_(answers) {}

  std::string accountInformation(std::string_view system, std::string_view name, Session&) override {
    call("GetAccInformation(" + std::string(system) + ", " + std::string(name) + ")");
    const auto option = answers_.options.find(std::string(system) + "." + std::string(name));
    return option == answers_.options.end() ? answers_.valuationMethod : option->second;
  }
  int currentPeriodYear(Session&) override {
    call("CurPeriodYear");
    return answers_.currentPeriodYear;
  }
  int costItemStartMonth(std::string_view year, Session&) override {
    call("iFxStartMonth(" + std::string(year) + ")");
    const auto found = answers_.costItemStartMonths.find(year);
    return found == answers_.costItemStartMonths.end() ? answers_.costItemStartMonth : found->second;
  }
  std::vector<std::string> usedYears(std::string_view accountCode, Session&) override {
    call("GetIAUsedYears(" + std::string(accountCode) + ")");
    return answers_.usedYears;
  }
  bool costItemOpeningsFinished(int year, Session&) override {
    call("IsFxFinishQC(" + std::to_string(year) + ")");
    return answers_.costItemOpeningsFinished;
  }
  AccountingPeriod moduleStart(std::string_view system, Session&) override {
    call("StartMonthYear(" + std::string(system) + ")");
    return answers_.moduleStart;
  }
  // Periods are calendar months; every month has 28 days.
  PeriodDates datesOfPeriod(std::string_view accountCode, AccountingPeriod period, Session&) override {
    call("GetDateFromPeriod(" + std::string(accountCode) + ", " + periodText(period) + ")");
    const std::string month =
        std::to_string(period.year) + (period.month < 10 ? "-0" : "-") + std::to_string(period.month);
    return {.begin = month + "-01", .end = month + "-28"};
  }
  AccountingPeriod periodOfDate(std::string_view date, Session&) override {
    call("GetPeriodFromDate(" + std::string(date) + ")");
    return {.year = std::stoi(std::string(date.substr(0, 4))), .month = std::stoi(std::string(date.substr(5, 2)))};
  }
  bool periodSettled(AccountingPeriod period, Session&) override {
    call("GetMonthState(" + periodText(period) + ")");
    return period.month <= answers_.lastSettledMonth;
  }
  std::string workstationName() override {
    call("GetComputerName");
    return "BENCH";
  }

 private:
  static std::string periodText(AccountingPeriod period) {
    return std::to_string(period.year) + "." + std::to_string(period.month);
  }

  const Answers& answers_;
};

// Its texts are the key's last five digits in angle brackets, so that a statement shows which key it used.
class FakeResources final : public ResourceService, private Counted {
 public:
  using Counted::Counted;

  void takeLogin(Login&) override { call("resources.takeLogin"); }
  std::string enumName(std::string_view type, std::string_view code) override {
    call("resources.enumName(" + std::string(type) + ", " + std::string(code) + ")");
    return std::string(code);
  }
  std::string text(std::string_view key) override {
    call("resources.text(" + std::string(key) + ")");
    return "<" + std::string(key.substr(key.size() - 5)) + ">";
  }
  std::string formattedText(std::string_view key, const std::vector<std::string>& arguments) override {
    std::string list;
    for (const std::string& argument : arguments)
      list += ", " + argument;
    call("resources.formattedText(" + std::string(key) + list + ")");
    return "<" + std::string(key.substr(key.size() - 5)) + list + ">";
  }
  void showMessage(std::string_view text, int flags) override {
    call("resources.showMessage(" + std::string(text) + ", " + std::to_string(flags) + ")");
  }
};

// Gives u1, u2, ...
class FakeUniqueNames final : public UniqueNameSource, private Counted {
 public:
  using Counted::Counted;

  std::string next() override {
    call("uniqueNames.next");
    return "u" + std::to_string(++given_);
  }

 private:
  int given_ = 0;
};

class FakeDrillThroughHelper final : public DrillThroughHelper, private Counted {
 public:
  using Counted::Counted;

  std::shared_ptr<Filter> filterFor(Login* login, bool drillThrough) override {
    call(std::string("helper.filterFor(") + (login ? "" : "nothing, ") +
         (drillThrough ? "drill-through" : "no drill-through") + ")");
    return std::make_shared<FakeFilter>(record(), std::vector<ItemValues>());
  }
};

class FakeAccountLogin final : public AccountLogin, private Counted {
 public:
  using Counted::Counted;

  void initialise(std::string_view connection, std::string_view passwordText) override {
    call("AccountLogin.initialise(" + std::string(connection) + ", " + std::string(passwordText) + ")");
  }
};

class FakeAccountOptions final : public AccountOptions, private Counted {
 public:
  FakeAccountOptions(Record& record, const Answers& answers) : Counted(record), answers_(answers) {}

  std::string costingBasis() override {
    call("AccountOptions.costingBasis");
    return answers_.costingBasis;
  }
  std::string inventoryTable() override {
    call("AccountOptions.inventoryTable");
    return "Inventory_rights";
  }
  std::string warehouseTable() override {
    call("AccountOptions.warehouseTable");
    return "Warehouse_rights";
  }

 private:
  const Answers& answers_;
};

class FakeInventoryEnvironment final : public InventoryEnvironment, private Counted {
 public:
  FakeInventoryEnvironment(Record& record, const Answers& answers) : Counted(record), answers_(answers) {}

  void setLogin(AccountLogin&) override { call("InventoryEnvironment.setLogin"); }
  std::string resultTable() override {
    call("InventoryEnvironment.resultTable");
    return "tmp_detail";
  }
  std::unique_ptr<AccountOptions> accountOptions(AccountLogin&, std::string_view resultTable) override {
    call("InventoryEnvironment.accountOptions(" + std::string(resultTable) + ")");
    return std::make_unique<FakeAccountOptions>(record(), answers_);
  }

 private:
  const Answers& answers_;
};

class FakeSourceVoucherComponent final : public SourceVoucherComponent, private Counted {
 public:
  using Counted::Counted;

  void initialise(Login&, Session&, std::string_view systemVersion) override {
    call("clsUniVch.Init(" + std::string(systemVersion) + ")");
  }
  void showVoucher(VoucherGroup group, const SourceVoucher& voucher, Session&) override {
    const std::string form = group == VoucherGroup::adjustment  ? "adjustment, "
                             : group == VoucherGroup::writeBack ? "writeBack, "
                                                                : "other, ";
    call("clsUniVch.ShowVoucher(" + form + text(voucher) + ")");
  }
  void showCostItemAdjustment(const SourceVoucher& voucher, Session&) override {
    call("clsUniVch.ShowProJust(" + text(voucher) + ")");
  }
  void showDifferences(const SourceVoucher& voucher, bool commercial, std::string_view valuationMethod,
                       Session&) override {
    call("clsUniVch.ShowDifVouchs(" + text(voucher) + (commercial ? ", commercial, " : ", industrial, ") +
         std::string(valuationMethod) + ")");
  }
  void showPriceAdjustment(const SourceVoucher& voucher) override {
    call("clsUniVch.ShowCostJustVouch(" + text(voucher) + ")");
  }

 private:
  // Type, code and line, the code in quotes, so that its blanks are seen.
  static std::string text(const SourceVoucher& voucher) {
    return voucher.type + ", \"" + voucher.code + "\", " + std::to_string(voucher.lineId);
  }
};

class FakeLedgerModule final : public LedgerModule, private Counted {
 public:
  using Counted::Counted;

  void setBusiness(BusinessObject&) override { call("clsPub.g_business"); }
  void setLogin(Login&) override { call("clsPub.oLogIn"); }
  void initialise(std::string_view connection, std::string_view passwordText, int year, Login&) override {
    call("clsPub.InitPubs2(" + std::string(connection) + ", " + std::string(passwordText) + ", " +
         std::to_string(year) + ")");
  }
};

class FakeLedgerVoucherComponent final : public LedgerVoucherComponent, private Counted {
 public:
  using Counted::Counted;

  void setLogin(Login&) override { call("clsPZ.zzLogin"); }
  void setModule(LedgerModule&) override { call("clsPZ.zzSys"); }
  void open(const LedgerVoucher& voucher) override {
    call("clsPZ.StartUpPz(" + voucher.menuCode + ", " + voucher.moduleTitle + ", " + voucher.id + ")");
  }
};

class FakePlatform final : public Platform {
 public:
  Record record;
  Answers answers;

  std::shared_ptr<Session> createSession() override {
    record.call("create Session");
    return std::make_shared<FakeSession>(record, answers.queries);
  }
  std::shared_ptr<PublicComponent> createPublicComponent() override {
    record.call("create PublicComponent");
    return std::make_shared<FakePublicComponent>(record, answers);
  }
  std::shared_ptr<ResourceService> createResourceService() override {
    record.call("create ResourceService");
    return std::make_shared<FakeResources>(record);
  }
  std::shared_ptr<UniqueNameSource> createUniqueNameSource() override {
    record.call("create UniqueNameSource");
    return std::make_shared<FakeUniqueNames>(record);
  }
  std::shared_ptr<DrillThroughHelper> createDrillThroughHelper() override {
    record.call("create DrillThroughHelper");
    return std::make_shared<FakeDrillThroughHelper>(record);
  }
  std::string namingNumber() override {
    record.call("naming number");
    return answers.namingNumber;
  }

  // 101, 102, ...
  std::int32_t workTableNumber() override {
    record.call("work table number");
    return ++workTableNumber_;
  }
  std::unique_ptr<AccountLogin> createAccountLogin() override {
    record.call("create AccountLogin");
    return std::make_unique<FakeAccountLogin>(record);
  }
  std::unique_ptr<InventoryEnvironment> createInventoryEnvironment() override {
    record.call("create InventoryEnvironment");
    return std::make_unique<FakeInventoryEnvironment>(record, answers);
  }
  std::unique_ptr<SourceVoucherComponent> createSourceVoucherComponent() override {
    record.call("create PellUniVch.clsUniVch");
    return std::make_unique<FakeSourceVoucherComponent>(record);
  }
  std::unique_ptr<LedgerModule> createLedgerModule() override {
    record.call("create ZzPub.clsPub");
    return std::make_unique<FakeLedgerModule>(record);
  }
  std::unique_ptr<LedgerVoucherComponent> createLedgerVoucherComponent() override {
    record.call("create ZzPz.clsPZ");
    return std::make_unique<FakeLedgerVoucherComponent>(record);
  }

  std::shared_ptr<FakeFilter> filter(std::vector<ItemValues> items) {
    return std::make_shared<FakeFilter>(record, std::move(items));
  }

 private:
  std::int32_t workTableNumber_ = 100;
};

}  // namespace quillon::fakes
