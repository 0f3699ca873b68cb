// Which figures of a view a spreadsheet can compute from the rows beside them, and by which formula: totals, subtotals,
// heads of groups, month and year totals of a ledger, running balances, and what a column says to follow from others of its
// row. A formula is given only where it comes to the
// very figure that the view has: its exact sum is compared, and a sum in doubles, as a spreadsheet makes it, must agree
// to a hundredth of the last decimal shown. Where lines are left out or figures do not add up, the figure stands alone.
#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "workbench/presentation/exact_sum.h"
#include "workbench/presentation/view.h"

namespace quillon::workbench {

// An exact number as a cell holds it, which is a double; nothing for other values and for more than the 15 digits that a
// double keeps.
std::optional<double> cellNumber(const tsql::Value& value);
// The same as it is known by its text, "-1234.5600".
std::optional<double> cellNumber(std::string_view exact);

// Where the rows of a view stand: on a sheet and, past its last row, on further sheets with the same heading. Rows are
// counted from the view's first one.
class XlsxPlaces {
 public:
  // Rows begin at the `firstRow`th row of each sheet (1 is the topmost), `capacity` of them on each.
  XlsxPlaces(std::string name, std::int64_t firstRow, std::int64_t capacity)
      : name_(std::move(name)), firstRow_(firstRow), capacity_(capacity) {}

  // "明细", "明细 (2)".
  std::string sheetName(std::int64_t sheet) const;
  std::int64_t sheetOf(std::int64_t row) const { return row / capacity_; }
  // "F7", for a formula on sheet number `home`: on another sheet with its name before it.
  std::string cell(std::int64_t row, std::size_t column, std::int64_t home) const;
  // The cell `distance` rows below `row`, on the same sheet however many rows that has.
  std::string cellBelow(std::int64_t row, std::int64_t distance, std::size_t column) const;
  // "F7:F9" and, when they reach over several sheets, one for each.
  std::vector<std::string> areas(std::int64_t first, std::int64_t last, std::size_t column, std::int64_t home) const;

 private:
  std::string name_;
  std::int64_t firstRow_;
  std::int64_t capacity_;
};

class XlsxFormulas {
 public:
  // One a cell; empty where the value stands.
  using Row = std::vector<std::string>;

  // `decimals`: those shown, one a column. `view` stays as long as this.
  XlsxFormulas(const View& view, const std::vector<int>& decimals, XlsxPlaces places);

  // Reads the view's rows once; to be called before the first of them when this is the head of a group, because a head
  // stands above what it sums. A few numbers are kept for each head.
  void readGroups();
  // The formulas of the view's next row.
  Row ofRow(const ViewRow& row);
  // Those of the view's totals below its last row, from the first on.
  Row ofTotal(const ViewRow& total);

 private:
  // A cell of a column that can be summed.
  struct Figure {
    tsql::Value exact;
    double real = 0;
  };
  using Figures = std::vector<std::optional<Figure>>;  // one a column that can be summed

  // The lines with one text in a column, such as one state.
  struct Subset {
    std::size_t column;
    std::string key = {};   // the text without letter case
    std::string text = {};  // empty: there were too many different ones in the column
    std::vector<ExactSum> exact = {};
    std::vector<double> real = {};
  };
  // What all rows so far came to: by cells as SUBTOTAL sees them, which passes over other SUBTOTALs, and by lines alone.
  struct Sums {
    std::vector<ExactSum> cells, lines;
    std::vector<Subset> subsets;
  };
  // The rows from `first` on: what they come to as doubles, and what all rows before them came to.
  struct Range {
    std::int64_t first = 0;
    std::shared_ptr<const Sums> before;
    std::vector<double> cells, lines;
  };
  struct OpenGroup {
    std::size_t number;
    int level;
    Range range;
    Figures figures;
  };
  // The head of a group: where its rows end, and which of the summed columns are SUBTOTALs or sums of marked lines.
  struct Group {
    std::int64_t last = 0;
    std::uint64_t subtotals = 0;
    std::uint64_t lineSums = 0;
  };
  // Three columns of one heading: what comes in, what goes out, what is there.
  struct Balance {
    std::size_t in, out, balance;  // numbers of summed columns
    std::optional<std::int64_t> above = {};
    ExactSum exact = {};
    double real = 0;
  };
  // What a column says of itself (RowFormula), by places of columns.
  struct OfRow {
    std::size_t column;
    std::vector<std::size_t> sumOf;
    std::optional<std::pair<std::size_t, std::size_t>> quotient;
    int decimals;
  };
  void start();
  void findBalances();
  void findRowFormulas();
  void rowFormulas(Row& formulas, const ViewRow& row, std::int64_t above, std::int64_t distance) const;
  std::string rowSum(const OfRow& formula, const ViewRow& row, std::int64_t above, std::int64_t distance) const;
  std::string rowQuotient(const OfRow& formula, const ViewRow& row, std::int64_t above, std::int64_t distance) const;
  Row formulasOf(const ViewRow& row, const Figures& figures);
  void groupFormulas(Row& formulas, const Figures& figures);
  void balanceFormulas(Row& formulas, const ViewRow& row, const Figures& figures);
  void rangeFormulas(Row& formulas, const Figures& figures, const Range& range) const;
  bool subsetFormulas(Row& formulas, const ViewRow& row, const Figures& figures, const Range& range) const;
  void sumFormulas(Row& formulas, const ViewRow& row, const Figures& figures, const Range& range) const;
  void closeGroups(int level);
  void closeGroup();
  void addCell(std::size_t number, const Figure& figure);
  void add(const ViewRow& row, const Figures& figures, const Row& formulas);
  void addToSubsets(const ViewRow& row, const Figures& figures);
  void beginRange(Range& range) const;
  void beginLevels(int level);
  void noteMarks(const ViewRow& row);

  Figures figuresOf(const ViewRow& row) const;
  bool agrees(const Figure& figure, const ExactSum& exact, double real, std::size_t number) const;
  bool subtotalAgrees(const Figure& figure, const Range& range, std::size_t number) const;
  bool lineSumAgrees(const Figure& figure, const Range& range, std::size_t number) const;
  std::string subtotal(std::int64_t first, std::int64_t last, std::size_t column) const;
  // `conditions`: columns and what they must hold.
  std::string conditionalSum(std::int64_t first, std::int64_t last, std::size_t column,
                             const std::vector<std::pair<std::size_t, std::string>>& conditions) const;

  const View& view_;
  XlsxPlaces places_;
  std::vector<std::size_t> summed_;  // the columns that can be summed
  std::vector<double> tolerance_;    // of these, by which a sum in doubles may differ
  std::vector<std::size_t> texts_;   // the columns of texts

  std::vector<OfRow> ofRow_;
  std::int64_t totals_ = 0;  // written so far
  std::int64_t home_ = 0;    // the sheet that is written
  bool monthEnded_ = false;  // the totals of a month stand above
  std::int64_t row_ = 0;     // the next one
  Sums sums_;
  Range all_, month_, year_;
  std::vector<Range> levels_;  // since the last head or subtotal of this level or a higher one
  std::vector<Balance> balances_;
  std::vector<bool> marks_;            // the columns that hold something in lines and in nothing else
  std::vector<bool> subsetsKept_;      // one a column of texts
  std::vector<bool> notInLinesAlone_;  // one a column: rows other than lines hold something there
  std::optional<int> subtotalled_;     // the level of the subtotals above, if there are

  bool reading_ = false;  // the groups are being read
  bool nested_ = false;   // lines below heads say themselves how deep they lie, and so which heads they are not below
  bool mixed_ = false;    // rows of a ledger stand within groups, whose sums are then left alone
  std::vector<OpenGroup> open_;
  std::vector<Group> groups_;
  std::vector<bool> groupMarks_;
  std::size_t group_ = 0;  // the next one
};

}  // namespace quillon::workbench
