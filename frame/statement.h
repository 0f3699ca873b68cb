// How a statement is put together from its lines.
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

}  // namespace quillon
