#include "workbench/odbc/link.h"

#include "workbench/messages/account.h"
#include "workbench/odbc/diagnostics.h"
#include "workbench/odbc/wide_text.h"
#include "workbench/tsql/values/stop.h"

namespace quillon::odbc {

namespace {

// An attribute that is a number. Drivers need not know all of them: one that is refused stays at the driver's default,
// which for time-outs is no limit.
SQLPOINTER number(int value) {
  return reinterpret_cast<SQLPOINTER>(static_cast<SQLULEN>(value));  // NOLINT(performance-no-int-to-ptr): ODBC's way
}

// Whether the driver knows that there is no connection any more. FreeTDS's has no words of its own for one that was reset.
bool isDead(SQLHANDLE connection) {
  SQLUINTEGER dead = SQL_CD_FALSE;
  const SQLRETURN known = SQLGetConnectAttrW(connection, SQL_ATTR_CONNECTION_DEAD, &dead, SQL_IS_UINTEGER, nullptr);
  return SQL_SUCCEEDED(known) && dead == SQL_CD_TRUE;
}

}  // namespace

Link::Link(const ConnectionString& connectionString, ConnectOptions options) : options_(std::move(options)) {
  if (!environment_.allocate(SQL_NULL_HANDLE)) {
    throw ConnectionRefused(0, workbench::messages::noDriverManager());
  }
  SQLSetEnvAttr(environment_.get(), SQL_ATTR_ODBC_VERSION, number(SQL_OV_ODBC3), SQL_IS_UINTEGER);
  const auto refuse = [&](SQLSMALLINT type, SQLHANDLE handle) {
    const auto diagnostics = diagnosticsOf(type, handle);
    throw ConnectionRefused(diagnostics.empty() ? 0 : diagnostics.front().number,
                            describeRefusal(diagnostics).changed([&](const std::string& text) {
                              return connectionString.withoutPasswordIn(text);
                            }));
  };
  if (!connection_.allocate(environment_.get())) refuse(SQL_HANDLE_ENV, environment_.get());
  SQLSetConnectAttrW(connection_.get(), SQL_ATTR_LOGIN_TIMEOUT, number(options_.connectionTimeout), SQL_IS_UINTEGER);
  SQLSetConnectAttrW(connection_.get(), SQL_ATTR_CONNECTION_TIMEOUT, number(options_.commandTimeout), SQL_IS_UINTEGER);
  WideText text = toWide(connectionString.without(systemTablesKeyword));
  SQLSMALLINT length = 0;
  const SQLRETURN result =
      SQLDriverConnectW(connection_.get(), nullptr, text.data(), static_cast<SQLSMALLINT>(text.size()), nullptr, 0,
                        &length, SQL_DRIVER_NOPROMPT);
  if (!SQL_SUCCEEDED(result)) refuse(SQL_HANDLE_DBC, connection_.get());
}

Link::~Link() {
  // A connection that was never opened, or is lost, answers with an error that says nothing new.
  SQLDisconnect(connection_.get());
}

void Link::requireConnection() const {
  if (lost_) throw LostConnection(*lost_);
}

void Link::fail(SQLSMALLINT handleType, SQLHANDLE handle) {
  const auto diagnostics = diagnosticsOf(handleType, handle);
  if (tellLostConnection(diagnostics) || isDead(connection_.get())) lost_ = describeLoss(diagnostics);
  requireConnection();
  tsql::endIfStopped();
  throw errorOf(diagnostics);
}

void Link::tellMessages(SQLHANDLE statement) const {
  if (!options_.messages) return;
  for (const Diagnostic& message : diagnosticsOf(SQL_HANDLE_STMT, statement))
    options_.messages(message);
}

std::string Link::sent(std::string_view sql) const {
  std::string text = engine_.rewritten(sql);
  if (options_.rewritten && text != sql) options_.rewritten(text);
  return text;
}

Batch::Batch(std::shared_ptr<Link> link, std::string_view sql) : link_(std::move(link)) {
  link_->requireConnection();
  tsql::endIfStopped();
  if (!statement_.allocate(link_->handle())) link_->fail(SQL_HANDLE_DBC, link_->handle());
  SQLSetStmtAttrW(statement_.get(), SQL_ATTR_QUERY_TIMEOUT, number(link_->commandTimeout()), SQL_IS_UINTEGER);
  // The text goes as it stands: braces in it are no escapes of ODBC's.
  SQLSetStmtAttrW(statement_.get(), SQL_ATTR_NOSCAN, number(SQL_NOSCAN_ON), SQL_IS_UINTEGER);
  cancellation_.emplace(statement_.get());
  WideText text = toWide(link_->sent(sql));
  // "No data" tells that a statement changed no rows, which is no failure.
  check(SQLExecDirectW(statement_.get(), text.data(), static_cast<SQLINTEGER>(text.size())));
  atResult();
}

void Batch::atResult() {
  check(SQLNumResultCols(statement_.get(), &columnCount_));
}

std::int64_t Batch::rowCount() {
  SQLLEN count = -1;
  check(SQLRowCount(statement_.get(), &count));
  return count;
}

bool Batch::fetch() {
  link_->requireConnection();
  tsql::endIfStopped();
  return check(SQLFetch(statement_.get()));
}

bool Batch::nextResult() {
  link_->requireConnection();
  if (!check(SQLMoreResults(statement_.get()))) return false;
  atResult();
  return true;
}

bool Batch::nextRows() {
  while (nextResult()) {
    if (hasRows()) return true;
  }
  return false;
}

bool Batch::check(SQLRETURN result) {
  if (checkQuietly(result) == SQL_SUCCESS_WITH_INFO) link_->tellMessages(statement_.get());
  return result != SQL_NO_DATA;
}

SQLRETURN Batch::checkQuietly(SQLRETURN result) {
  if (!SQL_SUCCEEDED(result) && result != SQL_NO_DATA) link_->fail(SQL_HANDLE_STMT, statement_.get());
  return result;
}

}  // namespace quillon::odbc
