#include "workbench/odbc/server_engine.h"

#include <algorithm>
#include <array>

#include "frame/text.h"

namespace quillon::odbc {

namespace {

// A text that an engine does not take. `{}` is a literal, N'...', that stays.
struct Rewriting {
  std::string_view engine;  // a part of its @@Version
  std::string_view text;
  std::string_view instead;
};

constexpr std::array rewritings = {
    // Temporary tables are not among the objects of tempdb there, and would never be dropped.
    Rewriting{.engine = "Babelfish",
              .text = "exists(select id from  tempdb..sysobjects where id=object_id({}))",
              .instead = "object_id({}) is not null"},
};

constexpr std::string_view literalHole = "{}";

bool startsIgnoringCase(std::string_view text, std::string_view beginning) {
  return text.size() >= beginning.size() && equalIgnoringCase(text.substr(0, beginning.size()), beginning);
}

// How many characters the literal, quoted name or comment takes that `text` begins with; 0 when it begins with none.
std::size_t lengthOfQuoted(std::string_view text) {
  const auto upTo = [text](std::string_view end, std::size_t from) {
    const std::size_t at = text.find(end, from);
    return at == std::string_view::npos ? text.size() : at + end.size();
  };
  if (text.starts_with("--")) return upTo("\n", 2);
  if (text.starts_with("/*")) return upTo("*/", 2);
  if (text.front() == '[') return upTo("]", 1);
  if (text.front() != '\'' && text.front() != '"') return 0;
  const std::string_view quote = text.substr(0, 1);
  std::size_t length = upTo(quote, 1);
  while (text.substr(length).starts_with(quote))  // a doubled one is a part of the text
    length = upTo(quote, length + 1);
  return length;
}

// Takes N'...' from the front of `text`; empty when it does not begin with one.
std::string_view takeLiteral(std::string_view& text) {
  if (!startsIgnoringCase(text, "N'")) return {};
  const std::string_view literal = text.substr(0, 1 + lengthOfQuoted(text.substr(1)));
  text.remove_prefix(literal.size());
  return literal;
}

// Appends what `text` becomes by the rewriting, and takes it from its front; false when it is another text.
bool rewriteFront(std::string_view& text, const Rewriting& rewriting, std::string& result) {
  const std::size_t hole = rewriting.text.find(literalHole);
  const std::string_view before = rewriting.text.substr(0, hole);
  const std::string_view behind = rewriting.text.substr(hole + literalHole.size());
  if (!startsIgnoringCase(text, before)) return false;
  std::string_view rest = text.substr(before.size());
  const std::string_view literal = takeLiteral(rest);
  if (literal.empty() || !startsIgnoringCase(rest, behind)) return false;
  std::string instead(rewriting.instead);
  result += instead.replace(instead.find(literalHole), literalHole.size(), literal);
  text = rest.substr(behind.size());
  return true;
}

bool isOfName(char c) {
  constexpr std::string_view others = "_#@$";
  const bool isLetter = lowerAscii(c) >= 'a' && lowerAscii(c) <= 'z';
  return isLetter || isDigit(c) || others.find(c) != std::string_view::npos || static_cast<unsigned char>(c) >= 0x80;
}

// As a prefix of table names.
std::string withDots(std::string_view systemTables) {
  return systemTables.empty() || systemTables.ends_with('.') ? std::string(systemTables)
                                                             : std::string(systemTables) + '.';
}

}  // namespace

ServerEngine::ServerEngine(std::string_view version, std::string_view systemTables)
    : version_(version), systemTables_(withDots(systemTables)) {}

std::string ServerEngine::rewritten(std::string_view sql) const {
  std::string result;
  result.reserve(sql.size());
  const auto isOfThis = [this](const Rewriting& rewriting) {
    return version_.find(rewriting.engine) != std::string::npos;
  };
  while (!sql.empty()) {
    const auto applies = [&](const Rewriting& rewriting) {
      return isOfThis(rewriting) && rewriteFront(sql, rewriting, result);
    };
    const bool atName = result.empty() || !isOfName(result.back());
    if (atName && std::ranges::any_of(rewritings, applies)) continue;
    const auto isSystem = [&](std::string_view name) {
      return !systemTables_.empty() && atName && startsIgnoringCase(sql, name);
    };
    constexpr std::array<std::string_view, 2> systemNames = {"orvsystem..", "[orvsystem].."};
    if (const auto name = std::ranges::find_if(systemNames, isSystem); name != systemNames.end()) {
      result += systemTables_;
      sql.remove_prefix(name->size());
      continue;
    }
    const std::size_t length = std::max<std::size_t>(lengthOfQuoted(sql), 1);
    result += sql.substr(0, length);
    sql.remove_prefix(length);
  }
  return result;
}

}  // namespace quillon::odbc
