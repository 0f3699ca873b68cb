// What the two summary reports have in common: the members that the platform calls, in the platform's order, and the
// error trap around the build. A report adds only its build. One instance lives for one report run.
#pragma once

#include <memory>
#include <string>
#include <utility>

#include "frame/module.h"

namespace quillon {

class SummaryReport {
 public:
  // Sets the module's name prefix anew from the platform's naming class. `module` must outlive the report.
  explicit SummaryReport(Module& module);
  virtual ~SummaryReport() = default;
  SummaryReport(const SummaryReport&) = delete;
  SummaryReport& operator=(const SummaryReport&) = delete;

  const std::string& tempTableProperty() const { return tempTableProperty_; }  // tarn_tmpTable
  void setTempTableProperty(std::string value) { tempTableProperty_ = std::move(value); }
  // Always empty: the platform names the result table itself, in the argument's data source.
  std::string tempTableName() const { return {}; }

  // The whole run: keeps the argument's filter, opens the session from its login, sets its data source's Type to 2 and
  // takes the result table's name from it, builds, closes. Throws AutomationError for what fails outside the build; an
  // error inside the build is absorbed and leaves the session open in the module, and work tables in the account.
  void getSql(ReportArgument& argument);
  // The build under its error trap: empty text on success, a single blank on any error, and also when getSql() has not
  // given it a filter and an open session.
  std::string moveDataDetail();
  // Reads the argument's Action and Login and asks the platform's drill-through helper for a filter object, which it
  // releases at once. Never fails and changes nothing: every error is ignored step by step.
  void execute(ReportArgument& argument) noexcept;

 protected:
  // Makes the table `resultTable` (a name as the platform wrote it, pasted into statements as it stands) and fills it
  // with the rows that `filter` asks for. The session is the module's. Anything that it throws ends the build.
  virtual void build(Filter& filter, const std::string& resultTable, Module& module, Session& session) = 0;

 private:
  Module& module_;
  std::shared_ptr<Filter> filter_;
  std::string resultTable_;
  std::string tempTableProperty_;
};

}  // namespace quillon
