#include "workbench/presentation/text_cells.h"

#include <algorithm>
#include <array>

#include "workbench/tsql/values/text.h"

namespace quillon::workbench {

namespace {

struct Range {
  char32_t first;
  char32_t last;
};

constexpr bool inside(const Range& range, char32_t character) {
  return character >= range.first && character <= range.last;
}

// Blocks whose characters are wide in East Asian typography.
constexpr std::array wideRanges = {
    Range{0x1100, 0x115F},   Range{0x2E80, 0x303E},   Range{0x3041, 0x33FF}, Range{0x3400, 0x4DBF},
    Range{0x4E00, 0x9FFF},   Range{0xA000, 0xA4CF},   Range{0xAC00, 0xD7A3}, Range{0xF900, 0xFAFF},
    Range{0xFE30, 0xFE4F},   Range{0xFF01, 0xFF60},   Range{0xFFE0, 0xFFE6}, Range{0x1F300, 0x1F64F},
    Range{0x1F900, 0x1F9FF}, Range{0x20000, 0x3FFFD},
};
// Combining marks, joiners and variation selectors.
constexpr std::array zeroRanges = {Range{0x0300, 0x036F}, Range{0x200B, 0x200F}, Range{0xFE00, 0xFE0F}};

std::size_t cells(char32_t character) {
  const auto holds = [character](const Range& range) { return inside(range, character); };
  if (character < 0x300) return 1;
  if (std::ranges::any_of(zeroRanges, holds)) return 0;
  return std::ranges::any_of(wideRanges, holds) ? 2 : 1;
}

}  // namespace

char32_t takeCharacter(std::string_view& text) {
  constexpr char32_t replacement = 0xFFFD;
  constexpr char32_t lastCharacter = 0x10FFFF;
  std::size_t length = 0;
  const char32_t character = tsql::text::next(text, length);
  text.remove_prefix(length);
  return character <= lastCharacter ? character : replacement;
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

std::string shortened(std::string_view text, std::size_t cellCount) {
  if (cellWidth(text) <= cellCount) return std::string(text);
  constexpr std::string_view mark = "...";
  const std::size_t room = cellCount > mark.size() ? cellCount - mark.size() : 0;
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
