// A report as an HTML page.
#pragma once

#include <ostream>

#include "workbench/presentation/laid_out_report.h"

namespace quillon::workbench {

// The report as a page of its own: heading, charts with their figures, and each section with its totals. The page takes
// light and dark from its reader, holds no script, asks for nothing from elsewhere and forbids both to itself. On paper
// (A4 landscape) each sheet has the headings, company, period, day and its number; a table that is wider than the sheet
// stands there as blocks of columns, each with the keys in front.
// The rows of a section are read several times: to find the widths, then to write each block. Throws what reading throws.
void writeHtml(std::ostream& out, const LaidOutReport& report);

}  // namespace quillon::workbench
