// Ending a statement that a server is at work on.
#pragma once

#include <thread>

#include "workbench/odbc/api.h"

namespace quillon::odbc {

// While it lives, a request to stop (tsql::requestStop) cancels the statement, whatever call on it the server lets wait.
class CancelOnStop {
 public:
  // `statement` stays allocated as long as this.
  explicit CancelOnStop(SQLHANDLE statement);

 private:
  std::jthread watch_;
};

}  // namespace quillon::odbc
