// Conditions on the rows of a report, carried out in the database or in memory: with the same answer.
#pragma once

#include <span>
#include <string>

#include "workbench/catalogue/report_columns.h"
#include "workbench/presentation/arrangement.h"
#include "workbench/tsql/values/database.h"

namespace quillon::workbench {

// `where` as a T-SQL condition over a table that has `columns`, "1 = 1" when there is none. Throws UserError for a value that
// is no number or no date where the column holds such, and for a range whose lower bound is above the upper one.
std::string conditionText(std::span<const RowCondition> where, std::span<const tsql::Column> columns);

// Whether a cell of a column of `role` meets the condition. Throws likewise.
bool meets(const tsql::Value& cell, const RowCondition& condition, ColumnRole role);

// Below, equal to or above zero as one sorts to the other; nothing comes first.
int compareValues(const tsql::Value& one, const tsql::Value& other);

}  // namespace quillon::workbench
