// How a statement is put together from its lines or pieces.
#pragma once

#include <initializer_list>
#include <string>
#include <string_view>

namespace quillon {

inline constexpr std::string_view lineBreak = "\r\n";

using Lines = std::initializer_list<std::string_view>;

// A statement from its lines, in order, with a line break between them. An empty line stands for a condition or a join
// that this run does not have, and is left out.
std::string joined(Lines lines);

// The same with a line break behind the last line too.
std::string terminated(Lines lines);

// A statement that is written as pieces, with nothing between them; each piece has its own blanks and line breaks.
std::string concatenated(Lines pieces);

}  // namespace quillon
