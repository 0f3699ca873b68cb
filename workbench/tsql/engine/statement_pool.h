// Statements that SQLite has read already, of one connection: a statement that comes again is not read again. SQLite
// itself reads one anew when the schema has changed since.
#pragma once

#include <cstddef>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "workbench/tsql/engine/sqlite.h"

struct sqlite3;

namespace quillon::tsql {

class StatementPool : public std::enable_shared_from_this<StatementPool> {
 public:
  static constexpr std::size_t mostStatements = 32;

  // A statement on loan. It goes back into the pool, reset and without parameters, or away when the pool is gone.
  class Loan {
   public:
    Loan(std::weak_ptr<StatementPool> pool, std::string sql, std::unique_ptr<Prepared> statement);
    ~Loan();
    Loan(Loan&&) noexcept = default;
    Loan& operator=(Loan&&) = delete;
    Prepared& operator*() const noexcept { return *statement_; }
    Prepared* operator->() const noexcept { return statement_.get(); }

   private:
    std::weak_ptr<StatementPool> pool_;
    std::string sql_;
    std::unique_ptr<Prepared> statement_;
  };

  explicit StatementPool(sqlite3* database) : database_(database) {}
  // Throws SqlError as Prepared does.
  Loan take(std::string_view sql);
  std::size_t size() const noexcept { return kept_.size(); }

 private:
  struct Kept {
    std::string sql;
    std::unique_ptr<Prepared> statement;
  };
  void give(std::string sql, std::unique_ptr<Prepared> statement) noexcept;

  sqlite3* database_;
  std::vector<Kept> kept_;  // the one that was used last at the end
};

}  // namespace quillon::tsql
