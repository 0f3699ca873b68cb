// How a statement is put together from its lines or pieces.
#pragma once

#include <initializer_list>
#include <string>
#include <string_view>

namespace quillon {

inline constexpr std::string_view lineBreak = "\r\n";

using Lines = std::initializer_list<std::string_view>;

// Gives a statement from its lines, in order, with a line break between them. A condition or a join that this run does
// not have is an empty line, and is left out.
std::string joined(Lines lines);

// The same with a line break behind the last line too.
std::string terminated(Lines lines);

// Gives a statement that is written as pieces, with nothing between them; each piece has its own blanks and line breaks.
std::string concatenated(Lines pieces);

}  // namespace quillon
