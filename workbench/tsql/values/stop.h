// Ending what runs before its time: the person at the program pressed Ctrl-C, or the system asks it to end.
#pragma once

#include "workbench/tsql/values/sql_error.h"

namespace quillon::tsql {

// Asks everything that runs in this process to end. May be called on any thread and by a signal handler.
void requestStop() noexcept;
bool stopRequested() noexcept;
// Takes the request back, for a program that goes on.
void forgetStop() noexcept;

// What statements, and loops that ask endIfStopped(), throw after requestStop().
class Stopped : public SqlError {
 public:
  Stopped();
};

void endIfStopped();

}  // namespace quillon::tsql
