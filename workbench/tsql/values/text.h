// Text as nvarchar counts it: UTF-8 inside, positions and widths in UTF-16 units (a character beyond the BMP counts
// two). Half of such a pair, when a cut leaves one, is kept as the three bytes of its surrogate.
//
// The workbench decodes UTF-8 and reads whole numbers with these functions alone; names and key words are compared with
// equalIgnoringCase() of frame/text.h.
#pragma once

#include <charconv>
#include <concepts>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <system_error>

namespace quillon::tsql::text {

inline constexpr char32_t lastCharacter = 0x10ffff;

// Decodes the character at `position` and moves past it. A byte that begins no character is read alone, as a value above
// lastCharacter; append() writes that byte back.
char32_t next(std::string_view text, std::size_t& position);
void append(std::string& text, char32_t character);

// ASCII letters in lower case: what equalIgnoringCase() holds equal becomes one text.
std::string foldCase(std::string_view text);

// The whole number that all of the text is, or that it begins with: digits, with a minus in front of a negative one.
// Nullopt when it is none, or none that a Number can be; `outOfRange` tells the second from the first.
template <std::signed_integral Number = int>
std::optional<Number> wholeNumber(std::string_view text, bool* outOfRange = nullptr) {
  Number number = 0;
  const char* const end = text.data() + text.size();
  const auto [stopped, error] = std::from_chars(text.data(), end, number);
  if (outOfRange != nullptr) *outOfRange = error == std::errc::result_out_of_range && stopped == end;
  return error == std::errc() && stopped == end ? std::optional(number) : std::nullopt;
}
template <std::signed_integral Number = int>
std::optional<Number> leadingNumber(std::string_view text) {
  Number number = 0;
  const auto [stopped, error] = std::from_chars(text.data(), text.data() + text.size(), number);
  return error == std::errc() ? std::optional(number) : std::nullopt;
}

std::int64_t width(std::string_view text);  // UTF-16 units
bool widerThan(std::string_view text, std::int64_t limit);
std::string_view trimRight(std::string_view text);  // blanks (U+0020) only
std::string_view trimLeft(std::string_view text);

std::string left(std::string_view text, std::int64_t count);
std::string right(std::string_view text, std::int64_t count);
std::string substring(std::string_view text, std::int64_t start, std::int64_t count);  // from 1
std::string upper(std::string_view text);
std::string lower(std::string_view text);
std::string reverse(std::string_view text);
// Both search by the collation: letter case and width (full or half) do not matter.
std::string replace(std::string_view text, std::string_view what, std::string_view by);
std::int64_t charIndex(std::string_view what, std::string_view text, std::int64_t start);  // from 1; 0 is not found

}  // namespace quillon::tsql::text
