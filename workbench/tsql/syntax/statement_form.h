// A batch with its constants taken out: statements that differ in their constants alone have one form, and what was made
// of one of them serves for the others.
#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "workbench/tsql/values/value.h"

namespace quillon::tsql {

// A whole number from 2 to 999,999,999 or a national text (N'..'). Of the others, 0 and 1 tell SQLite's planner something
// of their own, and of the rest the type depends on more than their length.
struct Constant {
  std::size_t begin = 0;  // where its token stands in the batch, in bytes
  std::size_t end = 0;
  Value value;
};

struct StatementForm {
  // The batch with a mark for each constant. The mark says the constant's type, a text's width included; so text and
  // constants together are as good as the batch.
  std::string text;
  std::vector<Constant> constants;  // in their order
};

// Nothing for a batch that is long, that has comments, or that is no T-SQL: it is read each time.
std::optional<StatementForm> formOf(std::string_view batch);

}  // namespace quillon::tsql
