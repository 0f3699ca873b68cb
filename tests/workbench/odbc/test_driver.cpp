// The driver's side of ODBC: handles, results in order, values in the C types that are asked for. No function here calls
// another one of ODBC's: the program's driver manager has the same names.
#include "tests/workbench/odbc/test_driver.h"

#include <algorithm>
#include <cstring>
#include <string_view>

namespace {

using namespace quillon::odbc::test;

struct Object {
  virtual ~Object() = default;
  std::vector<Record> records;  // of the last call
};

struct Environment : Object {};

struct Connection : Object {
  std::unique_ptr<ServerSession> session;
  std::vector<std::string> attributes;  // set before the session is there
  const Object* busy = nullptr;         // the statement whose results are not all read
};

struct Statement : Object {
  explicit Statement(Connection& owner) : connection(owner) {}
  Statement(const Statement&) = delete;
  Statement& operator=(const Statement&) = delete;
  ~Statement() override { release(); }

  // The connection is free for another statement.
  void release() {
    if (connection.busy == this) connection.busy = nullptr;
  }
  const Result& result() const { return results.at(current); }

  Connection& connection;
  std::vector<Result> results;
  std::size_t current = 0;
  std::size_t nextRow = 0;
  std::size_t offset = 0;   // how much of the present column's text was given
  SQLUSMALLINT column = 0;  // the column that `offset` is of
};

Object& objectOf(SQLHANDLE handle) {
  return *static_cast<Object*>(handle);
}
Statement& statementOf(SQLHSTMT handle) {
  return static_cast<Statement&>(objectOf(handle));
}

SQLRETURN failWith(Object& object, std::vector<Record> records) {
  object.records = std::move(records);
  return SQL_ERROR;
}

SQLRETURN succeedWith(Object& object, std::vector<Record> messages) {
  object.records = std::move(messages);
  return object.records.empty() ? SQL_SUCCESS : SQL_SUCCESS_WITH_INFO;
}

SQLRETURN failWith(Object& object, const char16_t* state, const char16_t* text) {
  return failWith(object, {{.state = state, .text = text}});
}

std::u16string wide(const SQLWCHAR* text, SQLINTEGER length) {
  std::u16string result;
  for (SQLINTEGER i = 0; length == SQL_NTS ? text[i] != 0 : i < length; ++i)
    result += static_cast<char16_t>(text[i]);
  return result;
}

// Copies `text` with a zero behind it into `room` units; gives its whole length in units.
SQLSMALLINT copyOut(std::u16string_view text, SQLWCHAR* buffer, SQLSMALLINT room) {
  if (buffer != nullptr && room > 0) {
    const auto count = std::min(text.size(), static_cast<std::size_t>(room - 1));
    std::copy_n(text.begin(), count, buffer);
    buffer[count] = 0;
  }
  return static_cast<SQLSMALLINT>(text.size());
}

std::string numberText(SQLPOINTER value) {
  return std::to_string(reinterpret_cast<std::uintptr_t>(value));
}

void note(Connection& connection, std::string text) {
  if (connection.session) {
    connection.session->note(text);
  } else {
    connection.attributes.push_back(std::move(text));
  }
}

// The statement stands at a result.
SQLRETURN beginResult(Statement& statement) {
  statement.nextRow = 0;
  statement.column = 0;
  if (statement.current >= statement.results.size()) return SQL_SUCCESS;
  const Result& result = statement.result();
  if (!result.error.empty() && !result.failsBehindRows) return failWith(statement, result.error);
  return succeedWith(statement, result.messages);
}

template <typename Plain>
SQLRETURN givePlain(const Plain& value, SQLPOINTER buffer, SQLLEN* length) {
  std::memcpy(buffer, &value, sizeof value);
  *length = static_cast<SQLLEN>(sizeof value);
  return SQL_SUCCESS;
}

// A text in pieces, each with a zero behind it.
SQLRETURN giveText(Statement& statement, const std::u16string& text, SQLPOINTER buffer, SQLLEN bytes, SQLLEN* length) {
  if (statement.offset > text.size()) return SQL_NO_DATA;
  const std::size_t left = text.size() - statement.offset;
  const std::size_t room = static_cast<std::size_t>(bytes) / sizeof(SQLWCHAR) - 1;
  const bool more = left > room;
  const std::size_t count = std::min(left, room);
  auto* units = static_cast<SQLWCHAR*>(buffer);
  std::copy_n(text.begin() + static_cast<std::ptrdiff_t>(statement.offset), count, units);
  units[count] = 0;
  *length = more && !statement.connection.session->tellsLength() ? SQL_NO_TOTAL
                                                                 : static_cast<SQLLEN>(left * sizeof(SQLWCHAR));
  statement.offset = more ? statement.offset + count : text.size() + 1;
  if (!more) return SQL_SUCCESS;
  return succeedWith(statement, {{.state = u"01004", .text = u"String data, right truncated"}});
}

}  // namespace

extern "C" {

SQLRETURN SQL_API SQLAllocHandle(SQLSMALLINT type, SQLHANDLE parent, SQLHANDLE* handle) {
  Object* object = nullptr;
  switch (type) {
    case SQL_HANDLE_ENV:
      object = new Environment;
      break;
    case SQL_HANDLE_DBC:
      object = new Connection;
      break;
    case SQL_HANDLE_STMT:
      object = new Statement(static_cast<Connection&>(objectOf(parent)));
      break;
    default:
      return failWith(objectOf(parent), u"HYC00", u"No such handle");
  }
  *handle = object;
  return SQL_SUCCESS;
}

SQLRETURN SQL_API SQLFreeHandle(SQLSMALLINT, SQLHANDLE handle) {
  delete &objectOf(handle);
  return SQL_SUCCESS;
}

SQLRETURN SQL_API SQLFreeStmt(SQLHSTMT, SQLUSMALLINT) {
  return SQL_SUCCESS;
}

SQLRETURN SQL_API SQLSetEnvAttr(SQLHENV, SQLINTEGER, SQLPOINTER, SQLINTEGER) {
  return SQL_SUCCESS;
}

SQLRETURN SQL_API SQLSetConnectAttrW(SQLHDBC handle, SQLINTEGER attribute, SQLPOINTER value, SQLINTEGER) {
  note(static_cast<Connection&>(objectOf(handle)),
       "connection attribute " + std::to_string(attribute) + " = " + numberText(value));
  return SQL_SUCCESS;
}

SQLRETURN SQL_API SQLSetStmtAttrW(SQLHSTMT handle, SQLINTEGER attribute, SQLPOINTER value, SQLINTEGER) {
  note(statementOf(handle).connection, "statement attribute " + std::to_string(attribute) + " = " + numberText(value));
  return SQL_SUCCESS;
}

SQLRETURN SQL_API SQLGetStmtAttrW(SQLHSTMT handle, SQLINTEGER, SQLPOINTER, SQLINTEGER, SQLINTEGER*) {
  return failWith(objectOf(handle), u"HYC00", u"No such attribute");
}

SQLRETURN SQL_API SQLGetInfoW(SQLHDBC, SQLUSMALLINT, SQLPOINTER value, SQLSMALLINT bytes, SQLSMALLINT* length) {
  // "Closed on commit", "no" and the empty text alike.
  if (value != nullptr && bytes > 0) std::memset(value, 0, static_cast<std::size_t>(bytes));
  if (length != nullptr) *length = 0;
  return SQL_SUCCESS;
}

SQLRETURN SQL_API SQLDriverConnectW(SQLHDBC handle, SQLHWND, SQLWCHAR* text, SQLSMALLINT length, SQLWCHAR* out,
                                    SQLSMALLINT room, SQLSMALLINT* outLength, SQLUSMALLINT) {
  auto& connection = static_cast<Connection&>(objectOf(handle));
  std::vector<Record> refusal;
  connection.session = (*quillonTestServer())->connect(wide(text, length), refusal);
  if (!connection.session) return failWith(connection, refusal);
  for (const std::string& attribute : connection.attributes)
    connection.session->note(attribute);
  const SQLSMALLINT whole = copyOut(u"", out, room);
  if (outLength != nullptr) *outLength = whole;
  return SQL_SUCCESS;
}

SQLRETURN SQL_API SQLDisconnect(SQLHDBC handle) {
  auto& connection = static_cast<Connection&>(objectOf(handle));
  connection.session->note("disconnect");
  connection.session.reset();
  return SQL_SUCCESS;
}

SQLRETURN SQL_API SQLExecDirectW(SQLHSTMT handle, SQLWCHAR* text, SQLINTEGER length) {
  Statement& statement = statementOf(handle);
  if (statement.connection.busy != nullptr)
    return failWith(statement, u"HY000", u"Connection is busy with results for another command");
  statement.results = statement.connection.session->run(wide(text, length));
  statement.current = 0;
  statement.connection.busy = &statement;
  const SQLRETURN begun = beginResult(statement);
  if (begun != SQL_SUCCESS || statement.results.empty()) return begun;
  // A statement that changed no rows is told so.
  return statement.result().columns.empty() && statement.result().rowCount == 0 ? SQLRETURN{SQL_NO_DATA} : begun;
}

SQLRETURN SQL_API SQLNumResultCols(SQLHSTMT handle, SQLSMALLINT* count) {
  const Statement& statement = statementOf(handle);
  *count = statement.results.empty() ? SQLSMALLINT{0} : static_cast<SQLSMALLINT>(statement.result().columns.size());
  return SQL_SUCCESS;
}

SQLRETURN SQL_API SQLDescribeColW(SQLHSTMT handle, SQLUSMALLINT number, SQLWCHAR* name, SQLSMALLINT room,
                                  SQLSMALLINT* length, SQLSMALLINT* type, SQLULEN* size, SQLSMALLINT* digits,
                                  SQLSMALLINT* nullable) {
  const ResultColumn& column = statementOf(handle).result().columns.at(number - 1U);
  *length = copyOut(column.name, name, room);
  *type = column.sqlType;
  *size = column.size;
  *digits = column.digits;
  *nullable = SQL_NULLABLE_UNKNOWN;
  return SQL_SUCCESS;
}

SQLRETURN SQL_API SQLColAttributeW(SQLHSTMT handle, SQLUSMALLINT number, SQLUSMALLINT field, SQLPOINTER text,
                                   SQLSMALLINT bytes, SQLSMALLINT* length, SQLLEN*) {
  Statement& statement = statementOf(handle);
  if (field != SQL_DESC_TYPE_NAME) return failWith(statement, u"HY091", u"No such field");
  const ResultColumn& column = statement.result().columns.at(number - 1U);
  const auto room = static_cast<SQLSMALLINT>(static_cast<std::size_t>(bytes) / sizeof(SQLWCHAR));
  const auto units = static_cast<std::size_t>(copyOut(column.typeName, static_cast<SQLWCHAR*>(text), room));
  *length = static_cast<SQLSMALLINT>(units * sizeof(SQLWCHAR));
  return SQL_SUCCESS;
}

SQLRETURN SQL_API SQLRowCount(SQLHSTMT handle, SQLLEN* count) {
  const Statement& statement = statementOf(handle);
  *count = statement.results.empty() ? -1 : static_cast<SQLLEN>(statement.result().rowCount);
  return SQL_SUCCESS;
}

SQLRETURN SQL_API SQLFetch(SQLHSTMT handle) {
  Statement& statement = statementOf(handle);
  statement.column = 0;
  const Result& result = statement.result();
  if (statement.nextRow < result.rows.size()) {
    ++statement.nextRow;
    return SQL_SUCCESS;
  }
  return result.failsBehindRows ? failWith(statement, result.error) : SQLRETURN{SQL_NO_DATA};
}

SQLRETURN SQL_API SQLMoreResults(SQLHSTMT handle) {
  Statement& statement = statementOf(handle);
  if (statement.current + 1 >= statement.results.size()) {
    statement.release();
    return SQL_NO_DATA;
  }
  ++statement.current;
  return beginResult(statement);
}

SQLRETURN SQL_API SQLGetData(SQLHSTMT handle, SQLUSMALLINT number, SQLSMALLINT type, SQLPOINTER buffer, SQLLEN bytes,
                             SQLLEN* length) {
  Statement& statement = statementOf(handle);
  const Cell& cell = statement.result().rows.at(statement.nextRow - 1).at(number - 1U);
  if (number < statement.column) return failWith(statement, u"07009", u"Columns are read in their order");
  if (number > statement.column) statement.offset = 0;
  statement.column = number;
  if (std::holds_alternative<std::monostate>(cell)) {
    *length = SQL_NULL_DATA;
    return SQL_SUCCESS;
  }
  if (const auto* integer = std::get_if<std::int64_t>(&cell); integer != nullptr && type == SQL_C_SBIGINT)
    return givePlain(*integer, buffer, length);
  if (const auto* real = std::get_if<double>(&cell); real != nullptr && type == SQL_C_DOUBLE)
    return givePlain(*real, buffer, length);
  if (const auto* time = std::get_if<SQL_TIMESTAMP_STRUCT>(&cell); time != nullptr && type == SQL_C_TYPE_TIMESTAMP)
    return givePlain(*time, buffer, length);
  if (const auto* text = std::get_if<std::u16string>(&cell); text != nullptr && type == SQL_C_WCHAR)
    return giveText(statement, *text, buffer, bytes, length);
  if (const auto* digits = std::get_if<std::string>(&cell);
      digits != nullptr && type == SQL_C_CHAR && static_cast<SQLLEN>(digits->size()) < bytes) {
    std::memcpy(buffer, digits->c_str(), digits->size() + 1);
    *length = static_cast<SQLLEN>(digits->size());
    return SQL_SUCCESS;
  }
  return failWith(statement, u"07006", u"Restricted data type attribute violation");
}

SQLRETURN SQL_API SQLGetConnectAttrW(SQLHDBC handle, SQLINTEGER attribute, SQLPOINTER value, SQLINTEGER, SQLINTEGER*) {
  auto& connection = static_cast<Connection&>(objectOf(handle));
  if (attribute != SQL_ATTR_CONNECTION_DEAD || !connection.session)
    return failWith(connection, u"HYC00", u"Optional feature not implemented");
  const SQLUINTEGER dead = connection.session->isDead() ? SQL_CD_TRUE : SQL_CD_FALSE;
  std::memcpy(value, &dead, sizeof dead);
  return SQL_SUCCESS;
}

SQLRETURN SQL_API SQLGetDiagRecW(SQLSMALLINT, SQLHANDLE handle, SQLSMALLINT number, SQLWCHAR* state, SQLINTEGER* native,
                                 SQLWCHAR* text, SQLSMALLINT room, SQLSMALLINT* length) {
  const auto& records = objectOf(handle).records;
  const auto index = static_cast<std::size_t>(number) - 1;
  if (index >= records.size()) return SQL_NO_DATA;
  copyOut(records[index].state, state, 6);
  *native = records[index].number;
  *length = copyOut(records[index].text, text, room);
  return *length < room ? SQL_SUCCESS : SQL_SUCCESS_WITH_INFO;
}

SQLRETURN SQL_API SQLGetDiagFieldW(SQLSMALLINT, SQLHANDLE handle, SQLSMALLINT number, SQLSMALLINT field,
                                   SQLPOINTER value, SQLSMALLINT, SQLSMALLINT*) {
  constexpr SQLSMALLINT lineField = -1154;
  const auto& records = objectOf(handle).records;
  const auto index = static_cast<std::size_t>(number) - 1;
  if (field != lineField || index >= records.size()) return SQL_NO_DATA;
  const SQLINTEGER line = records[index].line;
  std::memcpy(value, &line, sizeof line);
  return SQL_SUCCESS;
}

}  // extern "C"
