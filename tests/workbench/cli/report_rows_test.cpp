// The report's rows against the ledger: what the finished program prints is added up and compared with ledger_sums.h.
#include <gmock/gmock.h>

#include <algorithm>
#include <array>
#include <map>
#include <memory>
#include <nlohmann/json.hpp>
#include <set>
#include <sstream>

#include "frame/text.h"
#include "tests/workbench/account/leftovers.h"
#include "tests/workbench/cli/ledger_sums.h"
#include "tests/workbench/platform/temporary_file.h"
#include "workbench/account/account.h"
#include "workbench/cli/report_command.h"
#include "workbench/platform/account_source.h"

namespace quillon::workbench {
namespace {

using test::Amount;
using test::Choice;
using test::Line;
using test::StateAmounts;

// "-12.345600" with `decimals` decimals as a count of its last decimal.
std::int64_t units(const nlohmann::json& value, std::size_t decimals) {
  if (value.is_null()) return 0;
  const std::string text = value;
  const std::size_t point = text.find('.');
  EXPECT_EQ(text.size() - point - 1, decimals) << text;
  return std::stoll(text.substr(0, point) + text.substr(point + 1));
}

// The spelling of a column's name follows the statement that made it.
std::string lower(std::string name) {
  std::ranges::transform(name, name.begin(), lowerAscii);
  return name;
}

// The report as the JSON format gives it.
class Rows {
 public:
  explicit Rows(const std::string& json) : document_(nlohmann::json::parse(json)) {
    for (std::size_t i = 0; i < document_["columns"].size(); ++i) {
      const std::string name = document_["columns"][i][0];
      const std::string type = document_["columns"][i][1];
      columns_[lower(name)] = i;
      EXPECT_TRUE(!type.starts_with("decimal") || type.ends_with(",6)")) << name << ' ' << type;
    }
  }

  std::size_t size() const { return document_["rows"].size(); }
  const nlohmann::json& cell(std::size_t row, const std::string& column) const {
    return document_["rows"][row][columns_.at(lower(column))];
  }
  std::string textAt(std::size_t row, const std::string& column) const {
    return cell(row, column).is_null() ? "" : cell(row, column).get<std::string>();
  }
  Amount amount(std::size_t row, const std::string& quantity, const std::string& money) const {
    return {units(cell(row, quantity), 6), units(cell(row, money), 4)};
  }

  // By cost item and state, from each row's own quantity and money.
  std::map<std::string, StateAmounts> byState() const {
    std::map<std::string, StateAmounts> sums;
    for (std::size_t row = 0; row < size(); ++row) {
      const int state = cell(row, "iState");
      sums[textAt(row, "cFXCode")].at(static_cast<std::size_t>(state) - 1) += amount(row, "iQuantity", "iMoney");
    }
    return sums;
  }

  // By cost item, from the balance columns.
  std::map<std::string, StateAmounts> byBalance() const {
    std::map<std::string, StateAmounts> sums;
    for (std::size_t row = 0; row < size(); ++row)
      addBalance(sums[textAt(row, "cFXCode")], row);
    return sums;
  }

  StateAmounts balanceTotals() const {
    StateAmounts sums;
    for (std::size_t row = 0; row < size(); ++row)
      addBalance(sums, row);
    return sums;
  }

 private:
  void addBalance(StateAmounts& sums, std::size_t row) const {
    sums[0] += amount(row, "iQcQuantity", "iQcMoney");
    sums[1] += amount(row, "iInQuantity", "iInMoney");
    sums[2] += amount(row, "iOutQuantity", "iOutMoney");
    sums[3] += amount(row, "iQmQuantity", "iQmMoney");
  }

  nlohmann::json document_;
  std::map<std::string, std::size_t> columns_;
};

struct AccountKind {
  const char* name;
  account::Valuation valuation;
  int costItemStartMonth;

  friend void PrintTo(const AccountKind& kind, std::ostream* out) { *out << kind.name; }
};

constexpr int firstYear = 2022;
constexpr int lastYear = 2024;

class ReportRows : public testing::TestWithParam<AccountKind> {
 protected:
  // One account of each kind for all tests.
  static const std::filesystem::path& file() {
    static std::map<std::string, std::unique_ptr<test::TemporaryFile>> files;
    auto& file = files[GetParam().name];
    if (!file) {
      file = std::make_unique<test::TemporaryFile>(".qacc");
      account::createSample(file->path(), {.rows = 1500,
                                           .seed = 7,
                                           .years = lastYear - firstYear + 1,
                                           .valuation = GetParam().valuation,
                                           .costItemStartMonth = GetParam().costItemStartMonth});
    }
    return file->path();
  }

  static Rows run(std::vector<std::string> settings) {
    std::ostringstream out;
    notes_.str("");
    runReport({.report = "sfc-item",
               .account = AccountSource::inFile(file()),
               .settings = std::move(settings),
               .format = ReportFormat::json,
               .language = Language::english},
              out, notes_);
    return Rows(out.str());
  }

  static test::YearOfLedger ledger(int year) {
    return test::readYear(*tsql::Connection::open(file(), tsql::OpenMode::readOnly), year);
  }

  // The first year's cost items may start after inventory accounting, which starts in January.
  static int fromMonth(int year) {
    const int start = year == firstYear ? GetParam().costItemStartMonth : 1;
    return start > 1 ? start : 0;
  }

  static void expectNoTableLeft() {
    const auto account = tsql::Connection::open(file(), tsql::OpenMode::readOnly);
    EXPECT_THAT(account::testing::leftoverNames(*account), testing::IsEmpty());
    for (const std::string& table : account->tables(""))
      EXPECT_FALSE(table.starts_with("QuillonReport")) << table;
  }

  static inline std::ostringstream notes_;
};

// A filter as the command line takes it and as a test of a line.
struct FilterCase {
  const char* what;
  std::vector<std::string> settings;
  std::function<bool(const Line&)> matches;
  std::string lowerDate;
};

bool hasWarehouse(const Line& line) {
  return !line.warehouse.empty();
}

// Lines without a warehouse are left out by every filter: the warehouse item says so even when it is empty.
std::vector<FilterCase> filterCases(const test::YearOfLedger& year, int number) {
  const std::string y = std::to_string(number);
  std::set<std::string> inventories;
  std::set<std::string> departments;
  std::string free1;
  for (const Line& line : year.lines) {
    if (line.parts.empty()) continue;
    if (inventories.size() < 3) inventories.insert(line.inventory);
    if (departments.size() < 2) departments.insert(line.department);
    if (!line.free1.empty()) free1 = line.free1;
  }
  const auto joined = [](const std::set<std::string>& values) {
    std::string text;
    for (const std::string& value : values)
      text += (text.empty() ? "" : ",") + value;
    return text;
  };
  return {
      {"everything", {}, hasWarehouse, ""},
      {"three inventories",
       {"cInvCode=" + joined(inventories)},
       [=](const Line& line) { return hasWarehouse(line) && inventories.contains(line.inventory); },
       ""},
      {"a warehouse", {"cWhCode=01"}, [](const Line& line) { return line.warehouse == "01"; }, ""},
      {"two departments",
       {"cDepCode=" + joined(departments)},
       [=](const Line& line) { return hasWarehouse(line) && departments.contains(line.department); },
       ""},
      {"an inventory class",
       {"cInvClass=01"},
       [](const Line& line) { return hasWarehouse(line) && line.inventoryClass.starts_with("01"); },
       ""},
      {"a free item",
       {"cFree1=" + free1},
       [=](const Line& line) { return hasWarehouse(line) && line.free1 == free1; },
       ""},
      {"no transfers",
       {"bIncludeTransVouch=0"},
       [](const Line& line) {
         return hasWarehouse(line) && line.businessType != "调拨出库" && line.businessType != "调拨入库";
       },
       ""},
      {"no discontinued inventory",
       {"bIncludeExpire=0"},
       [](const Line& line) {
         return hasWarehouse(line) && (line.discontinued.empty() || line.discontinued >= "2024-12-31");
       },
       ""},
      {"posted in a range",
       {"dKeepDate=" + y + "-05-10.." + y + "-9-30"},
       [=](const Line& line) { return hasWarehouse(line) && !line.posted.empty() && line.posted <= y + "-09-30"; },
       y + "-05-10"},
      {"posted until a day",
       {"dKeepDate=.." + y + "-08-15"},
       [=](const Line& line) { return hasWarehouse(line) && !line.posted.empty() && line.posted <= y + "-08-15"; },
       ""},
      {"documents until a day",
       {"dVouDate=.." + y + "-06-30"},
       [=](const Line& line) {
         return hasWarehouse(line) && !line.documentDate.empty() && line.documentDate <= y + "-06-30";
       },
       ""},
  };
}

std::vector<std::string> with(std::vector<std::string> settings, std::initializer_list<std::string> more) {
  settings.insert(settings.end(), more);
  return settings;
}

TEST_P(ReportRows, ByCostItemEqualTheLedger) {
  for (const int year : {firstYear, lastYear}) {
    const test::YearOfLedger ledgerYear = ledger(year);
    for (const FilterCase& filter : filterCases(ledgerYear, year)) {
      SCOPED_TRACE(std::string(filter.what) + " " + std::to_string(year));
      const Choice choice{filter.matches, fromMonth(year), filter.lowerDate};
      const Rows rows = run(with(filter.settings, {"iYear=" + std::to_string(year), "cModal=1"}));
      const auto expected = test::sumsByCostItem(ledgerYear, choice, std::nullopt);
      EXPECT_EQ(rows.byState(), expected);
      EXPECT_EQ(rows.balanceTotals(), test::sumsOfLines(ledgerYear, choice));
      EXPECT_FALSE(expected.empty()) << "the sample has no data for this filter";
    }
  }
  expectNoTableLeft();
}

TEST_P(ReportRows, ByClassAtEachGradeEqualTheLedger) {
  for (const int year : {firstYear, lastYear}) {
    const test::YearOfLedger ledgerYear = ledger(year);
    const std::vector<FilterCase> filters = filterCases(ledgerYear, year);
    for (const int grade : {1, 2, 3}) {
      for (const FilterCase& filter : {filters[0], filters[4], filters[8]}) {
        SCOPED_TRACE(std::string(filter.what) + " " + std::to_string(year) + " grade " + std::to_string(grade));
        const Choice choice{filter.matches, fromMonth(year), filter.lowerDate};
        const Rows rows = run(
            with(filter.settings, {"iYear=" + std::to_string(year), "cModal=0", "iGrade=" + std::to_string(grade)}));
        EXPECT_EQ(rows.byState(), test::sumsByCostItem(ledgerYear, choice, grade));
        EXPECT_EQ(rows.balanceTotals(), test::sumsOfLines(ledgerYear, choice));
      }
    }
  }
  expectNoTableLeft();
}

TEST_P(ReportRows, ByExpenseItemEqualTheLedger) {
  for (const int year : {firstYear, lastYear}) {
    const test::YearOfLedger ledgerYear = ledger(year);
    for (const FilterCase& filter : filterCases(ledgerYear, year)) {
      // In this mode a free item is compared with the ledger line's, too.
      SCOPED_TRACE(std::string(filter.what) + " " + std::to_string(year));
      const Choice choice{filter.matches, fromMonth(year), filter.lowerDate};
      const Rows rows = run(with(filter.settings, {"iYear=" + std::to_string(year), "cModal=2"}));
      EXPECT_EQ(rows.byBalance(), test::sumsByCostItem(ledgerYear, choice, std::nullopt));
    }
  }
  expectNoTableLeft();
}

// A balance condition chooses pairs of warehouse and inventory by the sums of all their movements.
TEST_P(ReportRows, WithABalanceConditionAreThoseOfWholePairs) {
  const test::YearOfLedger ledgerYear = ledger(lastYear);
  const auto posted = [](const Line& line) { return hasWarehouse(line) && line.posted <= "2024-02-15"; };
  std::map<std::pair<std::string, std::string>, std::pair<Amount, Amount>> movements;
  for (const Line& line : ledgerYear.lines) {
    auto& [in, out] = movements[{line.warehouse, line.inventory}];
    if (line.month == 0 || !posted(line)) continue;
    in += line.in;
    out += line.out;
  }
  const auto moved = [&](const Line& line) {
    const auto& [in, out] = movements.at({line.warehouse, line.inventory});
    return posted(line) && (in != Amount() || out != Amount());
  };
  const auto expected = test::sumsByCostItem(ledgerYear, {moved, 0, ""}, std::nullopt);
  EXPECT_EQ(run({"cModal=1", "dKeepDate=..2024-02-15", "cFSType=1"}).byState(), expected);
  EXPECT_FALSE(expected.empty()) << "the sample has no such pair";
  EXPECT_NE(expected, test::sumsByCostItem(ledgerYear, {posted, 0, ""}, std::nullopt)) << "it has no other";

  // The group index is dropped by its bare name, which the account refuses: the rows are complete, and it is told.
  EXPECT_THAT(notes_.str(),
              testing::StartsWith("quillon: all rows are written, but the report could not drop its group index: "));
  EXPECT_THAT(notes_.str(), testing::HasSubstr("error 102"));
  expectNoTableLeft();
}

TEST_P(ReportRows, ByExpenseItemMeetABalanceConditionEachForItself) {
  const Rows rows = run({"cModal=2", "cFSType=3"});
  ASSERT_GT(rows.size(), 0U);
  for (std::size_t row = 0; row < rows.size(); ++row) {
    EXPECT_NE(rows.amount(row, "iInQuantity", "iInMoney"), Amount()) << row;
    EXPECT_EQ(rows.amount(row, "iOutQuantity", "iOutMoney"), Amount()) << row;
    EXPECT_EQ(rows.textAt(row, "cFSType"), "3");
  }
}

INSTANTIATE_TEST_SUITE_P(Accounts, ReportRows,
                         testing::Values(AccountKind{"warehouse", account::Valuation::warehouse, 4},
                                         AccountKind{"inventory", account::Valuation::inventory, 1},
                                         AccountKind{"department", account::Valuation::department, 7}),
                         [](const auto& kind) { return std::string(kind.param.name); });

}  // namespace
}  // namespace quillon::workbench
