// What batches of statements give, as `quillon sql` prints it.
#pragma once

#include <memory>
#include <ostream>
#include <string>

#include "workbench/presentation/text_table.h"
#include "workbench/tsql/values/database.h"

namespace quillon::workbench {

// json   one object a line: {"columns":[["name","type"]],"rows":[[...]]} for a result set, {"rowsAffected":N},
//        {"error":{"number":N,"message":"..."}}
// csv    each result set as a report's CSV is: the columns' names, then a record a row, CR LF; an empty line between two.
//        Errors as with a table.
// table  an aligned table and the row counts; errors go elsewhere, as one line each with the line of the script
enum class SqlFormat { table, csv, json };

class SqlOutput : public tsql::ResultSink {
 public:
  // The batch that failed begins in line `firstLine` of the script.
  virtual void error(const tsql::SqlError& error, int firstLine) = 0;
};

// Errors call the script `script`. The streams outlive the output.
std::unique_ptr<SqlOutput> makeSqlOutput(SqlFormat format, const std::string& script, std::ostream& out,
                                         std::ostream& errors, const TableStyle& style);

}  // namespace quillon::workbench
