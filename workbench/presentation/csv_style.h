// What a CSV file looks like beyond its rows.
#pragma once

#include <string_view>

namespace quillon::workbench {

struct CsvStyle {
  bool captions = false;  // headings are captions in the report's language, not names
  bool bom = false;       // a byte order mark in front, by which spreadsheets know UTF-8
};

inline constexpr std::string_view byteOrderMark = "\xEF\xBB\xBF";

}  // namespace quillon::workbench
