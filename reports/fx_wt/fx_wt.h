// clsFXWt: the cost-item voucher report. It lists ledger lines with their accounting-voucher columns, each as the parts
// that fall to its cost items, with a part's unit cost and how much of it goes into one unit of the line; and it opens
// the document behind a row. One instance lives for one report run.
#pragma once

#include <memory>
#include <string>
#include <utility>

#include "frame/drill_through.h"
#include "frame/module.h"

namespace quillon {

class FxWt {
 public:
  // `module` must outlive the instance.
  explicit FxWt(Module& module) : module_(module) {}
  FxWt(const FxWt&) = delete;
  FxWt& operator=(const FxWt&) = delete;

  // msLanguage: the language in which expense types are named, as Ca_AmoTypeName.localid has it; getSql() takes it from
  // the argument's LangID.
  const std::string& language() const { return language_; }
  void setLanguage(std::string value) { language_ = std::move(value); }
  // objFilter: the report's filter; getSql() takes it from the argument.
  const std::shared_ptr<Filter>& filter() const { return filter_; }
  void setFilter(std::shared_ptr<Filter> value) { filter_ = std::move(value); }
  // tarn_tmpTable and m_sBaseTable are the platform's to keep; the report does not look at them.
  const std::string& tempTableProperty() const { return tempTableProperty_; }
  void setTempTableProperty(std::string value) { tempTableProperty_ = std::move(value); }
  const std::string& baseTable() const { return baseTable_; }
  void setBaseTable(std::string value) { baseTable_ = std::move(value); }

  // GETSQL: the whole run. Keeps the argument's filter, opens the module's session from its login, sets its data
  // source's Type to 2 and takes the result table's name from it, keeps its LangID, builds, closes and releases the
  // session. Throws AutomationError for everything that fails; the session then stays in the module as it is, and work
  // tables may be left in the account.
  void getSql(ReportArgument& argument);

  // MoveDataDetail: makes and fills the result table that getSql() was given, in the module's session. Reads the account
  // options dIAFirstDate and bZYXS of system IA, iStrsQuanDecDgt and iStrsPriDecDgt of AA. Always gives an empty text.
  // Throws AutomationError for everything that fails, also when there is no filter or no open session yet.
  std::string moveDataDetail();

  // Execute: opens the document behind the row that the argument carries. Throws AutomationError for everything that
  // fails.
  DrillThrough execute(ReportArgument& argument) { return drillThrough(module_, argument); }

 private:
  Module& module_;
  std::shared_ptr<Filter> filter_;
  std::string language_;
  std::string resultTable_;
  std::string tempTableProperty_;
  std::string baseTable_;
};

}  // namespace quillon
