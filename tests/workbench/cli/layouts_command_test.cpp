// Layouts that are saved with a report, and used by name: by reports, by books.
#include "workbench/cli/layouts_command.h"

#include <gmock/gmock.h>

#include "tests/workbench/cli/command_test.h"

namespace quillon::workbench {
namespace {

using testing::EndsWith;
using testing::HasSubstr;
using testing::StartsWith;

class LayoutsCommand : public test::CommandTest {
 protected:
  test::End report(const std::vector<std::string>& options, const std::string& name = "outsum-item") const {
    std::vector<std::string> arguments = {"report",   name,     "--account", "ACCOUNT",   "--set",
                                          "cModal=1", "--lang", "en",        "--no-pager"};
    arguments.insert(arguments.end(), options.begin(), options.end());
    return run(std::move(arguments));
  }
  std::string outputOf(const std::vector<std::string>& options) const {
    const test::End end = report(options);
    EXPECT_EQ(end.status, 0) << end.errors;
    return end.out;
  }
  std::string file(const std::string& name, const std::string& text) const {
    account::testing::write(folder_ / name, text);
    return utf8FromPath(folder_ / name);
  }
};

TEST_F(LayoutsCommand, KeepsWhatWasShown) {
  const std::vector<std::string> asked = {"--layout", "lines", "--columns",  "金额,cInvCode,仓库编码",
                                          "--sort",   "-金额", "--group-by", "cWhCode"};
  std::vector<std::string> saving = asked;
  // The rows that are shown are a filter's affair.
  saving.insert(saving.end(), {"--where", "cWhCode=01", "--save-layout", "按仓库"});
  const test::End saved = report(saving);
  EXPECT_EQ(saved.status, 0);
  EXPECT_EQ(saved.errors, "quillon: the layout is saved as 按仓库\n");
  for (const char* format : {"table", "csv", "json"}) {
    std::vector<std::string> plain = asked;
    plain.insert(plain.end(), {"--format", format});
    EXPECT_EQ(outputOf({"--layout", "按仓库", "--format", format}), outputOf(plain)) << format;
  }
  EXPECT_EQ(run({"layouts", "list", "--lang", "en"}).out,
            "Name    Report       Layout\n"
            "------  -----------  "
            "-------------------------------------------------------------------------------\n"
            "按仓库  outsum-item  --layout lines --columns 金额,cInvCode,仓库编码 --sort -金额 --group-by cWhCode\n");

  const test::End again = report(saving);
  EXPECT_EQ(again.status, 1);
  EXPECT_EQ(again.out, "") << "it is refused before the report is run";
  EXPECT_EQ(again.errors, "there is a layout \"按仓库\" already; give --replace-layout, or another name");
  EXPECT_EQ(report({"--layout", "tree", "--save-layout", "按仓库", "--replace-layout"}).status, 0);
  EXPECT_EQ(run({"layouts", "show", "按仓库"}).out, "{\n  \"report\": \"outsum-item\",\n  \"layout\": \"tree\"\n}\n");

  EXPECT_EQ(run({"layouts", "remove", "按仓库"}).status, 0);
  EXPECT_THAT(run({"layouts", "list", "--lang", "en"}).out, StartsWith("no layouts are saved in "));
  EXPECT_EQ(run({"layouts", "remove", "按仓库"}).errors,
            "there is no kept layout \"按仓库\"; see quillon layouts list");
  EXPECT_EQ(run({"layouts", "show", "按仓库"}).errors, "there is no kept layout \"按仓库\"; see quillon layouts list");
}

TEST_F(LayoutsCommand, KeepsAPivot) {
  EXPECT_EQ(report({"--pivot", "cWhCode//amount", "--sort", "-amount", "--save-layout", "places"}).status, 0);
  const std::string plain = outputOf({"--pivot", "cWhCode//amount", "--sort", "-amount"});
  EXPECT_EQ(outputOf({"--layout", "places"}), plain);
  EXPECT_NE(outputOf({"--layout", "places", "--sort", "amount"}), plain);
  EXPECT_THAT(report({"--layout", "places", "--columns", "cInvCode"}).errors, HasSubstr("--pivot"));
  EXPECT_THAT(report({"--layout", "places", "--pivot", "cWhCode//amount"}).errors, HasSubstr("--pivot"));
}

TEST_F(LayoutsCommand, KeepsTheReportsFirstLayoutByItsName) {
  EXPECT_EQ(report({"--save-layout", "first"}).status, 0);
  EXPECT_THAT(run({"layouts", "list"}).out, EndsWith("\nfirst  outsum-item  --layout summary\n"));
  EXPECT_EQ(report({"--format", "csv", "--save-layout", "rows"}).status, 0);
  EXPECT_THAT(run({"layouts", "list"}).out, EndsWith("\nrows   outsum-item  --layout lines\n"));
}

TEST_F(LayoutsCommand, WhatIsAskedBesideItCounts) {
  EXPECT_EQ(
      report({"--layout", "lines", "--columns", "cInvCode,cWhCode,iMoney", "--sort", "-iMoney", "--save-layout", "a"})
          .status,
      0);
  EXPECT_EQ(outputOf({"--layout", "a", "--sort", "cInvCode", "--where", "cWhCode=01"}),
            outputOf({"--layout", "lines", "--columns", "cInvCode,cWhCode,iMoney", "--sort", "cInvCode", "--where",
                      "cWhCode=01"}));
  EXPECT_EQ(outputOf({"--layout", "a", "--columns", "iMoney"}),
            outputOf({"--layout", "lines", "--columns", "iMoney", "--sort", "-iMoney"}));
}

TEST_F(LayoutsCommand, TakesAFile) {
  const std::string path =
      file("lines.json", R"({"report": "outsum-item", "layout": "lines", "columns": ["cInvCode"]})");
  EXPECT_EQ(outputOf({"--layout", path}), outputOf({"--layout", "lines", "--columns", "cInvCode"}));
}

TEST_F(LayoutsCommand, RefusesNamesAndFilesInOneLine) {
  EXPECT_EQ(report({"--save-layout", "Tree"}).errors,
            "\"Tree\" is no name for a layout: the reports have a layout of this name");
  EXPECT_EQ(report({"--save-layout", "pivot"}).status, 1);
  EXPECT_EQ(report({"--save-layout", "a/b"}).errors,
            "\"a/b\" is no name for a layout: it may have letters, digits, blanks and - _ . ( ) + , in it");
  EXPECT_EQ(report({"--replace-layout"}).status, 2);
  EXPECT_FALSE(std::filesystem::exists(folder_ / "config"));

  EXPECT_EQ(report({"--layout", "lines", "--save-layout", "places"}).status, 0);
  const test::End unknown = report({"--layout", "place"});
  EXPECT_EQ(unknown.status, 2);
  EXPECT_THAT(unknown.errors, HasSubstr("\"place\" is none of summary, tree, lines, places; did you mean places?"));
  const test::End other = report({"--layout", "places"}, "sfc-item");
  EXPECT_EQ(other.status, 1);
  EXPECT_THAT(other.errors, EndsWith("is a layout of outsum-item and cannot be used for sfc-item"));
  EXPECT_EQ(report({"--save-layout", "places", "--replace-layout"}, "sfc-item").errors,
            "there is a layout \"places\" of outsum-item already; give another name");

  EXPECT_THAT(report({"--layout", "./none.json"}).errors, StartsWith("cannot read ./none.json"));
  EXPECT_THAT(report({"--layout", file("a.json", "{\n \"report\": \"outsum-item\",\n \"where\": []}")}).errors,
              EndsWith("a.json, line 3: \"where\" is not known"));
  EXPECT_THAT(report({"--layout", file("b.json", R"({"report": "outsum-item", "layout": "ledger"})")}).errors,
              EndsWith("b.json: outsum-item has no layout ledger; it has summary, tree, lines"));
  // A column that the result does not have shows when it is there.
  EXPECT_THAT(
      report({"--layout", file("c.json", R"({"report": "outsum-item", "layout": "lines", "columns": ["cInvCod"]})")})
          .errors,
      HasSubstr("there is no column \"cInvCod\"; did you mean cInvCode?"));
}

TEST_F(LayoutsCommand, SavesNothingOfAReportThatFails) {
  EXPECT_EQ(report({"--layout", "lines", "--columns", "cNoSuch", "--save-layout", "a"}).status, 1);
  EXPECT_FALSE(std::filesystem::exists(folder_ / "config" / "quillon" / "layouts"));
}

TEST_F(LayoutsCommand, ListsAFileThatItCannotRead) {
  const KeptLayouts layouts = KeptLayouts::ofUser();
  layouts.save("broken", "{", false);
  EXPECT_THAT(run({"layouts", "list", "--lang", "en"}).out, EndsWith("\nbroken          (cannot be read)\n"));
  EXPECT_THAT(run({"layouts", "show", "broken"}).errors, HasSubstr("broken.json"));
  EXPECT_EQ(report({"--layout", "lines", "--save-layout", "broken", "--replace-layout"}).status, 0);
}

TEST_F(LayoutsCommand, ABookNamesAKeptLayout) {
  EXPECT_EQ(report({"--layout", "lines", "--columns", "cInvCode,iMoney", "--sort", "-iMoney", "--save-layout", "dear"})
                .status,
            0);
  file("own.json", R"({"report": "outsum-item", "pivot": "cWhCode//amount"})");
  const std::string book = file("book.json", R"({"items": [
    {"title": "Dear", "report": "outsum-item", "set": ["cModal=1"], "layout": "dear", "where": ["cWhCode=01"]},
    {"title": "Own", "report": "outsum-item", "set": ["cModal=1"], "layout": "./own.json"}]})");
  const test::End made =
      run({"book", "run", book, "--account", "ACCOUNT", "--lang", "en", "-o", utf8FromPath(folder_ / "pages")});
  EXPECT_EQ(made.status, 0) << made.errors;
  const auto page = [&](const char* name, const std::vector<std::string>& options) {
    const std::string path = utf8FromPath(folder_ / "page.html");
    std::vector<std::string> all = options;
    all.insert(all.end(), {"--limit", "0", "-o", path});
    EXPECT_EQ(report(all).status, 0);
    const auto bodyOf = [](const std::string& text) { return text.substr(text.find("<table")); };
    EXPECT_EQ(bodyOf(account::testing::contentOf(folder_ / "pages" / name)),
              bodyOf(account::testing::contentOf(folder_ / "page.html")))
        << name;
  };
  page("01-Dear.html",
       {"--layout", "lines", "--columns", "cInvCode,iMoney", "--sort", "-iMoney", "--where", "cWhCode=01"});
  page("02-Own.html", {"--pivot", "cWhCode//amount"});

  const test::End wrong = run({"book", "check", file("wrong.json", R"({"items": [
    {"title": "One", "report": "outsum-item", "layout": "deer"},
    {"title": "Two", "report": "sfc-item", "layout": "dear"}]})"),
                               "--lang", "en"});
  EXPECT_EQ(wrong.status, 1);
  EXPECT_THAT(wrong.out, HasSubstr("entry 1 (One): there is no layout \"deer\", and no file; did you mean dear?"));
  EXPECT_THAT(wrong.out, HasSubstr("is a layout of outsum-item and cannot be used for sfc-item"));
}

}  // namespace
}  // namespace quillon::workbench
