#include "workbench/account/leftover_tables.h"

#include <algorithm>
#include <array>
#include <memory>

#include "frame/text.h"
#include "workbench/tsql/values/declared_table.h"
#include "workbench/tsql/values/sql_error.h"
#include "workbench/tsql/values/text.h"

namespace quillon::account {

namespace {

// In small letters, as all names here are compared.
constexpr std::array<std::string_view, 4> workTableSuffixes = {"ia_sfc_item_detailtmp", "ia_sfc_ix_groupindex",
                                                               "ia_outsum_item_detailtmp", "fxwttmp"};

bool isUniquePartCharacter(char character) {
  return isDigit(character) || (character >= 'a' && character <= 'z') || character == '_';
}

bool isHexadecimal(char character) {
  return isDigit(character) || (character >= 'a' && character <= 'f');
}

// The names of all tables; with their age where the database knows it.
std::vector<LeftoverTable> tablesWithAge(tsql::Database& connection) {
  constexpr int noSuchColumn = 207;
  std::vector<LeftoverTable> tables;
  try {
    const std::unique_ptr<tsql::Cursor> rows = connection.query(
        "Select name, DateDiff(minute, crdate, GetDate()) From sysobjects Where xtype = N'U' Order By name");
    while (rows->next()) {
      LeftoverTable& table = tables.emplace_back();
      table.name = tsql::toText(rows->value(0)).value_or("");
      if (const auto* minutes = std::get_if<std::int64_t>(&rows->value(1))) table.minutes = *minutes;
    }
  } catch (const tsql::SqlError& error) {
    if (error.number() != noSuchColumn) throw;
    for (std::string& name : connection.tables(""))
      tables.push_back({.name = std::move(name)});
  }
  return tables;
}

}  // namespace

bool isWorkTableName(std::string_view name) {
  const std::string folded = tsql::text::foldCase(name);
  std::string_view rest = folded;
  const auto* const suffix =
      std::ranges::find_if(workTableSuffixes, [rest](std::string_view end) { return rest.ends_with(end); });
  if (suffix == workTableSuffixes.end()) return false;
  rest.remove_suffix(suffix->size());
  if (rest.starts_with('-')) rest.remove_prefix(1);  // the naming number may be negative
  constexpr std::size_t shortest = 2;                // one digit of the number, one character of the unique part
  return rest.size() >= shortest && isDigit(rest.front()) && std::ranges::all_of(rest, isUniquePartCharacter);
}

bool isResultTableName(std::string_view name) {
  constexpr std::size_t digits = 32;
  const std::string folded = tsql::text::foldCase(name);
  return folded.starts_with(tsql::text::foldCase(resultTablePrefix)) &&
         folded.size() == resultTablePrefix.size() + digits &&
         std::all_of(folded.begin() + resultTablePrefix.size(), folded.end(), isHexadecimal);
}

bool LeftoverTable::mayBeWanted() const {
  constexpr std::int64_t day = std::int64_t{24} * 60;
  return minutes ? *minutes < day : isResult();
}

std::vector<LeftoverTable> leftoverTables(tsql::Database& connection) {
  std::vector<LeftoverTable> tables = tablesWithAge(connection);
  std::erase_if(tables, [](const LeftoverTable& table) { return !table.isResult() && !isWorkTableName(table.name); });
  std::ranges::sort(tables, {}, &LeftoverTable::name);
  return tables;
}

void dropTable(tsql::Database& connection, const std::string& name) {
  connection.execute("Drop Table " + tsql::bracketed(name));
}

void dropWorkTablesNamed(tsql::Database& connection, const std::vector<std::string>& uniqueParts) {
  for (const std::string& name : connection.tables("")) {
    const std::string folded = tsql::text::foldCase(name);
    const auto isIn = [&folded](const std::string& part) {
      return folded.find(tsql::text::foldCase(part)) != std::string::npos;
    };
    if (isWorkTableName(name) && std::ranges::any_of(uniqueParts, isIn)) dropTable(connection, name);
  }
}

}  // namespace quillon::account
