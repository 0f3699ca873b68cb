// The target of a request, taken apart.
#pragma once

#include <map>
#include <optional>
#include <string>
#include <string_view>

namespace quillon::workbench::desk {

struct Target {
  std::string path;  // decoded; begins with a slash
  std::map<std::string, std::string> query;
};

// Decodes "/path?query"; nothing for every other form, and for what has two readings: a percent sign without its two
// digits, a part of the path that is empty, "." or ".." or holds a slash, a backslash or a control character, also when
// these are encoded, a zero byte, and bytes that are not UTF-8. In the query a plus sign is a blank, and of a name that
// occurs twice the last value is taken.
std::optional<Target> readTarget(std::string_view target);

}  // namespace quillon::workbench::desk
