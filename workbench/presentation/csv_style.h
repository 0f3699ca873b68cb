// What a CSV file looks like beyond its rows.
#pragma once

#include <string_view>

namespace quillon::workbench {

struct CsvStyle {
  bool captions = false;  // headings are captions in the report's language, not names
  bool bom = false;       // a byte order mark in front, by which spreadsheets know UTF-8
  // Texts that a spreadsheet would take for a formula get an apostrophe in front. Numbers never.
  bool guarded = false;
};

inline constexpr std::string_view byteOrderMark = "\xEF\xBB\xBF";

}  // namespace quillon::workbench
