// ODBC's handles: one connection, and the statements on it.
#pragma once

#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <utility>

#include "workbench/messages/message.h"
#include "workbench/odbc/api.h"
#include "workbench/odbc/cancellation.h"
#include "workbench/odbc/diagnostics.h"
#include "workbench/odbc/server_engine.h"

namespace quillon::odbc {

// One of ODBC's handles; freed with the object.
template <SQLSMALLINT type>
class Handle {
 public:
  Handle() = default;
  Handle(const Handle&) = delete;
  Handle& operator=(const Handle&) = delete;
  ~Handle() {
    if (handle_ != SQL_NULL_HANDLE) SQLFreeHandle(type, handle_);
  }

  // False when there is none to be had; the parent's records say why.
  bool allocate(SQLHANDLE parent) { return SQL_SUCCEEDED(SQLAllocHandle(type, parent, &handle_)); }
  SQLHANDLE get() const { return handle_; }

 private:
  SQLHANDLE handle_ = SQL_NULL_HANDLE;
};

class Link {
 public:
  Link(const ConnectionString& connectionString, ConnectOptions options);
  Link(const Link&) = delete;
  Link& operator=(const Link&) = delete;
  ~Link();

  // Throws tsql::ConnectionLost when the connection is known to be lost.
  void requireConnection() const;
  // Throws what the records of `handle` make; notes when the connection is lost.
  [[noreturn]] void fail(SQLSMALLINT handleType, SQLHANDLE handle);
  // Passes the records of `statement` to the taker of messages, if there is one.
  void tellMessages(SQLHANDLE statement) const;
  // Which server it is; SQL Server until it is said.
  void setEngine(ServerEngine engine) { engine_ = std::move(engine); }
  // The batch as it is to be sent. Tells the taker of rewritten batches when that is another text.
  std::string sent(std::string_view sql) const;

  SQLHANDLE handle() const { return connection_.get(); }
  int commandTimeout() const { return options_.commandTimeout; }

 private:
  ConnectOptions options_;
  Handle<SQL_HANDLE_ENV> environment_;
  Handle<SQL_HANDLE_DBC> connection_;
  ServerEngine engine_;
  std::optional<workbench::Message> lost_;  // how it was
};

// A batch that runs: its results, one after the other.
class Batch {
 public:
  // Sends the batch and stands at its first result.
  Batch(std::shared_ptr<Link> link, std::string_view sql);

  SQLHANDLE handle() const { return statement_.get(); }
  // Whether the present result has rows.
  bool hasRows() const { return columnCount_ > 0; }
  SQLSMALLINT columnCount() const { return columnCount_; }
  // The rows that the present result, without rows of its own, changed; -1 when it does not say.
  std::int64_t rowCount();
  // Moves to the next row of the present result; false past the last one.
  bool fetch();
  // Moves to the next result; false past the last one.
  bool nextResult();
  // Moves to the next result that has rows; false when there is none.
  bool nextRows();

  // The result of a call on the statement: throws its error, passes on its messages; false for "no data".
  bool check(SQLRETURN result);
  // The same for a call whose information is the caller's affair; gives the result back.
  SQLRETURN checkQuietly(SQLRETURN result);

 private:
  void atResult();

  std::shared_ptr<Link> link_;
  Handle<SQL_HANDLE_STMT> statement_;
  std::optional<CancelOnStop> cancellation_;
  SQLSMALLINT columnCount_ = 0;
};

}  // namespace quillon::odbc
