// Books: folders of pages and workbooks of several reports, read back and compared with the ledger; settings for all
// entries; entries that fail.
#include "workbench/cli/book_command.h"

#include <gmock/gmock.h>

#include <fstream>
#include <iterator>
#include <sstream>

#include "tests/workbench/account/test_folder.h"
#include "tests/workbench/presentation/xlsx_evaluation.h"
#include "tests/workbench/presentation/xlsx_sheet.h"
#include "workbench/account/account.h"
#include "workbench/cli/verify_command.h"
#include "workbench/platform/user_error.h"
#include "workbench/presentation/fingerprint_file.h"
#include "workbench/tsql/values/utf8_path.h"

namespace quillon::workbench {
namespace {

namespace fs = std::filesystem;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

constexpr const char* monthEnd = R"({
  "title": "Month end",
  "company": "东山机械厂",
  "items": [
    {"title": "Balances", "report": "sfc-item", "set": ["cModal=1", "iYear=2024"], "layout": "summary"},
    {"title": "Issues", "report": "outsum-item", "set": ["cModal=1", "iYear=2024"], "layout": "lines",
     "columns": ["cInvCode", "cFXCode", "iMoney"], "sort": ["-iMoney"]},
    {"title": "Issues: by place", "report": "outsum-item", "set": ["cModal=1"], "pivot": "cWhName//amount"},
    {"report": "fx-wt", "set": ["dKeepDate=2024-01-01..2024-03-31"]}
  ]
})";

std::string textOf(const fs::path& file) {
  std::ifstream stream(file, std::ios::binary);
  return {std::istreambuf_iterator<char>(stream), std::istreambuf_iterator<char>()};
}

class Books : public testing::Test {
 protected:
  Books() { account::createSample(account(), {.rows = 1200, .years = 2}); }

  fs::path account() const { return folder_ / "a.account"; }
  std::string write(const std::string& text, const std::string& name = "book.json") const {
    std::ofstream(folder_ / name, std::ios::binary) << text;
    return utf8FromPath(folder_ / name);
  }

  struct End {
    bool all = false;
    std::string out, notes;
  };
  End run(const std::string& book, const std::string& output, const std::vector<std::string>& settings = {}) const {
    std::ostringstream out, notes;
    const bool all = runBook({.file = book,
                              .account = AccountSource::inFile(account()),
                              .settings = settings,
                              .output = utf8FromPath(folder_ / output),
                              .language = Language::english},
                             out, notes);
    return {all, out.str(), notes.str()};
  }
  std::string refusal(const std::string& book, const std::string& output,
                      const std::vector<std::string>& settings = {}) const {
    try {
      run(book, output, settings);
    } catch (const UserError& error) {
      return error.what();
    }
    return "";
  }
  std::pair<bool, std::string> check(const std::string& book) const {
    std::ostringstream out;
    const bool right = checkBook(book, Language::english, out);
    return {right, out.str()};
  }
  bool verified(const std::string& file) const {
    std::ostringstream out, notes;
    return verify({.file = utf8FromPath(folder_ / file),
                   .account = AccountSource::inFile(account()),
                   .language = Language::english},
                  out, notes);
  }
  std::string valueOf(const std::string& statement) const {
    const auto database = AccountSource::inFile(account()).open(tsql::OpenMode::existing);
    const auto cursor = database->query(statement);
    return cursor->next() ? tsql::toText(cursor->value(0)).value_or("") : "";
  }
  std::vector<std::string> names() const {
    std::vector<std::string> names;
    for (const auto& entry : fs::directory_iterator(folder_.path()))
      names.push_back(utf8FromPath(entry.path().filename()));
    std::ranges::sort(names);
    return names;
  }

  account::testing::TestFolder folder_;
};

const char* const issuesOf2024 =
    "Select Sum(IsNull(p.iItemOutPrice, 0)) From ia_subsidiary_Item p Inner Join ia_subsidiary l On l.AutoID = p.iSubID "
    "Where l.iYear = 2024 And l.iMonth > 0 And l.bRdFlag = 0 And l.cVouType <> N'34' And l.cWhCode <> N''";

TEST_F(Books, MakesAFolderOfPages) {
  const End end = run(write(monthEnd), "pages");
  ASSERT_TRUE(end.all) << end.notes;
  std::vector<std::string> files;
  for (const auto& entry : fs::directory_iterator(folder_ / "pages"))
    files.push_back(utf8FromPath(entry.path().filename()));
  std::ranges::sort(files);
  EXPECT_THAT(files, ElementsAre("01-Balances.html", "02-Issues.html", "03-Issues--by-place.html",
                                 testing::StartsWith("04-"), "index.html"));
  const std::string index = textOf(folder_ / "pages" / "index.html");
  EXPECT_THAT(index, HasSubstr("<h1>Month end</h1>"));
  for (std::size_t i = 0; i + 1 < files.size(); ++i) {
    EXPECT_THAT(index, HasSubstr("href=\"" + files[i] + "\""));
    const RunFingerprint fingerprint = readFingerprints(folder_ / "pages" / pathFromUtf8(files[i])).at(0);
    EXPECT_THAT(index, HasSubstr(fingerprintDigest(canonicalText(fingerprint))));
    EXPECT_TRUE(verified("pages/" + files[i]));
  }
  EXPECT_THAT(textOf(folder_ / "pages" / "02-Issues.html"), HasSubstr("<h1>Issues</h1>"));
  EXPECT_THAT(textOf(folder_ / "pages" / "02-Issues.html"), HasSubstr("东山机械厂"));
  EXPECT_THAT(names(), ElementsAre("a.account", "book.json", "pages")) << "nothing else is left";
}

TEST_F(Books, MakesAWorkbookWhoseTotalsAreTheLedgers) {
  const End end = run(write(monthEnd), "book.xlsx");
  ASSERT_TRUE(end.all) << end.notes;
  const test::XlsxEvaluation book(folder_ / "book.xlsx");
  EXPECT_THAT(book.disagreements(), IsEmpty());
  const std::vector<std::string>& names = book.sheets().front().names();
  EXPECT_EQ(names.front(), "1 Balance By cost item");
  EXPECT_EQ(names.back(), "Fingerprint");
  const auto sheet = [&](const std::string& name) -> const test::XlsxSheet& {
    for (const test::XlsxSheet& each : book.sheets()) {
      if (each.name() == name) return each;
    }
    throw std::runtime_error("no sheet " + name);
  };
  // The lines of the second entry, the parts of all issues and the issues that have none, against the ledger.
  const test::XlsxSheet& lines = sheet("2 Issues Rows");
  double total = 0;
  for (int row = 1; row <= lines.lastRow(); ++row) {
    if (lines.cell("A" + std::to_string(row)).text.starts_with("Total"))
      total = lines.cell("C" + std::to_string(row)).number.value_or(0);
  }
  const std::string parts = valueOf(issuesOf2024);
  const std::string undivided = valueOf(
      "Select Sum(IsNull(l.iAOutPrice, 0)) From ia_subsidiary l Where l.iYear = 2024 And l.iMonth > 0 And l.bRdFlag = 0 And "
      "l.cVouType <> N'34' And l.cWhCode <> N'' And Not Exists (Select 1 From ia_subsidiary_Item p Where p.iSubID = l.AutoID)");
  EXPECT_GT(total, 0);
  EXPECT_NEAR(total, std::stod(parts) + (undivided.empty() ? 0 : std::stod(undivided)), 0.001);
  // Two entries show the same run.
  EXPECT_EQ(readFingerprints(folder_ / "book.xlsx").size(), 3u);
  EXPECT_TRUE(verified("book.xlsx"));
}

TEST_F(Books, SetsAnItemInEveryEntryThatHasIt) {
  const End end = run(write(monthEnd), "pages", {"iYear=2023"});
  ASSERT_TRUE(end.all) << end.notes;
  EXPECT_THAT(end.out, HasSubstr("iYear=2023: taken by entry 1, 2, 3\n"));
  const auto yearOf = [this](const std::string& page) {
    const RunFingerprint fingerprint = readFingerprints(folder_ / "pages" / page).at(0);
    for (const FingerprintItem& item : fingerprint.filter) {
      if (item.name == "iYear") return item.value;
    }
    return std::string();
  };
  EXPECT_EQ(yearOf("01-Balances.html"), "2023");
  EXPECT_EQ(yearOf("02-Issues.html"), "2023");
  EXPECT_EQ(refusal(write(monthEnd), "more", {"cModel=1"}), "no entry's report has the filter item of \"cModel=1\"");
  EXPECT_FALSE(fs::exists(folder_ / "more"));
}

TEST_F(Books, LeavesNothingWhenAnEntryFails) {
  const std::string book = write(R"({"items": [
    {"title": "Good", "report": "outsum-item", "set": ["cModal=1"]},
    {"title": "Bad", "report": "outsum-item", "set": ["cModal=1"], "layout": "lines", "columns": ["cNoSuch"]}]})");
  for (const char* output : {"pages", "book.xlsx"}) {
    const End end = run(book, output);
    EXPECT_FALSE(end.all);
    EXPECT_THAT(end.notes, HasSubstr("quillon: entry 2 (Bad): there is no column \"cNoSuch\""));
    EXPECT_THAT(end.notes, HasSubstr("is not written"));
    EXPECT_THAT(names(), ElementsAre("a.account", "book.json"));
  }
}

TEST_F(Books, KeepsTheOlderWorkbookWhenAnEntryFails) {
  ASSERT_TRUE(run(write(monthEnd), "book.xlsx").all);
  const std::string before = textOf(folder_ / "book.xlsx");
  EXPECT_FALSE(
      run(write(R"({"items": [{"report": "outsum-item", "layout": "lines", "columns": ["cNoSuch"]}]})"), "book.xlsx")
          .all);
  EXPECT_EQ(textOf(folder_ / "book.xlsx"), before);
}

TEST_F(Books, DoesNotWriteIntoAFolderWithFiles) {
  fs::create_directory(folder_ / "full");
  std::ofstream(folder_ / "full" / "letter.txt") << "mine";
  EXPECT_THAT(refusal(write(monthEnd), "full"), HasSubstr("is no empty folder"));
  EXPECT_EQ(textOf(folder_ / "full" / "letter.txt"), "mine");
  fs::create_directory(folder_ / "empty");
  EXPECT_TRUE(run(write(monthEnd), "empty").all);
  EXPECT_TRUE(fs::exists(folder_ / "empty" / "index.html"));
}

TEST_F(Books, UsesAFilterFileBesideTheBook) {
  write(R"({"items": [{"name": "cModal", "value": "2"}, {"name": "cWhCode", "value": "01"}]})", "place.json");
  const std::string book =
      write(R"({"items": [{"title": "One", "report": "outsum-item", "filter": "./place.json", "set": ["cModal=1"]}]})");
  ASSERT_TRUE(run(book, "pages").all);
  const auto items = readFingerprints(folder_ / "pages" / "01-One.html").at(0).filter;
  EXPECT_THAT(items, testing::Contains(FingerprintItem{.name = "cWhCode", .value = "01", .multiple = true}));
  EXPECT_THAT(items, testing::Contains(FingerprintItem{.name = "cModal", .value = "1"}));
}

TEST_F(Books, ChecksABookWithoutAnAccount) {
  EXPECT_EQ(check(write(monthEnd)), std::pair(true, std::string("nothing is wrong: 4 entries\n")));
  const auto [right, text] = check(write(R"({"items": [
    {"report": "sfc-itm"},
    {"title": "Two", "report": "sfc-item", "layout": "ledger"},
    {"title": "Three", "report": "sfc-item", "set": ["cNoSuch=1"]},
    {"title": "Four", "report": "sfc-item", "filter": "./none.json"},
    {"title": "Five", "report": "sfc-item", "pivot": "nothing"}]})"));
  EXPECT_FALSE(right);
  for (const char* line :
       {"entry 1 (sfc-itm): there is no report \"sfc-itm\"", "entry 2 (Two): sfc-item has no layout ledger",
        "entry 3 (Three): the report has no filter item \"cNoSuch\"", "entry 4 (Four): cannot read ",
        "entry 5 (Five): \"nothing\" is no pivot"})
    EXPECT_THAT(text, HasSubstr(line));
}

}  // namespace
}  // namespace quillon::workbench
