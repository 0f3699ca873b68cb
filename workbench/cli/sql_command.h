// `quillon sql`: runs T-SQL batches on an account, those of a script or those that are typed.
#pragma once

#include <istream>
#include <ostream>
#include <string>

#include "workbench/cli/sql_output.h"
#include "workbench/tsql/values/database.h"

namespace CLI {
class App;
}

namespace quillon::workbench {

// Runs the batches of `script` (UTF-8), which a line holding only `go` ends, in any letter case, and prints what they give
// (sql_output.h). The error of a batch ends that batch and not the run; it calls the script `name`.
// Gives the count of batches that failed.
int runScript(tsql::Database& account, std::istream& script, const std::string& name, SqlFormat format,
              std::ostream& out, std::ostream& errors, const TableStyle& style = {});

// Adds the command. A failed batch makes the exit status 1; in JSON errors are part of the answer, so the exit status only
// tells whether the script could be run at all. Without a script, a terminal becomes a prompt (sql_prompt.h).
void addSqlCommand(CLI::App& app);

}  // namespace quillon::workbench
