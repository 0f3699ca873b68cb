#include "workbench/cli/report_comparison.h"

#include <algorithm>
#include <sstream>
#include <string>

#include "workbench/messages/report.h"
#include "workbench/presentation/value_output.h"

namespace quillon::workbench {

namespace {

bool sameColumns(std::span<const tsql::Column> first, std::span<const tsql::Column> second) {
  return std::ranges::equal(first, second, [](const tsql::Column& one, const tsql::Column& two) {
    return one.name == two.name && one.type == two.type;
  });
}

std::string columnsText(std::span<const tsql::Column> columns) {
  std::ostringstream out;
  writeJsonColumns(out, columns);
  return out.str();
}

// The columns in which the rows differ, with both values.
void writeChanges(std::ostream& out, const tsql::Cursor& first, const tsql::Cursor& second) {
  const char* separator = "";
  for (std::size_t i = 0; i < first.columns().size(); ++i) {
    if (first.value(i) == second.value(i)) continue;
    out << separator << first.columns()[i].name << ' ';
    writeJsonValue(out, first.value(i));
    out << " | ";
    writeJsonValue(out, second.value(i));
    separator = ", ";
  }
}

void writeRow(std::ostream& out, const tsql::Cursor& row) {
  const char* separator = "";
  for (std::size_t i = 0; i < row.columns().size(); ++i) {
    if (tsql::isNull(row.value(i))) continue;
    out << separator << row.columns()[i].name << ' ';
    writeJsonValue(out, row.value(i));
    separator = ", ";
  }
}

bool sameRow(const tsql::Cursor& first, const tsql::Cursor& second) {
  for (std::size_t i = 0; i < first.columns().size(); ++i) {
    if (first.value(i) != second.value(i)) return false;
  }
  return true;
}

}  // namespace

bool compareResults(tsql::Cursor& first, tsql::Cursor& second, std::int64_t shown, std::ostream& out,
                    Language language) {
  const auto say = [&out, language](const Message& line) { out << line.in(language) << '\n'; };
  if (!sameColumns(first.columns(), second.columns())) {
    say(messages::firstHasColumns(columnsText(first.columns())));
    say(messages::secondHasColumns(columnsText(second.columns())));
    say(messages::differentColumns());
    return false;
  }
  std::int64_t firstRows = 0, secondRows = 0, different = 0;
  for (;;) {
    const bool one = first.next(), two = second.next();
    if (!one && !two) break;
    firstRows += one ? 1 : 0;
    secondRows += two ? 1 : 0;
    if (one && two && sameRow(first, second)) continue;
    if (++different > shown) continue;
    const std::string number = groupedCount(std::max(firstRows, secondRows));
    std::ostringstream values;
    if (one && two) {
      writeChanges(values, first, second);
      say(messages::rowOfBoth(number, values.str()));
    } else {
      writeRow(values, one ? first : second);
      say(one ? messages::rowOfFirst(number, values.str()) : messages::rowOfSecond(number, values.str()));
    }
  }
  if (different > shown) say(messages::moreRows(groupedCount(different - shown)));
  if (different == 0) {
    say(messages::equalRows(groupedCount(firstRows), first.columns().size()));
  } else {
    say(messages::differentRows(groupedCount(different), groupedCount(firstRows), groupedCount(secondRows)));
  }
  return different == 0;
}

}  // namespace quillon::workbench
