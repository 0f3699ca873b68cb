#include "workbench/tsql/engine/executor.h"

#include <sqlite3.h>

#include <algorithm>
#include <chrono>
#include <deque>

#include "workbench/tsql/binding/sqlite_notation.h"
#include "workbench/tsql/engine/composed_rows.h"
#include "workbench/tsql/engine/sqlite.h"
#include "workbench/tsql/engine/stored_rows.h"
#include "workbench/tsql/engine/value_functions.h"
#include "workbench/tsql/engine/wide_order.h"
#include "workbench/tsql/syntax/parser.h"
#include "workbench/tsql/values/stop.h"

namespace quillon::tsql {
namespace {

std::vector<Column> resultColumns(const std::vector<OutputColumn>& bound) {
  std::vector<Column> columns;
  for (const OutputColumn& column : bound) {
    Type type = column.type;
    // The empty text has width 0 in an expression; a column has at least width 1.
    if (isText(type)) type.width = std::max(type.width, 1);
    columns.push_back({column.name, type});
  }
  return columns;
}

// Reads a prepared SELECT row by row. The constructor fetches the first row, so that it throws the errors of the start.
class SelectCursor : public Cursor {
 public:
  SelectCursor(std::vector<Column> columns, StatementPool::Loan statement)
      : columns_(std::move(columns)), row_(columns_.size()), statement_(std::move(statement)) {
    hasRow_ = statement_->step();
  }
  SelectCursor(sqlite3* database, const BoundQuery& query)
      : SelectCursor(resultColumns(query.columns),
                     StatementPool::Loan({}, {}, std::make_unique<Prepared>(database, query.sql))) {}

  std::span<const Column> columns() const override { return columns_; }

  bool next() override {
    endIfStopped();
    if (!first_ && hasRow_) hasRow_ = statement_->step();
    first_ = false;
    if (!hasRow_) return false;
    for (std::size_t i = 0; i < row_.size(); ++i)
      readColumn(statement_->handle(), static_cast<int>(i), columns_[i].type, row_[i]);
    return true;
  }

  const Value& value(std::size_t column) const override { return row_.at(column); }
  std::span<const Value> row() const { return row_; }

 private:
  std::vector<Column> columns_;
  std::vector<Value> row_;
  StatementPool::Loan statement_;
  bool hasRow_ = false;
  bool first_ = true;
};

// The rows of a result set that is not the last statement of its batch.
class KeptRows : public Cursor, public ResultSink {
 public:
  std::span<const Column> columns() const override { return columns_; }
  bool next() override {
    if (started_) rows_.pop_front();
    started_ = true;
    return !rows_.empty();
  }
  const Value& value(std::size_t column) const override { return rows_.front().at(column); }

  void columns(std::span<const Column> columns) override {
    keeping_ = !has_;
    if (keeping_) columns_.assign(columns.begin(), columns.end());
    has_ = true;
  }
  void row(std::span<const Value> values) override {
    if (keeping_) rows_.emplace_back(values.begin(), values.end());
  }
  void rowsAffected(std::int64_t) override { keeping_ = false; }
  bool has() const { return has_; }

 private:
  std::vector<Column> columns_;
  std::deque<std::vector<Value>> rows_;
  bool has_ = false;
  bool keeping_ = false;
  bool started_ = false;
};

// Reads rows by their numbers, one after the other.
class NumberedRows : public Cursor {
 public:
  // `query` has one parameter, the number.
  NumberedRows(sqlite3* database, const BoundQuery& query, std::vector<std::int64_t> rows)
      : columns_(resultColumns(query.columns)),
        row_(columns_.size()),
        statement_(database, query.sql),
        rows_(std::move(rows)) {}

  std::span<const Column> columns() const override { return columns_; }
  bool next() override {
    endIfStopped();
    while (position_ < rows_.size()) {
      statement_.reset();
      statement_.bind(1, rows_[position_++]);
      if (!statement_.step()) continue;
      for (std::size_t i = 0; i < row_.size(); ++i)
        readColumn(statement_.handle(), static_cast<int>(i), columns_[i].type, row_[i]);
      return true;
    }
    return false;
  }
  const Value& value(std::size_t column) const override { return row_.at(column); }

 private:
  std::vector<Column> columns_;
  std::vector<Value> row_;
  Prepared statement_;
  std::vector<std::int64_t> rows_;
  std::size_t position_ = 0;
};

// What a table is called in the statements of orderedRows() and rowsAt().
constexpr std::string_view numberedName = "numbered_rows";

const ObjectName* intoOf(const Query& query) {
  const Query* leaf = &query;
  while (!leaf->core)
    leaf = leaf->left.get();
  return leaf->core->into ? &*leaf->core->into : nullptr;
}

// Runs the action with sums of decimals in 64 bits and, when one overflows, once more with 128 bits.
template <typename Action>
auto withWideningSums(Action action) {
  try {
    return action(false);
  } catch (const SumOverflow&) {
    return action(true);
  }
}

// Runs the action, which takes all that it did back when it fails, again and again while another connection has the file:
// SQLite itself does not wait when the statement has read before it writes, because two that do so would wait for each
// other.
template <typename Action>
auto waitingForTheFile(sqlite3* database, Action action) {
  using Clock = std::chrono::steady_clock;
  const Clock::time_point start = Clock::now();
  while (true) {
    try {
      return action();
    } catch (const FileBusy&) {
      // Within a transaction the others wait for this connection, too.
      if (sqlite3_get_autocommit(database) == 0) throw;
      if (waitIsOver(std::chrono::duration_cast<std::chrono::milliseconds>(Clock::now() - start))) {
        endIfStopped();
        throw;
      }
      sqlite3_sleep(longestPause);
    }
  }
}

}  // namespace

std::int64_t Executor::run(std::string_view batch, ResultSink& sink) {
  const std::optional<StatementForm> form = formOf(batch);
  catalog_.refresh();
  if (const auto kept = translation(form)) return run(*kept, *form, batch, sink);
  const std::vector<StatementPtr> statements = parseBatch(batch);
  if (const auto made = translation(statements, batch, form)) return run(*made, *form, batch, sink);
  std::int64_t affected = -1;
  for (const StatementPtr& statement : statements) {
    const std::int64_t count = execute(*statement, batch, sink);
    if (count >= 0) affected = count;
  }
  return affected;
}

std::unique_ptr<Cursor> Executor::query(std::string_view batch) {
  const std::optional<StatementForm> form = formOf(batch);
  catalog_.refresh();
  auto known = translation(form);
  std::vector<StatementPtr> statements;
  if (!known) {
    statements = parseBatch(batch);
    known = translation(statements, batch, form);
  }
  if (known && known->kind == StatementKind::select) {
    try {
      return rowsOf(*known, *form);
    } catch (const SumOverflow&) {
      return open(*parseBatch(batch).at(0)->query, true);
    }
  }
  if (statements.empty()) statements = parseBatch(batch);
  auto kept = std::make_unique<KeptRows>();
  for (const StatementPtr& statement : statements) {
    const bool isLast = &statement == &statements.back();
    if (isLast && !kept->has() && statement->kind == StatementKind::select && intoOf(*statement->query) == nullptr) {
      return rowsOf(*statement);
    }
    execute(*statement, batch, *kept);
  }
  return kept;
}

std::shared_ptr<const Translation> Executor::translation(const std::optional<StatementForm>& form) {
  if (!form || !identityInsert_.empty()) return nullptr;
  return Translations::ofProcess().find(*form, catalog_);
}

std::shared_ptr<const Translation> Executor::translation(const std::vector<StatementPtr>& statements,
                                                         std::string_view batch,
                                                         const std::optional<StatementForm>& form) {
  if (!form || statements.size() != 1 || !identityInsert_.empty()) return nullptr;
  const Statement& statement = *statements[0];
  const bool isSelect = statement.kind == StatementKind::select && intoOf(*statement.query) == nullptr;
  if (!isSelect && statement.kind != StatementKind::insert && statement.kind != StatementKind::update &&
      statement.kind != StatementKind::remove) {
    return nullptr;
  }
  auto made = std::make_shared<Translation>();
  std::vector<std::size_t> places;
  for (const Constant& constant : form->constants)
    places.push_back(constant.begin);
  Parameters parameters(std::move(places));
  // What changes something runs within a savepoint, so that between the two queries nothing changes.
  parameters.takesDependentKeys = !isSelect;
  NotedLookup tables(catalog_);
  try {
    Binder binder(tables, false, &parameters);
    if (isSelect) {
      BoundQuery bound = binder.query(*statement.query);
      if (isWidelyOrdered(bound)) return nullptr;
      made->statement.sql = std::move(bound.sql);
      made->columns = resultColumns(bound.columns);
    } else {
      made->statement = modificationOf(statement, binder);
      if (made->statement.grouping) return nullptr;
    }
  } catch (const SqlError&) {
    return nullptr;  // comes again when the statement runs as it is, with the place where it belongs
  }
  made->kind = statement.kind;
  made->form = *form;
  for (std::size_t i = 0; i < form->constants.size(); ++i) {
    made->isParameter.push_back(parameters.isUsed(i));
    made->isFree.push_back(parameters.isFree(i));
  }
  made->names = tables.take();
  made->line = statement.place.line;
  made->begin = statement.begin;
  made->rest = batch.size() - statement.end;
  if (!made->names.isWhole || !made->takeKeys(parameters.dependentKeys)) return nullptr;
  // What stands outside the statement is no part of it, and might be of another length next time.
  if (std::ranges::any_of(form->constants, [&](const Constant& constant) { return constant.begin >= statement.end; }))
    return nullptr;
  Translations::ofProcess().keep(made);
  return made;
}

std::int64_t Executor::run(const Translation& translation, const StatementForm& form, std::string_view batch,
                           ResultSink& sink) {
  const std::string_view sql = batch.substr(translation.begin, batch.size() - translation.rest - translation.begin);
  return watched({.line = translation.line, .sql = sql}, [&] {
    const auto exactly = [&](auto action) { return action(*parseBatch(batch).at(0)); };
    if (translation.kind == StatementKind::select) {
      std::unique_ptr<Cursor> cursor;
      try {
        cursor = rowsOf(translation, form);
      } catch (const SumOverflow&) {
        cursor = exactly([&](const Statement& statement) { return open(*statement.query, true); });
      }
      return send(*cursor, sink);
    }
    const std::int64_t affected = waitingForTheFile(database_, [&] {
      try {
        return modify(translation, form);
      } catch (const SumOverflow&) {
        return exactly([&](const Statement& statement) { return modify(statement, true); });
      }
    });
    sink.rowsAffected(affected);
    return affected;
  });
}

void Executor::bindConstants(const Translation& translation, const StatementForm& form, Prepared& statement) {
  const int parameters = sqlite3_bind_parameter_count(statement.handle());
  for (int parameter = 1; parameter <= parameters; ++parameter) {
    const auto constant = static_cast<std::size_t>(parameter) - 1;
    if (!translation.isParameter[constant]) continue;
    const Value& value = form.constants[constant].value;
    if (const auto* const text = std::get_if<std::string>(&value)) {
      statement.bindCopy(parameter, *text);
    } else {
      statement.bind(parameter, std::get<std::int64_t>(value));
    }
  }
}

StatementPool::Loan Executor::prepared(std::string_view sql, const Translation& translation,
                                       const StatementForm& form) {
  StatementPool::Loan statement = pool_->take(sql);
  bindConstants(translation, form, *statement);
  return statement;
}

std::vector<bool> Executor::keysOf(const Translation& translation, const StatementForm& form) {
  std::vector<bool> isKey;
  if (translation.keysQuery.empty()) return isKey;
  const StatementPool::Loan keys = prepared(translation.keysQuery, translation, form);
  keys->step();
  const int count = sqlite3_column_count(keys->handle());
  for (int i = 0; i < count; ++i)
    isKey.push_back(keys->integer(i) != 0);
  return isKey;
}

std::unique_ptr<Cursor> Executor::rowsOf(const Translation& translation, const StatementForm& form) {
  return std::make_unique<SelectCursor>(translation.columns, prepared(translation.statement.sql, translation, form));
}

std::int64_t Executor::modify(const Translation& translation, const StatementForm& form) {
  Savepoint savepoint(database_);
  const std::vector<bool> isKey = keysOf(translation, form);
  const auto bind = [&](Prepared& source) { bindConstants(translation, form, source); };
  const Modification& known = translation.statement;
  // Without keys the texts are as they were kept.
  if (isKey.empty()) {
    const std::int64_t count = change(known, bind);
    savepoint.keep();
    return count;
  }
  Modification statement{
      .sql = Translation::withKeys(known.sql, isKey), .table = known.table, .isUpdate = known.isUpdate};
  if (known.composition) {
    statement.composition = known.composition;
    statement.composition->sql = Translation::withKeys(known.composition->sql, isKey);
  }
  if (known.matching) {
    statement.matching = known.matching;
    statement.matching->source = Translation::withKeys(known.matching->source, isKey);
  }
  const std::int64_t affected = change(statement, bind);
  savepoint.keep();
  return affected;
}

std::unique_ptr<Cursor> Executor::open(const Query& query, bool exactSums) {
  Binder binder(catalog_, exactSums);
  return std::make_unique<SelectCursor>(database_, binder.query(query));
}

std::unique_ptr<Cursor> Executor::rowsOf(const Statement& statement) {
  return withWideningSums([&](bool exactSums) -> std::unique_ptr<Cursor> {
    Binder binder(catalog_, exactSums);
    const BoundQuery bound = binder.query(*statement.query);
    if (!isWidelyOrdered(bound)) return std::make_unique<SelectCursor>(database_, bound);
    if (const auto shown = shownTable(*statement.query)) {
      if (auto rows = rowsOfSmallTable(database_, bound, resultColumns(bound.columns), *shown)) return rows;
    }
    return widelyOrderedRows(database_, bound, resultColumns(bound.columns));
  });
}

std::optional<ShownTable> Executor::shownTable(const Query& query) const {
  const SelectCore& select = *query.core;
  if (select.from.size() != 1 || select.from[0]->left != nullptr || select.from[0]->derived != nullptr) return {};
  const TableSource& source = *select.from[0];
  ShownTable shown{.table = catalog_.table(source.table), .number = {}, .places = {}};
  if (!shown.table || !shown.table->hasRowid()) return {};
  const std::vector<TableColumn>& columns = shown.table->columns;
  for (const SelectItem& item : select.items) {
    if (item.value == nullptr) {  // a star
      for (std::size_t place = 0; place < columns.size(); ++place)
        shown.places.push_back(place);
      continue;
    }
    const int place = item.value->kind == ExpressionKind::column ? shown.table->find(item.value->name.back()) : -1;
    if (place < 0) return {};
    shown.places.push_back(static_cast<std::size_t>(place));
  }
  for (const std::size_t place : shown.places) {
    // The row's number is a whole number, which a key may be that stands for something else.
    const Kind kind = columns[place].type.kind;
    if (static_cast<int>(place) == shown.table->rowidColumn && kind != Kind::integer && kind != Kind::bigInt) return {};
  }
  shown.number = quoteName(source.alias.empty() ? source.table.name : source.alias) + '.' + shown.table->rowid();
  return shown;
}

// Gives an error its place, and tells the observer what it took.
template <typename Action>
std::int64_t Executor::watched(const Running& running, Action action) {
  using Clock = std::chrono::steady_clock;
  const Clock::time_point start = Clock::now();
  std::int64_t affected = -1;
  try {
    affected = action();
  } catch (const Stopped&) {
    catalog_.forget();
    throw;
  } catch (const SqlError& error) {
    catalog_.forget();
    if (error.line() != 0) throw;
    throw SqlError(error.number(), error.message(), running.line, error.token());
  }
  if (observer_ && !running.isContainer) {
    StatementReport report;
    report.sql = running.sql;
    report.seconds = std::chrono::duration<double>(Clock::now() - start).count();
    report.rows = std::max<std::int64_t>(affected, 0);
    observer_(report);
  }
  return affected;
}

std::int64_t Executor::execute(const Statement& statement, std::string_view batch, ResultSink& sink) {
  const bool isContainer = statement.kind == StatementKind::conditional || statement.kind == StatementKind::block;
  const Running running{.line = statement.place.line,
                        .sql = batch.substr(statement.begin, statement.end - statement.begin),
                        .isContainer = isContainer};
  return watched(running, [&] {
    // A container runs its statements through here, and rows that were given cannot be taken back.
    const bool changes = statement.kind != StatementKind::select && !isContainer;
    return changes ? waitingForTheFile(database_, [&] { return dispatch(statement, batch, sink); })
                   : dispatch(statement, batch, sink);
  });
}

std::int64_t Executor::dispatch(const Statement& s, std::string_view batch, ResultSink& sink) {
  std::int64_t affected = -1;
  switch (s.kind) {
    case StatementKind::select:
      if (const ObjectName* const into = intoOf(*s.query)) {
        affected = waitingForTheFile(database_, [&] {
          return withWideningSums([&](bool exactSums) { return selectInto(s, *into, exactSums); });
        });
        sink.rowsAffected(affected);
        return affected;
      }
      return select(s, sink);
    case StatementKind::insert:
    case StatementKind::update:
    case StatementKind::remove:
      affected = withWideningSums([&](bool exactSums) { return modify(s, exactSums); });
      sink.rowsAffected(affected);
      return affected;
    case StatementKind::truncate:
      truncate(s);
      break;
    case StatementKind::createTable:
      createTable(s);
      break;
    case StatementKind::createIndex:
      createIndex(s);
      break;
    case StatementKind::createView:
      createView(s);
      break;
    case StatementKind::createFunction:
      createFunction(s);
      break;
    case StatementKind::createDatabase:
      throw SqlError(1801, "Database '" + s.target.name + "' already exists. Choose a different database name.",
                     s.place.line, s.target.name);
    case StatementKind::dropObjects:
      drop(s);
      break;
    case StatementKind::conditional:
      if (holds(*s.condition)) return execute(*s.body[0], batch, sink);
      if (s.body.size() > 1) return execute(*s.body[1], batch, sink);
      break;
    case StatementKind::block:
      for (const StatementPtr& inner : s.body)
        affected = std::max(affected, execute(*inner, batch, sink));
      return affected;
    case StatementKind::identityInsert:
      setIdentityInsert(s);
      break;
    case StatementKind::raiseError:
      throw SqlError(50000, s.text);
    case StatementKind::nothing:
      break;
  }
  return -1;
}

std::int64_t Executor::select(const Statement& s, ResultSink& sink) {
  const std::unique_ptr<Cursor> cursor = withWideningSums([&](bool exactSums) { return open(*s.query, exactSums); });
  return send(*cursor, sink);
}

std::int64_t Executor::send(Cursor& cursor, ResultSink& sink) {
  sink.columns(cursor.columns());
  std::int64_t count = 0;
  while (cursor.next()) {
    sink.row(static_cast<const SelectCursor&>(cursor).row());
    ++count;
  }
  sink.rowsAffected(count);
  return count;
}

std::int64_t Executor::selectInto(const Statement& s, const ObjectName& target, bool exactSums) {
  Binder binder(catalog_, exactSums);
  BoundQuery bound = binder.query(*s.query);
  std::vector<ColumnDefinition> definitions;
  std::string names;
  const std::vector<Column> shown = resultColumns(bound.columns);
  for (std::size_t i = 0; i < shown.size(); ++i) {
    const OutputColumn& column = bound.columns[i];
    if (column.name.empty()) {
      throw SqlError(1038,
                     "An object or column name is missing or empty. For SELECT INTO statements, verify each column has "
                     "a name. For "
                     "other statements, look for empty alias names. Aliases defined as \"\" or [] are not allowed. "
                     "Change the alias "
                     "to a valid name.",
                     column.place.line, column.place.token);
    }
    ColumnDefinition definition;
    definition.name = column.name;
    definition.type = shown[i].type;
    definition.notNull = column.notNull;
    definition.identity = column.identity;
    definition.seed = column.seed;
    definition.increment = column.increment;
    definition.place = column.place;
    definitions.push_back(std::move(definition));
    names += (names.empty() ? "" : ", ") + quoteName(column.name);
  }
  Savepoint savepoint(database_);
  const std::shared_ptr<const Table> table = catalog_.createTable(target, definitions, {});
  const std::string head = "INSERT INTO " + table->physical + "(" + names + ") ";
  Modification insert{.sql = head + bound.sql,
                      .table = table,
                      .grouping = std::move(bound.grouping),
                      .composition = std::move(bound.composition)};
  if (insert.grouping) insert.grouping->insertHead(head);
  const std::int64_t affected = change(insert);
  savepoint.keep();
  return affected;
}

Modification Executor::modificationOf(const Statement& s, Binder& binder) const {
  switch (s.kind) {
    case StatementKind::insert:
      return insertStatement(s, binder, takesIdentity(s.target));
    case StatementKind::update:
      return updateStatement(s, binder);
    default:
      return {deleteStatement(s, binder)};
  }
}

std::int64_t Executor::change(const Modification& statement, const Bind& bind) {
  std::optional<std::int64_t> affected;
  const std::string* sql = &statement.sql;
  if (statement.composition) {
    affected =
        compose(statement.isUpdate ? replaceByComposedRows : addComposedRows, *statement.composition, statement, bind);
  }
  if (statement.grouping) affected = insertGroups(statement, bind);
  if (!affected && statement.matching && matchedRows_.read(database_, *statement.matching, bind)) {
    sql = &statement.matching->sql;
    if (statement.matching->composition)
      affected = compose(replaceByComposedRows, *statement.matching->composition, statement, bind);
  }
  if (!affected) affected = runPlainly(*sql, bind);
  loneRows_.forget();
  matchedRows_.forget();
  return *affected;
}

std::optional<std::int64_t> Executor::insertGroups(const Modification& statement, const Bind& bind) {
  const WideGrouping& grouping = *statement.grouping;
  if (!loneRows_.find(database_, grouping)) return {};
  if (grouping.alone && grouping.together && loneRows_.gather(database_, grouping)) {
    Savepoint savepoint(database_);
    const auto alone = compose(addComposedRows, *grouping.alone, statement, bind);
    const auto together = alone ? compose(addComposedRows, *grouping.together, statement, bind) : std::nullopt;
    if (together) {
      const std::int64_t others = loneRows_.isComplete() ? 0 : runPlainly(grouping.others, bind);
      savepoint.keep();
      return *alone + *together + others;
    }
  }
  return runPlainly(grouping.sql, bind);
}

std::int64_t Executor::runPlainly(const std::string& sql, const Bind& bind) {
  const StatementPool::Loan statement = prepared(sql, bind);
  statement->step();
  return sqlite3_changes64(database_);
}

template <typename Run>
std::optional<std::int64_t> Executor::compose(Run run, const RowComposition& composition, const Modification& statement,
                                              const Bind& bind) {
  const RowsAsStored inTheirOrder(database_);
  const StatementPool::Loan query = prepared(composition.sql, bind);
  return run(database_, composition, *query, *statement.table);
}

StatementPool::Loan Executor::prepared(const std::string& sql, const Bind& bind) {
  if (!bind) return {{}, {}, std::make_unique<Prepared>(database_, sql)};
  StatementPool::Loan statement = pool_->take(sql);
  bind(*statement);
  return statement;
}

std::int64_t Executor::modify(const Statement& s, bool exactSums) {
  Savepoint savepoint(database_);
  Binder binder(catalog_, exactSums);
  const std::int64_t affected = change(modificationOf(s, binder));
  savepoint.keep();
  return affected;
}

bool Executor::holds(const Expression& condition) {
  Binder binder(catalog_, false);
  Scope nothing;
  Prepared test(database_, "SELECT 1 WHERE " + binder.condition(condition, nothing).sql);
  return test.step();
}

void Executor::createTable(const Statement& s) {
  for (const ColumnDefinition& column : s.definitions) {
    if (column.defaultValue == nullptr) continue;
    Binder binder(catalog_, false);
    Scope nothing;
    Binder::stored(binder.value(*column.defaultValue, nothing), {column.type, s.target.name, column.name, false});
  }
  Savepoint savepoint(database_);
  catalog_.createTable(s.target, s.definitions, s.keys);
  savepoint.keep();
}

void Executor::createIndex(const Statement& s) {
  const std::shared_ptr<const Table> table = catalog_.table(s.target);
  if (!table) {
    throw SqlError(
        1088,
        "Cannot find the object \"" + s.target.written + "\" because it does not exist or you do not have permissions.",
        s.target.place.line, s.target.written);
  }
  const std::string name = table->stored + '.' + s.indexName;
  Prepared find(database_,
                "SELECT 1 FROM " + table->schema + ".sqlite_schema WHERE type = 'index' AND name = ?1 COLLATE NOCASE");
  find.bind(1, name);
  if (find.step()) {
    throw SqlError(1913,
                   "The operation failed because an index or statistics with name '" + s.indexName +
                       "' already exists on table '" + table->name + "'.",
                   s.place.line, s.indexName);
  }
  find.reset();
  std::string columns;
  for (const std::string& column : s.columns) {
    const int place = table->find(column);
    if (place < 0)
      throw SqlError(1911, "Column name '" + column + "' does not exist in the target table or view.", s.place.line,
                     column);
    columns += (columns.empty() ? "" : ", ") + quoteName(table->columns[static_cast<std::size_t>(place)].name);
  }
  runSqlite(database_, std::string(s.unique ? "CREATE UNIQUE INDEX " : "CREATE INDEX ") + table->schema + '.' +
                           quoteName(name) + " ON " + quoteName(table->stored) + "(" + columns + ")");
}

void Executor::createView(const Statement& s) {
  std::string definition = s.text;
  if (!s.columns.empty()) {
    std::string names;
    for (const std::string& column : s.columns)
      names += (names.empty() ? "" : ", ") + quoteName(column);
    definition = "select * from (" + definition + ") as view_rows(" + names + ")";
  }
  Binder binder(catalog_, false);
  const std::vector<StatementPtr> parsed = parseBatch(definition);
  binder.query(*parsed.at(0)->query, nullptr, Naming::columns);
  Savepoint savepoint(database_);
  catalog_.createObject(s.target, 'V', definition);
  savepoint.keep();
}

void Executor::createFunction(const Statement& s) {
  const std::string definition = "cast(" + s.text + " as " + declaration(s.returnType) + ")";
  Binder binder(catalog_, false);
  Scope nothing;
  binder.value(*parseValue(definition), nothing);
  Savepoint savepoint(database_);
  catalog_.createObject(s.target, 'F', definition);
  savepoint.keep();
}

void Executor::drop(const Statement& s) {
  if (s.droppedType == 'I') {
    dropIndex(s);
    return;
  }
  for (const ObjectName& name : s.dropped) {
    if (s.ifExists && !catalog_.object(name)) continue;
    Savepoint savepoint(database_);
    catalog_.drop(name, s.droppedType);
    savepoint.keep();
  }
}

void Executor::dropIndex(const Statement& s) {
  const std::shared_ptr<const Table> table = catalog_.table(s.target);
  const std::string name = (table ? table->stored : "") + '.' + s.indexName;
  if (table) {
    Prepared find(database_, "SELECT 1 FROM " + table->schema +
                                 ".sqlite_schema WHERE type = 'index' AND name = ?1 COLLATE NOCASE");
    find.bind(1, name);
    if (find.step()) {
      find.reset();
      runSqlite(database_, "DROP INDEX " + table->schema + '.' + quoteName(name));
      return;
    }
  }
  if (s.ifExists) return;
  throw SqlError(3701,
                 "Cannot drop the index '" + s.target.written + '.' + s.indexName +
                     "', because it does not exist or you do not have permission.",
                 s.place.line, s.indexName);
}

void Executor::truncate(const Statement& s) {
  Binder binder(catalog_, false);
  const std::shared_ptr<const Table> table = binder.table(s.target);
  Savepoint savepoint(database_);
  runSqlite(database_, "DELETE FROM " + table->physical);
  const bool counts = table->rowidColumn >= 0 && table->columns[static_cast<std::size_t>(table->rowidColumn)].identity;
  if (counts) {
    Prepared restart(database_, "UPDATE " + table->schema + ".sqlite_sequence SET seq = ?1 WHERE name = ?2");
    restart.bind(1, table->columns[static_cast<std::size_t>(table->rowidColumn)].seed - 1);
    restart.bind(2, table->stored);
    restart.step();
  }
  savepoint.keep();
}

void Executor::setIdentityInsert(const Statement& s) {
  Binder binder(catalog_, false);
  identityInsert_ = s.on ? binder.table(s.target)->physical : std::string();
}

bool Executor::takesIdentity(const ObjectName& name) const {
  if (identityInsert_.empty()) return false;
  const std::shared_ptr<const Table> table = catalog_.table(name);
  return table && table->physical == identityInsert_;
}

std::vector<Column> Executor::describe(std::string_view name) {
  const ObjectName object = parseObjectName(name);
  if (const std::shared_ptr<const Table> table = catalog_.table(object)) {
    std::vector<Column> columns;
    for (const TableColumn& column : table->columns)
      columns.push_back({column.name, column.type});
    return columns;
  }
  const std::optional<StoredObject> view = catalog_.object(object);
  if (!view || view->type != 'V') return {};
  Binder binder(catalog_, false);
  return resultColumns(binder.query(*parseBatch(view->definition).at(0)->query, nullptr, Naming::columns).columns);
}

std::vector<std::int64_t> Executor::orderedRows(std::string_view table, std::string_view where, std::string_view order,
                                                std::optional<std::int64_t> limit) {
  std::string text = "Select 1 From ";
  text.append(table).append(" ").append(numberedName).append(" Where ").append(where);
  text.append(" Order By ").append(order);
  const std::vector<StatementPtr> statements = parseBatch(text);
  catalog_.refresh();
  Binder binder(catalog_, false);
  const std::string number = quoteName(numberedName) + '.' + binder.table(parseObjectName(table))->rowid();
  return orderedNumbers(database_, binder.query(*statements.at(0)->query), number, limit);
}

std::unique_ptr<Cursor> Executor::rowsAt(std::string_view table, std::string_view list,
                                         std::vector<std::int64_t> rows) {
  std::string text = "Select ";
  text.append(list).append(" From ").append(table).append(" ").append(numberedName);
  const std::vector<StatementPtr> statements = parseBatch(text);
  catalog_.refresh();
  Binder binder(catalog_, false);
  const std::string number = quoteName(numberedName) + '.' + binder.table(parseObjectName(table))->rowid();
  BoundQuery bound = binder.query(*statements.at(0)->query);
  bound.sql += " WHERE " + number + " = ?1";
  return std::make_unique<NumberedRows>(database_, bound, std::move(rows));
}

std::string Executor::translate(std::string_view text) {
  const std::vector<StatementPtr> statements = parseBatch(text);
  catalog_.refresh();
  std::string result;
  for (const StatementPtr& statement : statements) {
    Binder binder(catalog_, false);
    switch (statement->kind) {
      case StatementKind::select:
        result += binder.query(*statement->query).sql + ";\n";
        break;
      case StatementKind::insert:
      case StatementKind::update:
      case StatementKind::remove:
        result += modificationOf(*statement, binder).sql + ";\n";
        break;
      default:
        throw SqlError(40510, "Only SELECT, INSERT, UPDATE and DELETE have a translation to show.",
                       statement->place.line, statement->place.token);
    }
  }
  return result;
}

}  // namespace quillon::tsql
