// The scalar functions of T-SQL by the names that statements call them: how many arguments each takes, what type it
// gives, and the SQLite expression that computes it. What that expression calls stands in engine/value_functions and
// engine/catalog_functions; the aggregates are in emitter.h.
#pragma once

#include <string>
#include <vector>

#include "workbench/tsql/binding/emitter.h"
#include "workbench/tsql/syntax/ast.h"

namespace quillon::tsql {

// `name` in lower case; `expression` is the call as written, for its date part and for messages. Throws SqlError 195 for
// an unknown name, 174 for a wrong number of arguments, 155 for an unknown date part.
Fragment scalarFunction(const std::string& name, const std::vector<Fragment>& arguments, const Expression& expression);

}  // namespace quillon::tsql
