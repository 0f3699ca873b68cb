// The host platform's ports: the argument object and the login that a report gets, and the components that the
// library creates. component/ implements them with late-bound automation objects, the workbench with its own.
// Every member throws AutomationError with the failing call's own code, source and description. All texts are UTF-8.
// Members with a body are those that not every platform offers: called where they are not offered, they throw an
// AutomationError that names the member, except where the member says otherwise.
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "frame/filter.h"
#include "frame/inventory_environment.h"
#include "frame/session.h"
#include "frame/voucher_components.h"

namespace quillon {

// The login object.
class Login {
 public:
  virtual ~Login() = default;

  virtual std::string accountConnection() = 0;   // OrvDbName: the ADO connection string of the account database
  virtual std::string password() = 0;            // SysPassword
  virtual std::string accountCode() = 0;         // cAcc_Id
  virtual std::string accountingYear() = 0;      // iYear, as text
  virtual std::string accountingYearText() = 0;  // cIYear
  virtual std::string languageRegion() = 0;      // LanguageRegion, such as "zh-CN"
  virtual std::string languageId() = 0;          // LangID
  virtual int currentPeriodYear() = 0;           // CurPeriodYear
  virtual std::string businessDate() = 0;        // CurDate, as the platform formats it
  // ModuleCode: the code of the module that the user is signed in to ("IA" is inventory accounting); empty when the
  // platform does not give it.
  virtual std::string moduleCode() { return {}; }

  // AuthString: which of the user's data rights restrict the lookups of the filter dialog.
  virtual void setAuthString(std::string_view rights) = 0;
};

// What a report writes into DataSource.Type: the report's rows are a table that the descriptor names.
inline constexpr int dataSourceTable = 2;

// The data-source descriptor of an argument object.
class DataSource {
 public:
  virtual ~DataSource() = default;

  virtual void setType(int type) = 0;     // Type
  virtual std::string resultTable() = 0;  // SQL: the name of the table that the report makes and fills
  // Writes SQL: the detail ledger names its result table itself.
  virtual void setResultTable(std::string_view name);
};

// The row of a report that the user acts on.
class ReportRow {
 public:
  virtual ~ReportRow() = default;

  // GetData: the value of the result table's column `column` as text; empty for null.
  virtual std::string value(std::string_view column) = 0;
  // The same of a column that the document is found by. A platform may throw AutomationError where there is no value.
  virtual std::string requiredValue(std::string_view column) { return value(column); }
};

// The argument object e of GETSQL and Execute.
class ReportArgument {
 public:
  virtual ~ReportArgument() = default;

  virtual std::shared_ptr<Filter> rawFilter() = 0;       // rawFilter
  virtual std::shared_ptr<Login> login() = 0;            // Login
  virtual std::shared_ptr<Login> filterLogin() = 0;      // LoginObj
  virtual std::unique_ptr<DataSource> dataSource() = 0;  // DataSource
  virtual std::string action() = 0;                      // Action
  virtual std::unique_ptr<ReportRow> row();              // RelateData: the row that Execute is called for
  // LangID: the language of the call, as Ca_AmoTypeName.localid has it.
  virtual std::string languageId();
};

// The first and the last day of an accounting period, "yyyy-mm-dd".
struct PeriodDates {
  std::string begin;
  std::string end;
};

// A month of an accounting year.
struct AccountingPeriod {
  int year = 0;
  int month = 0;  // 1 to 12
};

// The public component IA_Pub.ClsIAPub: account information.
class PublicComponent {
 public:
  virtual ~PublicComponent() = default;

  // GetAccInformation: the value of option `name` of system `system` ("IA", "cValueStyle") as text.
  virtual std::string accountInformation(std::string_view system, std::string_view name, Session& session) = 0;
  virtual int currentPeriodYear(Session& session) = 0;  // CurPeriodYear
  // The first month of the cost-item breakdown in `year`; 0 when it has not started.
  virtual int costItemStartMonth(std::string_view year, Session& session) = 0;  // iFxStartMonth
  // The years in use of account `accountCode`, as text, in the order of the component's dictionary (keys "1", "2",
  // ...).
  virtual std::vector<std::string> usedYears(std::string_view accountCode, Session& session) = 0;  // GetIAUsedYears

  // Whether the cost items' opening balances of `year` are complete.
  virtual bool costItemOpeningsFinished(int year, Session& session);  // IsFxFinishQC
  // The period in which module `system` ("IA") began.
  virtual AccountingPeriod moduleStart(std::string_view system, Session& session);  // StartMonthYear
  // The first and the last day of a period of account `accountCode`.
  virtual PeriodDates datesOfPeriod(std::string_view accountCode, AccountingPeriod period,
                                    Session& session);  // GetDateFromPeriod
  // The period that holds `date` ("yyyy-mm-dd").
  virtual AccountingPeriod periodOfDate(std::string_view date, Session& session);  // GetPeriodFromDate
  // Whether the period is settled, so that a report may run past it.
  virtual bool periodSettled(AccountingPeriod period, Session& session);  // GetMonthState
  // The workstation's name as it is used in work-table names: letters, digits and underscores.
  virtual std::string workstationName();  // GetComputerName
};

// The resource and message service.
class ResourceService {
 public:
  virtual ~ResourceService() = default;

  // Takes the login at the start of a filter dialog; texts come in its language from then on.
  virtual void takeLogin(Login& login) = 0;
  // The display name of `code` in enumeration `type` ("IA.BillforVch").
  virtual std::string enumName(std::string_view type, std::string_view code) = 0;
  // The text of resource key `key` ("Mirel.IA.CHHSSQL.00182").
  virtual std::string text(std::string_view key) = 0;
  // The text of `key` with `arguments` put into its places.
  virtual std::string formattedText(std::string_view key, const std::vector<std::string>& arguments);
  // `flags` are icon and buttons; 48 is a warning.
  virtual void showMessage(std::string_view text, int flags) = 0;
};

// The unique-name source: a fresh unique part for each work table.
class UniqueNameSource {
 public:
  virtual ~UniqueNameSource() = default;
  virtual std::string next() = 0;  // another text with each call
};

// The helper that Execute of the two summary reports creates; it gives a filter object for a login.
class DrillThroughHelper {
 public:
  virtual ~DrillThroughHelper() = default;
  // `login` is null when it could not be read; `drillThrough` is true when the argument's Action is "Link".
  virtual std::shared_ptr<Filter> filterFor(Login* login, bool drillThrough) = 0;
};

// Makes the platform's components. One per thread, outliving everything that it made.
class Platform {
 public:
  virtual ~Platform() = default;

  virtual std::shared_ptr<Session> createSession() = 0;
  virtual std::shared_ptr<PublicComponent> createPublicComponent() = 0;
  virtual std::shared_ptr<ResourceService> createResourceService() = 0;
  virtual std::shared_ptr<UniqueNameSource> createUniqueNameSource() = 0;
  virtual std::shared_ptr<DrillThroughHelper> createDrillThroughHelper() = 0;
  // Creates a naming object, reads the number of its member with dispatch id 1 and gives its decimal text as it comes.
  virtual std::string namingNumber() = 0;
  // Creates a helper and reads the number that is its default member: a fresh one for each work table of a session.
  virtual std::int32_t workTableNumber();

  virtual std::unique_ptr<AccountLogin> createAccountLogin();
  virtual std::unique_ptr<InventoryEnvironment> createInventoryEnvironment();
  virtual std::unique_ptr<SourceVoucherComponent> createSourceVoucherComponent();  // PellUniVch.clsUniVch
  virtual std::unique_ptr<LedgerModule> createLedgerModule();                      // ZzPub.clsPub
  virtual std::unique_ptr<LedgerVoucherComponent> createLedgerVoucherComponent();  // ZzPz.clsPZ
};

}  // namespace quillon
