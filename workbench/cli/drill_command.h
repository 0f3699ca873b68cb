// `quillon drill`: acts on a row of a report, as the user of the host platform does, and shows which document was
// opened.
#pragma once

#include <ostream>
#include <string>
#include <vector>

#include "workbench/cli/screen_options.h"
#include "workbench/runs/report_run.h"

namespace CLI {
class App;
}

namespace quillon::workbench {

enum class DrillFormat { table, json };

struct DrillOptions {
  // The report whose row it is. With a filter (file or settings) the report is run and the first of its rows that has
  // all values of `row` is taken; without one, `row` is the row.
  ReportRequest report = {};
  std::vector<std::string> row = {};  // column=value, at least one
  std::string action = "Vouch";       // "Vouch": the source document; anything else: the general-ledger voucher
  DrillFormat format = DrillFormat::table;
  ScreenOptions screen = {};
};

// Opens the document and writes it, or the message that the user gets instead. As JSON one object on one line:
// {"action":"Vouch","row":{...},"messages":["..."],"opened":[{"member":"ShowVoucher","title":"...",
// "heading":{...},"lines":[{...}]}]}, where `row` holds the columns that are not empty. `notes` gets what the user must
// know about the report's run. Throws std::exception with one line for the user.
void runDrill(const DrillOptions& options, std::ostream& out, std::ostream& notes);

void addDrillCommand(CLI::App& app);

}  // namespace quillon::workbench
