// The prompt of `quillon sql`: somebody types batches and sees what they give.
#pragma once

#include <optional>
#include <ostream>

#include "workbench/cli/line_editor.h"
#include "workbench/cli/sql_output.h"
#include "workbench/cli/terminal.h"
#include "workbench/tsql/values/database.h"

namespace quillon::workbench {

struct PromptOptions {
  SqlFormat format = SqlFormat::table;
  std::optional<Screen> screen = std::nullopt;  // of `out`; none: what belongs to the conversation goes to `errors`
  bool wide = false;
  bool pager = true;
  Language language = Language::english;
};

// Runs batches, each when a line `go` ends it, and the prompt's own commands (.help lists them) until the user leaves with
// .quit or Ctrl-D. Errors do not end it; Ctrl-C takes away the line that is typed, what was typed before it, or the
// statement that runs. Lines of statements are remembered. Throws tsql::Stopped when something else than Ctrl-C asks the
// program to end.
void runPrompt(tsql::Database& account, LineEditor& editor, std::ostream& out, std::ostream& errors,
               const PromptOptions& options);

}  // namespace quillon::workbench
