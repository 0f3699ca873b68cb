// The voucher report by document: each document with its lines, beneath each line what it is made of. Rows are read from
// the account as they are shown; only one document at a time is held in memory.
#pragma once

#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "workbench/presentation/arrangement.h"
#include "workbench/presentation/report_document.h"
#include "workbench/presentation/result_table.h"
#include "workbench/presentation/view.h"

namespace quillon::workbench {

// The voucher type by its name, which the result table does not have.
inline constexpr std::string_view voucherTypeNameColumn = "cVouTypeName";

struct VouchersRequest {
  // A T-SQL condition over the result table's columns and cVouTypeName.
  std::string where = "1 = 1";
  // Before the documents' own order. A document is shown as often as its lines then come together. Columns of the parts
  // order the parts of a line.
  std::vector<SortKey> sort = {};
  // Subtotals of receipts and issues by these, before `sort`.
  std::vector<std::string> groupBy = {};
  // What all lines of a document have alike stands on these, too, and not on the document alone.
  bool everyKey = false;
};

// Whether a column of the result table says something of a line's part: its cost item, expense item and figures.
bool isOfPart(std::string_view column);

// The columns that the layout can show of those in `columns`, and the voucher type's name before them.
std::vector<ReportColumn> vouchersColumns(std::span<const ReportColumn> columns);

// Documents are rows of kind `group` with the amounts that they received and issued, ledger lines rows of kind `line`,
// their parts rows of kind `detail` with usage per unit, unit cost and amount. A line that has no cost item has one part
// of that name with the line's own unit cost and amount. What the lines of a document have alike stands on the document.
//
// The figures of a line are the ledger's. The report repeats them on each row of the line, as a multiple where it put
// several parts into one row.
//
// `document` says which columns are shown; `table` must outlive the view. Throws std::invalid_argument when it is to be
// grouped by a column of the parts, tsql::SqlError for the condition and the names.
View vouchersView(const ResultTable& table, const ReportDocument& document, const VouchersRequest& request = {});

}  // namespace quillon::workbench
