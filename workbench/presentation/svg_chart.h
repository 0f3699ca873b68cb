// A chart as inline SVG: bars or a line, drawn without colours or fonts of its own, so that the page's sheet settles both
// for light, dark and paper.
#pragma once

#include <ostream>
#include <string>

#include "workbench/presentation/laid_out_report.h"
#include "workbench/presentation/report_document.h"

namespace quillon::workbench {

// Writes the drawing; `id` is unique on the page. The figures are told in words for those who do not see it. Bars carry
// their exact figures, a line those of its ends and extremes. Nothing is written of a chart without points.
void writeSvg(std::ostream& out, const ReportDocument& document, const Chart& chart, const std::string& id);

// The figure of a point as the chart's table shows it.
std::string figureText(const ReportDocument& document, const Chart& chart, const tsql::Value& value);

// Marks of an axis that takes in zero and all figures between `least` and `greatest`: `first` to `last` times `step` times
// ten to the `exponent`.
struct AxisMarks {
  int first = 0;
  int last = 0;
  int step = 1;  // 1, 2 or 5
  int exponent = 0;

  double at(int mark) const;
  // "1.5", in units of ten to the `unit`.
  std::string text(int mark, int unit) const;
};
AxisMarks axisMarks(double least, double greatest);

// In which power of ten an axis of the language counts: ten thousands and hundred millions, or thousands, millions and so
// on; 0 for small figures.
int axisUnit(const AxisMarks& marks, Language language);

}  // namespace quillon::workbench
