// Like: % any text, _ one character, [abc], [a-z], [^abc] one character of (not of) a set; characters compare by the
// collation.
#pragma once

#include <cstdint>
#include <string_view>
#include <vector>

namespace quillon::tsql {

class LikePattern {
 public:
  // `escape` is empty or the one escape character; anything else throws SqlError 506.
  explicit LikePattern(std::string_view pattern, std::string_view escape = {});
  // `ignoreTrailingBlanks`: what varchar does; for nvarchar every blank of the text counts.
  bool matches(std::string_view text, bool ignoreTrailingBlanks) const;

 private:
  struct Range {
    std::uint32_t low, high;  // weights
  };
  enum class Token : std::uint8_t { character, any, one, set, notSet };
  struct Element {
    Token token;
    std::uint32_t weight = 0;           // of a character
    std::uint32_t first = 0, last = 0;  // of a set: its ranges
  };

  void readSet(std::string_view pattern, std::size_t& position, char32_t escape);
  bool matchesOne(const Element& element, std::uint32_t weight) const;
  bool matchesWhole(std::string_view text) const;

  std::vector<Element> elements_;
  std::vector<Range> ranges_;
};

}  // namespace quillon::tsql
