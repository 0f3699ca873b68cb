// What both layouts of a detail ledger have alike: the columns that say which row it is, the words of rows that are no
// lines, and how figures are put into cells.
#pragma once

#include <cstddef>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "frame/platform.h"
#include "frame/session.h"
#include "workbench/presentation/ledger_balance.h"
#include "workbench/presentation/ledger_book.h"
#include "workbench/presentation/report_document.h"
#include "workbench/presentation/view.h"

namespace quillon::workbench {

// With what a ledger begins: what was before is its opening balance.
struct LedgerBeginning {
  int month = 1;         // of the year
  std::string day = {};  // yyyy-mm-dd, if it is a later day than the month's first
};

// The beginning of a ledger of `year` for the first posting date that was asked for (empty: none), as the report decides
// it: not before cost items begin. Throws AutomationError when the account does not know the month, or `from` is no date.
LedgerBeginning ledgerBeginning(int year, const std::string& from, Login& login, Session& session);

// What is asked of a ledger's layout.
struct LedgerRequest {
  LedgerBeginning beginning = {};
  Breakdown breakdown = Breakdown::costItem;  // columnar: what stands across
  bool parts = false;                         // ledger: the cost items of each line beneath it, as details
};

// Whether a ledger's filter item cCaType asks for classes.
constexpr Breakdown breakdownOf(std::string_view caType) {
  return caType == "成本项目" ? Breakdown::costItem : Breakdown::costItemClass;
}

class LedgerSheet {
 public:
  // `book` and `document` outlive this; `known` are the columns that a ledger may have.
  LedgerSheet(const LedgerBook& book, const ReportDocument& document, std::span<const ReportColumn> known,
              bool allColumns);

  // Month, date, voucher, document and digest; warehouse, batch and free items where they vary.
  const std::vector<ViewColumn>& columns() const { return columns_; }
  // Columns of the table that hold something and have no place here.
  std::size_t columnsLeftOut() const { return leftOut_; }

  // The cells of these columns. A line that has no digest yet is called by its receipt/issue type.
  std::vector<tsql::Value> lineCells(const LedgerLine& line) const;
  std::vector<tsql::Value> namedCells(const std::string& name, std::optional<int> month = {},
                                      std::optional<std::size_t> group = {}) const;

  // Sums with the decimals of their column.
  tsql::Value quantity(const ExactSum& sum) const;
  tsql::Value amount(const ExactSum& sum) const;
  tsql::Value unitCost(const Figures& figures) const;

  std::string openingName() const;
  std::string closingName() const;
  std::string monthEndDifferenceName() const;
  std::string closingDifferenceName() const;
  std::string_view text(const Caption& caption) const { return document_.text(caption); }

 private:
  struct Source {
    enum class Kind { month, digest, cell };
    Kind kind = Kind::cell;
    std::optional<std::size_t> cell = {};   // of a line
    std::optional<std::size_t> group = {};  // of a group, where a row has one
  };

  void put(std::span<const ReportColumn> known, std::string_view name, Source::Kind kind, bool key);
  void putVarying(std::span<const ReportColumn> known);
  bool varies(std::optional<std::size_t> cell, std::optional<std::size_t> group) const;
  bool has(std::string_view name) const;

  const LedgerBook& book_;
  const ReportDocument& document_;
  std::vector<ViewColumn> columns_;
  std::vector<Source> sources_;
  std::optional<std::size_t> type_;  // the cell of the receipt/issue type
  std::size_t leftOut_ = 0;
};

// What receipts and issues are summed since: 本年累计 where the ledger begins with the year's first month, else the month
// or the day with which it begins.
std::string sinceBeginningName(const LedgerBeginning& beginning, Language language);

}  // namespace quillon::workbench
