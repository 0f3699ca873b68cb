// A view as a file for other programs: CSV and JSON, exact numbers with all their decimals.
#pragma once

#include <ostream>

#include "workbench/presentation/csv_style.h"
#include "workbench/presentation/laid_out_report.h"

namespace quillon::workbench {

// One record a row, CR LF; exact numbers, dates as yyyy-mm-dd; null and an empty text are both nothing. A section of other rows
// than lines has in front what each row is, such as "line" or "monthTotal", and how deep it lies; its totals come last. One of
// lines alone has neither, so that it can be loaded as it is.
void writeCsv(std::ostream& out, const ReportDocument& heading, const ReportSection& section, const CsvStyle& style);

// One object: report, title, layout, columns ({name, caption, group}), rows ({kind, level, cells}), totals (the same), lines (how
// many there are). Cells are texts, of exact numbers with all decimals, numbers for whole numbers, or null.
void writeJson(std::ostream& out, const ReportDocument& heading, const ReportSection& section);

}  // namespace quillon::workbench
