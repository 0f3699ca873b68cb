// Filter values that a careful person would not type: each is one text of one selection, in the form that the library
// keeps (UTF-8, where half of a surrogate pair is the three bytes of its code point).
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace quillon::bad_values {

using namespace std::string_literals;

struct BadValue {
  const char* name;
  std::string text;
};

inline const std::vector<BadValue>& badValues() {
  constexpr std::size_t million = 1'048'576;
  static const std::vector<BadValue> values{
      {"quote", "a'b"},
      {"two_quotes", "a''b"},
      {"only_a_quote", "'"},
      {"double_quotes", "a\"b\"\""},
      {"control_characters", "\x01\x1b\x7f\r\nz"},
      {"zero_character", "a\0b"s},
      {"high_surrogate_alone", "\xed\xa0\xbd"},
      {"low_surrogate_alone", "x\xed\xb8\x80"},
      {"right_to_left", "\u202eאבג\u200f(1)"},
      {"outside_the_first_plane", "\U0001F4E6"},
      {"percent", "5%0"},
      {"underscore", "a_b"},
      {"brackets", "[a-c]"},
      {"open_bracket", "a[b"},
      {"comment", "a--b/*c"},
      {"a_million_characters", std::string(million, 'x')},
  };
  return values;
}

// The text that `value` denotes when it is pasted between two quotes as it stands; false when it ends the text early and
// so makes an invalid statement.
inline bool denotes(std::string_view value, std::string& text) {
  text.clear();
  for (std::size_t at = 0; at < value.size(); ++at) {
    if (value[at] == '\'' && (++at == value.size() || value[at] != '\'')) return false;
    text += value[at];
  }
  return true;
}

// `text` as a text constant.
inline std::string constant(std::string_view text) {
  std::string sql = "N'";
  for (const char c : text)
    sql.append(c == '\'' ? 2 : 1, c);
  return sql + "'";
}

}  // namespace quillon::bad_values
