#include "workbench/presentation/report_table.h"

#include <string>
#include <utility>
#include <vector>

#include "workbench/presentation/value_output.h"

namespace quillon::workbench {

namespace {

// Rows that close a part of a ledger stand between rules.
bool standsBetweenRules(RowKind kind) {
  return kind == RowKind::opening || kind == RowKind::monthTotal || kind == RowKind::yearTotal ||
         kind == RowKind::closing;
}

Emphasis emphasisOf(RowKind kind) {
  if (kind == RowKind::detail) return Emphasis::faint;
  return isSetOff(kind) ? Emphasis::strong : Emphasis::none;
}

class SectionTable {
 public:
  SectionTable(std::ostream& out, const ReportDocument& heading, const View& view, const TableStyle& style)
      : heading_(heading), view_(view), table_(out, headings(), style) {}

  void write() {
    for (const auto rows = view_.rows(); rows->next();)
      put(rows->row());
    if (!view_.totals.empty() && !between_) table_.rule();
    between_ = true;  // totals stand together
    for (const ViewRow& row : view_.totals)
      table_.row(cellsOf(row), emphasisOf(row.kind));
    table_.finish();
  }

 private:
  std::vector<TableColumn> headings() const {
    std::vector<TableColumn> columns;
    for (const ViewColumn& column : view_.columns)
      columns.push_back({.heading = column.caption(heading_.language),
                         .align = isNumber(column.column.role) ? Align::right : Align::left,
                         .group = column.group(heading_.language)});
    return columns;
  }

  void put(const ViewRow& row) {
    const bool ruled = standsBetweenRules(row.kind);
    if (ruled != between_ && !first_) table_.rule();
    between_ = ruled;
    first_ = false;
    table_.row(cellsOf(row), emphasisOf(row.kind));
  }

  std::vector<std::string> cellsOf(const ViewRow& row) const {
    std::vector<std::string> cells;
    for (std::size_t i = 0; i < row.cells.size(); ++i)
      cells.push_back(cellText(heading_, view_.columns[i].column, row.cells[i]));
    const int depth = row.level + (row.kind == RowKind::detail ? 1 : 0);
    if (depth > 0 && row.kind != RowKind::subtotal) indent(cells, static_cast<std::size_t>(depth) * 2);
    return cells;
  }

  // The first text of the row.
  void indent(std::vector<std::string>& cells, std::size_t blanks) const {
    for (std::size_t i = 0; i < cells.size(); ++i) {
      if (cells[i].empty() || isNumber(view_.columns[i].column.role)) continue;
      cells[i].insert(0, blanks, ' ');
      return;
    }
  }

  const ReportDocument& heading_;
  const View& view_;
  TextTable table_;
  bool first_ = true;
  bool between_ = false;
};

}  // namespace

void writeTable(std::ostream& out, const LaidOutReport& report, const TableStyle& style) {
  const ReportDocument& heading = report.heading;
  out << heading.title << '\n';
  const std::string_view colon = heading.language == Language::chinese ? "：" : ": ";
  for (const auto& [caption, text] : heading.conditions)
    out << caption << colon << text << '\n';
  if (report.sections.empty()) out << '\n' << heading.text(noRowsCaption) << '\n';
  for (const ReportSection& section : report.sections) {
    out << '\n' << layoutCaption(section.layout).in(heading.language) << '\n';
    SectionTable(out, heading, section.limit ? limited(section.view, *section.limit) : section.view, style).write();
    out << '\n' << lineCountText(heading, section) << '\n';
  }
}

}  // namespace quillon::workbench
