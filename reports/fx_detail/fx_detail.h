// clsFXDetail: the cost-item detail ledger. For one inventory, where the account keeps costs by place also one
// warehouse or department, it lists per cost item the opening balance, every receipt and issue of a range of dates, and
// a balance per month; and it opens the document behind a row. One instance lives for one report run.
#pragma once

#include <memory>
#include <string>

#include "frame/drill_through.h"
#include "frame/module.h"

namespace quillon {

class FxDetail {
 public:
  // `module` must outlive the instance.
  explicit FxDetail(Module& module) : module_(module) {}
  // Releases what a run that failed has left in the module: its session, login and public component.
  ~FxDetail();
  FxDetail(const FxDetail&) = delete;
  FxDetail& operator=(const FxDetail&) = delete;

  // GETSQL: the whole run. Opens the session from the argument's login, learns the costing basis and the names of the
  // inventory, warehouse and result tables from the platform's environment, writes Type 2 and the result table's name
  // into the argument's data source, builds, closes, and releases session, login and public component.
  //
  // Reads the filter items cInvCode, cDepCode, cWhCode, iYear, dKeepDate and, where the inventory is checked for them,
  // the conditions of cFree1 to cFree10 and cBatchIA. A year and dates for which there is nothing to report give an
  // empty result table. Throws AutomationError for everything that fails; work tables may then be left in the session.
  void getSql(ReportArgument& argument);

  // Execute: opens the document behind the row that the argument carries. Throws AutomationError for everything that
  // fails.
  DrillThrough execute(ReportArgument& argument) { return drillThrough(module_, argument); }

 private:
  void build(Filter& filter, AccountOptions& options, const std::string& resultTable, Session& session);

  // Takes what a run put into the module out of it again.
  void release();

  Module& module_;
  // Of a run that has not come to its end.
  std::shared_ptr<Session> session_;
};

}  // namespace quillon
