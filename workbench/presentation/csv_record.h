// A record of the CSV that reports and statements give.
#pragma once

#include <cstddef>
#include <ostream>
#include <string>

#include "workbench/account/csv.h"
#include "workbench/presentation/value_output.h"

namespace quillon::workbench {

// Appends a value as a field: with quotes only where a text needs them.
inline void appendCsvValue(std::string& record, const tsql::Value& value) {
  if (const auto* text = std::get_if<std::string>(&value)) {
    account::appendCsvText(record, *text, account::EmptyText::bare);
  } else {
    appendPlainText(record, value);
  }
}

// Writes `count` fields; `textOf` gives the text of each. Null and an empty text are both nothing: the file goes to
// spreadsheets, which do not tell them apart.
template <typename TextOf>
void writeCsvRecord(std::ostream& out, std::size_t count, const TextOf& textOf) {
  std::string record;
  for (std::size_t i = 0; i < count; ++i) {
    if (i > 0) record += ',';
    account::appendCsvText(record, textOf(i), account::EmptyText::bare);
  }
  out << record << "\r\n";
}

}  // namespace quillon::workbench
