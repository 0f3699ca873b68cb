#include "workbench/cli/list_command.h"

#include <CLI/CLI.hpp>
#include <iostream>
#include <map>
#include <memory>
#include <vector>

#include "workbench/account/csv.h"
#include "workbench/cli/account_option.h"
#include "workbench/cli/checked_values.h"
#include "workbench/cli/named_choice.h"
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

constexpr Caption codeHeading{"编码", "Code"};
constexpr Caption nameHeading{"名称", "Name"};
constexpr Caption allEntries{"共 {count} 项", "{count} entries"};
constexpr Caption oneEntry{"共 1 项", "1 entry"};
constexpr Caption someEntries{"共 {count} 项，显示 {shown} 项；用 --search 查找，--limit 0 显示全部",
                              "{shown} of {count} entries; look for one with --search, or see all with --limit 0"};

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

std::string filled(std::string_view pattern, std::size_t shown, std::size_t count) {
  std::string text(pattern);
  for (const auto& [place, number] : {std::pair("{shown}", shown), std::pair("{count}", count)}) {
    const auto at = text.find(place);
    if (at != std::string::npos)
      text.replace(at, std::string_view(place).size(), groupedCount(static_cast<std::int64_t>(number)));
  }
  return text;
}

void writeTable(const ListOptions& options, const LookupPage& entries, std::ostream& out) {
  TextTable table(out, {{std::string(codeHeading.in(options.language)), Align::left},
                        {std::string(nameHeading.in(options.language)), Align::left}});
  for (const LookupRow& row : entries.rows)
    table.row({oneLine(row.code), oneLine(row.name)});
  table.finish();
  const bool all = entries.rows.size() == entries.count;
  const Caption& line = !all ? someEntries : entries.count == 1 ? oneEntry : allEntries;
  out << filled(line.in(options.language), entries.rows.size(), entries.count) << '\n';
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
    throw UserError("there is no list of \"" + options.kind + "\"" + suggestion(options.kind, names) +
                    "; there are: " + kindList());
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
  if (options.format == ListFormat::csv) {
    writeCsv(entries, out);
  } else if (options.format == ListFormat::json) {
    writeJson(options, entries, out);
  } else {
    writeTable(options, entries, out);
  }
  out.flush();
  if (!out) throw UserError("the list could not be written to standard output");
}

void addListCommand(CLI::App& app) {
  CLI::App& command = *app.add_subcommand("list", "List codes and names of an account: warehouses, inventory, ...");
  const auto options = std::make_shared<ListOptions>();
  static const std::map<std::string, ListFormat> formats = {
      {"table", ListFormat::table}, {"csv", ListFormat::csv}, {"json", ListFormat::json}};
  static const std::map<std::string, Language> languages = {{"zh", Language::chinese}, {"en", Language::english}};
  command.add_option("KIND", options->kind, "What is listed: " + kindList())
      ->required()
      ->check([](const std::string& kind) {
        return lookupOf(kind) != nullptr ? std::string()
                                         : "there is no list of \"" + kind + "\"" + suggestion(kind, kindNames());
      });
  addAccountOption(command, "--account", options->account).required();
  command.add_option("--search", options->search,
                     "Parts of code or name, or pinyin initials of the name (xbk finds 线边库); all words must fit");
  command.add_option("--limit", options->limit, "List at most this many; 0 for all (a table has 200 without it)")
      ->transform(wholeNumber<std::size_t>(0));
  command.add_option("--offset", options->offset, "Leave this many out at the beginning")
      ->transform(wholeNumber<std::size_t>(0));
  command.add_option("--format", options->format, "table, csv or json")->transform(oneOf(formats));
  command.add_option("--lang", options->language, "zh or en")->transform(oneOf(languages));
  command.callback([options] { runList(*options, std::cout); });
}

}  // namespace quillon::workbench
