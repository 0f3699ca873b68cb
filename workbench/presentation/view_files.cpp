#include "workbench/presentation/view_files.h"

#include <string>
#include <string_view>

#include "workbench/account/csv.h"
#include "workbench/presentation/csv_record.h"
#include "workbench/presentation/output_buffer.h"
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
  CsvRecords(std::ostream& out, bool rowKinds, bool guarded) : buffer_(out), rowKinds_(rowKinds), guarded_(guarded) {}

  void heading(const View& view, const CsvStyle& style, Language language) {
    if (rowKinds_) buffer_.text() += "rowKind,level";
    for (const ViewColumn& column : view.columns) {
      const std::string name = style.captions ? fullCaption(column, language) : column.column.name;
      append(guarded_ && beginsFormula(name) ? "'" + name : name);  // of a cost item, say
    }
    end();
  }
  void row(const ViewRow& row) {
    if (rowKinds_) buffer_.text().append(rowKindName(row.kind)).append(",").append(std::to_string(row.level));
    first_ = !rowKinds_;
    for (const tsql::Value& cell : row.cells) {
      const auto* text = std::get_if<std::string>(&cell);
      if (guarded_ && text != nullptr && beginsFormula(*text)) {
        append("'" + *text);
      } else {
        separate();
        appendCsvValue(buffer_.text(), cell);
      }
    }
    end();
  }
  void finish() { buffer_.flush(); }

 private:
  void separate() {
    if (!first_) buffer_.text() += ',';
    first_ = false;
  }
  void append(std::string_view text) {
    separate();
    account::appendCsvText(buffer_.text(), text, account::EmptyText::bare);
  }
  void end() {
    buffer_.text() += "\r\n";
    buffer_.endRow();
  }

  OutputBuffer buffer_;
  bool rowKinds_;
  bool guarded_;
  bool first_ = !rowKinds_;
};

void appendJsonRow(std::string& json, const ViewRow& row) {
  json.append("{\"kind\":\"").append(rowKindName(row.kind)).append("\",\"level\":").append(std::to_string(row.level));
  json.append(",\"cells\":[");
  const char* separator = "";
  for (const tsql::Value& cell : row.cells) {
    json += separator;
    appendJsonValue(json, cell);
    separator = ",";
  }
  json += "]}";
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
  if (!onlyLines) {
    for (const ViewRow& row : view.totals)
      records.row(row);
  }
  records.finish();
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
  OutputBuffer buffer(out);
  for (const auto rows = view.rows(); rows->next();) {
    buffer.text() += separator;
    appendJsonRow(buffer.text(), rows->row());
    buffer.endRow();
    separator = ",\n";
  }
  buffer.text() += "],\n\"totals\":[";
  separator = "\n";
  for (const ViewRow& row : view.totals) {
    buffer.text() += separator;
    appendJsonRow(buffer.text(), row);
    separator = ",\n";
  }
  buffer.text() += "]}\n";
  buffer.flush();
}

}  // namespace quillon::workbench
