// Who keeps an account file from being read or changed.
#pragma once

#include <string>

namespace quillon::tsql {

// The other processes that hold locks on `file` (UTF-8), as people know them: "process 4711 (quillon)", separated by
// commas. Empty when the system does not tell.
std::string lockHolders(const std::string& file);

}  // namespace quillon::tsql
