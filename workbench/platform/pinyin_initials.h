// The first letters of Chinese characters in pinyin, by which people look names up: "xbk" for 线边库.
#pragma once

#include <string_view>

namespace quillon::workbench {

// The first letters of all readings that the character has, in the order of the alphabet: "cz" for 重 (chong, zhong).
// Empty for what is no Chinese character, or has no reading that is known.
std::string_view pinyinInitials(char32_t character);

}  // namespace quillon::workbench
