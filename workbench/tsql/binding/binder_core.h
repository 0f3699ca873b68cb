// What the binder's own files share.
#pragma once

#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "workbench/tsql/binding/binder.h"

namespace quillon::tsql {

// One SELECT, bound but not yet put together.
struct Binder::Core {
  std::unique_ptr<Scope> scope = std::make_unique<Scope>();
  std::vector<Fragment> items;
  std::vector<OutputColumn> columns;
  int identityItem = -1;
  std::string from, where, having;
  std::vector<std::string> groupBy;
  std::vector<std::string> order;
  std::vector<RowOrdering::Key> orderKeys;  // the same, where the core has an order of its own
  bool distinct = false;
  std::optional<std::int64_t> top;
  bool oneRowAtMost = false;
};

// The source of a table in a From clause; null: it is a derived table or a join.
const Source* sourceOf(const TableSource& table, const Scope& scope);
// The table as From names it.
std::string tableAs(const Source& source);

}  // namespace quillon::tsql
