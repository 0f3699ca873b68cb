// Forms that several answers of the interface have alike.
#pragma once

#include <chrono>
#include <string>
#include <string_view>

#include "workbench/desk/api_error.h"

namespace quillon::workbench::desk {

// {"zh", "en"}
Json inBothLanguages(std::string_view chinese, std::string_view english);
// "2024-03-31T08:15:00Z"
std::string isoTime(std::chrono::system_clock::time_point time);
// The JSON on one line. What comes from an account may be no UTF-8: such bytes become U+FFFD.
std::string lineOf(const Json& json);

}  // namespace quillon::workbench::desk
