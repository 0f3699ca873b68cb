#include "frame/quoted_list.h"

#include "frame/text.h"

namespace quillon {

std::string quotedList(std::string_view value) {
  std::string list;
  if (value.empty()) return list;
  for (bool more = true; more;) {
    const std::size_t tab = value.find('\t');
    more = tab != std::string_view::npos;
    if (!list.empty()) list += ',';
    list += '\'';
    list += trimBlanks(value.substr(0, tab));
    list += '\'';
    if (more) value.remove_prefix(tab + 1);
  }
  return list;
}

}  // namespace quillon
