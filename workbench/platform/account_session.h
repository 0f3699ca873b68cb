// The session port over an account, embedded or on a server: what the report classes know as an ADO connection, run by
// the T-SQL engine or over ODBC. Failures carry the HRESULTs of ADO's errors (sqlErrorCode below).
#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "frame/automation_error.h"
#include "frame/session.h"
#include "workbench/messages/told_error.h"
#include "workbench/odbc/odbc_database.h"
#include "workbench/platform/account_source.h"
#include "workbench/tsql/values/database.h"

namespace quillon::workbench {

// The source text of every error that an embedded session throws.
inline constexpr std::string_view sessionSource = "Quillon account";

// ADO's codes for a connection or recordset that is used while closed, or set up while open.
inline constexpr HResult objectClosed = static_cast<HResult>(0x800A0E78U);
inline constexpr HResult objectOpen = static_cast<HResult>(0x800A0E79U);

// The options of the workbench's own queries.
inline constexpr QueryOptions readOnlyQuery{CursorType::fixed, LockType::readOnly, std::nullopt};

// The HRESULT for SQL Server's error `number`: 0x80040E37 no such table, 0x80040E57 overflow or lost text, 0x80040E07
// failed conversion, 0x80040E2F broken constraint, 0x80040E14 anything else in a statement.
HResult sqlErrorCode(int number);

// A statement that the account refused: its text, SQL Server's number for the error (0: none) and the error's text, and
// the line of the statement (0: not known).
struct StatementFailure {
  std::string sql;
  int number = 0;
  std::string message;
  int line = 0;
};

// What a session throws for it.
class StatementError final : public AutomationError {
 public:
  StatementError(HResult code, StatementFailure failure)
      : AutomationError(code, std::string(sessionSource), failure.message), failure_(std::move(failure)) {}
  const StatementFailure& failure() const noexcept { return failure_; }

 private:
  StatementFailure failure_;
};

// A session that could not be opened.
class SessionRefused final : public AutomationError, public InBothLanguages {
 public:
  explicit SessionRefused(const Message& message)
      : AutomationError(hresult::fail, std::string(sessionSource), message.english()), InBothLanguages(message) {}
};

// Watches a session; every member is called on the session's thread.
class SessionMonitor {
 public:
  virtual ~SessionMonitor() = default;
  virtual void opened() = 0;
  virtual void started(std::string_view sql) = 0;
  // `rows` counts what the statement gave or changed; -1 when it counts none.
  virtual void finished(std::string_view sql, double seconds, std::int64_t rows) = 0;
  virtual void failed(const StatementFailure& failure) = 0;
  // A message of the server about the statement that runs, such as a warning.
  virtual void told(const odbc::Diagnostic&) {}
  // The statement that runs goes to the server in this form, another one than was asked for.
  virtual void rewritten(std::string_view /*sql*/) {}
  virtual void closed() = 0;
};

// A value as Recordset::text gives it; null gives nullopt.
std::optional<std::string> fieldText(const tsql::Value& value, const tsql::Type& type);

// A client-side recordset: all rows were read when it was opened, so that other statements may run meanwhile.
class AccountRecordset final : public Recordset {
 public:
  AccountRecordset(std::vector<tsql::Column> columns, std::vector<tsql::Value> values);

  bool eof() override;
  void moveNext() override;
  std::optional<std::string> text(int position) override;
  void close() override;

  // The columns with their types, and values of the current row (`field`).
  std::span<const tsql::Column> columns() const { return columns_; }
  std::size_t rowCount() const { return columns_.empty() ? 0 : values_.size() / columns_.size(); }
  const tsql::Value& field(int position) const;
  void moveFirst();
  bool isOpen() const { return open_; }

 private:
  void requireOpen() const;

  std::vector<tsql::Column> columns_;
  std::vector<tsql::Value> values_;  // row by row
  std::size_t row_ = 0;
  bool open_ = true;
};

// What a batch gave: the rows of its first result set, when it has one, and what its last counting statement changed
// (-1 when none counts).
struct BatchResult {
  std::unique_ptr<AccountRecordset> recordset;
  std::int64_t rowsAffected = -1;
};

class AccountSession final : public Session {
 public:
  // `monitor` may be null; it must outlive the session.
  explicit AccountSession(SessionMonitor* monitor = nullptr) : monitor_(monitor) {}
  AccountSession(const AccountSession&) = delete;
  AccountSession& operator=(const AccountSession&) = delete;
  // Like an ADO connection, it closes when it is released; only close() is told to the monitor.
  ~AccountSession() override = default;

  // Makes no difference: rows are always read to the client.
  void setCursorLocation(CursorLocation location) override;
  // The account that the text names (account_source.h); one that cannot be used is refused when the session opens.
  void setConnectionString(std::string_view text) override;
  // For an account on a server; they count from the next open() on.
  void setConnectionTimeout(int seconds) override;
  void setCommandTimeout(int seconds) override;
  // User and password are ignored: a server's stand in the connection string, an embedded account has none.
  void open(std::string_view user, std::string_view password, int options) override;
  std::int64_t execute(std::string_view sql) override;
  std::unique_ptr<Recordset> query(std::string_view sql, const QueryOptions& options) override;
  int state() override { return connection_ ? 1 : stateClosed; }
  void close() override;

  // query() with the type that shows columns and values.
  std::unique_ptr<AccountRecordset> openRecordset(std::string_view sql);
  // Runs a batch that may or may not give rows.
  BatchResult runBatch(std::string_view sql);
  // The same for a caller that has the account already.
  void setAccount(AccountSource account);
  const std::string& connectionText() const { return account_.text(); }
  // The last statement that failed on this session; nullopt when none did. It stays after later successes, so that an
  // error that a report absorbed can still be shown.
  const std::optional<StatementFailure>& lastFailure() const { return lastFailure_; }

 private:
  tsql::Database& connection();
  template <typename Action>
  auto run(std::string_view sql, Action action);

  SessionMonitor* monitor_;
  AccountSource account_;
  int connectionTimeout_ = 0;
  int commandTimeout_ = 0;
  std::unique_ptr<tsql::Database> connection_;
  std::optional<StatementFailure> lastFailure_;
};

}  // namespace quillon::workbench
