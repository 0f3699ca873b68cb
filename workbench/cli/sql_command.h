// `quillon sql`: runs a script of T-SQL batches on an account.
#pragma once

#include <istream>
#include <ostream>
#include <string>

#include "workbench/tsql/values/database.h"

namespace CLI {
class App;
}

namespace quillon::workbench {

enum class SqlFormat { table, json };

// Runs the batches of `script` (UTF-8), which a line holding only `go` ends, in any letter case. The error of a batch
// ends that batch and not the run.
//   json   one object a line: {"columns":[["name","type"]],"rows":[[...]]} for a result set, {"rowsAffected":N},
//          {"error":{"number":N,"message":"..."}}
//   table  an aligned table and the row counts; errors go to `errors` as one line each, with the line of the script, which
//          they call `name`
// Gives the count of batches that failed.
int runScript(tsql::Database& account, std::istream& script, const std::string& name, SqlFormat format,
              std::ostream& out, std::ostream& errors);

// Adds the command. In table format a failed batch makes the exit status 1; in JSON errors are part of the answer, so
// the exit status only tells whether the script could be run at all.
void addSqlCommand(CLI::App& app);

}  // namespace quillon::workbench
