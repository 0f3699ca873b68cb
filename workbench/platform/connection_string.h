// Connection strings as they may be shown.
#pragma once

#include <string>
#include <string_view>

namespace quillon::workbench {

// The connection string with "PWD=***" in place of each password (keyword PWD or Password in any letter case, the value
// bare, in quotes or in braces). Everything else stays as it is. A value whose quote is not closed counts to the end.
std::string withoutPassword(std::string_view connectionString);

}  // namespace quillon::workbench
