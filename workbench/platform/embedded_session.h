// The session port over an embedded account: what the report classes know as an ADO connection, run by the T-SQL
// engine. Failures carry the HRESULTs by which automation clients tell ADO's errors apart (sqlErrorCode below).
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
#include "workbench/tsql/engine.h"

namespace quillon::workbench {

// The source text of every error that an embedded session throws.
inline constexpr std::string_view embeddedSource = "Quillon embedded account";

// ADO's codes for a connection or recordset that is used while closed, or set up while open.
inline constexpr HResult objectClosed = static_cast<HResult>(0x800A0E78U);
inline constexpr HResult objectOpen = static_cast<HResult>(0x800A0E79U);

// How the workbench itself looks something up.
inline constexpr QueryOptions readOnlyQuery{CursorType::fixed, LockType::readOnly, std::nullopt};

// The HRESULT for SQL Server's error `number`: 0x80040E37 no such table, 0x80040E57 overflow or lost text, 0x80040E07
// failed conversion, 0x80040E2F broken constraint, 0x80040E14 anything else in a statement.
HResult sqlErrorCode(int number);

// A statement that the account refused: its text, SQL Server's number for the error and the error's text.
struct StatementFailure {
  std::string sql;
  int number = 0;
  std::string message;
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
  virtual void closed() = 0;
};

// A value as Recordset::text gives it; null gives nullopt.
std::optional<std::string> fieldText(const tsql::Value& value, const tsql::Type& type);

// A client-side recordset: all rows were read when it was opened, so that other statements may run beside it.
class EmbeddedRecordset final : public Recordset {
 public:
  EmbeddedRecordset(std::vector<tsql::Column> columns, std::vector<tsql::Value> values);

  bool eof() override;
  void moveNext() override;
  std::optional<std::string> text(int position) override;
  void close() override;

  // For whoever shows the recordset with its types. `field` reads the current row.
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
  std::unique_ptr<EmbeddedRecordset> recordset;
  std::int64_t rowsAffected = -1;
};

class EmbeddedSession final : public Session {
 public:
  // `monitor` may be null; it must outlive the session.
  explicit EmbeddedSession(SessionMonitor* monitor = nullptr) : monitor_(monitor) {}
  EmbeddedSession(const EmbeddedSession&) = delete;
  EmbeddedSession& operator=(const EmbeddedSession&) = delete;
  // Like an ADO connection, it closes when it is released; only close() is told to the monitor.
  ~EmbeddedSession() override = default;

  // The cursor location and the time-outs are taken and make no difference: rows are always read to the client, and
  // nothing waits.
  void setCursorLocation(CursorLocation location) override;
  // The forms that accountFile() takes; it is read when the session opens.
  void setConnectionString(std::string_view text) override;
  void setConnectionTimeout(int seconds) override;
  void setCommandTimeout(int seconds) override;
  // User and password are ignored: an embedded account has none.
  void open(std::string_view user, std::string_view password, int options) override;
  std::int64_t execute(std::string_view sql) override;
  std::unique_ptr<Recordset> query(std::string_view sql, const QueryOptions& options) override;
  int state() override { return connection_ ? 1 : stateClosed; }
  void close() override;

  // query() with the type that shows columns and values.
  std::unique_ptr<EmbeddedRecordset> openRecordset(std::string_view sql);
  // Runs a batch of which it is not known whether it gives rows.
  BatchResult runBatch(std::string_view sql);
  const std::string& connectionText() const { return connectionText_; }
  // The last statement that failed on this session; nullopt when none did. It stays after later successes, so that an
  // error that a report absorbed can still be told.
  const std::optional<StatementFailure>& lastFailure() const { return lastFailure_; }

 private:
  tsql::Connection& connection();
  template <typename Action>
  auto run(std::string_view sql, Action action);

  SessionMonitor* monitor_;
  std::string connectionText_;
  std::unique_ptr<tsql::Connection> connection_;
  std::optional<StatementFailure> lastFailure_;
};

}  // namespace quillon::workbench
