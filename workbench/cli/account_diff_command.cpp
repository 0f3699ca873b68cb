#include "workbench/cli/account_diff_command.h"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <iostream>
#include <memory>

#include "workbench/account/difference.h"
#include "workbench/cli/account_option.h"
#include "workbench/cli/checked_values.h"
#include "workbench/cli/exit_status.h"
#include "workbench/platform/user_error.h"
#include "workbench/presentation/value_output.h"

namespace quillon::workbench {

namespace {

using account::RowDifference;

void writeRow(std::ostream& out, const RowDifference& row) {
  if (row.kind == RowDifference::Kind::onlyInFirst) out << "only in the first: ";
  if (row.kind == RowDifference::Kind::onlyInSecond) out << "only in the second: ";
  const char* separator = "";
  for (const account::NamedValue& part : row.key) {
    out << separator << part.column << " = ";
    writeJsonValue(out, part.value);
    separator = ", ";
  }
  separator = ": ";
  for (const account::ChangedValue& change : row.changes) {
    out << separator << change.column << ' ';
    writeJsonValue(out, change.first);
    out << " | ";
    writeJsonValue(out, change.second);
    separator = ", ";
  }
}

void writeTable(std::ostream& out, const account::TableComparison& table) {
  out << table.table << ": " << groupedCount(table.onlyInFirst) << " only in the first, "
      << groupedCount(table.onlyInSecond) << " only in the second, " << groupedCount(table.changed) << " changed\n";
  for (const std::string& difference : table.structure)
    out << "  " << difference << '\n';
  for (const RowDifference& row : table.shown) {
    out << "  ";
    writeRow(out, row);
    out << '\n';
  }
  const std::int64_t more =
      table.onlyInFirst + table.onlyInSecond + table.changed - static_cast<std::int64_t>(table.shown.size());
  if (more > 0) out << "  and " << groupedCount(more) << " more\n";
}

}  // namespace

bool diffAccounts(const AccountSource& first, const AccountSource& second, std::size_t shown, std::ostream& out) {
  const auto one = first.open(tsql::OpenMode::readOnly);
  const auto two = second.open(tsql::OpenMode::readOnly);
  const bool server = first.onServer() || second.onServer();
  const auto which = server ? account::ComparedTables::ofAnAccount : account::ComparedTables::every;
  std::int64_t rows = 0, different = 0;
  const auto tables = account::compareAccounts(*one, *two, which, shown);
  for (const account::TableComparison& table : tables) {
    rows += table.rows;
    if (table.equal()) continue;
    ++different;
    writeTable(out, table);
  }
  const std::string all = groupedCount(static_cast<std::int64_t>(tables.size()));
  if (tables.empty()) throw UserError("neither source has a table of an account; name two accounts");
  if (different == 0) {
    out << "equal: " << all << " tables, " << groupedCount(rows) << " rows\n";
  } else {
    out << "different: " << groupedCount(different) << " of " << all << " tables\n";
  }
  return different == 0;
}

void addDiffCommand(CLI::App& account) {
  struct Options {
    AccountSource first;
    AccountSource second;
    std::size_t shown = 10;
  };
  const auto options = std::make_shared<Options>();
  CLI::App& command = *account.add_subcommand("diff", "Compare two accounts, table by table and row by row");
  addAccountOption(command, "A", options->first, "An account file, or an ODBC connection string").required();
  addAccountOption(command, "B", options->second, "Another").required();
  command.add_option("--limit", options->shown, "Show at most this many differing rows of a table")
      ->transform(wholeNumber<std::size_t>(0))
      ->capture_default_str();
  command.callback([options] {
    if (!diffAccounts(options->first, options->second, options->shown, std::cout)) endWith(1);
  });
}

}  // namespace quillon::workbench
