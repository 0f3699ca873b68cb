// docs/user-guide.md against the program: whoever adds a filter item, a column or a member, or gives one another name,
// is told here that the guide no longer holds.
#include <gmock/gmock.h>

#include <algorithm>
#include <fstream>
#include <map>
#include <memory>
#include <nlohmann/json.hpp>
#include <regex>
#include <set>
#include <sstream>
#include <stdexcept>
#include <string>
#include <string_view>

#include "frame/text.h"
#include "tests/workbench/docs/guide_tables.h"
#include "tests/workbench/platform/temporary_file.h"
#include "workbench/account/account.h"
#include "workbench/account/schema.h"
#include "workbench/catalogue/catalogue.h"
#include "workbench/cli/run_notes.h"
#include "workbench/platform/account_source.h"
#include "workbench/platform/filter_file.h"
#include "workbench/platform/lookup.h"
#include "workbench/platform/resource_texts.h"
#include "workbench/runs/account_check.h"
#include "workbench/runs/report_run.h"

namespace quillon::workbench {
namespace {

using test::GuideTable;
using testing::ElementsAreArray;
using testing::IsEmpty;
using testing::UnorderedElementsAreArray;

using Rows = std::vector<std::vector<std::string>>;

const std::vector<GuideTable>& guide() {
  static const std::vector<GuideTable> tables = test::readGuide(QUILLON_USER_GUIDE);
  return tables;
}

// The one table that `fits`.
template <class Condition>
const GuideTable& theTable(const std::string& what, Condition fits) {
  const auto found = std::ranges::find_if(guide(), fits);
  if (found == guide().end()) throw std::runtime_error("the guide has no table of " + what);
  if (std::find_if(std::next(found), guide().end(), fits) != guide().end())
    throw std::runtime_error("the guide has several tables of " + what);
  return *found;
}

// The table of a report's chapter whose first heading is `heading`.
const GuideTable& tableOf(const ReportRegistration& report, const std::string& heading) {
  const std::string chapter = report.english + " · " + report.chinese;
  return theTable(heading + " in " + chapter, [&](const GuideTable& table) {
    return table.chapter == chapter && table.headings.front() == heading;
  });
}

const GuideTable& sectionTable(const std::string& section) {
  return theTable(section, [&](const GuideTable& table) { return table.section == section; });
}

std::string bothCaptions(const std::string& chinese, const std::string& english) {
  return chinese + " " + english;
}

// How the guide says what an item takes.
std::string taken(const ItemRegistration& item) {
  const auto oneOrMany = [&item](const std::string& one, const std::string& many) {
    return item.multiple ? many : one;
  };
  std::string words;
  switch (item.kind) {
    case InputKind::choice:
      words = oneOrMany("one choice", "choices");
      break;
    case InputKind::reference:
      words = oneOrMany("one code", "codes");
      break;
    case InputKind::text:
      words = oneOrMany("one value", "values");
      break;
    case InputKind::number:
      words = "one number";
      break;
    case InputKind::date:
      words = item.range ? "date range" : "one date";
      break;
    case InputKind::flag:
      words = "yes or no";
      break;
  }
  return item.required ? words + ", required" : words;
}

class UserGuide : public testing::TestWithParam<std::string> {};

TEST_P(UserGuide, HasEveryFilterItemWithItsCaptionsAndForm) {
  const ReportRegistration& report = reportNamed(GetParam()).registration;
  Rows expected;
  for (const ItemRegistration& item : report.items)
    expected.push_back({item.key, bothCaptions(item.chinese, item.english), taken(item)});
  Rows written;
  for (const auto& row : tableOf(report, "Key").rows) {
    const std::vector<std::string> keys = test::namesIn(row[0]);
    const std::vector<std::string> captions = test::captionsOf(keys, row[1]);
    for (std::size_t i = 0; i < keys.size(); ++i)
      written.push_back({keys[i], captions[i], row[2]});
    EXPECT_FALSE(row[3].empty()) << row[0];
  }
  EXPECT_THAT(written, UnorderedElementsAreArray(expected));
}

TEST_P(UserGuide, HasEveryColumnWithItsCaptions) {
  Rows expected;
  for (const ReportColumn& column : reportNamed(GetParam()).columns)
    expected.push_back({column.name, bothCaptions(column.chinese, column.english)});
  Rows written;
  for (const auto& row : tableOf(reportNamed(GetParam()).registration, "Column").rows) {
    const std::vector<std::string> columns = test::namesIn(row[0]);
    const std::vector<std::string> captions = test::captionsOf(columns, row[1]);
    for (std::size_t i = 0; i < columns.size(); ++i)
      written.push_back({columns[i], captions[i]});
    EXPECT_FALSE(row[2].empty()) << row[0];
  }
  EXPECT_THAT(written, UnorderedElementsAreArray(expected));
}

// The text of a file of the checkout.
std::string textOf(const std::string& file) {
  std::ifstream in(std::string(QUILLON_CHECKOUT) + "/" + file);
  if (!in) throw std::runtime_error("cannot read " + file);
  std::ostringstream text;
  text << in.rdbuf();
  return text.str();
}

// A result table's types stand in the integrator's part; here only that they do.
TEST_P(UserGuide, HasTheReportsResultTable) {
  EXPECT_FALSE(sectionTable("Result table of " + std::string(reportNamed(GetParam()).reportClass)).rows.empty());
}

// The pages that name every report or its classes.
TEST_P(UserGuide, IsNotThePageAloneThatKnowsTheReport) {
  const Report& report = reportNamed(GetParam());
  const auto expectIn = [](const std::string& file, const std::string& text) {
    EXPECT_NE(textOf(file).find(text), std::string::npos) << file << " has no " << text;
  };
  expectIn("docs/user-guide.md", "`quillon report " + GetParam() + "`");
  expectIn("packaging/debian/quillon.1.in", GetParam());
  expectIn("docs/platform-bindings.md", "`" + std::string(report.reportClass) + "`");
  expectIn("docs/platform-bindings.md", "`" + std::string(report.dialog->name) + "`");
  expectIn("SECURITY.md", "`" + std::string(report.reportClass) + "`");
}

std::vector<std::string> names() {
  std::vector<std::string> names;
  for (const Report& report : reports())
    names.push_back(report.registration.name);
  return names;
}

INSTANTIATE_TEST_SUITE_P(Reports, UserGuide, testing::ValuesIn(names()),
                         [](const testing::TestParamInfo<std::string>& report) {
                           std::string name = report.param;
                           std::erase(name, '-');
                           return name;
                         });

// What the user is told, in both languages.
TEST(UserGuide, QuotesTheMessages) {
  std::ifstream in(QUILLON_USER_GUIDE);
  std::ostringstream text;
  text << in.rdbuf();
  const auto told = [](Language language) {
    std::vector<std::string> messages;
    for (const char* const key : {"Mirel.IA.CHHSSQL.02787", "Mirel.IA.Mirel71.00217", "Mirel.IA.Mirel71.00218"})
      messages.push_back(resourceText(key, language));
    messages.push_back(resourceText("Mirel.IA.CHHSSQL.00010", language) +
                       resourceText("Mirel.IA.CHHSSQL.13198", language));
    std::string ofFreeItem = resourceText("Mirel.IA.Mirel71.00228", language);
    const auto freeItem =
        std::ranges::find(reportNamed("fx-detail").registration.items, "cFree1", &ItemRegistration::key);
    replaceAll(ofFreeItem, "{0}", freeItem->caption(language));
    messages.push_back(ofFreeItem);
    return messages;
  };
  const std::vector<std::string> chinese = told(Language::chinese);
  const std::vector<std::string> english = told(Language::english);
  for (std::size_t i = 0; i < chinese.size(); ++i)
    EXPECT_THAT(text.str(), testing::HasSubstr(bothCaptions(chinese[i], english[i])));
}

// --- The library's members ------------------------------------------------------------------------------------------

// An argument's type as the guide calls it.
std::string typeName(const std::string& type) {
  static const std::map<std::string, std::string> names = {
      {"BSTR", "text"}, {"IDispatch", "object"}, {"VARIANT", "variant"}, {"VARIANT_BOOL", "boolean"}};
  return names.at(type);
}

// Slot, dispatch id, member, arguments and result of each member, by class, as the interface definition has them.
std::map<std::string, Rows> definedMembers() {
  static const std::regex interfaceLine(R"(^\s*interface _(\w+) : IDispatch)");
  static const std::regex memberLine(R"(^\s*\[(?:(prop\w+), )?id\((\d+)\)\] HRESULT (\w+)\((.*)\);)");
  static const std::regex argument(R"(\[([^\]]+)\] (\w+) \*+(\w+))");
  static const std::map<std::string, std::string> uses = {
      {"", ""}, {"propget", "get "}, {"propput", "let "}, {"propputref", "set "}};
  // Those of IDispatch.
  constexpr std::size_t slotsBefore = 7;

  std::ifstream in(QUILLON_IDL);
  std::map<std::string, Rows> classes;
  std::string current;
  std::smatch match;
  for (std::string line; std::getline(in, line);) {
    if (std::regex_search(line, match, interfaceLine)) current = match[1];
    if (!std::regex_search(line, match, memberLine)) continue;
    std::string arguments;
    std::string result;
    const std::string list = match[4];
    for (std::sregex_iterator it(list.begin(), list.end(), argument); it != std::sregex_iterator(); ++it) {
      const std::string type = typeName((*it)[2]);
      if ((*it)[1].str().ends_with("retval")) {
        result = type;
      } else {
        arguments += (arguments.empty() ? "`" : ", `") + (*it)[3].str() + "`: " + type;
      }
    }
    Rows& members = classes[current];
    members.push_back({std::to_string(slotsBefore + members.size() + 1), match[2],
                       uses.at(match[1]) + "`" + match[3].str() + "`", arguments, result});
  }
  return classes;
}

TEST(UserGuide, HasEveryMemberOfEveryClassInSlotOrder) {
  std::map<std::string, Rows> written;
  for (const GuideTable& table : guide()) {
    if (table.headings.front() != "Slot") continue;
    Rows members;
    for (const auto& row : table.rows) {
      members.emplace_back(row.begin(), row.begin() + 5);
      EXPECT_FALSE(row[5].empty()) << table.section << ' ' << row[2];
    }
    std::istringstream classes(table.section);
    for (std::string name; std::getline(classes, name, ',');)
      written[std::string(trimBlanks(name))] = members;
  }
  const std::map<std::string, Rows> defined = definedMembers();
  ASSERT_EQ(defined.size(), 8U);
  EXPECT_EQ(written, defined);
}

// --- Tables of the account ------------------------------------------------------------------------------------------

const account::TableDefinition* schemaTable(std::string_view name) {
  const auto tables = account::tables();
  const auto found =
      std::ranges::find_if(tables, [name](const auto& table) { return equalIgnoringCase(table.name, name); });
  return found == tables.end() ? nullptr : &*found;
}

// The type of `column` of `table`, "nvarchar(20)"; empty when there is no such column.
std::string schemaType(std::string_view table, std::string_view column) {
  const account::TableDefinition* const definition = schemaTable(table);
  if (definition == nullptr) return {};
  for (const account::ColumnDefinition& candidate : definition->columns) {
    if (equalIgnoringCase(candidate.name, column))
      return std::string(candidate.type.substr(0, candidate.type.find(' ')));
  }
  return {};
}

const GuideTable& tablesRead() {
  return theTable("the tables that are read", [](const GuideTable& table) {
    return table.chapter == "Tables that are read" && table.headings.front() == "Table";
  });
}

TEST(UserGuide, NamesColumnsThatTheTablesHave) {
  for (const auto& row : tablesRead().rows) {
    const std::string table = test::namesIn(row[0]).at(0);
    EXPECT_NE(schemaTable(table), nullptr) << table;
    for (const std::string& column : test::namesIn(row[1])) {
      const bool ofProjectItems = table == "fItem" && column.starts_with("cItemC");
      const bool anotherTable = schemaTable(column) != nullptr;
      EXPECT_TRUE(ofProjectItems || anotherTable || !schemaType(table, column).empty()) << table << '.' << column;
    }
  }
}

TEST(UserGuide, NamesEveryTableThatIsRead) {
  std::set<std::string> written;
  for (const auto& row : tablesRead().rows)
    written.insert(test::namesIn(row[0]).at(0));
  // The workbench's own, and the tables that the sample's fItem names.
  std::set<std::string> others = {"IA_PeriodState"};
  std::set<std::string> expected;
  for (const account::TableDefinition& table : account::tables()) {
    if (!table.name.starts_with("fItem_") && !others.contains(std::string(table.name)))
      expected.insert(std::string(table.name));
  }
  EXPECT_EQ(written, expected);
}

// --- Result tables --------------------------------------------------------------------------------------------------

// The account's decimal places, as a new sample has them.
constexpr std::string_view quantityDecimals = "2";
constexpr std::string_view unitCostDecimals = "4";

// What the guide says of a column's type, as a type: "as `T`", "as `T.column`", "by class `T.column`, else `T.column`"
// or the type itself.
std::string meantType(const std::string& cell, const std::string& column, bool byClass) {
  const std::vector<std::string> sources = test::namesIn(cell);
  if (sources.empty()) {
    std::string type = cell;
    replaceAll(type, ",q)", "," + std::string(quantityDecimals) + ")");
    replaceAll(type, ",p)", "," + std::string(unitCostDecimals) + ")");
    return type;
  }
  const std::string& source = byClass ? sources.front() : sources.back();
  if (schemaTable(source) != nullptr) return schemaType(source, column);
  const std::size_t point = source.rfind('.');
  return schemaType(source.substr(0, point), source.substr(point + 1));
}

std::string lower(std::string text) {
  std::ranges::transform(text, text.begin(), lowerAscii);
  return text;
}

class ResultTables : public testing::Test {
 protected:
  static void SetUpTestSuite() {
    file_ = std::make_unique<test::TemporaryFile>(".qacc");
    account::createSample(file_->path(), {.rows = 500, .years = 1, .costItemStartMonth = 1});
  }
  static void TearDownTestSuite() { file_.reset(); }

  // Names and types of the result table's columns in order.
  static Rows made(const std::string& report, const std::vector<std::string>& settings) {
    std::ostringstream notes;
    RunNotes observer(notes, Language::english);
    const auto run = makeReport(
        {.report = report, .account = AccountSource::inFile(file_->path()), .settings = settings, .dialog = false},
        observer);
    Rows columns;
    for (const tsql::Column& column : run->connection().describe(run->table().name()))
      columns.push_back({lower(column.name), column.type.name()});
    return columns;
  }
  static Rows written(const std::string& section, bool byClass) {
    Rows columns;
    for (const auto& row : sectionTable(section).rows) {
      for (const std::string& column : test::namesIn(row[0]))
        columns.push_back({lower(column), meantType(row[1], column, byClass)});
    }
    return columns;
  }

 private:
  static std::unique_ptr<test::TemporaryFile> file_;
};

std::unique_ptr<test::TemporaryFile> ResultTables::file_;

TEST_F(ResultTables, OfTheSummaryReportsAreAsWritten) {
  for (const std::string mode : {"0", "1", "2"}) {
    SCOPED_TRACE("mode " + mode);
    EXPECT_THAT(made("sfc-item", {"iYear=2024", "cModal=" + mode}),
                ElementsAreArray(written("Result table of clsSFC_Item", mode == "0")));
    EXPECT_THAT(made("outsum-item", {"iYear=2024", "cModal=" + mode}),
                ElementsAreArray(written("Result table of clsOutsum_Item", mode == "0")));
  }
}

TEST_F(ResultTables, OfTheDetailLedgerIsAsWritten) {
  EXPECT_THAT(made("fx-detail", {"iYear=2024", "cInvCode=0101-00001", "cWhCode=01"}),
              ElementsAreArray(written("Result table of clsFXDetail", false)));
}

// The guide says which columns an empty result lacks and has.
TEST_F(ResultTables, OfTheDetailLedgerHasOtherColumnsWhenThereIsNothingToReport) {
  const auto names = [](const Rows& columns) {
    std::set<std::string> set;
    for (const auto& column : columns)
      set.insert(column[0]);
    return set;
  };
  std::set<std::string> expected = names(written("Result table of clsFXDetail", false));
  EXPECT_EQ(expected.erase("rowno") + expected.erase("cbustype"), 2U);
  expected.insert({"cdepcode", "cdepname"});
  EXPECT_EQ(names(made("fx-detail", {"iYear=2024", "cInvCode=0101-00001", "cWhCode=01", "dKeepDate=2025-01-01.."})),
            expected);
}

TEST_F(ResultTables, OfTheVoucherReportIsAsWritten) {
  EXPECT_THAT(made("fx-wt", {}), ElementsAreArray(written("Result table of clsFXWt", false)));
}

// --- Finding things -------------------------------------------------------------------------------------------------

TEST(Lists, AreTheProgramsAndNoOthers) {
  std::vector<std::string> written, known;
  for (const std::vector<std::string>& row : sectionTable("Finding things").rows) {
    for (const std::string& kind : test::namesIn(row.front()))
      written.push_back(kind);
  }
  for (const Lookup* const lookup : lookups())
    known.emplace_back(lookup->kind);
  EXPECT_THAT(written, UnorderedElementsAreArray(known));
}

// In the order in which they are shown, notes marked as such.
TEST(Checks, AreTheProgramsAndNoOthers) {
  std::vector<std::string> written, known = checkNames();
  for (const account::CheckInfo& info : account::ledgerChecks()) {
    if (info.rank == account::CheckRank::note) *std::ranges::find(known, info.name) += " (note)";
  }
  for (const std::vector<std::string>& row : sectionTable("Checks of an account").rows) {
    std::string name = row.front();
    std::erase(name, '`');
    written.push_back(name);
  }
  EXPECT_EQ(written, known);
}

TEST(FilterFiles, AreReadAsThePageShows) {
  std::ifstream page(QUILLON_CHECKOUT "/docs/filter-files.md", std::ios::binary);
  const std::string text((std::istreambuf_iterator<char>(page)), std::istreambuf_iterator<char>());
  constexpr std::string_view fence = "```json\n";
  const auto begin = text.find(fence) + fence.size();
  FilterObject filter(reportNamed("sfc-item").registration, InitialValues::none);
  applyFilterFile(filter, text.substr(begin, text.find("```", begin) - begin), "the example");
  EXPECT_EQ(filter.identifier(), "CA3BAD03-9D4C-463A-827E-E971D5A36C81");
  EXPECT_EQ(filter.find("cWhCode")->value, "线边库\t01");
  EXPECT_EQ(filter.find("dKeepDate")->value2, "2024-03-31");
  EXPECT_EQ(filter.find("bIncludeExpire")->value, "0");
  // Each member of the schema has its row.
  for (const nlohmann::json& schema = nlohmann::json::parse(filterFileSchema);
       const auto* const members : {&schema["properties"], &schema["properties"]["items"]["items"]["properties"]}) {
    for (const auto& [member, ignored] : members->items())
      EXPECT_NE(text.find("`" + member + "`"), std::string::npos) << member;
  }
}

// --- The reader of the guide ----------------------------------------------------------------------------------------

TEST(GuideTables, NamesComeSinglyAndInRanges) {
  EXPECT_THAT(test::namesIn("`cWhCode`, `cFree9` to `cFree11`"),
              testing::ElementsAre("cWhCode", "cFree9", "cFree10", "cFree11"));
  EXPECT_THAT(test::namesIn("nvarchar(20)"), IsEmpty());
}

TEST(GuideTables, CaptionsBelongToNamesOneByOneOrByNumber) {
  EXPECT_THAT(test::captionsOf({"a", "b"}, "甲 A · 乙 B"), testing::ElementsAre("甲 A", "乙 B"));
  EXPECT_THAT(test::captionsOf({"f1", "f2"}, "项*n* Item *n*"), testing::ElementsAre("项1 Item 1", "项2 Item 2"));
  EXPECT_THROW(test::captionsOf({"a", "b"}, "甲 A"), std::runtime_error);
}

}  // namespace
}  // namespace quillon::workbench
