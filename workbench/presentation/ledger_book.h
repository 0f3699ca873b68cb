// A detail ledger as it stands in its result table, held in memory: opening, lines, month balances. The layouts of a
// ledger are made from it.
//
// A ledger is kept by group: a batch and the free items that the inventory is told apart by. The table repeats a
// group's balance on each row of its cost items, and a line's figures on each of its parts; here both stand once.
#pragma once

#include <cstddef>
#include <cstdint>
#include <map>
#include <optional>
#include <span>
#include <string>
#include <vector>

#include "workbench/presentation/exact_sum.h"
#include "workbench/presentation/result_table.h"

namespace quillon::workbench {

// A quantity and an amount, both exact.
struct Figures {
  ExactSum quantity;
  ExactSum amount;

  void add(const Figures& other);
  void subtract(const Figures& other);
  bool isZero() const { return quantity.isZero() && amount.isZero(); }
};

struct CostItem {
  std::string code;
  std::string name;

  bool operator==(const CostItem&) const = default;
};

// What of a line falls to a cost item.
struct LedgerPart {
  std::optional<std::size_t> costItem;  // its place in LedgerBook::costItems; nothing: a part without a cost item
  tsql::Value quantity;
  tsql::Value unitCost;
  tsql::Value amount;
};

struct LedgerLine {
  std::optional<std::int64_t> id;  // AutoID
  int month = 0;                   // the ledger's, whatever the line's date is
  bool receipt = false;
  std::size_t group = 0;           // its place in LedgerBook::groups
  std::vector<tsql::Value> cells;  // one for each of LedgerBook::columns
  tsql::Value quantity;
  tsql::Value unitCost;
  tsql::Value amount;
  std::vector<LedgerPart> parts;  // none: the line is not broken down

  Figures figures() const;
};

// The balance of a group as the table has it.
struct GroupBalance {
  Figures figures;
  bool known = false;                         // the table has figures for the group as a whole
  std::map<std::size_t, Figures> byCostItem;  // by place in LedgerBook::costItems; what has none is left out
};

using BalancesByGroup = std::map<std::size_t, GroupBalance>;

// Batch and free items 1 to 10, in this order; one that the ledger is not kept by is empty.
inline constexpr std::size_t groupColumnCount = 11;
using LedgerGroup = std::vector<std::string>;
// "cBatchia", "cFree1", ... "cFree10".
std::span<const std::string_view> groupColumnNames();

struct LedgerBook {
  std::vector<ReportColumn> columns;  // of a line as a whole, without its figures: those that hold something
  std::vector<LedgerGroup> groups;
  std::vector<CostItem> costItems;  // by code, then name
  BalancesByGroup opening;
  std::vector<LedgerLine> lines;  // by month, then as the table has them
  // The balances at the ends of months. The last one is the balance at the end of the ledger, whatever month it names:
  // it is bounded by the period's last day, and lines of later months may count in it.
  std::map<int, BalancesByGroup> monthEnds;

  // Whether the table's balances at the end of `month` are those of that month, and not those of the ledger's end.
  bool hasMonthEnd(int month) const;
  // The balances at the end of the ledger; none when the table has no month balance.
  const BalancesByGroup* closing() const;
  // The place of `name` among the columns.
  std::optional<std::size_t> column(std::string_view name) const;
};

enum class Breakdown { costItem, costItemClass };

// `table` has rows and the columns of a ledger; `known` are the columns that a ledger may have. A line whose ledger line
// is gone from the account counts as an issue of its date's month. Throws tsql::SqlError.
LedgerBook readLedger(const ResultTable& table, std::span<const ReportColumn> known, Breakdown breakdown);

// What of a line falls to no cost item: its amount less those of its parts that have one.
ExactSum amountWithoutCostItem(const LedgerLine& line);
// The same of a balance.
ExactSum amountWithoutCostItem(const GroupBalance& balance);

}  // namespace quillon::workbench
