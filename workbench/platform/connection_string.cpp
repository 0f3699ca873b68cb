#include "workbench/platform/connection_string.h"

#include <algorithm>

#include "frame/text.h"

namespace quillon::workbench {

namespace {

// The length of the "keyword=value" at the front of `text`, without the semicolon behind it.
std::size_t partLength(std::string_view text) {
  std::size_t at = text.find_first_of("=;");
  if (at == std::string_view::npos || text[at] == ';') return std::min(at, text.size());
  at = text.find_first_not_of(' ', at + 1);
  if (at == std::string_view::npos) return text.size();
  const char opening = text[at];
  if (opening == '"' || opening == '\'' || opening == '{') {
    const char closing = opening == '{' ? '}' : opening;
    // A doubled closing mark stands for the mark itself.
    for (++at; at < text.size(); ++at) {
      if (text[at] != closing) continue;
      if (at + 1 < text.size() && text[at + 1] == closing) {
        ++at;
      } else {
        break;
      }
    }
    if (at >= text.size()) return text.size();
  }
  return std::min(text.find(';', at), text.size());
}

bool isPassword(std::string_view part) {
  const std::size_t equals = part.find('=');
  if (equals == std::string_view::npos) return false;
  const std::string_view keyword = trimBlanks(part.substr(0, equals));
  return equalIgnoringCase(keyword, "pwd") || equalIgnoringCase(keyword, "password");
}

}  // namespace

std::string withoutPassword(std::string_view connectionString) {
  std::string shown;
  while (true) {
    const std::string_view part = connectionString.substr(0, partLength(connectionString));
    shown += isPassword(part) ? "PWD=***" : part;
    if (part.size() == connectionString.size()) return shown;
    shown += ';';
    connectionString.remove_prefix(part.size() + 1);
  }
}

}  // namespace quillon::workbench
