#include "workbench/presentation/view_files.h"

#include <string>
#include <string_view>

#include "workbench/account/csv.h"
#include "workbench/presentation/value_output.h"

namespace quillon::workbench {

namespace {

// A group's heading and the column's own: "收入数量", "Receipts: quantity" has its group in front, too.
std::string fullCaption(const ViewColumn& column, Language language) {
  const std::string& group = column.group(language);
  if (group.empty()) return column.caption(language);
  return group + (language == Language::chinese ? "" : " ") + column.caption(language);
}

View shownView(const ReportSection& section) {
  return section.limit ? limited(section.view, *section.limit) : section.view;
}

bool beginsFormula(std::string_view text) {
  constexpr std::string_view signs = "=+-@\t\r";
  return !text.empty() && signs.find(text.front()) != std::string_view::npos;
}

class CsvRecords {
 public:
  CsvRecords(std::ostream& out, bool rowKinds, bool guarded) : out_(out), rowKinds_(rowKinds), guarded_(guarded) {}

  void heading(const View& view, const CsvStyle& style, Language language) {
    if (rowKinds_) record_ = "rowKind,level";
    for (const ViewColumn& column : view.columns) {
      const std::string name = style.captions ? fullCaption(column, language) : column.column.name;
      append(guarded_ && beginsFormula(name) ? "'" + name : name);  // of a cost item, say
    }
    end();
  }
  void row(const ViewRow& row) {
    if (rowKinds_) record_ = std::string(rowKindName(row.kind)).append(",").append(std::to_string(row.level));
    first_ = !rowKinds_;
    for (const tsql::Value& cell : row.cells) {
      const std::string text = plainText(cell, "");
      append(guarded_ && std::holds_alternative<std::string>(cell) && beginsFormula(text) ? "'" + text : text);
    }
    end();
  }

 private:
  void append(std::string_view text) {
    if (!first_) record_ += ',';
    first_ = false;
    account::appendCsvText(record_, text, account::EmptyText::bare);
  }
  void end() {
    out_ << record_ << "\r\n";
    record_.clear();
  }

  std::ostream& out_;
  bool rowKinds_;
  bool guarded_;
  bool first_ = !rowKinds_;
  std::string record_;
};

void writeJsonRow(std::ostream& out, const ViewRow& row) {
  out << "{\"kind\":\"" << rowKindName(row.kind) << "\",\"level\":" << row.level << ",\"cells\":[";
  const char* separator = "";
  for (const tsql::Value& cell : row.cells) {
    out << separator;
    writeJsonValue(out, cell);
    separator = ",";
  }
  out << "]}";
}

void writeJsonField(std::ostream& out, std::string_view name, std::string_view text) {
  out << '"' << name << "\":";
  writeJsonText(out, text);
}

}  // namespace

void writeCsv(std::ostream& out, const ReportDocument& heading, const ReportSection& section, const CsvStyle& style) {
  const View view = shownView(section);
  if (style.bom) out << byteOrderMark;
  const bool onlyLines = section.layout == Layout::lines && !section.grouped;
  CsvRecords records(out, !onlyLines, style.guarded);
  records.heading(view, style, heading.language);
  for (const auto rows = view.rows(); rows->next();)
    records.row(rows->row());
  if (onlyLines) return;
  for (const ViewRow& row : view.totals)
    records.row(row);
}

void writeJson(std::ostream& out, const ReportDocument& heading, const ReportSection& section) {
  const View view = shownView(section);
  out << '{';
  writeJsonField(out, "report", heading.report);
  out << ',';
  writeJsonField(out, "title", heading.title);
  out << ',';
  writeJsonField(out, "layout", layoutName(section.layout));
  out << ",\"lines\":" << view.lineCount << ",\n\"columns\":[";
  const char* separator = "\n";
  for (const ViewColumn& column : view.columns) {
    out << separator << '{';
    writeJsonField(out, "name", column.column.name);
    out << ',';
    writeJsonField(out, "caption", column.caption(heading.language));
    out << ',';
    writeJsonField(out, "group", column.group(heading.language));
    out << '}';
    separator = ",\n";
  }
  out << "],\n\"rows\":[";
  separator = "\n";
  for (const auto rows = view.rows(); rows->next();) {
    out << separator;
    writeJsonRow(out, rows->row());
    separator = ",\n";
  }
  out << "],\n\"totals\":[";
  separator = "\n";
  for (const ViewRow& row : view.totals) {
    out << separator;
    writeJsonRow(out, row);
    separator = ",\n";
  }
  out << "]}\n";
}

}  // namespace quillon::workbench
