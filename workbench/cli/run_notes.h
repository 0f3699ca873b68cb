// What a command tells of a report while it is made.
#pragma once

#include <ostream>

#include "workbench/cli/progress_line.h"
#include "workbench/runs/run_observer.h"

namespace quillon::workbench {

class RunNotes final : public RunObserver {
 public:
  // `notes` gets what the user must know besides the report, `progress` shows the running statement, `explanation` gets
  // each statement with its time and row count. The latter two may be null.
  // `language` is that of the explanation.
  explicit RunNotes(std::ostream& notes, Language language, ProgressLine* progress = nullptr,
                    std::ostream* explanation = nullptr)
      : notes_(notes), language_(language), progress_(progress), explanation_(explanation) {}

  void started(int number, std::string_view sql) override;
  void finished(int number, std::string_view sql, double seconds, std::int64_t rows) override;
  void failed(int number, const StatementFailure& failure) override;
  void told(int number, const odbc::Diagnostic& message) override;
  void rewritten(int number, std::string_view sql) override;
  void shown(std::string_view message) override;
  void noted(std::string_view line) override;
  void ended(int statements, double secondsInStatements, double seconds) override;

 private:
  void clearProgress();

  std::ostream& notes_;
  Language language_;
  ProgressLine* progress_;
  std::ostream* explanation_;
};

}  // namespace quillon::workbench
