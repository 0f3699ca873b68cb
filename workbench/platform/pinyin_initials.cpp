#include "workbench/platform/pinyin_initials.h"

#include <algorithm>
#include <cstddef>
#include <iterator>
#include <utility>

namespace quillon::workbench {

namespace {

// A table of groups and two digits for each character take 60 kB; a text for each would take ten times as much.
#include "workbench/platform/pinyin_initials.inc"

constexpr std::size_t digitsOfGroup = 2;

}  // namespace

std::string_view pinyinInitials(char32_t character) {
  if (character < firstCharacter) return {};
  const std::size_t at = (character - firstCharacter) * digitsOfGroup;
  if (at < groupNumbers.size()) {
    const std::size_t high = groupDigits.find(groupNumbers[at]), low = groupDigits.find(groupNumbers[at + 1]);
    return groups[high * groupDigits.size() + low];
  }
  const auto* const rare =
      std::ranges::lower_bound(rareCharacters, character, {}, &std::pair<char32_t, std::string_view>::first);
  return rare != std::end(rareCharacters) && rare->first == character ? rare->second : std::string_view();
}

}  // namespace quillon::workbench
