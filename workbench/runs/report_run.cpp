#include "workbench/runs/report_run.h"

#include <chrono>

#include "workbench/account/kept_table.h"
#include "workbench/account/leftover_tables.h"
#include "workbench/catalogue/catalogue.h"
#include "workbench/catalogue/library_runner.h"
#include "workbench/messages/filter.h"
#include "workbench/messages/report.h"
#include "workbench/platform/filter_file.h"
#include "workbench/platform/filter_input.h"
#include "workbench/platform/missing_value.h"
#include "workbench/platform/named_values.h"
#include "workbench/platform/unknown_codes.h"
#include "workbench/platform/user_error.h"
#include "workbench/presentation/text_cells.h"
#include "workbench/runs/run_monitor.h"
#include "workbench/tsql/values/stop.h"

namespace quillon::workbench {

void noteValuesToGive(const FilterObject& filter, std::string_view message, const SignedInAccount& account,
                      Language language, RunObserver& observer) {
  try {
    const auto line = valuesToGive(filter, message, *account.session, language);
    if (line) observer.noted(oneLine(*line));
  } catch (const AutomationError&) {
    // An account of another make may keep its ledger elsewhere: what is missing was said.
  }
}

std::set<const FilterEntry*> givenTo(const FilterObject& filter) {
  std::set<const FilterEntry*> given;
  for (const auto& entry : filter.entries()) {
    if (!entry->value.empty() || !entry->value2.empty() || !entry->sql.empty()) given.insert(entry.get());
  }
  return given;
}

void saveFilter(const FilterToSave& saving, const FilterObject& filter, const std::set<const FilterEntry*>& entries,
                Language language, RunObserver& observer) {
  SavedFilters::ofUser().save(saving.name, filterFileText(filter, entries, language), saving.replace);
  observer.noted(messages::filterSaved(saving.name).in(language));
}

namespace {

// Puts the filter through the report's dialog, as if it had been opened with these values and confirmed. Only the given
// values are checked: the default year of the dialog may be one that its own list does not have.
void passDialog(const Report& report, const SignedInAccount& account, const std::shared_ptr<FilterObject>& filter,
                Language language, RunObserver& observer) {
  std::string message;
  EmbeddedPlatform platform(
      {.account = account.source, .language = language, .messages = [&observer, &message](std::string_view text, int) {
         message = oneLine(text);
         observer.shown(message);
       }});
  std::vector<const FilterEntry*> given;
  for (const auto& entry : filter->entries()) {
    if (!entry->value.empty() || !entry->value2.empty()) given.push_back(entry.get());
  }
  const auto runner =
      makeDialogRunner(platform, report, std::make_shared<FilterDialogObject>(filter, account.login, account.session));
  runner->init();
  resolveOffered(*filter, *account.session, language);
  for (const FilterEntry* entry : given)
    checkItem(*entry);
  checkComplete(*filter);
  if (!runner->click()) {
    noteValuesToGive(*filter, message, account, language, observer);
    throw FilterRefused(messages::dialogRefuses());
  }
  for (const FilterEntry* entry : given) {
    if (entry->available || entry->value == entry->item.defaultValue) continue;
    const Caption caption{entry->item.chinese, entry->item.english};
    observer.noted(messages::dialogWouldNotLet(entry->item.key, caption).in(language));
  }
}

void noteUnknownCodes(const FilterObject& filter, const SignedInAccount& account, Language language,
                      RunObserver& observer) {
  for (const Message& line : unknownCodes(filter, *account.session))
    observer.noted(oneLine(line.in(language)));
}

std::shared_ptr<FilterObject> filledFilter(const ReportRequest& request, const Report& report,
                                           const SignedInAccount& account, RunObserver& observer) {
  if (request.accepted) {
    noteUnknownCodes(*request.accepted, account, request.language, observer);
    return request.accepted;
  }
  auto filter = std::make_shared<FilterObject>(report.registration,
                                               request.dialog ? InitialValues::none : InitialValues::defaults);
  if (!request.dialog) prepareFilter(*filter, *account.login, *account.session);
  if (!request.filterFile.empty()) readFilterFile(*filter, request.filterFile);
  setFilterItems(*filter, request.settings);
  setItems(*filter, request.values);
  resolveNames(*filter, *account.session, request.language, request.dialog);
  const std::set<const FilterEntry*> given = givenTo(*filter);
  if (request.dialog) {
    passDialog(report, account, filter, request.language, observer);
  } else {
    checkFilter(*filter);
  }
  noteUnknownCodes(*filter, account, request.language, observer);
  if (!request.saving.name.empty()) saveFilter(request.saving, *filter, given, request.language, observer);
  return filter;
}

// The last step but one of a build with balance conditions drops the group index by its bare name. That name begins
// with a digit, so the account refuses the statement as SQL Server does; the number of the error is each server's own. All
// rows are written by then. A lost connection has no number.
bool onlyGroupIndexStays(const StatementFailure& failure) {
  return failure.number != 0 && failure.sql.starts_with("If Exists(Select Name From Sysobjects") &&
         failure.sql.ends_with("IA_SFC_IX_GroupIndex");
}

// Says what stopped the build. Throws unless all rows were written by then.
void reportStop(const RunMonitor& monitor, Language language, RunObserver& observer) {
  if (!monitor.failure()) {
    throw UserError(messages::filterNotTranslated());
  }
  const StatementFailure& failure = *monitor.failure();
  if (onlyGroupIndexStays(failure)) {
    const Message error = errorText(failure.number, failure.line, failure.message);
    observer.noted(messages::groupIndexStays(error).in(language));
    return;
  }
  throw UserError(messages::buildStopped(errorText(failure)));
}

// Work tables of a run on a server go on every way out.
class WorkTablesOnServer {
 public:
  // Both outlive the object.
  WorkTablesOnServer(const AccountSource& account, const EmbeddedPlatform& platform)
      : account_(account), platform_(platform) {}
  WorkTablesOnServer(const WorkTablesOnServer&) = delete;
  WorkTablesOnServer& operator=(const WorkTablesOnServer&) = delete;
  ~WorkTablesOnServer() {
    if (reportDroppedThem_ || !account_.onServer() || platform_.uniqueParts().empty()) return;
    const tsql::IgnoreStop putAway;
    try {
      account::dropWorkTablesNamed(*account_.open(tsql::OpenMode::existing), platform_.uniqueParts());
    } catch (const std::exception&) {
      // The server is gone; `quillon account clean` finds them when it is back.
    }
  }

  // The report came to its end.
  void reportDroppedThem() { reportDroppedThem_ = true; }

 private:
  const AccountSource& account_;
  const EmbeddedPlatform& platform_;
  bool reportDroppedThem_ = false;
};

}  // namespace

MadeReport::MadeReport(const Report& report, SignedInAccount account, std::shared_ptr<FilterObject> filter)
    : report_(report),
      account_(std::move(account)),
      filter_(std::move(filter)),
      argument_(std::make_shared<WorkbenchArgument>(filter_, account_.login, freshResultTable())),
      connection_(account_.source.open(tsql::OpenMode::existing)) {}

MadeReport::MadeReport(const Report& report, SignedInAccount account, std::shared_ptr<FilterObject> filter,
                       std::shared_ptr<WorkbenchArgument> argument)
    : report_(report),
      account_(std::move(account)),
      filter_(std::move(filter)),
      argument_(std::move(argument)),
      connection_(account_.source.open(tsql::OpenMode::existing)),
      keep_(true) {}

std::unique_ptr<MadeReport> MadeReport::reader() const {
  SignedInAccount account = account_;
  account.session = std::make_shared<AccountSession>();
  account.session->setAccount(account.source);
  account.session->open("", "", optionsUnspecified);
  std::unique_ptr<MadeReport> made(new MadeReport(report_, std::move(account), filter_, argument_));
  made->facts_ = facts_;
  return made;
}

MadeReport::~MadeReport() {
  // A scratch file takes its tables along.
  if (keep_ || !account_.source.onServer()) return;
  const tsql::IgnoreStop putAway;
  try {
    table().drop();
  } catch (const std::exception&) {
    // The account refuses even this: the error that led here says more.
  }
}

void MadeReport::keepTable() {
  if (account_.source.onServer()) {
    keep_ = true;
  } else {
    account::keepTable(account_.source.file(), account_.scratch->file(), table().name());
  }
}

std::unique_ptr<MadeReport> makeReport(const ReportRequest& request, RunObserver& observer) {
  const Report& report = reportNamed(request.report);
  if (!request.saving.name.empty()) SavedFilters::ofUser().requireFree(request.saving.name, request.saving.replace);
  SignedInAccount account = logIn(request.account, request.language, request.date);
  std::shared_ptr<FilterObject> filter = filledFilter(request, report, account, observer);
  auto made = std::make_unique<MadeReport>(report, std::move(account), std::move(filter));

  RunMonitor monitor(observer);
  EmbeddedPlatform platform({.account = made->account().source,
                             .language = request.language,
                             .monitor = &monitor,
                             .messages = [&observer](std::string_view text, int) { observer.shown(oneLine(text)); }});
  WorkTablesOnServer workTables(made->account().source, platform);
  {
    const auto runner = makeReportRunner(platform);
    const auto start = std::chrono::steady_clock::now();
    try {
      runner->run(report, made->argument());
    } catch (const AutomationError& error) {
      tsql::endIfStopped();
      // Through COM only the description comes back; the monitor knows the rest.
      if (monitor.failure() && monitor.failure()->message == error.description())
        throw UserError(errorText(*monitor.failure()));
      throw;
    }
    const std::chrono::duration<double> time = std::chrono::steady_clock::now() - start;
    observer.ended(monitor.statements(), monitor.secondsInStatements(), time.count());
  }
  tsql::endIfStopped();
  if (monitor.leftOpen()) {
    reportStop(monitor, request.language, observer);
  } else {
    workTables.reportDroppedThem();
  }
  return made;
}

}  // namespace quillon::workbench
