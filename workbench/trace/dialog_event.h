// What happens in a traced dialog.
#pragma once

#include <optional>
#include <string>

namespace quillon::workbench {

// An event: "init", "view", "click", "year", "grade", "change:KEY", "change:KEY=VALUE",
// "set:KEY=VALUE". Without a value, `value` is empty.
struct DialogEvent {
  std::string kind;
  std::string key;
  std::optional<std::string> value;
};

// Reads an event. Throws UserError that says which there are.
DialogEvent dialogEvent(const std::string& text);

}  // namespace quillon::workbench
