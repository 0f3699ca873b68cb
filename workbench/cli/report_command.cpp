#include "workbench/cli/report_command.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <chrono>
#include <fstream>
#include <iostream>
#include <map>
#include <memory>

#include "frame/text.h"
#include "workbench/account/account.h"
#include "workbench/cli/account_login.h"
#include "workbench/cli/command_error.h"
#include "workbench/cli/filter_file.h"
#include "workbench/cli/json_file.h"
#include "workbench/cli/library_runner.h"
#include "workbench/cli/named_choice.h"
#include "workbench/cli/report_document.h"
#include "workbench/cli/report_layout.h"
#include "workbench/cli/report_output.h"
#include "workbench/cli/run_monitor.h"
#include "workbench/cli/standard_streams.h"
#include "workbench/cli/text_cells.h"
#include "workbench/platform/account_source.h"
#include "workbench/platform/filter_input.h"
#include "workbench/platform/registrations.h"

namespace quillon::workbench {

namespace {

// What the workbench knows of a report.
struct KnownReport {
  const ReportRegistration& registration;
  const ReportLayout& layout;
};

KnownReport knownReport(const std::string& name) {
  const ReportRegistration& registration = registeredReport(name);
  return {registration, layoutOf(registration.name)};
}

// Everything that is read from the account before the report runs.
struct PreparedRun {
  SignedInAccount account;
  std::shared_ptr<FilterObject> filter;
  int quantityDecimals = 2;
};

int quantityDecimals(Session& session) {
  const std::string text = AccountPublicComponent().accountInformation("AA", "iStrsQuanDecDgt", session);
  int decimals = 2;
  std::from_chars(text.data(), text.data() + text.size(), decimals);
  return std::clamp(decimals, 0, 6);
}

// Puts the filter through the report's dialog, as if it had been opened with these values and confirmed. The dialog's
// own defaults are its own affair: the current year may be one that its list of years does not have.
void passDialog(const PreparedRun& run, const ReportOptions& options, const ReportRegistration& report,
                std::ostream& notes) {
  EmbeddedPlatform platform({.accountConnection = run.account.connection,
                             .language = options.language,
                             .messages = [&notes](std::string_view text, int) { notes << oneLine(text) << '\n'; }});
  std::vector<const FilterEntry*> given;
  for (const auto& entry : run.filter->entries()) {
    if (!entry->value.empty() || !entry->value2.empty()) given.push_back(entry.get());
  }
  const auto runner = makeDialogRunner(
      platform, report, std::make_shared<FilterDialogObject>(run.filter, run.account.login, run.account.session));
  runner->init();
  for (const FilterEntry* entry : given)
    checkItem(*entry);
  checkComplete(*run.filter);
  if (!runner->click())
    throw CommandError("the report's dialog does not accept the filter; change it, or give --no-dialog");
  for (const FilterEntry* entry : given) {
    if (entry->available || entry->value == entry->item.defaultValue) continue;
    notes << "quillon: the report's dialog would not let " << entry->item.key << " (" << entry->item.english
          << ") be entered in this account; it is applied as it was given\n";
  }
}

PreparedRun prepare(const ReportOptions& options, const KnownReport& report, std::ostream& notes) {
  PreparedRun run{.account = logIn(options.account, options.language, options.date), .filter = {}};
  run.filter = std::make_shared<FilterObject>(report.registration,
                                              options.dialog ? InitialValues::none : InitialValues::defaults);
  if (!options.dialog) prepareFilter(*run.filter, *run.account.login, *run.account.session);
  if (!options.filterFile.empty()) applyFilterFile(*run.filter, readJsonFile(options.filterFile));
  setFilterItems(*run.filter, options.settings);
  if (options.dialog) {
    passDialog(run, options, report.registration, notes);
  } else {
    checkFilter(*run.filter);
  }
  run.quantityDecimals = quantityDecimals(*run.account.session);
  return run;
}

std::string entered(FilterObject& filter, std::string_view key) {
  const FilterEntry* entry = filter.find(key);
  return entry == nullptr ? "" : entry->value;
}

// The heading's conditions: year, mode and, by class, the grade; then whatever differs from its default.
std::vector<std::pair<std::string, std::string>> conditions(FilterObject& filter, Language language) {
  const bool byClass = entered(filter, "cModal") == "0";
  std::vector<std::pair<std::string, std::string>> lines;
  for (const auto& entry : filter.entries()) {
    const std::string& key = entry->item.key;
    const bool always = key == "iYear" || key == "cModal" || (key == "iGrade" && byClass);
    const bool upperBound = !entry->value2.empty() && entry->value2 != entry->value;
    const bool changed = entry->value != entry->item.defaultValue || upperBound || !entry->sql.empty();
    if (!always && !changed) continue;
    const std::string text = describeEntry(*entry, language);
    if (!text.empty()) lines.emplace_back(entry->item.caption(language), text);
  }
  return lines;
}

// Drops the result table when the report was shown, or could not be.
class ResultGuard {
 public:
  explicit ResultGuard(ResultTable& table) : table_(table) {}
  ResultGuard(const ResultGuard&) = delete;
  ResultGuard& operator=(const ResultGuard&) = delete;
  ~ResultGuard() {
    try {
      table_.drop();
    } catch (const std::exception&) {
      // The account refuses even this: the error that led here says more.
    }
  }

 private:
  ResultTable& table_;
};

std::string joined(const std::vector<std::string>& names) {
  std::string text;
  for (const std::string& name : names)
    text += (text.empty() ? "" : ", ") + name;
  return text.empty() ? "nothing" : text;
}

// The last step but one of a build with balance conditions drops the group index by its bare name. That name begins
// with a digit, so the account refuses the statement as SQL Server does. All rows are written by then.
bool onlyGroupIndexStays(const StatementFailure& failure) {
  constexpr int incorrectSyntax = 102;
  return failure.number == incorrectSyntax && failure.sql.starts_with("If Exists(Select Name From Sysobjects") &&
         failure.sql.ends_with("IA_SFC_IX_GroupIndex");
}

// Tells what stopped the build. Throws unless the rows are complete all the same.
void tellStop(const RunMonitor& monitor, tsql::Connection& account, const std::string& source, std::ostream& notes) {
  const std::string left = "; left in the account: " + joined(account::leftoverWorkTables(account)) +
                           " (drop with: quillon account clean " + source + ")";
  if (!monitor.failure()) {
    throw CommandError("the build stopped before a statement failed: a filter value could not be translated" + left);
  }
  const StatementFailure& failure = *monitor.failure();
  const std::string error = "error " + std::to_string(failure.number) + ": " + failure.message;
  if (onlyGroupIndexStays(failure)) {
    notes << "quillon: all rows are written, but the group index was not dropped: the statement names it without "
             "brackets and the name begins with a digit ("
          << error << ")" << left << '\n';
    return;
  }
  constexpr std::size_t statementCells = 160;
  throw CommandError("the build stopped: " + error + ", at: " + shortened(oneLine(failure.sql), statementCells) + left);
}

void write(const ReportOptions& options, const KnownReport& report, PreparedRun& run, const ResultTable& table,
           std::ostream& out) {
  if (options.format == ReportFormat::csv) {
    writeCsv(out, table);
    return;
  }
  ReportDocument document;
  document.language = options.language;
  document.report = report.registration.name;
  document.title = report.registration.title(options.language);
  if (options.format == ReportFormat::json) {
    writeJson(out, document, table, report.layout.columns);
    return;
  }
  document.conditions = conditions(*run.filter, options.language);
  document.quantityDecimals = run.quantityDecimals;
  document.columns = table.filledColumns(report.layout.columns);
  if (!options.allColumns) {
    document.columnsLeftOut = std::erase_if(
        document.columns, [](const ReportColumn& column) { return column.role == ColumnRole::userDefined; });
  }
  document.totals = table.totals(document.columns);
  document.crossStates = report.layout.states(entered(*run.filter, "cModal"));
  document.cross = table.crossView(document.crossStates);
  document.rowCount = table.rowCount();
  if (options.format == ReportFormat::html) {
    writeHtml(out, document, table, options.limit);
  } else {
    writeTable(out, document, table, options.limit);
  }
}

void writeTo(const ReportOptions& options, const KnownReport& report, PreparedRun& run, const ResultTable& table,
             std::ostream& out) {
  if (options.outputFile.empty()) {
    write(options, report, run, table, out);
    out.flush();
    if (!out) throw CommandError("the report could not be written to standard output");
    return;
  }
  std::ofstream file(pathFromUtf8(options.outputFile), std::ios::binary);
  if (file) write(options, report, run, table, file);
  file.close();
  if (!file) {
    throw CommandError("cannot write " + options.outputFile + "; check the folder, its permissions and its free space");
  }
}

std::string totalTime(const RunMonitor& monitor, double seconds) {
  std::array<char, 160> text{};
  const int length = std::snprintf(
      text.data(), text.size(), "%d statements, %.1f ms in the account, %.1f ms in all (the report itself %.2f ms)\n",
      monitor.statements(), monitor.secondsInStatements() * 1000, seconds * 1000,
      (seconds - monitor.secondsInStatements()) * 1000);
  return {text.data(), static_cast<std::size_t>(length)};
}

}  // namespace

void runReport(const ReportOptions& options, std::ostream& out, std::ostream& notes) {
  const KnownReport report = knownReport(options.report);
  PreparedRun run = prepare(options, report, notes);

  const auto account = tsql::Connection::open(run.account.file, tsql::OpenMode::existing);
  ResultTable table(*account, freshResultTable());
  std::optional<ResultGuard> guard;
  if (!options.keep) guard.emplace(table);

  RunMonitor monitor(options.terminal ? &notes : nullptr, options.explain ? &notes : nullptr);
  EmbeddedPlatform platform({.accountConnection = run.account.connection,
                             .language = options.language,
                             .monitor = &monitor,
                             .messages = [&notes](std::string_view text, int) { notes << oneLine(text) << '\n'; }});
  {
    const auto runner = makeReportRunner(platform);
    const auto start = std::chrono::steady_clock::now();
    runner->run(report.registration, std::make_shared<WorkbenchArgument>(run.filter, run.account.login, table.name()));
    const std::chrono::duration<double> time = std::chrono::steady_clock::now() - start;
    if (options.explain) notes << totalTime(monitor, time.count());
  }
  if (monitor.leftOpen()) tellStop(monitor, *account, utf8FromPath(run.account.file), notes);
  writeTo(options, report, run, table, out);
  if (options.keep) notes << "quillon: the result table " << table.name() << " is kept\n";
}

void addReportCommand(CLI::App& app) {
  CLI::App& command = *app.add_subcommand("report", "Run a report on an account and show its rows");
  const auto options = std::make_shared<ReportOptions>();
  static const std::map<std::string, ReportFormat> formats = {{"table", ReportFormat::table},
                                                              {"csv", ReportFormat::csv},
                                                              {"json", ReportFormat::json},
                                                              {"html", ReportFormat::html}};
  static const std::map<std::string, Language> languages = {{"zh", Language::chinese}, {"en", Language::english}};
  command.add_option("REPORT", options->report, "The report: " + reportNames())->required();
  command.add_option("--account", options->account, "The account file")->required();
  command.add_option("--filter", options->filterFile, "The filter, a JSON file");
  command
      .add_option("--set", options->settings,
                  "Set a filter item: key=value; ranges as lower..upper, several values with commas or again")
      ->expected(1)
      ->multi_option_policy(CLI::MultiOptionPolicy::TakeAll);
  command.add_flag("!--no-dialog", options->dialog,
                   "Do not run the report's filter dialog; items that are not given take registered defaults");
  command.add_option("--format", options->format, "table, csv, json or html")->transform(oneOf(formats));
  command.add_option("-o,--output", options->outputFile, "Write to this file instead of standard output");
  command.add_option("--lang", options->language, "zh or en")->transform(oneOf(languages));
  command.add_option("--date", options->date, "The login's date, yyyy-mm-dd");
  command.add_option("--limit", options->limit, "Show at most this many rows (table, html)")
      ->check(CLI::NonNegativeNumber);
  command.add_flag("--all-columns", options->allColumns,
                   "Show user-defined fields too (table, html; always in csv, json)");
  command.add_flag("--explain", options->explain, "Print each statement with its time and row count");
  command.add_flag("--keep", options->keep, "Keep the result table and tell its name");
  command.callback([options] {
    options->terminal = errorsGoToTerminal();
    runReport(*options, std::cout, std::cerr);
  });
}

}  // namespace quillon::workbench
