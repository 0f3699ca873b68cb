// The host platform's objects as the core's ports: one late-bound adapter a port, each member one call by name
// (platform_bindings.h). The resource and message service alone is called early-bound.
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "automation/late_bound.h"
#include "component/ado_session.h"
#include "component/platform_bindings.h"
#include "frame/filter_dialog.h"
#include "frame/platform.h"

namespace quillon::component {

class ComFilterItem : public FilterItem {
 public:
  explicit ComFilterItem(automation::LateBound item) : item_(std::move(item)) {}

  void setGroupToken(int token) override;
  std::string name() override;
  std::string value() override;
  std::string value2() override;
  bool rangeInput() override;
  bool multipleSelection() override;
  std::string sqlText() override;

 private:
  automation::LateBound item_;
};

class ComFilter : public Filter {
 public:
  explicit ComFilter(automation::LateBound filter) : filter_(std::move(filter)) {}

  int count() override;
  std::unique_ptr<FilterItem> item(int position) override;
  std::unique_ptr<FilterItem> item(std::string_view key) override;
  std::string whereWithToken(int token) override;

  // The filter itself, for whoever asks the report for it.
  const automation::ComPtr<IDispatch>& object() const { return filter_.object(); }

 private:
  automation::LateBound list() const;

  automation::LateBound filter_;
};

class ComLogin : public Login {
 public:
  explicit ComLogin(automation::LateBound login) : login_(std::move(login)) {}

  std::string accountConnection() override;
  std::string password() override;
  std::string accountCode() override;
  std::string accountingYear() override;
  std::string accountingYearText() override;
  std::string languageRegion() override;
  std::string languageId() override;
  int currentPeriodYear() override;
  // A date value as yyyy-mm-dd, a text as it stands.
  std::string businessDate() override;
  std::string moduleCode() override;
  void setAuthString(std::string_view rights) override;

  // The login itself, for the platform's components that take it.
  const automation::ComPtr<IDispatch>& object() const { return login_.object(); }

 private:
  automation::LateBound login_;
};

class ComDialogItem : public DialogItem {
 public:
  explicit ComDialogItem(automation::LateBound item) : item_(std::move(item)) {}

  std::string name() override;
  std::string caption() override;
  std::string value() override;
  void setValue(std::string_view value) override;
  void setBounds(std::string_view lower, std::string_view upper) override;
  void setListText(std::string_view choices) override;
  void setListSource(std::string_view choicesOrStatement) override;

 private:
  automation::LateBound item_;
};

// One callback's view of the dialog.
class ComFilterDialog : public FilterDialog {
 public:
  // `filter` may be null ("Nothing"): every member then throws Basic's error 91.
  explicit ComFilterDialog(automation::ComPtr<IDispatch> filter) : filter_(std::move(filter), "filter") {}

  std::shared_ptr<Login> login() override;
  std::string identifier() override;
  Session& connection() override;
  int count() override;
  std::unique_ptr<DialogItem> item(int position) override;
  std::unique_ptr<DialogItem> item(std::string_view key) override;
  void setUnavailable(std::string_view key, bool flag) override;
  void setEnumeration(std::string_view key, std::string_view text) override;
  void setLookupCondition(std::string_view key, std::string_view secondArgument, std::string_view condition) override;
  void setLookupConditionOfValue(std::string_view key, std::string_view condition, bool valueIsEmpty) override;

 private:
  automation::LateBound list() const;

  automation::LateBound filter_;
  std::unique_ptr<AdoSession> connection_;  // from the first time that it is asked for
};

class ComDataSource : public DataSource {
 public:
  explicit ComDataSource(automation::LateBound dataSource) : dataSource_(std::move(dataSource)) {}

  void setType(int type) override;
  std::string resultTable() override;
  void setResultTable(std::string_view name) override;

 private:
  automation::LateBound dataSource_;
};

class ComReportRow : public ReportRow {
 public:
  explicit ComReportRow(automation::LateBound row) : row_(std::move(row)) {}

  std::string value(std::string_view column) override;

 private:
  automation::LateBound row_;
};

class ComReportArgument : public ReportArgument {
 public:
  // `argument` may be null ("Nothing"): every member then throws Basic's error 91.
  explicit ComReportArgument(automation::ComPtr<IDispatch> argument) : argument_(std::move(argument), "e") {}

  std::shared_ptr<Filter> rawFilter() override;
  std::shared_ptr<Login> login() override;
  std::shared_ptr<Login> filterLogin() override;
  std::unique_ptr<DataSource> dataSource() override;
  std::string action() override;
  std::unique_ptr<ReportRow> row() override;
  std::string languageId() override;

 private:
  automation::LateBound argument_;
};

// The members take sessions that ComPlatform made.
class ComPublicComponent : public PublicComponent {
 public:
  explicit ComPublicComponent(automation::LateBound component) : component_(std::move(component)) {}

  std::string accountInformation(std::string_view system, std::string_view name, Session& session) override;
  int currentPeriodYear(Session& session) override;
  int costItemStartMonth(std::string_view year, Session& session) override;
  std::vector<std::string> usedYears(std::string_view accountCode, Session& session) override;
  bool costItemOpeningsFinished(int year, Session& session) override;
  AccountingPeriod moduleStart(std::string_view system, Session& session) override;
  PeriodDates datesOfPeriod(std::string_view accountCode, AccountingPeriod period, Session& session) override;
  AccountingPeriod periodOfDate(std::string_view date, Session& session) override;
  bool periodSettled(AccountingPeriod period, Session& session) override;
  std::string workstationName() override;

 private:
  automation::LateBound component_;
};

class ComResourceService : public ResourceService {
 public:
  // Throws AutomationError when `service` lacks the interface IResourceService.
  explicit ComResourceService(const automation::LateBound& service);

  // `login` is one that came from a ComReportArgument or a ComFilterDialog.
  void takeLogin(Login& login) override;
  std::string enumName(std::string_view type, std::string_view code) override;
  std::string text(std::string_view key) override;
  std::string formattedText(std::string_view key, const std::vector<std::string>& arguments) override;
  void showMessage(std::string_view text, int flags) override;

 private:
  // Runs one call of the service; a failure is thrown with what the service left in IErrorInfo.
  template <class Operation>
  void call(std::string_view member, Operation operation) const;

  automation::ComPtr<bindings::IResourceService> service_;
  std::string source_;
};

// Stands in when no resource and message service is registered: a text is its own key, so that a report is made and
// shows which texts it lacks. A message cannot be shown; it becomes the text of an error.
class KeysAsTexts : public ResourceService {
 public:
  void takeLogin(Login& login) override;
  std::string enumName(std::string_view type, std::string_view code) override;
  std::string text(std::string_view key) override;
  // The key, and the arguments in brackets behind it.
  std::string formattedText(std::string_view key, const std::vector<std::string>& arguments) override;
  void showMessage(std::string_view text, int flags) override;
};

class ComUniqueNameSource : public UniqueNameSource {
 public:
  explicit ComUniqueNameSource(automation::LateBound source) : source_(std::move(source)) {}
  std::string next() override;

 private:
  automation::LateBound source_;
};

// Stands in when no unique-name source is registered: 32 hexadecimal digits that no other call gives, on whatever
// machine.
class BuiltInUniqueNames : public UniqueNameSource {
 public:
  std::string next() override;
};

// Stands in when no naming class is registered: a whole number that differs between calls, sessions and machines.
std::string builtInNamingNumber();
// The same for a class that numbers work tables; never negative.
std::int32_t builtInWorkTableNumber();

class ComDrillThroughHelper : public DrillThroughHelper {
 public:
  explicit ComDrillThroughHelper(automation::LateBound helper) : helper_(std::move(helper)) {}
  // `login` is one that came from a ComReportArgument.
  std::shared_ptr<Filter> filterFor(Login& login, bool drillThrough) override;

 private:
  automation::LateBound helper_;
};

// Only holds the reference.
class ComBusinessObject : public BusinessObject {
 public:
  explicit ComBusinessObject(automation::ComPtr<IDispatch> object) : object_(std::move(object)) {}
  const automation::ComPtr<IDispatch>& object() const { return object_; }

 private:
  automation::ComPtr<IDispatch> object_;
};

// --- The inventory-accounting environment. Members take the ports that this file implements.

class ComAccountLogin : public AccountLogin {
 public:
  explicit ComAccountLogin(automation::LateBound login) : login_(std::move(login)) {}

  void initialise(std::string_view connection, std::string_view passwordText) override;

  const automation::ComPtr<IDispatch>& object() const { return login_.object(); }

 private:
  automation::LateBound login_;
};

class ComAccountOptions : public AccountOptions {
 public:
  explicit ComAccountOptions(automation::LateBound options) : options_(std::move(options)) {}

  std::string costingBasis() override;
  std::string inventoryTable() override;
  std::string warehouseTable() override;

 private:
  automation::LateBound options_;
};

class ComInventoryEnvironment : public InventoryEnvironment {
 public:
  explicit ComInventoryEnvironment(automation::LateBound environment) : environment_(std::move(environment)) {}

  void setLogin(AccountLogin& login) override;
  std::string resultTable() override;
  // Creates the options object, which the environment then fills.
  std::unique_ptr<AccountOptions> accountOptions(AccountLogin& login, std::string_view resultTable) override;

 private:
  automation::LateBound environment_;
};

// --- The voucher components. Members take the ports that this file implements.

class ComSourceVoucherComponent : public SourceVoucherComponent {
 public:
  explicit ComSourceVoucherComponent(automation::LateBound component) : component_(std::move(component)) {}

  void initialise(Login& login, Session& session, std::string_view systemVersion) override;
  void showVoucher(VoucherGroup group, const SourceVoucher& voucher, Session& session) override;
  void showCostItemAdjustment(const SourceVoucher& voucher, Session& session) override;
  void showDifferences(const SourceVoucher& voucher, bool commercial, std::string_view valuationMethod,
                       Session& session) override;
  void showPriceAdjustment(const SourceVoucher& voucher) override;

 private:
  automation::LateBound component_;
};

class ComLedgerModule : public LedgerModule {
 public:
  explicit ComLedgerModule(automation::LateBound module) : module_(std::move(module)) {}

  void setBusiness(BusinessObject& business) override;
  void setLogin(Login& login) override;
  void initialise(std::string_view connection, std::string_view passwordText, int year, Login& login) override;

  const automation::ComPtr<IDispatch>& object() const { return module_.object(); }

 private:
  automation::LateBound module_;
};

class ComLedgerVoucherComponent : public LedgerVoucherComponent {
 public:
  explicit ComLedgerVoucherComponent(automation::LateBound component) : component_(std::move(component)) {}

  void setLogin(Login& login) override;
  void setModule(LedgerModule& module) override;
  void open(const LedgerVoucher& voucher) override;

 private:
  automation::LateBound component_;
};

// Creates the components by ProgID. A component that must be there and is not registered is an AutomationError that
// names it; the stand-ins above take the place of those that may be missing.
class ComPlatform : public Platform {
 public:
  std::shared_ptr<Session> createSession() override;
  std::shared_ptr<PublicComponent> createPublicComponent() override;
  std::shared_ptr<ResourceService> createResourceService() override;
  std::shared_ptr<UniqueNameSource> createUniqueNameSource() override;
  std::shared_ptr<DrillThroughHelper> createDrillThroughHelper() override;
  std::string namingNumber() override;
  std::int32_t workTableNumber() override;
  std::unique_ptr<AccountLogin> createAccountLogin() override;
  std::unique_ptr<InventoryEnvironment> createInventoryEnvironment() override;
  std::unique_ptr<SourceVoucherComponent> createSourceVoucherComponent() override;
  std::unique_ptr<LedgerModule> createLedgerModule() override;
  std::unique_ptr<LedgerVoucherComponent> createLedgerVoucherComponent() override;
};

}  // namespace quillon::component
