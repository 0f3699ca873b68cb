#include "workbench/cli/account_check_command.h"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <array>
#include <functional>
#include <iostream>
#include <map>
#include <memory>

#include "workbench/cli/account_option.h"
#include "workbench/cli/checked_values.h"
#include "workbench/cli/exit_status.h"
#include "workbench/cli/language_option.h"
#include "workbench/cli/named_choice.h"
#include "workbench/cli/standard_streams.h"
#include "workbench/messages/account.h"
#include "workbench/messages/check.h"
#include "workbench/platform/user_error.h"
#include "workbench/presentation/csv_record.h"
#include "workbench/presentation/text_table.h"
#include "workbench/presentation/value_output.h"
#include "workbench/runs/account_check.h"
#include "workbench/tsql/values/exact.h"

namespace quillon::workbench {

namespace {

using account::BrokenKey;
using account::CheckRank;
using account::FoundRow;

std::string amountText(const std::optional<tsql::Exact>& amount) {
  return amount ? account::checkedNumber(*amount) : std::string();
}

// With commas, and with all decimals that are not zero.
std::string groupedAmount(const std::optional<tsql::Exact>& amount) {
  const std::string text = amountText(amount);
  return text.empty() ? text : groupedNumber(text, static_cast<int>(text.size() - text.find('.') - 1));
}

std::string numberText(const std::optional<std::int64_t>& number) {
  return number ? std::to_string(*number) : std::string();
}

std::string rankText(CheckRank rank, Language language) {
  return std::string((rank == CheckRank::error ? messages::errorRank : messages::noteRank).in(language));
}

// "2024-03"; "2024" for openings.
std::string monthText(const FoundRow& row) {
  if (!row.year) return {};
  if (row.month.value_or(0) == 0) return std::to_string(*row.year);
  constexpr std::int64_t twoDigits = 10;
  return std::to_string(*row.year) + (*row.month < twoDigits ? "-0" : "-") + std::to_string(*row.month);
}

// --- For people -------------------------------------------------------------------------------------------------------

struct RowColumn {
  const Text<0>& heading;
  Align align;
  std::function<std::string(const FoundRow&, Language)> text;
};

const std::array<RowColumn, 7>& rowColumns() {
  static const std::array<RowColumn, 7> columns = {{
      {messages::lineHeading, Align::right, [](const FoundRow& row, Language) { return numberText(row.line); }},
      {messages::monthHeading, Align::left, [](const FoundRow& row, Language) { return monthText(row); }},
      {messages::dateHeading, Align::left, [](const FoundRow& row, Language) { return row.date; }},
      {messages::documentHeading, Align::left, [](const FoundRow& row, Language) { return row.document; }},
      {messages::inventoryHeading, Align::left, [](const FoundRow& row, Language) { return row.inventory; }},
      {messages::whatHeading, Align::left,
       [](const FoundRow& row, Language language) { return row.what.in(language); }},
      {messages::amountHeading, Align::right, [](const FoundRow& row, Language) { return groupedAmount(row.amount); }},
  }};
  return columns;
}

class Findings {
 public:
  Findings(std::ostream& out, const CheckOptions& options)
      : out_(out), language_(options.language), style_(options.screen.style(options.language)) {}

  void writeSummary(std::span<const AccountFinding> findings) {
    TextTable table(out_,
                    {{text(messages::checkHeading)},
                     {text(messages::rankHeading)},
                     {text(messages::foundHeading), Align::right},
                     {text(messages::amountHeading), Align::right},
                     {text(messages::titleHeading)},
                     {text(messages::reportsHeading)}},
                    style_);
    for (const AccountFinding& finding : findings) {
      table.row({finding.name, rankText(finding.rank, language_), groupedCount(finding.rows), amountOf(finding),
                 std::string(finding.title.in(language_)), finding.reports},
                finding.rows == 0                  ? Emphasis::faint
                : finding.rank == CheckRank::error ? Emphasis::strong
                                                   : Emphasis::none);
    }
    table.finish();
  }

  void writeRows(const AccountFinding& finding) {
    out_ << '\n' << messages::checkTitle(finding.name, finding.title).in(language_) << "\n\n";
    if (!finding.keys.empty()) {
      writeKeys(finding);
    } else {
      writeLines(finding.shown);
    }
    const std::int64_t more = finding.rows - static_cast<std::int64_t>(finding.shown.size() + finding.keys.size());
    if (more > 0) out_ << messages::moreFound(groupedCount(more)).in(language_) << '\n';
    out_ << '\n' << finding.advice.in(language_) << '\n';
  }

 private:
  std::string text(const Text<0>& words) const { return std::string(words.in(language_)); }

  static std::string amountOf(const AccountFinding& finding) {
    return finding.rows == 0 ? std::string() : groupedAmount(finding.amount);
  }

  void writeKeys(const AccountFinding& finding) {
    TextTable table(out_,
                    {{text(messages::tableHeading)},
                     {text(messages::keyHeading)},
                     {text(messages::rowsHeading), Align::right},
                     {text(messages::reportsHeading)}},
                    style_);
    for (const BrokenKey& key : finding.keys)
      table.row({key.table, key.key.in(language_), groupedCount(key.rows), key.reports});
    table.finish();
  }

  // The columns that some row has something in.
  void writeLines(std::span<const FoundRow> rows) {
    std::vector<const RowColumn*> shown;
    std::vector<TableColumn> headings;
    for (const RowColumn& column : rowColumns()) {
      if (std::ranges::none_of(rows, [&](const FoundRow& row) { return !column.text(row, language_).empty(); }))
        continue;
      shown.push_back(&column);
      headings.push_back({text(column.heading), column.align});
    }
    if (shown.empty()) return;
    TextTable table(out_, headings, style_);
    for (const FoundRow& row : rows) {
      std::vector<std::string> cells;
      cells.reserve(shown.size());
      for (const RowColumn* column : shown)
        cells.push_back(column->text(row, language_));
      table.row(std::move(cells));
    }
    table.finish();
  }

  std::ostream& out_;
  Language language_;
  TableStyle style_;
};

void writeTables(std::ostream& out, std::span<const AccountFinding> findings, const CheckOptions& options) {
  Findings tables(out, options);
  tables.writeSummary(findings);
  for (const AccountFinding& finding : findings) {
    if (finding.rows > 0) tables.writeRows(finding);
  }
  // What is in order is said of the keys and of the ledger, each when it was looked at.
  const bool keysAsked = findings.front().name == joinKeysCheck;
  const std::span<const AccountFinding> ofLedger = findings.subspan(keysAsked ? 1 : 0);
  const bool keysUnique = keysAsked && findings.front().rows == 0;
  const bool ledgerSound = !ofLedger.empty() && !hasErrors(ofLedger);
  if (keysUnique || ledgerSound) out << '\n';
  if (keysUnique) out << messages::keysUnique.in(options.language) << '\n';
  if (ledgerSound) out << messages::ledgerSound.in(options.language) << '\n';
}

// --- For programs -----------------------------------------------------------------------------------------------------

void writeRecord(std::ostream& out, const std::vector<std::string>& fields) {
  writeCsvRecord(out, fields.size(), [&](std::size_t i) -> const std::string& { return fields[i]; });
}

void writeCsv(std::ostream& out, std::span<const AccountFinding> findings, Language language) {
  writeRecord(out,
              {"check", "rank", "line", "year", "month", "date", "document", "inventory", "what", "amount", "reports"});
  for (const AccountFinding& finding : findings) {
    const std::string rank = finding.rank == CheckRank::error ? "error" : "note";
    for (const FoundRow& row : finding.shown) {
      writeRecord(out, {finding.name, rank, numberText(row.line), numberText(row.year), numberText(row.month), row.date,
                        row.document, row.inventory, row.what.in(language), amountText(row.amount), finding.reports});
    }
    for (const BrokenKey& key : finding.keys) {
      const Message what = messages::keyOfTable(key.table, key.key, key.rows);
      writeRecord(out, {finding.name, rank, "", "", "", "", "", "", what.in(language), "", key.reports});
    }
  }
}

std::optional<std::int64_t> rowsShown(const CheckOptions& options) {
  constexpr std::int64_t forPeople = 10;
  if (!options.limit && options.format == CheckFormat::table) return forPeople;
  return options.limit == 0 ? std::nullopt : options.limit;
}

}  // namespace

bool checkAccount(const AccountSource& source, const CheckOptions& options, std::ostream& out) {
  const auto connection = source.open(tsql::OpenMode::readOnly);
  const std::vector<AccountFinding> findings = checkedAccount(*connection, options.checks, rowsShown(options));
  switch (options.format) {
    case CheckFormat::csv:
      writeCsv(out, findings, options.language);
      break;
    case CheckFormat::json:
      writeFindingsJson(out, findings, options.language);
      break;
    case CheckFormat::table:
      if (!writePaged(out, options.screen, [&](std::ostream& pages) { writeTables(pages, findings, options); }))
        throw UserError(messages::outputNotWritten());
      break;
  }
  return !hasErrors(findings);
}

bool checkIntegrity(const AccountSource& source, std::ostream& out, Language language) {
  if (source.onServer()) throw UserError(messages::integrityOfFiles());
  const std::vector<std::string> damage = tsql::Connection::damage(source.file());
  for (const std::string& line : damage)
    out << line << '\n';
  if (!damage.empty()) out << '\n';
  out << (damage.empty() ? messages::fileSound : messages::fileDamaged).in(language) << '\n';
  return damage.empty();
}

void addCheckCommand(CLI::App& account) {
  struct Options {
    AccountSource source;
    std::vector<int> checks;
    bool integrity = false;
    CheckOptions shown;
  };
  const auto options = std::make_shared<Options>();
  CLI::App& command =
      *account.add_subcommand("check", "Find what makes reports wrong: keys, sums, balances, cost items");
  addAccountOption(command, "SOURCE", options->source).required();
  std::map<std::string, int> names;
  for (const std::string& name : checkNames())
    names.emplace(name, static_cast<int>(names.size()));
  CLI::Option& check = *command.add_option("--check", options->checks, "Only this check; may be given again")
                            ->expected(1)
                            ->multi_option_policy(CLI::MultiOptionPolicy::TakeAll)
                            ->transform(oneOf(names));
  CLI::Option& limit =
      *command
           .add_option("--limit", options->shown.limit,
                       "Show at most this many rows of a check, 0 for all; 10 unless told, in csv and json all")
           ->transform(wholeNumber<std::int64_t>(0));
  static const std::map<std::string, CheckFormat> formats = {
      {"table", CheckFormat::table}, {"csv", CheckFormat::csv}, {"json", CheckFormat::json}};
  CLI::Option& format =
      *command.add_option("--format", options->shown.format, "table, csv or json")->transform(oneOf(formats));
  command.add_flag("--integrity", options->integrity, "Look for damage of the account file instead")
      ->excludes(&check, &limit, &format);
  addLanguageOption(command, options->shown.language);
  addScreenOptions(command, options->shown.screen);
  command.callback([options, names] {
    options->shown.screen.screen = outputScreen();
    for (const auto& [name, number] : names) {
      if (std::ranges::find(options->checks, number) != options->checks.end()) options->shown.checks.push_back(name);
    }
    const bool sound = options->integrity ? checkIntegrity(options->source, std::cout, options->shown.language)
                                          : checkAccount(options->source, options->shown, std::cout);
    if (!sound) endWith(1);
  });
}

}  // namespace quillon::workbench
