// `quillon report`: runs a report on an account and shows its rows.
#pragma once

#include <ostream>
#include <string>
#include <vector>

#include "workbench/cli/filters_command.h"
#include "workbench/cli/terminal.h"
#include "workbench/platform/account_source.h"
#include "workbench/platform/language.h"
#include "workbench/runs/layout_text.h"
#include "workbench/runs/report_layouts.h"

namespace CLI {
class App;
}

namespace quillon::workbench {

enum class ReportFormat { table, csv, json, html, xlsx };

struct ReportOptions {
  std::string report = {};  // as it is registered, such as "fx-wt"
  AccountSource account = {};
  std::string filterFile = {};             // a filter file; empty for none
  std::vector<std::string> settings = {};  // key=value, over the filter file
  FilterToSave saving = {};                // keep the filter as it was given
  // The report's dialog fills what filter file and settings leave empty and says which choices there are; without it
  // the registered defaults do.
  bool dialog = true;
  ReportFormat format = ReportFormat::table;
  std::string outputFile = {};  // empty: `out`, which xlsx cannot be written to
  Language language = Language::chinese;
  std::string date = {};  // the login's date, yyyy-mm-dd; empty: the last day of the current year
  LayoutOptions layout = {};
  // The pivot is held against that of the report with these, key=value over its filter, and on this account; empty, and
  // no account: against nothing.
  std::vector<std::string> against = {};
  AccountSource comparedAccount = {};
  FileToSave savingLayout = {};       // keep the layout as it was asked for
  LayoutText layoutText = {};         // of that
  bool captions = false;              // csv with captions for headings
  bool bom = false;                   // csv with a byte order mark
  bool explain = false;               // each statement with its time and row count, to `notes`
  bool check = false;                 // look for errors of the ledger that touch the rows, and tell them
  bool exact = false;                 // compare to the last digit, letter and type
  bool keep = false;                  // keep the result table and tell its name
  bool terminal = false;              // `notes` is a terminal: show progress there
  bool outputIsFile = false;          // `out` is a file: progress can be shown while it is written
  std::optional<Screen> screen = {};  // of `out`; none: it is no terminal
  bool wide = false;                  // tables as wide as they need to be, whatever the screen is
  bool pager = true;                  // long output on a screen goes through the user's pager
};

// Runs the report and writes it. Throws std::exception with one line for the user when it cannot be made. What the user
// must know besides the report goes to `notes`.
void runReport(const ReportOptions& options, std::ostream& out, std::ostream& notes);

// Runs the report on the options' account and on `second`, with the same filter, and compares the rows (compareResults()
// in report_comparison.h); shows as many as `options.layout.limit` says, or 10. Throws as runReport().
bool compareReports(const ReportOptions& options, const AccountSource& second, std::ostream& out, std::ostream& notes);

void addReportCommand(CLI::App& app);

}  // namespace quillon::workbench
