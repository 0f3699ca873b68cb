// How an account is named: the SOURCE argument of the command line and the connection string of the login.
#pragma once

#include <filesystem>
#include <memory>
#include <string>
#include <string_view>

#include "workbench/odbc/odbc_database.h"
#include "workbench/tsql/engine/engine.h"

namespace quillon::workbench {

// The path that the UTF-8 text `text` names, and back.
std::filesystem::path pathFromUtf8(std::string_view text);
std::string utf8FromPath(const std::filesystem::path& path);

// Whether `source` is a connection string to a database server, ADO's or ODBC's: one with another keyword than those
// that accountFile() takes.
bool namesServer(std::string_view source);

// The account file that `source` names: a file, or a connection string whose "Data Source" is one (the value may stand
// in double quotes; a "PWD" or "Password" beside it is ignored, an embedded account has none). Throws
// std::invalid_argument, saying what to do, for a server's connection string and an empty name.
std::filesystem::path accountFile(std::string_view source);

// The connection string of the account in `file`, as the login's OrvDbName: Data Source="FILE".
std::string connectionString(const std::filesystem::path& file);

// The connection string of the account that `source` names: a server's as it stands, a file's as above.
std::string accountConnection(std::string_view source);

// A connection to the account that `source` names: a file in that mode, a server (an ODBC connection string) with those
// options. Throws tsql::SqlError when it cannot be opened, and std::invalid_argument as accountFile() does, and for a
// connection string that is not ODBC's.
std::unique_ptr<tsql::Database> openDatabase(std::string_view source, tsql::OpenMode mode,
                                             odbc::ConnectOptions options = {});

}  // namespace quillon::workbench
