#include "workbench/odbc/cancellation.h"

#include <chrono>
#include <condition_variable>
#include <mutex>
#include <stop_token>

#include "workbench/tsql/values/stop.h"

namespace quillon::odbc {

// A signal handler may do no more than raise a flag, so somebody has to look at it while the driver waits.
CancelOnStop::CancelOnStop(SQLHANDLE statement)
    : watch_([statement, request = tsql::StopScope::current()](const std::stop_token& over) {
        const tsql::StopScope scope(request);
        constexpr std::chrono::milliseconds pause(50);
        std::mutex mutex;
        std::condition_variable_any woken;
        std::unique_lock lock(mutex);
        while (!woken.wait_for(lock, over, pause, [&over] { return over.stop_requested(); })) {
          // Again and again: a driver takes it only while it waits for the server.
          if (tsql::stopRequested()) SQLCancel(statement);
        }
      }) {}

}  // namespace quillon::odbc
