#include "automation/text.h"

#include <gtest/gtest.h>

namespace quillon::automation {
namespace {

using namespace std::string_literals;

struct Pair {
  const char* name;
  std::string utf8;
  std::wstring utf16;
};

class TextRoundTrip : public testing::TestWithParam<Pair> {};

TEST_P(TextRoundTrip, GoesThereAndBackUnchanged) {
  EXPECT_EQ(toWide(GetParam().utf8), GetParam().utf16);
  EXPECT_EQ(toUtf8(std::wstring_view(GetParam().utf16)), GetParam().utf8);
}

INSTANTIATE_TEST_SUITE_P(
    Texts, TextRoundTrip,
    testing::Values(Pair{"Empty", "", L""}, Pair{"Ascii", "And base.iYear = 2024 ", L"And base.iYear = 2024 "},
                    Pair{"TwoBytes", "\xC2\x80\xDF\xBF", L"\x0080\x07FF"},
                    Pair{"ThreeBytes", "\xE6\x8C\x89\xE4\xBB\x93\xE5\xBA\x93", L"\x6309\x4ED3\x5E93"},
                    Pair{"EdgesOfTheThreeBytes", "\xE0\xA0\x80\xEF\xBF\xBF", L"\x0800\xFFFF"},
                    Pair{"SurrogatePair", "\xF0\x9F\x98\x80", L"\xD83D\xDE00"},
                    Pair{"FirstAndLastPair", "\xF0\x90\x80\x80\xF4\x8F\xBF\xBF", L"\xD800\xDC00\xDBFF\xDFFF"},
                    Pair{"LoneHighSurrogate", "a\xED\xA0\xBD z", L"a\xD83D z"},
                    Pair{"LoneLowSurrogate", "\xED\xB8\x80", L"\xDE00"},
                    Pair{"SurrogatesInTheWrongOrder", "\xED\xB8\x80\xED\xA0\xBD", L"\xDE00\xD83D"},
                    Pair{"HighSurrogateAtTheEnd", "x\xED\xAF\xBF", L"x\xDBFF"},
                    Pair{"ZeroInside", "a\0b"s, std::wstring(L"a\0b", 3)}),
    [](const auto& text) { return text.param.name; });

TEST(Text, EveryUnitOfUtf16SurvivesTheRoundTrip) {
  for (unsigned unit = 0; unit <= 0xFFFF; ++unit) {
    const std::wstring text{L'<', static_cast<wchar_t>(unit), L'>'};
    ASSERT_EQ(toWide(toUtf8(std::wstring_view(text))), text) << unit;
  }
}

TEST(Text, ABrokenByteBecomesTheReplacementCharacter) {
  EXPECT_EQ(toWide("a\xFFz"), L"a\xFFFDz");
  EXPECT_EQ(toWide("\xE6\x8C"), L"\xFFFD\xFFFD");                      // cut short
  EXPECT_EQ(toWide("\xC0\x80"), L"\xFFFD\xFFFD");                      // longer than need be
  EXPECT_EQ(toWide("\xF4\x90\x80\x80"), L"\xFFFD\xFFFD\xFFFD\xFFFD");  // beyond the last code point
}

TEST(Text, ABstrKeepsItsLength) {
  const Bstr text("a\0b"s);
  EXPECT_EQ(SysStringLen(text.get()), 3U);
  EXPECT_EQ(text.utf8(), "a\0b"s);
  EXPECT_EQ(toUtf8(BSTR(nullptr)), "");
}

}  // namespace
}  // namespace quillon::automation
