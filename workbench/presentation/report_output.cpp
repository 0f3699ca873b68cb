#include "workbench/presentation/report_output.h"

#include <algorithm>

#include "frame/text.h"
#include "workbench/presentation/csv_record.h"
#include "workbench/presentation/output_buffer.h"
#include "workbench/presentation/value_output.h"

namespace quillon::workbench {

namespace {

void beginRows(RowProgress& progress, const ResultTable& table) {
  if (progress.shown()) progress.begin(table.rowCount());
}

}  // namespace

void writeCsv(std::ostream& out, const ResultTable& table, std::span<const ReportColumn> known, const CsvStyle& style,
              Language language, RowProgress& progress) {
  beginRows(progress, table);
  const auto cursor = table.rows();
  const auto columns = cursor->columns();
  if (style.bom) out << byteOrderMark;
  writeCsvRecord(out, columns.size(), [&](std::size_t i) {
    const auto caption =
        std::ranges::find_if(known, [&](const auto& entry) { return equalIgnoringCase(entry.name, columns[i].name); });
    return style.captions && caption != known.end() ? caption->caption(language) : columns[i].name;
  });
  OutputBuffer buffer(out);
  while (cursor->next()) {
    progress.row();
    for (std::size_t i = 0; i < columns.size(); ++i) {
      if (i > 0) buffer.text() += ',';
      appendCsvValue(buffer.text(), cursor->value(i));
    }
    buffer.text() += "\r\n";
    buffer.endRow();
  }
  buffer.flush();
}

void writeJson(std::ostream& out, const ReportDocument& document, const ResultTable& table,
               std::span<const ReportColumn> known, RowProgress& progress) {
  beginRows(progress, table);
  const auto cursor = table.rows();
  const auto columns = cursor->columns();
  out << "{\"report\":";
  writeJsonText(out, document.report);
  out << ",\"title\":";
  writeJsonText(out, document.title);
  out << ",\n\"columns\":";
  writeJsonColumns(out, columns);
  out << ",\n\"captions\":{";
  const char* separator = "";
  for (const tsql::Column& column : columns) {
    const auto caption =
        std::ranges::find_if(known, [&](const auto& entry) { return equalIgnoringCase(entry.name, column.name); });
    if (caption == known.end()) continue;
    out << separator;
    writeJsonText(out, column.name);
    out << ':';
    writeJsonText(out, caption->caption(document.language));
    separator = ",";
  }
  out << "},\n\"rows\":[";
  separator = "\n";
  OutputBuffer buffer(out);
  while (cursor->next()) {
    progress.row();
    buffer.text().append(separator).append("[");
    for (std::size_t i = 0; i < columns.size(); ++i) {
      if (i > 0) buffer.text() += ',';
      appendJsonValue(buffer.text(), cursor->value(i));
    }
    buffer.text() += ']';
    buffer.endRow();
    separator = ",\n";
  }
  buffer.flush();
  out << "\n]}\n";
}

}  // namespace quillon::workbench
