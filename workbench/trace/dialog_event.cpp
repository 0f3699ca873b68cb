#include "workbench/trace/dialog_event.h"

#include <algorithm>
#include <array>

#include "workbench/messages/trace.h"
#include "workbench/platform/user_error.h"

namespace quillon::workbench {

DialogEvent dialogEvent(const std::string& text) {
  constexpr std::array plain{"init", "view", "click", "year", "grade"};
  if (std::ranges::find(plain, text) != plain.end()) return {.kind = text, .key = {}, .value = {}};
  const std::size_t colon = text.find(':');
  if (colon != std::string::npos) {
    DialogEvent event{.kind = text.substr(0, colon), .key = text.substr(colon + 1), .value = {}};
    if (const std::size_t equals = event.key.find('='); equals != std::string::npos) {
      event.value = event.key.substr(equals + 1);
      event.key.resize(equals);
    }
    const bool complete = event.kind == "change" || (event.kind == "set" && event.value);
    if (complete && !event.key.empty()) return event;
  }
  throw UserError(messages::noSuchEvent(text));
}

}  // namespace quillon::workbench
