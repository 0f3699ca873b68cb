#include "workbench/account/ledger_check.h"

#include <algorithm>
#include <array>
#include <functional>
#include <iterator>
#include <map>
#include <memory>
#include <set>
#include <utility>

#include "workbench/account/account.h"
#include "workbench/account/account_error.h"
#include "workbench/account/ledger_statements.h"
#include "workbench/messages/check.h"
#include "workbench/tsql/values/exact.h"
#include "workbench/tsql/values/text.h"

namespace quillon::account {
namespace checks {
namespace {

constexpr std::array checkTable = {
    CheckInfo{Check::lineSum, "line-sum", CheckRank::error, true, messages::lineSumTitle.caption(),
              messages::lineSumAdvice.caption()},
    CheckInfo{Check::issueSum, "issue-sum", CheckRank::error, true, messages::issueSumTitle.caption(),
              messages::issueSumAdvice.caption()},
    CheckInfo{Check::openingSum, "opening-sum", CheckRank::error, true, messages::openingSumTitle.caption(),
              messages::openingSumAdvice.caption()},
    CheckInfo{Check::lineWithoutItems, "line-without-items", CheckRank::error, true,
              messages::lineWithoutItemsTitle.caption(), messages::withoutItemsAdvice.caption()},
    CheckInfo{Check::openingWithoutItems, "opening-without-items", CheckRank::error, true,
              messages::openingWithoutItemsTitle.caption(), messages::withoutItemsAdvice.caption()},
    CheckInfo{Check::neverSplit, "never-split", CheckRank::note, true, messages::neverSplitTitle.caption(),
              messages::neverSplitAdvice.caption()},
    CheckInfo{Check::unknownItem, "unknown-item", CheckRank::error, true, messages::unknownItemTitle.caption(),
              messages::unknownItemAdvice.caption()},
    CheckInfo{Check::strayItem, "stray-item", CheckRank::error, true, messages::strayItemTitle.caption(),
              messages::strayItemAdvice.caption()},
    CheckInfo{Check::classTree, "class-tree", CheckRank::error, false, messages::classTreeTitle.caption(),
              messages::classTreeAdvice.caption()},
    CheckInfo{Check::amountWithoutQuantity, "amount-without-quantity", CheckRank::error, true,
              messages::amountWithoutQuantityTitle.caption(), messages::amountWithoutQuantityAdvice.caption()},
    CheckInfo{Check::quantityWithoutAmount, "quantity-without-amount", CheckRank::note, false,
              messages::quantityWithoutAmountTitle.caption(), messages::quantityWithoutAmountAdvice.caption()},
    CheckInfo{Check::openingBalance, "opening-balance", CheckRank::error, true, messages::openingBalanceTitle.caption(),
              messages::openingBalanceAdvice.caption()},
    CheckInfo{Check::itemOpeningBalance, "item-opening-balance", CheckRank::error, true,
              messages::itemOpeningBalanceTitle.caption(), messages::itemOpeningBalanceAdvice.caption()},
    CheckInfo{Check::balanceWithoutQuantity, "balance-without-quantity", CheckRank::note, true,
              messages::balanceWithoutQuantityTitle.caption(), messages::balanceWithoutQuantityAdvice.caption()},
    CheckInfo{Check::periodGap, "period-gap", CheckRank::error, false, messages::periodGapTitle.caption(),
              messages::periodGapAdvice.caption()},
};

// --- Values -----------------------------------------------------------------------------------------------------------

constexpr tsql::Type sumType{.kind = tsql::Kind::decimal, .precision = tsql::maxPrecision, .scale = 6};
constexpr tsql::Exact nothing{.units = 0, .scale = 4};

std::optional<std::int64_t> wholeNumberOf(const tsql::Value& value) {
  if (const auto* integer = std::get_if<std::int64_t>(&value)) return *integer;
  return std::nullopt;
}

std::string textOf(const tsql::Value& value) {
  return tsql::toText(value).value_or("");
}

// A server gives an amount as it declares it, which may be a whole number's type.
tsql::Exact exactOf(const tsql::Value& value) {
  if (const auto* exact = std::get_if<tsql::Exact>(&value)) return *exact;
  if (const auto integer = wholeNumberOf(value)) return {.units = *integer, .scale = 0};
  return nothing;
}

void addTo(tsql::Exact& sum, const tsql::Value& value) {
  sum = tsql::add(sum, exactOf(value), sumType);
}

std::string numberOf(const tsql::Value& value) {
  return checkedNumber(exactOf(value));
}

std::string dayOf(const tsql::Value& value) {
  constexpr std::size_t dayLength = 10;
  return textOf(value).substr(0, dayLength);
}

// What a check looks for in a source.
struct Rule {
  Check check;
  std::string_view condition;
  std::string_view amount;  // an expression
  Message (*describe)(const tsql::Cursor& row);
};

// --- Lines and their cost items ---------------------------------------------------------------------------------------

bool isZero(const tsql::Value& value) {
  return exactOf(value).units == 0;
}

Message describeSums(const tsql::Cursor& row) {
  const bool receipts = !isZero(row.value(inAmount)) || !isZero(row.value(partsIn));
  const bool issues = !isZero(row.value(outAmount)) || !isZero(row.value(partsOut));
  if (receipts && issues) {
    return messages::sidesAndItems(numberOf(row.value(inAmount)), numberOf(row.value(partsIn)),
                                   numberOf(row.value(outAmount)), numberOf(row.value(partsOut)));
  }
  return messages::lineAndItems(numberOf(row.value(issues ? outAmount : inAmount)),
                                numberOf(row.value(issues ? partsOut : partsIn)));
}

constexpr std::string_view doNotSum =
    "line.parts > 0 And (line.inAmount <> line.partsIn Or line.outAmount <> line.partsOut)";
constexpr std::string_view missingAmount = "line.inAmount - line.partsIn + line.outAmount - line.partsOut";
constexpr std::string_view lineAmount = "line.inAmount + line.outAmount";
constexpr std::string_view hasAmount = "(line.inAmount <> 0 Or line.outAmount <> 0)";

constexpr std::array ledgerRules = {
    Rule{Check::lineSum, doNotSum, missingAmount, describeSums},
    // Adjustments and differences (20, 21, 22, 33, 35) have amounts alone by their nature.
    Rule{Check::amountWithoutQuantity,
         "(line.inAmount <> 0 Or line.outAmount <> 0) And line.inQuantity = 0 And line.outQuantity = 0 And "
         "line.cVouType Not In (N'20', N'21', N'22', N'33', N'35')",
         lineAmount, [](const tsql::Cursor&) { return messages::noQuantity(); }},
    Rule{Check::quantityWithoutAmount,
         "line.inAmount = 0 And line.outAmount = 0 And (line.inQuantity <> 0 Or line.outQuantity <> 0)", "0",
         [](const tsql::Cursor& row) { return messages::quantityAlone(numberOf(row.value(lineQuantity))); }},
};
constexpr std::array issueRules = {Rule{Check::issueSum, doNotSum, missingAmount, describeSums}};
constexpr std::array openingRules = {Rule{Check::openingSum, doNotSum, missingAmount, describeSums}};

// --- Cost items -------------------------------------------------------------------------------------------------------

Message describeUnknown(const tsql::Cursor& row) {
  const std::string table = textOf(row.value(partTable)), item = textOf(row.value(itemNumber));
  if (tsql::isNull(row.value(knownItem))) return messages::unknownItem(table, item);
  const std::string detail = textOf(row.value(detailNumber));
  if (tsql::isNull(row.value(knownDetail))) return messages::unknownDetail(table, item, detail);
  return messages::detailOfAnother(table, item, detail, textOf(row.value(itemOfDetail)));
}

constexpr std::array partRules = {
    Rule{Check::unknownItem,
         "(part.knownItem Is Null Or part.iItemDetailID Is Not Null And "
         "(part.knownDetail Is Null Or part.itemOfDetail <> part.iItemID))",
         "part.amount", describeUnknown},
    Rule{Check::strayItem, "part.knownLine Is Null", "part.amount",
         [](const tsql::Cursor& row) {
           return messages::lineMissing(textOf(row.value(partTable)), textOf(row.value(itemNumber)),
                                        textOf(row.value(lineTable)));
         }},
};

// --- Balances ---------------------------------------------------------------------------------------------------------

enum class CostsKeptBy { inventory, warehouse, department };

CostsKeptBy costsKeptBy(std::string_view method) {
  if (method == "按仓库核算") return CostsKeptBy::warehouse;
  if (method == "按部门核算") return CostsKeptBy::department;
  return CostsKeptBy::inventory;
}

std::string placeOf(CostsKeptBy method) {
  switch (method) {
    case CostsKeptBy::warehouse:
      return "IsNull(base.cWhCode, N'')";
    case CostsKeptBy::department:
      return "IsNull(base.cDepCode, N'')";
    case CostsKeptBy::inventory:
      break;
  }
  return "N''";
}

constexpr std::string_view balancesDiffer =
    "(balance.quantity <> balance.otherQuantity Or balance.amount <> balance.otherAmount)";

// --- The checks over one account --------------------------------------------------------------------------------------

// The year and month in which something starts.
struct Start {
  int year = 0;
  int month = 0;
};

class LedgerChecker {
 public:
  LedgerChecker(tsql::Database& account, const CheckScope& scope) : account_(account), scope_(scope) {
    for (const CheckInfo& info : ledgerChecks()) {
      if (scope.checks.empty() || std::ranges::find(scope.checks, info.check) != scope.checks.end())
        findings_.push_back({.check = info.check, .rows = 0, .amount = nothing, .shown = {}});
    }
  }

  std::vector<Finding> run() {
    readStarts();
    checkLines();
    check(linesWithParts(issueSplit, scope_.years), issueRules);
    checkOpenings();
    for (const LineTables& tables : {ledger, issueSplit, itemOpenings})
      check(partsWithMasters(tables, scope_.years), partRules);
    checkClasses();
    checkBalances();
    checkItemOpenings();
    checkPeriods();
    return std::move(findings_);
  }

 private:
  using Describe = std::function<Message(const tsql::Cursor& row)>;

  Finding* wanted(Check check) {
    const auto found = std::ranges::find(findings_, check, &Finding::check);
    return found == findings_.end() ? nullptr : &*found;
  }

  bool hasRoom(const Finding& finding) const {
    return !scope_.shown || static_cast<std::int64_t>(finding.shown.size()) < *scope_.shown;
  }

  void keep(Finding& finding, const tsql::Cursor& row, const Message& what) {
    if (!hasRoom(finding)) return;
    FoundRow found{.line = wholeNumberOf(row.value(lineColumn)),
                   .year = wholeNumberOf(row.value(yearColumn)),
                   .month = wholeNumberOf(row.value(monthColumn)),
                   .date = dayOf(row.value(dateColumn)),
                   .document = textOf(row.value(documentColumn)),
                   .inventory = textOf(row.value(inventoryColumn)),
                   .what = what,
                   .amount = {}};
    if (infoOf(finding.check).hasAmount) found.amount = exactOf(row.value(amountColumn));
    finding.shown.push_back(std::move(found));
  }

  // --- Statements -----------------------------------------------------------------------------------------------------

  // Counts in one pass what the rules find in the source, then reads the first rows of each that found some.
  void check(const Source& source, std::span<const Rule> rules) {
    const std::vector<std::int64_t> found = countIn(source, rules);
    for (std::size_t i = 0; i < rules.size(); ++i) {
      if (found[i] > 0) readRows(source, rules[i], rules[i].describe);
    }
  }

  // Adds what the rules find to their findings; gives the count of each, 0 for a rule that is not wanted.
  std::vector<std::int64_t> countIn(const Source& source, std::span<const Rule> rules) {
    std::vector<std::int64_t> found(rules.size());
    const bool any = std::ranges::any_of(rules, [&](const Rule& rule) { return wanted(rule.check) != nullptr; });
    if (!any) return found;
    const auto rows = account_.query("Select " + totals(rules) + " From " + source.table);
    rows->next();
    for (std::size_t i = 0; i < rules.size(); ++i) {
      if (Finding* const finding = wanted(rules[i].check)) found[i] = addTotals(*finding, *rows, 2 * i);
    }
    return found;
  }

  static std::string totals(std::span<const Rule> rules) {
    std::vector<std::string> columns;
    for (const Rule& rule : rules) {
      const std::string when = "Sum(Case When " + std::string(rule.condition) + " Then ";
      columns.push_back(when + "1 Else 0 End)");
      columns.push_back(when + std::string(rule.amount) + " Else 0 End)");
    }
    return listed(columns);
  }

  // Gives the count.
  static std::int64_t addTotals(Finding& finding, const tsql::Cursor& row, std::size_t column) {
    const std::int64_t count = wholeNumberOf(row.value(column)).value_or(0);
    finding.rows += count;
    addTo(finding.amount, row.value(column + 1));
    return count;
  }

  void readRows(const Source& source, const Rule& rule, const Describe& describe) {
    Finding& finding = *wanted(rule.check);
    if (!hasRoom(finding)) return;
    const auto rows = account_.query(rowsOf(source, rule.amount, rule.condition, scope_.shown));
    while (rows->next())
      keep(finding, *rows, describe(*rows));
  }

  // --- What the account says of itself --------------------------------------------------------------------------------

  std::string firstText(const std::string& sql) {
    const auto rows = account_.query(sql);
    return rows->next() ? textOf(rows->value(0)) : std::string();
  }

  void readStarts() {
    constexpr std::size_t yearDigits = 4;
    const auto startIn = [](const std::string& text, std::size_t monthAt) {
      if (text.size() <= monthAt) return Start{};
      return Start{.year = tsql::text::leadingNumber(std::string_view(text).substr(0, yearDigits)).value_or(0),
                   .month = tsql::text::leadingNumber(std::string_view(text).substr(monthAt)).value_or(0)};
    };
    items_ =
        startIn(firstText("Select cValue From AccInformation Where cSysID = N'CA' And cID = N'11002'"), yearDigits);
    const Start module =
        startIn(firstText("Select cValue From AccInformation Where cSysID = N'IA' And cName = N'dIAStartDate'"),
                yearDigits + 1);
    startedTogether_ = module.year == items_.year && module.month == items_.month;
  }

  // Whether the cost items of the start year open with entries of their own, since other months came before them.
  bool openingsAreEntered() const { return items_.month > 1 && !startedTogether_; }

  // Of a line whose year and month are the alias's: whether its month has cost items.
  std::string monthHasItems(const std::string& alias) const {
    if (items_.year == 0) return "1 = 0";
    const std::string year = std::to_string(items_.year);
    return "(" + alias + ".iYear > " + year + " Or " + alias + ".iYear = " + year + " And (" + alias +
           ".iMonth >= " + std::to_string(items_.month) + (openingsAreEntered() ? "" : " Or " + alias + ".iMonth = 0") +
           "))";
  }

  // Of these inventories, those that have cost items on some ledger line.
  std::set<std::string> everSplit(const std::set<std::string>& inventories) {
    std::set<std::string> split;
    constexpr std::size_t atATime = 500;
    std::vector<std::string> list;
    const auto ask = [&] {
      const auto rows = account_.query(
          "Select Distinct base.cInvCode From ia_subsidiary base Inner Join ia_subsidiary_Item part On part.iSubID = "
          "base.AutoID Where base.cInvCode In (" +
          listed(list) + ")");
      while (rows->next())
        split.insert(textOf(rows->value(0)));
      list.clear();
    };
    for (const std::string& inventory : inventories) {
      list.push_back(quotedText(inventory));
      if (list.size() == atATime) ask();
    }
    if (!list.empty()) ask();
    return split;
  }

  // --- Lines ----------------------------------------------------------------------------------------------------------

  // The ledger is read once for all its rules, and for the lines without cost items by inventory: only who knows all
  // lines of an inventory knows whether it has cost items at all.
  void checkLines() {
    std::vector<Rule> rules;
    std::ranges::copy_if(ledgerRules, std::back_inserter(rules),
                         [&](const Rule& rule) { return wanted(rule.check) != nullptr; });
    Finding* const missing = wanted(Check::lineWithoutItems);
    Finding* const never = wanted(Check::neverSplit);
    if (rules.empty() && missing == nullptr && never == nullptr) return;

    const std::string withoutItems = withoutItemsCondition() + " And " + monthHasItems("line");
    const Source source = linesWithParts(ledger, scope_.years);
    std::vector<Rule> asked = rules;
    asked.push_back({Check::neverSplit, withoutItems, lineAmount, nullptr});
    std::vector<std::int64_t> found(rules.size());
    std::map<std::string, Finding> lacking;  // by inventory, those that have no cost items as far as is known
    std::set<std::string> unknown, split;
    {
      const auto rows = account_.query("Select line.cInvCode, Sum(Case When line.parts > 0 Then 1 Else 0 End), " +
                                       totals(asked) + " From " + source.table + " Group By line.cInvCode");
      constexpr std::size_t firstTotal = 2;
      while (rows->next()) {
        for (std::size_t i = 0; i < rules.size(); ++i)
          found[i] += addTotals(*wanted(rules[i].check), *rows, firstTotal + 2 * i);
        const std::string inventory = textOf(rows->value(0));
        Finding lines{.check = Check::neverSplit, .rows = 0, .amount = nothing, .shown = {}};
        if (addTotals(lines, *rows, firstTotal + 2 * rules.size()) == 0) continue;
        const bool hasItems = wholeNumberOf(rows->value(1)).value_or(0) > 0;
        (hasItems ? split : unknown).insert(inventory);
        lacking.emplace(inventory, lines);
      }
    }
    for (std::size_t i = 0; i < rules.size(); ++i) {
      if (found[i] > 0) readRows(source, rules[i], rules[i].describe);
    }
    // Other years may have cost items of an inventory that has none in these.
    if (scope_.years && missing != nullptr) split.merge(everSplit(unknown));
    for (const auto& [inventory, lines] : lacking)
      count(split.contains(inventory) ? missing : never, lines);
    readLinesWithoutItems(source, withoutItems, split, missing, never);
  }

  static std::string withoutItemsCondition() { return "line.parts = 0 And " + std::string(hasAmount); }

  static void count(Finding* finding, const Finding& lines) {
    if (finding == nullptr) return;
    finding->rows += lines.rows;
    addTo(finding->amount, lines.amount);
  }

  // Whether all rows are kept that can be.
  bool complete(const Finding* finding) const {
    return finding == nullptr || !hasRoom(*finding) ||
           static_cast<std::int64_t>(finding->shown.size()) == finding->rows;
  }

  void readLinesWithoutItems(const Source& source, const std::string& condition, const std::set<std::string>& split,
                             Finding* missing, Finding* never) {
    if (complete(missing) && complete(never)) return;
    const auto rows = account_.query(rowsOf(source, lineAmount, condition, std::nullopt));
    while (!(complete(missing) && complete(never)) && rows->next()) {
      Finding* const finding = split.contains(textOf(rows->value(inventoryColumn))) ? missing : never;
      if (finding != nullptr) keep(*finding, *rows, messages::noItems());
    }
  }

  void checkOpenings() {
    const Source source = linesWithParts(itemOpenings, scope_.years);
    check(source, openingRules);
    Finding* const finding = wanted(Check::openingWithoutItems);
    if (finding == nullptr) return;
    std::set<std::string> inventories;
    {
      const auto rows =
          account_.query("Select Distinct line.cInvCode From " + source.table + " Where " + withoutItemsCondition());
      while (rows->next())
        inventories.insert(textOf(rows->value(0)));
    }
    if (inventories.empty()) return;
    const std::set<std::string> split = everSplit(inventories);
    if (split.empty()) return;
    const auto rows = account_.query(rowsOf(source, lineAmount, withoutItemsCondition(), std::nullopt));
    while (rows->next()) {
      if (!split.contains(textOf(rows->value(inventoryColumn)))) continue;
      ++finding->rows;
      addTo(finding->amount, rows->value(amountColumn));
      keep(*finding, *rows, messages::noItems());
    }
  }

  // --- Masters --------------------------------------------------------------------------------------------------------

  void checkClasses() {
    Finding* const finding = wanted(Check::classTree);
    if (finding == nullptr) return;
    tell(*finding,
         "Select item.cFxCode, item.cFxCID From Ca_FxDef item Left Join Ca_FxClassDef cls On cls.iFxCId = item.cFxCID "
         "Where cls.iFxCId Is Null Order By item.cFxCode",
         [](const tsql::Cursor& row) { return messages::classMissing(textOf(row.value(0)), textOf(row.value(1))); });
    tell(*finding,
         "Select cls.cFxCCode, cls.iGrade From Ca_FxClassDef cls Where cls.iGrade > 1 And Not Exists (Select * From "
         "Ca_FxClassDef upper_class Where upper_class.iGrade = cls.iGrade - 1 And Left(cls.cFxCCode, "
         "Len(upper_class.cFxCCode)) = upper_class.cFxCCode) Order By cls.cFxCCode",
         [](const tsql::Cursor& row) {
           return messages::classAboveMissing(textOf(row.value(0)), textOf(row.value(1)));
         });
  }

  void tell(Finding& finding, const std::string& sql, const Describe& describe) {
    const auto rows = account_.query(sql);
    while (rows->next()) {
      ++finding.rows;
      if (!hasRoom(finding)) continue;
      finding.shown.emplace_back().what = describe(*rows);
    }
  }

  // --- Balances -------------------------------------------------------------------------------------------------------

  // How costs were kept in each year of which that is known, as of an earlier year; else as they are now.
  std::map<int, CostsKeptBy> pastMethods() {
    std::map<int, CostsKeptBy> methods;
    const auto rows =
        account_.query("Select iYear, cValue From IA_HisOption Where cSysID = N'IA' And cName = N'cValueStyle'");
    while (rows->next())
      methods[static_cast<int>(wholeNumberOf(rows->value(0)).value_or(0))] = costsKeptBy(textOf(rows->value(1)));
    return methods;
  }

  CostsKeptBy methodOf(int year) {
    if (!currentMethod_) {
      currentMethod_ =
          costsKeptBy(firstText("Select cValue From AccInformation Where cSysID = N'IA' And cName = N'cValueStyle'"));
      pastMethods_ = pastMethods();
    }
    const auto past = pastMethods_.find(year);
    return past == pastMethods_.end() ? *currentMethod_ : past->second;
  }

  // The place by which the balances between two years are compared; where the method changed between them, none.
  CostsKeptBy methodBetween(int year) {
    const CostsKeptBy method = methodOf(year);
    return method == methodOf(year + 1) ? method : CostsKeptBy::inventory;
  }

  Lot lotOfBalances() {
    Lot lot{{"cBatch"}, {"Case When inv.bCheckBatch = 1 Then IsNull(base.cBatchIA, N'') Else N'' End"}};
    std::vector<std::string> columns;
    for (std::size_t i = 1; i <= freeItemCount; ++i)
      columns.push_back("Max(Case When bCheckFree" + std::to_string(i) + " = 1 Then 1 Else 0 End)");
    const auto rows = account_.query("Select " + listed(columns) + " From Inventory");
    rows->next();
    for (std::size_t i = 1; i <= freeItemCount; ++i) {
      if (wholeNumberOf(rows->value(i - 1)).value_or(0) == 0) continue;
      const std::string number = std::to_string(i);
      lot.names.push_back("cFree" + number);
      std::string& expression = lot.expressions.emplace_back("Case When inv.bCheckFree");
      expression.append(number).append(" = 1 Then IsNull(base.cFree").append(number).append(", N'') Else N'' End");
    }
    return lot;
  }

  std::optional<YearRange> yearsOfLedger() {
    const auto rows = account_.query("Select Min(iYear), Max(iYear) From ia_subsidiary");
    if (!rows->next()) return std::nullopt;
    const auto first = wholeNumberOf(rows->value(0)), last = wholeNumberOf(rows->value(1));
    if (!first || !last) return std::nullopt;
    return YearRange{static_cast<int>(*first), static_cast<int>(*last)};
  }

  // Where a line lies that counts under `year`, an expression whose values are `years`.
  std::string placeIn(const YearRange& years, const std::string& year) {
    const std::string first = placeOf(methodBetween(years.first));
    std::string cases;
    bool same = true;
    for (int each = years.first; each <= years.last; ++each) {
      const std::string place = placeOf(methodBetween(each));
      cases += " When " + std::to_string(each) + " Then " + place;
      same = same && place == first;
    }
    return same ? first : "Case " + year + cases + " Else N'' End";
  }

  // A year's closing and the next one's opening count under the year that closes.
  void checkBalances() {
    if (wanted(Check::openingBalance) == nullptr && wanted(Check::balanceWithoutQuantity) == nullptr) return;
    const std::optional<YearRange> all = yearsOfLedger();
    if (!all) return;
    const YearRange asked = scope_.years.value_or(*all);
    const YearRange closings{std::max(all->first, asked.first - 1), std::min(all->last, asked.last)};
    if (closings.last < closings.first) return;
    const Lot lot = lotOfBalances();
    const BalanceSide closing{.table = "ia_subsidiary",
                              .year = "base.iYear",
                              .place = placeIn(closings, "base.iYear"),
                              .condition = " And " + between("base.iYear", closings.first, closings.last)};
    const BalanceSide opening{
        .table = "ia_subsidiary",
        .year = "base.iYear - 1",
        .place = placeIn(closings, "base.iYear - 1"),
        .condition = " And base.cVouType = N'34' And " + between("base.iYear", closings.first + 1, closings.last)};
    const std::string differ = std::string(balancesDiffer) + " And " +
                               between("balance.iYear", closings.first, std::min(asked.last, all->last) - 1);
    const std::string leftOver =
        "balance.quantity = 0 And balance.amount <> 0 And " + between("balance.iYear", asked.first, closings.last);
    const std::array rules = {
        Rule{Check::openingBalance, differ, "balance.otherAmount - balance.amount", nullptr},
        Rule{Check::balanceWithoutQuantity, leftOver, "balance.amount", nullptr},
    };
    Source source = balances(closing, opening, lot, balanceColumns("balance.iYear + 1", "0"));
    const std::vector<std::int64_t> found = countIn(source, rules);
    if (found[0] > 0) {
      readRows(source, rules[0], [this](const tsql::Cursor& row) {
        return ofBalance(row, sidesOfBalance(messages::closingAndOpening, row));
      });
    }
    if (found[1] == 0) return;
    source.columns = balanceColumns("balance.iYear", "12");
    readRows(source, rules[1], [this](const tsql::Cursor& row) {
      return ofBalance(row, messages::leftOver(numberOf(row.value(balanceAmount))));
    });
  }

  static Message sidesOfBalance(const workbench::Text<4>& text, const tsql::Cursor& row) {
    return text(numberOf(row.value(balanceQuantity)), numberOf(row.value(balanceAmount)),
                numberOf(row.value(otherQuantity)), numberOf(row.value(otherAmount)));
  }

  // Warehouse or department, batch and free items of a balance, each as far as it has them, before `figures`.
  Message ofBalance(const tsql::Cursor& row, const Message& figures) {
    std::vector<Message> parts;
    const std::string where = textOf(row.value(place)), lot = textOf(row.value(batch));
    const CostsKeptBy method = methodBetween(static_cast<int>(wholeNumberOf(row.value(balanceYear)).value_or(0)));
    if (!where.empty())
      parts.push_back(method == CostsKeptBy::department ? messages::ofDepartment(where) : messages::ofWarehouse(where));
    if (!lot.empty()) parts.push_back(messages::ofBatch(lot));
    std::string freeItems;
    for (std::size_t column = firstFreeItem; column < row.columns().size(); ++column) {
      const std::string value = textOf(row.value(column));
      if (!value.empty()) freeItems += (freeItems.empty() ? "" : " / ") + value;
    }
    if (!freeItems.empty()) parts.push_back(messages::ofFreeItems(freeItems));
    parts.push_back(figures);
    return workbench::joined(parts, messages::partSeparator.caption());
  }

  // Where months without cost items came first, the balances that were entered for them are the ledger's of that month.
  // Inventories that never have cost items need no entries.
  void checkItemOpenings() {
    Finding* const finding = wanted(Check::itemOpeningBalance);
    if (finding == nullptr || !openingsAreEntered()) return;
    if (scope_.years && (items_.year < scope_.years->first || items_.year > scope_.years->last)) return;
    const std::string year = std::to_string(items_.year), month = std::to_string(items_.month);
    const std::string where = placeOf(methodOf(items_.year)), ofYear = " And base.iYear = " + year;
    const BalanceSide lines{.table = "ia_subsidiary",
                            .year = "base.iYear",
                            .place = where,
                            .condition = ofYear + " And base.iMonth < " + month};
    const BalanceSide entered{.table = "IA_Subsidiary_QC", .year = "base.iYear", .place = where, .condition = ofYear};
    const Source source = balances(lines, entered, lotOfBalances(), balanceColumns("balance.iYear", month));
    constexpr std::string_view amount = "balance.otherAmount - balance.amount";
    std::set<std::string> inventories;
    {
      const auto rows = account_.query("Select Distinct balance.cInvCode From " + source.table + " Where " +
                                       std::string(balancesDiffer));
      while (rows->next())
        inventories.insert(textOf(rows->value(0)));
    }
    const std::set<std::string> split = everSplit(inventories);
    if (split.empty()) return;
    const auto rows = account_.query(rowsOf(source, amount, balancesDiffer, std::nullopt));
    while (rows->next()) {
      if (!split.contains(textOf(rows->value(inventoryColumn)))) continue;
      ++finding->rows;
      addTo(finding->amount, rows->value(amountColumn));
      if (hasRoom(*finding)) keep(*finding, *rows, ofBalance(*rows, sidesOfBalance(messages::ledgerAndOpening, *rows)));
    }
  }

  // --- Periods --------------------------------------------------------------------------------------------------------

  // Month 0 is settled when the year's cost-item openings are finished; it counts from the year in which these start.
  void checkPeriods() {
    Finding* const finding = wanted(Check::periodGap);
    if (finding == nullptr) return;
    struct Month {
      std::int64_t year;
      std::int64_t month;
      bool settled;
    };
    std::vector<Month> months;  // the last one first
    {
      const auto rows =
          account_.query("Select iYear, iMonth, bSettled From IA_PeriodState Order By iYear Desc, iMonth Desc");
      while (rows->next()) {
        months.push_back({wholeNumberOf(rows->value(0)).value_or(0), wholeNumberOf(rows->value(1)).value_or(0),
                          wholeNumberOf(rows->value(2)).value_or(0) != 0});
      }
    }
    const Month* next = nullptr;    // the settled month that follows
    const Month* latest = nullptr;  // the last settled month of the year
    std::vector<FoundRow> gaps;
    const auto add = [&](const Month& month, const Month& settled, const workbench::Text<1>& text) {
      constexpr int hundred = 100;
      FoundRow& gap = gaps.emplace_back();
      gap.year = month.year;
      gap.month = month.month;
      gap.what = text(settled.year * hundred + settled.month);
    };
    for (const Month& month : months) {
      if (latest != nullptr && latest->year != month.year) latest = nullptr;
      if (month.month > 0 && month.settled) {
        next = &month;
        if (latest == nullptr) latest = &month;
      }
      if (month.settled || !inScope(month.year)) continue;
      if (month.month > 0 && next != nullptr) add(month, *next, messages::notSettled);
      if (month.month == 0 && latest != nullptr && hasItems(*latest))
        add(month, *latest, messages::openingsNotFinished);
    }
    finding->rows = static_cast<std::int64_t>(gaps.size());
    std::ranges::reverse(gaps);
    for (const FoundRow& gap : gaps) {
      if (hasRoom(*finding)) finding->shown.push_back(gap);
    }
  }

  // Whether a month, with its year, has cost items.
  bool hasItems(const auto& month) const {
    return items_.year != 0 && (month.year > items_.year || (month.year == items_.year && month.month >= items_.month));
  }

  bool inScope(std::int64_t year) const {
    return !scope_.years || (year >= scope_.years->first && year <= scope_.years->last);
  }

  tsql::Database& account_;
  const CheckScope& scope_;
  std::vector<Finding> findings_;
  Start items_;  // when cost items start
  bool startedTogether_ = false;
  std::optional<CostsKeptBy> currentMethod_;
  std::map<int, CostsKeptBy> pastMethods_;
};

}  // namespace
}  // namespace checks

std::span<const CheckInfo> ledgerChecks() {
  return checks::checkTable;
}

const CheckInfo& infoOf(Check check) {
  return *std::ranges::find(checks::checkTable, check, &CheckInfo::check);
}

std::vector<Finding> checkLedger(tsql::Database& account, const CheckScope& scope) {
  requireAccount(account);
  return checks::LedgerChecker(account, scope).run();
}

std::string checkedNumber(const tsql::Exact& value) {
  constexpr int leastDecimals = 2;
  tsql::Exact shown = value;
  if (shown.scale < leastDecimals) {
    const auto units = tsql::rescale(shown.units, shown.scale, leastDecimals, tsql::Rounding::halfAway);
    if (units) shown = {.units = *units, .scale = leastDecimals};
  }
  std::string text = tsql::toText(shown);
  const std::size_t least = text.find('.') + 1 + leastDecimals;
  while (text.size() > least && text.ends_with('0'))
    text.pop_back();
  return text;
}

}  // namespace quillon::account
