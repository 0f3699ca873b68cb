#include "workbench/presentation/html_text.h"

#include <array>
#include <cstdio>

#include "workbench/presentation/text_cells.h"

namespace quillon::workbench {

std::string escaped(std::string_view text) {
  std::string result;
  for (const char c : text) {
    switch (c) {
      case '&':
        result += "&amp;";
        break;
      case '<':
        result += "&lt;";
        break;
      case '>':
        result += "&gt;";
        break;
      default:
        result += static_cast<unsigned char>(c) < ' ' || c == '\x7f' ? ' ' : c;
    }
  }
  return result;
}

std::string attributeText(std::string_view text) {
  std::string result;
  for (const char c : escaped(text))
    result.append(c == '"' ? std::string_view("&quot;") : std::string_view(&c, 1));
  return result;
}

std::string styleString(std::string_view text) {
  std::string result = "\"";
  for (const char c : text) {
    const auto byte = static_cast<unsigned char>(c);
    if (byte >= 0x80 || std::string_view("\"\\<>&").find(c) == std::string_view::npos) {
      result += byte < ' ' || byte == 0x7f ? ' ' : c;
      continue;
    }
    constexpr std::size_t size = 8;
    std::array<char, size> code{};
    std::snprintf(code.data(), code.size(), "\\%06x", byte);
    result += code.data();
  }
  return result + '"';
}

int shownWidth(std::string_view text) {
  constexpr int fullWidth = 100, capital = 72, mark = 32, other = 58;
  int width = 0;
  while (!text.empty()) {
    const std::string_view rest = text;
    const char32_t character = takeCharacter(text);
    const std::size_t cells = cellWidth(rest.substr(0, rest.size() - text.size()));
    if (cells != 1) {
      width += cells == 0 ? 0 : fullWidth;
    } else if ((character >= U'A' && character <= U'Z') || character == U'm' || character == U'w') {
      width += capital;
    } else {
      width += std::u32string_view(U" ,.:;'|!-()/").find(character) == std::u32string_view::npos ? other : mark;
    }
  }
  return width;
}

}  // namespace quillon::workbench
