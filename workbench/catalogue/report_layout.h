// How a report's result table is laid out for a reader: which layouts it has, what their rows are ordered and nested by,
// and the cross view that sums them by cost item.
#pragma once

#include <array>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "workbench/platform/language.h"

namespace quillon::workbench {

// A state of the cross view, such as receipts: quantity and money of each row that belong to it, as T-SQL expressions
// over the result table.
struct CrossState {
  std::string_view nameKey;  // the resource key of its name
  std::string quantity;
  std::string money;
  // The value of iState that the rows of this state have; empty where a row may belong to several states.
  std::string stateNumber = {};
};

// `column` as such an expression: a null counts as zero.
std::string orZero(std::string_view column);

// What a report's rows are ordered by: the columns of these that its result table has.
using RowOrder = std::span<const std::string_view>;
// By line number, or by place, inventory, batch, cost item or class, state and ledger line.
inline constexpr std::array<std::string_view, 10> orderByPlace = {
    "RowNo", "cWhCode", "cDepCode", "cInvCode", "cBatchia", "cFXCode", "cAmoCode", "cFxCName", "iState", "autoid"};
// By the day and the ledger line, then by cost item and expense item.
inline constexpr std::array<std::string_view, 4> orderByLine = {"dKeepDate", "AutoID", "cfxCode", "cAmoID"};

// Within a document type by date, as documents are filed: type, day, number, ledger line, then cost item.
inline constexpr std::array<std::string_view, 8> orderByDocument = {"cVouType", "dVouDate", "cVouCode", "AutoID",
                                                                    "cFXCode",  "cAmoCode", "cAmoID",   "cFxCName"};
// By place and inventory, within these by state and day.
inline constexpr std::array<std::string_view, 10> orderByInventory = {
    "cWhCode", "cDepCode", "cInvCode", "cBatchia", "iState", "dKeepDate", "autoid", "cFXCode", "cAmoCode", "cFxCName"};

// As a ledger numbers its lines; the rows of a line by batch and free items, then by class and cost item.
inline constexpr std::array<std::string_view, 14> orderByLedger = {"RowNo",  "cBatchia", "cFree1",   "cFree2", "cFree3",
                                                                   "cFree4", "cFree5",   "cFree6",   "cFree7", "cFree8",
                                                                   "cFree9", "cFree10",  "cfxCCode", "cfxCode"};

enum class Layout {
  summary,   // sums by cost item, the states across
  tree,      // class, cost item, place and inventory, nested, with sums at every level
  lines,     // the rows of the result table
  ledger,    // receipts, issues and balance in columns, with month sums and a running balance
  columnar,  // one line a document, cost items across
  vouchers,  // documents with their lines and what these are made of
  pivot,     // sums by what the reader puts down and across; asked for by its own option, no report lists it
};

// "ledger".
std::string_view layoutName(Layout layout);
// What a heading calls it.
Caption layoutCaption(Layout layout);
// Nothing when there is none of that name.
std::optional<Layout> layoutNamed(std::string_view name);

// A level of the tree below the classes: columns of the result table.
struct TreeLevel {
  std::string_view code;
  std::string_view name;
};
// The tree of both summary reports: cost item or class, by expense item this one, too, then place and inventory.
std::vector<TreeLevel> summaryTreeLevels(std::string_view mode);

}  // namespace quillon::workbench
