// Tables read whole, for tests that compute a report's rows in another way: straight from the ledger's tables.
#pragma once

#include <gtest/gtest.h>

#include <cstdint>
#include <functional>
#include <map>
#include <optional>
#include <string>
#include <vector>

#include "workbench/tsql/engine/engine.h"

namespace quillon::tables {

using Text = std::optional<std::string>;
using Line = std::map<std::string, Text, std::less<>>;  // a row of a table, by column name in lower case

inline std::string lower(std::string text) {
  for (char& c : text)
    c = c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
  return text;
}

inline std::vector<Line> linesOf(tsql::Connection& account, const std::string& query) {
  std::vector<Line> lines;
  const auto cursor = account.query(query);
  std::vector<std::string> names;
  for (const tsql::Column& column : cursor->columns())
    names.push_back(lower(column.name));
  while (cursor->next()) {
    Line line;
    for (std::size_t i = 0; i < names.size(); ++i)
      line[names[i]] = tsql::toText(cursor->value(i));
    lines.push_back(std::move(line));
  }
  return lines;
}

// The digits of an exact number with `scale` digits behind the point, as a whole number of its last place; 0 for null.
inline std::int64_t units(const Text& number, std::size_t scale) {
  if (!number) return 0;
  std::string digits = *number;
  const std::size_t point = digits.find('.');
  std::size_t behind = 0;
  if (point != std::string::npos) {
    behind = digits.size() - point - 1;
    digits.erase(point, 1);
  }
  for (; behind < scale; ++behind)
    digits += '0';
  EXPECT_LE(behind, scale) << *number;
  return std::stoll(digits);
}
// Quantities in millionths, amounts in ten-thousandths, as the ledger holds them.
inline std::int64_t quantityUnits(const Text& number) {
  return units(number, 6);
}
inline std::int64_t amountUnits(const Text& number) {
  return units(number, 4);
}

}  // namespace quillon::tables
