#include "workbench/tsql/engine/statement_pool.h"

#include <sqlite3.h>

#include <algorithm>
#include <utility>

namespace quillon::tsql {

StatementPool::Loan::Loan(std::weak_ptr<StatementPool> pool, std::string sql, std::unique_ptr<Prepared> statement)
    : pool_(std::move(pool)), sql_(std::move(sql)), statement_(std::move(statement)) {}

StatementPool::Loan::~Loan() {
  if (!statement_) return;
  if (const auto pool = pool_.lock()) pool->give(std::move(sql_), std::move(statement_));
}

StatementPool::Loan StatementPool::take(std::string_view sql) {
  const auto found = std::ranges::find(kept_, sql, &Kept::sql);
  if (found == kept_.end()) return {weak_from_this(), std::string(sql), std::make_unique<Prepared>(database_, sql)};
  Kept kept = std::move(*found);
  kept_.erase(found);
  return {weak_from_this(), std::move(kept.sql), std::move(kept.statement)};
}

void StatementPool::give(std::string sql, std::unique_ptr<Prepared> statement) noexcept {
  statement->reset();
  sqlite3_clear_bindings(statement->handle());
  try {
    kept_.reserve(mostStatements + 1);
    kept_.push_back({std::move(sql), std::move(statement)});
  } catch (const std::bad_alloc&) {
    return;  // then it is read again next time
  }
  if (kept_.size() > mostStatements) kept_.erase(kept_.begin());
}

}  // namespace quillon::tsql
