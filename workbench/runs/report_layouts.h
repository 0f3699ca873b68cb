// A report that was made, laid out as its reader asks.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "workbench/presentation/arrangement.h"
#include "workbench/presentation/comparison.h"
#include "workbench/presentation/laid_out_report.h"
#include "workbench/presentation/pivot.h"
#include "workbench/runs/report_run.h"

namespace quillon::workbench {

// A page is read, not loaded: it shows this many lines, with what belongs to them, unless more are asked for.
inline constexpr std::int64_t rowsOfAPage = 2000;

struct LayoutOptions {
  std::optional<Layout> layout = {};  // nothing: the report's first
  ArrangementText arrangement = {};
  std::optional<Arrangement> arranged = {};  // the same from who does not write it as texts; then those do not count
  // A pivot in place of a layout. Of the arrangement its conditions count; the pivot has an order of its own.
  std::optional<PivotArrangement> pivot = {};
  // The pivot is held against that of this result of the same report, whose rows meet the same conditions. It outlives what
  // is laid out. Nullptr: the pivot alone.
  const MadeReport* comparedWith = nullptr;
  bool allColumns = false;                 // also those that are shown when asked
  std::optional<std::int64_t> limit = {};  // lines of a section; nothing: all
  // Rows of a section, what belongs to lines and heads them counted as well; for want of a limit. Nothing: all.
  std::optional<std::int64_t> rowsOfPage = {};
  std::string company = {};                // whose account it is; empty: the account's code
  std::vector<std::string> warnings = {};  // what the heading says of errors that touch the rows, a line each
  bool details = false;                    // of a ledger: the cost items of each line beneath it
  bool ledgerLines = false;                // rows say which ledger line they are of
  bool offers = false;                     // sections say which columns may be named (ReportSection::offered)

  // Whether the rows of the result table are to be shown as they are.
  bool asStored() const { return !layout && !limit && arrangement.empty() && !arranged && !pivot; }
};

// Throws UserError when the report does not have the layout, or what the pivot names.
void checkLayout(const Report& report, const LayoutOptions& options);

// The pivot of a report that was made, whose result table has rows. Throws as Pivot() and laidOut().
Pivot pivotOf(const MadeReport& report, Language language, const LayoutOptions& options, const PivotOptions& pivot);
// The same held against that of `options.comparedWith`. Throws UserError, too, for what cannot be compared, and when that is
// of another report.
Comparison comparisonOf(const MadeReport& report, Language language, const LayoutOptions& options,
                        const PivotOptions& pivot);
// What it can be asked for.
PivotChoices pivotChoicesOf(const MadeReport& report, Language language);

// Its heading: title, conditions with the names of codes, decimals of the account.
ReportDocument headingOf(const MadeReport& report, Language language, const std::string& company);

enum class LayoutOutput {
  fields,    // the layout that is asked for, each field in a column of its own, for programs
  table,     // the layout that is asked for, for people
  page,      // with charts, where the layout has some
  workbook,  // with the summary and the lines beside it, where the report has these
};

// The report in the layout that is asked for. Its rows are read from the result table while they are written, so `report`
// outlives what is given. Throws UserError for an arrangement that does not fit, tsql::SqlError when the account refuses a
// statement.
LaidOutReport laidOut(const MadeReport& report, Language language, const LayoutOptions& options, LayoutOutput output);

}  // namespace quillon::workbench
