// Text as ODBC's Unicode functions take it: UTF-16.
#pragma once

#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "workbench/odbc/api.h"

namespace quillon::odbc {

using WideText = std::vector<SQLWCHAR>;

// UTF-8 to UTF-16 and back. Half of a surrogate pair survives both ways, as the three bytes of its surrogate; a byte
// that is no UTF-8 becomes U+FFFD.
WideText toWide(std::string_view text);
std::string toUtf8(std::span<const SQLWCHAR> text);

}  // namespace quillon::odbc
