#include "workbench/platform/trace_platform.h"

#include <algorithm>
#include <ostream>
#include <utility>

#include "frame/automation_error.h"
#include "frame/text.h"
#include "workbench/platform/connection_string.h"

namespace quillon::workbench {

namespace {

using Json = nlohmann::ordered_json;

// --- Reading a description ------------------------------------------------------------------------------------------

[[noreturn]] void refuse(const std::string& path, const std::string& wanted) {
  throw DescriptionError((path.empty() ? "the file" : path) + " must be " + wanted);
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
  refuse(path, "a text, a number, true, false or null");
}

// A member of an object; null when the object does not have it.
const Json& member(const Json& object, std::string_view key, const std::string& path) {
  static const Json missing;
  if (object.is_null()) return missing;
  if (!object.is_object()) refuse(path, "an object");
  const auto found = object.find(std::string(key));
  return found == object.end() ? missing : *found;
}

std::string text(const Json& object, std::string_view key, const std::string& path) {
  return fieldText(member(object, key, path), pathOf(path, key)).value_or("");
}

int number(const Json& value, const std::string& path) {
  if (value.is_null()) return 0;
  if (!value.is_number_integer()) refuse(path, "a whole number");
  return value.get<int>();
}

bool flag(const Json& object, std::string_view key, const std::string& path) {
  const Json& value = member(object, key, path);
  if (value.is_null()) return false;
  if (!value.is_boolean()) refuse(pathOf(path, key), "true or false");
  return value.get<bool>();
}

const Json& object(const Json& outer, std::string_view key, const std::string& path) {
  const Json& value = member(outer, key, path);
  if (!value.is_null() && !value.is_object()) refuse(pathOf(path, key), "an object");
  return value;
}

const Json& array(const Json& outer, std::string_view key, const std::string& path) {
  const Json& value = member(outer, key, path);
  if (!value.is_null() && !value.is_array()) refuse(pathOf(path, key), "an array");
  return value;
}

TraceDescription::Texts texts(const Json& outer, std::string_view key, const std::string& path) {
  TraceDescription::Texts result;
  for (const auto& [name, value] : object(outer, key, path).items()) {
    result[name] = fieldText(value, pathOf(pathOf(path, key), name)).value_or("");
  }
  return result;
}

std::vector<std::string> textList(const Json& outer, std::string_view key, const std::string& path) {
  std::vector<std::string> result;
  for (const Json& value : array(outer, key, path)) {
    result.push_back(fieldText(value, pathOf(path, key)).value_or(""));
  }
  return result;
}

std::regex pattern(const std::string& expression, const std::string& path) {
  try {
    return std::regex(expression);
  } catch (const std::regex_error& error) {
    throw DescriptionError(path + ": \"" + expression + "\" is not a regular expression: " + error.what());
  }
}

std::vector<std::vector<std::optional<std::string>>> recordRows(const Json& rows, const std::string& path) {
  std::vector<std::vector<std::optional<std::string>>> result;
  if (!rows.is_array()) refuse(path, "an array of rows, each an array of fields");
  for (const Json& row : rows) {
    if (!row.is_array()) refuse(path, "an array of rows, each an array of fields");
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
  void setConnectionString(std::string_view text) override { set("ConnectionString", withoutPassword(text)); }
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

 private:
  const TraceDescription& description_;
};

class TraceArgument final : public ReportArgument {
 public:
  TraceArgument(const TraceDescription& description, TraceLog& log, std::shared_ptr<Filter> filter)
      : description_(description), filter_(std::move(filter)), login_(std::make_shared<TraceLogin>(description, log)) {}

  std::shared_ptr<Filter> rawFilter() override { return filter_; }
  std::shared_ptr<Login> login() override { return login_; }
  std::shared_ptr<Login> filterLogin() override { return login_; }
  std::unique_ptr<DataSource> dataSource() override { return std::make_unique<TraceDataSource>(description_); }
  std::string action() override { return {}; }
  std::string languageId() override { return login_->languageId(); }

 private:
  const TraceDescription& description_;
  std::shared_ptr<Filter> filter_;
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

 private:
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
  void showMessage(std::string_view text, int) override { log_.print({{"effect", "message"}, {"text", text}}); }

 private:
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
  std::shared_ptr<Filter> filterFor(Login&, bool) override { return std::make_shared<TraceFilter>(Json::object()); }
};

}  // namespace

TraceFilter::TraceFilter(const Json& description) : identifier_(text(description, "id", "")) {
  std::size_t position = 0;
  for (const Json& item : array(description, "items", "")) {
    const std::string path = "items[" + std::to_string(position++) + "]";
    if (text(item, "name", path).empty()) refuse(path + ".name", "the item's key");
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
  for (const auto& [year, month] : object(component, "iFxStartMonth", componentPath).items()) {
    costItemStartMonths[year] = number(month, pathOf(componentPath + ".iFxStartMonth", year));
  }

  usedYears = textList(component, "GetIAUsedYears", componentPath);

  const Json& naming = object(description, "naming", "");
  namingNumber = fieldText(member(naming, "prefix", "naming"), "naming.prefix").value_or("0");
  uniqueParts = textList(naming, "unique", "naming");

  resources = texts(description, "resources", "");
  enums = texts(description, "enums", "");
  for (const auto& [expression, rows] : object(description, "queries", "").items()) {
    queries.push_back({.pattern = pattern(expression, "queries"), .rows = recordRows(rows, "queries." + expression)});
  }
  for (const Json& expression : array(description, "fail", "")) {
    if (!expression.is_string()) refuse("fail", "an array of regular expressions");
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

std::shared_ptr<Login> TracePlatform::login() {
  return std::make_shared<TraceLogin>(description_, log_);
}

std::unique_ptr<FilterDialog> TracePlatform::dialog(std::shared_ptr<TraceFilter> filter) {
  return std::make_unique<TraceDialog>(std::move(filter), login(), createSession(), log_);
}

std::unique_ptr<ReportArgument> TracePlatform::argument(std::shared_ptr<Filter> filter) {
  return std::make_unique<TraceArgument>(description_, log_, std::move(filter));
}

}  // namespace quillon::workbench
