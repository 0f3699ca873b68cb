// The rows of a detail ledger as a reader sees them: told apart by what they are, and with what belongs to a ledger
// line as a whole written once, however many cost items the line has.
#pragma once

#include <memory>
#include <vector>

#include "workbench/presentation/report_document.h"
#include "workbench/presentation/result_table.h"

namespace quillon::workbench {

struct LedgerRow {
  enum class Kind { opening, receipt, issue, monthBalance };

  Kind kind = Kind::opening;
  bool beginsLine = true;           // false: another cost item of the row before
  std::vector<tsql::Value> values;  // one for each of ledgerColumns; null where they repeat the row before
};

inline bool isBalance(LedgerRow::Kind kind) {
  return kind == LedgerRow::Kind::opening || kind == LedgerRow::Kind::monthBalance;
}

// The document's columns, and the kind of the row behind the first.
std::vector<ReportColumn> ledgerColumns(const ReportDocument& document);

class LedgerRows {
 public:
  // Both must outlive this. The table has rows, and so the columns of a ledger.
  LedgerRows(const ReportDocument& document, const ResultTable& table);

  // False after the last row. The row stays until the next call.
  bool next();
  const LedgerRow& row() const { return row_; }

 private:
  const ReportDocument& document_;
  std::unique_ptr<tsql::Cursor> cursor_;
  std::vector<tsql::Value> lineValues_;  // of the row before
  LedgerRow row_;
};

}  // namespace quillon::workbench
