#include "workbench/tsql/engine/bulk_writer.h"

#include <sqlite3.h>

#include "workbench/tsql/binding/sqlite_notation.h"
#include "workbench/tsql/engine/catalog.h"
#include "workbench/tsql/engine/sqlite.h"
#include "workbench/tsql/engine/value_functions.h"
#include "workbench/tsql/syntax/parser.h"
#include "workbench/tsql/values/exact.h"
#include "workbench/tsql/values/stop.h"
#include "workbench/tsql/values/text.h"
#include "workbench/tsql/values/type_rules.h"
#include "workbench/tsql/values/value_errors.h"

namespace quillon::tsql {
namespace {

class SqliteBulkWriter : public BulkWriter {
 public:
  SqliteBulkWriter(sqlite3* database, std::shared_ptr<const Table> table, std::vector<TableColumn> columns,
                   const std::string& sql)
      : table_(std::move(table)), columns_(std::move(columns)), isNull_(columns_.size(), 1), insert_(database, sql) {}

  void write(std::span<const Value> values) override {
    if (values.size() != columns_.size()) {
      throw SqlError(213, "Column name or number of supplied values does not match table definition.");
    }
    endIfStopped();
    insert_.reset();
    for (std::size_t i = 0; i < values.size(); ++i)
      bind(i, values[i]);
    insert_.step();
  }

 private:
  void bind(std::size_t place, const Value& value) {
    const TableColumn& column = columns_[place];
    const int index = static_cast<int>(place) + 1;
    if (isNull(value)) {
      if (column.notNull) {
        throw SqlError(515, "Cannot insert the value NULL into column '" + column.name + "', table '" + table_->name +
                                "'; column does not allow nulls. INSERT fails.");
      }
      if (isNull_[place] == 0) sqlite3_bind_null(insert_.handle(), index);
      isNull_[place] = 1;
      return;
    }
    requireForm(value, column);
    isNull_[place] = 0;
    if (const auto* const text = std::get_if<std::string>(&value)) {
      // Bound without a copy: the caller's text outlives the step.
      sqlite3_bind_text(insert_.handle(), index, text->data(), static_cast<int>(text->size()), SQLITE_STATIC);
    } else {
      bindValue(insert_.handle(), index, value);
    }
  }

  void requireForm(const Value& value, const TableColumn& column) const {
    const Type& type = column.type;
    bool right = false;
    switch (type.kind) {
      case Kind::integer:
      case Kind::bigInt:
      case Kind::bit:
        if (const auto* const number = std::get_if<std::int64_t>(&value)) {
          right = true;
          if (type.kind != Kind::bigInt && !fits(Int128(*number), type))
            throw errors::overflow("expression", errors::systemName(type));
        }
        break;
      case Kind::decimal:
      case Kind::money:
        if (const auto* const exact = std::get_if<Exact>(&value)) {
          right = exact->scale == scaleOf(type);
          if (right && !fits(exact->units, type)) throw errors::overflow("expression", errors::systemName(type));
        }
        break;
      case Kind::real:
        right = std::holds_alternative<double>(value);
        break;
      case Kind::dateTime:
        right = std::holds_alternative<DateTime>(value);
        break;
      case Kind::nVarChar:
      case Kind::varChar:
        if (const auto* const text = std::get_if<std::string>(&value)) {
          right = true;
          if (text::widerThan(*text, type.width)) throw errors::wouldBeTruncated(table_->name, column.name, *text);
        }
        break;
    }
    if (!right) {
      throw SqlError(206, "Operand type clash: the value for column '" + column.name + "' of table '" + table_->name +
                              "' is not of the form of " + type.name() + ".");
    }
  }

  std::shared_ptr<const Table> table_;
  std::vector<TableColumn> columns_;
  // Which values are bound as null, as all are at first: rows are wide, and most of their columns are null in row after row.
  std::vector<char> isNull_;
  Prepared insert_;
};

}  // namespace

std::unique_ptr<BulkWriter> makeBulkWriter(sqlite3* database, Catalog& catalog, std::string_view table,
                                           std::span<const std::string> columns) {
  const ObjectName name = parseObjectName(table);
  std::shared_ptr<const Table> found = catalog.table(name);
  if (!found) throw SqlError(208, "Invalid object name '" + name.written + "'.", 0, name.written);
  std::vector<TableColumn> targets;
  std::string names, places;
  for (const std::string& column : columns) {
    const int place = found->find(column);
    if (place < 0) throw SqlError(207, "Invalid column name '" + column + "'.", 0, column);
    targets.push_back(found->columns[static_cast<std::size_t>(place)]);
    names += (names.empty() ? "" : ", ") + quoteName(targets.back().name);
    places += places.empty() ? "?" : ", ?";
  }
  const std::string sql = "INSERT INTO " + found->physical + "(" + names + ") VALUES (" + places + ")";
  return std::make_unique<SqliteBulkWriter>(database, std::move(found), std::move(targets), sql);
}

}  // namespace quillon::tsql
