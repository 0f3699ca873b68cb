#include "workbench/presentation/result_table.h"

#include <algorithm>

#include "frame/text.h"

namespace quillon::workbench {

bool hasColumn(std::span<const tsql::Column> columns, std::string_view name) {
  return std::ranges::any_of(columns, [name](const auto& column) { return equalIgnoringCase(column.name, name); });
}

namespace {

// Null is neither.
std::string filledTest(const ReportColumn& column) {
  if (column.role == ColumnRole::date) return column.name + " Is Not Null";
  return column.name + (isNumber(column.role) ? " <> 0" : " <> N''");
}

std::string flagOf(const ReportColumn& column) {
  return "Case When " + filledTest(column) + " Then 1 Else 0 End";
}

// Of columns, those that are still empty.
class EmptyColumns {
 public:
  explicit EmptyColumns(std::size_t count) : empty_(count, true), left_(count) {}

  bool any() const { return left_ > 0; }
  bool isEmpty(std::size_t column) const { return empty_[column]; }
  std::vector<std::size_t> columns() const {
    std::vector<std::size_t> columns;
    for (std::size_t i = 0; i < empty_.size(); ++i) {
      if (empty_[i]) columns.push_back(i);
    }
    return columns;
  }
  // One flag for each of `columns`: 1 for one that holds something.
  void note(const tsql::Cursor& flags, std::span<const std::size_t> columns) {
    for (std::size_t i = 0; i < columns.size(); ++i) {
      const auto* flag = std::get_if<std::int64_t>(&flags.value(i));
      if (flag == nullptr || *flag != 1) continue;
      empty_[columns[i]] = false;
      --left_;
    }
  }

 private:
  std::vector<bool> empty_;
  std::size_t left_;
};

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

std::vector<std::vector<tsql::Value>> ResultFacts::sums(
    const std::string& statement, const std::function<std::vector<std::vector<tsql::Value>>()>& find) {
  const std::scoped_lock lock(mutex_);
  const auto known = sums_.find(statement);
  return known != sums_.end() ? known->second : sums_.emplace(statement, find()).first->second;
}

std::int64_t ResultTable::rowCount(const std::string& where) const {
  if (facts_ && where == everyRow) return facts_->rowCount([&] { return countRows(where); });
  return countRows(where);
}

std::vector<ReportColumn> ResultTable::filledColumns(std::span<const ReportColumn> known,
                                                     const std::string& where) const {
  if (!facts_) return findFilled(known, where);
  std::vector<ReportColumn> filled = facts_->filledColumns([&] { return findFilled(known, everyRow); });
  // What is empty in all rows is so in some of them.
  return where == everyRow ? filled : findFilled(filled, where);
}

std::int64_t ResultTable::countRows(const std::string& where) const {
  const auto cursor = account_.query("Select Count(*) From " + name_ + " Where " + where);
  return cursor->next() ? std::get<std::int64_t>(cursor->value(0)) : 0;
}

std::vector<ReportColumn> ResultTable::findFilled(std::span<const ReportColumn> known, const std::string& where) const {
  const std::vector<tsql::Column> present = account_.describe(name_);
  std::vector<ReportColumn> candidates;
  for (const ReportColumn& column : known) {
    if (column.role != ColumnRole::internal && hasColumn(present, column.name)) candidates.push_back(column);
  }
  const std::string from = " From " + name_ + " Where (" + where + ")";
  EmptyColumns empty(candidates.size());
  // The first row that fills a column which none before it fills: a column that holds something mostly does so soon, and
  // to find that the others are empty is one reading without a sum. Where columns are filled late, one by one, the sums
  // end it.
  constexpr int mostLooks = 12;
  for (int look = 0; empty.any() && look <= mostLooks; ++look) {
    const std::vector<std::size_t> columns = empty.columns();
    std::string flags, anyFilled;
    for (const std::size_t column : columns) {
      const std::string flag = flagOf(candidates[column]);
      flags.append(flags.empty() ? "" : ", ").append(look < mostLooks ? flag : "Max(" + flag + ")");
      anyFilled.append(anyFilled.empty() ? "" : " Or ").append(filledTest(candidates[column]));
    }
    const bool last = look == mostLooks;
    std::string statement = last ? "Select " : "Select Top 1 ";
    statement.append(flags).append(from);
    if (!last) statement.append(" And (").append(anyFilled).append(")");
    const auto cursor = account_.query(statement);
    if (!cursor->next()) break;
    empty.note(*cursor, columns);
  }
  std::vector<ReportColumn> filled;
  for (std::size_t i = 0; i < candidates.size(); ++i) {
    if (!empty.isEmpty(i)) filled.push_back(candidates[i]);
  }
  return filled;
}

std::vector<std::vector<tsql::Value>> ResultTable::sums(const std::string& list, const std::string& where,
                                                        const std::string& groups) const {
  const std::string statement = "Select " + list + " From " + name_ + " Where " + where +
                                (groups.empty() ? "" : " Group By " + groups + " Order By " + groups);
  const auto read = [&] {
    std::vector<std::vector<tsql::Value>> rows;
    for (const auto cursor = account_.query(statement); cursor->next();) {
      rows.emplace_back();
      for (std::size_t i = 0; i < cursor->columns().size(); ++i)
        rows.back().push_back(cursor->value(i));
    }
    return rows;
  };
  return facts_ && where == everyRow ? facts_->sums(statement, read) : read();
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
