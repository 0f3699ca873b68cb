// The columns of a result set and the values of its rows, as the engine has them.
#pragma once

#include <cstddef>
#include <vector>

#include "workbench/odbc/link.h"

namespace quillon::odbc {

// What ODBC says of a column.
struct DescribedColumn {
  SQLSMALLINT sqlType = SQL_UNKNOWN_TYPE;
  SQLULEN size = 0;        // digits of a number, characters of a text; 0 or a huge number: no limit
  SQLSMALLINT digits = 0;  // decimals
  bool isMoney = false;    // by the server's own name of the type
};

// The engine's type for it; nvarchar for what the engine does not have.
tsql::Type typeOf(const DescribedColumn& column);

// The columns of the present result of `batch`.
std::vector<tsql::Column> columnsOf(Batch& batch);

// The value of a column (from 0) of the present row. Values are read in the order of the columns, each once.
tsql::Value valueOf(Batch& batch, std::size_t column, const tsql::Column& described);

// The value of `text`, digits with a point ("-.5000"), in the type's scale; nullopt when it is no number of that type.
std::optional<tsql::Exact> exactOf(std::string_view text, const tsql::Type& type);

// The time in ticks of 1/300 s; nullopt before the year 1753.
std::optional<tsql::DateTime> dateTimeOf(const SQL_TIMESTAMP_STRUCT& time);

}  // namespace quillon::odbc
