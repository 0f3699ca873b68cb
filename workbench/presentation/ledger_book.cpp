#include "workbench/presentation/ledger_book.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <numeric>
#include <utility>

#include "frame/text.h"
#include "workbench/tsql/values/collation.h"

namespace quillon::workbench {

namespace {

constexpr std::array<std::string_view, groupColumnCount> groupColumns = {
    "cBatchia", "cFree1", "cFree2", "cFree3", "cFree4", "cFree5", "cFree6", "cFree7", "cFree8", "cFree9", "cFree10"};

// What is read of a row besides the columns that are shown.
constexpr std::array<std::string_view, 23> readColumns = {
    "cBatchia", "cFree1",  "cFree2",        "cFree3",    "cFree4",    "cFree5", "cFree6", "cFree7",   "cFree8",
    "cFree9",   "cFree10", "dKeepDate",     "id",        "iQuantity", "iCost",  "iPrice", "cfxCCode", "cfxCName",
    "cfxCode",  "cfxName", "iItemQuantity", "iItemCost", "iItemPrice"};
enum Read : std::size_t {
  postingDate = groupColumnCount,
  lineId,
  lineQuantity,
  lineUnitCost,
  lineAmount,
  classCode,
  className,
  itemCode,
  itemName,
  partQuantity,
  partUnitCost,
  partAmount,
  rowKind,
  receiptFlag,
  ledgerMonth
};

std::string wordsOf(const tsql::Value& value) {
  return tsql::toText(value).value_or("");
}

std::optional<std::int64_t> whole(const tsql::Value& value) {
  const std::optional<std::string> digits = tsql::toText(value);
  return digits ? wholeNumber<std::int64_t>(*digits) : std::nullopt;
}

int monthOfDate(const tsql::Value& date) {
  constexpr std::size_t monthAt = 5;  // yyyy-mm-dd
  const std::string day = wordsOf(date);
  return day.size() > monthAt ? wholeNumber<int>(day.substr(monthAt, 2)).value_or(0) : 0;
}

// Texts compared as the account compares them.
struct AsTheAccountSorts {
  bool operator()(const LedgerGroup& a, const LedgerGroup& b) const {
    return std::ranges::lexicographical_compare(
        a, b, [](const auto& x, const auto& y) { return tsql::compareText(x, y) < 0; });
  }
};

bool isLedgerColumn(const ReportColumn& column) {
  return column.ofLine && !isNumber(column.role) && !equalIgnoringCase(column.name, "RowNo");
}

// Takes the rows one by one. Groups and cost items are numbered as they come and put in order at the end, when it is
// known which of the group's columns the ledger is kept by.
class Reading {
 public:
  Reading(LedgerBook& book, Breakdown breakdown) : book_(book), breakdown_(breakdown) {}

  void take(const tsql::Cursor& row) {
    shown_ = book_.columns.size();
    const std::optional<std::int64_t> kind = whole(at(row, rowKind));
    if (kind == 1) {
      takeMovement(row);
    } else {
      takeBalance(row, kind == 0 ? book_.opening : book_.monthEnds[monthOf(row)]);
    }
  }

  void finish() {
    joinGroups();
    sortCostItems();
    std::ranges::stable_sort(book_.lines, {}, &LedgerLine::month);
  }

 private:
  const tsql::Value& at(const tsql::Cursor& row, std::size_t column) const { return row.value(shown_ + column); }

  // Of a movement the ledger line's, of a balance the one that stands as its key.
  int monthOf(const tsql::Cursor& row) const {
    const bool movement = whole(at(row, rowKind)) == 1;
    const std::optional<std::int64_t> month = whole(at(row, movement ? ledgerMonth : lineId));
    return month ? static_cast<int>(*month) : monthOfDate(at(row, postingDate));
  }

  std::size_t group(const tsql::Cursor& row) {
    LedgerGroup group;
    for (std::size_t i = 0; i < groupColumnCount; ++i)
      group.push_back(wordsOf(at(row, i)));
    const auto [found, added] = groups_.try_emplace(group, book_.groups.size());
    if (added) book_.groups.push_back(std::move(group));
    return found->second;
  }

  std::optional<std::size_t> costItem(const tsql::Cursor& row) {
    CostItem item = breakdown_ == Breakdown::costItem
                        ? CostItem{wordsOf(at(row, itemCode)), wordsOf(at(row, itemName))}
                        : CostItem{wordsOf(at(row, classCode)), wordsOf(at(row, className))};
    if (item == CostItem()) return std::nullopt;
    const auto [found, added] = costItems_.try_emplace({item.code, item.name}, book_.costItems.size());
    if (added) book_.costItems.push_back(std::move(item));
    return found->second;
  }

  void takeMovement(const tsql::Cursor& row) {
    const std::optional<std::int64_t> id = whole(at(row, lineId));
    if (!lineId_ || lineId_ != id) {
      LedgerLine line{.id = id,
                      .month = monthOf(row),
                      .receipt = whole(at(row, receiptFlag)) == 1,
                      .group = group(row),
                      .cells = {},
                      .quantity = at(row, lineQuantity),
                      .unitCost = at(row, lineUnitCost),
                      .amount = at(row, lineAmount),
                      .parts = {}};
      for (std::size_t i = 0; i < shown_; ++i)
        line.cells.push_back(row.value(i));
      book_.lines.push_back(std::move(line));
      lineId_ = id;
    }
    LedgerPart part{.costItem = costItem(row),
                    .quantity = at(row, partQuantity),
                    .unitCost = at(row, partUnitCost),
                    .amount = at(row, partAmount)};
    if (part.costItem || !tsql::isNull(part.quantity) || !tsql::isNull(part.amount))
      book_.lines.back().parts.push_back(std::move(part));
  }

  void takeBalance(const tsql::Cursor& row, BalancesByGroup& balances) {
    const std::size_t number = group(row);
    for (std::size_t i = 0; i < groupColumnCount; ++i)
      keptBy_[i] = keptBy_[i] || !book_.groups[number][i].empty();
    GroupBalance& balance = balances[number];
    if (!balance.known && !(tsql::isNull(at(row, lineQuantity)) && tsql::isNull(at(row, lineAmount)))) {
      balance.known = true;
      balance.figures.quantity.add(at(row, lineQuantity));
      balance.figures.amount.add(at(row, lineAmount));
    }
    if (const std::optional<std::size_t> item = costItem(row)) {
      Figures& figures = balance.byCostItem[*item];
      figures.quantity.add(at(row, partQuantity));
      figures.amount.add(at(row, partAmount));
    }
  }

  // Lines carry a batch and free items also where the ledger is not kept by them: these lines belong to one group.
  void joinGroups() {
    std::vector<std::size_t> joined;
    std::map<LedgerGroup, std::size_t, AsTheAccountSorts> known;
    std::vector<LedgerGroup> groups;
    for (LedgerGroup& group : book_.groups) {
      for (std::size_t i = 0; i < groupColumnCount; ++i) {
        if (!keptBy_[i]) group[i].clear();
      }
      const auto [found, added] = known.try_emplace(group, groups.size());
      if (added) groups.push_back(group);
      joined.push_back(found->second);
    }
    book_.groups = std::move(groups);
    for (LedgerLine& line : book_.lines)
      line.group = joined[line.group];
    renumber(book_.opening, joined);
    for (auto& [month, balances] : book_.monthEnds)
      renumber(balances, joined);
  }

  static void renumber(BalancesByGroup& balances, const std::vector<std::size_t>& joined) {
    BalancesByGroup result;
    for (auto& [group, balance] : balances)
      result[joined[group]] = std::move(balance);
    balances = std::move(result);
  }

  void sortCostItems() {
    std::vector<std::size_t> order(book_.costItems.size());
    std::iota(order.begin(), order.end(), std::size_t{0});
    std::ranges::sort(order, [this](std::size_t a, std::size_t b) {
      const CostItem& one = book_.costItems[a];
      const CostItem& two = book_.costItems[b];
      const int byCode = tsql::compareText(one.code, two.code);
      return byCode != 0 ? byCode < 0 : tsql::compareText(one.name, two.name) < 0;
    });
    std::vector<std::size_t> places(order.size());
    std::vector<CostItem> sorted;
    for (const std::size_t number : order) {
      places[number] = sorted.size();
      sorted.push_back(std::move(book_.costItems[number]));
    }
    book_.costItems = std::move(sorted);
    for (LedgerLine& line : book_.lines) {
      for (LedgerPart& part : line.parts) {
        if (part.costItem) part.costItem = places[*part.costItem];
      }
    }
    const auto place = [&places](BalancesByGroup& balances) {
      for (auto& [group, balance] : balances) {
        std::map<std::size_t, Figures> byCostItem;
        for (const auto& [item, figures] : balance.byCostItem)
          byCostItem[places[item]] = figures;
        balance.byCostItem = std::move(byCostItem);
      }
    };
    place(book_.opening);
    for (auto& [month, balances] : book_.monthEnds)
      place(balances);
  }

  LedgerBook& book_;
  Breakdown breakdown_;
  std::size_t shown_ = 0;
  std::map<LedgerGroup, std::size_t, AsTheAccountSorts> groups_;
  std::map<LedgerGroup, std::size_t, AsTheAccountSorts> costItems_;
  std::array<bool, groupColumnCount> keptBy_{};
  std::optional<std::int64_t> lineId_;
};

}  // namespace

void Figures::add(const Figures& other) {
  quantity.add(other.quantity);
  amount.add(other.amount);
}

void Figures::subtract(const Figures& other) {
  quantity.subtract(other.quantity.value());
  amount.subtract(other.amount.value());
}

Figures LedgerLine::figures() const {
  Figures figures;
  figures.quantity.add(quantity);
  figures.amount.add(amount);
  return figures;
}

std::span<const std::string_view> groupColumnNames() {
  return groupColumns;
}

bool LedgerBook::hasMonthEnd(int month) const {
  return monthEnds.contains(month) && month != monthEnds.rbegin()->first;
}

const BalancesByGroup* LedgerBook::closing() const {
  return monthEnds.empty() ? nullptr : &monthEnds.rbegin()->second;
}

std::optional<std::size_t> LedgerBook::column(std::string_view name) const {
  const auto found =
      std::ranges::find_if(columns, [name](const auto& column) { return equalIgnoringCase(column.name, name); });
  if (found == columns.end()) return std::nullopt;
  return static_cast<std::size_t>(found - columns.begin());
}

LedgerBook readLedger(const ResultTable& table, std::span<const ReportColumn> known, Breakdown breakdown) {
  LedgerBook book;
  for (ReportColumn& column : table.filledColumns(known)) {
    if (isLedgerColumn(column)) book.columns.push_back(std::move(column));
  }
  std::vector<ReportColumn> read = book.columns;
  for (const std::string_view name : readColumns)
    read.push_back({.name = std::string(name), .chinese = "", .english = ""});
  Reading reading(book, breakdown);
  for (const auto rows = table.ledgerRows(read); rows->next();)
    reading.take(*rows);
  reading.finish();
  return book;
}

ExactSum amountWithoutCostItem(const LedgerLine& line) {
  ExactSum rest;
  rest.add(line.amount);
  for (const LedgerPart& part : line.parts) {
    if (part.costItem) rest.subtract(part.amount);
  }
  return rest;
}

ExactSum amountWithoutCostItem(const GroupBalance& balance) {
  ExactSum rest = balance.figures.amount;
  for (const auto& [item, figures] : balance.byCostItem)
    rest.subtract(figures.amount.value());
  return rest;
}

}  // namespace quillon::workbench
