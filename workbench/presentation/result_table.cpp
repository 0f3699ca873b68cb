#include "workbench/presentation/result_table.h"

#include <algorithm>

#include "frame/text.h"

namespace quillon::workbench {

namespace {

std::string filledTest(const ReportColumn& column) {
  if (column.role == ColumnRole::date) return column.name + " Is Not Null";
  return "IsNull(" + column.name + (isNumber(column.role) ? ", 0) <> 0" : ", N'') <> N''");
}

bool hasColumn(std::span<const tsql::Column> columns, std::string_view name) {
  return std::ranges::any_of(columns, [name](const auto& column) { return equalIgnoringCase(column.name, name); });
}

}  // namespace

std::int64_t ResultFacts::rowCount(const std::function<std::int64_t()>& count) {
  const std::scoped_lock lock(mutex_);
  if (!rowCount_) rowCount_ = count();
  return *rowCount_;
}

std::vector<ReportColumn> ResultFacts::filledColumns(const std::function<std::vector<ReportColumn>()>& find) {
  const std::scoped_lock lock(mutex_);
  if (!filledColumns_) filledColumns_ = find();
  return *filledColumns_;
}

std::int64_t ResultTable::rowCount(const std::string& where) const {
  if (facts_ && where == everyRow) return facts_->rowCount([&] { return countRows(where); });
  return countRows(where);
}

std::vector<ReportColumn> ResultTable::filledColumns(std::span<const ReportColumn> known,
                                                     const std::string& where) const {
  if (facts_ && where == everyRow) return facts_->filledColumns([&] { return findFilled(known, where); });
  return findFilled(known, where);
}

std::int64_t ResultTable::countRows(const std::string& where) const {
  const auto cursor = account_.query("Select Count(*) From " + name_ + " Where " + where);
  return cursor->next() ? std::get<std::int64_t>(cursor->value(0)) : 0;
}

std::vector<ReportColumn> ResultTable::findFilled(std::span<const ReportColumn> known, const std::string& where) const {
  const std::vector<tsql::Column> present = account_.describe(name_);
  std::vector<ReportColumn> candidates;
  std::string list;
  for (const ReportColumn& column : known) {
    if (column.role == ColumnRole::internal || !hasColumn(present, column.name)) continue;
    candidates.push_back(column);
    list += (list.empty() ? "" : ", ") + ("Max(Case When " + filledTest(column) + " Then 1 Else 0 End)");
  }
  const auto cursor = account_.query("Select " + list + " From " + name_ + " Where " + where);
  std::vector<ReportColumn> filled;
  if (!cursor->next()) return filled;
  for (std::size_t i = 0; i < candidates.size(); ++i) {
    const auto* flag = std::get_if<std::int64_t>(&cursor->value(i));
    if (flag != nullptr && *flag == 1) filled.push_back(candidates[i]);
  }
  return filled;
}

std::unique_ptr<tsql::Cursor> ResultTable::rows(std::span<const ReportColumn> columns) const {
  return account_.query(selectRows(columns));
}

std::string ResultTable::selectRows(std::span<const ReportColumn> columns, const std::string& where) const {
  const std::vector<tsql::Column> present = account_.describe(name_);
  std::string list;
  for (const ReportColumn& column : columns)
    list += (list.empty() ? "" : ", ") + column.name;
  std::string order;
  const auto orderBy = [&order](std::string_view name) { order += (order.empty() ? "" : ", ") + std::string(name); };
  const auto leads = [this](const tsql::Column& column) {
    return std::ranges::any_of(order_, [&](auto name) { return equalIgnoringCase(name, column.name); });
  };
  for (const std::string_view name : order_) {
    if (hasColumn(present, name)) orderBy(name);
  }
  for (const tsql::Column& column : present) {
    if (!leads(column)) orderBy(column.name);
  }
  return "Select " + (list.empty() ? "*" : list) + " From " + name_ + (where.empty() ? "" : " Where " + where) +
         " Order By " + order;
}

std::unique_ptr<tsql::Cursor> ResultTable::ledgerRows(std::span<const ReportColumn> columns) const {
  std::string list;
  for (const ReportColumn& column : columns)
    list += "temp." + column.name + ", ";
  return account_.query("Select " + list + "temp.datatype, line.bRdFlag, line.iMonth From " + name_ +
                        " temp left join ia_subsidiary line on line.AutoID = temp.id and temp.datatype = 1 "
                        "Order By temp.RowNo, temp.cBatchia, temp.cFree1, temp.cFree2, temp.cFree3, temp.cFree4, "
                        "temp.cFree5, temp.cFree6, temp.cFree7, temp.cFree8, temp.cFree9, temp.cFree10, temp.cfxCCode, "
                        "temp.cfxCode, temp.iItemQuantity, temp.iItemPrice");
}

void ResultTable::drop() {
  account_.execute("If OBJECT_ID(N'" + name_ + "') is not null Drop Table " + name_);
}

}  // namespace quillon::workbench
