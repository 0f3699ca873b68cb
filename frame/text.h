// Small text helpers with the rules of the platform's own language: letter case is ignored for ASCII letters only
// (keys and option names are ASCII), and trimming takes off blanks (U+0020), not tabs or line ends.
#pragma once

#include <charconv>
#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <system_error>

namespace quillon {

inline constexpr bool isDigit(char c) noexcept {
  return c >= '0' && c <= '9';
}

inline constexpr char lowerAscii(char c) noexcept {
  return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
}

inline constexpr bool equalIgnoringCase(std::string_view left, std::string_view right) noexcept {
  if (left.size() != right.size()) return false;
  for (std::size_t i = 0; i < left.size(); ++i) {
    if (lowerAscii(left[i]) != lowerAscii(right[i])) return false;
  }
  return true;
}

// Whether `part` stands anywhere in `text`.
inline constexpr bool containsIgnoringCase(std::string_view text, std::string_view part) noexcept {
  for (; text.size() >= part.size(); text.remove_prefix(1)) {
    if (equalIgnoringCase(text.substr(0, part.size()), part)) return true;
    if (text.empty()) break;
  }
  return false;
}

inline constexpr std::string_view trimBlanks(std::string_view text) noexcept {
  while (text.starts_with(' '))
    text.remove_prefix(1);
  while (text.ends_with(' '))
    text.remove_suffix(1);
  return text;
}

// Puts `to` in place of every `from`, from left to right; what was put in is not looked at again. `from` is not empty.
inline void replaceAll(std::string& text, std::string_view from, std::string_view to) {
  for (std::size_t at = text.find(from); at != std::string::npos; at = text.find(from, at + to.size()))
    text.replace(at, from.size(), to);
}

// The whole number that `text` is, blanks around it aside; nothing for anything else and for a number that `Number`
// cannot hold.
template <typename Number>
std::optional<Number> wholeNumber(std::string_view text) {
  const std::string_view digits = trimBlanks(text);
  Number number = 0;
  const auto [end, error] = std::from_chars(digits.data(), digits.data() + digits.size(), number);
  if (error != std::errc() || end != digits.data() + digits.size()) return std::nullopt;
  return number;
}

// The whole number at the front of `text`, blanks before it aside; 0 when there is none.
inline int leadingNumber(std::string_view text) {
  const std::string_view digits = trimBlanks(text);
  int number = 0;
  std::from_chars(digits.data(), digits.data() + digits.size(), number);
  return number;
}

}  // namespace quillon
