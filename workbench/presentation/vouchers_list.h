// Documents, their lines and the parts of these as one nested list, whose columns all three share: an accountant reads down
// a column of codes and along to the figures, and a sheet of A4 landscape has room for it.
//
// Code and name say what a row is: number and type of the document; code and name of the inventory; those of the cost item.
// They are the only keys and come first, so that headings shared by columns stay whole.
// Date, warehouse and customer or vendor have columns, since documents are looked up by them, and so has the unit, without
// which a quantity says nothing. The date is the document's; a line that was posted on another day has its own. Business
// type, receipt/issue type, department, voucher and digest of the document, model, batch and free items of a line and what
// a part stands for are together in one column of words: each concerns one of the three kinds, and a column of its own
// would be empty on most rows. Business and receipt/issue type are left out where the document's type or digest say them,
// the cost centre, which goes with the department, and the type's code always. What is as long as that comes behind the
// figures, so that a window that is too narrow for all has these beside the names.
// A part's unit cost and amount stand in the columns of its line's receipt or issue: they are of the same measure and add
// up to the line beneath which they stand. Three columns more for them would not fit on the sheet. Only the usage per
// unit, which a line does not have, has its own.
#pragma once

#include <span>
#include <string_view>

#include "workbench/catalogue/report_columns.h"
#include "workbench/presentation/report_document.h"
#include "workbench/presentation/view.h"

namespace quillon::workbench {

// A column that `vouchers` below has besides: 1 on parts of a receipt, 0 on those of an issue.
inline constexpr std::string_view receiptFlagColumn = "bRdFlag";

// `vouchers` is the layout with one column a field, its lines without what their document has. `filled` are the columns of
// the result table that hold something: figures that are not among them are left out.
View vouchersList(View vouchers, const ReportDocument& heading, std::span<const ReportColumn> filled);

}  // namespace quillon::workbench
