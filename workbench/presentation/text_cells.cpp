#include "workbench/presentation/text_cells.h"

#include <utf8proc.h>

#include <algorithm>
#include <array>

#include "workbench/tsql/values/text.h"

namespace quillon::workbench {

namespace {

// Marks and joiners take no cell of their own. A character whose width depends on the font, in East Asian typography,
// takes one, and so does what terminals show a stand-in for: control characters and what is not assigned.
std::size_t cells(char32_t character) {
  constexpr char32_t firstMark = 0x300;
  if (character < firstMark) return 1;
  const auto code = static_cast<utf8proc_int32_t>(character);
  switch (utf8proc_category(code)) {
    case UTF8PROC_CATEGORY_MN:
    case UTF8PROC_CATEGORY_ME:
    case UTF8PROC_CATEGORY_CF:
      return 0;
    default:
      return static_cast<std::size_t>(std::max(utf8proc_charwidth(code), 1));
  }
}

}  // namespace

char32_t takeCharacter(std::string_view& text) {
  constexpr char32_t replacement = 0xFFFD;
  std::size_t length = 0;
  const char32_t character = tsql::text::next(text, length);
  text.remove_prefix(length);
  return character <= tsql::text::lastCharacter ? character : replacement;
}

std::size_t cellWidth(std::string_view text) {
  std::size_t width = 0;
  while (!text.empty())
    width += cells(takeCharacter(text));
  return width;
}

std::string oneLine(std::string_view text) {
  std::string line(text);
  std::ranges::replace_if(
      line, [](unsigned char c) { return c < ' ' || c == 0x7F; }, ' ');
  return line;
}

std::string shortened(std::string_view text, std::size_t cellCount, std::string_view mark) {
  if (cellWidth(text) <= cellCount) return std::string(text);
  const std::size_t markWidth = cellWidth(mark);
  if (markWidth > cellCount) mark = {};
  const std::size_t room = cellCount - (mark.empty() ? 0 : markWidth);
  std::string_view rest = text;
  std::size_t width = 0;
  while (true) {
    std::string_view next = rest;
    width += cells(takeCharacter(next));
    if (width > room) break;
    rest = next;
  }
  return std::string(text.substr(0, text.size() - rest.size())) + std::string(mark);
}

}  // namespace quillon::workbench
