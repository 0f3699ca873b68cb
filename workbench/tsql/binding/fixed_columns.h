// Which columns of a query have one value in all its rows, as far as a comparison can tell: those that its Where equates
// with a constant, and those of a table that is joined by its key to one of them. To order by them is to order by nothing.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "workbench/tsql/binding/binder.h"

namespace quillon::tsql {

class FixedColumns {
 public:
  // `scope` has the sources of the query, which is none inside an expression; its names have been bound before, without
  // an error.
  FixedColumns(const SelectCore& select, Scope& scope, Binder& binder);

  // Whether the expression, as SQLite's SQL writes it, is such a column.
  bool contains(std::string_view sql) const;
  // Whether it can only have one value, because all its columns are those of joined tables.
  bool determines(const Expression& expression) const;
  // A From clause of one row with these joined tables; what determines() says yes to has its one value there.
  std::string joinedTables() const;
  // The From clause with these tables in front, where they are looked up once and not for each row. As it is written when
  // it has other joins than left ones.
  std::string joinedFirst(const SelectCore& select, std::string from) const;

 private:
  void addRestrictions(const Expression& condition);
  void addJoins(const TableSource& source);
  void addJoined(const Source& source, const std::string& condition, const std::string& written);
  bool isKey(const Source& source, const std::string& column) const;
  std::string constantOf(std::string_view column) const;

  Scope& scope_;
  Binder& binder_;
  struct Column {
    std::string sql, constant;  // "alias"."column"; what it is equal to
  };
  struct Joined {
    std::string prefix;   // "alias".
    std::string join;     // how it is joined to what stands before it
    std::string written;  // how the From clause joins it
  };
  std::vector<Column> columns_;
  std::vector<Joined> joined_;
};

}  // namespace quillon::tsql
