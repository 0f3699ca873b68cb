#include "workbench/cli/stop_signals.h"

#include "workbench/messages/program.h"
#include "workbench/tsql/values/stop.h"

#ifdef _WIN32
#include <windows.h>

#include <io.h>

#include <cstdio>
#include <iostream>
#else
#include <array>
#endif

#include <atomic>
#include <csignal>

namespace quillon::workbench {

namespace {

constexpr int statusOfSignals = 128;

// What came first; 0: nothing yet.
std::atomic<int> cause{0};
static_assert(std::atomic<int>::is_always_lock_free);

#ifdef _WIN32

constexpr int interrupted = 2, terminated = 15;  // as elsewhere

BOOL WINAPI stopOnEvent(DWORD event) {
  const bool typed = event == CTRL_C_EVENT || event == CTRL_BREAK_EVENT;
  int none = 0;
  if (!cause.compare_exchange_strong(none, typed ? interrupted : terminated)) return FALSE;
  tsql::requestStop();
  // Windows ends the program when this returns, or after five seconds: it needs them to put things away.
  constexpr DWORD longest = 5'000;
  if (!typed) Sleep(longest);
  return TRUE;
}

#else

// Errors that a signal causes must not look like errors of what it interrupted.
extern "C" void stopOnSignal(int signal) {
  int none = 0;
  if (!cause.compare_exchange_strong(none, signal) && signal != SIGPIPE) {
    std::signal(signal, SIG_DFL);
    std::raise(signal);
  }
  tsql::requestStop();
}

#endif

}  // namespace

#ifdef _WIN32

void watchStopSignals() {
  SetConsoleCtrlHandler(stopOnEvent, TRUE);
}

std::optional<StopCause> stopCause() {
  switch (cause) {
    case 0:
      break;
    case interrupted:
      return StopCause{.exitStatus = statusOfSignals + interrupted, .name = messages::interruptKey.caption()};
    default:
      return StopCause{.exitStatus = statusOfSignals + terminated, .name = messages::windowClosed.caption()};
  }
  // Nothing tells of a closed pipe but the write that fails.
  const auto output = reinterpret_cast<HANDLE>(_get_osfhandle(_fileno(stdout)));
  if (std::cout.bad() && GetFileType(output) == FILE_TYPE_PIPE) return StopCause{};
  return std::nullopt;
}

#else

void watchStopSignals() {
  for (const int signal : std::array{SIGINT, SIGTERM, SIGHUP, SIGPIPE}) {
    struct sigaction action {};
    // A program that was started with SIGHUP or SIGINT ignored, as nohup does, goes on.
    if (sigaction(signal, nullptr, &action) != 0 || (signal != SIGPIPE && action.sa_handler == SIG_IGN)) continue;
    action = {};
    action.sa_handler = stopOnSignal;
    sigemptyset(&action.sa_mask);
    sigaction(signal, &action, nullptr);
  }
}

std::optional<StopCause> stopCause() {
  const int signal = cause;
  switch (signal) {
    case 0:
      return std::nullopt;
    case SIGPIPE:
      return StopCause{};
    case SIGINT:
      return StopCause{.exitStatus = statusOfSignals + signal, .name = messages::interruptKey.caption()};
    case SIGHUP:
      return StopCause{.exitStatus = statusOfSignals + signal, .name = messages::terminalClosed.caption()};
    default:
      return StopCause{.exitStatus = statusOfSignals + signal, .name = messages::askedToEnd.caption()};
  }
}

#endif

void forgetStopCause() {
  tsql::forgetStop();
  cause = 0;
}

}  // namespace quillon::workbench
