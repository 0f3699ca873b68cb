#include "workbench/messages/message.h"

#include <gmock/gmock.h>

#include <stdexcept>
#include <string>
#include <vector>

#include "workbench/messages/common.h"
#include "workbench/messages/told_error.h"

namespace quillon::workbench {
namespace {

constexpr Text<2> inFolder{"文件夹 {2} 中没有 {1}", "there is no {1} in the folder {2}"};

// What does not compile as an entry.
static_assert(hasPlaces("{1} and {2}", 2) && hasPlaces("{2} before {1}, {1}", 2) && hasPlaces("none", 0));
static_assert(!hasPlaces("{1}", 2), "a place is missing");
static_assert(!hasPlaces("{1} and {3}", 2), "a place is none of the entry's");
static_assert(!hasPlaces("{0}", 1) && !hasPlaces("{1", 1) && !hasPlaces("{12}", 1));
static_assert(!hasPlaces("", 0), "nothing is said");
static_assert(hasPlaces("Driver={ODBC Driver};{1}", 1), "a brace before a word is a brace");
static_assert(std::is_invocable_v<Text<2>, std::string, int> && !std::is_invocable_v<Text<2>, std::string>);

TEST(Message, IsFilledInBothLanguages) {
  const Message message = inFolder(std::string("{2}"), std::string_view("data"));
  EXPECT_EQ(message.english(), "there is no {2} in the folder data");
  EXPECT_EQ(message.in(Language::chinese), "文件夹 data 中没有 {2}");
}

TEST(Message, TakesNumbersCaptionsAndMessages) {
  const Message inner = messages::headed(Caption{"仓库", "Warehouse"}, std::int64_t{-7});
  const Message outer = messages::named(inner, 12U);
  EXPECT_EQ(outer.english(), "Warehouse: -7 (12)");
  EXPECT_EQ(outer.in(Language::chinese), "仓库：-7（12）");
}

TEST(Message, OfSomebodyElseIsTheSameInBothLanguages) {
  const Message words = Message::verbatim("Invalid object name 'x'.");
  EXPECT_EQ(words.in(Language::chinese), words.english());
  EXPECT_TRUE(Message().empty());
}

TEST(Message, ListsNamesWithTheLanguagesSigns) {
  const std::vector<std::string> names = {"a", "b", "c"};
  EXPECT_EQ(listOf(names).english(), "a, b, c");
  EXPECT_EQ(listOf(names).in(Language::chinese), "a、b、c");
  const std::vector<Message> kinds = {messages::yes(), messages::no(), Message::verbatim("null")};
  EXPECT_EQ(alternativesOf(kinds).english(), "yes, no or null");
  EXPECT_EQ(alternativesOf(kinds).in(Language::chinese), "是、否或 null");
  EXPECT_EQ(alternativesOf(std::vector{messages::yes()}).english(), "yes");
}

TEST(ToldError, HasBothTextsAndSaysTheEnglishOne) {
  const Told<std::invalid_argument> error(inFolder("f", "data"));
  EXPECT_STREQ(error.what(), "there is no f in the folder data");
  const std::invalid_argument& base = error;
  const auto* told = dynamic_cast<const InBothLanguages*>(&base);
  ASSERT_NE(told, nullptr);
  EXPECT_EQ(told->text(Language::chinese), "文件夹 data 中没有 f");
  EXPECT_EQ(told->text(Language::english), error.what());
}

}  // namespace
}  // namespace quillon::workbench
