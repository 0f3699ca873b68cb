// Layout files: what they hold, what is refused and where, and what is asked beside them.
#include "workbench/runs/kept_layouts.h"

#include <gmock/gmock.h>

#include "tests/workbench/account/test_folder.h"
#include "workbench/catalogue/catalogue.h"
#include "workbench/platform/user_error.h"
#include "workbench/tsql/values/utf8_path.h"

namespace quillon::workbench {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

template <typename Work>
std::string refusal(const Work& work) {
  try {
    work();
  } catch (const UserError& error) {
    return error.what();
  }
  return "none";
}
std::string refused(const std::string& text) {
  return refusal([&] { parseKeptLayout(text, "a.json"); });
}

class KeptLayoutsTest : public testing::Test {
 protected:
  account::testing::TestFolder home_;
  KeptLayouts layouts_{home_ / "config" / "layouts"};
};

TEST_F(KeptLayoutsTest, AreReadAsTheyWereKept) {
  const KeptLayout lines{
      .report = "fx-detail",
      .text = {.layout = "ledger",
               .arrangement = {.columns = {"cVouCode", "摘要"}, .sort = {"-dVouDate"}, .groupBy = {"月份"}},
               .allColumns = true,
               .details = true}};
  layouts_.keep("账", lines, false);
  const KeptLayout read = layouts_.read("账");
  EXPECT_EQ(read.report, "fx-detail");
  EXPECT_EQ(keptLayoutText(read), keptLayoutText(lines));
  EXPECT_THAT(read.text.arrangement.columns, ElementsAre("cVouCode", "摘要"));
  EXPECT_TRUE(read.text.allColumns && read.text.details);
  layouts_.keep("sums",
                {.report = "outsum-item", .text = {.arrangement = {.sort = {"-amount"}}, .pivot = "仓库/月份/金额"}},
                false);
  EXPECT_EQ(layouts_.read("sums").text.pivot, "仓库/月份/金额");
  EXPECT_THAT(layouts_.names(), ElementsAre("sums", "账"));
}

TEST_F(KeptLayoutsTest, HaveEachNameByItself) {
  layouts_.keep("a", {.report = "sfc-item", .text = {.arrangement = {.columns = {"a, b", "c"}, .sort = {"-a,,b"}}}},
                false);
  EXPECT_EQ(account::testing::contentOf(layouts_.path("a")),
            "{\n  \"report\": \"sfc-item\",\n  \"columns\": [\n    \"a\",\n    \"b\",\n    \"c\"\n  ],\n  \"sort\": [\n"
            "    \"-a\",\n    \"b\"\n  ]\n}\n");
  account::testing::write(layouts_.path("b"), R"({"report": "sfc-item", "columns": ["a,b"]})");
  EXPECT_THAT(layouts_.read("b").text.arrangement.columns, ElementsAre("a", "b"));
}

TEST_F(KeptLayoutsTest, HaveNoNameOfTheReportsOwn) {
  for (const char* const name : {"summary", "Lines", "PIVOT", "vouchers"})
    EXPECT_EQ(refusal([&] { layouts_.keep(name, {.report = "sfc-item"}, true); }),
              "\"" + std::string(name) + "\" is no name for a layout: the reports have a layout of this name");
  account::testing::write(home_ / "tree.json", R"({"report": "sfc-item"})");
  EXPECT_THAT(KeptLayouts(home_.path()).names(), IsEmpty()) << "one that was put there by hand could not be meant";
}

TEST_F(KeptLayoutsTest, AreNotReplacedByOnesOfAnotherReport) {
  layouts_.keep("a", {.report = "sfc-item"}, false);
  EXPECT_EQ(refusal([&] { layouts_.keep("a", {.report = "fx-wt"}, true); }),
            "there is a layout \"a\" of sfc-item already; give another name");
  EXPECT_EQ(refusal([&] { layouts_.keep("a", {.report = "sfc-item"}, false); }),
            "there is a layout \"a\" already; give --replace-layout, or another name");
  layouts_.keep("a", {.report = "sfc-item", .text = {.layout = "tree"}}, true);
  EXPECT_EQ(layouts_.read("a").text.layout, "tree");
  EXPECT_EQ(refusal([&] { layouts_.read("b"); }), "there is no kept layout \"b\"; see quillon layouts list");
}

TEST(LayoutFile, IsRefusedWithItsLine) {
  EXPECT_EQ(refused("{\n\"report\": \"sfc-item\",\n\"colums\": []}"),
            "a.json, line 3: \"colums\" is not known; did you mean columns?");
  EXPECT_EQ(refused("{}"), "a.json, line 1: the file lacks \"report\"");
  EXPECT_EQ(refused("{\"report\": \"sfc-item\", \"sort\": \"a\"}"), "a.json, line 1: \"sort\" must be a list");
  EXPECT_EQ(refused("[]"), "a.json, line 1: the file must be an object");
  EXPECT_THAT(refused("{"), testing::StartsWith("a.json"));
  EXPECT_EQ(refused(R"({"report": "sfc"})"),
            "a.json: there is no report \"sfc\"; the reports are: sfc-item, outsum-item, fx-detail, fx-wt");
  EXPECT_EQ(refused(R"({"report": "sfc-item", "layout": "ledger"})"),
            "a.json: sfc-item has no layout ledger; it has summary, tree, lines");
  EXPECT_THAT(refused(R"({"report": "sfc-item", "pivot": "仓库"})"),
              testing::StartsWith("a.json: \"仓库\" is no pivot"));
  EXPECT_THAT(refused(R"({"report": "sfc-item", "pivot": "cWhCode//amount", "layout": "tree"})"),
              testing::StartsWith("a.json: "));
}

TEST(LayoutFile, HasTheSchemaThatShips) {
  EXPECT_EQ(std::string(layoutFileSchema), account::testing::contentOf(QUILLON_LAYOUT_SCHEMA));
}

TEST(LayoutFile, YieldsToWhatIsAskedBesideIt) {
  const account::testing::TestFolder folder;
  const auto file = folder / "a.json";
  account::testing::write(file,
                          R"({"report": "outsum-item", "layout": "lines", "columns": ["a", "b"], "sort": ["-a"]})");
  const LayoutText text = withKeptLayout(
      reportNamed("outsum-item"), {.layout = "a", .arrangement = {.sort = {"b"}, .where = {"a=1"}}, .allColumns = true},
      utf8FromPath(file));
  EXPECT_EQ(text.layout, "lines");
  EXPECT_THAT(text.arrangement.columns, ElementsAre("a", "b"));
  EXPECT_THAT(text.arrangement.sort, ElementsAre("b"));
  EXPECT_THAT(text.arrangement.where, ElementsAre("a=1"));
  EXPECT_TRUE(text.allColumns);
}

}  // namespace
}  // namespace quillon::workbench
