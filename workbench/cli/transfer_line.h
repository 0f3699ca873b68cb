// The line that shows how far an account is that is made, taken elsewhere or compared.
#pragma once

#include <memory>

#include "workbench/account/sample.h"
#include "workbench/account/transfer_progress.h"
#include "workbench/cli/progress_line.h"

namespace quillon::workbench {

// On standard error where that is a terminal, otherwise nowhere.
class TransferLine {
 public:
  explicit TransferLine(Language language);

  // Rows are moved or compared now. The line outlives what is given.
  account::TransferProgress ofRows();
  // A sample's ledger lines are made now. The line outlives what is given.
  account::Progress ofLedgerLines(std::int64_t total);
  // Takes the line away for good: before anything is written to standard output.
  void finish() { line_.reset(); }

 private:
  std::unique_ptr<ProgressLine> line_;
};

}  // namespace quillon::workbench
