#include "workbench/cli/report_command.h"

#include <gmock/gmock.h>
#include <CLI/CLI.hpp>

#include <algorithm>
#include <fstream>
#include <functional>
#include <iterator>
#include <map>
#include <regex>
#include <set>
#include <sstream>

#include "tests/workbench/account/leftovers.h"
#include "tests/workbench/platform/temporary_file.h"
#include "workbench/account/account.h"
#include "workbench/cli/account_command.h"
#include "workbench/cli/sql_command.h"
#include "workbench/cli/usage_message.h"
#include "workbench/platform/account_source.h"
#include "workbench/tsql/values/utf8_path.h"

namespace quillon::workbench {
namespace {

// What a command gives back to the shell: 0, 1 for work that cannot be done, 2 for wrong usage.
enum class Ends { well, failed, wrongUsage };

struct Outcome {
  Ends ends = Ends::well;
  std::string message;
};

Outcome call(std::vector<std::string> arguments) {
  CLI::App app;
  addReportCommand(app);
  addAccountCommand(app);
  addSqlCommand(app);
  std::ranges::reverse(arguments);
  try {
    app.parse(std::move(arguments));
    return {};
  } catch (const CLI::RuntimeError& error) {
    return {Ends::failed, error.what()};
  } catch (const CLI::ParseError& error) {
    return {Ends::wrongUsage, usageMessage(error.what()).english()};
  } catch (const std::exception& error) {
    return {Ends::failed, error.what()};
  }
}

// The regular expressions of GoogleTest differ from system to system; these do not.
MATCHER_P(MatchesPattern, pattern, "matches the regular expression " + std::string(pattern)) {
  return std::regex_match(arg, std::regex(pattern));
}
MATCHER_P(ContainsPattern, pattern, "contains the regular expression " + std::string(pattern)) {
  return std::regex_search(arg, std::regex(pattern));
}

std::vector<std::string> linesOf(const std::string& text) {
  std::istringstream rows(text);
  std::vector<std::string> lines;
  for (std::string line; std::getline(rows, line);)
    lines.push_back(line.ends_with('\r') ? line.substr(0, line.size() - 1) : line);
  return lines;
}

// Of a line of CSV without quotes.
std::string fieldOf(const std::string& line, std::size_t number) {
  std::istringstream fields(line);
  std::string field;
  for (std::size_t i = 0; i <= number; ++i)
    std::getline(fields, field, ',');
  return field;
}

// An amount with four decimals in hundredths of a cent; nothing is zero.
std::int64_t cents(std::string amount) {
  std::erase(amount, '.');
  return amount.empty() ? 0 : std::stoll(amount);
}

class ReportCommand : public testing::Test {
 protected:
  static void SetUpTestSuite() {
    file_ = std::make_unique<test::TemporaryFile>(".qacc");
    account::createSample(file_->path(), {.rows = 600, .years = 1});
  }
  static void TearDownTestSuite() { file_.reset(); }

  static std::string source() { return utf8FromPath(file_->path()); }

  static Outcome report(std::vector<std::string> more) {
    std::vector<std::string> arguments = {"report", "sfc-item", "--account", source()};
    arguments.insert(arguments.end(), more.begin(), more.end());
    return call(arguments);
  }

  // The outcome of a run with this filter file.
  static Outcome reportWithFilter(const std::string& text) {
    const test::TemporaryFile filter(".json");
    std::ofstream(filter.path(), std::ios::binary) << text;
    const test::TemporaryFile output(".txt");
    return report({"--filter", utf8FromPath(filter.path()), "-o", utf8FromPath(output.path())});
  }

  static std::string outputOf(std::vector<std::string> more, const std::string& ending = ".txt") {
    const test::TemporaryFile output(ending);
    more.insert(more.end(), {"-o", utf8FromPath(output.path())});
    const Outcome outcome = report(more);
    EXPECT_EQ(outcome.ends, Ends::well) << outcome.message;
    std::ifstream file(output.path(), std::ios::binary);
    return {std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
  }

  static inline std::unique_ptr<test::TemporaryFile> file_;
};

TEST_F(ReportCommand, WritesEachFormatToAFile) {
  EXPECT_THAT(outputOf({"--format", "csv"}), testing::StartsWith("autoid,cWhCode,cWhName,cInvCode,"));
  EXPECT_THAT(outputOf({"--format", "JSON"}), testing::StartsWith("{\"report\":\"sfc-item\","));
  EXPECT_THAT(outputOf({"--format", "html"}), testing::StartsWith("<!DOCTYPE html>"));
  EXPECT_THAT(outputOf({}),
              testing::StartsWith("收发存汇总表（按成本项目）\n会计年度：2024\n报表方式：按成本项目分类\n"));
  EXPECT_THAT(outputOf({"--lang", "en"}),
              testing::StartsWith("Receipt/issue/balance by cost item\nYear: 2024\nReport mode: by cost-item class\n"));
}

TEST_F(ReportCommand, TakesTheFormatFromTheFilesName) {
  EXPECT_THAT(outputOf({}, ".csv"), testing::StartsWith("autoid,cWhCode,cWhName,cInvCode,"));
  EXPECT_THAT(outputOf({}, ".Html"), testing::StartsWith("<!DOCTYPE html>"));
  EXPECT_THAT(outputOf({}, ".json"), testing::StartsWith("{\"report\":\"sfc-item\","));
  EXPECT_THAT(outputOf({}, ".xlsx"), testing::StartsWith("PK"));
  EXPECT_THAT(outputOf({}, ".csv.old"), testing::StartsWith("收发存汇总表")) << "the last ending counts";
  EXPECT_THAT(outputOf({"--format", "table"}, ".csv"), testing::StartsWith("收发存汇总表")) << "what is told counts";
}

TEST_F(ReportCommand, HoldsPivotsOfTwoFiltersAgainstEachOther) {
  const auto pivot = [](std::vector<std::string> more) {
    more.insert(more.end(), {"--set", "cModal=1", "--pivot", "cWhCode//issueAmount", "--format", "csv"});
    return linesOf(outputOf(more));
  };
  const std::string may = "dKeepDate=2024-05-01..2024-05-31", june = "dKeepDate=2024-06-01..2024-06-30";
  const std::vector<std::string> compared = pivot({"--set", may, "--against", june});
  EXPECT_EQ(
      compared.at(0),
      "rowKind,level,cWhCode,cWhName,one/issueAmount,other/issueAmount,difference/issueAmount,percent/issueAmount");
  // Each figure is that of the one's or the other's own pivot, and the difference is exact.
  std::map<std::string, std::string> one, other;
  for (const std::string& line : pivot({"--set", may}))
    one[fieldOf(line, 2)] = fieldOf(line, 4);
  for (const std::string& line : pivot({"--set", june}))
    other[fieldOf(line, 2)] = fieldOf(line, 4);
  std::set<std::string> keys;
  for (std::size_t i = 1; i < compared.size(); ++i) {
    const std::string key = fieldOf(compared[i], 2);
    EXPECT_TRUE(keys.insert(key).second) << key;
    EXPECT_EQ(cents(fieldOf(compared[i], 4)), cents(one[key])) << key;
    EXPECT_EQ(cents(fieldOf(compared[i], 5)), cents(other[key])) << key;
    EXPECT_EQ(cents(fieldOf(compared[i], 6)), cents(one[key]) - cents(other[key])) << key;
  }
  for (const auto& figures : {one, other}) {
    for (const auto& [key, amount] : figures)
      EXPECT_TRUE(key == "cWhCode" || keys.contains(key)) << key;
  }
  EXPECT_GT(keys.size(), 3U);
}

TEST_F(ReportCommand, HoldsPivotsOfTwoAccountsAgainstEachOther) {
  const test::TemporaryFile copy(".qacc");
  std::filesystem::copy_file(file_->path(), copy.path(), std::filesystem::copy_options::overwrite_existing);
  const std::string name = utf8FromPath(copy.path().filename());
  const std::string page =
      outputOf({"--set", "cModal=1", "--pivot", "仓库//金额", "--compare", utf8FromPath(copy.path())}, ".html");
  EXPECT_THAT(page, testing::HasSubstr(name));
  EXPECT_THAT(page, testing::HasSubstr(utf8FromPath(file_->path().filename())));
}

TEST_F(ReportCommand, ShowsAPivotInEachFormat) {
  const std::vector<std::string> pivot = {"--set", "cModal=1", "--pivot", "仓库/收发状态/金额,金额:列"};
  const auto with = [&pivot](std::vector<std::string> more) {
    more.insert(more.end(), pivot.begin(), pivot.end());
    return outputOf(more);
  };
  EXPECT_THAT(with({}),
              testing::AllOf(testing::HasSubstr("\n行：仓库\n列：收发状态\n数值：金额、金额占列%\n\n透视表\n"),
                             testing::HasSubstr("\n合计 "), testing::HasSubstr("  100.00%\n")));
  EXPECT_THAT(with({"--lang", "en"}),
              testing::HasSubstr("\nDown: Warehouse\nAcross: State\nFigures: Amount; Amount, % of column\n"));
  EXPECT_THAT(with({"--format", "csv"}), testing::StartsWith("rowKind,level,cWhCode,cWhName,期初结存/amount,"));
  EXPECT_THAT(with({"--format", "csv", "--captions"}),
              testing::StartsWith("rowKind,level,仓库编码,仓库,期初结存金额,"));
  EXPECT_THAT(with({"--format", "json"}), testing::HasSubstr("\"layout\":\"pivot\""));
  EXPECT_THAT(with({"--format", "html"}), testing::HasSubstr(">透视表</h2>"));
  EXPECT_THAT(with({"--where", "cWhCode=zzz"}), testing::HasSubstr("共 0 行"));
}

TEST_F(ReportCommand, OrdersAndCutsAPivot) {
  const auto first = [](const std::string& sort) {
    const std::string csv =
        outputOf({"--set", "cModal=1", "--pivot", "存货//期末金额", "--sort", sort, "--limit", "1", "--format", "csv"});
    std::istringstream lines(csv);
    std::string line;
    std::getline(lines, line);
    std::getline(lines, line);
    std::string total;
    std::getline(lines, total);
    EXPECT_THAT(total, testing::StartsWith("total,0,合计,,"));
    return line;
  };
  EXPECT_NE(first("-期末金额"), first("期末金额"));
  EXPECT_NE(first("-存货"), first("存货"));
}

TEST_F(ReportCommand, RefusesAPivotBeforeTheReportRuns) {
  EXPECT_EQ(report({"--pivot", "Warehuose//Amount"}).message,
            "sfc-item has no dimension \"Warehuose\"; did you mean Warehouse?");
  EXPECT_EQ(report({"--pivot", "仓库//Amuont"}).ends, Ends::failed);
  EXPECT_EQ(report({"--pivot", "仓库//金额", "--layout", "tree"}).message,
            "--pivot decides columns and groups itself; leave --layout, --columns and --group-by out");
  EXPECT_EQ(report({"--pivot", "仓库//金额", "--group-by", "仓库"}).ends, Ends::failed);
  EXPECT_THAT(report({"--pivot", "仓库"}).message,
              testing::StartsWith("\"仓库\" is no pivot; write down/across/figures"));
  EXPECT_EQ(report({"--pivot", "仓库//金额", "--compare", source(), "--keep"}).ends, Ends::wrongUsage);
  EXPECT_EQ(report({"--compare", source(), "--format", "csv"}).ends, Ends::wrongUsage);
  EXPECT_EQ(report({"--against", "dKeepDate=2024-02-01.."}).message,
            "--against holds two pivots against each other; say with --pivot which");
  EXPECT_EQ(report({"--set", "cModal=2", "--pivot", "收发状态//金额"}).message,
            "sfc-item has no dimension \"收发状态\"");
}

TEST_F(ReportCommand, ShowsUserDefinedFieldsWhenAsked) {
  const std::string usual = outputOf({"--layout", "lines", "--lang", "en"});
  EXPECT_EQ(usual.find("Inventory field 1"), std::string::npos);
  EXPECT_THAT(usual, ContainsPattern("lines; [0-9]+ more columns are not shown \\(--all-columns\\)\n"));
  EXPECT_THAT(outputOf({"--layout", "lines"}), ContainsPattern("行；另有 [0-9]+ 列未显示（--all-columns）\n"));
  const std::string all = outputOf({"--layout", "lines", "--lang", "en", "--all-columns"});
  EXPECT_THAT(all, testing::HasSubstr("Inventory field 1"));
  EXPECT_EQ(all.find("not shown"), std::string::npos);
  EXPECT_THAT(outputOf({"--format", "csv"}), testing::HasSubstr(",cInvDefine1,")) << "for programs: everything";
}

TEST_F(ReportCommand, ShowsTheLayoutThatIsAskedFor) {
  EXPECT_THAT(outputOf({}), testing::HasSubstr("\n按成本项目汇总\n")) << "the first one unless told";
  EXPECT_THAT(outputOf({"--layout", "TREE"}), testing::HasSubstr("\n分级汇总\n"));
  EXPECT_THAT(outputOf({"--layout", "lines"}), testing::HasSubstr("\n明细\n"));
  EXPECT_EQ(report({"--layout", "ledger"}).message, "sfc-item has no layout ledger; it has summary, tree, lines");
  EXPECT_EQ(report({"--layout", "ledger"}).ends, Ends::failed);
  EXPECT_EQ(report({"--layout", "list"}).ends, Ends::wrongUsage);
}

// The receipts of warehouse 07, largest first, as a statement on the rows gives them.
TEST_F(ReportCommand, ArrangesLinesAsAsked) {
  const std::vector<std::string> asked = {"--set",   "cModal=1",    "--layout",        "lines",      "--format",
                                          "csv",     "--columns",   "存货编码,Amount", "--sort",     "-金额",
                                          "--where", "cState=收入", "--where",         "仓库编码=07"};
  std::ostringstream out, notes;
  runReport({.report = "sfc-item",
             .account = AccountSource(source()),
             .settings = {"cModal=1"},
             .format = ReportFormat::csv,
             .language = Language::english,
             .keep = true},
            out, notes);
  const std::string name = std::regex_replace(notes.str(), std::regex("[^]*(QuillonReport\\w+) is kept[^]*"), "$1");
  const auto account = tsql::Connection::open(file_->path(), tsql::OpenMode::existing);
  std::vector<std::string> expected;
  {
    const auto rows = account->query("Select cInvCode, iMoney From " + name +
                                     " Where iState = 2 And cWhCode = N'07' Order By iMoney Desc");
    while (rows->next())
      expected.push_back(tsql::toText(rows->value(0)).value() + "," + tsql::toText(rows->value(1)).value());
  }
  account->execute("Drop Table " + name);
  ASSERT_GT(expected.size(), 5U);
  std::istringstream written(outputOf(asked));
  std::vector<std::string> shown;
  for (std::string line; std::getline(written, line);)
    shown.push_back(line.substr(0, line.find('\r')));
  ASSERT_EQ(shown.front(), "cInvCode,iMoney");
  shown.erase(shown.begin());
  EXPECT_THAT(shown, testing::UnorderedElementsAreArray(expected));
  const auto amount = [](const std::string& line) { return std::stod(line.substr(line.find(',') + 1)); };
  EXPECT_TRUE(std::ranges::is_sorted(shown, std::greater<>(), amount));

  std::vector<std::string> three = asked;
  three.insert(three.end(), {"--limit", "3"});
  const std::string cut = outputOf(three);
  EXPECT_EQ(std::ranges::count(cut, '\n'), 4);
  EXPECT_EQ(report({"--layout", "lines", "--columns", "存货编号"}).message,
            "there is no column \"存货编号\"; did you mean 存货编码?");
}

TEST_F(ReportCommand, PutsLinesUnderSubtotals) {
  const std::string csv = outputOf({"--set", "cModal=1", "--layout", "lines", "--group-by", "仓库", "--columns",
                                    "cState,iMoney", "--format", "csv"});
  EXPECT_THAT(csv, testing::StartsWith("rowKind,level,cWhName,cState,iMoney\r\nline,"));
  EXPECT_THAT(csv, testing::HasSubstr("\r\nsubtotal,0,线边库 小计,收入,"));
  EXPECT_THAT(csv, testing::HasSubstr("\r\ntotal,0,期末结存合计,,"));
}

TEST_F(ReportCommand, WritesCsvForSpreadsheets) {
  const std::string csv = outputOf({"--format", "csv"});
  EXPECT_THAT(outputOf({"--format", "csv", "--captions"}), testing::StartsWith("流水号,仓库编码,仓库,存货编码,存货,"));
  EXPECT_THAT(outputOf({"--format", "csv", "--captions", "--lang", "en"}),
              testing::StartsWith("Ledger line,Warehouse code,Warehouse,Inventory code,Inventory,"));
  EXPECT_EQ(outputOf({"--format", "csv", "--bom"}), "\xEF\xBB\xBF" + csv) << "the same but for the mark";
  EXPECT_THAT(outputOf({"--format", "csv", "--layout", "summary", "--captions"}),
              testing::StartsWith("rowKind,level,编码,成本项目,期初结存数量,期初结存金额,收入数量,收入金额,"));
}

TEST_F(ReportCommand, NamesTheCompanyOnPages) {
  EXPECT_THAT(outputOf({"--format", "html", "--company", "东山机械厂"}), testing::HasSubstr("<dd>东山机械厂</dd>"));
  EXPECT_THAT(outputOf({"--format", "html"}), testing::HasSubstr("<dd>账套 001</dd>")) << "else its account";
}

TEST_F(ReportCommand, TakesAFilterFileAndSettingsOverIt) {
  const test::TemporaryFile filter(".json");
  std::ofstream(filter.path(), std::ios::binary)
      << R"({"items":[{"name":"cmodal","value":1},{"name":"dKeepDate","value":"2024-01-01","value2":"2024-06-30"}]})";
  EXPECT_THAT(outputOf({"--filter", utf8FromPath(filter.path())}),
              testing::HasSubstr("报表方式：按成本项目\n记账日期：2024-01-01 .. 2024-06-30\n"));
  EXPECT_THAT(outputOf({"--filter", utf8FromPath(filter.path()), "--set", "cModal=2"}),
              testing::HasSubstr("报表方式：按费用项目\n"));
}

TEST_F(ReportCommand, TakesCaptionsForKeysAndNamesForCodes) {
  const std::string byCode = outputOf({"--set", "cModal=1", "--set", "cWhCode=07,01"});
  EXPECT_THAT(byCode, testing::HasSubstr("报表方式：按成本项目\n仓库：07 线边库, 01 原材料库\n"));
  EXPECT_EQ(outputOf({"--set", "报表方式=按成本项目", "--set", "仓库=线边库,原材料库"}), byCode);
  EXPECT_EQ(outputOf({"--set", "Report mode=by cost item", "--set", "Warehouse=07", "--set", "warehouse=原材料库",
                      "--no-dialog"}),
            byCode);
  const test::TemporaryFile filter(".json");
  std::ofstream(filter.path(), std::ios::binary)
      << R"({"items":[{"name":"Report mode","value":"1"},{"name":"仓库","value":"线边库\t01"}]})";
  EXPECT_EQ(outputOf({"--filter", utf8FromPath(filter.path())}), byCode);
}

// What the ledger's columns hold is looked up where the column's codes are.
TEST_F(ReportCommand, TakesTheNamesInAnItemThatAFilterFileAdds) {
  const auto rows = [](const std::string& value) {
    const test::TemporaryFile filter(".json");
    std::ofstream(filter.path(), std::ios::binary)
        << R"({"items":[{"name":"cPersonCode","range":true,"value":")" + value + R"(","value2":")" + value + "\"}]}";
    return outputOf({"--filter", utf8FromPath(filter.path()), "--format", "csv"});
  };
  EXPECT_EQ(rows("沈静怡"), rows("P002"));
  EXPECT_NE(rows("P002"), rows("P001"));
}

TEST_F(ReportCommand, NamesTheBatchesAfterTheMessageThatOneIsNeeded) {
  const auto sample = tsql::Connection::open(file_->path(), tsql::OpenMode::readOnly);
  const auto cursor = sample->query(
      "Select Top 1 line.cInvCode, line.cWhCode, line.cBatchIA From ia_subsidiary line Inner Join Inventory inv On "
      "inv.cInvCode = line.cInvCode Where inv.bCheckBatch = 1 And line.cBatchIA <> N'' And line.cWhCode <> N'' And "
      "inv.bCheckFree1 = 0");
  ASSERT_TRUE(cursor->next());
  const auto text = [&cursor](std::size_t column) { return tsql::toText(cursor->value(column)).value_or(""); };
  std::ostringstream out, notes;
  EXPECT_THROW(runReport({.report = "fx-detail",
                          .account = AccountSource::inFile(file_->path()),
                          .settings = {"cInvCode=" + text(0), "cWhCode=" + text(1)}},
                         out, notes),
               std::exception);
  EXPECT_THAT(notes.str(), testing::StartsWith("批号不能为空\nquillon: 可选的批号（cBatchIA）："));
  EXPECT_THAT(notes.str(), testing::HasSubstr(text(2)));
}

TEST_F(ReportCommand, TranslatesAnItemThatTheReportLeavesToTheFilter) {
  const test::TemporaryFile filter(".json");
  std::ofstream(filter.path(), std::ios::binary)
      << R"({"items":[{"name":"cInvStdItem","sql":"inv.cInvStd = N'no such model'"}]})";
  EXPECT_THAT(outputOf({"--filter", utf8FromPath(filter.path())}), testing::EndsWith("没有符合条件的数据\n"));
}

TEST_F(ReportCommand, RefusesAFilterFileThatItCannotUse) {
  EXPECT_THAT(reportWithFilter("{\n\"items\":[\n").message, testing::HasSubstr("is not valid JSON: see line 3"));
  EXPECT_THAT(reportWithFilter(R"({"items":[{"name":"cDefine5","value":1e999}]})").message,
              testing::HasSubstr(" holds a number with too many digits; write it as a text, in quotes"));
  EXPECT_THAT(reportWithFilter("[]").message, testing::EndsWith(".json, line 1: the file must be an object"));
  EXPECT_THAT(reportWithFilter(R"({"items":[{"name":"cModal","valeu":"1"}]})").message,
              testing::EndsWith(".json, line 1: item 1, \"valeu\" is not known; did you mean value?"));
  EXPECT_EQ(reportWithFilter(R"({"items":[{"name":"cJudgeMoney","value":"9"}]})").message,
            "filter item cJudgeMoney (Closing amount): there is no choice \"9\"; choose of 0 (above zero), 1 (zero), 2 "
            "(below zero)");
}

TEST_F(ReportCommand, TellsWhatStoppedTheBuildAndLeavesNothing) {
  const Outcome outcome = reportWithFilter(R"({"items":[{"name":"cNoColumn","value":"1"}]})");
  EXPECT_EQ(outcome.ends, Ends::failed);
  EXPECT_THAT(outcome.message,
              MatchesPattern("the build stopped: error 207 in line [0-9]+ of the batch: Invalid column name "
                             "'cNoColumn'\\., at: Insert Into \\[.*"));
  EXPECT_EQ(outcome.message.find('\n'), std::string::npos) << "one line";
  const auto account = tsql::Connection::open(file_->path(), tsql::OpenMode::existing);
  EXPECT_THAT(account::testing::leftoverNames(*account), testing::IsEmpty());
}

TEST_F(ReportCommand, KeepsTheResultTableWhenAsked) {
  std::ostringstream out;
  std::ostringstream notes;
  runReport({.report = "sfc-item",
             .account = AccountSource(source()),
             .format = ReportFormat::csv,
             .language = Language::english,
             .keep = true},
            out, notes);
  EXPECT_THAT(notes.str(), MatchesPattern("quillon: the result table QuillonReport[0-9a-z]+ is kept\n"));
  constexpr std::size_t nameStart = std::string_view("quillon: the result table ").size();
  const std::string name = notes.str().substr(nameStart, notes.str().find(" is kept") - nameStart);
  const auto account = tsql::Connection::open(file_->path(), tsql::OpenMode::existing);
  EXPECT_FALSE(account->describe(name).empty());
  account->execute("Drop Table " + name);
}

TEST_F(ReportCommand, ExplainsEachStatement) {
  std::ostringstream out;
  std::ostringstream notes;
  runReport({.report = "sfc-item",
             .account = AccountSource(source()),
             .format = ReportFormat::csv,
             .language = Language::english,
             .explain = true},
            out, notes);
  EXPECT_THAT(notes.str(), ContainsPattern("\\[1\\] [0-9.]+ ms"));
  EXPECT_THAT(notes.str(), testing::HasSubstr("Select Top 0 base.autoid,wh.cWhCode"));
  EXPECT_THAT(notes.str(), ContainsPattern("ms, [0-9]+ rows\ndelete QuillonReport"));
  EXPECT_THAT(notes.str(), ContainsPattern("\n[0-9]+ statements, [0-9.]+ ms in the account"));
}

TEST_F(ReportCommand, ShowsProgressOnATerminalOnly) {
  std::ostringstream out;
  std::ostringstream notes;
  runReport({.report = "sfc-item", .account = AccountSource(source()), .format = ReportFormat::csv, .terminal = true},
            out, notes);
  EXPECT_THAT(notes.str(), testing::HasSubstr("\r\x1b[K1：Select "));
  EXPECT_TRUE(notes.str().ends_with("\r\x1b[K")) << "the line is taken away at the end";
  notes.str("");
  runReport({.report = "sfc-item", .account = AccountSource(source()), .format = ReportFormat::csv}, out, notes);
  EXPECT_EQ(notes.str(), "");
}

TEST_F(ReportCommand, FailsWithOneLineWhenItsWorkCannotBeDone) {
  const auto expectFailure = [](const Outcome& outcome, const std::string& part) {
    EXPECT_EQ(outcome.ends, Ends::failed);
    EXPECT_THAT(outcome.message, testing::HasSubstr(part));
    EXPECT_EQ(outcome.message.find('\n'), std::string::npos);
  };
  expectFailure(call({"report", "sfc-item", "--account", "no-such-account.qacc"}), "no-such-account.qacc");
  expectFailure(call({"report", "sfc-item", "--account", "Driver={X};PWD=secret"}),
                "cannot connect to the database server: ");
  expectFailure(call({"report", "sfc-item", "--account", "Provider=SQLOLEDB;Data Source=here;PWD=secret"}),
                "the connection string names no ODBC driver; write Driver=");
  expectFailure(call({"report", "no-report", "--account", source()}),
                "there is no report \"no-report\"; the reports are: ");
  expectFailure(report({"--filter", "no-such-filter.json"}), "cannot read no-such-filter.json");
  expectFailure(report({"-o", "no-such-folder/report.csv"}), "cannot write no-such-folder/report.csv");
  expectFailure(report({"--set", "iYear=1999"}), "there is no choice \"1999\"; choose of 2024");
  expectFailure(call({"account", "new", source()}), "exists already");
  expectFailure(call({"account", "info", "no-such-account.qacc"}), "no-such-account.qacc");
  expectFailure(call({"sql", "--empty", "no-such-script.sql"}), "cannot read no-such-script.sql");
}

TEST_F(ReportCommand, RefusesWrongUsage) {
  EXPECT_EQ(call({"report"}).ends, Ends::wrongUsage);
  EXPECT_EQ(call({"report", "sfc-item"}).ends, Ends::wrongUsage);
  EXPECT_EQ(report({"--nothing"}).ends, Ends::wrongUsage);
  EXPECT_EQ(report({"--format", "xml"}).ends, Ends::wrongUsage);
  EXPECT_EQ(report({"--format", "xml"}).message, "--format: \"xml\" is none of csv, html, json, table, xlsx");
  EXPECT_EQ(report({"--format", "xlsx"}).ends, Ends::wrongUsage);
  EXPECT_EQ(report({"--format", "xlsx"}).message, "--format: xlsx needs a file to write to; name one with -o FILE");
  EXPECT_EQ(report({"--limit", "-1"}).ends, Ends::wrongUsage);
  EXPECT_EQ(call({"account"}).ends, Ends::wrongUsage);
  EXPECT_EQ(call({"sql"}).ends, Ends::wrongUsage);
  EXPECT_EQ(call({"sql", "--empty", "--account", source()}).ends, Ends::wrongUsage);
}

}  // namespace
}  // namespace quillon::workbench
