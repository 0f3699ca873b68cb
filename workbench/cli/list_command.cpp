#include "workbench/cli/list_command.h"

#include <CLI/CLI.hpp>
#include <iostream>
#include <map>
#include <memory>
#include <vector>

#include "workbench/account/csv.h"
#include "workbench/cli/account_option.h"
#include "workbench/cli/checked_values.h"
#include "workbench/cli/language_option.h"
#include "workbench/cli/named_choice.h"
#include "workbench/cli/usage_message.h"
#include "workbench/messages/filter.h"
#include "workbench/platform/account_session.h"
#include "workbench/platform/lookup.h"
#include "workbench/platform/nearest_name.h"
#include "workbench/platform/user_error.h"
#include "workbench/presentation/text_cells.h"
#include "workbench/presentation/text_table.h"
#include "workbench/presentation/value_output.h"
#include "workbench/tsql/values/stop.h"

namespace quillon::workbench {

namespace {

// What a table shows when nothing is said: more is looked for with --search, not read.
constexpr std::size_t page = 200;

std::vector<std::string> kindNames() {
  std::vector<std::string> names;
  for (const Lookup* const lookup : lookups())
    names.emplace_back(lookup->kind);
  return names;
}

std::string kindList() {
  std::string text;
  for (const std::string& name : kindNames())
    text += (text.empty() ? "" : ", ") + name;
  return text;
}

void writeTable(const ListOptions& options, const LookupPage& entries, std::ostream& out) {
  TextTable table(out,
                  {{std::string(messages::codeHeading.in(options.language)), Align::left},
                   {std::string(messages::nameHeading.in(options.language)), Align::left}},
                  options.screen.style(options.language));
  for (const LookupRow& row : entries.rows)
    table.row({oneLine(row.code), oneLine(row.name)});
  table.finish();
  const bool all = entries.rows.size() == entries.count;
  const std::string shown = groupedCount(static_cast<std::int64_t>(entries.rows.size()));
  const std::string count = groupedCount(static_cast<std::int64_t>(entries.count));
  const Message line = !all                 ? messages::someEntries(shown, count)
                       : entries.count == 1 ? messages::oneEntry()
                                            : messages::allEntries(count);
  out << line.in(options.language) << '\n';
}

void writeCsv(const LookupPage& entries, std::ostream& out) {
  out << "code,name\r\n";
  for (const LookupRow& row : entries.rows) {
    std::string record;
    account::appendCsvText(record, row.code, account::EmptyText::bare);
    record += ',';
    account::appendCsvText(record, row.name, account::EmptyText::bare);
    out << record << "\r\n";
  }
}

void writeJson(const ListOptions& options, const LookupPage& entries, std::ostream& out) {
  out << "{\"kind\":";
  writeJsonText(out, lookupOf(options.kind)->kind);
  out << ",\"count\":" << entries.count << ",\"rows\":[";
  const char* separator = "";
  for (const LookupRow& row : entries.rows) {
    out << separator << "\n{\"code\":";
    writeJsonText(out, row.code);
    out << ",\"name\":";
    writeJsonText(out, row.name);
    out << '}';
    separator = ",";
  }
  out << "]}\n";
}

}  // namespace

void runList(const ListOptions& options, std::ostream& out) {
  const Lookup* const lookup = lookupOf(options.kind);
  if (lookup == nullptr) {
    const std::vector<std::string> names = kindNames();
    throw UserError(messages::noSuchListOf(options.kind, suggestion(options.kind, names), listOf(names)));
  }
  AccountSession session;
  session.setAccount(options.account.readOnly());
  session.open("", "", optionsUnspecified);
  LookupQuery query{.search = options.search, .offset = options.offset, .limit = {}, .language = options.language};
  if (options.limit) {
    if (*options.limit > 0) query.limit = options.limit;
  } else if (options.format == ListFormat::table) {
    query.limit = page;
  }
  const LookupPage entries = findEntries(*lookup, query, session);
  tsql::endIfStopped();
  const bool written = writePaged(out, options.screen, [&](std::ostream& pages) {
    if (options.format == ListFormat::csv) {
      writeCsv(entries, pages);
    } else if (options.format == ListFormat::json) {
      writeJson(options, entries, pages);
    } else {
      writeTable(options, entries, pages);
    }
  });
  if (!written) throw UserError(messages::listNotWritten());
}

void addListCommand(CLI::App& app) {
  CLI::App& command = *app.add_subcommand("list", "List codes and names of an account: warehouses, inventory, ...");
  const auto options = std::make_shared<ListOptions>();
  static const std::map<std::string, ListFormat> formats = {
      {"table", ListFormat::table}, {"csv", ListFormat::csv}, {"json", ListFormat::json}};
  command.add_option("KIND", options->kind, "What is listed: " + kindList())
      ->required()
      ->check([](const std::string& kind) {
        return lookupOf(kind) != nullptr ? std::string()
                                         : usageText(messages::noSuchList(kind, suggestion(kind, kindNames())));
      });
  addAccountOption(command, "--account", options->account).required();
  command.add_option("--search", options->search,
                     "Parts of code or name, or pinyin initials of the name (xbk finds 线边库); all words must fit");
  command.add_option("--limit", options->limit, "List at most this many; 0 for all (a table has 200 without it)")
      ->transform(wholeNumber<std::size_t>(0));
  command.add_option("--offset", options->offset, "Leave this many out at the beginning")
      ->transform(wholeNumber<std::size_t>(0));
  command.add_option("--format", options->format, "table, csv or json")->transform(oneOf(formats));
  addLanguageOption(command, options->language);
  addScreenOptions(command, options->screen);
  command.callback([options] {
    options->screen.screen = outputScreen();
    runList(*options, std::cout);
  });
}

}  // namespace quillon::workbench
