// The document behind a row of a report, opened as the user of the host platform opens it.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "workbench/platform/voucher_components.h"
#include "workbench/runs/report_run.h"

namespace quillon::workbench {

// The action that opens the source document; every other one opens the general-ledger voucher.
inline constexpr std::string_view sourceDocumentAction = "Vouch";

// The value of a column, found without regard to letter case; nullptr when the row does not have it.
const std::string* valueIn(const RowValues& row, std::string_view column);

// The first row of the report, in its order, that has all the values wanted. Throws UserError when no row has them or there
// is no such column.
RowValues findRow(const MadeReport& report, const RowValues& wanted);

// The first row, likewise, of the ledger line `line` (ViewRow::ledgerLine).
RowValues rowOfLedgerLine(const MadeReport& report, std::int64_t line);

struct OpenedDocuments {
  std::vector<std::string> messages;  // what the user was told
  std::vector<OpenedVoucher> opened;
};

// Acts on the row through the report's class. Throws AutomationError when the class fails.
OpenedDocuments openDocuments(const Report& report, const SignedInAccount& account, Language language,
                              const RowValues& row, const std::string& action);

// A value of a document as a reader has it: quantities with the decimals that they have, but two at least.
std::string shownValue(const VoucherField& field, const std::string& value);

}  // namespace quillon::workbench
