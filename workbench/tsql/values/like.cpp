#include "workbench/tsql/values/like.h"

#include <algorithm>

#include "workbench/tsql/values/collation.h"
#include "workbench/tsql/values/text.h"
#include "workbench/tsql/values/value_errors.h"

namespace quillon::tsql {

LikePattern::LikePattern(std::string_view pattern, std::string_view escape) {
  constexpr char32_t noEscape = 0xffffffff;
  char32_t escapeCharacter = noEscape;
  if (!escape.empty()) {
    std::size_t position = 0;
    escapeCharacter = text::next(escape, position);
    if (position != escape.size()) throw errors::invalidEscape(escape);
  }
  for (std::size_t position = 0; position < pattern.size();) {
    const char32_t character = text::next(pattern, position);
    if (character == escapeCharacter && position < pattern.size()) {
      elements_.push_back({Token::character, characterWeight(text::next(pattern, position))});
    } else if (character == '%') {
      // Several % in a row match what one matches.
      if (elements_.empty() || elements_.back().token != Token::any) elements_.push_back({Token::any});
    } else if (character == '_') {
      elements_.push_back({Token::one});
    } else if (character == '[') {
      readSet(pattern, position, escapeCharacter);
    } else {
      elements_.push_back({Token::character, characterWeight(character)});
    }
  }
}

void LikePattern::readSet(std::string_view pattern, std::size_t& position, char32_t escape) {
  Element element{Token::set};
  element.first = static_cast<std::uint32_t>(ranges_.size());
  if (position < pattern.size() && pattern[position] == '^') {
    element.token = Token::notSet;
    ++position;
  }
  bool closed = false;
  const auto read = [&] {
    const char32_t character = text::next(pattern, position);
    const bool escaped = character == escape && position < pattern.size();
    return characterWeight(escaped ? text::next(pattern, position) : character);
  };
  while (position < pattern.size()) {
    if (pattern[position] == ']') {
      closed = true;
      ++position;
      break;
    }
    Range range{};
    range.low = range.high = read();
    // A hyphen between two characters makes a range; at either end of the set it stands for itself.
    if (position + 1 < pattern.size() && pattern[position] == '-' && pattern[position + 1] != ']') {
      ++position;
      range.high = read();
    }
    ranges_.push_back(range);
  }
  element.last = static_cast<std::uint32_t>(ranges_.size());
  // A set that is not closed, or empty, matches nothing at all.
  if (!closed || element.first == element.last) {
    element.token = Token::set;
    element.last = element.first;
  }
  elements_.push_back(element);
}

bool LikePattern::matchesOne(const Element& element, std::uint32_t weight) const {
  switch (element.token) {
    case Token::one:
      return true;
    case Token::character:
      return element.weight == weight;
    default:
      break;
  }
  const bool inSet = std::any_of(ranges_.begin() + element.first, ranges_.begin() + element.last,
                                 [weight](const Range& range) { return range.low <= weight && weight <= range.high; });
  return inSet == (element.token == Token::set);
}

bool LikePattern::matches(std::string_view text, bool ignoreTrailingBlanks) const {
  if (ignoreTrailingBlanks) {
    return matchesWhole(text) || matchesWhole(text::trimRight(text));
  }
  return matchesWhole(text);
}

bool LikePattern::matchesWhole(std::string_view text) const {
  std::size_t element = 0;
  std::size_t position = 0;
  // Where to resume when a comparison fails: the last % then takes one more character.
  std::size_t afterAny = elements_.size() + 1;
  std::size_t retryFrom = 0;
  while (position < text.size()) {
    if (element < elements_.size() && elements_[element].token == Token::any) {
      if (++element == elements_.size()) return true;
      afterAny = element;
      retryFrom = position;
      continue;
    }
    if (element < elements_.size()) {
      std::size_t next = position;
      if (matchesOne(elements_[element], characterWeight(text::next(text, next)))) {
        position = next;
        ++element;
        continue;
      }
    }
    if (afterAny > elements_.size()) return false;
    text::next(text, retryFrom);
    position = retryFrom;
    element = afterAny;
  }
  while (element < elements_.size() && elements_[element].token == Token::any)
    ++element;
  return element == elements_.size();
}

}  // namespace quillon::tsql
