#include "workbench/cli/report_command.h"

#include <CLI/CLI.hpp>
#include <filesystem>
#include <fstream>
#include <functional>
#include <iostream>
#include <map>
#include <memory>
#include <utility>

#include "frame/text.h"
#include "workbench/catalogue/catalogue.h"
#include "workbench/cli/account_option.h"
#include "workbench/cli/checked_values.h"
#include "workbench/cli/exit_status.h"
#include "workbench/cli/item_help.h"
#include "workbench/cli/language_option.h"
#include "workbench/cli/layouts_command.h"
#include "workbench/cli/named_choice.h"
#include "workbench/cli/pager.h"
#include "workbench/cli/progress_line.h"
#include "workbench/cli/report_comparison.h"
#include "workbench/cli/run_notes.h"
#include "workbench/cli/standard_streams.h"
#include "workbench/cli/terminal.h"
#include "workbench/cli/usage_message.h"
#include "workbench/messages/check.h"
#include "workbench/messages/keeping.h"
#include "workbench/messages/pivot.h"
#include "workbench/messages/report.h"
#include "workbench/platform/user_error.h"
#include "workbench/presentation/html_page.h"
#include "workbench/presentation/output_file.h"
#include "workbench/presentation/report_document.h"
#include "workbench/presentation/report_output.h"
#include "workbench/presentation/report_table.h"
#include "workbench/presentation/view_files.h"
#include "workbench/presentation/xlsx_workbook.h"
#include "workbench/runs/account_check.h"
#include "workbench/runs/kept_layouts.h"
#include "workbench/runs/report_layouts.h"
#include "workbench/runs/report_run.h"
#include "workbench/runs/run_fingerprint.h"
#include "workbench/tsql/values/utf8_path.h"

namespace quillon::workbench {

namespace {

// Whether the format is for programs: the rows of the result table as they are, unless a layout is asked for.
bool isForPrograms(ReportFormat format) {
  return format == ReportFormat::csv || format == ReportFormat::json;
}

LayoutOptions layoutOptions(const ReportOptions& options) {
  LayoutOptions layout = options.layout;
  if (!layout.limit && options.format == ReportFormat::html) layout.rowsOfPage = rowsOfAPage;
  if (layout.limit == 0) layout.limit.reset();  // as many as there are
  // Columns, order and conditions alone are of the rows.
  if (!layout.layout && !layout.pivot && isForPrograms(options.format)) layout.layout = Layout::lines;
  return layout;
}

// Title and captions, for programs.
ReportDocument bareHeading(const ReportOptions& options, const MadeReport& report) {
  ReportDocument document;
  document.language = options.language;
  document.report = report.report().registration.name;
  document.title = report.report().registration.title(options.language);
  return document;
}

LayoutOutput outputOf(ReportFormat format) {
  if (format == ReportFormat::xlsx) return LayoutOutput::workbook;
  if (format == ReportFormat::html) return LayoutOutput::page;
  return isForPrograms(format) ? LayoutOutput::fields : LayoutOutput::table;
}

// The report as its reader wants it; whoever waits is told how its rows come.
LaidOutReport watchedLayout(const ReportOptions& options, const MadeReport& report, RowProgress& progress) {
  LaidOutReport laid = laidOut(report, options.language, layoutOptions(options), outputOf(options.format));
  for (ReportSection& section : laid.sections)
    section.view = watched(std::move(section.view), progress);
  if (options.format == ReportFormat::html || options.format == ReportFormat::xlsx)
    laid.fingerprint = fingerprintOf(report);
  return laid;
}

void writeForPrograms(const ReportOptions& options, const MadeReport& report, std::ostream& out,
                      RowProgress& progress) {
  const CsvStyle style{.captions = options.captions, .bom = options.bom};
  if (options.layout.asStored()) {
    const ResultTable table = report.table();
    if (options.format == ReportFormat::csv) {
      writeCsv(out, table, report.report().columns, style, options.language, progress);
    } else {
      writeJson(out, bareHeading(options, report), table, report.report().columns, progress);
    }
    return;
  }
  const LaidOutReport laid = watchedLayout(options, report, progress);
  if (laid.sections.empty()) throw UserError(messages::nothingToLayOut());
  if (options.format == ReportFormat::csv) {
    writeCsv(out, laid.heading, laid.sections.front(), style);
  } else {
    writeJson(out, laid.heading, laid.sections.front());
  }
}

void write(const ReportOptions& options, const MadeReport& report, std::ostream& out, RowProgress& progress) {
  if (isForPrograms(options.format)) {
    writeForPrograms(options, report, out, progress);
  } else if (options.format == ReportFormat::html) {
    writeHtml(out, watchedLayout(options, report, progress));
  } else {
    writeTable(out, watchedLayout(options, report, progress),
               tableStyle(options.outputFile.empty() ? options.screen : std::nullopt, options.wide, options.language));
  }
}

// Progress and a report that goes to the same terminal, or through a pipe to who knows whom, would disturb each other: there
// the line goes before the report's first.
void writeToOutput(const ReportOptions& options, const MadeReport& report, std::ostream& out, ProgressLine* progress,
                   RowProgress& rows) {
  std::function<void()> beforeOutput;
  if (progress != nullptr && !options.outputIsFile) beforeOutput = [progress] { progress->finish(); };
  PagedOutput paged(out, {.screen = options.screen, .pager = options.pager, .beforeOutput = beforeOutput});
  write(options, report, paged.stream(), rows);
  if (!paged.finish()) throw UserError(messages::reportNotWritten());
}

void writeTo(const ReportOptions& options, const MadeReport& report, std::ostream& out, ProgressLine* progress) {
  RowProgress& rows = progress != nullptr ? *progress : noRowProgress();
  if (progress != nullptr) progress->readSums();
  if (options.format == ReportFormat::xlsx) {
    writeXlsx(pathFromUtf8(options.outputFile), watchedLayout(options, report, rows));
    return;
  }
  if (options.outputFile.empty()) {
    writeToOutput(options, report, out, progress, rows);
    return;
  }
  OutputFile output(pathFromUtf8(options.outputFile));
  std::ofstream file(output.path(), std::ios::binary);
  if (file) write(options, report, file, rows);
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

// The line that shows `notes` how far the report is, if that is a terminal.
std::unique_ptr<ProgressLine> progressOn(std::ostream& notes, const ReportOptions& options) {
  if (!options.terminal) return nullptr;
  return std::make_unique<ProgressLine>(notes, errorColumns(), options.language);
}

std::unique_ptr<MadeReport> reportOn(const AccountSource& source, const ReportOptions& options, std::ostream& notes,
                                     ProgressLine* progress) {
  RunNotes observer(notes, options.language, progress, options.explain ? &notes : nullptr);
  return makeReport({.report = options.report,
                     .account = source,
                     .filterFile = options.filterFile,
                     .settings = options.settings,
                     .saving = options.saving,
                     .dialog = options.dialog,
                     .language = options.language,
                     .date = options.date},
                    observer);
}

bool isHeldAgainst(const ReportOptions& options) {
  return !options.against.empty() || !options.comparedAccount.text().empty();
}

std::unique_ptr<MadeReport> reportHeldAgainst(const ReportOptions& options, std::ostream& notes,
                                              ProgressLine* progress) {
  ReportOptions other = options;
  other.saving = {};
  const auto keyOf = [](std::string_view setting) { return trimBlanks(setting.substr(0, setting.find('='))); };
  for (const std::string& setting : options.against) {
    std::erase_if(other.settings,
                  [&](const std::string& own) { return equalIgnoringCase(keyOf(own), keyOf(setting)); });
    other.settings.push_back(setting);
  }
  return reportOn(options.comparedAccount.text().empty() ? options.account : options.comparedAccount, other, notes,
                  progress);
}

// Errors of the ledger that touch the report's rows, a line each; `notes` gets them, too.
std::vector<std::string> warningsOf(const ReportOptions& options, const MadeReport& report, std::ostream& notes) {
  const auto account = options.account.open(tsql::OpenMode::readOnly);
  std::vector<std::string> warnings;
  for (const AccountFinding& finding : findingsOfReport(report.report(), report.filter(), *account))
    warnings.push_back(warningOf(finding).in(options.language));
  if (warnings.empty()) warnings.emplace_back(messages::nothingTouches.in(options.language));
  for (const std::string& warning : warnings)
    notes << "quillon: " << warning << '\n';
  return warnings;
}

// What was shown is what is saved: the layout by its name, even when it was not named.
void saveLayout(const ReportOptions& options, std::ostream& notes) {
  KeptLayout kept{.report = options.report, .text = options.layoutText};
  kept.text.arrangement.where.clear();
  if (kept.text.pivot.empty() && kept.text.layout.empty())
    kept.text.layout = layoutName(layoutOptions(options).layout.value_or(reportNamed(options.report).layouts.front()));
  KeptLayouts::ofUser().keep(options.savingLayout.name, kept, options.savingLayout.replace);
  notes << "quillon: " << messages::layoutSaved(options.savingLayout.name).in(options.language) << '\n';
}

}  // namespace

bool compareReports(const ReportOptions& options, const AccountSource& second, std::ostream& out, std::ostream& notes) {
  constexpr std::int64_t shown = 10;
  const auto progress = progressOn(notes, options);
  const auto one = reportOn(options.account, options, notes, progress.get());
  ReportOptions again = options;
  again.saving = {};
  const auto two = reportOn(second, again, notes, progress.get());
  const auto firstRows = one->table().rows(), secondRows = two->table().rows();
  ComparisonOptions comparison{
      .shown = options.layout.limit.value_or(shown), .exact = options.exact, .language = options.language};
  for (const ReportColumn& column : one->report().columns) {
    if (column.role == ColumnRole::unitCost) comparison.quotients.push_back(column.name);
  }
  return compareResults(*firstRows, *secondRows, comparison, out);
}

void runReport(const ReportOptions& options, std::ostream& out, std::ostream& notes) {
  if (options.layout.pivot && (options.layout.layout || !options.layout.arrangement.columns.empty() ||
                               !options.layout.arrangement.groupBy.empty()))
    throw UserError(messages::pivotAlone());
  checkLayout(reportNamed(options.report), options.layout);
  if (!options.outputFile.empty()) refuseToReplace(pathFromUtf8(options.outputFile), inputsOf(options));
  if (isHeldAgainst(options) && !options.layout.pivot) throw UserError(messages::againstNeedsPivot());
  const FileToSave& saving = options.savingLayout;
  if (!saving.name.empty()) KeptLayouts::ofUser().requireFreeFor(saving.name, options.report, saving.replace);
  const auto progress = progressOn(notes, options);
  const auto report = reportOn(options.account, options, notes, progress.get());
  const auto other = isHeldAgainst(options) ? reportHeldAgainst(options, notes, progress.get()) : nullptr;
  ReportOptions shown = options;
  shown.layout.comparedWith = other.get();
  if (options.check) {
    if (progress) progress->clear();
    // What programs read stays as it is.
    std::vector<std::string> warnings = warningsOf(options, *report, notes);
    if (!isForPrograms(options.format)) shown.layout.warnings = std::move(warnings);
  }
  writeTo(shown, *report, out, progress.get());
  if (progress) progress->finish();
  if (!saving.name.empty()) saveLayout(options, notes);
  if (options.keep) report->keepTable();
  if (options.keep) notes << "quillon: " << messages::tableKept(report->table().name()).in(options.language) << '\n';
}

namespace {

void addList(CLI::App& command, const char* name, std::vector<std::string>& values, const char* help) {
  command.add_option(name, values, help)->expected(1)->multi_option_policy(CLI::MultiOptionPolicy::TakeAll);
}

void addLayoutOptions(CLI::App& command, LayoutOptions& options, std::string& layout) {
  addLayoutOption(command, layout);
  addList(command, "--columns", options.arrangement.columns, "Show these columns, by name or caption: a,b,c");
  addList(command, "--sort", options.arrangement.sort, "Order the lines by these columns; -a is descending");
  addList(command, "--group-by", options.arrangement.groupBy, "Put the lines under subtotals of these columns");
  addList(command, "--where", options.arrangement.where,
          "Show the lines of which column=value; column=a,b  column=lower..upper  column~part");
  command
      .add_option("--limit", options.limit, "Show at most this many lines, 0 for all; html shows 2000 rows unless told")
      ->transform(wholeNumber<std::int64_t>(0));
  command.add_flag("--all-columns", options.allColumns,
                   "Show user-defined fields and what documents carry beside, too (always in csv and json)");
  command.add_option("--company", options.company, "Whose account it is, for the heading of page and workbook");
}

const std::map<std::string, ReportFormat>& formatNames() {
  static const std::map<std::string, ReportFormat> names = {{"table", ReportFormat::table},
                                                            {"csv", ReportFormat::csv},
                                                            {"json", ReportFormat::json},
                                                            {"html", ReportFormat::html},
                                                            {"xlsx", ReportFormat::xlsx}};
  return names;
}

// What the ending of a file's name promises; a table where it promises nothing.
ReportFormat formatOfFile(std::string_view file) {
  const std::string ending = utf8FromPath(pathFromUtf8(file).extension());
  for (const auto& [name, format] : formatNames()) {
    if (equalIgnoringCase(ending, "." + name)) return format;
  }
  return ReportFormat::table;
}

}  // namespace

void addReportCommand(CLI::App& app) {
  CLI::App& command = *app.add_subcommand("report", "Run a report on an account and show its rows");
  const auto options = std::make_shared<ReportOptions>();
  command.add_option("REPORT", options->report, "The report: " + reportNames())->required();
  addItemHelp(command, options->report);
  addAccountOption(command, "--account", options->account).required();
  addFilterOption(command, options->filterFile, "The filter");
  addSaveFilterOptions(command, options->saving);
  command
      .add_option("--set", options->settings,
                  "Set a filter item: key=value; ranges as lower..upper, several values with commas or again")
      ->expected(1)
      ->multi_option_policy(CLI::MultiOptionPolicy::TakeAll);
  command.add_flag_callback(
      "--no-dialog", [options] { options->dialog = false; },
      "Do not run the report's filter dialog; items that are not given take registered defaults");
  CLI::Option& format =
      *command
           .add_option("--format", options->format,
                       "table, csv, json, html or xlsx; unless told, as the name of the output file ends, else table")
           ->transform(oneOf(formatNames()));
  CLI::Option& output =
      *command.add_option("-o,--output", options->outputFile, "Write to this file instead of standard output");
  addLanguageOption(command, options->language);
  addDateOption(command, options->date);
  const auto layout = std::make_shared<std::string>();
  addLayoutOptions(command, options->layout, *layout);
  const auto pivot = std::make_shared<std::string>();
  command.add_option("--pivot", *pivot,
                     "Sums by what stands down and across: DOWN/ACROSS/FIGURES, by name or caption; 仓库/月份/金额");
  command.add_flag("--captions", options->captions, "Head the columns with captions instead of names (csv)");
  command.add_flag("--bom", options->bom, "Begin with a byte order mark, by which spreadsheets know UTF-8 (csv)");
  command.add_flag("--wide", options->wide, "Show all of a table on a terminal that is too narrow for it");
  command.add_flag_callback(
      "--no-pager", [options] { options->pager = false; },
      "Do not show what is longer than the terminal in the pager (PAGER)");
  command.add_flag("--explain", options->explain, "Print each statement with its time and row count");
  CLI::Option& check = *command.add_flag("--check", options->check,
                                         "Say which errors of the ledger touch the report (quillon account check)");
  CLI::Option& keep = *command.add_flag("--keep", options->keep, "Keep the result table and tell its name");
  const auto second = std::make_shared<AccountSource>();
  CLI::Option& compare = addAccountOption(
      command, "--compare", *second,
      "Run the report on this account, too, and compare the rows, or the pivots; --limit says how many are shown");
  compare.excludes(&keep, &check);
  addList(command, "--against", options->against,
          "Hold the pivot against that of the same report with this filter item: key=value");
  command
      .add_flag("--exact", options->exact, "Compare types, letter case of names and the last digit of quotients, too")
      ->needs(&compare);
  compare.excludes(&addSaveLayoutOptions(command, options->savingLayout));
  command.callback([options, second, &format, &output, layout, pivot] {
    if (format.empty()) options->format = formatOfFile(options->outputFile);
    if (options->format == ReportFormat::xlsx && options->outputFile.empty())
      throw CLI::ValidationError("--format", usageText(messages::workbookNeedsFile()));
    options->layoutText = layoutAskedFor(reportNamed(options->report), {.layout = *layout,
                                                                        .arrangement = options->layout.arrangement,
                                                                        .pivot = *pivot,
                                                                        .allColumns = options->layout.allColumns});
    const LayoutOptions asked = layoutOptionsOf(reportNamed(options->report), options->layoutText);
    options->layout.layout = asked.layout;
    options->layout.arrangement = asked.arrangement;
    options->layout.pivot = asked.pivot;
    options->layout.allColumns = asked.allColumns;
    options->layout.details = asked.details;
    options->terminal = errorsGoToTerminal();
    options->outputIsFile = outputIsFile();
    options->screen = outputScreen();
    if (second->text().empty() || options->layout.pivot || !options->against.empty()) {
      options->comparedAccount = *second;
      runReport(*options, std::cout, std::cerr);
      return;
    }
    // Rows are compared without being written.
    for (const CLI::Option* const written : {&format, &output}) {
      if (!written->empty()) throw CLI::ExcludesError("--compare", written->get_name());
    }
    if (!compareReports(*options, *second, std::cout, std::cerr)) {
      endWith(1);
    }
  });
}

}  // namespace quillon::workbench
