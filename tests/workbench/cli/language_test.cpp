// The language of what the program says: that of --lang, for its errors and for wrong usage, too.
#include "workbench/cli/language_option.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <regex>
#include <sstream>

#include "tests/workbench/account/test_folder.h"
#include "workbench/account/account.h"
#include "workbench/cli/account_check_command.h"
#include "workbench/cli/account_command.h"
#include "workbench/cli/command_line.h"
#include "workbench/cli/dialog_command.h"
#include "workbench/cli/drill_command.h"
#include "workbench/cli/list_command.h"
#include "workbench/cli/report_command.h"
#include "workbench/presentation/text_cells.h"
#include "workbench/tsql/values/utf8_path.h"

namespace quillon::workbench {
namespace {

using testing::AllOf;
using testing::EndsWith;
using testing::HasSubstr;
using testing::Not;
using testing::StartsWith;

Language languageOfLine(std::vector<std::string> arguments) {
  std::ranges::reverse(arguments);
  return languageOf(arguments);
}

TEST(CommandLanguage, IsThatOfTheCommandUnlessStated) {
  for (const char* command : {"report", "dialog", "drill", "list", "filters"}) {
    EXPECT_EQ(languageOfLine({command, "x"}), Language::chinese) << command;
    EXPECT_EQ(languageOfLine({command, "x", "--lang", "en"}), Language::english) << command;
    EXPECT_EQ(languageOfLine({command, "--lang=EN", "x"}), Language::english) << command;
  }
  for (const char* command : {"account", "sql", "trace", "help", "reprot"}) {
    EXPECT_EQ(languageOfLine({command, "x"}), Language::english) << command;
    EXPECT_EQ(languageOfLine({command, "x", "--lang", "zh"}), Language::chinese) << command;
  }
  EXPECT_EQ(languageOfLine({}), Language::english);
  EXPECT_EQ(languageOfLine({"--help"}), Language::english);
}

TEST(CommandLanguage, IsNotTakenFromWhatSaysNone) {
  EXPECT_EQ(languageOfLine({"report", "--lang"}), Language::chinese);
  EXPECT_EQ(languageOfLine({"report", "--lang", "de"}), Language::chinese);
  EXPECT_EQ(languageOfLine({"report", "--", "--lang", "en"}), Language::chinese);
  EXPECT_EQ(languageOfLine({"account", "report"}), Language::english) << "the first word is the command";
}

class SpokenLanguage : public testing::Test {
 protected:
  SpokenLanguage() { account::createSample(folder_ / "a", {.rows = 500, .years = 1}); }

  std::string path(std::string_view name) const { return utf8FromPath(folder_ / name); }
  AccountSource source() const { return AccountSource::inFile(folder_ / "a"); }

  // What the program says on standard error, without "quillon: " and the line's end.
  static std::string said(std::vector<std::string> arguments) {
    std::ranges::reverse(arguments);
    const Language language = languageOf(arguments);
    std::ostringstream errors;
    testing::internal::CaptureStdout();
    testing::internal::CaptureStderr();
    try {
      runCommandLine(std::move(arguments), "1.2.3", errors);
    } catch (const std::exception& error) {
      errors << "quillon: " << errorLine(error, language) << '\n';
    }
    testing::internal::GetCapturedStdout();
    const std::string text = testing::internal::GetCapturedStderr() + errors.str();
    return std::regex_replace(text, std::regex("quillon: ([^\n]*)\n"), "$1");
  }

  account::testing::TestFolder folder_;
};

struct Case {
  std::vector<std::string> arguments;
  std::string chinese;
  std::string english;
};

TEST_F(SpokenLanguage, IsThatOfTheReportForErrors) {
  const std::string a = path("a");
  const std::vector<Case> cases = {
      {{"report", "sfc-itm", "--account", a},
       "没有报表“sfc-itm”；您要的是 sfc-item 吗？报表有：sfc-item、outsum-item、fx-detail、fx-wt",
       "there is no report \"sfc-itm\"; did you mean sfc-item? the reports are: sfc-item, outsum-item, fx-detail, fx-wt"},
      {{"report", "fx-wt", "--account", a, "--set", "cDefine5=x"},
       "过滤项 cDefine5（自定义项5）：“x”不是数字；请写数字，小数前加点",
       "filter item cDefine5 (User-defined field 5): \"x\" is no number; write digits with a point"},
      {{"report", "sfc-item", "--account", a, "--set", "cWhCode"},
       "“cWhCode”没有设置过滤项；请写 key=value",
       "\"cWhCode\" sets no filter item; write key=value"},
      {{"report", "sfc-item", "--account", a, "--set", "iYear=1999"},
       "过滤项 iYear（会计年度）：没有选项“1999”；可选 2024",
       "filter item iYear (Year): there is no choice \"1999\"; choose of 2024"},
      {{"report", "sfc-item", "--account", a, "--layout", "ledger"},
       "sfc-item 没有版式 ledger；它有 summary、tree、lines",
       "sfc-item has no layout ledger; it has summary, tree, lines"},
      {{"report", "sfc-item", "--account", a, "-o", a},
       "不会覆盖 " + a + "：它是账套；请指定其他文件",
       "will not write over " + a + ": it is an account; name another file"},
      {{"report", "sfc-item", "--account", a, "--where", "x"},
       "“x”不是条件；请写 column=value、column=value,value、column=lower..upper 或 column~part",
       "\"x\" is no condition; write column=value, column=value,value, column=lower..upper or column~part"},
      {{"report", "sfc-item", "--account", a, "--filter", "none.json"},
       "无法读取 none.json；请检查名称和权限",
       "cannot read none.json; check the name and its permissions"},
      {{"dialog", "sfc-item", "--account", a, "--step", "open"},
       "没有步骤“open”；步骤有：init、view、click、change:KEY=VALUE",
       "there is no step \"open\"; the steps are: init, view, click, change:KEY=VALUE"},
      {{"dialog", "sfc-item", "--account", a, "--step", "init", "--step", "change:iYear=1999"},
       "步骤 change:iYear=1999：过滤项 iYear（会计年度）：没有选项“1999”；可选 2024",
       "step change:iYear=1999: filter item iYear (Year): there is no choice \"1999\"; choose of 2024"},
      {{"report", "sfc-item", "--account", path("none")},
       "无法打开账套文件“" + path("none") + "”：没有此文件",
       "Unable to open the account file '" + path("none") + "': there is no such file."},
      {{"drill", "sfc-item", "--account", a, "--row", "x=1"},
       "sfc-item 的行不能打开单据；以下报表的行可以：fx-detail、fx-wt",
       "the rows of sfc-item open no documents; those of these reports do: fx-detail, fx-wt"},
      {{"drill", "fx-wt", "--account", a, "--row", "RowNo=1"},
       "RowNo 是按过滤条件运行的报表的行号：请同时给出过滤条件（--set、--filter）",
       "RowNo counts the rows of a report that is run with a filter: give its filter too (--set, --filter)"},
      {{"report", "sfc-item", "--account", a, "--set", "cWhCode=ZZ", "--format", "csv"},
       "过滤项 cWhCode：账套没有仓库 ZZ",
       "filter item cWhCode: the account has no warehouse ZZ"}};
  for (const Case& each : cases) {
    std::vector<std::string> english = each.arguments;
    english.insert(english.end(), {"--lang", "en"});
    EXPECT_EQ(said(each.arguments), each.chinese);
    EXPECT_EQ(said(english), each.english);
  }
}

TEST_F(SpokenLanguage, IsThatOfTheCommandForWrongUsage) {
  const std::string see = "；见 quillon report --help";
  EXPECT_EQ(said({"report"}), "必须给出 REPORT" + see);
  EXPECT_EQ(said({"report", "sfc-item", "--account"}), "--account 需要一个值" + see);
  EXPECT_EQ(said({"report", "sfc-item", "--account", "x", "--limit", "many"}),
            "--limit：“many”不是 0 或更大的整数" + see);
  EXPECT_EQ(said({"report", "sfc-item", "--account", "x", "--format", "xml"}),
            "--format：“xml”不在 csv、html、json、table、xlsx 之列" + see);
  EXPECT_EQ(said({"report", "sfc-item", "--account", "x", "--format", "xlsx"}),
            "--format：xlsx 需要写入文件；请用 -o FILE 指定" + see);
  EXPECT_EQ(said({"report", "sfc-item", "--account", "x", "--date", "1"}),
            "--date：“1”不是日期；请写成 yyyy-mm-dd" + see);
  EXPECT_EQ(said({"report", "sfc-item", "--account", "x", "--keep", "--compare", "y"}),
            "--keep 不能与 --compare 同时给出" + see);
  EXPECT_EQ(said({"report", "sfc-item", "--account", "x", "--replace-filter"}),
            "--replace-filter 需要 --save-filter" + see);
  EXPECT_EQ(said({"report", "sfc-item", "--account", "x", "--replace-filter", "--lang", "en"}),
            "--replace-filter requires --save-filter; see quillon report --help");
  EXPECT_EQ(said({"report", "sfc-item", "--acount", "x"}),
            "quillon report 没有选项 --acount；您要的是 --account 吗？见 quillon report --help");
  EXPECT_EQ(said({"list", "wharehouses", "--account", "x"}),
            "KIND：没有列表“wharehouses”；您要的是 warehouses 吗？见 quillon list --help");
  EXPECT_EQ(said({"sql", "--lang", "zh"}), "请给出 --account 或 --empty 之一；见 quillon sql --help");
  EXPECT_EQ(said({"account", "nwe", "--lang", "zh"}),
            "quillon account 没有命令“nwe”；您要的是 new 吗？见 quillon account --help");
}

TEST_F(SpokenLanguage, StandsAroundTheWordsOfSql) {
  account::testing::write(folder_ / "s.sql", "Select *\nFrom none\n");
  const std::string script = path("s.sql");
  EXPECT_EQ(said({"sql", "--empty", script, "--lang", "zh"}),
            script + " 第 2 行：错误 208：Invalid object name 'none'.");
  EXPECT_EQ(said({"sql", "--empty", script}), script + ", line 2: error 208: Invalid object name 'none'.");
}

TEST_F(SpokenLanguage, IsThatOfAnAccountCommandWhenAsked) {
  EXPECT_EQ(said({"account", "new", path("a"), "--rows", "500", "--years", "1", "--lang", "zh"}),
            path("a") + " 已存在；请换一个名称，或先删除该文件");
  EXPECT_EQ(said({"account", "new", path("a"), "--rows", "500", "--years", "1"}),
            path("a") + " exists already; choose another name or delete the file first");
  std::ostringstream info;
  showInfo(source(), info, Language::chinese);
  EXPECT_THAT(info.str(),
              AllOf(StartsWith("账套 001，存货核算启用于 "), HasSubstr("年度  成本分项启用月"), HasSubstr("\n表 ")));
  std::ostringstream checked;
  EXPECT_TRUE(checkAccount(source(), {.language = Language::chinese}, checked));
  EXPECT_THAT(checked.str(), AllOf(StartsWith("检查 "), HasSubstr("\n报表连接所用的每个键都只有一行\n")));
}

TEST_F(SpokenLanguage, IsThatOfTheReportForExplanations) {
  std::ostringstream out, notes;
  runReport({.report = "sfc-item", .account = source(), .format = ReportFormat::csv, .explain = true}, out, notes);
  EXPECT_TRUE(std::regex_search(notes.str(), std::regex("\n\\[2\\] [0-9.]+ 毫秒")));
  EXPECT_TRUE(std::regex_search(notes.str(), std::regex("\n[0-9]+ 条语句，账套中 [0-9.]+ 毫秒，共 ")));
}

// --- Tables on a terminal ---------------------------------------------------------------------------------------------

// Without the sentence that names what is left out.
std::size_t widestLine(const std::string& text) {
  std::size_t widest = 0;
  std::istringstream lines(text);
  for (std::string line; std::getline(lines, line);) {
    if (line.find("--wide") == std::string::npos) widest = std::max(widest, cellWidth(line));
  }
  return widest;
}

TEST_F(SpokenLanguage, TablesOfEachCommandFitTheTerminal) {
  constexpr std::size_t columns = 60;
  const ScreenOptions narrow{.screen = Screen{.columns = columns, .lines = 1000}, .pager = false};
  ScreenOptions wide = narrow;
  wide.wide = true;
  const auto expectFit = [&](const auto& write) {
    std::ostringstream fitted, whole;
    write(fitted, narrow);
    write(whole, wide);
    EXPECT_LE(widestLine(fitted.str()), columns) << fitted.str();
    EXPECT_GT(widestLine(whole.str()), columns) << "the table is too narrow for this test";
    EXPECT_THAT(whole.str(), Not(HasSubstr("--wide")));
  };
  expectFit([this](std::ostream& out, const ScreenOptions& screen) {
    std::ostringstream notes;
    runDialog({.report = "sfc-item", .account = source(), .screen = screen}, out, notes);
  });
  expectFit([this](std::ostream& out, const ScreenOptions& screen) {
    std::ostringstream notes;
    runDrill({.report = {.report = "fx-wt", .account = source(), .settings = {"dKeepDate=2024-01-01..2024-12-31"}},
              .row = {"cVouType=01"},
              .screen = screen},
             out, notes);
  });
}

TEST_F(SpokenLanguage, ListsAndAccountsFitTheTerminal) {
  const auto screenOf = [](std::size_t columns) {
    return ScreenOptions{.screen = Screen{.columns = columns, .lines = 1000}, .pager = false};
  };
  std::ostringstream list;
  runList({.kind = "inventory", .account = source(), .limit = 3, .screen = screenOf(12)}, list);
  EXPECT_THAT(list.str(), AllOf(StartsWith("编码\n"), HasSubstr("终端太窄，略去 1 列：名称。用 --wide 显示全部。\n")));
  std::ostringstream info;
  showInfo(source(), info, Language::english, screenOf(50));
  EXPECT_THAT(info.str(), AllOf(HasSubstr("…"), HasSubstr("ledger lines"), Not(HasSubstr("cost items from month"))))
      << "headings above numbers are cut, numbers are not";
}

}  // namespace
}  // namespace quillon::workbench
