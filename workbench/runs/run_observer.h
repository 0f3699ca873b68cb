// Who watches a report being made: the command that shows its progress, the desk that keeps its statements.
#pragma once

#include <cstdint>
#include <string_view>

#include "workbench/platform/account_session.h"

namespace quillon::workbench {

// Every member is called on the run's thread. Statements are counted from 1.
class RunObserver {
 public:
  virtual ~RunObserver() = default;

  virtual void started(int /*number*/, std::string_view /*sql*/) {}
  // `rows` counts what the statement gave or changed; -1 when it counts none.
  virtual void finished(int /*number*/, std::string_view /*sql*/, double /*seconds*/, std::int64_t /*rows*/) {}
  virtual void failed(int /*number*/, const StatementFailure& /*failure*/) {}
  // A message of the server about the statement that runs, such as a warning.
  virtual void told(int /*number*/, const odbc::Diagnostic& /*message*/) {}
  // The statement that runs goes to the server in this form, another one than the report's.
  virtual void rewritten(int /*number*/, std::string_view /*sql*/) {}

  // What the report or its dialog shows the user, on one line.
  virtual void shown(std::string_view message) = 0;
  // What the user must know besides, on one line.
  virtual void noted(std::string_view line) = 0;

  // The report came to its end, or stopped: so many statements, with their time and that of the whole run.
  virtual void ended(int /*statements*/, double /*secondsInStatements*/, double /*seconds*/) {}
};

}  // namespace quillon::workbench
