// Runs the statements of a batch one after the other.
#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "workbench/tsql/binding/binder.h"
#include "workbench/tsql/engine/catalog.h"
#include "workbench/tsql/engine/engine.h"
#include "workbench/tsql/engine/lone_rows.h"
#include "workbench/tsql/engine/modification.h"
#include "workbench/tsql/engine/statement_pool.h"
#include "workbench/tsql/engine/translation.h"
#include "workbench/tsql/engine/wide_order.h"
#include "workbench/tsql/syntax/ast.h"

struct sqlite3;

namespace quillon::tsql {

class Executor {
 public:
  Executor(sqlite3* database, Catalog& catalog)
      : database_(database), catalog_(catalog), pool_(std::make_shared<StatementPool>(database)) {
    loneRows_.registerFunctions(database);
    matchedRows_.registerFunctions(database);
  }

  // Gives the rows affected by the last statement that counts rows, -1 when none does.
  std::int64_t run(std::string_view batch, ResultSink& sink);
  std::unique_ptr<Cursor> query(std::string_view batch);
  std::vector<Column> describe(std::string_view table);
  std::vector<std::int64_t> orderedRows(std::string_view table, std::string_view where, std::string_view order,
                                        std::optional<std::int64_t> limit);
  std::unique_ptr<Cursor> rowsAt(std::string_view table, std::string_view list, std::vector<std::int64_t> rows);
  std::string translate(std::string_view statement);
  void observe(std::function<void(const StatementReport&)> observer) { observer_ = std::move(observer); }

 private:
  // A statement that runs: where it begins and its text.
  struct Running {
    int line = 0;
    std::string_view sql;
    bool isContainer = false;
  };
  template <typename Action>
  std::int64_t watched(const Running& running, Action action);

  // The rows affected; -1 for a statement that counts none.
  std::int64_t execute(const Statement& statement, std::string_view batch, ResultSink& sink);
  std::int64_t dispatch(const Statement& statement, std::string_view batch, ResultSink& sink);
  std::int64_t select(const Statement& statement, ResultSink& sink);
  static std::int64_t send(Cursor& cursor, ResultSink& sink);
  std::int64_t selectInto(const Statement& statement, const ObjectName& target, bool exactSums);
  std::int64_t modify(const Statement& statement, bool exactSums);
  bool holds(const Expression& condition);
  void createTable(const Statement& statement);
  void createIndex(const Statement& statement);
  void createView(const Statement& statement);
  void createFunction(const Statement& statement);
  void drop(const Statement& statement);
  void dropIndex(const Statement& statement);
  void truncate(const Statement& statement);
  void setIdentityInsert(const Statement& statement);
  bool takesIdentity(const ObjectName& table) const;
  Modification modificationOf(const Statement& statement, Binder& binder) const;
  // Gives a statement its parameters.
  using Bind = std::function<void(Prepared&)>;
  // Runs it, in another of its forms where that is worthwhile; gives the rows affected.
  std::int64_t change(const Modification& statement, const Bind& bind = {});
  // The grouping's forms; gives the rows that were added. Nothing: too few rows are alone.
  std::optional<std::int64_t> insertGroups(const Modification& statement, const Bind& bind);
  // `run`: addComposedRows() or replaceByComposedRows().
  template <typename Run>
  std::optional<std::int64_t> compose(Run run, const RowComposition& composition, const Modification& statement,
                                      const Bind& bind);
  std::int64_t runPlainly(const std::string& sql, const Bind& bind);
  // SQLite's statement, kept for the next time where it has parameters.
  StatementPool::Loan prepared(const std::string& sql, const Bind& bind);
  std::unique_ptr<Cursor> open(const Query& query, bool exactSums);
  // The table whose columns the query shows as they stand; nothing: it shows something else, or reads other tables.
  std::optional<ShownTable> shownTable(const Query& query) const;
  // The same for who reads them one by one.
  std::unique_ptr<Cursor> rowsOf(const Statement& statement);

  // The translation of a batch that is one statement, kept or, where the statement is given, made now; null when there
  // is none.
  std::shared_ptr<const Translation> translation(const std::optional<StatementForm>& form);
  std::shared_ptr<const Translation> translation(const std::vector<StatementPtr>& statements, std::string_view batch,
                                                 const std::optional<StatementForm>& form);
  std::int64_t run(const Translation& translation, const StatementForm& form, std::string_view batch, ResultSink& sink);
  std::unique_ptr<Cursor> rowsOf(const Translation& translation, const StatementForm& form);
  // SQLite's statement, with the constants of the form as its parameters.
  StatementPool::Loan prepared(std::string_view sql, const Translation& translation, const StatementForm& form);
  static void bindConstants(const Translation& translation, const StatementForm& form, Prepared& statement);
  // Which of its dependent keys the rows are grouped by now.
  std::vector<bool> keysOf(const Translation& translation, const StatementForm& form);
  std::int64_t modify(const Translation& translation, const StatementForm& form);

  sqlite3* database_;
  Catalog& catalog_;
  std::shared_ptr<StatementPool> pool_;
  std::function<void(const StatementReport&)> observer_;
  LoneRows loneRows_;
  MatchedRows matchedRows_;
  std::string identityInsert_;  // the table of SET IDENTITY_INSERT .. ON, by its SQLite name
};

}  // namespace quillon::tsql
