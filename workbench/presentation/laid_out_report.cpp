#include "workbench/presentation/laid_out_report.h"

#include "workbench/presentation/value_output.h"

namespace quillon::workbench {

std::string lineCountText(const ReportDocument& heading, const ReportSection& section) {
  const std::string all = groupedCount(section.view.lineCount);
  const std::string shown = section.cut() ? groupedCount(*section.limit) : "";
  const std::string leftOut = std::to_string(section.view.columnsLeftOut);
  if (heading.language == Language::chinese) {
    std::string text = "共 " + all + " 行";
    if (section.cut()) text += "，显示前 " + shown + " 行（全部：--limit 0）";
    if (section.view.columnsLeftOut > 0) text += "；另有 " + leftOut + " 列未显示（--all-columns）";
    if (section.layout == Layout::summary) text += "；明细 " + groupedCount(heading.rowCount) + " 行（--layout lines）";
    return text;
  }
  std::string text = section.cut() ? "the first " + shown + " of " + all + " lines (all: --limit 0)" : all + " lines";
  if (section.view.columnsLeftOut > 0) text += "; " + leftOut + " more columns are not shown (--all-columns)";
  if (section.layout == Layout::summary) text += "; " + groupedCount(heading.rowCount) + " rows (--layout lines)";
  return text;
}

}  // namespace quillon::workbench
