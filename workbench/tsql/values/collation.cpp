#include "workbench/tsql/values/collation.h"

#include <array>
#include <cstring>
#include <memory>

#include "workbench/tsql/values/text.h"

namespace quillon::tsql {
namespace {

// A weight is the place of the letter in its upper bits and its accents in the lower ones. Characters of place 0
// (accents on their own, hyphen, apostrophe) decide only between texts whose other characters are all equal.
constexpr unsigned accentBits = 9;
constexpr std::uint32_t accentMask = (1U << accentBits) - 1;
constexpr std::uint32_t hyphenWeight = accentMask;
constexpr std::uint32_t apostropheWeight = accentMask - 1;

constexpr std::uint32_t placeOf(std::uint32_t weight) {
  return weight >> accentBits;
}
constexpr bool isSpecial(std::uint32_t weight) {
  return weight == hyphenWeight || weight == apostropheWeight;
}

// Where each group of characters begins. Within a group the code points give the order; Chinese characters follow
// their pinyin instead.
enum Place : std::uint32_t {
  blankPlace = 1,
  underscorePlace = 2,
  symbolPlace = 0x10,
  digitPlace = 0x10100,
  letterPlace = 0x10200,
  hanPlace = 0x20300,
  otherPlace = 0x30000,  // beyond the BMP, halves of pairs, bytes that are no UTF-8
};

struct Fold {
  char16_t character;
  char16_t base;
  std::uint16_t accents;
};
constexpr Fold folds[] = {
#include "workbench/tsql/values/letter_folds.inc"
};
constexpr char16_t hanByPinyin[] =
#include "workbench/tsql/values/pinyin_order.inc"
    ;

bool isSymbol(char32_t c) {
  if (c < 0x80) return !(c >= 'a' && c <= 'z');
  return c < 0xaa || c == 0xab || c == 0xac || (c >= 0xae && c <= 0xb4) || (c >= 0xb6 && c <= 0xb9) ||
         (c >= 0xbb && c <= 0xbf) || c == 0xd7 || c == 0xf7 || (c >= 0x2b0 && c <= 0x2ff) ||
         (c >= 0x2000 && c <= 0x2bff) || (c >= 0x3001 && c <= 0x303f) || (c >= 0x3200 && c <= 0x33ff) || c >= 0xfe10;
}

std::uint32_t placeOfBase(char32_t c) {
  if (c == ' ') return blankPlace;
  if (c == '_') return underscorePlace;
  if (c >= '0' && c <= '9') return digitPlace + (c - '0');
  return (isSymbol(c) ? symbolPlace : letterPlace) + c;
}

// The weights of the BMP.
class Weights {
 public:
  Weights() : table_(std::make_unique<std::array<std::uint32_t, 0x10000>>()) {
    auto& table = *table_;
    for (char32_t c = 0; c < 0x10000; ++c)
      table[c] = placeOfBase(c) << accentBits;
    for (char32_t c = 'A'; c <= 'Z'; ++c)
      table[c] = table[c + 32];
    std::uint32_t place = hanPlace;
    for (const char16_t* han = hanByPinyin; *han != 0; ++han)
      table[*han] = place++ << accentBits;
    for (char32_t half = 0xd800; half < 0xe000; ++half)
      table[half] = (otherPlace + half) << accentBits;
    table['-'] = hyphenWeight;
    table['\''] = apostropheWeight;
    // No base is itself a folded character, so the folds may be applied in any order.
    for (const Fold& fold : folds) {
      table[fold.character] = (fold.base == 0 ? 0 : table[fold.base]) + fold.accents;
    }
  }
  std::uint32_t operator[](char32_t character) const {
    return character < 0x10000 ? (*table_)[character] : (otherPlace + character) << accentBits;
  }

 private:
  std::unique_ptr<std::array<std::uint32_t, 0x10000>> table_;
};

const Weights& weights() {
  static const Weights table;
  return table;
}

// The weight of the character at `position`, which moves past it.
std::uint32_t readWeight(const Weights& table, std::string_view text, std::size_t& position) {
  const auto byte = static_cast<unsigned char>(text[position]);
  if (byte >= 0x80) return table[text::next(text, position)];
  ++position;
  return table[byte];
}

// Reads a text as the places of its letters and digits, each with its accents.
class Reader {
 public:
  Reader(const Weights& table, std::string_view text, std::size_t position)
      : table_(table), text_(text), position_(position) {}

  // Past its end a text reads as blanks, so that trailing blanks do not count.
  std::uint32_t next() {
    while (position_ < text_.size()) {
      const std::uint32_t weight = read();
      if (isSpecial(weight)) continue;
      const std::uint32_t accents = followingAccents(weight & accentMask);
      return (weight & ~accentMask) | accents;
    }
    atEnd_ = true;
    return Place::blankPlace << accentBits;
  }
  bool atEnd() const { return atEnd_; }

 private:
  std::uint32_t read() { return readWeight(table_, text_, position_); }

  // A combining accent after its letter counts like the accent of a composed letter.
  std::uint32_t followingAccents(std::uint32_t accents) {
    while (position_ < text_.size() && static_cast<unsigned char>(text_[position_]) >= 0xcc) {
      std::size_t after = position_;
      const std::uint32_t weight = table_[text::next(text_, after)];
      if (placeOf(weight) != 0 || isSpecial(weight)) break;
      accents = accents == 0 ? weight : (accents * 61 + weight) & accentMask;
      position_ = after;
    }
    return accents;
  }

  const Weights& table_;
  std::string_view text_;
  std::size_t position_;
  bool atEnd_ = false;
};

// The next hyphen or apostrophe of a text, with the count of other characters before it.
class SpecialReader {
 public:
  explicit SpecialReader(std::string_view text) : text_(text) {}
  struct Special {
    std::uint32_t weight = 0;  // 0 at the end
    std::int64_t before = 0;
  };
  Special next() {
    while (position_ < text_.size()) {
      const std::uint32_t weight = weights()[text::next(text_, position_)];
      if (isSpecial(weight)) return {weight, before_};
      if (placeOf(weight) != 0) ++before_;
    }
    return {};
  }

 private:
  std::string_view text_;
  std::size_t position_ = 0;
  std::int64_t before_ = 0;
};

// For texts that differ in hyphens and apostrophes only: the one without, or with the later one, comes first.
int compareSpecials(std::string_view a, std::string_view b) {
  SpecialReader left(a);
  SpecialReader right(b);
  while (true) {
    const auto x = left.next();
    const auto y = right.next();
    if (x.weight == 0 || y.weight == 0) return (x.weight != 0 ? 1 : 0) - (y.weight != 0 ? 1 : 0);
    if (x.before != y.before) return x.before < y.before ? 1 : -1;
    if (x.weight != y.weight) return x.weight < y.weight ? -1 : 1;
  }
}

bool isContinuation(std::string_view text, std::size_t position) {
  return position < text.size() && (static_cast<unsigned char>(text[position]) & 0xc0U) == 0x80U;
}

std::size_t commonBytes(std::string_view a, std::string_view b) {
  const std::size_t size = a.size() < b.size() ? a.size() : b.size();
  std::size_t i = 0;
  for (; i + 8 <= size; i += 8) {
    std::uint64_t x = 0;
    std::uint64_t y = 0;
    std::memcpy(&x, a.data() + i, 8);
    std::memcpy(&y, b.data() + i, 8);
    if (x != y) break;
  }
  while (i < size && a[i] == b[i])
    ++i;
  return i;
}

int compareFrom(const Weights& table, std::string_view a, std::string_view b, std::size_t from) {
  Reader left(table, a, from);
  Reader right(table, b, from);
  int byAccent = 0;
  while (true) {
    const std::uint32_t x = left.next();
    const std::uint32_t y = right.next();
    if (left.atEnd() && right.atEnd()) break;
    if (x == y) continue;
    if (placeOf(x) != placeOf(y)) return x < y ? -1 : 1;
    if (byAccent == 0) byAccent = x < y ? -1 : 1;
  }
  return byAccent != 0 ? byAccent : compareSpecials(a, b);
}

int compareWith(const Weights& table, std::string_view a, std::string_view b) {
  std::size_t from = commonBytes(a, b);
  if (from == a.size() && from == b.size()) return 0;
  // Most texts differ first in an ASCII character, or where the shorter one ends; then that character decides.
  const auto x = static_cast<unsigned char>(from < a.size() ? a[from] : ' ');
  const auto y = static_cast<unsigned char>(from < b.size() ? b[from] : ' ');
  if (x < 0x80 && y < 0x80) {
    const std::uint32_t left = placeOf(table[x]);
    const std::uint32_t right = placeOf(table[y]);
    if (left != right && left != 0 && right != 0) return left < right ? -1 : 1;
  }
  // Go back to where the character begins, and further to the letter whose accent it may be.
  while (from > 0 && (isContinuation(a, from) || isContinuation(b, from)))
    --from;
  while (from > 0) {
    do {
      --from;
    } while (from > 0 && isContinuation(a, from));
    std::size_t position = from;
    if (placeOf(table[text::next(a, position)]) != 0) break;
  }
  return compareFrom(table, a, b, from);
}

}  // namespace

int compareText(std::string_view a, std::string_view b) {
  return compareWith(weights(), a, b);
}

std::uint64_t textFingerprint(std::string_view text) {
  constexpr std::uint64_t odd = 0x9e3779b97f4a7c15;
  const Weights& table = weights();
  std::uint64_t print = 0;
  std::uint64_t beforeBlanks = 0;
  std::size_t position = 0;
  while (position < text.size()) {
    // Accents, hyphens and apostrophes decide between texts that have all else alike, so they may be left out.
    const std::uint32_t place = placeOf(readWeight(table, text, position));
    if (place == 0) continue;
    print = (print ^ place) * odd;
    print ^= print >> 29U;
    if (place != Place::blankPlace) beforeBlanks = print;
  }
  return beforeBlanks;
}

std::uint32_t characterWeight(char32_t character) {
  return weights()[character];
}

}  // namespace quillon::tsql
