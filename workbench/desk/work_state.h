// How far work is that the desk does in the background: a run, a check of the account.
#pragma once

#include <string_view>

namespace quillon::workbench::desk {

enum class WorkState { running, done, failed, stopped };

// As the interface says it: "running", "done", "failed", "stopped".
constexpr std::string_view nameOf(WorkState state) {
  switch (state) {
    case WorkState::running:
      return "running";
    case WorkState::done:
      return "done";
    case WorkState::failed:
      return "failed";
    case WorkState::stopped:
      break;
  }
  return "stopped";
}

}  // namespace quillon::workbench::desk
