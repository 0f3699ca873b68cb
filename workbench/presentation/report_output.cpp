#include "workbench/presentation/report_output.h"

#include <algorithm>

#include "frame/text.h"
#include "workbench/account/csv.h"
#include "workbench/presentation/value_output.h"

namespace quillon::workbench {

void writeCsv(std::ostream& out, const ResultTable& table, std::span<const ReportColumn> known, const CsvStyle& style,
              Language language) {
  const auto cursor = table.rows();
  const auto columns = cursor->columns();
  // Null and an empty text are both nothing: the file goes to spreadsheets, which do not tell them apart.
  const auto writeRecord = [&out, &columns](const auto& textOf) {
    std::string record;
    for (std::size_t i = 0; i < columns.size(); ++i) {
      if (i > 0) record += ',';
      account::appendCsvText(record, textOf(i), account::EmptyText::bare);
    }
    out << record << "\r\n";
  };
  if (style.bom) out << byteOrderMark;
  writeRecord([&](std::size_t i) {
    const auto caption =
        std::ranges::find_if(known, [&](const auto& entry) { return equalIgnoringCase(entry.name, columns[i].name); });
    return style.captions && caption != known.end() ? caption->caption(language) : columns[i].name;
  });
  while (cursor->next())
    writeRecord([&cursor](std::size_t i) { return plainText(cursor->value(i), ""); });
}

void writeJson(std::ostream& out, const ReportDocument& document, const ResultTable& table,
               std::span<const ReportColumn> known) {
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
  while (cursor->next()) {
    out << separator << '[';
    for (std::size_t i = 0; i < columns.size(); ++i) {
      if (i > 0) out << ',';
      writeJsonValue(out, cursor->value(i));
    }
    out << ']';
    separator = ",\n";
  }
  out << "\n]}\n";
}

}  // namespace quillon::workbench
