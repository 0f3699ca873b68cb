// The small result table laid out, with the classes and cost items that its codes belong to.
#pragma once

#include <memory>
#include <sstream>
#include <string>
#include <vector>

#include "tests/workbench/presentation/small_result.h"
#include "workbench/presentation/layout_request.h"
#include "workbench/presentation/value_output.h"
#include "workbench/presentation/view.h"

namespace quillon::workbench::test {

// 01 and 02 as classes below class 0, and as cost items CI1 and CI2 of classes 01 and 02.
inline void addClasses(tsql::Connection& account) {
  account.execute(
      "Create Table Ca_FxClassDef (iFxCId int, cFxCCode nvarchar(20), cFxCName nvarchar(60), iGrade int) "
      "Create Table Ca_FxDef (iFxID int, cFxCode nvarchar(20), cFxName nvarchar(60), cFxCID int) "
      "Insert Into Ca_FxClassDef Values (1, N'0', N'成本', 1), (2, N'01', N'材料', 2), (3, N'02', N'人工', 2) "
      "Insert Into Ca_FxDef Values (1, N'CI1', N'钢材', 2), (2, N'CI2', N'工资', 3)");
}

// The rows of a view, its totals behind them, a text each: what the row is, its level where it has one, then its cells.
inline std::vector<std::string> textsOf(const View& view) {
  static const std::vector<std::string> kinds = {"line",       "detail",    "group",   "subtotal",   "opening",
                                                 "monthTotal", "yearTotal", "closing", "difference", "total"};
  std::vector<std::string> texts;
  const auto add = [&texts](const ViewRow& row) {
    std::string text = kinds[static_cast<std::size_t>(row.kind)];
    if (row.level > 0) text += std::to_string(row.level);
    for (const tsql::Value& cell : row.cells)
      text += "|" + plainText(cell, "");
    texts.push_back(std::move(text));
  };
  for (const auto rows = view.rows(); rows->next();)
    add(rows->row());
  for (const ViewRow& row : view.totals)
    add(row);
  return texts;
}

inline std::vector<std::string> namesOf(const View& view) {
  std::vector<std::string> names;
  for (const ViewColumn& column : view.columns)
    names.push_back(column.column.name);
  return names;
}

}  // namespace quillon::workbench::test
