// The collation Chinese_PRC_CI_AS: letter case, width (full or half), kana form and trailing blanks do not count,
// accents do. Order: blank, symbols ('_' first), digits, letters, kana, Chinese characters by pinyin. A hyphen and an
// apostrophe count only between texts that are equal without them.
#pragma once

#include <cstdint>
#include <string_view>

namespace quillon::tsql {

inline constexpr const char* collationName = "Chinese_PRC_CI_AS";

// Below, equal to or above zero as a sorts to b. A total order on any bytes, malformed UTF-8 included.
int compareText(std::string_view a, std::string_view b);
inline bool equalText(std::string_view a, std::string_view b) {
  return compareText(a, b) == 0;
}

// The same for texts that are equal by the collation; for others as good as never.
std::uint64_t textFingerprint(std::string_view text);

// The weight of one character: the same for characters that the collation treats as equal.
std::uint32_t characterWeight(char32_t character);

}  // namespace quillon::tsql
