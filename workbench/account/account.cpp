#include "workbench/account/account.h"

#include <algorithm>
#include <memory>

#include "workbench/account/partial_file.h"
#include "workbench/account/schema.h"
#include "workbench/messages/account.h"
#include "workbench/messages/common.h"
#include "workbench/tsql/values/text.h"
#include "workbench/tsql/values/utf8_path.h"

namespace quillon::account {
namespace {

// The first value of the first row as text; empty without a row or for null.
std::string firstText(tsql::Database& connection, std::string_view sql) {
  const std::unique_ptr<tsql::Cursor> rows = connection.query(sql);
  return rows->next() ? tsql::toText(rows->value(0)).value_or("") : "";
}

std::int64_t integerOf(const tsql::Value& value) {
  return tsql::isNull(value) ? 0 : std::get<std::int64_t>(value);
}

// The option `name` of `system`; empty when it is not set.
std::string option(tsql::Database& connection, std::string_view system, std::string_view name) {
  return firstText(connection, "Select cValue From AccInformation Where cSysID = N'" + std::string(system) +
                                   "' And cName = N'" + std::string(name) + "'");
}

// The first cost-item month of `year`, from the start period "202204"; 0 when the year is before it.
int costItemStartMonth(const std::string& startPeriod, int year) {
  constexpr std::size_t yearDigits = 4;
  if (startPeriod.size() <= yearDigits) return 0;
  const std::string_view text = startPeriod;
  const int startYear = tsql::text::leadingNumber(text.substr(0, yearDigits)).value();
  if (year < startYear) return 0;
  return year > startYear ? 1 : tsql::text::leadingNumber(text.substr(yearDigits)).value();
}

}  // namespace

void createSample(const std::filesystem::path& file, const SampleOptions& options, const Progress& progress) {
  checkOptions(options);
  PartialFile partial(file);
  try {
    const std::unique_ptr<tsql::Connection> connection =
        tsql::Connection::open(partial.path(), tsql::OpenMode::createNew);
    connection->begin();
    createTables(*connection);
    writeSample(*connection, options, progress);
    createIndexes(*connection);
    connection->commit();
  } catch (const tsql::SqlError& error) {
    throw AccountError(messages::cannotWriteBecause(utf8FromPath(file), error.message()));
  }
  removeOrphanedJournals(file);
  partial.complete();
}

void requireAccount(tsql::Database& connection) {
  for (const TableDefinition& table : tables()) {
    if (connection.describe(table.name).empty()) {
      throw AccountError(messages::missingTable(table.name));
    }
  }
}

AccountInfo info(tsql::Database& connection) {
  requireAccount(connection);
  AccountInfo result;
  result.accountCode = firstText(connection, "Select Min(cAcc_Id) From orvsystem..UA_Period");
  result.startDate = option(connection, "IA", "dIAStartDate");
  result.valuationMethod = option(connection, "IA", "cValueStyle");
  const std::string startPeriod =
      firstText(connection, "Select cValue From AccInformation Where cSysID = N'CA' And cID = N'11002'");

  {
    const std::unique_ptr<tsql::Cursor> rows = connection.query(
        "Select iYear, Max(Case When bSettled = 1 Then iMonth Else 0 End), Min(Case When bSettled = 1 Then 1 Else 0 "
        "End) From IA_PeriodState Where iMonth > 0 Group By iYear Order By iYear");
    while (rows->next()) {
      YearInfo year;
      year.year = static_cast<int>(integerOf(rows->value(0)));
      year.costItemStartMonth = costItemStartMonth(startPeriod, year.year);
      year.settledMonths = static_cast<int>(integerOf(rows->value(1)));
      const bool allSettled = integerOf(rows->value(2)) == 1;
      if (!allSettled && result.currentYear == 0) result.currentYear = year.year;
      result.years.push_back(year);
    }
  }
  if (result.currentYear == 0 && !result.years.empty()) result.currentYear = result.years.back().year;

  {
    const std::unique_ptr<tsql::Cursor> rows =
        connection.query("Select iYear, Count(*) From ia_subsidiary Group By iYear");
    while (rows->next()) {
      const auto year = std::ranges::find(result.years, integerOf(rows->value(0)), &YearInfo::year);
      if (year != result.years.end()) year->ledgerLines = integerOf(rows->value(1));
    }
  }
  for (const TableDefinition& table : tables()) {
    const std::unique_ptr<tsql::Cursor> rows = connection.query("Select Count(*) From " + std::string(table.name));
    rows->next();
    result.tables.push_back({std::string(table.name), integerOf(rows->value(0))});
  }
  return result;
}

}  // namespace quillon::account
