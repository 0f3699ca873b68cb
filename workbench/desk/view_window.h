// A view of a run's result that is open on the desk: pages of its rows.
#pragma once

#include <condition_variable>
#include <cstdint>
#include <exception>
#include <filesystem>
#include <map>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "workbench/desk/api_error.h"
#include "workbench/desk/row_spool.h"
#include "workbench/desk/task_thread.h"
#include "workbench/runs/report_layouts.h"
#include "workbench/tsql/engine/engine.h"

namespace quillon::workbench::desk {

// Rows of a view, from the first to below the second.
using RowSpan = std::pair<std::int64_t, std::int64_t>;

// What is asked of a view.
struct ViewRequest {
  Layout layout = Layout::lines;
  std::optional<PivotArrangement> pivot = {};     // in place of the layout, which is then Layout::pivot
  std::optional<std::int64_t> comparedWith = {};  // the run that the pivot is held against
  Arrangement arrangement = {};
  bool allColumns = false;
  bool details = false;  // rows of kind `detail` as rows of their own; otherwise they are folded away
  Language language = Language::chinese;

  LayoutOptions options() const;
  // Whether it is of a ledger whose cost items are folded away, and nothing goes by their columns.
  bool hidesParts() const;
  // The same without columns that only these would fill, for who cannot fold them out.
  LayoutOptions optionsOfExport() const;
  // Whether the column is one that only these cost items fill.
  bool isOfParts(const ViewColumn& column) const;
};

// A thread of its own makes the view, with a reader of its own. Lines of an account file's result table stay there: they
// are ordered once, in the database, and read page by page. The rows of every other layout go to a file as they come, and
// so do the lines of a server, which would have to order them anew for each page. Members may be called on any thread;
// they throw what making the view threw.
class ViewWindow {
 public:
  // `reader` is the window's own, and so is `other`, that of the result that it is compared with. `file` is for its rows.
  ViewWindow(std::int64_t id, std::unique_ptr<MadeReport> reader, ViewRequest request, std::filesystem::path file,
             std::unique_ptr<MadeReport> other = nullptr);
  ViewWindow(const ViewWindow&) = delete;
  ViewWindow& operator=(const ViewWindow&) = delete;
  // Stops what runs.
  ~ViewWindow();

  // The view without its rows.
  Json description();
  // {"rowCount", "complete", "rows": [...]} as a text: `limit` rows from `offset` on. As long as the view is not complete,
  // rowCount counts the rows that there are by now.
  std::string rows(std::int64_t offset, std::int64_t limit);
  // {"rows": [...]}: what is folded away beneath row number `row`.
  std::string details(std::int64_t row);
  // The rows of the result table behind a figure of a pivot: {"where": [...]}, as conditions of a view. A column of names
  // stands for the whole row. Of a comparison also {"run"}, whose rows they are. Throws ApiError 404 when there is no such
  // place, and for a view that is no pivot.
  Json behind(std::int64_t row, std::int64_t column);
  // Folds away the rows that these subtotals of a pivot sum, and no others: exports leave them out. Throws ApiError 404
  // when one of them is no subtotal.
  void fold(const std::vector<std::int64_t>& subtotals);
  std::vector<RowSpan> folded();
  // The ledger line whose document row number `row` opens. Throws ApiError 404 when it opens none.
  std::int64_t ledgerLine(std::int64_t row);

  const ViewRequest& request() const { return request_; }

 private:
  void make();
  ReportSection section();
  void describe(const ReportSection& section);
  void sayInWords(const RowCondition& condition, Json& told) const;
  // The account file that the rows are read from; nullptr on a server.
  tsql::Connection* accountFile() const;
  void readFirstPage();
  void spoolRows();
  void noteSubtotal(const ViewRow& row, std::int64_t number);
  void orderRows();
  void fail();
  template <typename Condition>
  void waitUntil(Condition condition);

  WindowRow windowRow(const ViewRow& row) const;
  std::string cellsOf(const std::vector<tsql::Value>& cells) const;
  std::vector<WindowRow> read(tsql::Cursor& cursor) const;
  std::vector<WindowRow> linesAt(std::int64_t offset, std::int64_t limit);
  std::vector<WindowRow> rowsAt(std::int64_t offset, std::int64_t limit);
  // `first`: the number of the first; nothing for rows that are none of the view.
  std::string json(const std::vector<WindowRow>& rows, std::optional<std::int64_t> first) const;

  const std::int64_t id_;
  const Report& report_;
  const ViewRequest request_;
  const std::filesystem::path file_;

  // Of the thread.
  std::unique_ptr<MadeReport> reader_;
  std::unique_ptr<MadeReport> other_;
  std::vector<std::int64_t> groupsBegin_;  // of a pivot that is being read: the first row of the group at each level
  std::vector<std::int64_t> order_;        // of lines that stay where they are: the rows' numbers

  // Set before `made_`, then as they are.
  ReportDocument heading_;
  View view_;  // without rows where they have been read
  Json description_;
  std::unique_ptr<RowSpool> spool_;   // null: lines that stay where they are
  std::vector<WindowRow> firstPage_;  // of these
  std::optional<Pivot> pivot_;        // of a pivot whose report has rows
  std::optional<Comparison> comparison_;

  mutable std::mutex mutex_;  // of what follows
  std::condition_variable changed_;
  bool made_ = false;
  bool complete_ = false;
  std::exception_ptr error_;
  std::map<std::int64_t, std::int64_t> sums_;  // of a pivot: the first row of those that a subtotal sums
  std::vector<RowSpan> folded_;                // of these: what is folded away

  TaskThread thread_;  // last: it uses what stands above
};

}  // namespace quillon::workbench::desk
