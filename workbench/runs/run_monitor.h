// Watches the sessions of a report run: counts its statements, passes them on to an observer, and keeps what went wrong.
#pragma once

#include <exception>
#include <optional>
#include <string>

#include "workbench/messages/message.h"
#include "workbench/platform/account_session.h"
#include "workbench/runs/run_observer.h"

namespace quillon::workbench {

// Errors of SQL in the catalogue's sentences around their own words: "error 207 in line 1 of the batch: Invalid column name
// 'x'."; without number and line what has none.
Message errorText(int number, int line, std::string_view message);
// The same with the statement behind it, cut to a line.
Message errorText(const StatementFailure& failure);
// What went wrong, for a person: of a statement as above, of anything else its own text.
Message errorText(const std::exception& error);

class RunMonitor final : public SessionMonitor {
 public:
  // `observer` outlives this.
  explicit RunMonitor(RunObserver& observer) : observer_(observer) {}

  void opened() override { open_ = true; }
  void started(std::string_view sql) override;
  void finished(std::string_view sql, double seconds, std::int64_t rows) override;
  void failed(const StatementFailure& failure) override;
  void told(const odbc::Diagnostic& message) override;
  void rewritten(std::string_view sql) override;
  void closed() override { open_ = false; }

  // True when the run left its session open, the sign of a build that stopped.
  bool leftOpen() const { return open_; }
  const std::optional<StatementFailure>& failure() const { return failure_; }
  double secondsInStatements() const { return seconds_; }
  int statements() const { return statements_; }

 private:
  RunObserver& observer_;
  std::optional<StatementFailure> failure_;
  bool open_ = false;
  double seconds_ = 0;
  int statements_ = 0;
};

}  // namespace quillon::workbench
