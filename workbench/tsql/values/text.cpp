#include "workbench/tsql/values/text.h"

#include <algorithm>
#include <cstring>

#include "frame/text.h"
#include "workbench/tsql/values/collation.h"

namespace quillon::tsql::text {
namespace {

constexpr char32_t malformed = 0x110000;  // plus the byte

bool isContinuation(char c) {
  return (static_cast<unsigned char>(c) & 0xc0U) == 0x80U;
}

bool isAscii(std::string_view text) {
  return std::all_of(text.begin(), text.end(), [](char c) { return static_cast<unsigned char>(c) < 0x80; });
}

std::int64_t widthOf(char32_t character) {
  return character >= 0x10000 && character < malformed ? 2 : 1;
}

char32_t highSurrogate(char32_t character) {
  return 0xd800 + ((character - 0x10000) >> 10);
}
char32_t lowSurrogate(char32_t character) {
  return 0xdc00 + ((character - 0x10000) & 0x3ffU);
}

// The byte position at which `units` UTF-16 units end. When that is the middle of a pair, the position is that of the
// character and `splits` is set.
struct Cut {
  std::size_t position = 0;
  bool splits = false;
};

Cut cutAfter(std::string_view text, std::size_t from, std::int64_t units) {
  Cut cut{from, false};
  while (units > 0 && cut.position < text.size()) {
    std::size_t after = cut.position;
    const std::int64_t width = widthOf(next(text, after));
    if (width > units) {
      cut.splits = true;
      return cut;
    }
    units -= width;
    cut.position = after;
  }
  return cut;
}

template <class Change>
std::string changed(std::string_view text, Change change) {
  std::string result;
  result.reserve(text.size());
  for (std::size_t position = 0; position < text.size();)
    append(result, change(next(text, position)));
  return result;
}

// The letters that Latin, Greek and Cyrillic scripts have in two cases, and the full-width ones.
char32_t upperOf(char32_t c) {
  if (c < 0x80) return c >= 'a' && c <= 'z' ? c - 32 : c;
  if ((c >= 0xe0 && c <= 0xfe && c != 0xf7) || (c >= 0x3b1 && c <= 0x3c9 && c != 0x3c2)) return c - 32;
  if (c == 0xff) return 0x178;
  if (c >= 0x100 && c <= 0x17f) {
    if (c == 0x131 || c == 0x138 || c == 0x149 || c == 0x17f) return c;
    const bool oddIsUpper = (c >= 0x139 && c <= 0x148) || c >= 0x179;
    return oddIsUpper == ((c & 1U) == 0) ? c - 1 : c;
  }
  if (c >= 0x430 && c <= 0x44f) return c - 32;
  if (c >= 0x450 && c <= 0x45f) return c - 80;
  if (c >= 0x1e00 && c <= 0x1eff && (c < 0x1e96 || c >= 0x1ea0)) return c & ~char32_t{1};
  if (c >= 0x2170 && c <= 0x217f) return c - 16;
  if (c >= 0x24d0 && c <= 0x24e9) return c - 26;
  if (c >= 0xff41 && c <= 0xff5a) return c - 32;
  return c;
}

char32_t lowerOf(char32_t c) {
  if (c < 0x80) return c >= 'A' && c <= 'Z' ? c + 32 : c;
  if ((c >= 0xc0 && c <= 0xde && c != 0xd7) || (c >= 0x391 && c <= 0x3a9 && c != 0x3a2)) return c + 32;
  if (c == 0x178) return 0xff;
  if (c >= 0x100 && c <= 0x17f) {
    if (c == 0x130 || c == 0x138 || c == 0x149 || c == 0x17f) return c;
    const bool oddIsUpper = (c >= 0x139 && c <= 0x148) || c >= 0x179;
    return oddIsUpper == ((c & 1U) != 0) ? c + 1 : c;
  }
  if (c >= 0x410 && c <= 0x42f) return c + 32;
  if (c >= 0x400 && c <= 0x40f) return c + 80;
  if (c >= 0x1e00 && c <= 0x1eff && (c < 0x1e96 || c >= 0x1ea0)) return c | 1U;
  if (c >= 0x2160 && c <= 0x216f) return c + 16;
  if (c >= 0x24b6 && c <= 0x24cf) return c + 26;
  if (c >= 0xff21 && c <= 0xff3a) return c + 32;
  return c;
}

}  // namespace

char32_t next(std::string_view text, std::size_t& position) {
  const auto byte = [&](std::size_t offset) {
    return static_cast<char32_t>(static_cast<unsigned char>(text[position + offset]));
  };
  const char32_t lead = byte(0);
  if (lead < 0x80) {
    ++position;
    return lead;
  }
  const std::size_t left = text.size() - position;
  const auto continues = [&](std::size_t count) {
    if (left <= count) return false;
    for (std::size_t i = 1; i <= count; ++i) {
      if (!isContinuation(text[position + i])) return false;
    }
    return true;
  };
  if (lead >= 0xe0 && lead < 0xf0 && continues(2)) {
    const char32_t character = ((lead & 0xfU) << 12) | ((byte(1) & 0x3fU) << 6) | (byte(2) & 0x3fU);
    if (character >= 0x800) {
      position += 3;
      return character;
    }
  } else if (lead >= 0xc2 && lead < 0xe0 && continues(1)) {
    const char32_t character = ((lead & 0x1fU) << 6) | (byte(1) & 0x3fU);
    position += 2;
    return character;
  } else if (lead >= 0xf0 && lead < 0xf5 && continues(3)) {
    const char32_t character =
        ((lead & 7U) << 18) | ((byte(1) & 0x3fU) << 12) | ((byte(2) & 0x3fU) << 6) | (byte(3) & 0x3fU);
    if (character >= 0x10000 && character < malformed) {
      position += 4;
      return character;
    }
  }
  ++position;
  return malformed + lead;
}

void append(std::string& text, char32_t character) {
  const auto put = [&text](char32_t byte) { text += static_cast<char>(static_cast<unsigned char>(byte)); };
  if (character < 0x80) {
    put(character);
  } else if (character < 0x800) {
    put(0xc0 | (character >> 6));
    put(0x80 | (character & 0x3fU));
  } else if (character < 0x10000) {
    put(0xe0 | (character >> 12));
    put(0x80 | ((character >> 6) & 0x3fU));
    put(0x80 | (character & 0x3fU));
  } else if (character < malformed) {
    put(0xf0 | (character >> 18));
    put(0x80 | ((character >> 12) & 0x3fU));
    put(0x80 | ((character >> 6) & 0x3fU));
    put(0x80 | (character & 0x3fU));
  } else {
    put(character - malformed);
  }
}

std::string foldCase(std::string_view text) {
  std::string result(text);
  std::transform(result.begin(), result.end(), result.begin(), lowerAscii);
  return result;
}

std::int64_t width(std::string_view text) {
  if (isAscii(text)) return static_cast<std::int64_t>(text.size());
  std::int64_t units = 0;
  for (std::size_t position = 0; position < text.size();)
    units += widthOf(next(text, position));
  return units;
}

bool widerThan(std::string_view text, std::int64_t limit) {
  // A character has at least as many bytes as UTF-16 units.
  if (static_cast<std::int64_t>(text.size()) <= limit) return false;
  return width(text) > limit;
}

std::string_view trimRight(std::string_view text) {
  return text.substr(0, text.find_last_not_of(' ') + 1);
}

std::string_view trimLeft(std::string_view text) {
  return text.substr(std::min(text.find_first_not_of(' '), text.size()));
}

std::string left(std::string_view text, std::int64_t count) {
  return substring(text, 1, count);
}

std::string right(std::string_view text, std::int64_t count) {
  const std::int64_t all = width(text);
  return count >= all ? std::string(text) : substring(text, all - count + 1, count);
}

std::string substring(std::string_view text, std::int64_t start, std::int64_t count) {
  // T-SQL counts positions before the first against the length.
  if (start < 1) {
    count = count > 0 && start > -count ? count + start - 1 : 0;
    start = 1;
  }
  if (count <= 0) return {};
  const Cut first = cutAfter(text, 0, start - 1);
  std::string result;
  std::size_t from = first.position;
  if (first.splits) {
    append(result, lowSurrogate(next(text, from)));
    --count;
  }
  const Cut last = cutAfter(text, from, count);
  result += text.substr(from, last.position - from);
  if (last.splits) {
    std::size_t position = last.position;
    append(result, highSurrogate(next(text, position)));
  }
  return result;
}

std::string upper(std::string_view text) {
  return changed(text, upperOf);
}

std::string lower(std::string_view text) {
  return changed(text, lowerOf);
}

std::string reverse(std::string_view text) {
  std::string result;
  result.reserve(text.size());
  std::u32string characters;
  for (std::size_t position = 0; position < text.size();)
    characters += next(text, position);
  for (auto character = characters.rbegin(); character != characters.rend(); ++character)
    append(result, *character);
  return result;
}

namespace {

// How many bytes at the beginning of `text` equal `what` by the collation; 0 when it does not begin so.
std::size_t matchAtBeginning(std::string_view text, std::string_view what) {
  std::size_t position = 0;
  for (std::size_t wanted = 0; wanted < what.size();) {
    if (position == text.size()) return 0;
    if (characterWeight(next(text, position)) != characterWeight(next(what, wanted))) return 0;
  }
  return position;
}

}  // namespace

std::string replace(std::string_view text, std::string_view what, std::string_view by) {
  std::string result;
  for (std::size_t position = 0; position < text.size();) {
    const std::size_t matched = matchAtBeginning(text.substr(position), what);
    if (matched > 0) {
      result += by;
      position += matched;
    } else {
      const std::size_t from = position;
      next(text, position);
      result += text.substr(from, position - from);
    }
  }
  return result;
}

std::int64_t charIndex(std::string_view what, std::string_view text, std::int64_t start) {
  if (what.empty()) return 0;
  std::int64_t index = std::max<std::int64_t>(start, 1);
  for (std::size_t position = cutAfter(text, 0, index - 1).position; position < text.size();) {
    if (matchAtBeginning(text.substr(position), what) > 0) return index;
    index += widthOf(next(text, position));
  }
  return 0;
}

}  // namespace quillon::tsql::text
