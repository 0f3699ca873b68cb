// The database session port: one ADO Connection to the account database, and the recordsets opened on it.
// Every member throws AutomationError with the failing call's own code, source and description.
#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

namespace quillon {

// ADO's constants, by their ADO values.
enum class CursorLocation { server = 2, client = 3 };
enum class CursorType { forwardOnly = 0, keyset = 1, dynamic = 2, fixed = 3 };  // `fixed` is ADO's adOpenStatic
enum class LockType { readOnly = 1, pessimistic = 2, optimistic = 3 };
inline constexpr int optionsUnspecified = -1;
inline constexpr int stateClosed = 0;

// How a recordset is opened; `cursorLocation` is written to the recordset only when it is set.
struct QueryOptions {
  CursorType cursorType = CursorType::fixed;
  LockType lockType = LockType::optimistic;
  std::optional<CursorLocation> cursorLocation;
};

// A recordset. It is open when it is handed out. Destroying it releases it without closing it: who reads it to the
// end calls close().
class Recordset {
 public:
  virtual ~Recordset() = default;

  // True when there is no current row (no row at all, or past the last one).
  virtual bool eof() = 0;
  virtual void moveNext() = 0;  // to the next row; not called at the end
  // The field at `position` (from 0) of the current row as text: numbers with a point, without group marks; a date as
  // "yyyy-mm-dd", with " hh:mm:ss" behind it when it has a time; a flag as "True" or "False". Null gives nullopt.
  virtual std::optional<std::string> text(int position) = 0;
  virtual void close() = 0;
};

class Session {
 public:
  virtual ~Session() = default;

  virtual void setCursorLocation(CursorLocation location) = 0;
  virtual void setConnectionString(std::string_view text) = 0;
  // In seconds; 0 waits without limit.
  virtual void setConnectionTimeout(int seconds) = 0;
  virtual void setCommandTimeout(int seconds) = 0;
  // Opens with the connection string set before: ADO's Open("", user, password, options).
  virtual void open(std::string_view user, std::string_view password, int options) = 0;

  // Runs statements that return no rows, with options -1; gives the number of records affected.
  virtual std::int64_t execute(std::string_view sql) = 0;
  // Opens a recordset on this session, with options -1.
  virtual std::unique_ptr<Recordset> query(std::string_view sql, const QueryOptions& options) = 0;

  // ADO's State: 0 is closed.
  virtual int state() = 0;
  virtual void close() = 0;

  // Another run has taken the module's connection over (Module::takeSession): from now on every other member of a session
  // whose owner can be interrupted by that run throws throwTakenOver(). Where calls of the platform cannot lead back into
  // the library there is nothing to do.
  virtual void retire() noexcept {}
};

// Throws the AutomationError with which a run ends that another one on its thread has interrupted.
[[noreturn]] void throwTakenOver();

// For a query whose recordset is read and never changed.
inline constexpr QueryOptions readOnlyLookup{
    .cursorType = CursorType::fixed, .lockType = LockType::readOnly, .cursorLocation = {}};

// Runs `sql`, reads the first field of its first row and closes the recordset. Gives an empty text for null, nothing
// when there is no row. Throws AutomationError when the session or the recordset refuses.
std::optional<std::string> firstField(Session& session, std::string_view sql, const QueryOptions& options = {});

}  // namespace quillon
