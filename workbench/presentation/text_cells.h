// Text on a terminal: how many cells it takes, and how it is brought to a width.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace quillon::workbench {

// Takes the first character off the front of `text` (UTF-8, not empty). A byte that begins no character is given as
// U+FFFD, one byte at a time; an unpaired surrogate is given as it is.
char32_t takeCharacter(std::string_view& text);

// The cells that `text` takes on a terminal: two for a Chinese character or a full-width sign, none for a combining
// mark.
std::size_t cellWidth(std::string_view text);

// `text` as one line: each control character becomes a blank.
std::string oneLine(std::string_view text);

// The front of `text` that fits in `cells`; what was cut is marked with `mark`, which is left out where even that does
// not fit.
std::string shortened(std::string_view text, std::size_t cells, std::string_view mark = "...");

}  // namespace quillon::workbench
