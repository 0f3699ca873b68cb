// An ODBC driver for tests: a shared library that the driver manager loads, and that asks the test program what to
// answer. The test program is the server. As with SQL Server, a connection takes the next statement only when all results
// of the one before have been read or its handle is gone.
#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <variant>
#include <vector>

#include "workbench/odbc/api.h"

namespace quillon::odbc::test {

// A diagnostic record, with the text as a driver gives it, names of those who pass it on included.
struct Record {
  std::u16string state;  // SQLSTATE
  int number = 0;
  int line = 0;
  std::u16string text;
};

struct ResultColumn {
  std::u16string name;
  SQLSMALLINT sqlType = SQL_WVARCHAR;
  SQLULEN size = 0;
  SQLSMALLINT digits = 0;
  std::u16string typeName = {};
};

// Null, an integer, a float, the digits of an exact number, a text, a date and time.
using Cell = std::variant<std::monostate, std::int64_t, double, std::string, std::u16string, SQL_TIMESTAMP_STRUCT>;

// One result of a batch: rows, or a count, or an error.
struct Result {
  std::vector<ResultColumn> columns = {};  // empty: no rows
  std::vector<std::vector<Cell>> rows = {};
  std::int64_t rowCount = -1;         // of a result without rows
  std::vector<Record> messages = {};  // told beside
  std::vector<Record> error = {};     // not empty: the result is this failure,
  bool failsBehindRows = false;       // which comes when its rows have been read
};

// A server connection.
class ServerSession {
 public:
  virtual ~ServerSession() = default;
  virtual std::vector<Result> run(const std::u16string& sql) = 0;
  // What else is asked: attributes that are set ("connection attribute 103 = 0"), "disconnect".
  virtual void note(const std::string&) {}
  // Whether the driver knows that the connection has ended.
  virtual bool isDead() { return false; }
  // Whether the driver tells how much of a text is left (or only that there is more).
  virtual bool tellsLength() { return true; }
};

class Server {
 public:
  virtual ~Server() = default;
  // Opens a session, or gives none and fills `refusal`.
  virtual std::unique_ptr<ServerSession> connect(const std::u16string& connectionString,
                                                 std::vector<Record>& refusal) = 0;
};

// The server that the driver connects to; the test program sets it before it connects.
extern "C" Server** quillonTestServer();

}  // namespace quillon::odbc::test
