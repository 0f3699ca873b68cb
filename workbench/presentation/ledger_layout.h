// The detail ledger as it is kept on paper: a line for each receipt and issue, with the balance running from the opening
// one, sums after each month, and the closing balance last.
#pragma once

#include "workbench/presentation/layout_request.h"
#include "workbench/presentation/ledger_sheet.h"

namespace quillon::workbench {

// `heading` has the language and the account's decimals. The arrangement is not looked at: what a ledger shows between
// its opening and its closing balance is arranged afterwards.
//
// Rows: the opening balance; the lines of each month, under them the month's receipts and issues and those since the
// beginning, each with the balance at that point. The closing balance is the view's total.
//
// Where the table has a balance for the end of a month, it is compared with the running one, batch by batch and free
// item by free item. By how much the table has more stands in a row of its own (`difference`) behind the month's sums,
// that of the closing balance before the closing row.
// Throws tsql::SqlError.
View ledgerView(const LayoutRequest& request, const ReportDocument& heading, const LedgerRequest& ledger);

}  // namespace quillon::workbench
