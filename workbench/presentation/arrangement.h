// What a reader asks of a report beyond its filter: which columns, in which order, grouped by what, which of the rows.
// It is parsed once, against the columns that there are; layouts carry it out.
#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <vector>

#include "workbench/catalogue/report_columns.h"
#include "workbench/presentation/view.h"

namespace quillon::workbench {

struct SortKey {
  std::string column;  // its name
  bool descending = false;
};

struct RowCondition {
  enum class Kind {
    equals,    // one of the values, letter case and width as the account compares
    contains,  // a text that has the value within it
    range,     // from lower to upper, both included; an empty bound is open
  };
  std::string column;  // its name
  Kind kind = Kind::equals;
  std::vector<std::string> values = {};  // of a range two
};

// As the command line gives it.
struct ArrangementText {
  std::vector<std::string> columns = {};  // names or captions, separated by commas
  std::vector<std::string> sort = {};     // the same; a leading "-" is descending
  std::vector<std::string> groupBy = {};  // the same
  std::vector<std::string> where = {};    // column=value, column=value,value, column=lower..upper, column~part
};

struct Arrangement {
  std::vector<std::string> columns = {};  // empty: those of the layout
  std::vector<SortKey> sort = {};         // empty: the order of the layout
  std::vector<std::string> groupBy = {};
  std::vector<RowCondition> where = {};

  bool empty() const { return columns.empty() && sort.empty() && groupBy.empty() && where.empty(); }
};

// The texts as names of `known`. Throws UserError that names what is unknown and what is nearest to it, a value that is no
// number or date where the column holds such, and a range whose lower bound is above the upper one.
Arrangement parseArrangement(const ArrangementText& text, std::span<const ReportColumn> known);

// `where` as a T-SQL condition over the result table, "1 = 1" when there is none; texts are quoted, numbers and dates were
// checked. `known` gives the columns' roles.
std::string conditionText(std::span<const RowCondition> where, std::span<const ReportColumn> known);

// A view that is held in memory or small, arranged: `where` chooses among its lines (with their details), `sort` orders
// them, `groupBy` puts them under subtotals of the summed columns, `columns` chooses columns. Rows of other kinds that
// stand between lines are dropped when the order changes; opening, closing and totals stay where they are.
View arranged(const View& view, const Arrangement& arrangement, Language language);

}  // namespace quillon::workbench
