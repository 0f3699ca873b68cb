#include "workbench/presentation/arrangement.h"

#include <algorithm>
#include <string_view>

#include "frame/text.h"
#include "workbench/messages/report.h"
#include "workbench/platform/nearest_name.h"
#include "workbench/platform/user_error.h"

namespace quillon::workbench {

std::string trimmed(std::string_view text) {
  const std::size_t begin = text.find_first_not_of(' ');
  if (begin == std::string_view::npos) return {};
  return std::string(text.substr(begin, text.find_last_not_of(' ') - begin + 1));
}

namespace {

std::vector<std::string> parts(std::string_view text, char separator) {
  std::vector<std::string> result;
  while (true) {
    const std::size_t end = text.find(separator);
    result.push_back(trimmed(text.substr(0, end)));
    if (end == std::string_view::npos) return result;
    text.remove_prefix(end + 1);
  }
}

// The name of the column that is meant by `written`, its name or either caption.
std::string columnNamed(std::string_view written, std::span<const ReportColumn> known) {
  const auto named = std::ranges::find_if(
      known, [written](const ReportColumn& column) { return equalIgnoringCase(column.name, written); });
  if (named != known.end()) return named->name;
  const ReportColumn* captioned = nullptr;
  for (const ReportColumn& column : known) {
    if (!equalIgnoringCase(column.chinese, written) && !equalIgnoringCase(column.english, written)) continue;
    if (captioned != nullptr) throw UserError(messages::captionOfTwo(written, captioned->name, column.name));
    captioned = &column;
  }
  if (captioned != nullptr) return captioned->name;
  std::vector<std::string> names;
  for (const ReportColumn& column : known)
    names.insert(names.end(), {column.name, column.chinese, column.english});
  throw UserError(messages::noSuchColumn(written, suggestion(written, names)));
}

std::vector<std::string> columnsNamed(const std::vector<std::string>& written, std::span<const ReportColumn> known) {
  std::vector<std::string> names;
  for (const std::string& list : written) {
    for (const std::string& name : parts(list, ','))
      names.push_back(columnNamed(name, known));
  }
  return names;
}

RowCondition conditionOf(std::string_view written, std::span<const ReportColumn> known) {
  const std::size_t sign = written.find_first_of("=~");
  if (sign == std::string_view::npos || sign == 0) throw UserError(messages::noCondition(written));
  RowCondition condition{.column = columnNamed(trimmed(written.substr(0, sign)), known)};
  const std::string_view value = written.substr(sign + 1);
  if (written[sign] == '~') {
    condition.kind = RowCondition::Kind::contains;
    condition.values = {trimmed(value)};
    return condition;
  }
  if (const std::size_t dots = value.find(".."); dots != std::string_view::npos) {
    condition.kind = RowCondition::Kind::range;
    condition.values = {trimmed(value.substr(0, dots)), trimmed(value.substr(dots + 2))};
    return condition;
  }
  condition.values = parts(value, ',');
  return condition;
}

}  // namespace

Arrangement resolved(const Arrangement& asked, ArrangementParts parts, std::span<const ReportColumn> known) {
  Arrangement arrangement;
  if (parts.columns) {
    for (const std::string& column : asked.columns)
      arrangement.columns.push_back(columnNamed(column, known));
  }
  if (parts.sort) {
    for (const SortKey& key : asked.sort)
      arrangement.sort.push_back({columnNamed(key.column, known), key.descending});
  }
  if (parts.groupBy) {
    for (const std::string& column : asked.groupBy)
      arrangement.groupBy.push_back(columnNamed(column, known));
  }
  if (parts.where) {
    for (const RowCondition& condition : asked.where)
      arrangement.where.push_back({columnNamed(condition.column, known), condition.kind, condition.values});
  }
  return arrangement;
}

Arrangement parseArrangement(const ArrangementText& text, std::span<const ReportColumn> known) {
  Arrangement arrangement{.columns = columnsNamed(text.columns, known), .groupBy = columnsNamed(text.groupBy, known)};
  for (const std::string& list : text.sort) {
    for (const std::string& key : parts(list, ',')) {
      const bool descending = key.starts_with('-');
      arrangement.sort.push_back({columnNamed(descending ? std::string_view(key).substr(1) : key, known), descending});
    }
  }
  for (const std::string& condition : text.where)
    arrangement.where.push_back(conditionOf(condition, known));
  return arrangement;
}

}  // namespace quillon::workbench
