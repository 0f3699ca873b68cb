#include "tests/workbench/cli/ledger_sums.h"

#include <utility>

namespace quillon::workbench::test {

namespace {

std::int64_t number(const tsql::Value& value) {
  if (tsql::isNull(value)) return 0;
  if (const auto* integer = std::get_if<std::int64_t>(&value)) return *integer;
  return std::get<tsql::Exact>(value).units.toInt64();
}

std::string text(const tsql::Value& value) {
  return tsql::toText(value).value_or("");
}

std::string date(const tsql::Value& value) {
  constexpr std::size_t dateLength = 10;
  return text(value).substr(0, dateLength);
}

struct Inventory {
  std::string classCode;
  std::string discontinued;
};

std::map<std::string, Inventory> readInventories(tsql::Connection& account) {
  std::map<std::string, Inventory> inventories;
  const auto rows = account.query("Select cInvCode, cInvCCode, dEDate From Inventory");
  while (rows->next())
    inventories[text(rows->value(0))] = {text(rows->value(1)), date(rows->value(2))};
  return inventories;
}

std::vector<Line> readLines(tsql::Connection& account, const std::string& table, const std::string& partTable,
                            const std::string& partKey, int year) {
  const std::map<std::string, Inventory> inventories = readInventories(account);
  std::vector<Line> lines;
  std::map<int, std::size_t> byId;
  {
    const auto rows = account.query(
        "Select AutoID, iMonth, bRdFlag, cVouType, cBusType, cWhCode, cDepCode, cInvCode, dKeepDate, dVouDate, cFree1, "
        "cBatchIA, iAInQuantity, iAInPrice, iAOutQuantity, iAOutPrice From " +
        table + " Where iYear = " + std::to_string(year));
    while (rows->next()) {
      Line line;
      line.id = static_cast<int>(number(rows->value(0)));
      line.month = static_cast<int>(number(rows->value(1)));
      line.receipt = number(rows->value(2)) != 0;
      line.voucherType = text(rows->value(3));
      line.businessType = text(rows->value(4));
      line.warehouse = text(rows->value(5));
      line.department = text(rows->value(6));
      line.inventory = text(rows->value(7));
      line.posted = date(rows->value(8));
      line.documentDate = date(rows->value(9));
      line.free1 = text(rows->value(10));
      line.batch = text(rows->value(11));
      line.in = {number(rows->value(12)), number(rows->value(13))};
      line.out = {number(rows->value(14)), number(rows->value(15))};
      const Inventory& inventory = inventories.at(line.inventory);
      line.inventoryClass = inventory.classCode;
      line.discontinued = inventory.discontinued;
      byId[line.id] = lines.size();
      lines.push_back(std::move(line));
    }
  }
  const auto rows = account.query("Select " + partKey +
                                  ", iItemID, iItemInQuantity, iItemInPrice, iItemOutQuantity, iItemOutPrice From " +
                                  partTable + " Where iYear = " + std::to_string(year));
  while (rows->next()) {
    const auto line = byId.find(static_cast<int>(number(rows->value(0))));
    if (line == byId.end()) continue;
    lines[line->second].parts.push_back({static_cast<int>(number(rows->value(1))),
                                         {number(rows->value(2)), number(rows->value(3))},
                                         {number(rows->value(4)), number(rows->value(5))}});
  }
  return lines;
}

enum State { opening, receipt, issue, closing };

// Calls `use(line, state)` for each chosen line: openings as opening, movements as receipt or issue, or as opening when
// they were posted before the lower date.
template <typename Use>
void forEachChosen(const YearOfLedger& year, const Choice& choice, Use use) {
  const bool late = choice.fromMonth > 0;
  for (const Line& line : late ? year.openings : year.lines) {
    if (line.voucherType == "34" && choice.matches(line)) use(line, opening);
  }
  for (const Line& line : year.lines) {
    if (line.month <= 0 || (late && line.month < choice.fromMonth) || !choice.matches(line)) continue;
    const bool before = !choice.lowerDate.empty() && !line.posted.empty() && line.posted < choice.lowerDate;
    use(line, before ? opening : line.receipt ? receipt : issue);
  }
}

void add(StateAmounts& sums, State state, const Amount& in, const Amount& out) {
  sums[state] += state == opening ? in - out : in + out;
  sums[closing] += in - out;
}

std::string classAtGrade(const YearOfLedger& year, const std::string& ownClass, int grade) {
  for (const auto& [code, classGrade] : year.classGrades) {
    if (classGrade == grade && ownClass.starts_with(code)) return code;
  }
  return ownClass;
}

}  // namespace

YearOfLedger readYear(tsql::Connection& account, int year) {
  YearOfLedger result;
  result.lines = readLines(account, "ia_subsidiary", "ia_subsidiary_Item", "iSubID", year);
  result.openings = readLines(account, "IA_Subsidiary_QC", "IA_Subsidiary_QC_Item", "iSubQcID", year);
  std::map<int, std::string> classCodes;
  {
    const auto rows = account.query("Select iFxCId, cFxCCode, iGrade From Ca_FxClassDef");
    while (rows->next()) {
      classCodes[static_cast<int>(number(rows->value(0)))] = text(rows->value(1));
      result.classGrades[text(rows->value(1))] = static_cast<int>(number(rows->value(2)));
    }
  }
  const auto rows = account.query("Select iFxID, cFxCode, cFxCID From Ca_FxDef");
  while (rows->next()) {
    const int id = static_cast<int>(number(rows->value(0)));
    result.costItemCodes[id] = text(rows->value(1));
    result.costItemClasses[id] = classCodes.at(static_cast<int>(number(rows->value(2))));
  }
  return result;
}

std::map<std::string, StateAmounts> sumsByCostItem(const YearOfLedger& year, const Choice& choice,
                                                   std::optional<int> grade) {
  std::map<std::string, StateAmounts> sums;
  forEachChosen(year, choice, [&](const Line& line, State state) {
    for (const Part& part : line.parts) {
      const std::string code = grade ? classAtGrade(year, year.costItemClasses.at(part.costItem), *grade)
                                     : year.costItemCodes.at(part.costItem);
      add(sums[code], state, part.in, part.out);
    }
  });
  return sums;
}

StateAmounts sumsOfLines(const YearOfLedger& year, const Choice& choice) {
  StateAmounts sums;
  forEachChosen(year, choice, [&](const Line& line, State state) {
    if (!line.parts.empty()) add(sums, state, line.in, line.out);
  });
  return sums;
}

}  // namespace quillon::workbench::test
