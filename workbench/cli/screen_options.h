// How a command shows tables on a terminal.
#pragma once

#include <CLI/CLI.hpp>
#include <optional>
#include <ostream>

#include "workbench/cli/pager.h"
#include "workbench/cli/terminal.h"

namespace quillon::workbench {

struct ScreenOptions {
  std::optional<Screen> screen = std::nullopt;  // of the output; none: it is no terminal
  bool wide = false;                            // tables as wide as they need to be, whatever the screen is
  bool pager = true;                            // long output on a screen goes through the user's pager

  TableStyle style(Language language) const { return tableStyle(screen, wide, language); }
};

// Adds --wide and --no-pager.
inline void addScreenOptions(CLI::App& command, ScreenOptions& options) {
  command.add_flag("--wide", options.wide, "Show all of a table on a terminal that is too narrow for it");
  command.add_flag("!--no-pager", options.pager, "Do not show what is longer than the terminal in the pager (PAGER)");
}

// Lets `write` write to `out`, a page at a time where the screen is too short. False when not everything could be
// written. Throws what `write` throws, with what it wrote by then shown, and UserError without the pager that PAGER names.
template <typename Write>
bool writePaged(std::ostream& out, const ScreenOptions& options, const Write& write) {
  PagedOutput paged(out, {.screen = options.screen, .pager = options.pager});
  write(paged.stream());
  return paged.finish();
}

}  // namespace quillon::workbench
