#include "workbench/odbc/connection_string.h"

#include <algorithm>

#include "frame/text.h"

namespace quillon::odbc {

namespace {

constexpr std::string_view shownPassword = "***";

// The mark that closes what `opening` opens; 0 when it opens nothing.
char closingMark(char opening) {
  if (opening == '{') return '}';
  return opening == '"' || opening == '\'' ? opening : '\0';
}

// The length of the "keyword=value" at the front of `text`, without the semicolon behind it.
std::size_t partLength(std::string_view text) {
  std::size_t at = text.find_first_of("=;");
  if (at == std::string_view::npos || text[at] == ';') return std::min(at, text.size());
  at = text.find_first_not_of(' ', at + 1);
  if (at == std::string_view::npos) return text.size();
  if (const char closing = closingMark(text[at]); closing != '\0') {
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

// The parts in order, with nothing taken off; the semicolons stand between them.
std::vector<std::string_view> partsOf(std::string_view text) {
  std::vector<std::string_view> parts;
  while (true) {
    parts.push_back(text.substr(0, partLength(text)));
    if (parts.back().size() == text.size()) return parts;
    text.remove_prefix(parts.back().size() + 1);
  }
}

bool isOf(std::string_view part, std::string_view keyword) {
  const std::size_t equals = part.find('=');
  return equals != std::string_view::npos && equalIgnoringCase(trimBlanks(part.substr(0, equals)), keyword);
}

bool isPassword(std::string_view part) {
  return isOf(part, "pwd") || isOf(part, "password");
}

// A value without its quotes or braces.
std::string unquoted(std::string_view value) {
  const char closing = value.empty() ? '\0' : closingMark(value.front());
  if (closing == '\0') return std::string(value);
  value.remove_prefix(1);
  if (value.ends_with(closing)) value.remove_suffix(1);
  std::string text(value);
  replaceAll(text, std::string(2, closing), std::string(1, closing));
  return text;
}

}  // namespace

bool hasKeyword(std::string_view connectionString, std::string_view keyword) {
  return std::ranges::any_of(partsOf(connectionString), [keyword](auto part) { return isOf(part, keyword); });
}

std::string withoutPassword(std::string_view connectionString) {
  std::string shown;
  for (const std::string_view part : partsOf(connectionString)) {
    if (part.data() != connectionString.data()) shown += ';';
    if (isPassword(part)) {
      shown.append("PWD=").append(shownPassword);
    } else {
      shown += part;
    }
  }
  return shown;
}

std::string withoutPasswordOf(std::string_view connectionString, std::string message) {
  for (const std::string_view part : partsOf(connectionString)) {
    if (!isPassword(part)) continue;
    const std::string_view written = trimBlanks(part.substr(part.find('=') + 1));
    for (const std::string& password : {std::string(written), unquoted(written)}) {
      if (!password.empty()) replaceAll(message, password, shownPassword);
    }
  }
  return message;
}

}  // namespace quillon::odbc
