#include "workbench/trace/trace_platform.h"

#include <algorithm>
#include <chrono>
#include <ostream>
#include <utility>

#include "frame/automation_error.h"
#include "frame/text.h"
#include "workbench/messages/filter.h"
#include "workbench/messages/trace.h"
#include "workbench/odbc/connection_string.h"
#include "workbench/platform/user_error.h"
#include "workbench/tsql/values/text.h"

namespace quillon::workbench {

namespace {

using Json = nlohmann::ordered_json;

// --- Reading a description ------------------------------------------------------------------------------------------

[[noreturn]] void refuse(const std::string& path, const Message& wanted) {
  throw DescriptionError(messages::memberMustBe(path.empty() ? messages::theFile() : Message::verbatim(path), wanted));
}

std::string pathOf(const std::string& path, std::string_view key) {
  return path.empty() ? std::string(key) : path + "." + std::string(key);
}

// The value of a field as text: numbers as they are written, flags as automation writes them; nothing for null.
std::optional<std::string> fieldText(const Json& value, const std::string& path) {
  if (value.is_null()) return std::nullopt;
  if (value.is_string()) return value.get<std::string>();
  if (value.is_number()) return value.dump();
  if (value.is_boolean()) return value.get<bool>() ? "True" : "False";
  refuse(path, messages::wantedValue());
}

// A member of an object; null when the object does not have it.
const Json& member(const Json& object, std::string_view key, const std::string& path) {
  static const Json missing;
  if (object.is_null()) return missing;
  if (!object.is_object()) refuse(path, messages::jsonObject());
  const auto found = object.find(std::string(key));
  return found == object.end() ? missing : *found;
}

std::string text(const Json& object, std::string_view key, const std::string& path) {
  return fieldText(member(object, key, path), pathOf(path, key)).value_or("");
}

int number(const Json& value, const std::string& path) {
  if (value.is_null()) return 0;
  if (!value.is_number_integer()) refuse(path, messages::wantedWholeNumber());
  return value.get<int>();
}

bool flag(const Json& value, const std::string& path) {
  if (value.is_null()) return false;
  if (!value.is_boolean()) refuse(path, messages::jsonFlag());
  return value.get<bool>();
}

bool flag(const Json& object, std::string_view key, const std::string& path) {
  return flag(member(object, key, path), pathOf(path, key));
}

const Json& object(const Json& outer, std::string_view key, const std::string& path) {
  const Json& value = member(outer, key, path);
  if (!value.is_null() && !value.is_object()) refuse(pathOf(path, key), messages::jsonObject());
  return value;
}

const Json& array(const Json& outer, std::string_view key, const std::string& path) {
  const Json& value = member(outer, key, path);
  if (!value.is_null() && !value.is_array()) refuse(pathOf(path, key), messages::wantedArray());
  return value;
}

// The members of an object that `key` names, each read by `read` from its value and path.
template <typename Value, typename Read>
std::map<std::string, Value, std::less<>> entries(const Json& outer, std::string_view key, const std::string& path,
                                                  Read read) {
  std::map<std::string, Value, std::less<>> result;
  for (const auto& [name, value] : object(outer, key, path).items())
    result[name] = read(value, pathOf(pathOf(path, key), name));
  return result;
}

std::string textValue(const Json& value, const std::string& path) {
  return fieldText(value, path).value_or("");
}

TraceDescription::Texts texts(const Json& outer, std::string_view key, const std::string& path) {
  return entries<std::string>(outer, key, path, textValue);
}

std::vector<std::string> textList(const Json& outer, std::string_view key, const std::string& path) {
  std::vector<std::string> result;
  for (const Json& value : array(outer, key, path)) {
    result.push_back(fieldText(value, pathOf(path, key)).value_or(""));
  }
  return result;
}

// Two whole numbers.
std::pair<int, int> numberPair(const Json& value, const std::string& path) {
  if (!value.is_array() || value.size() != 2) refuse(path, messages::wantedNumberPair());
  return {number(value[0], path), number(value[1], path)};
}

AccountingPeriod yearAndMonth(const Json& value, const std::string& path) {
  const auto [year, month] = numberPair(value, path);
  return {.year = year, .month = month};
}

PeriodDates dates(const Json& value, const std::string& path) {
  if (!value.is_array() || value.size() != 2) refuse(path, messages::wantedDatePair());
  return {.begin = fieldText(value[0], path).value_or(""), .end = fieldText(value[1], path).value_or("")};
}

std::regex pattern(const std::string& expression, const std::string& path) {
  try {
    return std::regex(expression);
  } catch (const std::regex_error& error) {
    throw DescriptionError(messages::noRegularExpression(path, expression, error.what()));
  }
}

std::vector<std::vector<std::optional<std::string>>> recordRows(const Json& rows, const std::string& path) {
  std::vector<std::vector<std::optional<std::string>>> result;
  if (!rows.is_array()) refuse(path, messages::wantedRows());
  for (const Json& row : rows) {
    if (!row.is_array()) refuse(path, messages::wantedRows());
    auto& fields = result.emplace_back();
    for (const Json& field : row)
      fields.push_back(fieldText(field, path));
  }
  return result;
}

// --- The filter -----------------------------------------------------------------------------------------------------

class TraceFilterItem final : public FilterItem {
 public:
  explicit TraceFilterItem(std::shared_ptr<TraceFilter::Item> item) : item_(std::move(item)) {}

  void setGroupToken(int token) override { item_->token = token; }
  std::string name() override { return item_->name; }
  std::string value() override { return item_->value; }
  std::string value2() override { return item_->value2; }
  bool rangeInput() override { return item_->range; }
  bool multipleSelection() override { return item_->multiple; }
  std::string sqlText() override { return item_->sql; }

 private:
  std::shared_ptr<TraceFilter::Item> item_;
};

[[noreturn]] void refuseSubscript(const std::string& subscript) {
  throw AutomationError(hresult::subscriptOutOfRange, "OrvGeneralFilter", "The filter has no item " + subscript + ".");
}

// --- The database ---------------------------------------------------------------------------------------------------

class TraceRecordset final : public Recordset {
 public:
  explicit TraceRecordset(std::vector<std::vector<std::optional<std::string>>> rows) : rows_(std::move(rows)) {}

  bool eof() override { return row_ >= rows_.size(); }
  void moveNext() override { ++row_; }
  std::optional<std::string> text(int position) override {
    if (eof() || position < 0 || static_cast<std::size_t>(position) >= rows_[row_].size()) {
      throw AutomationError(hresult::itemNotFound, "ADODB.Recordset",
                            "The recordset has no field " + std::to_string(position) + " in its current row.");
    }
    return rows_[row_][static_cast<std::size_t>(position)];
  }
  void close() override { rows_.clear(); }

 private:
  std::vector<std::vector<std::optional<std::string>>> rows_;
  std::size_t row_ = 0;
};

class TraceSession final : public Session {
 public:
  TraceSession(const TraceDescription& description, TraceLog& log, std::string& lastFailure)
      : description_(description), log_(log), lastFailure_(lastFailure) {}

  void setCursorLocation(CursorLocation location) override { set("CursorLocation", static_cast<int>(location)); }
  void setConnectionString(std::string_view text) override {
    set("ConnectionString", odbc::ConnectionString(text).withoutPassword());
  }
  void setConnectionTimeout(int seconds) override { set("ConnectionTimeout", seconds); }
  void setCommandTimeout(int seconds) override { set("CommandTimeout", seconds); }

  void open(std::string_view user, std::string_view password, int options) override {
    log_.print({{"call", "open"}, {"user", user}, {"password", password.empty() ? "" : "***"}, {"options", options}});
    failIfAsked("(open)");
    state_ = 1;
  }

  std::int64_t execute(std::string_view sql) override {
    log_.print({{"call", "execute"}, {"sql", sql}, {"options", optionsUnspecified}});
    failIfAsked(sql);
    return 0;
  }

  std::unique_ptr<Recordset> query(std::string_view sql, const QueryOptions& options) override {
    Json line{{"call", "query"},
              {"sql", sql},
              {"cursorType", static_cast<int>(options.cursorType)},
              {"lockType", static_cast<int>(options.lockType)},
              {"options", optionsUnspecified}};
    if (options.cursorLocation) line["cursorLocation"] = static_cast<int>(*options.cursorLocation);
    log_.print(line);
    failIfAsked(sql);
    for (const auto& query : description_.queries) {
      if (contains(sql, query.pattern)) return std::make_unique<TraceRecordset>(query.rows);
    }
    return std::make_unique<TraceRecordset>(std::vector<std::vector<std::optional<std::string>>>());
  }

  int state() override { return state_; }
  void close() override {
    log_.print({{"call", "close"}});
    state_ = stateClosed;
  }

 private:
  template <typename Value>
  void set(std::string_view name, const Value& value) {
    log_.print({{"call", "set"}, {"name", name}, {"value", value}});
  }

  static bool contains(std::string_view text, const std::regex& expression) {
    return std::regex_search(text.begin(), text.end(), expression);
  }

  void failIfAsked(std::string_view text) {
    for (const auto& failure : description_.failures) {
      if (!contains(text, failure.pattern)) continue;
      lastFailure_ = "refused, because the platform's description lets \"" + failure.text + "\" fail";
      throw AutomationError(hresult::databaseCommandFailed, "Quillon trace", lastFailure_);
    }
  }

  const TraceDescription& description_;
  TraceLog& log_;
  std::string& lastFailure_;
  int state_ = stateClosed;
};

// --- The components -------------------------------------------------------------------------------------------------

class TraceLogin final : public Login {
 public:
  TraceLogin(const TraceDescription& description, TraceLog& log) : description_(description), log_(log) {}

  std::string accountConnection() override { return description_.accountConnection; }
  std::string password() override { return description_.password; }
  std::string accountCode() override { return description_.accountCode; }
  std::string accountingYear() override { return description_.accountingYear; }
  std::string accountingYearText() override { return description_.accountingYearText; }
  std::string languageRegion() override { return description_.languageRegion; }
  std::string languageId() override { return description_.languageId; }
  int currentPeriodYear() override { return description_.loginPeriodYear; }
  std::string businessDate() override { return description_.businessDate; }
  void setAuthString(std::string_view rights) override { log_.print({{"effect", "AuthString"}, {"value", rights}}); }

 private:
  const TraceDescription& description_;
  TraceLog& log_;
};

class TraceDataSource final : public DataSource {
 public:
  explicit TraceDataSource(const TraceDescription& description) : description_(description) {}

  void setType(int) override {}
  std::string resultTable() override { return description_.resultTable; }
  void setResultTable(std::string_view) override {}

 private:
  const TraceDescription& description_;
};

class TraceReportRow final : public ReportRow {
 public:
  explicit TraceReportRow(const TraceRow& row) : row_(row) {}

  std::string value(std::string_view column) override {
    const auto found = row_.columns.find(column);
    return found == row_.columns.end() ? std::string() : found->second;
  }

 private:
  const TraceRow& row_;
};

// Of a report run with `filter`, or of a drill-through from `row`; the other one is null.
class TraceArgument final : public ReportArgument {
 public:
  TraceArgument(const TraceDescription& description, TraceLog& log, std::shared_ptr<Filter> filter, const TraceRow* row)
      : description_(description),
        filter_(std::move(filter)),
        row_(row),
        login_(std::make_shared<TraceLogin>(description, log)) {}

  std::shared_ptr<Filter> rawFilter() override { return filter_; }
  std::shared_ptr<Login> login() override { return login_; }
  std::shared_ptr<Login> filterLogin() override { return login_; }
  std::unique_ptr<DataSource> dataSource() override { return std::make_unique<TraceDataSource>(description_); }
  std::string languageId() override { return login_->languageId(); }
  std::string action() override { return row_ ? row_->action : std::string(); }
  std::unique_ptr<ReportRow> row() override {
    return row_ ? std::make_unique<TraceReportRow>(*row_) : ReportArgument::row();
  }

 private:
  const TraceDescription& description_;
  std::shared_ptr<Filter> filter_;
  const TraceRow* row_;
  std::shared_ptr<Login> login_;
};

class TraceDialogItem final : public DialogItem {
 public:
  TraceDialogItem(std::shared_ptr<TraceFilter::Item> item, TraceLog& log) : item_(std::move(item)), log_(log) {}

  std::string name() override { return item_->name; }
  std::string caption() override { return item_->caption; }
  std::string value() override { return item_->value; }
  void setValue(std::string_view value) override {
    item_->value = value;
    log_.print({{"effect", "value"}, {"key", item_->name}, {"value", value}});
  }
  void setBounds(std::string_view lower, std::string_view upper) override {
    item_->value = lower;
    item_->value2 = upper;
    log_.print({{"effect", "value"}, {"key", item_->name}, {"value", lower}, {"value2", upper}});
  }
  void setListText(std::string_view choices) override {
    log_.print({{"effect", "list"}, {"key", item_->name}, {"text", choices}});
  }
  void setListSource(std::string_view choicesOrStatement) override {
    log_.print({{"effect", "listSource"}, {"key", item_->name}, {"text", choicesOrStatement}});
  }

 private:
  std::shared_ptr<TraceFilter::Item> item_;
  TraceLog& log_;
};

class TraceDialog final : public FilterDialog {
 public:
  TraceDialog(std::shared_ptr<TraceFilter> filter, std::shared_ptr<Login> login, std::shared_ptr<Session> connection,
              TraceLog& log)
      : filter_(std::move(filter)), login_(std::move(login)), connection_(std::move(connection)), log_(log) {}

  std::shared_ptr<Login> login() override { return login_; }
  std::string identifier() override { return filter_->identifier(); }
  Session& connection() override { return *connection_; }
  int count() override { return filter_->count(); }
  std::unique_ptr<DialogItem> item(int position) override {
    return std::make_unique<TraceDialogItem>(filter_->entry(position), log_);
  }
  std::unique_ptr<DialogItem> item(std::string_view key) override {
    return std::make_unique<TraceDialogItem>(filter_->entry(key), log_);
  }
  void setUnavailable(std::string_view key, bool flag) override { log_.available(key, !flag); }
  void setEnumeration(std::string_view key, std::string_view text) override {
    log_.print({{"effect", "enum"}, {"key", key}, {"text", text}});
  }
  void setLookupCondition(std::string_view key, std::string_view secondArgument, std::string_view condition) override {
    log_.print({{"effect", "lookup"}, {"key", key}, {"arg2", secondArgument}, {"condition", condition}});
  }
  void setLookupConditionOfValue(std::string_view key, std::string_view condition, bool valueIsEmpty) override {
    log_.print({{"effect", "lookup"}, {"key", key}, {"condition", condition}, {"emptyFlag", valueIsEmpty}});
  }

 private:
  std::shared_ptr<TraceFilter> filter_;
  std::shared_ptr<Login> login_;
  std::shared_ptr<Session> connection_;
  TraceLog& log_;
};

template <typename Map, typename Value>
Value found(const Map& map, std::string_view key, Value otherwise) {
  const auto entry = map.find(key);
  return entry == map.end() ? otherwise : entry->second;
}

class TracePublicComponent final : public PublicComponent {
 public:
  explicit TracePublicComponent(const TraceDescription& description) : description_(description) {}

  std::string accountInformation(std::string_view system, std::string_view name, Session&) override {
    const auto& options = description_.accountInformation;
    const std::string systemAndName = std::string(system) + "." + std::string(name);
    return found(options, systemAndName, found(options, name, std::string()));
  }
  int currentPeriodYear(Session&) override { return description_.currentPeriodYear; }
  int costItemStartMonth(std::string_view year, Session&) override {
    return found(description_.costItemStartMonths, year, 0);
  }
  std::vector<std::string> usedYears(std::string_view, Session&) override { return description_.usedYears; }
  bool costItemOpeningsFinished(int year, Session&) override {
    return found(description_.finishedOpenings, std::to_string(year), false);
  }
  AccountingPeriod moduleStart(std::string_view, Session&) override { return description_.moduleStart; }
  PeriodDates datesOfPeriod(std::string_view, AccountingPeriod period, Session&) override {
    return found(description_.periodDates, keyOf(period), calendarMonth(period));
  }
  AccountingPeriod periodOfDate(std::string_view date, Session&) override {
    const auto described = description_.datePeriods.find(date);
    return described == description_.datePeriods.end() ? calendarPeriod(date) : described->second;
  }
  bool periodSettled(AccountingPeriod period, Session&) override {
    return found(description_.settledPeriods, keyOf(period), false);
  }
  std::string workstationName() override { return description_.workstationName; }

 private:
  static std::string keyOf(AccountingPeriod period) {
    return std::to_string(period.year) + "." + std::to_string(period.month);
  }
  // The period of a date "yyyy-mm-dd" where periods are the months of the calendar.
  static AccountingPeriod calendarPeriod(std::string_view date) {
    constexpr std::size_t yearDigits = 4;
    const auto number = [&](std::size_t at, std::size_t length) {
      return tsql::text::wholeNumber(date.substr(std::min(at, date.size()), length)).value_or(0);
    };
    const AccountingPeriod period{.year = number(0, yearDigits), .month = number(yearDigits + 1, 2)};
    if (period.year < 1 || period.month < 1 || period.month > 12) {
      throw UserError(messages::dateWithoutPeriod(date));
    }
    return period;
  }
  static PeriodDates calendarMonth(AccountingPeriod period) {
    const std::chrono::year_month_day_last last(
        std::chrono::year(period.year),
        std::chrono::month_day_last(std::chrono::month(static_cast<unsigned>(period.month))));
    const std::string month =
        std::to_string(period.year) + (period.month < 10 ? "-0" : "-") + std::to_string(period.month) + "-";
    return {.begin = month + "01", .end = month + std::to_string(static_cast<unsigned>(last.day()))};
  }

  const TraceDescription& description_;
};

class TraceResources final : public ResourceService {
 public:
  TraceResources(const TraceDescription& description, TraceLog& log) : description_(description), log_(log) {}

  void takeLogin(Login&) override {}
  std::string enumName(std::string_view type, std::string_view code) override {
    return found(description_.enums, std::string(type) + "/" + std::string(code), std::string(code));
  }
  std::string text(std::string_view key) override { return found(description_.resources, key, std::string(key)); }
  std::string formattedText(std::string_view key, const std::vector<std::string>& arguments) override {
    formatted_ = {{"effect", "message"}, {"key", key}, {"args", arguments}, {"text", filled(text(key), arguments)}};
    return formatted_["text"];
  }
  void showMessage(std::string_view text, int) override {
    const bool isFormatted = !formatted_.is_null() && formatted_["text"] == text;
    log_.print(isFormatted ? formatted_ : Json{{"effect", "message"}, {"text", text}});
  }

 private:
  // Puts each argument in the place of "{0}", "{1}", ...
  static std::string filled(std::string text, const std::vector<std::string>& arguments) {
    for (std::size_t i = 0; i < arguments.size(); ++i) {
      const std::string place = "{" + std::to_string(i) + "}";
      if (const std::size_t at = text.find(place); at != std::string::npos)
        text.replace(at, place.size(), arguments[i]);
    }
    return text;
  }

  Json formatted_;  // the message of the text that was formatted last
  const TraceDescription& description_;
  TraceLog& log_;
};

class TraceUniqueNames final : public UniqueNameSource {
 public:
  explicit TraceUniqueNames(const TraceDescription& description) : description_(description) {}

  std::string next() override {
    const std::size_t position = given_++;
    return position < description_.uniqueParts.size() ? description_.uniqueParts[position]
                                                      : "u" + std::to_string(position + 1);
  }

 private:
  const TraceDescription& description_;
  std::size_t given_ = 0;
};

class TraceDrillThroughHelper final : public DrillThroughHelper {
 public:
  std::shared_ptr<Filter> filterFor(Login*, bool) override { return std::make_shared<TraceFilter>(Json::object()); }
};

class TraceAccountLogin final : public AccountLogin {
 public:
  void initialise(std::string_view, std::string_view) override {}
};

class TraceAccountOptions final : public AccountOptions {
 public:
  explicit TraceAccountOptions(const TraceDescription& description) : description_(description) {}

  std::string costingBasis() override { return description_.costingBasis; }
  std::string inventoryTable() override { return description_.inventoryTable; }
  std::string warehouseTable() override { return description_.warehouseTable; }

 private:
  const TraceDescription& description_;
};

class TraceEnvironment final : public InventoryEnvironment {
 public:
  explicit TraceEnvironment(const TraceDescription& description) : description_(description) {}

  void setLogin(AccountLogin&) override {}
  std::string resultTable() override { return description_.environmentResultTable; }
  std::unique_ptr<AccountOptions> accountOptions(AccountLogin&, std::string_view) override {
    return std::make_unique<TraceAccountOptions>(description_);
  }

 private:
  const TraceDescription& description_;
};

class TraceSourceVoucherComponent final : public SourceVoucherComponent {
 public:
  explicit TraceSourceVoucherComponent(TraceLog& log) : log_(log) {}

  void initialise(Login&, Session&, std::string_view) override {}
  void showVoucher(VoucherGroup, const SourceVoucher& voucher, Session&) override { shown("ShowVoucher", voucher); }
  void showCostItemAdjustment(const SourceVoucher& voucher, Session&) override { shown("ShowProJust", voucher); }
  void showDifferences(const SourceVoucher& voucher, bool, std::string_view, Session&) override {
    shown("ShowDifVouchs", voucher);
  }
  void showPriceAdjustment(const SourceVoucher& voucher) override { shown("ShowCostJustVouch", voucher); }

 private:
  void shown(std::string_view call, const SourceVoucher& voucher) {
    log_.print({{"effect", "voucher"}, {"call", call}, {"code", voucher.type}});
  }

  TraceLog& log_;
};

class TraceLedgerModule final : public LedgerModule {
 public:
  void setBusiness(BusinessObject&) override {}
  void setLogin(Login&) override {}
  void initialise(std::string_view, std::string_view, int year, Login&) override { year_ = year; }

  int year() const { return year_; }

 private:
  int year_ = 0;
};

class TraceLedgerVoucherComponent final : public LedgerVoucherComponent {
 public:
  explicit TraceLedgerVoucherComponent(TraceLog& log) : log_(log) {}

  void setLogin(Login&) override {}
  void setModule(LedgerModule& module) override { year_ = dynamic_cast<TraceLedgerModule&>(module).year(); }
  void open(const LedgerVoucher& voucher) override {
    // A voucher's id is a number; whatever else the row holds is shown as it is.
    const Json id = Json::parse(voucher.id, nullptr, false);
    log_.print({{"effect", "glVoucher"}, {"year", year_}, {"id", id.is_number_integer() ? id : Json(voucher.id)}});
  }

 private:
  TraceLog& log_;
  int year_ = 0;
};

}  // namespace

TraceRow::TraceRow(const Json& description)
    : report(text(description, "report", "")),
      action(text(description, "Action", "")),
      columns(texts(description, "row", "")) {}

TraceFilter::TraceFilter(const Json& description) : identifier_(text(description, "id", "")) {
  std::size_t position = 0;
  for (const Json& item : array(description, "items", "")) {
    const std::string path = "items[" + std::to_string(position++) + "]";
    if (text(item, "name", path).empty()) refuse(path + ".name", messages::wantedItemKey());
    items_.push_back(std::make_shared<Item>(Item{.name = text(item, "name", path),
                                                 .value = text(item, "value", path),
                                                 .value2 = text(item, "value2", path),
                                                 .caption = text(item, "caption", path),
                                                 .sql = text(item, "sql", path),
                                                 .range = flag(item, "range", path),
                                                 .multiple = flag(item, "multi", path)}));
  }
}

const std::shared_ptr<TraceFilter::Item>& TraceFilter::entry(int position) {
  if (position < 1 || position > count()) refuseSubscript(std::to_string(position));
  return items_[static_cast<std::size_t>(position) - 1];
}

const std::shared_ptr<TraceFilter::Item>& TraceFilter::entry(std::string_view key) {
  const auto found =
      std::ranges::find_if(items_, [&](const auto& candidate) { return equalIgnoringCase(candidate->name, key); });
  if (found == items_.end()) refuseSubscript("\"" + std::string(key) + "\"");
  return *found;
}

std::unique_ptr<FilterItem> TraceFilter::item(int position) {
  return std::make_unique<TraceFilterItem>(entry(position));
}

std::unique_ptr<FilterItem> TraceFilter::item(std::string_view key) {
  return std::make_unique<TraceFilterItem>(entry(key));
}

std::string TraceFilter::whereWithToken(int token) {
  std::string condition;
  for (const auto& item : items_) {
    if (item->token != token || item->sql.empty()) continue;
    if (!condition.empty()) condition += " And ";
    condition += item->sql;
  }
  return condition;
}

TraceDescription::TraceDescription(const Json& description) {
  const Json& login = object(description, "login", "");
  accountConnection = text(login, "OrvDbName", "login");
  password = text(login, "SysPassword", "login");
  accountCode = text(login, "cAcc_Id", "login");
  accountingYear = std::to_string(number(member(login, "iYear", "login"), "login.iYear"));
  accountingYearText = text(login, "cIYear", "login");
  languageRegion = text(login, "LanguageRegion", "login");
  languageId = text(login, "LangID", "login");
  loginPeriodYear = number(member(login, "CurPeriodYear", "login"), "login.CurPeriodYear");
  businessDate = text(login, "date", "login");

  resultTable = text(object(description, "dataSource", ""), "SQL", "dataSource");

  const std::string componentPath = "publicComponent";
  const Json& component = object(description, componentPath, "");
  accountInformation = texts(component, "GetAccInformation", componentPath);
  currentPeriodYear = number(member(component, "CurPeriodYear", componentPath), componentPath + ".CurPeriodYear");
  costItemStartMonths = entries<int>(component, "iFxStartMonth", componentPath, number);
  usedYears = textList(component, "GetIAUsedYears", componentPath);
  const auto flagValue = [](const Json& value, const std::string& path) { return flag(value, path); };
  finishedOpenings = entries<bool>(component, "IsFxFinishQC", componentPath, flagValue);
  if (const Json& start = member(component, "StartMonthYear", componentPath); !start.is_null()) {
    const auto [month, year] = numberPair(start, componentPath + ".StartMonthYear");
    moduleStart = {.year = year, .month = month};
  }
  periodDates = entries<PeriodDates>(component, "GetDateFromPeriod", componentPath, dates);
  datePeriods = entries<AccountingPeriod>(component, "GetPeriodFromDate", componentPath, yearAndMonth);
  settledPeriods = entries<bool>(component, "GetMonthState", componentPath, flagValue);
  workstationName = text(component, "GetComputerName", componentPath);

  const Json& naming = object(description, "naming", "");
  namingNumber = fieldText(member(naming, "prefix", "naming"), "naming.prefix").value_or("0");
  uniqueParts = textList(naming, "unique", "naming");
  for (const Json& value : array(naming, "numbers", "naming"))
    workTableNumbers.push_back(number(value, "naming.numbers"));

  resources = texts(description, "resources", "");
  enums = texts(description, "enums", "");
  environmentResultTable = text(object(description, "environment", ""), "resultTable", "environment");
  const Json& options = object(description, "accountOptions", "");
  costingBasis = text(options, "costingBasis", "accountOptions");
  inventoryTable = text(options, "inventoryTable", "accountOptions");
  warehouseTable = text(options, "warehouseTable", "accountOptions");
  for (const auto& [expression, rows] : object(description, "queries", "").items()) {
    queries.push_back({.pattern = pattern(expression, "queries"), .rows = recordRows(rows, "queries." + expression)});
  }
  for (const Json& expression : array(description, "fail", "")) {
    if (!expression.is_string()) refuse("fail", messages::wantedExpressions());
    failures.push_back({.text = expression, .pattern = pattern(expression, "fail")});
  }
}

void TraceLog::print(const Json& line) {
  flush();
  out_ << line.dump() << '\n';
}

void TraceLog::available(std::string_view key, bool value) {
  const auto held = std::ranges::find(held_, key, &std::pair<std::string, bool>::first);
  if (held == held_.end()) {
    held_.emplace_back(key, value);
  } else {
    held->second = value;
  }
}

void TraceLog::flush() {
  for (const auto& [key, value] : held_)
    out_ << Json{{"effect", "available"}, {"key", key}, {"value", value}}.dump() << '\n';
  held_.clear();
}

std::shared_ptr<Session> TracePlatform::createSession() {
  return std::make_shared<TraceSession>(description_, log_, lastFailure_);
}
std::shared_ptr<PublicComponent> TracePlatform::createPublicComponent() {
  return std::make_shared<TracePublicComponent>(description_);
}
std::shared_ptr<ResourceService> TracePlatform::createResourceService() {
  return std::make_shared<TraceResources>(description_, log_);
}
std::shared_ptr<UniqueNameSource> TracePlatform::createUniqueNameSource() {
  return std::make_shared<TraceUniqueNames>(description_);
}
std::shared_ptr<DrillThroughHelper> TracePlatform::createDrillThroughHelper() {
  return std::make_shared<TraceDrillThroughHelper>();
}

std::int32_t TracePlatform::workTableNumber() {
  const std::size_t position = workTablesNumbered_++;
  return position < description_.workTableNumbers.size() ? description_.workTableNumbers[position]
                                                         : static_cast<std::int32_t>(position + 1);
}
std::unique_ptr<AccountLogin> TracePlatform::createAccountLogin() {
  return std::make_unique<TraceAccountLogin>();
}
std::unique_ptr<InventoryEnvironment> TracePlatform::createInventoryEnvironment() {
  return std::make_unique<TraceEnvironment>(description_);
}
std::unique_ptr<SourceVoucherComponent> TracePlatform::createSourceVoucherComponent() {
  return std::make_unique<TraceSourceVoucherComponent>(log_);
}
std::unique_ptr<LedgerModule> TracePlatform::createLedgerModule() {
  return std::make_unique<TraceLedgerModule>();
}
std::unique_ptr<LedgerVoucherComponent> TracePlatform::createLedgerVoucherComponent() {
  return std::make_unique<TraceLedgerVoucherComponent>(log_);
}

std::shared_ptr<Login> TracePlatform::login() {
  return std::make_shared<TraceLogin>(description_, log_);
}

std::unique_ptr<FilterDialog> TracePlatform::dialog(std::shared_ptr<TraceFilter> filter) {
  return std::make_unique<TraceDialog>(std::move(filter), login(), createSession(), log_);
}

std::unique_ptr<ReportArgument> TracePlatform::argument(std::shared_ptr<Filter> filter) {
  return std::make_unique<TraceArgument>(description_, log_, std::move(filter), nullptr);
}

std::unique_ptr<ReportArgument> TracePlatform::argument(const TraceRow& row) {
  return std::make_unique<TraceArgument>(description_, log_, nullptr, &row);
}

}  // namespace quillon::workbench
