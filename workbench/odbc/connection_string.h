// ODBC's and ADO's connection strings: parts "keyword=value" with semicolons between them, the value bare, in quotes or
// in braces.
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace quillon::odbc {

// Whether `connectionString` has the keyword, in any letter case.
bool hasKeyword(std::string_view connectionString, std::string_view keyword);

// The connection string with "PWD=***" in place of each password (keyword PWD or Password in any letter case).
// Everything else stays as it is. A value whose quote is not closed counts to the end.
std::string withoutPassword(std::string_view connectionString);

// `message` with "***" in place of each password that `connectionString` has, as it is written there and as it reads
// without its quotes.
std::string withoutPasswordOf(std::string_view connectionString, std::string message);

}  // namespace quillon::odbc
