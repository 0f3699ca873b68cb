// The terminals that the program talks to.
#pragma once

#include <cstddef>
#include <optional>

#include "workbench/platform/language.h"
#include "workbench/presentation/text_table.h"

namespace quillon::workbench {

// A terminal as output meets it.
struct Screen {
  std::optional<std::size_t> columns = std::nullopt;  // none: it does not say
  std::size_t lines = 24;
  bool emphasis = false;  // it shows bold and dim, and the user wants it: NO_COLOR is not set
  bool dumb = false;      // it only writes one line after the other (TERM is "dumb")
};

// Standard output's terminal; none when standard output is no terminal. COLUMNS, where it is set, says how wide it is.
std::optional<Screen> outputScreen();
// How many cells a line of standard error's terminal has; 80 when it does not say.
std::size_t errorColumns();

bool inputIsTerminal();
// Whether standard output goes into a file, which nobody watches.
bool outputIsFile();

// How tables come to `screen`; where there is none, and with `wide`, they are as wide as they need to be.
TableStyle tableStyle(const std::optional<Screen>& screen, bool wide, Language language);

}  // namespace quillon::workbench
