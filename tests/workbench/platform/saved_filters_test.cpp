#include "workbench/platform/saved_filters.h"

#include <gmock/gmock.h>

#include <atomic>
#include <fstream>
#include <nlohmann/json.hpp>
#include <thread>

#include "tests/workbench/account/test_folder.h"
#include "workbench/catalogue/catalogue.h"
#include "workbench/platform/filter_file.h"
#include "workbench/platform/filter_input.h"
#include "workbench/platform/json_schema.h"
#include "workbench/platform/user_error.h"
#include "workbench/tsql/values/utf8_path.h"

namespace quillon::workbench {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

class SavedFiltersTest : public testing::Test {
 protected:
  template <typename Work>
  static std::string refusal(const Work& work) {
    try {
      work();
    } catch (const UserError& error) {
      return error.what();
    }
    return "none";
  }
  std::string content(std::string_view name) const { return account::testing::contentOf(filters_.path(name)); }

  account::testing::TestFolder home_;
  SavedFilters filters_{home_ / "config" / "filters"};
};

TEST_F(SavedFiltersTest, AreKeptByName) {
  EXPECT_THAT(filters_.names(), IsEmpty());
  EXPECT_FALSE(filters_.has("三月"));
  filters_.save("三月", "{}\n", false);
  filters_.save("By hand (2)", "{ }", false);
  EXPECT_THAT(filters_.names(), ElementsAre("By hand (2)", "三月"));
  EXPECT_TRUE(filters_.has("三月"));
  EXPECT_EQ(content("三月"), "{}\n");
  filters_.remove("三月");
  EXPECT_THAT(filters_.names(), ElementsAre("By hand (2)"));
  EXPECT_EQ(refusal([this] { filters_.remove("by hand"); }),
            "there is no saved filter \"by hand\"; see quillon filters list");
  EXPECT_EQ(refusal([this] { filters_.remove("By hnad (2)"); }),
            "there is no saved filter \"By hnad (2)\"; did you mean By hand (2)?; see quillon filters list");
}

TEST_F(SavedFiltersTest, AreReplacedWhenThatIsAskedFor) {
  filters_.save("a", "one", false);
  EXPECT_EQ(refusal([this] { filters_.requireFree("a", false); }),
            "there is a filter \"a\" already; give --replace-filter, or another name");
  EXPECT_EQ(refusal([this] { filters_.save("a", "two", false); }),
            "there is a filter \"a\" already; give --replace-filter, or another name");
  EXPECT_EQ(content("a"), "one");
  filters_.save("a", "three", true);
  EXPECT_EQ(content("a"), "three");
  filters_.save("b", "four", true);  // there is nothing to replace
  EXPECT_THAT(filters_.names(), ElementsAre("a", "b"));
}

TEST_F(SavedFiltersTest, LeaveNothingButThemselves) {
  filters_.save("a", "one", false);
  EXPECT_EQ(refusal([this] { filters_.save("a", "two", false); }).empty(), false);
  filters_.save("a", "three", true);
  EXPECT_EQ(std::distance(std::filesystem::directory_iterator(filters_.folder()), {}), 1);
}

// Of programs that save under one name at the same time, one does, and readers find a whole file.
TEST_F(SavedFiltersTest, AreSavedOnceByOneOfMany) {
  constexpr int programs = 8;
  std::vector<std::thread> threads;
  threads.reserve(programs);
  std::atomic<int> saved = 0;
  for (int i = 0; i < programs; ++i) {
    threads.emplace_back([this, &saved, i] {
      saved +=
          refusal([this, i] { filters_.save("a", std::string(100'000, static_cast<char>('0' + i)), false); }) == "none";
    });
  }
  for (std::thread& thread : threads)
    thread.join();
  EXPECT_EQ(saved, 1);
  const std::string text = content("a");
  EXPECT_EQ(text, std::string(100'000, text.front()));
}

TEST_F(SavedFiltersTest, CannotBeSavedWhereNothingCanBeWritten) {
  account::testing::write(home_ / "file", "");
  const SavedFilters nowhere(home_ / "file" / "filters");
  EXPECT_THAT(refusal([&nowhere] { nowhere.save("a", "", false); }), testing::StartsWith("cannot write "));
  EXPECT_THAT(nowhere.names(), IsEmpty());
}

TEST_F(SavedFiltersTest, AreMeantByANameThatIsNoFiles) {
  filters_.save("a", "{}", false);
  EXPECT_EQ(filters_.fileOf("a"), utf8FromPath(filters_.path("a")));
  EXPECT_EQ(filters_.fileOf("./a"), "./a");
  EXPECT_EQ(filters_.fileOf("x\\a"), "x\\a");
  EXPECT_EQ(filters_.fileOf("a.JSON"), "a.JSON");
  EXPECT_EQ(refusal([this] { filters_.fileOf("ab"); }),
            "there is no saved filter \"ab\", and no file; did you mean a?; see quillon filters list");
  EXPECT_THAT(refusal([this] { filters_.fileOf("*"); }),
              testing::StartsWith("there is no saved filter \"*\", and no file"));
}

TEST_F(SavedFiltersTest, AreThoseWithAFiltersName) {
  std::filesystem::create_directories(filters_.folder() / "folder.json");
  for (const char* const name : {".json", "a.txt", " b.json", "c.json.json", "ok.json"})
    account::testing::write(filters_.folder() / name, "");
  EXPECT_THAT(filters_.names(), ElementsAre("ok"));
}

// What is saved is what is read again.
TEST(FilterFileText, IsReadAsItWasSaved) {
  FilterObject filter(reportNamed("sfc-item").registration, InitialValues::none);
  setFilterItems(filter,
                 std::vector<std::string>{"cWhCode=07,01", "dKeepDate=2024-03-01..", "cModal=1", "cFree1=\"红\""});
  FilterEntry& added = filter.add({.key = "cMemo", .chinese = "备注", .english = "Memo", .range = true});
  added.value = "a";
  added.value2 = "b";
  filter.find("cInvClass")->sql = "1 = 1";
  std::set<const FilterEntry*> entries;
  for (const auto& entry : filter.entries()) {
    if (entry->item.key != "cModal") entries.insert(entry.get());
  }
  const std::string text = filterFileText(filter, entries, Language::english);
  EXPECT_EQ(JsonSchema(filterFileSchema).faultOf(nlohmann::ordered_json::parse(text)), std::nullopt);

  FilterObject again(reportNamed("sfc-item").registration, InitialValues::none);
  applyFilterFile(again, text, "f");
  ASSERT_EQ(again.entries().size(), filter.entries().size());
  for (std::size_t i = 0; i < filter.entries().size(); ++i) {
    const FilterEntry &one = *filter.entries()[i], &two = *again.entries()[i];
    EXPECT_EQ(two.item.key, one.item.key);
    EXPECT_EQ(two.item.range, one.item.range);
    EXPECT_EQ(two.value, one.item.key == "cModal" ? "" : one.value);
    EXPECT_EQ(two.value2, one.item.range ? one.value2 : "") << one.item.key;
    EXPECT_EQ(two.sql, one.sql);
  }
  EXPECT_EQ(again.find("cMemo")->item.english, "Memo");
}

TEST(FilterFileText, HoldsNoBrokenText) {
  FilterObject filter(reportNamed("sfc-item").registration, InitialValues::none);
  FilterEntry& entry = *filter.find("cFree1");
  entry.value = "\xed\xa0\x80";
  EXPECT_THROW(filterFileText(filter, {&entry}, Language::chinese), UserError);
}

}  // namespace
}  // namespace quillon::workbench
