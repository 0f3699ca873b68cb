#include "workbench/platform/account_session.h"

#include <array>
#include <chrono>
#include <cstdio>
#include <stdexcept>

namespace quillon::workbench {

namespace {

AutomationError sessionError(HResult code, std::string description) {
  return {code, std::string(sessionSource), std::move(description)};
}

// "12.500000" becomes "12.5", "3.0000" becomes "3": automation gives a decimal as text without trailing zeros.
std::string withoutTrailingZeros(std::string text) {
  if (text.find('.') == std::string::npos) return text;
  text.erase(text.find_last_not_of('0') + 1);
  if (text.back() == '.') text.pop_back();
  return text;
}

// "2024-03-05 08:30:00.000" becomes "2024-03-05 08:30:00", and without a time of day only the date.
std::string dateText(std::string text) {
  constexpr std::size_t dateLength = 10;
  constexpr std::size_t secondsLength = 19;
  text.resize(std::min(text.size(), secondsLength));
  if (text.ends_with(" 00:00:00")) text.resize(dateLength);
  return text;
}

// Keeps a batch's first result set and its last row count.
class BatchCollector final : public tsql::ResultSink {
 public:
  void columns(std::span<const tsql::Column> columns) override {
    ++resultSets_;
    if (resultSets_ == 1) columns_.assign(columns.begin(), columns.end());
  }
  void row(std::span<const tsql::Value> values) override {
    if (resultSets_ == 1) values_.insert(values_.end(), values.begin(), values.end());
  }
  void rowsAffected(std::int64_t count) override { rowsAffected_ = count; }

  BatchResult result() && {
    BatchResult result;
    if (resultSets_ > 0) result.recordset = std::make_unique<AccountRecordset>(std::move(columns_), std::move(values_));
    result.rowsAffected = rowsAffected_;
    return result;
  }

 private:
  int resultSets_ = 0;
  std::vector<tsql::Column> columns_;
  std::vector<tsql::Value> values_;
  std::int64_t rowsAffected_ = -1;
};

// What makes a report change its account.
constexpr std::string_view aboutQuotes =
    " Reports only read the account. A quote (') in a filter value ends the text that the value is pasted into, and what "
    "stands behind it runs as a statement: take the quote out, or write it twice where it belongs to the value.";

std::string realText(double value) {
  std::array<char, 32> text{};
  const int length = std::snprintf(text.data(), text.size(), "%.15g", value);
  return {text.data(), static_cast<std::size_t>(length)};
}

}  // namespace

HResult sqlErrorCode(int number) {
  switch (number) {
    case 208:   // no such object
    case 3701:  // nothing to drop
      return static_cast<HResult>(0x80040E37U);
    case 220:   // overflow of a small type
    case 2628:  // lost text, with the column named
    case 8115:  // arithmetic overflow
    case 8152:  // lost text
      return static_cast<HResult>(0x80040E57U);
    case 241:   // text to date
    case 242:   // text to date, out of range
    case 245:   // text to integer
    case 8114:  // text to number
      return static_cast<HResult>(0x80040E07U);
    case 515:   // null where none may be
    case 547:   // check or foreign key
    case 2601:  // unique index
    case 2627:  // primary key
      return static_cast<HResult>(0x80040E2FU);
    default:
      return static_cast<HResult>(0x80040E14U);
  }
}

std::optional<std::string> fieldText(const tsql::Value& value, const tsql::Type& type) {
  if (tsql::isNull(value)) return std::nullopt;
  if (type.kind == tsql::Kind::bit) return std::get<std::int64_t>(value) != 0 ? "True" : "False";
  if (const auto* real = std::get_if<double>(&value)) return realText(*real);
  std::string text = tsql::toText(value).value();
  if (std::holds_alternative<tsql::Exact>(value)) return withoutTrailingZeros(std::move(text));
  if (std::holds_alternative<tsql::DateTime>(value)) return dateText(std::move(text));
  return text;
}

AccountRecordset::AccountRecordset(std::vector<tsql::Column> columns, std::vector<tsql::Value> values)
    : columns_(std::move(columns)), values_(std::move(values)) {}

void AccountRecordset::requireOpen() const {
  if (!open_) throw sessionError(objectClosed, "The recordset is closed.");
}

bool AccountRecordset::eof() {
  requireOpen();
  return row_ >= rowCount();
}

void AccountRecordset::moveNext() {
  if (eof()) throw sessionError(static_cast<HResult>(0x800A0BCDU), "The recordset has no current row to move from.");
  ++row_;
}

void AccountRecordset::moveFirst() {
  requireOpen();
  row_ = 0;
}

const tsql::Value& AccountRecordset::field(int position) const {
  requireOpen();
  if (position < 0 || static_cast<std::size_t>(position) >= columns_.size()) {
    throw sessionError(static_cast<HResult>(0x800A0CC1U),
                       "The recordset has no field number " + std::to_string(position) + ".");
  }
  if (row_ >= rowCount()) throw sessionError(static_cast<HResult>(0x800A0BCDU), "The recordset has no current row.");
  return values_[row_ * columns_.size() + static_cast<std::size_t>(position)];
}

std::optional<std::string> AccountRecordset::text(int position) {
  const tsql::Value& value = field(position);
  return fieldText(value, columns_[static_cast<std::size_t>(position)].type);
}

void AccountRecordset::close() {
  requireOpen();
  open_ = false;
}

void AccountSession::setCursorLocation(CursorLocation) {}

void AccountSession::setConnectionString(std::string_view text) {
  setAccount(AccountSource(std::string(text)));
}

void AccountSession::setAccount(AccountSource account) {
  if (connection_) throw sessionError(objectOpen, "The connection string cannot change while the session is open.");
  account_ = std::move(account);
}

void AccountSession::setConnectionTimeout(int seconds) {
  connectionTimeout_ = seconds;
}

void AccountSession::setCommandTimeout(int seconds) {
  commandTimeout_ = seconds;
}

void AccountSession::open(std::string_view, std::string_view, int) {
  if (connection_) throw sessionError(objectOpen, "The session is open already.");
  try {
    odbc::ConnectOptions options{.connectionTimeout = connectionTimeout_, .commandTimeout = commandTimeout_};
    if (monitor_ != nullptr) {
      options.messages = [this](const odbc::Diagnostic& message) { monitor_->told(message); };
      options.rewritten = [this](std::string_view sql) { monitor_->rewritten(sql); };
    }
    connection_ = account_.open(tsql::OpenMode::existing, std::move(options));
  } catch (const std::exception& error) {
    if (const auto* told = dynamic_cast<const InBothLanguages*>(&error); told != nullptr)
      throw SessionRefused(told->message());
    throw sessionError(hresult::fail, error.what());
  }
  if (monitor_ != nullptr) monitor_->opened();
}

tsql::Database& AccountSession::connection() {
  if (!connection_) throw sessionError(objectClosed, "The session is closed; open it before running a statement.");
  return *connection_;
}

// Runs `action`, which gives its result and the count of its rows, and tells the monitor about it.
template <typename Action>
auto AccountSession::run(std::string_view sql, Action action) {
  tsql::Database& account = connection();
  if (monitor_ != nullptr) monitor_->started(sql);
  try {
    const auto start = std::chrono::steady_clock::now();
    auto [result, rows] = action(account);
    const std::chrono::duration<double> time = std::chrono::steady_clock::now() - start;
    if (monitor_ != nullptr) monitor_->finished(sql, time.count(), rows);
    return std::move(result);
  } catch (const tsql::SqlError& error) {
    lastFailure_ = StatementFailure{std::string(sql), error.number(), error.message(), error.line()};
    constexpr int databaseIsReadOnly = 3906;
    if (error.number() == databaseIsReadOnly && !account_.scratch().empty()) lastFailure_->message += aboutQuotes;
    if (monitor_ != nullptr) monitor_->failed(*lastFailure_);
    const bool lost = dynamic_cast<const tsql::ConnectionLost*>(&error) != nullptr;
    throw StatementError(lost ? hresult::fail : sqlErrorCode(error.number()), *lastFailure_);
  }
}

std::int64_t AccountSession::execute(std::string_view sql) {
  return run(sql, [sql](tsql::Database& account) {
    const std::int64_t rows = account.execute(sql);
    return std::pair(rows, rows);
  });
}

std::unique_ptr<AccountRecordset> AccountSession::openRecordset(std::string_view sql) {
  return run(sql, [sql](tsql::Database& account) {
    const std::unique_ptr<tsql::Cursor> cursor = account.query(sql);
    const std::span<const tsql::Column> columns = cursor->columns();
    std::vector<tsql::Value> values;
    while (cursor->next()) {
      for (std::size_t column = 0; column < columns.size(); ++column)
        values.push_back(cursor->value(column));
    }
    auto rows = std::make_unique<AccountRecordset>(std::vector(columns.begin(), columns.end()), std::move(values));
    const auto count = static_cast<std::int64_t>(rows->rowCount());
    return std::pair(std::move(rows), count);
  });
}

BatchResult AccountSession::runBatch(std::string_view sql) {
  return run(sql, [sql](tsql::Database& account) {
    BatchCollector collector;
    account.run(sql, collector);
    BatchResult result = std::move(collector).result();
    const std::int64_t rows = result.rowsAffected;
    return std::pair(std::move(result), rows);
  });
}

std::unique_ptr<Recordset> AccountSession::query(std::string_view sql, const QueryOptions&) {
  return openRecordset(sql);
}

void AccountSession::close() {
  if (!connection_) throw sessionError(objectClosed, "The session is closed already.");
  connection_.reset();
  if (monitor_ != nullptr) monitor_->closed();
}

}  // namespace quillon::workbench
