#include "workbench/cli/report_command.h"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <map>
#include <memory>

#include "workbench/catalogue/catalogue.h"
#include "workbench/cli/account_option.h"
#include "workbench/cli/checked_values.h"
#include "workbench/cli/exit_status.h"
#include "workbench/cli/named_choice.h"
#include "workbench/cli/report_comparison.h"
#include "workbench/cli/report_run.h"
#include "workbench/cli/standard_streams.h"
#include "workbench/platform/embedded_platform.h"
#include "workbench/platform/filter_input.h"
#include "workbench/platform/user_error.h"
#include "workbench/presentation/html_page.h"
#include "workbench/presentation/output_file.h"
#include "workbench/presentation/report_document.h"
#include "workbench/presentation/report_output.h"
#include "workbench/presentation/xlsx_workbook.h"
#include "workbench/tsql/values/text.h"
#include "workbench/tsql/values/utf8_path.h"

namespace quillon::workbench {

namespace {

std::string entered(FilterObject& filter, std::string_view key) {
  const FilterEntry* entry = filter.find(key);
  return entry == nullptr ? "" : entry->value;
}

// The heading's conditions: year, mode and, by class, the grade, or the ledger's breakdown; then whatever differs from
// its default.
std::vector<std::pair<std::string, std::string>> conditions(FilterObject& filter, Language language) {
  const bool byClass = entered(filter, "cModal") == "0";
  std::vector<std::pair<std::string, std::string>> lines;
  for (const auto& entry : filter.entries()) {
    const std::string& key = entry->item.key;
    const bool always = key == "iYear" || key == "cModal" || key == "cCaType" || (key == "iGrade" && byClass);
    const bool upperBound = !entry->value2.empty() && entry->value2 != entry->value;
    const bool changed = entry->value != entry->item.defaultValue || upperBound || !entry->sql.empty();
    if (!always && !changed) continue;
    const std::string text = describeEntry(*entry, language);
    if (!text.empty()) lines.emplace_back(entry->item.caption(language), text);
  }
  return lines;
}

// The account's option `name` of system AA, a number of decimals.
int decimals(Session& session, std::string_view name, int otherwise) {
  const std::string text = AccountPublicComponent().accountInformation("AA", name, session);
  return std::clamp(tsql::text::leadingNumber(text).value_or(otherwise), 0, 6);
}

constexpr Caption inventoryNameCaption{"存货名称", "Inventory name"};

// The name of the inventory that a ledger is of; empty when the account does not have it.
std::string inventoryName(Session& session, const std::string& code) {
  return lookUp(session, "Select cInvName From Inventory Where cInvCode = " + quotedText(code)).value_or("");
}

bool shownWhenAsked(const ReportColumn& column) {
  return column.role == ColumnRole::userDefined || column.role == ColumnRole::further;
}

// What every format but CSV shows.
ReportDocument heading(const ReportOptions& options, const MadeReport& report) {
  ReportDocument document;
  document.language = options.language;
  document.report = report.report().registration.name;
  document.title = report.report().registration.title(options.language);
  return document;
}

// What a reader sees, with conditions, captions and sums.
ReportDocument readersDocument(const ReportOptions& options, const MadeReport& report, const ResultTable& table) {
  ReportDocument document = heading(options, report);
  document.conditions = conditions(report.filter(), options.language);
  Session& session = *report.account().session;
  document.quantityDecimals = decimals(session, "iStrsQuanDecDgt", document.quantityDecimals);
  document.unitCostDecimals = decimals(session, "iStrsPriDecDgt", document.unitCostDecimals);
  document.columns = table.filledColumns(report.report().columns);
  if (!options.allColumns) document.columnsLeftOut = std::erase_if(document.columns, shownWhenAsked);
  document.rowCount = table.rowCount();
  document.ledger = report.report().isLedger;
  if (report.report().isLedger) {
    document.conditions.emplace_back(document.text(inventoryNameCaption),
                                     inventoryName(session, entered(report.filter(), "cInvCode")));
  } else {
    document.totals = table.totals(document.columns);
  }
  if (const auto crossStates = report.report().crossStates) {
    document.crossStates = crossStates(entered(report.filter(), "cModal"));
    document.cross = table.crossView(document.crossStates);
  }
  return document;
}

void write(const ReportOptions& options, const MadeReport& report, std::ostream& out) {
  const ResultTable table = report.table();
  if (options.format == ReportFormat::csv) {
    writeCsv(out, table);
  } else if (options.format == ReportFormat::json) {
    writeJson(out, heading(options, report), table, report.report().columns);
  } else if (options.format == ReportFormat::html) {
    writeHtml(out, readersDocument(options, report, table), table, options.limit);
  } else {
    writeTable(out, readersDocument(options, report, table), table, options.limit);
  }
}

void writeTo(const ReportOptions& options, const MadeReport& report, std::ostream& out) {
  if (options.format == ReportFormat::xlsx) {
    const ResultTable table = report.table();
    writeXlsx(pathFromUtf8(options.outputFile), readersDocument(options, report, table), table, options.limit);
    return;
  }
  if (options.outputFile.empty()) {
    write(options, report, out);
    out.flush();
    if (!out) throw UserError("the report could not be written to standard output");
    return;
  }
  OutputFile output(pathFromUtf8(options.outputFile));
  std::ofstream file(output.path(), std::ios::binary);
  if (file) write(options, report, file);
  file.close();
  if (!file) output.fail();
  output.complete();
}

// The files that the report is made of.
std::vector<std::filesystem::path> inputsOf(const ReportOptions& options) {
  std::vector<std::filesystem::path> inputs;
  if (!options.account.onServer()) inputs.push_back(options.account.file());
  if (!options.filterFile.empty()) inputs.push_back(pathFromUtf8(options.filterFile));
  return inputs;
}

std::unique_ptr<MadeReport> reportOn(const AccountSource& source, const ReportOptions& options, std::ostream& notes) {
  return makeReport({.report = options.report,
                     .account = source,
                     .filterFile = options.filterFile,
                     .settings = options.settings,
                     .dialog = options.dialog,
                     .language = options.language,
                     .date = options.date},
                    {.notes = notes,
                     .progress = options.terminal ? &notes : nullptr,
                     .explanation = options.explain ? &notes : nullptr});
}

}  // namespace

bool compareReports(const ReportOptions& options, const AccountSource& second, std::ostream& out, std::ostream& notes) {
  constexpr std::int64_t shown = 10;
  const auto one = reportOn(options.account, options, notes);
  const auto two = reportOn(second, options, notes);
  const auto firstRows = one->table().rows(), secondRows = two->table().rows();
  return compareResults(*firstRows, *secondRows, options.limit.value_or(shown), out);
}

void runReport(const ReportOptions& options, std::ostream& out, std::ostream& notes) {
  if (!options.outputFile.empty()) refuseToReplace(pathFromUtf8(options.outputFile), inputsOf(options));
  const auto report = reportOn(options.account, options, notes);
  writeTo(options, *report, out);
  if (options.keep) report->keepTable();
  if (options.keep) notes << "quillon: the result table " << report->table().name() << " is kept\n";
}

void addReportCommand(CLI::App& app) {
  CLI::App& command = *app.add_subcommand("report", "Run a report on an account and show its rows");
  const auto options = std::make_shared<ReportOptions>();
  static const std::map<std::string, ReportFormat> formats = {{"table", ReportFormat::table},
                                                              {"csv", ReportFormat::csv},
                                                              {"json", ReportFormat::json},
                                                              {"html", ReportFormat::html},
                                                              {"xlsx", ReportFormat::xlsx}};
  static const std::map<std::string, Language> languages = {{"zh", Language::chinese}, {"en", Language::english}};
  command.add_option("REPORT", options->report, "The report: " + reportNames())->required();
  addAccountOption(command, "--account", options->account).required();
  command.add_option("--filter", options->filterFile, "The filter, a JSON file");
  command
      .add_option("--set", options->settings,
                  "Set a filter item: key=value; ranges as lower..upper, several values with commas or again")
      ->expected(1)
      ->multi_option_policy(CLI::MultiOptionPolicy::TakeAll);
  command.add_flag("!--no-dialog", options->dialog,
                   "Do not run the report's filter dialog; items that are not given take registered defaults");
  CLI::Option& format =
      *command.add_option("--format", options->format, "table, csv, json, html or xlsx")->transform(oneOf(formats));
  CLI::Option& output =
      *command.add_option("-o,--output", options->outputFile, "Write to this file instead of standard output");
  command.add_option("--lang", options->language, "zh or en")->transform(oneOf(languages));
  addDateOption(command, options->date);
  command.add_option("--limit", options->limit, "Show at most this many rows (table, html, xlsx)")
      ->transform(wholeNumber<std::int64_t>(0));
  command.add_flag(
      "--all-columns", options->allColumns,
      "Show user-defined fields and what documents carry beside, too (table, html, xlsx; always in csv, json)");
  command.add_flag("--explain", options->explain, "Print each statement with its time and row count");
  CLI::Option& keep = *command.add_flag("--keep", options->keep, "Keep the result table and tell its name");
  const auto second = std::make_shared<AccountSource>();
  addAccountOption(command, "--compare", *second,
                   "Run the report on this account, too, and compare the rows; --limit says how many are shown")
      .excludes(&format, &output, &keep);
  command.callback([options, second] {
    if (options->format == ReportFormat::xlsx && options->outputFile.empty())
      throw CLI::ValidationError("--format", "xlsx needs a file to write to; name one with -o FILE");
    options->terminal = errorsGoToTerminal();
    if (second->text().empty()) {
      runReport(*options, std::cout, std::cerr);
    } else if (!compareReports(*options, *second, std::cout, std::cerr)) {
      endWith(1);
    }
  });
}

}  // namespace quillon::workbench
