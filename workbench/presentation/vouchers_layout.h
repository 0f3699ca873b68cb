// The voucher report by document: each document with its lines, beneath each line what it is made of. Rows are read from
// the account as they are shown; only one document at a time is held in memory.
#pragma once

#include <string_view>
#include <vector>

#include "workbench/presentation/layout_request.h"
#include "workbench/presentation/report_document.h"
#include "workbench/presentation/view.h"

namespace quillon::workbench {

// The voucher type by its name, which the result table does not have.
inline constexpr std::string_view voucherTypeNameColumn = "cVouTypeName";

// Whether a column of the result table says something of a line's part: its cost item, expense item and figures.
bool isOfPart(std::string_view column);

// The columns by which the layout's rows can be chosen, ordered and grouped: those that the table has, and cVouTypeName.
std::vector<ReportColumn> vouchersColumns(const LayoutRequest& request);
// Those that it can show: these, and the amount of a part, whether it was received or issued.
std::vector<ReportColumn> vouchersShownColumns(const LayoutRequest& request);

enum class VouchersForm {
  list,         // a nested list whose columns documents, lines and parts share (vouchers_list.h), for people
  fields,       // one column a field; what the lines of a document have alike stands on the document
  keyedFields,  // the same, and what stands on a document stands on its lines and parts, too, for programs
};

// Documents are rows of kind `group` with the amounts that they received and issued, ledger lines rows of kind `line`,
// their parts rows of kind `detail` with usage per unit, unit cost and amount. A line that has no cost item has one part
// of that name with the line's own unit cost and amount.
//
// The figures of a line are the ledger's. The report repeats them on each row of the line, as a multiple where it put
// several parts into one row.
//
// The arrangement is carried out in the database. Conditions choose rows of the table: a line with its own figures is
// shown where one of its parts is chosen. Documents are ordered by columns of theirs and of their lines and shown as
// often as their lines then come together; columns of the parts order the parts of a line. Groups have subtotals of
// receipts and issues. Without a column of the parts no parts are shown. Columns, order, groups and allColumns are of the
// fields: with any of them the list comes as fields.
//
// `heading` has the language and the account's decimals. The view reads the table's account, which must outlive it.
// Throws UserError for conditions and for groups by a column of the parts, tsql::SqlError.
View vouchersView(const LayoutRequest& request, const ReportDocument& heading, VouchersForm form);

}  // namespace quillon::workbench
