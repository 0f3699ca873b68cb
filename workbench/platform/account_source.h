// How an account is named: the SOURCE argument of the command line and the connection string of the login.
#pragma once

#include <filesystem>
#include <string>
#include <string_view>

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

}  // namespace quillon::workbench
