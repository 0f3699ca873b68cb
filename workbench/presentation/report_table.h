// A laid-out report as aligned text, for a terminal or a text file.
#pragma once

#include <ostream>

#include "workbench/presentation/laid_out_report.h"
#include "workbench/presentation/text_table.h"

namespace quillon::workbench {

// Heading and conditions, then each section: its rows, those of deeper levels indented, sums set off, totals below a rule, and
// how many lines there are.
void writeTable(std::ostream& out, const LaidOutReport& report, const TableStyle& style);

}  // namespace quillon::workbench
