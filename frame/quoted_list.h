// The quoted list: how a filter value with several selections becomes the inside of an SQL "In (...)".
#pragma once

#include <string>
#include <string_view>

namespace quillon {

// Takes a filter item's value, whose selections are separated by TAB characters. Trims blanks on both sides of each
// selection, puts it in single quotes and joins them with ",": "01<TAB> 02 " gives '01','02'. An empty selection gives
// two quotes, an empty value an empty list. A quote inside a selection stays as it is and so breaks the statement: the
// filter object's text is passed on unchanged, on purpose. The caller writes the brackets.
std::string quotedList(std::string_view value);

}  // namespace quillon
