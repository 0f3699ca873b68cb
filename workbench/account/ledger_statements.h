// The statements of the checks of a ledger (ledger_check.h): derived tables of lines, parts and balances, on which a check
// has a condition. They are T-SQL that the embedded engine and a server take alike: aggregates have no sub-queries.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "workbench/account/ledger_check.h"

namespace quillon::account::checks {

std::string listed(std::span<const std::string> parts);
std::string quotedText(std::string_view text);
std::string between(std::string_view column, int first, int last);

// The columns that every statement for rows begins with; its source's own follow.
enum RowColumn : std::size_t {
  lineColumn,
  yearColumn,
  monthColumn,
  dateColumn,
  documentColumn,
  inventoryColumn,
  amountColumn,
  firstOwn
};

// Where rules look: a derived table with columns that conditions name, and what is told of its rows.
struct Source {
  std::string table;    // in brackets, with its alias
  std::string details;  // joins for what is told of a row alone
  std::string columns;  // those before amountColumn
  std::string own;      // those from firstOwn on
  std::string order;
};

// The first `rows` rows of the source that meet `condition`, or all, with `amount` as their amount.
std::string rowsOf(const Source& source, std::string_view amount, std::string_view condition,
                   const std::optional<std::int64_t>& rows);

// --- Lines and their cost items ---------------------------------------------------------------------------------------

struct LineTables {
  std::string_view lines;
  std::string_view parts;
  std::string_view partLine;  // the column of the parts that names the line
  std::string_view join;      // which lines
};

inline constexpr LineTables ledger{"ia_subsidiary", "ia_subsidiary_Item", "iSubID", "Left Join"};
inline constexpr LineTables issueSplit{"ia_subsidiary", "ia_subsidiary_ItemOut", "iSubID", "Inner Join"};
inline constexpr LineTables itemOpenings{"IA_Subsidiary_QC", "IA_Subsidiary_QC_Item", "iSubQcID", "Left Join"};

// A row a line, called `line`, with what its parts sum to.
Source linesWithParts(const LineTables& tables, const std::optional<YearRange>& years);
enum LineColumn : std::size_t { inAmount = firstOwn, partsIn, outAmount, partsOut, lineQuantity };

// A row a part, called `part`, with its masters and its line as far as they are there.
Source partsWithMasters(const LineTables& tables, const std::optional<YearRange>& years);
enum PartColumn : std::size_t {
  partTable = firstOwn,
  itemNumber,
  knownItem,
  detailNumber,
  knownDetail,
  itemOfDetail,
  lineTable
};

// --- Balances ---------------------------------------------------------------------------------------------------------

inline constexpr std::size_t freeItemCount = 10;

// Batch and the free items that some inventory is kept by: what a balance is of beside inventory and place.
struct Lot {
  std::vector<std::string> names;        // of the columns
  std::vector<std::string> expressions;  // over base and inv
};

// One side of a comparison of balances: the lines of a table that meet a condition.
struct BalanceSide {
  std::string_view table;
  std::string year;   // under which they count, an expression
  std::string place;  // where they lie, an expression
  std::string condition;
};

// A row a balance, called `balance`, with its quantity and amount on both sides; `columns` are those of balanceColumns().
Source balances(const BalanceSide& one, const BalanceSide& other, const Lot& lot, std::string columns);
// What is told of a balance: `year` and `month`, expressions, and the inventory.
std::string balanceColumns(std::string_view year, std::string_view month);
enum BalanceColumn : std::size_t {
  balanceQuantity = firstOwn,
  balanceAmount,
  otherQuantity,
  otherAmount,
  balanceYear,
  place,
  batch,
  firstFreeItem
};

}  // namespace quillon::account::checks
