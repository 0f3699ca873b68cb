// The host platform's ports: the argument object and the login that a report gets, and the components that the
// library creates. frame/com implements them with late-bound automation objects, the workbench with its own.
// Every member throws AutomationError with the failing call's own code, source and description. All texts are UTF-8.
#pragma once

#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "frame/filter.h"
#include "frame/session.h"

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
  virtual std::string businessDate() = 0;        // the login's date as the platform formats it

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
};

// The argument object e of GETSQL and Execute.
class ReportArgument {
 public:
  virtual ~ReportArgument() = default;

  virtual std::shared_ptr<Filter> rawFilter() = 0;
  virtual std::shared_ptr<Login> login() = 0;            // Login
  virtual std::shared_ptr<Login> filterLogin() = 0;      // LoginObj
  virtual std::unique_ptr<DataSource> dataSource() = 0;  // DataSource
  virtual std::string action() = 0;                      // Action
};

// The public component IA_Pub.ClsIAPub: account information.
class PublicComponent {
 public:
  virtual ~PublicComponent() = default;

  // The value of option `name` of system `system` ("IA", "cValueStyle") as text.
  virtual std::string accountInformation(std::string_view system, std::string_view name, Session& session) = 0;
  virtual int currentPeriodYear(Session& session) = 0;
  // The first month of the cost-item breakdown in `year`; 0 when it has not started.
  virtual int costItemStartMonth(std::string_view year, Session& session) = 0;  // iFxStartMonth
  // The years in use of account `accountCode`, as text, in the order of the component's dictionary (keys "1", "2",
  // ...).
  virtual std::vector<std::string> usedYears(std::string_view accountCode, Session& session) = 0;  // GetIAUsedYears
};

// The resource and message service.
class ResourceService {
 public:
  virtual ~ResourceService() = default;

  // Takes the login at the start of a filter dialog; texts come in its language from then on.
  virtual void takeLogin(Login& login) = 0;
  virtual std::string enumName(std::string_view type, std::string_view code) = 0;
  virtual std::string text(std::string_view key) = 0;
  // `flags` are icon and buttons; 48 is a warning.
  virtual void showMessage(std::string_view text, int flags) = 0;
};

// The unique-name source: a fresh unique part for each work table.
class UniqueNameSource {
 public:
  virtual ~UniqueNameSource() = default;
  virtual std::string next() = 0;
};

// The helper that Execute of the two summary reports creates; it gives a filter object for a login.
class DrillThroughHelper {
 public:
  virtual ~DrillThroughHelper() = default;
  // `drillThrough` tells that the argument's Action is "Link".
  virtual std::shared_ptr<Filter> filterFor(Login& login, bool drillThrough) = 0;
};

// The platform's business object, kept for whoever drills through; the library only holds it.
class BusinessObject {
 public:
  virtual ~BusinessObject() = default;
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
};

}  // namespace quillon
