// A report laid out for a reader: columns with their headings, and rows that are told apart by what they are. Layouts make
// views; tables, pages, workbooks and files write them, so that each layout comes in each format.
#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "workbench/catalogue/report_columns.h"
#include "workbench/tsql/values/value.h"

namespace quillon::workbench {

enum class RowKind {
  line,        // a row that counts: a ledger line, a row of the result table, a cost item of the summary
  detail,      // belongs to the line above it: a cost item of that line
  group,       // heads the rows below it, with their sums where the layout gives them: a node of the tree, a document
  subtotal,    // sums of the rows above it
  opening,     // the balance that a ledger begins with
  monthTotal,  // receipts and issues of a month, and the balance at its end
  yearTotal,   // the same from the beginning of the year or of the ledger
  closing,     // the balance that a ledger ends with
  difference,  // by how much two figures differ that should agree
  total,       // sums of all rows, shown or not
};

// "line", "monthTotal".
std::string_view rowKindName(RowKind kind);

// Whether a row of this kind is set off from the lines.
constexpr bool isSetOff(RowKind kind) {
  return kind != RowKind::line && kind != RowKind::detail;
}

// How the figures of a column follow from others of the same row; columns are given by name.
struct RowFormula {
  std::vector<std::string> sumOf = {};  // they are the sum of these, or
  std::string dividend = {};            // one divided by another,
  std::string divisor = {};
  int decimals = 0;  // rounded half away from zero to so many
};

struct ViewColumn {
  ReportColumn column;  // name, captions and role; the name is the result table's or the layout's own
  // The heading that neighbouring columns share, such as 收入 above 数量, 单价 and 金额; empty for none.
  std::string groupChinese = {};
  std::string groupEnglish = {};
  bool key = false;  // says which row it is: stays in sight, comes first on each block of a page, and is never left out
  std::optional<RowFormula> formula = {};

  const std::string& caption(Language language) const { return column.caption(language); }
  const std::string& group(Language language) const {
    return language == Language::chinese ? groupChinese : groupEnglish;
  }
};

struct ViewRow {
  RowKind kind = RowKind::line;
  int level = 0;                   // how deep a group, subtotal or line lies; 0 outermost
  std::vector<tsql::Value> cells;  // one a column; null is nothing. Words of a total stand in a text column's cell
  // The ledger line (AutoID) whose document the row opens; nothing where it opens none, or nobody asked
  // (LayoutRequest::ledgerLines).
  std::optional<std::int64_t> ledgerLine = {};
};

// The rows of a view, read once from first to last.
class ViewRows {
 public:
  virtual ~ViewRows() = default;
  virtual bool next() = 0;                 // false past the last row
  virtual const ViewRow& row() const = 0;  // stays until the next call
};

// Rows of a view that are rows of a table as they stand there: a reader of single pages takes them from the table. All
// texts are T-SQL.
struct TableRows {
  std::string table;
  std::string list;  // one expression a column of the view, then the ledger line where that was asked for
  std::string where;
  std::string order;
  bool ledgerLines = false;
};

struct View {
  std::vector<ViewColumn> columns;
  std::function<std::unique_ptr<ViewRows>()> rows;  // begins anew with each call; destroy one before the next is made
  std::vector<ViewRow> totals;                      // stand last, whatever limit cuts the rows
  std::int64_t lineCount = 0;                       // rows of kind `line`
  std::size_t columnsLeftOut = 0;                   // that hold something and are shown when asked for
  std::optional<TableRows> tableRows = {};          // what `rows` reads, where it is that and no more
};

// The ledger line that a value of such a column names.
std::optional<std::int64_t> ledgerLineOf(const tsql::Value& value);

// A view's rows that are held in memory; `rows` is shared by all that read them.
std::function<std::unique_ptr<ViewRows>()> heldRows(std::shared_ptr<const std::vector<ViewRow>> rows);

// The view cut after `limit` lines, held in memory, without the columns that are then empty (keys stay); a group without
// lines behind it is dropped from the end. Totals and counts stay those of the whole.
View limited(const View& view, std::int64_t limit);

// How many lines of `view` come within its first `rows` rows that are lines, details or heads of groups; a line has all of
// its details with it. At least one, if there is a line. Sums do not count: they are few beside what they sum.
std::int64_t linesWithin(const View& view, std::int64_t rows);

// `view` without the columns that hold nothing in any row, keys among them: reads the rows once.
View withoutEmptyColumns(View view);

}  // namespace quillon::workbench
