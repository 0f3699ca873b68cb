#include "workbench/odbc/connection_string.h"

#include <algorithm>

#include "frame/text.h"

namespace quillon::odbc {

namespace {

using Attribute = ConnectionString::Attribute;

constexpr std::string_view shownPassword = "***";

// The mark that closes what `opening` opens; 0 when it opens nothing.
char closingMark(char opening) {
  if (opening == '{') return '}';
  return opening == '"' || opening == '\'' ? opening : '\0';
}

// The mark that closes the value at the front of `value`; 0 for a bare value.
char closingMarkOf(std::string_view value) {
  return value.empty() ? '\0' : closingMark(value.front());
}

// Takes the value at the front of `rest`, which begins with the mark that opens it, off together with its marks. Gives
// it without them.
std::string takeMarked(std::string_view& rest) {
  const char closing = closingMark(rest.front());
  rest.remove_prefix(1);
  std::string value;
  while (!rest.empty()) {
    const char c = rest.front();
    rest.remove_prefix(1);
    if (c == closing) {
      if (!rest.starts_with(closing)) return value;
      rest.remove_prefix(1);
    }
    value += c;
  }
  return value;
}

// Takes the part at the front of `text` off, with the semicolon behind it, and reads it. `written` is the part as it
// stands, without the semicolon.
Attribute takeAttribute(std::string_view& text, std::string_view& written) {
  const std::string_view whole = text;
  Attribute attribute;
  const std::size_t mark = std::min(text.find_first_of("=;"), text.size());
  const bool hasValue = mark < text.size() && text[mark] == '=';
  if (hasValue) attribute.keyword = trimBlanks(text.substr(0, mark));
  text.remove_prefix(hasValue ? mark + 1 : 0);
  std::string_view value = text.substr(std::min(text.find_first_not_of(' '), text.size()));
  const bool marked = hasValue && closingMarkOf(value) != '\0';
  if (marked) {
    attribute.value = takeMarked(value);
    text = value;
  }
  const std::size_t end = std::min(text.find(';'), text.size());
  if (!marked) attribute.value = trimBlanks(text.substr(0, end));
  written = whole.substr(0, whole.size() - text.size() + end);
  text.remove_prefix(std::min(end + 1, text.size()));
  return attribute;
}

// Calls `action` with each part as it stands and with what it says, in order, empty places among them.
template <typename Action>
void forEachPart(std::string_view text, Action action) {
  while (true) {
    const std::string_view rest = text;
    std::string_view written;
    const Attribute attribute = takeAttribute(text, written);
    action(written, attribute);
    // A semicolon at the very end has an empty place behind it.
    if (written.size() == rest.size()) return;
  }
}

}  // namespace

bool Attribute::is(std::string_view name) const {
  return equalIgnoringCase(keyword, name);
}

bool Attribute::isPassword() const {
  return is("pwd") || is("password");
}

ConnectionString::ConnectionString(std::string_view text) : text_(text) {
  forEachPart(text_, [this](std::string_view written, const Attribute& attribute) {
    if (!trimBlanks(written).empty()) attributes_.push_back(attribute);
  });
}

bool ConnectionString::has(std::string_view keyword) const {
  return std::ranges::any_of(attributes_, [keyword](const Attribute& attribute) { return attribute.is(keyword); });
}

bool ConnectionString::namesDriver() const {
  return has("driver") || has("dsn") || has("filedsn");
}

std::string ConnectionString::valueOf(std::string_view keyword) const {
  const auto isIt = [keyword](const Attribute& attribute) { return attribute.is(keyword); };
  const auto found = std::ranges::find_if(attributes_, isIt);
  return found == attributes_.end() ? "" : found->value;
}

std::string ConnectionString::without(std::string_view keyword) const {
  std::string others;
  forEachPart(text_, [&](std::string_view written, const Attribute& attribute) {
    if (attribute.is(keyword)) return;
    if (!others.empty()) others += ';';
    others += written;
  });
  return others;
}

std::string ConnectionString::withoutPassword() const {
  std::string shown;
  forEachPart(text_, [this, &shown](std::string_view written, const Attribute& attribute) {
    if (written.data() != text_.data()) shown += ';';
    if (attribute.isPassword()) {
      shown.append("PWD=").append(shownPassword);
    } else {
      shown += written;
    }
  });
  return shown;
}

std::string ConnectionString::withoutPasswordIn(std::string message) const {
  forEachPart(text_, [&message](std::string_view written, const Attribute& attribute) {
    if (!attribute.isPassword()) return;
    const std::string_view marked = trimBlanks(written.substr(written.find('=') + 1));
    for (const std::string& password : {std::string(marked), attribute.value}) {
      if (!password.empty()) replaceAll(message, password, shownPassword);
    }
  });
  return message;
}

std::string inDoubleQuotes(std::string_view value) {
  std::string text(value);
  replaceAll(text, "\"", "\"\"");
  return '"' + text + '"';
}

}  // namespace quillon::odbc
