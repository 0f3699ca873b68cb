#include "workbench/odbc/wide_text.h"

#include "workbench/tsql/values/text.h"

namespace quillon::odbc {

namespace {

static_assert(sizeof(SQLWCHAR) == 2, "ODBC's wide text is UTF-16");

constexpr char32_t firstBeyondBmp = 0x10000;
constexpr char32_t replacement = 0xfffd;
constexpr char32_t firstHigh = 0xd800;
constexpr char32_t firstLow = 0xdc00;
constexpr char32_t halves = 0x400;  // how many there are of each kind
constexpr unsigned halfBits = 10;

bool isHigh(char32_t unit) {
  return unit >= firstHigh && unit < firstHigh + halves;
}
bool isLow(char32_t unit) {
  return unit >= firstLow && unit < firstLow + halves;
}

}  // namespace

WideText toWide(std::string_view text) {
  WideText wide;
  wide.reserve(text.size());
  for (std::size_t position = 0; position < text.size();) {
    char32_t character = tsql::text::next(text, position);
    if (character > tsql::text::lastCharacter) character = replacement;
    if (character >= firstBeyondBmp) {
      character -= firstBeyondBmp;
      wide.push_back(static_cast<SQLWCHAR>(firstHigh + (character >> halfBits)));
      character = firstLow + (character & (halves - 1));
    }
    wide.push_back(static_cast<SQLWCHAR>(character));
  }
  return wide;
}

std::string toUtf8(std::span<const SQLWCHAR> text) {
  std::string utf8;
  utf8.reserve(text.size());
  for (std::size_t i = 0; i < text.size(); ++i) {
    char32_t character = text[i];
    if (isHigh(character) && i + 1 < text.size() && isLow(text[i + 1])) {
      ++i;
      character = firstBeyondBmp + ((character - firstHigh) << halfBits) + (text[i] - firstLow);
    }
    tsql::text::append(utf8, character);
  }
  return utf8;
}

}  // namespace quillon::odbc
