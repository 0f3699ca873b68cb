#include "workbench/cli/transfer_line.h"

#include <iostream>

#include "workbench/cli/standard_streams.h"
#include "workbench/cli/terminal.h"

namespace quillon::workbench {

TransferLine::TransferLine(Language language) {
  if (errorsGoToTerminal()) line_ = std::make_unique<ProgressLine>(std::cerr, errorColumns(), language);
}

account::TransferProgress TransferLine::ofRows() {
  if (!line_) return {};
  line_->countRows();
  return {.rows = [line = line_.get()](std::int64_t done) { line->counted(done); },
          .indexes = [line = line_.get()] { line->makingIndexes(); }};
}

account::Progress TransferLine::ofLedgerLines(std::int64_t total) {
  if (!line_) return {};
  line_->countLedgerLines(total);
  return [line = line_.get()](std::int64_t done, std::int64_t all) {
    line->counted(done);
    // What comes after the last line.
    if (done == all) line->makingIndexes();
  };
}

}  // namespace quillon::workbench
