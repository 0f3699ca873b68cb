// The detail ledger in columns (多栏账): one line a document, its cost items or their classes across.
//
// A cost item has one column, with a sign, and not one each for receipts, issues and balance: with twenty cost items
// that would be sixty columns, of which a line fills a third. A receipt stands there as it is, an issue with a minus, so
// that each column can be footed: the opening balance and the lines above make the balance at the month's end. What a
// month received, what it issued and what was left then stand in three rows of their own beneath its lines.
#pragma once

#include "workbench/presentation/layout_request.h"
#include "workbench/presentation/ledger_sheet.h"

namespace quillon::workbench {

// As ledgerView. What falls to no cost item, of a line that is not broken down all of it, has a column of its own where
// there is any: the columns across always add up to the line.
//
// Where the table has a balance for the end of a month, it is compared with the running one as a whole and by cost item;
// by how much the table has more stands in a row of its own (`difference`).
View columnarView(const LayoutRequest& request, const ReportDocument& heading, const LedgerRequest& ledger);

}  // namespace quillon::workbench
