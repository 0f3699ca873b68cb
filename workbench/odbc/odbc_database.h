// An account on a server: SQL Server 2012 or later, and whatever else speaks its dialect and has an ODBC driver.
#pragma once

#include <functional>
#include <memory>
#include <string>
#include <string_view>

#include "workbench/odbc/connection_string.h"
#include "workbench/tsql/values/database.h"

namespace quillon::odbc {

// A message of the driver manager, the driver or the server.
struct Diagnostic {
  std::string state;  // SQLSTATE, such as "42S02"
  int number = 0;     // the server's own; 0 when the driver or the driver manager speaks
  int line = 0;       // of the batch, from 1; 0 when the driver does not tell
  std::string text;   // without the names of those who passed it on ("[unixODBC][FreeTDS][SQL Server]")
};

struct ConnectOptions {
  int connectionTimeout = 0;  // in seconds, for opening; 0 waits without limit
  int commandTimeout = 0;     // in seconds, for each batch; 0 waits without limit
  // Takes the server's messages that are no errors (warnings, what Print prints); may be empty.
  std::function<void(const Diagnostic&)> messages = {};
  // Takes a batch in the form in which it is sent, before that, where the server is sent another one than was asked for
  // (server_engine.h); may be empty.
  std::function<void(std::string_view)> rewritten = {};
};

// Connects with an ODBC connection string, "Driver={...};Server=...;Database=...;UID=...;PWD=...". Throws tsql::SqlError
// with one line that says what to do; the password is not in it.
//
// Of the connection:
//   - The server is asked once what it is. What it does not take goes in another form (server_engine.h).
//   - Statements go as UTF-16, values come as UTF-16, exact numbers as text: nothing is converted through a code page or
//     a double. money, decimal, int, bigint, bit, float, date and time come as the types of the engine, anything else as
//     nvarchar. Texts come whole, however long.
//   - A result set is read row by row as the server sends it. Row counts, and result sets that nobody asked for, are
//     passed over.
//   - An error has the server's number, line and text, and behind the text everything else that was said.
//   - When the connection is lost, the call that notices throws tsql::ConnectionLost, and so does every later one,
//     without a word to the driver.
//   - A cursor may outlive the connection object; the connection stays open until the last of them goes.
std::unique_ptr<tsql::Database> connect(const ConnectionString& connectionString, ConnectOptions options);

}  // namespace quillon::odbc
