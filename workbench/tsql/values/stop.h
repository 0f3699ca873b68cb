// Ending what runs before its time: the person at the program pressed Ctrl-C, or the system asks it to end.
#pragma once

#include "workbench/tsql/values/sql_error.h"

namespace quillon::tsql {

// Asks everything that runs in this process to end. May be called on any thread and by a signal handler.
void requestStop() noexcept;
bool stopRequested() noexcept;  // false while an IgnoreStop lives
// Takes the request back, for a program that goes on.
void forgetStop() noexcept;

// What statements, and loops that ask endIfStopped(), throw after requestStop().
class Stopped : public SqlError {
 public:
  Stopped();
};

void endIfStopped();

// For what has to be put away after a stop: while it lives, in whatever thread, statements run as if nobody had asked.
class IgnoreStop {
 public:
  IgnoreStop() noexcept;
  IgnoreStop(const IgnoreStop&) = delete;
  IgnoreStop& operator=(const IgnoreStop&) = delete;
  ~IgnoreStop();
};

}  // namespace quillon::tsql
