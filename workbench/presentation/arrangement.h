// What a reader asks of a report beyond its filter: which columns, in which order, grouped by what, which of the rows. The
// texts are parsed once, against the columns that there are; layouts carry it out.
#pragma once

#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "workbench/catalogue/report_columns.h"

namespace quillon::workbench {

struct SortKey {
  std::string column;  // its name
  bool descending = false;
};

struct RowCondition {
  enum class Kind {
    equals,    // one of the values; letter case does not count
    contains,  // a text that has the value within it; likewise
    range,     // from the first value to the second, both included; an empty one is open
  };
  std::string column;  // its name
  Kind kind = Kind::equals;
  std::vector<std::string> values = {};  // of a range two, else at least one
};

// As the command line gives it.
struct ArrangementText {
  std::vector<std::string> columns = {};  // names or captions
  std::vector<std::string> sort = {};     // the same; a "-" in front is descending
  std::vector<std::string> groupBy = {};  // the same
  std::vector<std::string> where = {};    // column=value,value  column=lower..upper  column~part

  bool empty() const { return columns.empty() && sort.empty() && groupBy.empty() && where.empty(); }
};

struct Arrangement {
  std::vector<std::string> columns = {};  // empty: those of the layout
  std::vector<SortKey> sort = {};         // empty: the order of the layout
  std::vector<std::string> groupBy = {};
  std::vector<RowCondition> where = {};
};

// `text` without blanks at its ends.
std::string trimmed(std::string_view text);

// What of an arrangement is asked for.
struct ArrangementParts {
  bool columns = false;
  bool sort = false;
  bool groupBy = false;
  bool where = false;
};
// Those parts of `asked`, whose columns are given by name or caption. Throws as parseArrangement().
Arrangement resolved(const Arrangement& asked, ArrangementParts parts, std::span<const ReportColumn> known);

// The texts as names of `known`, which are found by name and by either caption. Throws UserError that says what is unknown
// and what is nearest to it.
Arrangement parseArrangement(const ArrangementText& text, std::span<const ReportColumn> known);

}  // namespace quillon::workbench
