// The rows of the cost-item voucher report on a sample account, compared with a computation straight from the ledger
// tables: the tables are read whole, one by one, and everything else (joins, conditions, sums, quotients) happens here.
#include <gmock/gmock.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <tuple>
#include <utility>
#include <vector>

#include "frame/automation_error.h"
#include "reports/fx_wt/fx_wt.h"
#include "tests/reports/table_lines.h"
#include "tests/workbench/account/leftovers.h"
#include "tests/workbench/platform/temporary_file.h"
#include "workbench/account/account.h"
#include "workbench/catalogue/catalogue.h"
#include "workbench/platform/account_source.h"
#include "workbench/platform/argument.h"
#include "workbench/platform/embedded_platform.h"
#include "workbench/platform/filter_object.h"
#include "workbench/tsql/engine/engine.h"

namespace quillon {
namespace {

using tables::Line;
using tables::linesOf;
using tables::lower;
using tables::Text;
using Condition = std::function<bool(const Line&)>;

// The whole number that tables::units gives, but nothing for null.
std::optional<std::int64_t> unitsOrNull(const Text& number, std::size_t scale) {
  return number ? std::optional(tables::units(number, scale)) : std::nullopt;
}
constexpr std::size_t quantityScale = 6;
constexpr std::size_t amountScale = 4;

struct Item {
  std::string key;
  std::string value;
  std::string value2 = {};
  enum Input { single, range, multiple } input = single;
  std::string column = {};  // of the filter object's own condition; empty: the ledger's of that name
};

std::int64_t tenTo(std::size_t exponent) {
  std::int64_t power = 1;
  for (; exponent > 0; --exponent)
    power *= 10;
  return power;
}

// Whether the first digit that `decimals` decimal places leave out is 5 or more in the seventeen digits of a float.
bool roundsAway(double number, std::size_t decimals) {
  std::array<char, 32> text{};
  std::snprintf(text.data(), text.size(), "%.16e", std::abs(number));  // d.dddddddddddddddde-dd
  const std::string digits = text[0] + std::string(&text[2], 16);
  const std::ptrdiff_t exponent = std::atoi(&text[19]);
  return digits.at(static_cast<std::size_t>(exponent + static_cast<std::ptrdiff_t>(decimals) + 1)) >= '5';
}

// `dividend`, which has `dividendScale` digits behind the point, by `divisor`, a quantity, with `decimals` digits: exact,
// and rounded. Half of the last place, which the report has as a float, goes to where that float lies.
std::int64_t quotient(const std::string& dividend, std::size_t dividendScale, const std::string& divisor,
                      std::size_t decimals) {
  const std::int64_t upper = tables::units(dividend, dividendScale) * tenTo(quantityScale - dividendScale + decimals);
  const std::int64_t lower = tables::units(divisor, quantityScale);
  const std::int64_t whole = upper / lower;
  const std::int64_t twiceRest = 2 * std::abs(upper % lower);
  const std::int64_t away = (upper < 0) == (lower < 0) ? 1 : -1;
  if (twiceRest < std::abs(lower)) return whole;
  if (twiceRest > std::abs(lower)) return whole + away;
  return roundsAway(std::stod(dividend) / std::stod(divisor), decimals) ? whole + away : whole;
}

// A row of the report, as far as it is compared.
struct Row {
  std::int64_t line = 0;      // AutoID
  std::string costItem = {};  // cfxCode
  std::string detail = {};    // cAmoID
  std::string detailName = {};
  std::optional<std::int64_t> inQuantity = {};
  std::optional<std::int64_t> inAmount = {};
  std::optional<std::int64_t> outQuantity = {};
  std::optional<std::int64_t> outAmount = {};
  std::optional<std::int64_t> unitCost = {};  // in the last of its decimal places
  std::optional<std::int64_t> unitUsage = {};

  auto ordered() const {
    return std::tie(line, costItem, detail, detailName, inQuantity, inAmount, outQuantity, outAmount, unitCost,
                    unitUsage);
  }
  friend bool operator==(const Row& a, const Row& b) { return a.ordered() == b.ordered(); }
  friend bool operator<(const Row& a, const Row& b) { return a.ordered() < b.ordered(); }
  friend void PrintTo(const Row& row, std::ostream* out) {
    *out << row.line << " " << row.costItem << " " << row.detail << " " << row.detailName;
    for (const auto& figure :
         {row.inQuantity, row.inAmount, row.outQuantity, row.outAmount, row.unitCost, row.unitUsage})
      *out << " " << (figure ? std::to_string(*figure) : "null");
  }
};

class FxWtRows : public testing::Test {
 protected:
  static void SetUpTestSuite() {
    file_ = std::make_unique<workbench::test::TemporaryFile>(".qacc");
    account::createSample(file_->path(), {.rows = 1500, .seed = 11, .years = 2});
    const auto account = tsql::Connection::open(file_->path(), tsql::OpenMode::existing);
    prepare(*account);
    for (const char* table : {"ia_subsidiary",
                              "ia_subsidiary_Item",
                              "Ca_FxDef",
                              "Ca_FxClassDef",
                              "Ca_FxMapExpDetails",
                              "Ca_FxMapExpDID",
                              "Ca_CostExpDetail_Period",
                              "Ca_AmoTypeName",
                              "Inventory",
                              "ComputationUnit",
                              "Warehouse",
                              "Department",
                              "CAQ_CostCenterMap",
                              "CAQ_CostCenter",
                              "Vendor",
                              "VendorClass",
                              "Customer",
                              "CustomerClass",
                              "Rd_Style",
                              "AA_Enum"})
      tables_[table] = linesOf(*account, "Select * From " + std::string(table));
  }
  static void TearDownTestSuite() {
    tables_.clear();
    file_.reset();
  }

  // What the sample does not have: quantities of 0 and null, of parts and of lines, and receipt adjustments with and
  // without amounts.
  static void prepare(tsql::Connection& account) {
    for (const char* statement : {
             "Update ia_subsidiary_Item Set iItemInQuantity = 0 Where bRdFlag = 1 And AutoID % 41 = 0",
             "Update ia_subsidiary_Item Set iItemInQuantity = Null Where bRdFlag = 1 And AutoID % 43 = 0",
             "Update ia_subsidiary_Item Set iItemOutQuantity = 0 Where bRdFlag = 0 And AutoID % 41 = 0",
             "Update ia_subsidiary_Item Set iItemOutQuantity = Null Where bRdFlag = 0 And AutoID % 43 = 0",
             "Update ia_subsidiary Set iAInQuantity = 0 Where bRdFlag = 1 And AutoID % 47 = 0",
             "Update ia_subsidiary Set iAInQuantity = Null Where bRdFlag = 1 And AutoID % 53 = 0",
             "Update ia_subsidiary Set iAOutQuantity = 0 Where bRdFlag = 0 And AutoID % 47 = 0",
             "Update ia_subsidiary Set iAOutQuantity = Null Where bRdFlag = 0 And AutoID % 53 = 0",
             "Update ia_subsidiary Set iAInPrice = 0 Where cVouType = N'20' And AutoID % 4 <> 0",
             "Update ia_subsidiary Set iAInPrice = Null Where cVouType = N'20' And AutoID % 4 = 1",
             "Update ia_subsidiary Set iDebitDifCost = 5 Where cVouType = N'20' And AutoID % 8 = 2",
             "Update ia_subsidiary Set iCreditDifCost = -5 Where cVouType = N'20' And AutoID % 8 = 5",
         })
      account.execute(statement);
  }

  // --- The report ---------------------------------------------------------------------------------------------------

  // Builds wt_result and hands the account to `look`, then drops the table.
  static void report(const std::vector<Item>& items, const std::function<void(tsql::Connection&)>& look) {
    const auto filter = std::make_shared<workbench::FilterObject>(workbench::ReportRegistration{});
    for (const Item& item : items) {
      workbench::FilterEntry& entry = filter->add({.key = item.key,
                                                   .chinese = item.key,
                                                   .english = item.key,
                                                   .range = item.input == Item::range,
                                                   .multiple = item.input == Item::multiple,
                                                   .column = item.column.empty() ? "base." + item.key : item.column});
      entry.value = item.value;
      entry.value2 = item.value2;
    }
    workbench::EmbeddedPlatform platform({.account = workbench::AccountSource::inFile(file_->path())});
    const auto login = std::make_shared<workbench::WorkbenchLogin>(workbench::LoginDetails{
        .accountConnection = workbench::connectionString(file_->path()), .languageRegion = "zh-CN"});
    workbench::WorkbenchArgument argument(filter, login, "wt_result");
    Module module(platform);
    FxWt(module).getSql(argument);
    EXPECT_EQ(module.session, nullptr);
    const auto account = tsql::Connection::open(file_->path(), tsql::OpenMode::existing);
    look(*account);
    account->execute("Drop Table wt_result");
    EXPECT_THAT(account::testing::leftoverNames(*account), testing::IsEmpty());
  }
  static std::vector<Line> reportLines(const std::vector<Item>& items, const std::string& columns = "*") {
    std::vector<Line> rows;
    report(items, [&](tsql::Connection& account) { rows = linesOf(account, "Select " + columns + " From wt_result"); });
    return rows;
  }

  static std::vector<Row> reportRows(const std::vector<Item>& items, std::size_t quantityDecimals,
                                     std::size_t costDecimals) {
    std::vector<Row> rows;
    for (const Line& line :
         reportLines(items,
                     "AutoID,cfxCode,cAmoID,cAmoName,iItemInQuantity,iIteminPrice,iItemoutQuantity,iItemOutPrice,"
                     "iIteminCost,iItemoutCost,iUnitCost,iUnitUsed")) {
      const Row row{.line = std::stoll(*line.at("autoid")),
                    .costItem = line.at("cfxcode").value_or(""),
                    .detail = line.at("camoid").value_or(""),
                    .detailName = line.at("camoname").value_or(""),
                    .inQuantity = unitsOrNull(line.at("iiteminquantity"), quantityScale),
                    .inAmount = unitsOrNull(line.at("iiteminprice"), amountScale),
                    .outQuantity = unitsOrNull(line.at("iitemoutquantity"), quantityScale),
                    .outAmount = unitsOrNull(line.at("iitemoutprice"), amountScale),
                    .unitCost = unitsOrNull(line.at("iunitcost"), costDecimals),
                    .unitUsage = unitsOrNull(line.at("iunitused"), quantityDecimals)};
      // A line is a receipt or an issue, and so are its parts.
      EXPECT_EQ(line.at(row.outAmount ? "iitemoutcost" : "iitemincost"), line.at("iunitcost"));
      EXPECT_FALSE(line.at(row.outAmount ? "iitemincost" : "iitemoutcost"));
      rows.push_back(row);
    }
    std::sort(rows.begin(), rows.end());
    return rows;
  }

  // The lines that the report shows, in order.
  static std::vector<std::int64_t> reportedLines(const std::vector<Item>& items) {
    std::vector<std::int64_t> lines;
    for (const Line& line : reportLines(items, "Distinct AutoID"))
      lines.push_back(std::stoll(*line.at("autoid")));
    std::sort(lines.begin(), lines.end());
    return lines;
  }

  // --- The computation from the ledger --------------------------------------------------------------------------------

  static const std::vector<Line>& table(const std::string& name) { return tables_.at(name); }

  static const Line* find(const std::string& tableName, const std::string& column, const Text& value) {
    if (!value) return nullptr;
    for (const Line& row : table(tableName)) {
      if (row.at(column) == value) return &row;
    }
    return nullptr;
  }
  // The column of the row that `value` finds; nothing without one.
  static Text found(const std::string& tableName, const std::string& key, const Text& value,
                    const std::string& column) {
    const Line* row = find(tableName, key, value);
    return row ? row->at(column) : std::nullopt;
  }

  static bool isZero(const Text& number) { return !number || std::stod(*number) == 0; }

  static bool shown(const Line& line) {
    const std::string& type = *line.at("cvoutype");
    if (type == "33" || type == "34") return false;
    return type != "20" || !isZero(line.at("iainprice")) || !isZero(line.at("idebitdifcost")) ||
           !isZero(line.at("icreditdifcost"));
  }
  static std::vector<const Line*> shownLines(const Condition& condition) {
    std::vector<const Line*> lines;
    for (const Line& line : table("ia_subsidiary")) {
      if (shown(line) && condition(line)) lines.push_back(&line);
    }
    return lines;
  }
  static std::vector<std::int64_t> computedLines(const Condition& condition) {
    std::vector<std::int64_t> lines;
    for (const Line* line : shownLines(condition))
      lines.push_back(std::stoll(*line->at("autoid")));
    std::sort(lines.begin(), lines.end());
    return lines;
  }

  // Null where one of the quantities is 0 or null.
  static std::optional<std::int64_t> usage(const Text& part, const Text& whole, std::size_t decimals) {
    if (isZero(part) || isZero(whole)) return std::nullopt;
    return quotient(*part, quantityScale, *whole, decimals);
  }
  static std::optional<std::int64_t> cost(const Text& amount, const Text& quantity, std::size_t decimals) {
    if (isZero(quantity)) return std::nullopt;
    return quotient(*amount, amountScale, *quantity, decimals);
  }

  static std::vector<Row> computed(std::size_t quantityDecimals, std::size_t costDecimals) {
    std::multimap<std::string, const Line*> parts;
    for (const Line& part : table("ia_subsidiary_Item"))
      parts.emplace(*part.at("isubid"), &part);
    std::vector<Row> rows;
    for (const Line* line : shownLines([](const Line&) { return true; })) {
      const auto [first, last] = parts.equal_range(*line->at("autoid"));
      if (first == last) rows.push_back({.line = std::stoll(*line->at("autoid"))});
      for (auto entry = first; entry != last; ++entry) {
        const Line& part = *entry->second;
        const bool in = line->at("brdflag") == "1";
        const Text& quantity = part.at(in ? "iiteminquantity" : "iitemoutquantity");
        const Text& amount = part.at(in ? "iiteminprice" : "iitemoutprice");
        Row row = partRow(*line, part);
        (in ? row.inQuantity : row.outQuantity) = unitsOrNull(quantity, quantityScale);
        (in ? row.inAmount : row.outAmount) = unitsOrNull(amount, amountScale);
        row.unitCost = cost(amount, quantity, costDecimals);
        row.unitUsage = usage(quantity, line->at(in ? "iainquantity" : "iaoutquantity"), quantityDecimals);
        rows.push_back(row);
      }
    }
    std::sort(rows.begin(), rows.end());
    return rows;
  }

  // The first unit, by code, of the inventory's group that is not the main one.
  static Text assistantUnit(const Line& inventory) {
    const Line* first = nullptr;
    for (const Line& unit : table("ComputationUnit")) {
      const bool other = unit.at("cgroupcode") == inventory.at("cgroupcode") && unit.at("bmainunit") == "0";
      if (other && (!first || *unit.at("ccomunitcode") < *first->at("ccomunitcode"))) first = &unit;
    }
    return first ? first->at("ccomunitname") : std::nullopt;
  }

  // The business type's name in the account's language; its code when there is none.
  static Text businessType(const Text& code) {
    for (const Line& name : table("AA_Enum")) {
      if (name.at("enumtype") == "IA.BusType" && name.at("enumcode") == code && name.at("localeid") == "zh-CN")
        return name.at("enumname");
    }
    return code;
  }

  // A part's row without its figures.
  static Row partRow(const Line& line, const Line& part) {
    Row row{.line = std::stoll(*line.at("autoid"))};
    const Line& costItem = *find("Ca_FxDef", "ifxid", part.at("iitemid"));
    row.costItem = *costItem.at("cfxcode");
    if (costItem.at("bhasdetails") != "1") return row;
    const Line& detail = *find("Ca_FxMapExpDetails", "ifxdid", part.at("iitemdetailid"));
    if (found("Ca_FxMapExpDID", "ifxdid", part.at("iitemdetailid"), "camotype") == "0") {
      row.detail = detail.at("cinvcode").value_or("");
      row.detailName = found("Inventory", "cinvcode", detail.at("cinvcode"), "cinvname").value_or("");
      return row;
    }
    row.detail = detail.at("camoid").value_or("");
    const std::string& month = *line.at("imonth");
    const std::string period = *line.at("iyear") + (month.size() == 1 ? "0" : "") + month;
    for (const Line& expense : table("Ca_CostExpDetail_Period")) {
      if (expense.at("camoid") == detail.at("camoid") && expense.at("camotype") == detail.at("camotype") &&
          expense.at("iperiod") == period)
        row.detailName = *expense.at("camoname");
    }
    return row;
  }

  static std::unique_ptr<workbench::test::TemporaryFile> file_;
  static std::map<std::string, std::vector<Line>> tables_;
};

std::unique_ptr<workbench::test::TemporaryFile> FxWtRows::file_;
std::map<std::string, std::vector<Line>> FxWtRows::tables_;

// --- Figures --------------------------------------------------------------------------------------------------------

TEST_F(FxWtRows, AgreeWithTheLedger) {
  const std::vector<Row> expected = computed(2, 4);
  ASSERT_GT(expected.size(), 3000U);
  EXPECT_EQ(reportRows({}, 2, 4), expected);
}

TEST_F(FxWtRows, AreRoundedToTheAccountsDecimalPlaces) {
  const auto account = tsql::Connection::open(file_->path(), tsql::OpenMode::existing);
  const auto setDecimals = [&](std::size_t quantity, std::size_t cost) {
    account->execute("Update AccInformation Set cValue = N'" + std::to_string(quantity) +
                     "' Where cSysID = 'AA' And cName = 'iStrsQuanDecDgt'");
    account->execute("Update AccInformation Set cValue = N'" + std::to_string(cost) +
                     "' Where cSysID = 'AA' And cName = 'iStrsPriDecDgt'");
  };
  setDecimals(6, 0);
  EXPECT_EQ(reportRows({}, 6, 0), computed(6, 0));
  report({}, [](tsql::Connection& result) {
    std::map<std::string, std::string> types;
    for (const tsql::Column& column : result.describe("wt_result"))
      types[lower(column.name)] = column.type.name();
    EXPECT_EQ(types["iunitused"], "decimal(38,6)");
    for (const char* unitCost : {"iitemincost", "iitemoutcost", "iunitcost"})
      EXPECT_EQ(types[unitCost], "decimal(38,0)");
  });
  setDecimals(2, 4);
}

TEST_F(FxWtRows, HaveNoUnitCostAndNoUsageWhereAQuantityIsZeroOrNull) {
  std::map<std::string, int> seen;
  for (const Line& row : reportLines({},
                                     "iAInQuantity,iAOutQuantity,iItemInQuantity,iItemoutQuantity,iIteminPrice,"
                                     "iItemOutPrice,iUnitUsed,iUnitCost,cfxCode")) {
    if (!row.at("cfxcode")) {
      EXPECT_FALSE(row.at("iunitcost") || row.at("iunitused"));
      ++seen["no part"];
      continue;
    }
    const bool in = row.at("iiteminprice").has_value();
    const std::string direction = in ? "in " : "out ";
    const Text& part = row.at(in ? "iiteminquantity" : "iitemoutquantity");
    const Text& whole = row.at(in ? "iainquantity" : "iaoutquantity");
    EXPECT_EQ(row.at("iunitcost").has_value(), !isZero(part));
    EXPECT_EQ(row.at("iunitused").has_value(), !isZero(part) && !isZero(whole));
    if (isZero(part)) ++seen[direction + (part ? "part 0" : "part null")];
    if (!isZero(part) && isZero(whole)) ++seen[direction + (whole ? "line 0" : "line null")];
  }
  for (const char* kind : {"in part 0", "in part null", "in line 0", "in line null", "out part 0", "out part null",
                           "out line 0", "out line null"})
    EXPECT_GT(seen[kind], 0) << kind;
}

TEST_F(FxWtRows, PartsSumToTheirLineAndEachRowShowsTheLinesOwnFigures) {
  struct Sums {
    std::int64_t in = 0;
    std::int64_t out = 0;
  };
  std::map<std::string, Sums> amounts;
  std::set<std::string> split;
  for (const Line& row : reportLines({},
                                     "AutoID,cfxCode,iAInQuantity,iAInPrice,iInCost,iAOutQuantity,iAOutPrice,"
                                     "iOutCost,iIteminPrice,iItemOutPrice")) {
    const std::string& key = *row.at("autoid");
    const Line& line = *find("ia_subsidiary", "autoid", key);
    for (const char* figure : {"iainquantity", "iaoutquantity", "iincost", "ioutcost"})
      EXPECT_EQ(unitsOrNull(row.at(figure), quantityScale), unitsOrNull(line.at(figure), quantityScale))
          << key << figure;
    for (const char* figure : {"iainprice", "iaoutprice"})
      EXPECT_EQ(unitsOrNull(row.at(figure), amountScale), unitsOrNull(line.at(figure), amountScale)) << key << figure;
    if (row.at("cfxcode")) split.insert(key);
    amounts[key].in += tables::units(row.at("iiteminprice"), amountScale);
    amounts[key].out += tables::units(row.at("iitemoutprice"), amountScale);
  }
  EXPECT_EQ(amounts.size(), shownLines([](const Line&) { return true; }).size());
  ASSERT_GT(split.size(), 1000U);
  for (const std::string& key : split) {
    const Line& line = *find("ia_subsidiary", "autoid", key);
    if (line.at("cvoutype") == "20") continue;  // their amounts were changed for these tests
    EXPECT_EQ(amounts[key].in, tables::units(line.at("iainprice"), amountScale)) << key;
    EXPECT_EQ(amounts[key].out, tables::units(line.at("iaoutprice"), amountScale)) << key;
  }
}

TEST_F(FxWtRows, BringBookingsOfOnePartTogether) {
  const auto account = tsql::Connection::open(file_->path(), tsql::OpenMode::existing);
  // An issue's part with a quantity, and the row that shows it.
  const Line* part = nullptr;
  for (const Line& candidate : table("ia_subsidiary_Item")) {
    const Line* line = find("ia_subsidiary", "autoid", candidate.at("isubid"));
    if (line && line->at("cvoutype") == "11" && !isZero(candidate.at("iitemoutquantity")) &&
        !isZero(line->at("iaoutquantity")))
      part = &candidate;
  }
  ASSERT_NE(part, nullptr);
  const Text costItem = found("Ca_FxDef", "ifxid", part->at("iitemid"), "cfxcode");
  const Row wanted = partRow(*find("ia_subsidiary", "autoid", part->at("isubid")), *part);
  const auto row = [&] {
    std::vector<Line> rows;
    for (Line& candidate :
         reportLines({}, "AutoID,cfxCode,cAmoID,iAOutQuantity,iItemoutQuantity,iItemOutPrice,iUnitCost")) {
      if (candidate.at("autoid") == part->at("isubid") && candidate.at("cfxcode") == costItem &&
          candidate.at("camoid").value_or("") == wanted.detail)
        rows.push_back(std::move(candidate));
    }
    EXPECT_EQ(rows.size(), 1U);
    return rows.at(0);
  };
  const auto quantity = [](const Line& line, const char* column) {
    return tables::units(line.at(column), quantityScale);
  };
  const Line once = row();

  account->execute(
      "Insert Into ia_subsidiary_Item Select 900001, iSubID, iItemID, iItemDetailID, iYear, iMonth, bRdFlag, "
      "iItemInQuantity, iItemInCost, iItemInPrice, iItemOutQuantity, iItemOutCost, iItemOutPrice From "
      "ia_subsidiary_Item Where AutoID = " +
      *part->at("autoid"));
  const Line twice = row();
  EXPECT_EQ(quantity(twice, "iitemoutquantity"), 2 * quantity(once, "iitemoutquantity"));
  EXPECT_EQ(twice.at("iaoutquantity"), once.at("iaoutquantity"));
  EXPECT_EQ(twice.at("iunitcost"), once.at("iunitcost")) << "twice the amount by twice the quantity";

  account->execute("Update ia_subsidiary_Item Set iItemOutCost = iItemOutCost + 1 Where AutoID = 900001");
  const Line apart = row();
  EXPECT_EQ(quantity(apart, "iitemoutquantity"), 2 * quantity(once, "iitemoutquantity"));
  EXPECT_EQ(quantity(apart, "iaoutquantity"), 2 * quantity(once, "iaoutquantity"));
  EXPECT_EQ(tables::units(apart.at("iunitcost"), 4), 2 * tables::units(once.at("iunitcost"), 4));
  account->execute("Delete From ia_subsidiary_Item Where AutoID = 900001");
}

// --- Names and columns ----------------------------------------------------------------------------------------------

TEST_F(FxWtRows, CarryTheColumnsOfTheirLineAndItsMasters) {
  std::vector<std::string> ofLine{
      "dVouDate",        "cVouCode",          "dKeepDate",      "cAccounter",    "cBusCode",
      "strContractCode", "cproordercode",     "iproorderids",   "cworkprocode",  "cworkcentercode",
      "cworkcentername", "cProCode",          "csaleordercode", "isaleorderids", "exoCode",
      "iExRowno",        "centrustordercode", "cpurordercode",  "cIMOrderCode",  "cDemandCode",
      "cdemandmemo",     "cItem_Class",       "cItemCode",      "cName",         "iPzid",
      "cPZdigest",       "cWhCode",           "cHandler",       "cCusCode",      "cVenCode",
      "cAccDep",         "cInvCode",          "cRdCode",        "cMemo",         "cPzID",
      "cVouType",        "cBatchia"};
  for (int i = 1; i <= 37; ++i) {
    if (i < 17 || i > 21) ofLine.push_back("cDefine" + std::to_string(i));
  }
  for (int i = 1; i <= 10; ++i)
    ofLine.push_back("cFree" + std::to_string(i));
  std::map<std::string, int> filled;
  for (const Line& row : reportLines({})) {
    const Line& line = *find("ia_subsidiary", "autoid", row.at("autoid"));
    Line expected;
    for (const std::string& column : ofLine)
      expected[lower(column)] = line.at(lower(column));
    expected["citem_classname"] = line.at("citemcname");
    expected["cwhname"] = found("Warehouse", "cwhcode", line.at("cwhcode"), "cwhname");
    expected["cdepname"] = found("Department", "cdepcode", line.at("caccdep"), "cdepname");
    expected["cdeptid"] = found("CAQ_CostCenterMap", "cbusid", line.at("caccdep"), "cdeptid");
    expected["costdepname"] = found("CAQ_CostCenter", "cdeptid", expected["cdeptid"], "cdeptname");
    expected["ccccode"] = found("Customer", "ccuscode", line.at("ccuscode"), "ccccode");
    expected["ccusname"] = found("Customer", "ccuscode", line.at("ccuscode"), "ccusname");
    expected["cccname"] = found("CustomerClass", "ccccode", expected["ccccode"], "cccname");
    expected["cvccode"] = found("Vendor", "cvencode", line.at("cvencode"), "cvccode");
    expected["cvenname"] = found("Vendor", "cvencode", line.at("cvencode"), "cvenname");
    expected["cvcname"] = found("VendorClass", "cvccode", expected["cvccode"], "cvcname");
    expected["crdname"] = found("Rd_Style", "crdcode", line.at("crdcode"), "crdname");
    const Line& inventory = *find("Inventory", "cinvcode", line.at("cinvcode"));
    for (const char* column : {"cinvccode", "cinvname", "cinvaddcode", "cinvstd"})
      expected[column] = inventory.at(column);
    for (int i = 1; i <= 16; ++i) {
      const std::string column = "cinvdefine" + std::to_string(i);
      expected[column] = inventory.at(column);
    }
    expected["ccomunitname"] = found("ComputationUnit", "ccomunitcode", inventory.at("ccomunitcode"), "ccomunitname");
    expected["casscomunitname"] = assistantUnit(inventory);
    expected["cbustype"] = businessType(line.at("cbustype"));
    expected["pznoid"] = std::nullopt;
    for (const auto& [column, value] : expected) {
      ASSERT_EQ(row.at(column), value) << column << " of line " << *row.at("autoid");
      if (value) ++filled[column];
    }
    const Text costItem = row.at("cfxcode");
    EXPECT_EQ(row.at("cfxname"), found("Ca_FxDef", "cfxcode", costItem, "cfxname"));
    const Text costItemClass = found("Ca_FxDef", "cfxcode", costItem, "cfxcid");
    EXPECT_EQ(row.at("cfxccode"), found("Ca_FxClassDef", "ifxcid", costItemClass, "cfxccode"));
    EXPECT_EQ(row.at("cfxcname"), found("Ca_FxClassDef", "ifxcid", costItemClass, "cfxcname"));
    EXPECT_EQ(row.at("camotype").has_value(), costItem.has_value());
  }
  EXPECT_EQ(filled["pznoid"], 0);
  for (const char* column : {"cwhname", "cdepname", "costdepname", "cccname", "cvcname", "crdname", "ccomunitname",
                             "casscomunitname", "cbustype", "citem_classname", "cbatchia", "cpzid"})
    EXPECT_GT(filled[column], 0) << column;
}

TEST_F(FxWtRows, NameExpenseTypesInTheLanguageOfTheCall) {
  std::map<std::string, std::set<std::string>> types;
  for (const Line& row : reportLines({}, "Distinct cfxCode,cAmoType")) {
    if (row.at("cfxcode")) types[*row.at("cfxcode")].insert(row.at("camotype").value_or("null"));
  }
  ASSERT_GT(types.size(), 10U);
  for (const auto& [costItem, names] : types) {
    const Text id = found("Ca_FxDef", "cfxcode", costItem, "ifxid");
    const Text type = found("Ca_FxMapExpDID", "ifxid", id, "camotype");
    std::string expected;
    for (const Line& name : table("Ca_AmoTypeName")) {
      if (name.at("camotype") == type && name.at("localid") == "zh-CN") expected = *name.at("camotypename");
    }
    EXPECT_EQ(names, std::set{expected}) << costItem;
  }
}

TEST_F(FxWtRows, HaveTheColumnsOfTheReportInOrder) {
  std::vector<std::string> expected{
      "dVouDate",       "cVouCode",      "dKeepDate",    "cAccounter",      "cBusCode",          "strContractCode",
      "cproordercode",  "iproorderids",  "cworkprocode", "cworkcentercode", "cworkcentername",   "cProCode",
      "csaleordercode", "isaleorderids", "exoCode",      "iExRowno",        "centrustordercode", "cpurordercode",
      "cIMOrderCode",   "cDemandCode",   "cdemandmemo",  "cItem_Class",     "cItem_Classname",   "cItemCode",
      "cName",          "iPzid",         "cPZdigest",    "cBusType",        "cWhCode",           "cWhName",
      "cCCCode",        "cCusName",      "cVCCode",      "cVenName",        "cDepName",          "cHandler"};
  const auto numbered = [&](const char* name, int from, int to) {
    for (int i = from; i <= to; ++i)
      expected.push_back(name + std::to_string(i));
  };
  numbered("cDefine", 1, 16);
  numbered("cDefine", 22, 37);
  expected.insert(expected.end(), {"cCCName", "cCusCode", "cVCName", "cVenCode", "cAccDep", "cInvCCode", "cInvCode",
                                   "cInvName", "cInvAddCode"});
  numbered("cFree", 1, 10);
  expected.insert(expected.end(), {"cInvStd", "cComUnitName", "cAssComUnitName"});
  numbered("cInvDefine", 1, 16);
  expected.insert(expected.end(), {"cRdCode",      "cRdName",         "cMemo",       "iAInQuantity", "iInCost",
                                   "iAInPrice",    "iAOutQuantity",   "iOutCost",    "iAOutPrice",   "cfxcCode",
                                   "cfxcName",     "cfxCode",         "cfxName",     "cAmoType",     "cAmoID",
                                   "cAmoName",     "iItemInQuantity", "iIteminCost", "iIteminPrice", "iItemoutQuantity",
                                   "iItemoutCost", "iItemOutPrice",   "iUnitUsed",   "iUnitCost",    "cPzID",
                                   "AutoID",       "cVouType",        "PzNoId",      "cDeptID",      "costDepName",
                                   "cBatchia"});
  report({}, [&](tsql::Connection& account) {
    std::vector<std::string> names;
    for (const tsql::Column& column : account.describe("wt_result"))
      names.push_back(column.name);
    EXPECT_EQ(names, expected);
  });
}

// --- Which lines ----------------------------------------------------------------------------------------------------

TEST_F(FxWtRows, LeaveOutTypes33And34AndAdjustmentsOfNothing) {
  std::map<std::string, int> left;
  for (const Line& line : table("ia_subsidiary")) {
    const std::string& type = *line.at("cvoutype");
    if (type == "33" || type == "34") ++left[type];
    if (type == "20") {
      ++left["20 " + std::string(isZero(line.at("iainprice")) ? "no amount" : "amount") +
             (isZero(line.at("idebitdifcost")) ? "" : " debit") + (isZero(line.at("icreditdifcost")) ? "" : " credit")];
    }
  }
  for (const char* kind : {"33", "34", "20 no amount", "20 amount", "20 no amount debit", "20 no amount credit"})
    ASSERT_GT(left[kind], 0) << kind;
  EXPECT_EQ(reportedLines({}), computedLines([](const Line&) { return true; }));
}

TEST_F(FxWtRows, NeverShowTypes33And34EvenWhenTheyAreChosen) {
  EXPECT_THAT(reportedLines({{"cVouType", "33\t34"}}), testing::IsEmpty());
}

TEST_F(FxWtRows, BeginWithTheFirstDateOfInventoryAccounting) {
  const auto account = tsql::Connection::open(file_->path(), tsql::OpenMode::existing);
  const auto setFirstDate = [&](const std::string& date) {
    account->execute("Update AccInformation Set cValue = N'" + date +
                     "' Where cSysID = 'IA' And cName = 'dIAFirstDate'");
  };
  const Text before = linesOf(*account,
                              "Select cValue From AccInformation Where cSysID = 'IA' And cName = "
                              "'dIAFirstDate'")
                          .front()
                          .at("cvalue");
  setFirstDate("2024-06-15");
  const std::vector<std::int64_t> expected =
      computedLines([](const Line& line) { return line.at("dkeepdate")->substr(0, 10) >= "2024-06-15"; });
  ASSERT_GT(expected.size(), 100U);
  EXPECT_EQ(reportedLines({}), expected);
  setFirstDate(*before);
}

// How many of both flavours of 01, 30 and 70 are chosen, and which: every combination.
TEST_F(FxWtRows, DistinguishTheFlavoursOfVoucherTypesByTheirFlag) {
  struct Pair {
    const char* plain;
    const char* second;
  };
  constexpr Pair pairs[] = {{"01", "011"}, {"30", "301"}, {"70", "701"}};
  const auto chosen = [](int choice, int pair) { return choice >> (2 * pair) & 3; };  // bit 0: plain, bit 1: second
  for (const Pair& pair : pairs) {
    for (const char* flag : {"0", "1"})
      ASSERT_GT(computedLines([&](const Line& line) {
                  return line.at("cvoutype") == pair.plain && line.at("bflag") == flag;
                }).size(),
                0U)
          << pair.plain << flag;
  }
  for (int choice = 1; choice < 64; ++choice) {
    std::string value;
    for (int pair = 0; pair < 3; ++pair) {
      if (chosen(choice, pair) & 1) value += (value.empty() ? "" : "\t") + std::string(pairs[pair].plain);
      if (chosen(choice, pair) & 2) value += (value.empty() ? "" : "\t") + std::string(pairs[pair].second);
    }
    const auto fits = [&](const Line& line) {
      for (int pair = 0; pair < 3; ++pair) {
        if (line.at("cvoutype") == pairs[pair].plain)
          return (chosen(choice, pair) & (line.at("bflag") == "1" ? 2 : 1)) != 0;
      }
      return false;
    };
    // Beside them, for a third of the combinations, a type without flavours.
    const bool with32 = choice % 3 == 0;
    EXPECT_EQ(reportedLines({{"cVouType", with32 ? "32\t" + value : value}}), computedLines([&](const Line& line) {
                return fits(line) || (with32 && (line.at("cvoutype") == "32" || line.at("cvoutype") == "3201"));
              }))
        << value;
  }
}

TEST_F(FxWtRows, ChooseByWhatTheFilterSays) {
  const auto of = [](const char* column) { return [column](const Line& line) { return line.at(column); }; };
  const auto master = [](const char* tableName, const char* key, const char* lineKey, const char* column) {
    return [=](const Line& line) { return found(tableName, key, line.at(lineKey), column); };
  };
  struct Key {
    std::string name;
    std::function<Text(const Line&)> value;  // what it looks at
  };
  const Key keys[] = {{"Inventory.cInvCCode", master("Inventory", "cinvcode", "cinvcode", "cinvccode")},
                      {"Customer.cCCCode", master("Customer", "ccuscode", "ccuscode", "ccccode")},
                      {"Vendor.cVCCode", master("Vendor", "cvencode", "cvencode", "cvccode")},
                      {"Inventory.cInvCode", of("cinvcode")},
                      {"Customer.cCusCode", of("ccuscode")},
                      {"Vendor.cVenCode", of("cvencode")},
                      {"cDeptID", master("CAQ_CostCenterMap", "cbusid", "caccdep", "cdeptid")},
                      {"cWhCode", of("cwhcode")},
                      {"cInvDefine1", master("Inventory", "cinvcode", "cinvcode", "cinvdefine1")},
                      {"cFree1", of("cfree1")},
                      {"cDefine22", of("cdefine22")},
                      {"cHandler", of("chandler")},
                      {"cBatchia", of("cbatchia")}};
  for (const auto& key : keys) {
    const std::string& name = key.name;
    const auto& value = key.value;
    SCOPED_TRACE(name);
    std::set<std::string> values;
    for (const Line* line : shownLines([](const Line&) { return true; })) {
      if (const Text text = value(*line)) values.insert(*text);
    }
    ASSERT_GT(values.size(), 1U);
    const std::string low = *values.begin();
    // Texts that are not ASCII stand in the order of their collation; they are asked for by equal bounds.
    const bool ascii = std::all_of(values.begin(), values.end(), [](const std::string& text) {
      return std::all_of(text.begin(), text.end(), [](char c) { return static_cast<unsigned char>(c) < 0x80; });
    });
    const std::string high = !ascii ? low : *std::next(values.begin(), static_cast<std::ptrdiff_t>(values.size() / 2));
    const bool classCode = name.ends_with("CCode");
    const std::vector<std::int64_t> single = computedLines([&](const Line& line) {
      const Text text = value(line);
      return text && (classCode ? text->starts_with(low) : *text == low);
    });
    ASSERT_GT(single.size(), 0U);
    EXPECT_EQ(reportedLines({{name, low}}), single);
    if (name == "cBatchia") continue;  // the filter object's own condition
    EXPECT_EQ(reportedLines({{name, low, high, Item::range}}), computedLines([&](const Line& line) {
                const Text text = value(line);
                return text && *text >= low && *text <= high;
              }));
    if (!name.ends_with("Code") || classCode) continue;
    std::string two = low;
    two.append("\t").append(high);
    EXPECT_EQ(reportedLines({{name, two, "", Item::multiple}}), computedLines([&](const Line& line) {
                const Text text = value(line);
                return text == low || text == high;
              }));
  }
}

TEST_F(FxWtRows, ChooseByDatesAndBusinessTypes) {
  EXPECT_EQ(reportedLines({{"dKeepDate", "2024-02-01", "2024-03-31"}}), computedLines([](const Line& line) {
              const std::string day = line.at("dkeepdate")->substr(0, 10);
              return day >= "2024-02-01" && day <= "2024-03-31";
            }));
  const std::vector<std::int64_t> issues = computedLines(
      [](const Line& line) { return line.at("cbustype") == "领料" || line.at("cbustype") == "普通采购"; });
  ASSERT_GT(issues.size(), 100U);
  EXPECT_EQ(reportedLines({{"cBusType", "领料\t普通采购"}}), issues);
}

// Every item that the workbench offers names a column that there is.
TEST_F(FxWtRows, TakeEveryRegisteredItem) {
  std::vector<Item> items;
  for (const workbench::ItemRegistration& item : workbench::reportNamed("fx-wt").registration.items) {
    const bool number = item.kind == workbench::InputKind::number;
    const bool date = item.kind == workbench::InputKind::date;
    items.push_back({.key = item.key,
                     .value = number ? "1"
                              : date ? "2024-01-01"
                                     : "x",
                     .value2 = item.range ? "2024-12-31" : "",
                     .input = item.range      ? Item::range
                              : item.multiple ? Item::multiple
                                              : Item::single,
                     .column = item.column});
  }
  ASSERT_GT(items.size(), 80U);
  EXPECT_THAT(reportedLines(items), testing::IsEmpty());
}

TEST_F(FxWtRows, AKeyThatIsNoColumnStopsTheReport) {
  EXPECT_THROW(reportedLines({{"cNoSuchColumn", "x"}}), AutomationError);
  const auto account = tsql::Connection::open(file_->path(), tsql::OpenMode::existing);
  EXPECT_THAT(account::testing::dropLeftovers(*account), testing::SizeIs(1));
}

}  // namespace
}  // namespace quillon
