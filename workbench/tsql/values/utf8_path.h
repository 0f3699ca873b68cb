// File names: UTF-8 in the workbench's own texts, whatever the system has at its calls.
#pragma once

#include <filesystem>
#include <string>
#include <string_view>

namespace quillon {

// The path that the UTF-8 text `text` names.
inline std::filesystem::path pathFromUtf8(std::string_view text) {
  return {std::u8string(text.begin(), text.end())};
}

// `path` as UTF-8 text.
inline std::string utf8FromPath(const std::filesystem::path& path) {
  const std::u8string text = path.u8string();
  return {text.begin(), text.end()};
}

}  // namespace quillon
