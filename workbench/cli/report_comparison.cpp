#include "workbench/cli/report_comparison.h"

#include <algorithm>
#include <string>

#include "workbench/presentation/value_output.h"

namespace quillon::workbench {

namespace {

bool sameColumns(std::span<const tsql::Column> first, std::span<const tsql::Column> second) {
  return std::ranges::equal(first, second, [](const tsql::Column& one, const tsql::Column& two) {
    return one.name == two.name && one.type == two.type;
  });
}

void writeColumns(std::ostream& out, const char* source, std::span<const tsql::Column> columns) {
  out << "the " << source << " source has the columns ";
  writeJsonColumns(out, columns);
  out << '\n';
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

bool compareResults(tsql::Cursor& first, tsql::Cursor& second, std::int64_t shown, std::ostream& out) {
  if (!sameColumns(first.columns(), second.columns())) {
    writeColumns(out, "first", first.columns());
    writeColumns(out, "second", second.columns());
    out << "different: the columns\n";
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
    out << "row " << groupedCount(std::max(firstRows, secondRows))
        << (one && two ? ": "
            : one      ? ", only in the first: "
                       : ", only in the second: ");
    if (one && two) {
      writeChanges(out, first, second);
    } else {
      writeRow(out, one ? first : second);
    }
    out << '\n';
  }
  if (different > shown) out << "and " << groupedCount(different - shown) << " more\n";
  if (different == 0) {
    out << "equal: " << groupedCount(firstRows) << " rows of " << first.columns().size() << " columns\n";
  } else {
    out << "different: " << groupedCount(different) << " rows; the first source has " << groupedCount(firstRows)
        << " rows, the second " << groupedCount(secondRows) << '\n';
  }
  return different == 0;
}

}  // namespace quillon::workbench
