// The argument object of a report run and what hangs on it: login and data source. Plain data behind the ports.
#pragma once

#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "frame/platform.h"
#include "workbench/platform/account_source.h"
#include "workbench/platform/filter_object.h"
#include "workbench/platform/language.h"

namespace quillon::workbench {

// What a login tells. All UTF-8; the password never leaves it but through the port.
struct LoginDetails {
  std::string accountConnection = {};
  std::string password = {};
  std::string accountCode = {};     // "001"
  std::string accountingYear = {};  // "2024"
  std::string languageRegion = {};  // "zh-CN" or "en-US"
  std::string languageId = {};      // "2052" or "1033"
  int currentPeriodYear = 0;
  std::string businessDate = {};  // yyyy-mm-dd
};

// The login of `account`, which `session` has open, in `language`: account code and years from orvsystem..UA_Period,
// the current year as the public component gives it. Year and date are the current year and its last day unless `year`
// (text, "2024") or `date` ("2024-03-31") say otherwise; empty leaves them alone. Throws AutomationError when the
// account has no periods, and std::invalid_argument for a year that it does not have.
LoginDetails accountLogin(Session& session, const AccountSource& account, Language language, const std::string& year,
                          const std::string& date);

class WorkbenchLogin final : public Login {
 public:
  explicit WorkbenchLogin(LoginDetails details) : details_(std::move(details)) {}

  std::string accountConnection() override { return details_.accountConnection; }
  std::string password() override { return details_.password; }
  std::string accountCode() override { return details_.accountCode; }
  std::string accountingYear() override { return details_.accountingYear; }
  std::string accountingYearText() override { return details_.accountingYear; }
  std::string languageRegion() override { return details_.languageRegion; }
  std::string languageId() override { return details_.languageId; }
  int currentPeriodYear() override { return details_.currentPeriodYear; }
  std::string businessDate() override { return details_.businessDate; }
  // The workbench's user has every right, whatever the dialog asks for; it only keeps what was asked.
  void setAuthString(std::string_view rights) override { authString_ = rights; }
  const std::string& authString() const { return authString_; }
  // The workbench is a program of inventory accounting.
  std::string moduleCode() override { return "IA"; }

 private:
  std::string authString_;
  LoginDetails details_;
};

// What a data source holds; shared with the descriptors that the argument hands out.
struct DataSourceState {
  int type = 0;
  std::string resultTable;
};

// The row that a drill-through starts from: the values of the result table's columns as text, empty for null.
using RowValues = std::vector<std::pair<std::string, std::string>>;

class WorkbenchArgument final : public ReportArgument {
 public:
  // For a report run. `resultTable` is the name that the report gives its result table, as it is pasted into
  // statements; a report that names its table itself replaces it.
  WorkbenchArgument(std::shared_ptr<FilterObject> filter, std::shared_ptr<Login> login, std::string resultTable,
                    std::string action = {});
  // For a drill-through from a row of a report.
  WorkbenchArgument(std::shared_ptr<Login> login, RowValues row, std::string action);

  std::shared_ptr<Filter> rawFilter() override { return filter_; }
  std::shared_ptr<Login> login() override { return login_; }
  std::shared_ptr<Login> filterLogin() override { return login_; }
  std::unique_ptr<DataSource> dataSource() override;
  std::string action() override { return action_; }
  // Throws AutomationError when the argument is for no drill-through.
  std::unique_ptr<ReportRow> row() override;
  // Accounts name their languages as the login's region does.
  std::string languageId() override { return login_->languageRegion(); }

  // The filter, with what only the workbench uses of it.
  const std::shared_ptr<FilterObject>& filter() const { return filter_; }
  const DataSourceState& dataSourceState() const { return *dataSource_; }

 private:
  std::shared_ptr<FilterObject> filter_;
  std::shared_ptr<Login> login_;
  std::shared_ptr<DataSourceState> dataSource_;
  std::string action_;
  std::optional<RowValues> row_;
};

}  // namespace quillon::workbench
