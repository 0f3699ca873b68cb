// The rows of the outbound summary on a sample account, compared with a computation straight from the ledger tables: the
// tables are read whole, one by one, and everything else (joins, conditions, sums) happens here.
#include <gmock/gmock.h>

#include <algorithm>
#include <cstdint>
#include <filesystem>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <tuple>
#include <vector>

#include "reports/outsum_item/outsum_item.h"
#include "tests/reports/table_lines.h"
#include "tests/workbench/account/leftovers.h"
#include "tests/workbench/platform/temporary_file.h"
#include "workbench/account/account.h"
#include "workbench/platform/account_source.h"
#include "workbench/platform/argument.h"
#include "workbench/platform/embedded_platform.h"
#include "workbench/platform/filter_object.h"
#include "workbench/tsql/engine/engine.h"

namespace quillon {
namespace {

using tables::amountUnits;
using tables::Line;
using tables::linesOf;
using tables::lower;
using tables::quantityUnits;
using tables::Text;
using Condition = std::function<bool(const Line&)>;

constexpr const char* year = "2024";

struct Item {
  std::string key;
  std::string value;
  std::string value2 = {};
};

// A row of the report, as far as it is compared.
struct Row {
  std::int64_t line = 0;  // autoid
  std::string costItem;   // cFXCode
  std::string expense;    // cAmoCode
  std::int64_t quantity = 0;
  std::int64_t amount = 0;
  std::optional<std::int64_t> costItemAmount;  // iFXMoney

  friend bool operator==(const Row&, const Row&) = default;
  friend bool operator<(const Row& a, const Row& b) {
    const auto ordered = [](const Row& row) {
      return std::tie(row.line, row.costItem, row.expense, row.quantity, row.amount, row.costItemAmount);
    };
    return ordered(a) < ordered(b);
  }
  friend void PrintTo(const Row& row, std::ostream* out) {
    *out << row.line << " " << row.costItem << " " << row.expense << " " << row.quantity << " " << row.amount << " "
         << row.costItemAmount.value_or(-1);
  }
};

class OutsumItemRows : public testing::Test {
 protected:
  static void SetUpTestSuite() {
    file_ = std::make_unique<workbench::test::TemporaryFile>(".qacc");
    account::createSample(file_->path(), {.rows = 3000, .seed = 7, .years = 2});
    const auto account = tsql::Connection::open(file_->path(), tsql::OpenMode::existing);
    // In the sample only purchases name an import or a purchase order; goods that go back to their vendor do, too.
    account->execute(
        "Update ia_subsidiary Set cImordercode = N'IM-1', cpurorderCode = N'PU-1' Where bRdFlag = 0 And cVouType = N'32'");
    // And no inventory of the sample goes out of use: here one does a day before the login's date, another on it.
    for (const auto& [inventory, end] : {std::pair{"Min", "2024-06-29"}, {"Max", "2024-06-30"}}) {
      account->execute("Update Inventory Set dEDate = '" + std::string(end) + "' Where cInvCode = (Select " +
                       inventory + "(cInvCode) From ia_subsidiary Where bRdFlag = 0 And iYear = " + year + ")");
    }
    for (const char* table :
         {"ia_subsidiary", "ia_subsidiary_Item", "ia_subsidiary_ItemOut", "Ca_FxDef", "Ca_FxClassDef",
          "Ca_FxMapExpDetails", "Ca_FxMapExpDID", "Ca_CostExpDetail_Period", "Inventory", "Customer", "Warehouse",
          "fItem_Project", "fItem_ProjectClass", "VouchType", "AA_Enum"}) {
      tables_[table] = linesOf(*account, "Select * From " + std::string(table));
    }
    ASSERT_GT(outboundLines([](const Line&) { return true; }).size(), 300U);
  }
  static void TearDownTestSuite() {
    indexes_.clear();
    tables_.clear();
    file_.reset();
  }

  // --- The report ---

  static std::vector<Line> reportLines(const std::vector<Item>& items) {
    return reportLines(items, file_->path(), "*");
  }
  // The rows with some of their columns only, which is much quicker.
  static std::vector<Line> reportLines(const std::vector<Item>& items, const std::filesystem::path& file,
                                       const std::string& columns) {
    workbench::EmbeddedPlatform platform({.account = workbench::AccountSource::inFile(file)});
    Module module(platform);
    const auto filter = std::make_shared<workbench::FilterObject>(workbench::ReportRegistration{});
    for (const Item& item : items) {
      workbench::FilterEntry& entry = filter->add({.key = item.key, .chinese = item.key, .english = item.key});
      entry.value = item.value;
      entry.value2 = item.value2;
    }
    const auto login = std::make_shared<workbench::WorkbenchLogin>(
        workbench::LoginDetails{.accountConnection = workbench::connectionString(file),
                                .languageRegion = "zh-CN",
                                .businessDate = "2024-06-30"});
    workbench::WorkbenchArgument argument(filter, login, "outsum_result");
    OutsumItem report(module);
    report.getSql(argument);
    EXPECT_EQ(module.session, nullptr) << "the build did not come to its end";
    const auto account = tsql::Connection::open(file, tsql::OpenMode::existing);
    std::vector<Line> rows = linesOf(*account, "Select " + columns + " From outsum_result");
    account->execute("Drop Table outsum_result");
    EXPECT_THAT(account::testing::leftoverNames(*account), testing::IsEmpty());
    return rows;
  }

  static std::vector<Item> filterOf(const std::string& mode, const std::string& source,
                                    const std::string& grade = "1") {
    return {{"iYear", year}, {"cModal", mode}, {"iGrade", grade}, {"cSource", source}};
  }

  static std::vector<Row> report(const std::vector<Item>& items) {
    std::vector<Row> rows;
    for (const Line& line :
         reportLines(items, file_->path(), "autoid, cFXCode, cAmoCode, iQuantity, iMoney, iFXMoney")) {
      rows.push_back(
          {.line = std::stoll(*line.at("autoid")),
           .costItem = line.at("cfxcode").value(),
           .expense = line.at("camocode").value_or(""),
           .quantity = quantityUnits(line.at("iquantity")),
           .amount = amountUnits(line.at("imoney")),
           .costItemAmount = line.at("ifxmoney") ? std::optional(amountUnits(line.at("ifxmoney"))) : std::nullopt});
    }
    std::sort(rows.begin(), rows.end());
    return rows;
  }

  // --- The computation from the ledger ---

  static const std::vector<Line>& table(const std::string& name) { return tables_.at(name); }

  static std::vector<const Line*> outboundLines(const Condition& condition) {
    std::vector<const Line*> lines;
    for (const Line& line : table("ia_subsidiary")) {
      if (line.at("brdflag") == "0" && line.at("iyear") == year && condition(line)) lines.push_back(&line);
    }
    return lines;
  }

  // The first row of the table with this value in the column; null when there is none.
  static const Line* find(const std::string& tableName, const std::string& column, const Text& value) {
    if (!value) return nullptr;
    const auto [index, isNew] = indexes_.try_emplace({tableName, column});
    if (isNew) {
      for (const Line& row : table(tableName)) {
        if (const Text& key = row.at(column)) index->second.emplace(*key, &row);
      }
    }
    const auto found = index->second.find(*value);
    return found == index->second.end() ? nullptr : found->second;
  }

  // The code of the class at `grade` that the cost item belongs to; its own class's when there is none.
  static std::string classOf(const Line& costItem, const std::string& grade) {
    const Line* own = find("Ca_FxClassDef", "ifxcid", costItem.at("cfxcid"));
    for (const Line& candidate : table("Ca_FxClassDef")) {
      if (candidate.at("igrade") == grade && own->at("cfxccode")->starts_with(*candidate.at("cfxccode"))) {
        return *candidate.at("cfxccode");
      }
    }
    return *own->at("cfxccode");
  }

  static std::string expenseOf(const Line& costItem, const Line& part) {
    const Line* detail =
        costItem.at("bhasdetails") == "1" ? find("Ca_FxMapExpDetails", "ifxdid", part.at("iitemdetailid")) : nullptr;
    if (!detail) return {};
    const Line* type = find("Ca_FxMapExpDID", "ifxdid", part.at("iitemdetailid"));
    return (type->at("camotype") == "0" ? detail->at("cinvcode") : detail->at("camoid")).value_or("");
  }

  static std::vector<Row> computed(const std::string& mode, const std::string& source, const Condition& condition,
                                   const std::string& grade = "1") {
    std::multimap<std::string, const Line*> parts;
    for (const Line& part : table(source == "0" ? "ia_subsidiary_Item" : "ia_subsidiary_ItemOut"))
      parts.emplace(*part.at("isubid"), &part);
    std::set<std::string> inOutboundSplit;
    for (const Line& part : table("ia_subsidiary_ItemOut"))
      inOutboundSplit.insert(*part.at("isubid"));

    std::vector<Row> rows;
    for (const Line* line : outboundLines(condition)) {
      const std::string& key = *line->at("autoid");
      if (source != "0" && !inOutboundSplit.contains(key)) continue;
      const auto [first, last] = parts.equal_range(key);
      for (auto part = first; part != last; ++part) {
        const Line& costItem = *find("Ca_FxDef", "ifxid", part->second->at("iitemid"));
        const std::int64_t amount = amountUnits(part->second->at("iitemoutprice"));
        rows.push_back({.line = std::stoll(key),
                        .costItem = mode == "0" ? classOf(costItem, grade) : *costItem.at("cfxcode"),
                        .expense = mode == "2" ? expenseOf(costItem, *part->second) : "",
                        .quantity = quantityUnits(part->second->at("iitemoutquantity")),
                        .amount = amount,
                        .costItemAmount = amount});
      }
      if (first == last && mode != "2") {
        rows.push_back({.line = std::stoll(key),
                        .costItem = "",
                        .expense = "",
                        .quantity = quantityUnits(line->at("iaoutquantity")),
                        .amount = amountUnits(line->at("iaoutprice")),
                        .costItemAmount = {}});
      }
    }
    std::sort(rows.begin(), rows.end());
    return rows;
  }

  static std::unique_ptr<workbench::test::TemporaryFile> file_;
  static std::map<std::string, std::vector<Line>> tables_;
  // Of the tables' rows, by table and column, made when first asked for.
  static std::map<std::pair<std::string, std::string>, std::map<std::string, const Line*>> indexes_;
};

std::unique_ptr<workbench::test::TemporaryFile> OutsumItemRows::file_;
std::map<std::string, std::vector<Line>> OutsumItemRows::tables_;
std::map<std::pair<std::string, std::string>, std::map<std::string, const Line*>> OutsumItemRows::indexes_;

bool anyLine(const Line&) {
  return true;
}

// --- Modes and sources ---

TEST_F(OutsumItemRows, AgreeWithTheLedgerInEveryModeAndSource) {
  for (const char* source : {"0", "1"}) {
    for (const char* mode : {"0", "1", "2"}) {
      for (const char* grade : {"1", "2", "3"}) {
        const std::vector<Row> expected = computed(mode, source, anyLine, grade);
        ASSERT_GT(expected.size(), 100U);
        EXPECT_EQ(report(filterOf(mode, source, grade)), expected) << "mode " << mode << " source " << source;
      }
    }
  }
}

TEST_F(OutsumItemRows, OfASplitLineSumToTheLineAndAnyOtherLineComesOnce) {
  for (const char* mode : {"0", "1"}) {
    std::map<std::int64_t, std::pair<std::int64_t, std::int64_t>> sums;
    std::map<std::int64_t, int> wholes;
    for (const Row& row : report(filterOf(mode, "0"))) {
      sums[row.line].first += row.quantity;
      sums[row.line].second += row.amount;
      if (!row.costItemAmount) ++wholes[row.line];
    }
    const std::vector<const Line*> lines = outboundLines(anyLine);
    EXPECT_EQ(sums.size(), lines.size());
    for (const Line* line : lines) {
      const std::int64_t key = std::stoll(*line->at("autoid"));
      EXPECT_EQ(sums[key].first, quantityUnits(line->at("iaoutquantity"))) << key;
      EXPECT_EQ(sums[key].second, amountUnits(line->at("iaoutprice"))) << key;
    }
    EXPECT_GT(wholes.size(), 0U);
    EXPECT_LT(wholes.size(), lines.size());
    for (const auto& [line, times] : wholes)
      EXPECT_EQ(times, 1) << line;
  }
}

// --- Keys ---

// A key of the filter and what it looks at: a column of the ledger line, or of a master that the line names.
struct Key {
  std::string name;
  std::string column;
  enum Form { list, single, prefix } form = list;
  std::string master = {};     // table
  std::string masterKey = {};  // its key column; the line has one of the same name
};

// Every key that compares a column with values; the ranges and the special ones have tests of their own.
std::vector<Key> comparingKeys() {
  std::vector<Key> keys{
      {"cInvPspCode", "cpspcode"},
      {"RdCode", "crdcode"},
      {"cDepCode", "caccdep"},
      {"cWhDep", "cdepcode"},
      {"cperson", "cpersoncode"},
      {"cInvCCode", "cinvccode", Key::prefix, "Inventory", "cinvcode"},
      {"cCusCCode", "ccccode", Key::prefix, "Customer", "ccuscode"},
  };
  for (const char* name : {"cBusType", "cWhCode", "cInvCode", "cCusCode", "cVenCode", "cItemCode", "cOppHead",
                           "cworkcentername", "cMaker"}) {
    keys.push_back({name, lower(name)});
  }
  for (const char* name : {"cVouCode", "cProCode", "cItem_Class", "strContractCode", "cProordercode", "iProorderids",
                           "cworkprocode", "cSaleorderCode", "isaleorderids", "exoCode", "iexrowno", "cImordercode",
                           "cpurorderCode", "centrustordercode", "cBuscode"}) {
    keys.push_back({name, lower(name), Key::single});
  }
  for (int i = 1; i <= 10; ++i)
    keys.push_back({"cFree" + std::to_string(i), "cfree" + std::to_string(i)});
  const std::set<int> numbersAndDates{4, 5, 6, 7, 15, 16, 26, 27, 34, 35, 36, 37};
  for (int i = 1; i <= 37; ++i) {
    // There are no keys for the fields 17 to 21.
    if (i >= 17 && i <= 21) continue;
    const std::string name = "cDefine" + std::to_string(i);
    keys.push_back({name, lower(name), numbersAndDates.contains(i) ? Key::single : Key::list});
  }
  for (int i = 1; i <= 16; ++i) {
    const std::string name = "cInvDefine" + std::to_string(i);
    keys.push_back({name, lower(name), i <= 10 ? Key::list : Key::single, "Inventory", "cinvcode"});
  }
  return keys;
}

class OutsumItemKeys : public OutsumItemRows {
 protected:
  static Text valueOf(const Key& key, const Line& line) {
    if (key.master.empty()) return line.at(key.column);
    const Line* master = find(key.master, key.masterKey, line.at(key.masterKey));
    return master ? master->at(key.column) : std::nullopt;
  }

  // What the year's outbound lines have in the key's column.
  static std::set<std::string> valuesOf(const Key& key) {
    std::set<std::string> values;
    for (const Line* line : outboundLines(anyLine)) {
      if (const Text value = valueOf(key, *line); value && !value->empty()) values.insert(*value);
    }
    return values;
  }

  static bool meets(const Key& key, const Line& line, const std::string& wanted) {
    const Text own = valueOf(key, line);
    return own && (key.form == Key::prefix ? own->starts_with(wanted) : own == wanted);
  }

  // The value as a user enters it: a date without its time.
  static std::string entered(const std::string& value) {
    constexpr std::string_view midnight = " 00:00:00.000";
    return value.ends_with(midnight) ? value.substr(0, value.size() - midnight.size()) : value;
  }
};

TEST_F(OutsumItemKeys, EachKeyNarrowsTheRowsToItsLines) {
  const std::size_t whole = computed("1", "0", anyLine).size();
  for (const Key& key : comparingKeys()) {
    const std::set<std::string> values = valuesOf(key);
    ASSERT_FALSE(values.empty()) << key.name << ": no line of the sample can show it";
    const std::string& value = *values.begin();
    std::vector<Item> items = filterOf("1", "0");
    items.push_back({key.name, entered(value)});
    const auto expected = computed("1", "0", [&](const Line& line) { return meets(key, line, value); });
    EXPECT_FALSE(expected.empty()) << key.name;
    EXPECT_LT(expected.size(), whole) << key.name;
    EXPECT_EQ(report(items), expected) << key.name << " = " << value;
  }
}

TEST_F(OutsumItemKeys, AListChoosesTheLinesOfAllItsValues) {
  for (const Key& key : comparingKeys()) {
    const std::set<std::string> values = valuesOf(key);
    if (key.form != Key::list || values.size() < 2) continue;
    const std::string& first = *values.begin();
    const std::string& last = *values.rbegin();
    std::vector<Item> items = filterOf("1", "0");
    std::string entry = first;
    entry.append("\t ").append(last).append(" ");
    items.push_back({key.name, entry});
    const auto expected =
        computed("1", "0", [&](const Line& line) { return meets(key, line, first) || meets(key, line, last); });
    EXPECT_EQ(report(items), expected) << key.name;
  }
}

// --- Filters of every form, by cost item, by class at each grade and by expense item ---

struct FilterCase {
  const char* what;
  std::vector<Item> items;
  Condition matches;
};

class OutsumItemFilters : public OutsumItemKeys {
 protected:
  static std::string dateOf(const Line& line, const char* column) { return line.at(column).value_or("").substr(0, 10); }

  // A value that some line has, and the condition that finds it.
  static FilterCase comparing(const char* what, const std::string& name) {
    const std::vector<Key> keys = comparingKeys();
    const Key key = *std::ranges::find(keys, name, &Key::name);
    const std::string value = *valuesOf(key).rbegin();
    return {what, {{name, entered(value)}}, [key, value](const Line& line) { return meets(key, line, value); }};
  }

  static std::vector<FilterCase> cases() {
    const Line& sample = *outboundLines(anyLine).front();
    return {
        comparing("a warehouse", "cWhCode"),
        comparing("an inventory", "cInvCode"),
        comparing("a business type", "cBusType"),
        comparing("a receipt/issue type", "RdCode"),
        comparing("an accounting department", "cDepCode"),
        comparing("a department of the document", "cWhDep"),
        comparing("a person", "cperson"),
        comparing("a free item", "cFree1"),
        comparing("a text of the document", "cDefine22"),
        comparing("a text of the inventory", "cInvDefine3"),
        comparing("a class of inventories", "cInvCCode"),
        comparing("a class of customers", "cCusCCode"),
        comparing("a project class", "cItem_Class"),
        comparing("a production order", "cProordercode"),
        comparing("a line of a production order", "iProorderids"),
        comparing("a date of the document", "cDefine4"),
        comparing("a number of the document", "cDefine26"),
        comparing("a number of the inventory", "cInvDefine11"),
        comparing("a date of the inventory", "cInvDefine15"),
        {"documents of a time",
         {{"dVouDate", "2024-03-05", "2024-06-28"}},
         [](const Line& line) {
           return dateOf(line, "dvoudate") >= "2024-03-05" && dateOf(line, "dvoudate") <= "2024-06-28";
         }},
        {"posted from a day on",
         {{"dKeepDate", "2024-09-01"}},
         [](const Line& line) { return dateOf(line, "dkeepdate") >= "2024-09-01"; }},
        {"posted until a day",
         {{"dKeepDate", "", "2024-02-10"}},
         [](const Line& line) {
           return !dateOf(line, "dkeepdate").empty() && dateOf(line, "dkeepdate") <= "2024-02-10";
         }},
        {"two voucher types and what they bring",
         {{"cVouType", "32\t11"}},
         [](const Line& line) {
           const std::string type = *line.at("cvoutype");
           return type == "32" || type == "3201" || type == "11";
         }},
        {"any warehouse", {{"cWhCode", ""}}, [](const Line& line) { return line.at("cwhcode").has_value(); }},
        {"no expired inventories",
         {{"dIncludeExpire", "0"}},
         [](const Line& line) {
           const Text end = find("Inventory", "cinvcode", line.at("cinvcode"))->at("dedate");
           return !end || end->substr(0, 10) >= "2024-06-30";
         }},
        {"several keys at once",
         {{"cWhCode", *sample.at("cwhcode")},
          {"dVouDate", "2024-02-01", "2024-11-30"},
          {"cMaker", *sample.at("cmaker")}},
         [&sample](const Line& line) {
           return line.at("cwhcode") == sample.at("cwhcode") && line.at("cmaker") == sample.at("cmaker") &&
                  dateOf(line, "dvoudate") >= "2024-02-01" && dateOf(line, "dvoudate") <= "2024-11-30";
         }},
    };
  }
};

TEST_F(OutsumItemFilters, ChooseTheSameLinesInEveryKindOfReport) {
  struct Kind {
    const char* mode;
    const char* grade;
    const char* source;
  };
  const std::size_t whole = computed("1", "0", anyLine).size();
  for (const FilterCase& filter : cases()) {
    const std::size_t chosen = computed("1", "0", filter.matches).size();
    EXPECT_GT(chosen, 0U) << filter.what;
    EXPECT_LT(chosen, whole) << filter.what;
    for (const Kind& kind : {Kind{"0", "1", "0"},
                             {"0", "2", "1"},
                             {"0", "3", "0"},
                             {"1", "1", "0"},
                             {"1", "1", "1"},
                             {"2", "1", "0"},
                             {"2", "1", "1"}}) {
      std::vector<Item> items = filterOf(kind.mode, kind.source, kind.grade);
      items.insert(items.end(), filter.items.begin(), filter.items.end());
      EXPECT_EQ(report(items), computed(kind.mode, kind.source, filter.matches, kind.grade))
          << filter.what << ", mode " << kind.mode << ", grade " << kind.grade << ", source " << kind.source;
    }
  }
}

// --- Names and months ---

TEST_F(OutsumItemRows, VoucherTypesAreShownByTheirNames) {
  // By the enumeration; 3201 by that of 32.
  std::map<std::string, std::string> names;
  for (const Line& type : table("VouchType")) {
    for (const Line& name : table("AA_Enum")) {
      if (lower(*name.at("enumtype")) == "ia.vchtype" && name.at("enumcode") == type.at("cvouchname") &&
          name.at("localeid") == "zh-CN") {
        names[*type.at("cvouchtype")] = *name.at("enumname");
      }
    }
  }
  names["3201"] = names.at("32");
  std::map<std::string, std::string> typeOfLine;
  for (const Line* line : outboundLines(anyLine))
    typeOfLine[*line->at("autoid")] = *line->at("cvoutype");
  std::set<std::string> seen;
  for (const Line& row : reportLines(filterOf("1", "0"))) {
    const std::string type = typeOfLine.at(*row.at("autoid"));
    seen.insert(type);
    EXPECT_EQ(row.at("cvoutype"), names.contains(type) ? names.at(type) : type);
  }
  EXPECT_TRUE(seen.contains("3201")) << "the sample has lines of the type that is shown by another's name";
}

TEST_F(OutsumItemRows, TheMonthsBeforeTheBreakdownAreLeftOut) {
  // 2023 is the first year; its breakdown starts in April, while inventory accounting began in January.
  std::vector<Item> items = filterOf("1", "0");
  items[0].value = "2023";
  std::set<std::int64_t> expected;
  for (const Line& line : table("ia_subsidiary")) {
    if (line.at("brdflag") == "0" && line.at("iyear") == "2023" && std::stoi(*line.at("imonth")) >= 4) {
      expected.insert(std::stoll(*line.at("autoid")));
    }
  }
  std::set<std::int64_t> lines;
  for (const Row& row : report(items))
    lines.insert(row.line);
  EXPECT_EQ(lines, expected);
}

// --- Masters with two rows for one key ---

// An account in which every row of `table` comes twice; the table has lost its key.
class AccountWithPairs {
 public:
  AccountWithPairs(const std::filesystem::path& account, const std::string& table) {
    std::filesystem::copy_file(account, file_.path());
    const auto connection = tsql::Connection::open(file_.path(), tsql::OpenMode::existing);
    connection->execute("Select * Into pairs From " + table);
    connection->execute("Insert Into pairs Select * From pairs");
    connection->execute("Drop Table " + table);
    connection->execute("Select * Into " + table + " From pairs");
  }
  const std::filesystem::path& path() const { return file_.path(); }

 private:
  workbench::test::TemporaryFile file_{".qacc"};
};

// A table that a report reads beside the ledger, and how often a row of the report has found a row of it.
struct Master {
  const char* table;
  const char* mode;
  std::function<int(const Line&)> found;
};

int oneFor(const Line& row, const char* column) {
  return row.at(column) ? 1 : 0;
}

TEST_F(OutsumItemRows, MultiplyWithMastersThatHaveTwoRowsForAKey) {
  const auto naming = [](const char* column) { return [column](const Line& row) { return oneFor(row, column); }; };
  const std::vector<Master> masters{
      {"Warehouse", "1", naming("cwhname")},
      // The line's own and the one of the material list.
      {"Inventory", "1", [](const Line& row) { return oneFor(row, "cinvname") + oneFor(row, "cinvpspname"); }},
      {"Rd_Style", "1", naming("rdname")},
      {"sfc_workcenter", "1", naming("cworkcentername")},
      {"CA_CostCenterMap", "1", naming("ccostcenter")},
      {"CA_CostCenter", "1", naming("ccostcenter")},
      {"ComputationUnit", "1", naming("cinvname")},
      {"Customer", "1", naming("ccusname")},
      {"CustomerClass", "1", naming("ccuscname")},
      {"Vendor", "1", naming("cvenname")},
      {"Department", "1", [](const Line& row) { return oneFor(row, "cdepname") + oneFor(row, "cwhdepname"); }},
      {"Code", "1", naming("coppheadname")},
      {"Person", "1", naming("cpersonname")},
      {"orvsystem..ua_user", "1", naming("cmakername")},
      {"fItem", "1", naming("citem_classname")},
      {"Ca_FxDef", "1", [](const Line& row) { return row.at("cfxcode")->empty() ? 0 : 1; }},
      // The cost item's own class and, at the chosen grade, the one above it.
      {"Ca_FxClassDef", "0", [](const Line& row) { return row.at("cfxcode")->empty() ? 0 : 2; }},
      {"Ca_FxMapExpDID", "2", naming("cfxcname")},
      {"Ca_FxMapExpDetails", "2", naming("camocode")},
      {"Ca_AmoTypeName", "2", naming("cfxcname")},
      {"Ca_CostExpDetail_Period", "2",
       [](const Line& row) {
         return oneFor(row, "camoname") - (find("Inventory", "cinvcode", row.at("camocode")) ? 1 : 0);
       }},
      // Updates read these, so that no row comes twice.
      {"VouchType", "1", [](const Line&) { return 0; }},
      {"AA_Enum", "1", [](const Line&) { return 0; }},
      {"InventoryClass", "1", [](const Line&) { return 0; }},
      {"fItem_Project", "1", [](const Line&) { return 0; }},
      {"fItem_ProjectClass", "1", [](const Line&) { return 0; }},
  };
  std::map<std::string, std::vector<Line>> plain;
  for (const char* mode : {"0", "1", "2"})
    plain[mode] = reportLines(filterOf(mode, "0"));
  for (const Master& master : masters) {
    std::size_t expected = 0;
    for (const Line& row : plain.at(master.mode))
      expected += std::size_t{1} << master.found(row);
    const AccountWithPairs account(file_->path(), master.table);
    EXPECT_EQ(reportLines(filterOf(master.mode, "0"), account.path(), "autoid").size(), expected) << master.table;
  }
}

TEST_F(OutsumItemRows, MultiplyWhenACodeOfAGradeBeginsAnotherOfThatGrade) {
  const std::size_t plain = reportLines(filterOf("0", "0")).size();
  const std::string code = *find("Ca_FxClassDef", "igrade", "1")->at("cfxccode");
  const workbench::test::TemporaryFile copy(".qacc");
  std::filesystem::copy_file(file_->path(), copy.path());
  tsql::Connection::open(copy.path(), tsql::OpenMode::existing)
      ->execute("Update Ca_FxClassDef Set cFxCCode = N'" + code.substr(0, 1) +
                "' Where iGrade = 1 And cFxCCode = (Select Max(cFxCCode) From Ca_FxClassDef Where iGrade = 1)");
  EXPECT_GT(reportLines(filterOf("0", "0"), copy.path(), "autoid").size(), plain);
}

// --- Names ---

TEST_F(OutsumItemRows, ProjectItemsCarryTheirClass) {
  std::map<std::string, const Line*> lineOf;
  for (const Line* line : outboundLines(anyLine))
    lineOf[*line->at("autoid")] = line;
  int named = 0;
  for (const Line& row : reportLines(filterOf("1", "0"))) {
    const Line& line = *lineOf.at(*row.at("autoid"));
    if (line.at("citem_class") != "00") continue;
    const Line* project = find("fItem_Project", "citemcode", line.at("citemcode"));
    ASSERT_NE(project, nullptr);
    const Line* projectClass = find("fItem_ProjectClass", "citemccode", project->at("citemccode"));
    ASSERT_NE(projectClass, nullptr);
    EXPECT_EQ(row.at("citemccode"), projectClass->at("citemccode"));
    EXPECT_EQ(row.at("citemcname"), projectClass->at("citemcname"));
    EXPECT_EQ(row.at("citemname"), line.at("cname"));
    ++named;
  }
  EXPECT_GT(named, 0);
}

TEST_F(OutsumItemRows, ExpenseItemsCarryTheirTypeAndName) {
  std::map<std::string, const Line*> lineOf;
  for (const Line* line : outboundLines(anyLine))
    lineOf[*line->at("autoid")] = line;
  int materials = 0;
  int expenses = 0;
  for (const Line& row : reportLines(filterOf("2", "0"))) {
    if (!row.at("camocode")) continue;
    const Line* material = find("Inventory", "cinvcode", row.at("camocode"));
    if (material) {
      EXPECT_EQ(row.at("camoname"), material->at("cinvname"));
      ++materials;
      continue;
    }
    const std::string month = *lineOf.at(*row.at("autoid"))->at("imonth");
    const std::string period = std::string(year) + (month.size() == 1 ? "0" : "") + month;
    const auto& names = table("Ca_CostExpDetail_Period");
    const auto name = std::ranges::find_if(names, [&](const Line& candidate) {
      return candidate.at("camoid") == row.at("camocode") && candidate.at("iperiod") == period;
    });
    ASSERT_NE(name, names.end());
    EXPECT_EQ(row.at("camoname"), name->at("camoname"));
    ++expenses;
  }
  EXPECT_GT(materials, 0);
  EXPECT_GT(expenses, 0);
}

// --- The columns ---

TEST_F(OutsumItemRows, HaveTheColumnsInTheirOrder) {
  const std::vector<std::string> expected{"autoid",          "cSource",        "dVouDate",      "cVouType",
                                          "cBusType",        "cVouCode",       "cWhCode",       "cWhName",
                                          "cInvCCode",       "cInvCode",       "cInvName",      "cInvStd",
                                          "cInvAddCode",     "cInvPspCode",    "cInvPspName",   "dKeepDate",
                                          "RdCode",          "RdName",         "cCostCenter",   "cCostCenterName",
                                          "cDepCode",        "cDepName",       "cProCode",      "cWhDep",
                                          "cWhDepName",      "cCusCCode",      "cCusCName",     "cCusCode",
                                          "cCusName",        "cVenCode",       "cVenName",      "cItem_Class",
                                          "cItem_ClassName", "cItemCCode",     "cItemCName",    "cItemCode",
                                          "cItemName",       "cOppHead",       "cOppHeadName",  "strContractCode",
                                          "cProordercode",   "iProorderids",   "cworkprocode",  "cworkcentercode",
                                          "cworkcentername", "cSaleorderCode", "isaleorderids", "exoCode",
                                          "iexrowno",        "cImordercode",   "cpurorderCode", "centrustordercode",
                                          "cBuscode",        "cperson",        "cPersonName",   "cMaker",
                                          "cMakerName",      "cDefine1",       "cDefine2",      "cDefine3",
                                          "cDefine4",        "cDefine5",       "cDefine6",      "cDefine7",
                                          "cDefine8",        "cDefine9",       "cDefine10",     "cDefine11",
                                          "cDefine12",       "cDefine13",      "cDefine14",     "cDefine15",
                                          "cDefine16",       "cDefine22",      "cDefine23",     "cDefine24",
                                          "cDefine25",       "cDefine26",      "cDefine27",     "cDefine28",
                                          "cDefine29",       "cDefine30",      "cDefine31",     "cDefine32",
                                          "cDefine33",       "cDefine34",      "cDefine35",     "cDefine36",
                                          "cDefine37",       "cInvDefine1",    "cInvDefine2",   "cInvDefine3",
                                          "cInvDefine4",     "cInvDefine5",    "cInvDefine6",   "cInvDefine7",
                                          "cInvDefine8",     "cInvDefine9",    "cInvDefine10",  "cInvDefine11",
                                          "cInvDefine12",    "cInvDefine13",   "cInvDefine14",  "cInvDefine15",
                                          "cInvDefine16",    "cbatchia",       "cFree1",        "cFree2",
                                          "cFree3",          "cFree4",         "cFree5",        "cFree6",
                                          "cFree7",          "cFree8",         "cFree9",        "cFree10",
                                          "cFXCode",         "cFXName",        "iQuantity",     "iMoney",
                                          "iFXMoney",        "cCross",         "cFxCName",      "cAmoCode",
                                          "cAmoName"};
  workbench::EmbeddedPlatform platform({.account = workbench::AccountSource::inFile(file_->path())});
  for (const char* mode : {"0", "1", "2"}) {
    Module module(platform);
    const auto filter = std::make_shared<workbench::FilterObject>(workbench::ReportRegistration{});
    for (const Item& item : filterOf(mode, "1"))
      filter->add({.key = item.key, .chinese = "", .english = ""}).value = item.value;
    const auto login = std::make_shared<workbench::WorkbenchLogin>(
        workbench::LoginDetails{.accountConnection = workbench::connectionString(file_->path())});
    workbench::WorkbenchArgument argument(filter, login, "outsum_columns");
    OutsumItem(module).getSql(argument);
    const auto account = tsql::Connection::open(file_->path(), tsql::OpenMode::existing);
    std::vector<std::string> names;
    std::map<std::string, std::string> types;
    for (const tsql::Column& column : account->describe("outsum_columns")) {
      names.push_back(lower(column.name));
      types[names.back()] = column.type.name();
    }
    std::vector<std::string> lowered;
    lowered.reserve(expected.size());
    for (const std::string& name : expected)
      lowered.push_back(lower(name));
    EXPECT_EQ(names, lowered);
    EXPECT_EQ(types["csource"], "nvarchar(2)");
    EXPECT_EQ(types["cvoutype"], "nvarchar(200)");
    EXPECT_EQ(types["cbustype"], "nvarchar(200)");
    EXPECT_EQ(types["citemccode"], "nvarchar(40)");
    EXPECT_EQ(types["citemname"], "nvarchar(255)");
    EXPECT_EQ(types["ccross"], "nvarchar(40)");
    EXPECT_EQ(types["cfxcname"], "nvarchar(128)");
    EXPECT_EQ(types["camocode"], "nvarchar(60)");
    EXPECT_EQ(types["camoname"], "nvarchar(255)");
    account->execute("Drop Table outsum_columns");
  }
}

}  // namespace
}  // namespace quillon
