// The rows of the detail ledger on sample accounts, compared with a computation straight from the ledger tables: the
// tables are read whole, and everything else (joins, conditions, sums) happens here.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cstdlib>
#include <map>
#include <memory>
#include <set>
#include <string>
#include <tuple>
#include <vector>

#include "reports/fx_detail/fx_detail.h"
#include "tests/reports/table_lines.h"
#include "tests/workbench/platform/temporary_file.h"
#include "workbench/account/account.h"
#include "workbench/platform/account_source.h"
#include "workbench/platform/argument.h"
#include "workbench/platform/embedded_platform.h"
#include "workbench/platform/filter_object.h"

namespace quillon {
namespace {

using tables::amountUnits;
using tables::Line;
using tables::quantityUnits;
using tables::Text;

constexpr const char* year = "2024";
constexpr const char* resultTable = "fx_detail_result";
constexpr int lastSettledMonth = 9;

// --- A platform over the account, with what the detail ledger asks of it --------------------------------------------

// How the account is set up: when cost items and inventory accounting start, and what costs are kept by.
struct Setup {
  account::Valuation valuation = account::Valuation::warehouse;
  int startMonth = 1;          // of inventory accounting, in 2024
  int costItemStartMonth = 1;  // in 2024
};

const char* basisText(account::Valuation valuation) {
  if (valuation == account::Valuation::department) return "按部门核算";
  return valuation == account::Valuation::warehouse ? "按仓库核算" : "按存货核算";
}
// The ledger's column of the place that costs are kept by; empty when they are kept by inventory alone.
std::string placeColumn(account::Valuation valuation) {
  if (valuation == account::Valuation::department) return "cdepcode";
  return valuation == account::Valuation::warehouse ? "cwhcode" : "";
}

std::string day(int ofYear, int month, int ofMonth) {
  const auto two = [](int number) { return (number < 10 ? "-0" : "-") + std::to_string(number); };
  return std::to_string(ofYear) + two(month) + two(ofMonth);
}

// Periods are calendar months.
class Component final : public PublicComponent {
 public:
  explicit Component(const Setup& setup) : setup_(setup) {}

  std::string accountInformation(std::string_view system, std::string_view name, Session& session) override {
    return account_.accountInformation(system, name, session);
  }
  int currentPeriodYear(Session& session) override { return account_.currentPeriodYear(session); }
  int costItemStartMonth(std::string_view, Session&) override { return setup_.costItemStartMonth; }
  std::vector<std::string> usedYears(std::string_view accountCode, Session& session) override {
    return account_.usedYears(accountCode, session);
  }
  bool costItemOpeningsFinished(int, Session&) override { return true; }
  AccountingPeriod moduleStart(std::string_view, Session&) override {
    return {.year = 2024, .month = setup_.startMonth};
  }
  PeriodDates datesOfPeriod(std::string_view, AccountingPeriod period, Session&) override {
    constexpr std::array days{31, 29, 31, 30, 31, 30, 31, 31, 30, 31, 30, 31};  // of 2024
    return {.begin = day(period.year, period.month, 1),
            .end = day(period.year, period.month, days.at(static_cast<std::size_t>(period.month) - 1))};
  }
  AccountingPeriod periodOfDate(std::string_view date, Session&) override {
    return {.year = std::stoi(std::string(date.substr(0, 4))), .month = std::stoi(std::string(date.substr(5, 2)))};
  }
  bool periodSettled(AccountingPeriod period, Session&) override { return period.month <= lastSettledMonth; }
  std::string workstationName() override { return "WS_1"; }

 private:
  const Setup& setup_;
  workbench::AccountPublicComponent account_;
};

class PlainLogin final : public AccountLogin {
 public:
  void initialise(std::string_view, std::string_view) override {}
};

class Options final : public AccountOptions {
 public:
  explicit Options(const Setup& setup) : setup_(setup) {}

  std::string costingBasis() override { return basisText(setup_.valuation); }
  std::string inventoryTable() override { return "Inventory"; }
  std::string warehouseTable() override { return "Warehouse"; }

 private:
  const Setup& setup_;
};

class Environment final : public InventoryEnvironment {
 public:
  explicit Environment(const Setup& setup) : setup_(setup) {}

  void setLogin(AccountLogin&) override {}
  std::string resultTable() override { return quillon::resultTable; }
  std::unique_ptr<AccountOptions> accountOptions(AccountLogin&, std::string_view) override {
    return std::make_unique<Options>(setup_);
  }

 private:
  const Setup& setup_;
};

class LedgerPlatform final : public Platform {
 public:
  LedgerPlatform(const Setup& setup, const workbench::AccountSource& account)
      : setup_(setup), embedded_({.account = account}) {}

  std::shared_ptr<Session> createSession() override { return embedded_.createSession(); }
  std::shared_ptr<PublicComponent> createPublicComponent() override { return std::make_shared<Component>(setup_); }
  std::shared_ptr<ResourceService> createResourceService() override { return embedded_.createResourceService(); }
  std::shared_ptr<UniqueNameSource> createUniqueNameSource() override { return embedded_.createUniqueNameSource(); }
  std::shared_ptr<DrillThroughHelper> createDrillThroughHelper() override {
    return embedded_.createDrillThroughHelper();
  }
  std::string namingNumber() override { return embedded_.namingNumber(); }
  std::int32_t workTableNumber() override { return ++workTables_; }
  std::unique_ptr<AccountLogin> createAccountLogin() override { return std::make_unique<PlainLogin>(); }
  std::unique_ptr<InventoryEnvironment> createInventoryEnvironment() override {
    return std::make_unique<Environment>(setup_);
  }

 private:
  const Setup& setup_;
  workbench::EmbeddedPlatform embedded_;
  std::int32_t workTables_ = 0;
};

class PlainDataSource final : public DataSource {
 public:
  void setType(int) override {}
  std::string resultTable() override { return {}; }
  void setResultTable(std::string_view name) override { EXPECT_EQ(name, quillon::resultTable); }
};

class Argument final : public ReportArgument {
 public:
  Argument(std::shared_ptr<Filter> filter, const std::string& connection)
      : filter_(std::move(filter)),
        login_(std::make_shared<workbench::WorkbenchLogin>(workbench::LoginDetails{
            .accountConnection = connection, .accountCode = "001", .languageRegion = "zh-CN"})) {}

  std::shared_ptr<Filter> rawFilter() override { return filter_; }
  std::shared_ptr<Login> login() override { return login_; }
  std::shared_ptr<Login> filterLogin() override { return login_; }
  std::unique_ptr<DataSource> dataSource() override { return std::make_unique<PlainDataSource>(); }
  std::string action() override { return {}; }

 private:
  std::shared_ptr<Filter> filter_;
  std::shared_ptr<Login> login_;
};

// --- What is compared -----------------------------------------------------------------------------------------------

enum Kind { opening = 0, movement = 1, monthBalance = 2 };

struct Figures {
  std::int64_t quantity = 0;
  std::int64_t amount = 0;

  Figures& operator+=(const Figures& other) {
    quantity += other.quantity;
    amount += other.amount;
    return *this;
  }
  friend bool operator==(const Figures&, const Figures&) = default;
  friend bool operator<(const Figures& a, const Figures& b) {
    return std::tie(a.quantity, a.amount) < std::tie(b.quantity, b.amount);
  }
  friend void PrintTo(const Figures& figures, std::ostream* out) { *out << figures.quantity << "/" << figures.amount; }
};

// Null both for what is not broken down, and for a cost item that Ca_FxDef does not know; never empty texts.
struct CostItem {
  Text code;  // of its class, and its own behind it
  Text name;

  friend bool operator==(const CostItem&, const CostItem&) = default;
  friend bool operator<(const CostItem& a, const CostItem& b) {
    return std::tie(a.code, a.name) < std::tie(b.code, b.name);
  }
};

struct Row {
  int kind = opening;
  int id = 0;         // 0, the ledger line, the month
  std::string stock;  // batch and free items, as far as the inventory is checked for them
  CostItem costItem;
  Figures item;   // the cost item's
  Figures whole;  // the inventory's

  friend bool operator==(const Row&, const Row&) = default;
  friend bool operator<(const Row& a, const Row& b) {
    return std::tie(a.kind, a.id, a.stock, a.costItem, a.item, a.whole) <
           std::tie(b.kind, b.id, b.stock, b.costItem, b.item, b.whole);
  }
  friend void PrintTo(const Row& row, std::ostream* out) {
    *out << row.kind << " " << row.id << " [" << row.stock << "] " << row.costItem.code.value_or("null") << " "
         << row.costItem.name.value_or("null") << " item ";
    PrintTo(row.item, out);
    *out << " whole ";
    PrintTo(row.whole, out);
  }
};

// The figures of a row of the result: its cost item's and its inventory's.
Figures itemOf(const Line& row, int sign) {
  return {sign * quantityUnits(row.at("iitemquantity")), sign * amountUnits(row.at("iitemprice"))};
}
Figures wholeOf(const Line& row, int sign) {
  return {sign * quantityUnits(row.at("iquantity")), sign * amountUnits(row.at("iprice"))};
}

// Dates as the filter gives them, and what a report makes of them.
struct Range {
  const char* from;
  const char* to;
  int startPeriod;
  int endPeriod;
  const char* startDate;
  const char* endDate;
};

// Cost items start in January.
constexpr std::array rangesFromJanuary{
    Range{"", "", 1, 10, "2024-01-01", "2024-12-31"},
    Range{"2024-03-10", "2024-05-20", 3, 5, "2024-03-10", "2024-05-20"},
    Range{"2024-06-01", "2024-06-30", 6, 6, "2024-06-01", "2024-06-30"},
    Range{"2023-05-05", "2024-02-15", 1, 2, "2023-05-05", "2024-02-15"},
    Range{"2024-11-05", "", 11, 11, "2024-11-05", "2024-12-31"},
    Range{"2024-02-01", "2025-03-15", 2, 3, "2024-02-01", "2025-03-15"},
};
// Cost items start in April.
constexpr std::array rangesFromApril{
    Range{"", "", 4, 10, "2024-04-01", "2024-12-31"},
    Range{"2024-05-10", "2024-07-20", 5, 7, "2024-05-10", "2024-07-20"},
    Range{"2024-01-20", "2024-04-15", 4, 4, "2024-01-20", "2024-04-15"},
    Range{"2023-05-05", "2024-06-30", 4, 6, "2023-05-05", "2024-06-30"},
    Range{"2024-12-01", "", 12, 12, "2024-12-01", "2024-12-31"},
    Range{"2024-04-01", "2025-05-10", 4, 5, "2024-04-01", "2025-05-10"},
};

// One inventory, at one place where costs are kept by place.
struct Subject {
  std::string inventory;
  std::string place;
};

class Ledger {
 public:
  // `change` is made to the account before anything is read of it.
  explicit Ledger(const Setup& setup, const std::string& change = "") : setup_(setup), file_(".account") {
    account::createSample(file_.path(), {.rows = 3000,
                                         .seed = 11,
                                         .years = 1,
                                         .valuation = setup.valuation,
                                         .costItemStartMonth = setup.costItemStartMonth,
                                         .startMonth = setup.startMonth});
    account_ = tsql::Connection::open(file_.path(), tsql::OpenMode::existing);
    if (!change.empty()) account_->execute(change);
    lines_ = tables::linesOf(*account_, "Select * From ia_subsidiary");
    enteredLines_ = tables::linesOf(*account_, "Select * From IA_Subsidiary_QC");
    for (const Line& line : lines_) {
      if (belongs(line)) linesOfSubjects_[{*line.at("cinvcode"), placeOf(line)}].push_back(&line);
    }
    parts_ = byLine("ia_subsidiary_Item", "isubid");
    enteredParts_ = byLine("IA_Subsidiary_QC_Item", "isubqcid");
    for (const Line& inventory : tables::linesOf(*account_, "Select * From Inventory"))
      inventories_[*inventory.at("cinvcode")] = inventory;
    std::map<std::string, std::string> classCodes;
    for (const Line& row : tables::linesOf(*account_, "Select * From Ca_FxClassDef"))
      classCodes[*row.at("ifxcid")] = *row.at("cfxccode");
    for (const Line& row : tables::linesOf(*account_, "Select * From Ca_FxDef"))
      costItems_[*row.at("ifxid")] = {.code = classCodes.at(*row.at("cfxcid")) + *row.at("cfxcode"),
                                      .name = row.at("cfxname")};
  }

  tsql::Connection& account() const { return *account_; }
  std::map<std::string, const Line*> linesById() const {
    std::map<std::string, const Line*> found;
    for (const Line& line : lines_)
      found[*line.at("autoid")] = &line;
    return found;
  }
  const Line& inventory(const std::string& code) const { return inventories_.at(code); }
  bool splitOpening() const { return setup_.costItemStartMonth != 1 && setup_.costItemStartMonth != setup_.startMonth; }

  // Half of the inventories with lines of the year, each at its first place.
  std::vector<Subject> subjects() const {
    std::map<std::string, std::string> places;
    for (const Line& line : lines_) {
      if (belongs(line)) places.emplace(*line.at("cinvcode"), placeOf(line));
    }
    std::vector<Subject> subjects;
    bool taken = false;
    for (const auto& [inventory, place] : places) {
      taken = !taken;
      if (taken) subjects.push_back({inventory, place});
    }
    return subjects;
  }

  // Batch and free items of a line or a row, as far as the inventory is checked for them.
  static std::string stockOf(const Line& line, const Line& inventory) {
    std::string stock = inventory.at("bcheckbatch") == "1" ? line.at("cbatchia").value_or("") : "";
    for (int i = 1; i <= 10; ++i) {
      const std::string number = std::to_string(i);
      stock += "|" + (inventory.at("bcheckfree" + number) == "1" ? line.at("cfree" + number).value_or("") : "");
    }
    return stock;
  }

  // --- The report ---

  std::vector<Line> reportLines(const Subject& subject, const Range& range, const std::string& batchCondition = "",
                                const std::string& free1Condition = "") {
    run(subject, range, batchCondition, free1Condition);
    std::vector<Line> rows =
        tables::linesOf(*account_, std::string("Select * From ") + resultTable + " Order By RowNo");
    account_->execute(std::string("Drop Table ") + resultTable);
    return rows;
  }

  // Makes the result table.
  void run(const Subject& subject, const Range& range, const std::string& batchCondition = "",
           const std::string& free1Condition = "") {
    const workbench::AccountSource account = workbench::AccountSource::inFile(file_.path());
    LedgerPlatform platform(setup_, account);
    Module module(platform);
    const auto filter = std::make_shared<workbench::FilterObject>(workbench::ReportRegistration{});
    const auto add = [&](const std::string& key, const std::string& value, const std::string& value2 = "",
                         const std::string& sql = "") {
      workbench::FilterEntry& entry = filter->add({.key = key, .chinese = key, .english = key});
      entry.value = value;
      entry.value2 = value2;
      entry.sql = sql;
    };
    add("iYear", year);
    add("cInvCode", subject.inventory);
    add("cWhCode", subject.place);
    add("cDepCode", subject.place);
    add("dKeepDate", range.from, range.to);
    add("cFree1", "", "", free1Condition);
    for (int number = 2; number <= 10; ++number)
      add("cFree" + std::to_string(number), "");
    add("cBatchIA", "", "", batchCondition);
    Argument argument(filter, account.connectionString());
    FxDetail(module).getSql(argument);
    EXPECT_FALSE(module.session);
  }

  std::vector<Row> report(const Subject& subject, const Range& range) {
    std::vector<Row> rows;
    for (const Line& line : reportLines(subject, range))
      rows.push_back(rowOf(line, subject));
    std::sort(rows.begin(), rows.end());
    return rows;
  }

  Row rowOf(const Line& line, const Subject& subject) const {
    return {.kind = std::stoi(*line.at("datatype")),
            .id = std::stoi(*line.at("id")),
            .stock = line.at("datatype") == "1" ? std::string() : stockOf(line, inventory(subject.inventory)),
            .costItem = {.code = line.at("cfxcode"), .name = line.at("cfxname")},
            .item = itemOf(line, 1),
            .whole = wholeOf(line, 1)};
  }

  // --- The computation from the tables ---

  std::vector<Row> computed(const Subject& subject, const Range& range) const {
    std::vector<Row> rows;
    const int from = setup_.costItemStartMonth;
    const auto before = [&](const Line& line) { return dayOf(line) < range.startDate; };
    const std::vector<const Line*>& lines = linesOf(subject);

    Balances openings;
    for (const Line* line : lines) {
      const int month = monthOf(*line);
      const bool counts = splitOpening() ? before(*line) && month >= from : before(*line) || month == 0;
      if (!counts) continue;
      openings.add(*this, *line, parts_, true);
    }
    if (splitOpening()) addEntered(subject, openings, true, true);
    openings.appendTo(rows, opening, 0);

    for (const Line* line : lines) {
      const std::string date = dayOf(*line);
      if (date < range.startDate || date > range.endDate || monthOf(*line) < range.startPeriod) continue;
      appendMovement(*line, rows);
    }

    for (int month = range.startPeriod; month <= range.endPeriod; ++month) {
      Balances balances;
      for (const Line* line : lines) {
        const bool counts = month < range.endPeriod ? monthOf(*line) <= month : dayOf(*line) <= range.endDate;
        if (!counts) continue;
        // Cost items count from their start on; the inventory as a whole from the start of the year.
        balances.add(*this, *line, parts_, !splitOpening() || monthOf(*line) >= from);
      }
      // What was entered joins the cost items that have moved since; the others have no row.
      if (splitOpening()) addEntered(subject, balances, false, false);
      balances.appendTo(rows, monthBalance, month);
    }
    std::sort(rows.begin(), rows.end());
    return rows;
  }

 private:
  using Parts = std::map<std::string, std::vector<Line>>;

  // Balances per batch, free items and cost-item detail, and of the inventory as a whole beside them.
  struct Balances {
    std::map<std::pair<std::string, std::string>, Figures> items;  // by stock and detail
    std::map<std::string, CostItem> costItemOfDetail;
    std::map<std::string, Figures> whole;  // by stock

    // `itemsToo`: the line's cost items count as well.
    void add(const Ledger& ledger, const Line& line, const Parts& parts, bool itemsToo) {
      const std::string stock = ledger.stockOf(line);
      whole[stock] += balanceOf(line, "ia");
      if (!itemsToo) return;
      const auto found = parts.find(*line.at("autoid"));
      if (found == parts.end()) {
        items[{stock, ""}] += Figures{};
        return;
      }
      for (const Line& part : found->second) {
        const std::string& detail = *part.at("iitemdetailid");
        costItemOfDetail[detail] = ledger.costItemOf(part);
        items[{stock, detail}] += balanceOf(part, "iitem");
      }
    }
    void appendTo(std::vector<Row>& rows, Kind kind, int id) {
      for (const auto& [key, figures] : items) {
        rows.push_back({.kind = kind,
                        .id = id,
                        .stock = key.first,
                        .costItem = costItemOfDetail[key.second],
                        .item = figures,
                        .whole = whole[key.first]});
      }
    }
  };

  Parts byLine(const std::string& table, const std::string& column) const {
    Parts parts;
    for (Line& part : tables::linesOf(*account_, "Select * From " + table))
      parts[*part.at(column)].push_back(part);
    return parts;
  }

  // What was entered as opening balance when cost items started. `newRows`: cost items without a balance so far get one;
  // `wholeToo`: the inventory as a whole counts as well.
  void addEntered(const Subject& subject, Balances& balances, bool newRows, bool wholeToo) const {
    Balances entered;
    for (const Line& line : enteredLines_) {
      if (isOf(line, subject)) entered.add(*this, line, enteredParts_, true);
    }
    for (const auto& [key, figures] : entered.items) {
      if (newRows || (!key.second.empty() && balances.items.contains(key))) balances.items[key] += figures;
    }
    balances.costItemOfDetail.merge(entered.costItemOfDetail);
    for (const auto& [stock, figures] : entered.whole) {
      if (wholeToo) balances.whole[stock] += figures;
    }
  }

  static void appendFigures(std::vector<Row>& rows, const Line& line, CostItem costItem, Figures item, Figures whole) {
    rows.push_back({.kind = movement,
                    .id = std::stoi(*line.at("autoid")),
                    .stock = "",
                    .costItem = std::move(costItem),
                    .item = item,
                    .whole = whole});
  }
  // One row per cost item, or one for a line that is not broken down.
  void appendMovement(const Line& line, std::vector<Row>& rows) const {
    const std::string side = line.at("brdflag") == "1" ? "in" : "out";
    const Figures whole{quantityUnits(line.at("ia" + side + "quantity")), amountUnits(line.at("ia" + side + "price"))};
    const auto found = parts_.find(*line.at("autoid"));
    if (found == parts_.end()) {
      appendFigures(rows, line, {}, {}, whole);
      return;
    }
    for (const Line& part : found->second) {
      appendFigures(
          rows, line, costItemOf(part),
          {quantityUnits(part.at("iitem" + side + "quantity")), amountUnits(part.at("iitem" + side + "price"))}, whole);
    }
  }

  static Figures balanceOf(const Line& line, const std::string& prefix) {
    return {quantityUnits(line.at(prefix + "inquantity")) - quantityUnits(line.at(prefix + "outquantity")),
            amountUnits(line.at(prefix + "inprice")) - amountUnits(line.at(prefix + "outprice"))};
  }
  // When the line was posted, without the time of day.
  static std::string dayOf(const Line& line) { return line.at("dkeepdate")->substr(0, 10); }
  static int monthOf(const Line& line) { return std::stoi(*line.at("imonth")); }

  std::string placeOf(const Line& line) const {
    const std::string column = placeColumn(setup_.valuation);
    return column.empty() ? std::string() : line.at(column).value_or("");
  }
  // Neither opening differences nor direct shipments are in an inventory's ledger.
  static bool belongs(const Line& line) {
    const std::string businessType = line.at("cbustype").value_or("");
    return line.at("iyear") == year && line.at("cvoutype") != "33" && businessType != "直运销售" &&
           businessType != "直运采购";
  }
  bool isOf(const Line& line, const Subject& subject) const {
    return belongs(line) && line.at("cinvcode") == subject.inventory && placeOf(line) == subject.place;
  }
  const std::vector<const Line*>& linesOf(const Subject& subject) const {
    return linesOfSubjects_.at({subject.inventory, subject.place});
  }

  std::string stockOf(const Line& line) const { return stockOf(line, inventory(*line.at("cinvcode"))); }

  CostItem costItemOf(const Line& part) const {
    const auto found = costItems_.find(*part.at("iitemid"));
    return found == costItems_.end() ? CostItem{} : found->second;
  }

  Setup setup_;
  workbench::test::TemporaryFile file_;
  std::unique_ptr<tsql::Connection> account_;
  std::vector<Line> lines_;
  std::map<std::pair<std::string, std::string>, std::vector<const Line*>> linesOfSubjects_;  // by inventory and place
  std::vector<Line> enteredLines_;
  Parts parts_;
  Parts enteredParts_;
  std::map<std::string, Line> inventories_;
  std::map<std::string, CostItem> costItems_;  // by Ca_FxDef.iFxID
};

// --- Every costing basis, every way of taking opening balances ------------------------------------------------------

struct Case {
  const char* name;
  Setup setup;
  const std::array<Range, 6>& ranges;
};

// Cost items that start together with the account in April take opening balances from the ledger, too.
const std::array cases{
    Case{"InventoryFromJanuary", {account::Valuation::inventory, 1, 1}, rangesFromJanuary},
    Case{"WarehouseFromJanuary", {account::Valuation::warehouse, 1, 1}, rangesFromJanuary},
    Case{"DepartmentFromJanuary", {account::Valuation::department, 1, 1}, rangesFromJanuary},
    Case{"InventoryFromApril", {account::Valuation::inventory, 1, 4}, rangesFromApril},
    Case{"WarehouseFromApril", {account::Valuation::warehouse, 1, 4}, rangesFromApril},
    Case{"DepartmentFromApril", {account::Valuation::department, 1, 4}, rangesFromApril},
    Case{"WarehouseTogetherInApril", {account::Valuation::warehouse, 4, 4}, rangesFromApril},
};

class FxDetailRows : public testing::TestWithParam<Case> {
 protected:
  // The account of a case is made once, for all tests; no test changes it.
  static Ledger& ledgerOf(const Case& of) {
    static std::map<std::string, std::unique_ptr<Ledger>> ledgers;
    std::unique_ptr<Ledger>& ledger = ledgers[of.name];
    if (!ledger) ledger = std::make_unique<Ledger>(of.setup);
    return *ledger;
  }

  Ledger& ledger_ = ledgerOf(GetParam());
};

TEST_P(FxDetailRows, AgreeWithTheLedgerTables) {
  const std::vector<Subject> subjects = ledger_.subjects();
  ASSERT_GE(subjects.size(), 50U);
  std::set<int> kinds;
  for (std::size_t i = 0; i < subjects.size(); ++i) {
    const Range& range = GetParam().ranges.at(i % GetParam().ranges.size());
    SCOPED_TRACE(subjects[i].inventory + " at " + subjects[i].place + " from " + range.from + " to " + range.to);
    const std::vector<Row> expected = ledger_.computed(subjects[i], range);
    EXPECT_EQ(ledger_.report(subjects[i], range), expected);
    for (const Row& row : expected)
      kinds.insert(row.kind);
  }
  EXPECT_THAT(kinds, testing::ElementsAre(opening, movement, monthBalance));
}

constexpr std::array accountsWithAnUnknownCostItem{Setup{account::Valuation::warehouse, 1, 1},
                                                   Setup{account::Valuation::inventory, 1, 4}};

// The cost item that most lines name is gone from its table: its rows stay, with name and code null.
TEST(FxDetailRowsOfAnUnknownCostItem, HaveNeitherNameNorCode) {
  for (const auto& setup : accountsWithAnUnknownCostItem) {
    Ledger ledger(setup,
                  "Delete From Ca_FxDef Where iFxID = (Select Top 1 iItemID From ia_subsidiary_Item Group By iItemID "
                  "Order By Count(*) Desc, iItemID)");
    const Range& range = setup.costItemStartMonth == 1 ? rangesFromJanuary.front() : rangesFromApril.front();
    const std::vector<Subject> subjects = ledger.subjects();
    std::map<int, std::size_t> unknown;  // rows by kind
    std::size_t known = 0;
    for (std::size_t i = 0; i < subjects.size(); i += 4) {
      SCOPED_TRACE(subjects[i].inventory + " at " + subjects[i].place);
      const std::vector<Row> rows = ledger.report(subjects[i], range);
      EXPECT_EQ(rows, ledger.computed(subjects[i], range));
      for (const Row& row : rows) {
        if (row.costItem.code) {
          ++known;
        } else if (row.item != Figures{}) {
          EXPECT_EQ(row.costItem.name, Text());
          ++unknown[row.kind];
        }
      }
    }
    EXPECT_GT(known, 50U);
    EXPECT_GT(unknown[movement], 10U);
    EXPECT_GT(unknown[monthBalance], 10U);
  }
}

// What a report says of itself: opening balance and movements up to a month's end make that month's balance, for every
// cost item and for the inventory as a whole, in each batch with its free items.
TEST_P(FxDetailRows, OpeningAndMovementsMakeTheMonthBalances) {
  const std::vector<Subject> subjects = ledger_.subjects();
  const std::map<std::string, const Line*> ledgerLines = ledger_.linesById();
  std::size_t compared = 0;
  for (std::size_t i = 0; i < subjects.size(); ++i) {
    // Another range than the one that was compared with the tables.
    const Range& range = GetParam().ranges.at((i + 1) % GetParam().ranges.size());
    SCOPED_TRACE(subjects[i].inventory + " at " + subjects[i].place + " from " + range.from + " to " + range.to);
    const Line& inventory = ledger_.inventory(subjects[i].inventory);
    const std::vector<Line> rows = ledger_.reportLines(subjects[i], range);
    for (int month = range.startPeriod; month <= range.endPeriod; ++month) {
      SCOPED_TRACE("month " + std::to_string(month));
      using Key = std::pair<std::string, std::string>;  // batch with free items, cost item
      std::map<Key, Figures> expected;
      std::map<Key, Figures> shown;
      std::map<std::string, Figures> wholeOpenings;  // by batch with free items
      std::map<std::string, Figures> wholeShown;
      std::map<std::string, std::pair<std::string, Figures>>
          wholeOfLine;  // by ledger line, which may have several rows
      std::set<Key> moved;
      for (const Line& row : rows) {
        const std::string& kind = *row.at("datatype");
        const std::string& id = *row.at("id");
        const std::string stock = Ledger::stockOf(row, inventory);
        const Key key(stock, row.at("cfxcode").value_or(""));
        if (kind == "2") {
          if (id != std::to_string(month)) continue;
          shown[key] += itemOf(row, 1);
          wholeShown[stock] = wholeOf(row, 1);
        } else if (kind == "0") {
          expected[key] += itemOf(row, 1);
          wholeOpenings[stock] = wholeOf(row, 1);
        } else {
          const Line& line = *ledgerLines.at(id);
          if (month < range.endPeriod && std::stoi(*line.at("imonth")) > month) continue;
          const int sign = line.at("brdflag") == "1" ? 1 : -1;
          expected[key] += itemOf(row, sign);
          moved.insert(key);
          wholeOfLine[id] = {stock, wholeOf(row, sign)};
        }
      }
      std::map<std::string, Figures> wholeExpected = wholeOpenings;
      for (const auto& [id, stockAndFigures] : wholeOfLine)
        wholeExpected[stockAndFigures.first] += stockAndFigures.second;
      for (const auto& [key, figures] : expected) {
        const auto balance = shown.find(key);
        if (balance != shown.end()) {
          EXPECT_EQ(balance->second, figures) << key.first << " " << key.second;
          ++compared;
        } else {
          // What was entered when cost items started and has not moved since has no month balance.
          EXPECT_TRUE(ledger_.splitOpening() && !moved.contains(key)) << key.first << " " << key.second;
        }
      }
      EXPECT_LE(shown.size(), expected.size());
      for (const auto& [stock, figures] : wholeShown)
        EXPECT_EQ(figures, wholeExpected[stock]) << stock;
    }
  }
  EXPECT_GT(compared, 500U);
}

TEST_P(FxDetailRows, AreNumberedInTheLedgersOrderWithOneNumberALedgerLine) {
  const std::vector<Subject> subjects = ledger_.subjects();
  const std::map<std::string, const Line*> ledgerLines = ledger_.linesById();
  std::size_t shared = 0;
  for (std::size_t i = 0; i < subjects.size(); i += 3) {
    const std::vector<Line> lines = ledger_.reportLines(subjects[i], GetParam().ranges.front());
    ASSERT_FALSE(lines.empty());
    EXPECT_EQ(lines.front().at("rowno"), "2");
    std::map<std::pair<std::string, std::string>, std::string> numbers;
    std::tuple<int, int, std::string, int, int> previous(-1, 0, "", 0, 0);
    for (const Line& line : lines) {
      const std::string& kind = *line.at("datatype");
      const int id = std::stoi(*line.at("id"));
      const auto [number, isNew] = numbers.emplace(std::pair(kind, *line.at("id")), *line.at("rowno"));
      EXPECT_EQ(line.at("rowno"), number->second);
      if (!isNew) {
        ++shared;
        continue;
      }
      const Line* source = kind == "1" ? ledgerLines.at(*line.at("id")) : nullptr;
      const int month = source ? std::stoi(*source->at("imonth")) : id;
      const int behind = source ? std::stoi(source->at("bakid").value_or(*line.at("id"))) : id;
      const std::tuple place(month, std::stoi(kind), source ? *source->at("dkeepdate") : "", behind, id);
      EXPECT_LT(previous, place);
      previous = place;
    }
  }
  EXPECT_GT(shared, 50U);
}

TEST_P(FxDetailRows, CarryUnitCostsOfBalancesAndTextsOfVouchers) {
  const std::map<std::string, const Line*> ledgerLines = ledger_.linesById();
  std::map<std::string, std::string> voucherNumbers;
  for (const Line& entry : tables::linesOf(ledger_.account(), "Select * From gl_AccVouch"))
    voucherNumbers[*entry.at("coutno_id")] = *entry.at("csign") + " " + *entry.at("ino_id");
  std::map<std::string, std::string> typeNames;
  std::map<std::string, std::string> names;
  for (const Line& row : tables::linesOf(ledger_.account(), "Select * From AA_Enum")) {
    if (tables::lower(*row.at("enumtype")) == "ia.vchtype" && row.at("localeid") == "zh-CN")
      names[*row.at("enumcode")] = *row.at("enumname");
  }
  for (const Line& row : tables::linesOf(ledger_.account(), "Select * From VouchType"))
    typeNames[*row.at("cvouchtype")] = names.at(*row.at("cvouchname"));
  typeNames["3201"] = typeNames.at("32");

  const std::vector<Subject> subjects = ledger_.subjects();
  std::size_t costs = 0;
  std::size_t posted = 0;
  for (std::size_t i = 0; i < subjects.size(); i += 2) {
    for (const Line& line : ledger_.reportLines(subjects[i], GetParam().ranges.front())) {
      if (line.at("datatype") == "1") {
        const Line& source = *ledgerLines.at(*line.at("id"));
        EXPECT_EQ(line.at("cvoutype"), typeNames.at(*source.at("cvoutype")));
        EXPECT_EQ(line.at("cvoucode"), source.at("cvoucode"));
        const Text posting = source.at("cpzid");
        EXPECT_EQ(line.at("cpzcode"), posting ? Text(voucherNumbers.at(*posting)) : Text());
        if (posting) ++posted;
        continue;
      }
      EXPECT_EQ(line.at("cvoutype"), Text());
      const std::int64_t quantity = quantityUnits(line.at("iquantity"));
      if (quantity == 0) {
        EXPECT_EQ(line.at("icost"), Text());
        continue;
      }
      ++costs;
      // Within one of the unit cost's last place, which is a ten-thousandth.
      constexpr double millionths = 1e6;
      const double cost =
          static_cast<double>(amountUnits(line.at("iprice"))) / static_cast<double>(quantity) * millionths;
      EXPECT_NEAR(static_cast<double>(tables::units(line.at("icost"), 4)), cost, 1.0);
    }
  }
  EXPECT_GT(costs, 50U);
  EXPECT_GT(posted, 50U);
}

TEST_P(FxDetailRows, KeepToTheBatchAndFreeItemOfTheFilter) {
  const Range& range = GetParam().ranges.front();
  std::size_t narrowed = 0;
  for (const Subject& subject : ledger_.subjects()) {
    const Line& inventory = ledger_.inventory(subject.inventory);
    const bool byBatch = inventory.at("bcheckbatch") == "1";
    const bool byFree1 = inventory.at("bcheckfree1") == "1";
    if (!byBatch && !byFree1) continue;
    // The last line of the whole ledger is a movement or a balance with a batch and a free item of its own.
    const std::vector<Line> whole = ledger_.reportLines(subject, range);
    const Line& last = whole.back();
    const std::string batch = last.at("cbatchia").value_or("");
    const std::string free1 = last.at("cfree1").value_or("");
    const auto chosen = [&](const Line& line) {
      return (!byBatch || line.at("cbatchia").value_or("") == batch) &&
             (!byFree1 || line.at("cfree1").value_or("") == free1);
    };
    std::multiset<Row> expected;
    for (const Line& line : whole) {
      if (chosen(line)) expected.insert(ledger_.rowOf(line, subject));
    }
    std::multiset<Row> shown;
    for (const Line& line : ledger_.reportLines(subject, range, "isnull(base.cBatchIA,N'')=N'" + batch + "'",
                                                "isnull(base.cFree1,N'')=N'" + free1 + "'"))
      shown.insert(ledger_.rowOf(line, subject));
    EXPECT_EQ(shown, expected) << subject.inventory << " batch " << batch << " free item " << free1;
    if (shown.size() < whole.size()) ++narrowed;
  }
  EXPECT_GT(narrowed, 5U);
}

TEST_P(FxDetailRows, OfAnImpossibleRangeAreNone) {
  const Subject subject = ledger_.subjects().front();
  ledger_.run(subject, {"2025-01-01", "", 0, 0, "", ""});
  auto rows = ledger_.account().query(std::string("Select * From ") + resultTable);
  std::vector<std::string> columns;
  for (const tsql::Column& column : rows->columns())
    columns.push_back(column.name);
  EXPECT_FALSE(rows->next());
  // As in a result with rows, but for the row's number and the business type; and with both places.
  EXPECT_EQ(columns.size(), 110U);
  EXPECT_THAT(columns,
              testing::IsSupersetOf({"id", "datatype", "cDepCode", "cwhname", "cbatchia", "cfxCode", "cName"}));
  EXPECT_THAT(columns, testing::Not(testing::Contains("RowNo")));
  rows.reset();
  ledger_.account().execute(std::string("Drop Table ") + resultTable);
}

INSTANTIATE_TEST_SUITE_P(Accounts, FxDetailRows, testing::ValuesIn(cases),
                         [](const auto& of) { return std::string(of.param.name); });

}  // namespace
}  // namespace quillon
