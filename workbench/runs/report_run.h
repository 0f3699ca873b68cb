// Makes a report on an account, for the commands that show its rows or act on one of them.
#pragma once

#include <memory>
#include <set>
#include <string>
#include <vector>

#include "workbench/catalogue/report.h"
#include "workbench/platform/filter_input.h"
#include "workbench/platform/language.h"
#include "workbench/platform/saved_filters.h"
#include "workbench/platform/user_error.h"
#include "workbench/presentation/result_table.h"
#include "workbench/runs/account_login.h"
#include "workbench/runs/run_observer.h"

namespace quillon::workbench {

// Which report, on what, and with which filter.
struct ReportRequest {
  std::string report = {};  // as it is registered, such as "fx-wt"
  AccountSource account = {};
  std::string filterFile = {};             // a filter file; empty for none
  std::vector<std::string> settings = {};  // key=value, over the filter file
  std::vector<ItemValue> values = {};      // over both
  // In the place of all these: a filter that a dialog has accepted, which is run as it is.
  std::shared_ptr<FilterObject> accepted = {};
  FilterToSave saving = {};  // keep what filter file and settings give
  // The report's dialog fills what filter file and settings leave empty and says which choices there are; without it
  // the registered defaults do.
  bool dialog = true;
  Language language = Language::chinese;
  std::string date = {};  // the login's date, yyyy-mm-dd; empty: the last day of the current year
};

// The report's dialog refuses the filter of a request; the observer has been told why.
class FilterRefused : public UserError {
 public:
  using UserError::UserError;
};

// A report that has been made. Its result table goes with it, unless it is kept.
class MadeReport {
 public:
  MadeReport(const Report& report, SignedInAccount account, std::shared_ptr<FilterObject> filter);
  MadeReport(const MadeReport&) = delete;
  MadeReport& operator=(const MadeReport&) = delete;
  ~MadeReport();

  // The same report with a session and a connection of its own, for another thread. The result table is not its to drop;
  // in an account file it lasts as long as the last reader.
  std::unique_ptr<MadeReport> reader() const;

  // Leaves the result table in the account, under its name. Throws tsql::SqlError when the account cannot be written.
  void keepTable();

  const Report& report() const { return report_; }
  const SignedInAccount& account() const { return account_; }
  FilterObject& filter() const { return *filter_; }
  // The argument object that the report was run with.
  const std::shared_ptr<WorkbenchArgument>& argument() const { return argument_; }
  // The result table's account, on a connection of its own.
  tsql::Database& connection() const { return *connection_; }
  // The result table, by the name that the argument's data source has for it.
  ResultTable table() const { return {*connection_, argument_->dataSourceState().resultTable, report_.order, facts_}; }
  // From now on, what is found out about the whole result table is kept, for readers made afterwards, too: it does not
  // change any more.
  void keepFacts() { facts_ = std::make_shared<ResultFacts>(); }

 private:
  MadeReport(const Report& report, SignedInAccount account, std::shared_ptr<FilterObject> filter,
             std::shared_ptr<WorkbenchArgument> argument);

  const Report& report_;
  SignedInAccount account_;
  std::shared_ptr<FilterObject> filter_;
  std::shared_ptr<WorkbenchArgument> argument_;
  std::unique_ptr<tsql::Database> connection_;
  std::shared_ptr<ResultFacts> facts_;
  bool keep_ = false;
};

// Tells, after a dialog's message that an item must not be empty, what there is for it (missing_value.h).
void noteValuesToGive(const FilterObject& filter, std::string_view message, const SignedInAccount& account,
                      Language language, RunObserver& observer);

// What has been entered in `filter`.
std::set<const FilterEntry*> givenTo(const FilterObject& filter);
// Saves these entries of `filter` and says so. Throws UserError when they cannot be saved.
void saveFilter(const FilterToSave& saving, const FilterObject& filter, const std::set<const FilterEntry*>& entries,
                Language language, RunObserver& observer);

// Signs in, fills the filter, saves it when it was accepted, and runs the report. Throws std::exception with one line for the user when it cannot be
// made.
std::unique_ptr<MadeReport> makeReport(const ReportRequest& request, RunObserver& observer);

}  // namespace quillon::workbench
