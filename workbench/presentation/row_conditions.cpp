#include "workbench/presentation/row_conditions.h"

#include <algorithm>
#include <cstdint>
#include <optional>
#include <string_view>

#include "frame/text.h"
#include "workbench/messages/report.h"
#include "workbench/platform/account_lookup.h"
#include "workbench/platform/user_error.h"
#include "workbench/presentation/text_cells.h"
#include "workbench/tsql/values/collation.h"
#include "workbench/tsql/values/datetime.h"
#include "workbench/tsql/values/exact.h"

namespace quillon::workbench {

namespace {

bool isText(const tsql::Type& type) {
  return type.kind == tsql::Kind::nVarChar || type.kind == tsql::Kind::varChar;
}

// `text` as a value of a column of `type`. Throws UserError when it is none.
tsql::Value valueOf(std::string_view text, const tsql::Type& type, std::string_view column) {
  if (isText(type)) return std::string(text);
  if (type.kind == tsql::Kind::dateTime) {
    const tsql::DateTextResult result = tsql::parseDateTime(text);
    if (!text.empty() && result.value) return *result.value;
    throw UserError(messages::noDateOfColumn(text, column));
  }
  std::string digits(text);
  std::erase(digits, ',');
  if (const auto number = tsql::parseExact(digits); number && !digits.empty()) return *number;
  throw UserError(messages::noNumberOfColumn(text, column));
}

bool isWholeDay(const tsql::Value& value) {
  const auto* date = std::get_if<tsql::DateTime>(&value);
  return date != nullptr && date->ticks % tsql::DateTime::ticksPerDay == 0;
}

tsql::DateTime nextDay(const tsql::Value& value) {
  return {std::get<tsql::DateTime>(value).ticks + tsql::DateTime::ticksPerDay};
}

std::string literal(const tsql::Value& value) {
  const std::string text = tsql::toText(value).value_or("");
  if (std::holds_alternative<std::string>(value)) return quotedText(text);
  return std::holds_alternative<tsql::DateTime>(value) ? "'" + text + "'" : text;
}

std::string lowerBound(const std::string& column, const tsql::Value& value) {
  return column + " >= " + literal(value);
}

// A day's upper bound takes the whole day in.
std::string upperBound(const std::string& column, const tsql::Value& value) {
  return isWholeDay(value) ? column + " < " + literal(nextDay(value)) : column + " <= " + literal(value);
}

void checkRange(const RowCondition& condition, const tsql::Value& lower, const tsql::Value& upper) {
  if (compareValues(lower, upper) <= 0) return;
  throw UserError(messages::rangeOfColumnBackwards(condition.column, condition.values[0], condition.values[1]));
}

std::string sqlOf(const RowCondition& condition, const tsql::Type& type) {
  const std::string& column = condition.column;
  if (condition.kind == RowCondition::Kind::contains) {
    const std::string& part = condition.values.front();
    const std::string text = isText(type) ? column : "Cast(" + column + " As nvarchar(60))";
    return "CharIndex(" + quotedText(part) + ", IsNull(" + text + ", N'')) > 0";
  }
  if (condition.kind == RowCondition::Kind::range) {
    std::string sql;
    std::vector<tsql::Value> bounds(2);
    for (std::size_t i = 0; i < 2; ++i) {
      if (condition.values[i].empty()) continue;
      bounds[i] = valueOf(condition.values[i], type, column);
      sql += (sql.empty() ? "" : " And ") + (i == 0 ? lowerBound(column, bounds[i]) : upperBound(column, bounds[i]));
    }
    if (!condition.values[0].empty() && !condition.values[1].empty()) checkRange(condition, bounds[0], bounds[1]);
    return sql.empty() ? "1 = 1" : sql;
  }
  std::string sql;
  for (const std::string& text : condition.values) {
    if (!sql.empty()) sql += " Or ";
    if (text.empty()) {
      sql += column + " Is Null" + (isText(type) ? " Or " + column + " = N''" : "");
      continue;
    }
    const tsql::Value value = valueOf(text, type, column);
    sql += isWholeDay(value) ? lowerBound(column, value) + " And " + upperBound(column, value)
                             : column + " = " + literal(value);
  }
  return sql;
}

int sign(std::int64_t number) {
  return number < 0 ? -1 : static_cast<int>(number > 0);
}

std::optional<tsql::Exact> exactNumber(const tsql::Value& value) {
  if (const auto* exact = std::get_if<tsql::Exact>(&value)) return *exact;
  if (const auto* integer = std::get_if<std::int64_t>(&value)) return tsql::Exact{.units = *integer, .scale = 0};
  return {};
}

std::vector<std::uint32_t> weights(std::string_view text) {
  std::vector<std::uint32_t> result;
  while (!text.empty())
    result.push_back(tsql::characterWeight(takeCharacter(text)));
  return result;
}

bool containsText(std::string_view text, std::string_view part) {
  const std::vector<std::uint32_t> whole = weights(text), wanted = weights(part);
  return std::search(whole.begin(), whole.end(), wanted.begin(), wanted.end()) != whole.end() || wanted.empty();
}

// What a column of the role holds, as far as a condition asks.
tsql::Type typeOf(ColumnRole role) {
  if (role == ColumnRole::date) return {.kind = tsql::Kind::dateTime};
  return {.kind = isNumber(role) ? tsql::Kind::decimal : tsql::Kind::nVarChar};
}

}  // namespace

int compareValues(const tsql::Value& one, const tsql::Value& other) {
  if (tsql::isNull(one) || tsql::isNull(other))
    return static_cast<int>(tsql::isNull(other)) - static_cast<int>(tsql::isNull(one));
  const auto first = exactNumber(one), second = exactNumber(other);
  if (first && second) return tsql::compare(*first, *second);
  const auto *day = std::get_if<tsql::DateTime>(&one), *otherDay = std::get_if<tsql::DateTime>(&other);
  if (day != nullptr && otherDay != nullptr) return sign(day->ticks - otherDay->ticks);
  return tsql::compareText(tsql::toText(one).value_or(""), tsql::toText(other).value_or(""));
}

std::string conditionText(std::span<const RowCondition> where, std::span<const tsql::Column> columns) {
  std::string text;
  for (const RowCondition& condition : where) {
    const auto column = std::ranges::find_if(
        columns, [&](const tsql::Column& each) { return equalIgnoringCase(each.name, condition.column); });
    if (column == columns.end()) throw UserError(messages::noColumnInMode(condition.column));
    text += (text.empty() ? "(" : " And (") + sqlOf(condition, column->type) + ")";
  }
  return text.empty() ? "1 = 1" : text;
}

bool meets(const tsql::Value& cell, const RowCondition& condition, ColumnRole role) {
  const tsql::Type type = typeOf(role);
  if (condition.kind == RowCondition::Kind::contains)
    return containsText(tsql::toText(cell).value_or(""), condition.values.front());
  const auto atLeast = [&](const std::string& text) {
    return !tsql::isNull(cell) && compareValues(cell, valueOf(text, type, condition.column)) >= 0;
  };
  const auto atMost = [&](const std::string& text) {
    const tsql::Value bound = valueOf(text, type, condition.column);
    if (tsql::isNull(cell)) return false;
    return isWholeDay(bound) ? compareValues(cell, nextDay(bound)) < 0 : compareValues(cell, bound) <= 0;
  };
  if (condition.kind == RowCondition::Kind::range)
    return (condition.values[0].empty() || atLeast(condition.values[0])) &&
           (condition.values[1].empty() || atMost(condition.values[1]));
  return std::ranges::any_of(condition.values, [&](const std::string& text) {
    return text.empty() ? tsql::toText(cell).value_or("").empty() : atLeast(text) && atMost(text);
  });
}

}  // namespace quillon::workbench
