#include "workbench/cli/account_diff_command.h"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <iostream>
#include <memory>

#include "workbench/cli/account_option.h"
#include "workbench/cli/checked_values.h"
#include "workbench/cli/exit_status.h"
#include "workbench/cli/language_option.h"
#include "workbench/cli/transfer_line.h"
#include "workbench/messages/account.h"
#include "workbench/messages/report.h"
#include "workbench/platform/user_error.h"
#include "workbench/presentation/value_output.h"

namespace quillon::workbench {

namespace {

using account::RowDifference;

void writeRow(std::ostream& out, const RowDifference& row, Language language) {
  if (row.kind == RowDifference::Kind::onlyInFirst) out << messages::onlyInFirst.in(language);
  if (row.kind == RowDifference::Kind::onlyInSecond) out << messages::onlyInSecond.in(language);
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
    out << (change.lastDigit ? " ≈ " : " | ");
    writeJsonValue(out, change.second);
    separator = ", ";
  }
}

void writeTable(std::ostream& out, const account::TableComparison& table, Language language) {
  out << messages::tableDifference(table.table, groupedCount(table.onlyInFirst), groupedCount(table.onlyInSecond),
                                   groupedCount(table.changed))
             .in(language)
      << '\n';
  for (const Message& difference : table.structure)
    out << "  " << difference.in(language) << '\n';
  for (const Message& difference : table.types)
    out << "  " << difference.in(language) << '\n';
  for (const RowDifference& row : table.shown) {
    out << "  ";
    writeRow(out, row, language);
    out << '\n';
  }
  const std::int64_t all = table.onlyInFirst + table.onlyInSecond + table.changed + table.lastDigits;
  const std::int64_t more = all - static_cast<std::int64_t>(table.shown.size());
  if (more > 0) out << "  " << messages::moreDifferences(groupedCount(more)).in(language) << '\n';
  if (table.lastDigits > 0)
    out << "  " << messages::equalButForDigits(groupedCount(table.lastDigits)).in(language) << '\n';
}

}  // namespace

bool diffAccounts(const AccountSource& first, const AccountSource& second, account::DifferenceOptions options,
                  std::ostream& out, Language language) {
  const auto one = first.open(tsql::OpenMode::readOnly);
  const auto two = second.open(tsql::OpenMode::readOnly);
  const bool server = first.onServer() || second.onServer();
  if (server) options.which = account::ComparedTables::ofAnAccount;
  std::int64_t rows = 0, different = 0;
  TransferLine line(language);
  const auto tables = account::compareAccounts(*one, *two, options, line.ofRows());
  line.finish();
  for (const account::TableComparison& table : tables) {
    rows += table.rows;
    if (table.equal() && table.types.empty() && table.lastDigits == 0) continue;
    different += table.equal() ? 0 : 1;
    writeTable(out, table, language);
  }
  const std::string all = groupedCount(static_cast<std::int64_t>(tables.size()));
  if (tables.empty()) throw UserError(messages::noAccounts());
  const Message result = different == 0 ? messages::equalAccounts(all, groupedCount(rows))
                                        : messages::differentAccounts(groupedCount(different), all);
  out << result.in(language) << '\n';
  return different == 0;
}

void addDiffCommand(CLI::App& account) {
  struct Options {
    AccountSource first;
    AccountSource second;
    account::DifferenceOptions comparison;
    Language language = Language::english;
  };
  const auto options = std::make_shared<Options>();
  CLI::App& command = *account.add_subcommand("diff", "Compare two accounts, table by table and row by row");
  addAccountOption(command, "A", options->first, "An account file, or an ODBC connection string").required();
  addAccountOption(command, "B", options->second, "Another").required();
  command.add_option("--limit", options->comparison.shown, "Show at most this many differing rows of a table")
      ->transform(wholeNumber<std::size_t>(0))
      ->capture_default_str();
  command.add_flag("--exact", options->comparison.exact, "Compare types and the last digit of quotients, too");
  addLanguageOption(command, options->language);
  command.callback([options] {
    if (!diffAccounts(options->first, options->second, options->comparison, std::cout, options->language)) endWith(1);
  });
}

}  // namespace quillon::workbench
