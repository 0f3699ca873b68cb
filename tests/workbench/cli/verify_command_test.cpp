// Fingerprints on pages and workbooks, and what `quillon verify` makes of them: the same figures, a changed cent, a line
// that is gone, another account, files that were tampered with.
#include "workbench/cli/verify_command.h"

#include <gmock/gmock.h>

#include <fstream>
#include <iterator>
#include <regex>
#include <sstream>

#include "tests/workbench/account/test_folder.h"
#include "tests/workbench/presentation/xlsx_sheet.h"
#include "workbench/account/account.h"
#include "workbench/cli/report_command.h"
#include "workbench/platform/account_source.h"
#include "workbench/platform/user_error.h"
#include "workbench/presentation/fingerprint_file.h"
#include "workbench/presentation/pivot_request.h"
#include "workbench/tsql/values/utf8_path.h"

namespace quillon::workbench {
namespace {

// GoogleTest's own expressions differ from one system to another.
MATCHER_P(HasMatch, expression, std::string("has a match of ") + expression) {
  return std::regex_search(arg, std::regex(expression));
}

namespace fs = std::filesystem;
using testing::HasSubstr;
using testing::Not;

struct Case {
  const char* name;
  const char* report;
  std::vector<std::string> settings;
  friend void PrintTo(const Case& each, std::ostream* out) { *out << each.name; }
};

std::string textOf(const fs::path& file) {
  std::ifstream stream(file, std::ios::binary);
  return {std::istreambuf_iterator<char>(stream), std::istreambuf_iterator<char>()};
}

void writeText(const fs::path& file, const std::string& text) {
  std::ofstream(file, std::ios::binary) << text;
}

class Verify : public testing::Test {
 protected:
  Verify() { account::createSample(account(), {.rows = 600, .years = 1}); }

  fs::path account() const { return folder_ / "a.account"; }

  fs::path write(
      const std::string& file, const std::string& report, const std::vector<std::string>& settings,
      const std::function<void(ReportOptions&)>& change = [](ReportOptions&) {}) const {
    fs::path path = folder_ / file;
    ReportOptions options{.report = report,
                          .account = AccountSource::inFile(account()),
                          .settings = settings,
                          .format = file.ends_with(".xlsx") ? ReportFormat::xlsx : ReportFormat::html,
                          .outputFile = utf8FromPath(path),
                          .language = Language::english};
    change(options);
    std::ostringstream out, notes;
    runReport(options, out, notes);
    return path;
  }

  struct Answer {
    bool same = false;
    std::string text;
    std::string notes;
  };
  Answer ask(const fs::path& file, const fs::path& account, bool allowSql = false) const {
    std::ostringstream out, notes;
    const bool same = verify({.file = utf8FromPath(file),
                              .account = AccountSource::inFile(account),
                              .language = Language::english,
                              .allowSql = allowSql},
                             out, notes);
    return {same, out.str(), notes.str()};
  }
  Answer ask(const fs::path& file) const { return ask(file, account()); }
  std::string refusal(const fs::path& file, const fs::path& account) const {
    try {
      ask(file, account);
    } catch (const UserError& error) {
      return error.what();
    }
    return "";
  }

  void change(const std::string& statement) const {
    AccountSource::inFile(account()).open(tsql::OpenMode::existing)->execute(statement);
  }
  std::string valueOf(const std::string& statement) const {
    const auto database = AccountSource::inFile(account()).open(tsql::OpenMode::existing);
    const auto cursor = database->query(statement);
    return cursor->next() ? tsql::toText(cursor->value(0)).value_or("") : "";
  }

  account::testing::TestFolder folder_;
};

class VerifyEachReport : public Verify, public testing::WithParamInterface<Case> {};

INSTANTIATE_TEST_SUITE_P(Reports, VerifyEachReport,
                         testing::Values(Case{"sfc_class", "sfc-item", {"cModal=0"}},
                                         Case{"sfc_item", "sfc-item", {"cModal=1"}},
                                         Case{"sfc_expense", "sfc-item", {"cModal=2"}},
                                         Case{"outsum_class", "outsum-item", {"cModal=0"}},
                                         Case{"outsum_item", "outsum-item", {"cModal=1", "cWhCode=03,01"}},
                                         Case{"outsum_expense", "outsum-item", {"cModal=2"}},
                                         Case{"fx_wt", "fx-wt", {"dKeepDate=2024-01-01..2024-06-30"}}),
                         [](const auto& info) { return std::string(info.param.name); });

TEST_P(VerifyEachReport, FindsPageAndWorkbookUnchanged) {
  for (const char* file : {"report.html", "report.xlsx"}) {
    const Answer answer = ask(write(file, GetParam().report, GetParam().settings));
    EXPECT_TRUE(answer.same) << file << answer.text;
    EXPECT_THAT(answer.text, HasSubstr("the same: ")) << file;
  }
}

TEST_P(VerifyEachReport, GivesOneFingerprintWhateverIsShown) {
  const Case& report = GetParam();
  const std::string plain = canonicalText(readFingerprints(write("plain.html", report.report, report.settings)).at(0));
  EXPECT_NE(readFingerprints(folder_ / "plain.html").at(0).rows, 0);
  const std::vector<std::function<void(ReportOptions&)>> changes = {
      [](ReportOptions& options) { options.language = Language::chinese; },
      [](ReportOptions& options) { options.layout.layout = Layout::lines; },
      [](ReportOptions& options) { options.layout.limit = 3; },
      [](ReportOptions& options) {
        options.layout.layout = Layout::lines;
        options.layout.arrangement = {.columns = {"cInvCode", "cWhName"}, .sort = {"-cInvCode"}};
      },
      [](ReportOptions& options) { options.layout.pivot = parsePivot("cWhName//amount"); }};
  for (const auto& change : changes) {
    for (const char* file : {"other.html", "other.xlsx"})
      EXPECT_EQ(canonicalText(readFingerprints(write(file, report.report, report.settings, change)).at(0)), plain);
  }
}

TEST_F(Verify, FindsTheDetailLedgerUnchanged) {
  const std::string inventory = valueOf(
      "Select Top 1 cInvCode From ia_subsidiary Where iMonth > 0 And cWhCode <> N'' And IsNull(cBatchIA, N'') = N'' "
      "Group By cInvCode Order By Count(*) Desc");
  const std::string warehouse = valueOf("Select Top 1 cWhCode From ia_subsidiary Where cInvCode = N'" + inventory +
                                        "' And iMonth > 0 And cWhCode <> N''");
  const fs::path page = write("ledger.html", "fx-detail", {"cInvCode=" + inventory, "cWhCode=" + warehouse},
                              [](ReportOptions& options) { options.dialog = false; });
  EXPECT_GT(readFingerprints(page).at(0).rows, 0);
  EXPECT_TRUE(ask(page).same);
  change("Update ia_subsidiary Set iAInPrice = iAInPrice + 0.01, iAOutPrice = iAOutPrice + 0.01 Where cInvCode = N'" +
         inventory + "' And iMonth > 0");
  EXPECT_FALSE(ask(page).same);
}

TEST_F(Verify, FindsOneChangedCentInOneLine) {
  const fs::path page = write("report.html", "outsum-item", {"cModal=1"});
  const fs::path book = write("report.xlsx", "outsum-item", {"cModal=1"});
  const std::string before = valueOf("Select Sum(iItemOutPrice) From ia_subsidiary_Item");
  const std::string part = valueOf(
      "Select Top 1 p.AutoID From ia_subsidiary_Item p Inner Join ia_subsidiary l On l.AutoID = p.iSubID Where l.iMonth > 0 "
      "And l.bRdFlag = 0 And l.cVouType <> N'34' And l.cWhCode <> N'' And p.iItemOutPrice > 0 Order By p.AutoID");
  change("Update ia_subsidiary_Item Set iItemOutPrice = iItemOutPrice + 0.01 Where AutoID = " + part);
  ASSERT_NE(valueOf("Select Sum(iItemOutPrice) From ia_subsidiary_Item"), before);
  for (const fs::path& file : {page, book}) {
    const Answer answer = ask(file);
    EXPECT_FALSE(answer.same);
    EXPECT_THAT(answer.text, HasSubstr("different: "));
    EXPECT_THAT(answer.text, HasMatch("  Amount: [0-9.]+ in the file, [0-9.]+ in the account, \\+0\\.01\n"));
    EXPECT_THAT(answer.text, Not(HasSubstr("rows:"))) << "the number of rows is the same";
    EXPECT_THAT(answer.text, Not(HasSubstr("  Quantity:")));
  }
}

// Receipts, issues and closing balance move together: no sum over all states would show an issue.
TEST_F(Verify, FindsACentOfAnIssueInReceiptsIssuesAndBalances) {
  const fs::path page = write("report.html", "sfc-item", {"cModal=1"});
  const std::string part = valueOf(
      "Select Top 1 p.AutoID From ia_subsidiary_Item p Inner Join ia_subsidiary l On l.AutoID = p.iSubID Where l.iMonth > 0 "
      "And l.bRdFlag = 0 And l.cVouType <> N'34' And l.cWhCode <> N'' And p.iItemOutPrice > 0 Order By p.AutoID");
  change("Update ia_subsidiary_Item Set iItemOutPrice = iItemOutPrice + 0.01 Where AutoID = " + part);
  const Answer answer = ask(page);
  EXPECT_FALSE(answer.same);
  EXPECT_THAT(answer.text, HasMatch("Issue: Amount: [0-9.]+ in the file, [0-9.]+ in the account, \\+0\\.01\n"));
  EXPECT_THAT(answer.text,
              HasMatch("Closing balance: Amount: -?[0-9.]+ in the file, -?[0-9.]+ in the account, -0\\.01\n"));
}

TEST_F(Verify, TellsHowManyRowsAreGone) {
  const fs::path page = write("report.html", "outsum-item", {"cModal=1"});
  const std::int64_t before = readFingerprints(page).at(0).rows;
  const std::string line = valueOf(
      "Select Top 1 l.AutoID From ia_subsidiary l Inner Join ia_subsidiary_Item p On p.iSubID = l.AutoID Where l.iMonth > 0 "
      "And l.bRdFlag = 0 And l.cVouType <> N'34' And l.cWhCode <> N'' Order By l.AutoID");
  change("Delete From ia_subsidiary Where AutoID = " + line);
  const std::int64_t after = readFingerprints(write("after.html", "outsum-item", {"cModal=1"})).at(0).rows;
  ASSERT_LT(after, before);
  const Answer answer = ask(page);
  EXPECT_FALSE(answer.same);
  EXPECT_THAT(answer.text, HasSubstr("in the account, -" + std::to_string(before - after)));
}

// The sums of a fingerprint are those of the ledger.
TEST_F(Verify, HoldsTheLedgersSums) {
  const RunFingerprint fingerprint = readFingerprints(write("report.html", "outsum-item", {"cModal=2"})).at(0);
  const auto sum = std::ranges::find(fingerprint.sums, "iMoney", &FingerprintSum::name);
  ASSERT_NE(sum, fingerprint.sums.end());
  EXPECT_EQ(
      sum->value,
      withoutEndingZeros(valueOf(
          "Select Sum(IsNull(p.iItemOutPrice, 0)) From ia_subsidiary_Item p Inner Join ia_subsidiary l On "
          "l.AutoID = p.iSubID Where l.iMonth > 0 And l.bRdFlag = 0 And l.cVouType <> N'34' And l.cWhCode <> N''")));
  EXPECT_EQ(fingerprint.accountName, "a.account");
  EXPECT_FALSE(fingerprint.accountCode.empty());
  EXPECT_EQ(fingerprint.date, "2024-12-31");
}

TEST_F(Verify, PrintsTheDigestForReaders) {
  const fs::path page = write("report.html", "outsum-item", {"cModal=1"});
  const std::string digest = fingerprintDigest(canonicalText(readFingerprints(page).at(0)));
  EXPECT_THAT(digest, HasMatch("^([0-9A-F]{4} ){3}[0-9A-F]{4}$"));
  EXPECT_THAT(textOf(page), HasSubstr(">Fingerprint " + digest + "</p>"));
  const fs::path book = write("report.xlsx", "outsum-item", {"cModal=1"});
  const test::XlsxSheet first(book);
  ASSERT_EQ(first.names().back(), "Fingerprint");
  EXPECT_EQ(test::XlsxSheet(book, first.names().size()).row(2), "Fingerprint|" + digest);
}

TEST_F(Verify, RefusesAnotherAccount) {
  const fs::path page = write("report.html", "outsum-item", {"cModal=1"});
  fs::copy_file(account(), folder_ / "b.account");
  AccountSource::inFile(folder_ / "b.account")
      .open(tsql::OpenMode::existing)
      ->execute("Update orvsystem..UA_Period Set cAcc_Id = N'777'");
  EXPECT_THAT(refusal(page, folder_ / "b.account"), HasMatch("is of account .*a\\.account.*777.*b\\.account"));
}

TEST_F(Verify, ComparesWithACopyOfAnotherName) {
  const fs::path page = write("report.html", "outsum-item", {"cModal=1"});
  fs::copy_file(account(), folder_ / "b.account");
  const Answer answer = ask(page, folder_ / "b.account");
  EXPECT_TRUE(answer.same) << answer.text;
  EXPECT_THAT(answer.notes, HasMatch("is of account .*a\\.account.* compared with .*b\\.account"));
  EXPECT_THAT(ask(page).notes, testing::IsEmpty());
}

TEST_F(Verify, RefusesFilesWithoutAFingerprint) {
  writeText(folder_ / "plain.html", "<!DOCTYPE html><p>a page</p>");
  EXPECT_THAT(refusal(folder_ / "plain.html", account()), HasSubstr("holds no fingerprint"));
  writeText(folder_ / "broken.xlsx", "PK\x03\x04 and no more");
  EXPECT_THAT(refusal(folder_ / "broken.xlsx", account()), HasSubstr("cannot be read"));
  EXPECT_THAT(refusal(folder_ / "none.html", account()), HasSubstr("cannot read "));
}

TEST_F(Verify, RefusesAChangedFingerprint) {
  const fs::path page = write("report.html", "outsum-item", {"cModal=1"});
  std::string text = textOf(page);
  const std::size_t rows = text.find("&quot;rows&quot;:");
  ASSERT_NE(rows, std::string::npos);
  text[rows + 17] = text[rows + 17] == '9' ? '8' : '9';
  writeText(page, text);
  EXPECT_THAT(refusal(page, account()), HasSubstr("was changed or is not complete"));
}

TEST_F(Verify, RefusesAWorkbookCutAnywhere) {
  const std::string text = textOf(write("report.xlsx", "outsum-item", {"cModal=1"}));
  for (std::size_t length = 1; length < text.size(); length += text.size() / 40) {
    writeText(folder_ / "cut.xlsx", text.substr(0, length));
    EXPECT_NE(refusal(folder_ / "cut.xlsx", account()), "") << length;
  }
}

TEST_F(Verify, RunsSqlOfAFileOnlyWhenAllowed) {
  writeText(folder_ / "filter.json", R"({"items": [{"name": "cWhCode", "sql": "base.cWhCode = N'01'"}]})");
  const fs::path page = write("report.html", "outsum-item", {"cModal=1"}, [this](ReportOptions& options) {
    options.filterFile = utf8FromPath(folder_ / "filter.json");
  });
  EXPECT_THAT(refusal(page, account()), HasSubstr("--allow-sql"));
  EXPECT_TRUE(ask(page, account(), true).same);
}

// As a spreadsheet writes it: the texts of all cells in one member, with references to characters.
TEST_F(Verify, ReadsTextsThatASpreadsheetMoved) {
  const RunFingerprint fingerprint = readFingerprints(write("report.html", "outsum-item", {"cModal=1"})).at(0);
  std::string shared = "<sst><si><t>Amount</t></si>";
  for (const std::string& cell : fingerprintCells(fingerprint)) {
    shared += "<si><t xml:space=\"preserve\">";
    for (const char c : cell)
      shared += c == '"' ? "&quot;" : c == '[' ? "&#91;" : std::string(1, c);
    shared += "</t></si>";
  }
  shared += "</sst>";
  // A ZIP archive with this one member, stored.
  const auto number = [](std::size_t value, int bytes) {
    std::string text;
    for (int i = 0; i < bytes; ++i)
      text += static_cast<char>(value >> (8 * i) & 0xffU);
    return text;
  };
  const std::string name = "xl/sharedStrings.xml";
  const std::string sizes = number(0, 4) + number(shared.size(), 4) + number(shared.size(), 4) + number(name.size(), 2);
  const std::string member =
      "PK\x03\x04" + number(20, 2) + number(0, 2) + number(0, 2) + number(0, 4) + sizes + number(0, 2) + name + shared;
  const std::string entry = "PK\x01\x02" + number(20, 2) + number(20, 2) + number(0, 2) + number(0, 2) + number(0, 4) +
                            sizes + number(0, 2) + number(0, 2) + number(0, 2) + number(0, 2) + number(0, 4) +
                            number(0, 4) + name;
  writeText(folder_ / "saved.xlsx", member + entry + "PK\x05\x06" + number(0, 4) + number(1, 2) + number(1, 2) +
                                        number(entry.size(), 4) + number(member.size(), 4) + number(0, 2));
  EXPECT_EQ(canonicalText(readFingerprints(folder_ / "saved.xlsx").at(0)), canonicalText(fingerprint));
  EXPECT_TRUE(ask(folder_ / "saved.xlsx").same);
}

}  // namespace
}  // namespace quillon::workbench
