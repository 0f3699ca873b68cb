// Statements as they compare between runs.
#pragma once

#include <cctype>
#include <string>
#include <string_view>

namespace quillon::faults {

// The text without what is new in each run: the numbers of work tables.
inline std::string withoutNumbers(std::string text) {
  for (const std::string_view before : {"77u", "_FXDetail_", "_FXDetail2_"}) {
    for (std::size_t at = text.find(before); at != std::string::npos; at = text.find(before, at + 1)) {
      const std::size_t start = at + before.size();
      std::size_t end = start;
      while (end < text.size() && std::isdigit(static_cast<unsigned char>(text[end])) != 0)
        ++end;
      text.erase(start, end - start);
    }
  }
  return text;
}

}  // namespace quillon::faults
