#include "workbench/platform/embedded_platform.h"

#include <array>
#include <cstdio>
#include <random>

#include "frame/text.h"
#include "workbench/account/leftover_tables.h"
#include "workbench/platform/account_environment.h"
#include "workbench/platform/filter_object.h"
#include "workbench/platform/resource_texts.h"

namespace quillon::workbench {

namespace {

// The year and month at the front of a date "yyyy-mm-dd".
AccountingPeriod calendarMonth(std::string_view date) {
  constexpr std::size_t monthAt = 5;
  if (date.size() <= monthAt) return {};
  return {.year = leadingNumber(date), .month = leadingNumber(date.substr(monthAt))};
}

// Execute of the two summary reports asks for a filter and does nothing with it.
class EmptyDrillThrough final : public DrillThroughHelper {
 public:
  std::shared_ptr<Filter> filterFor(Login*, bool) override {
    return std::make_shared<FilterObject>(ReportRegistration{});
  }
};

}  // namespace

std::string AccountPublicComponent::accountInformation(std::string_view system, std::string_view name,
                                                       Session& session) {
  return lookUp(session, "Select cValue From AccInformation Where cSysID = " + quotedText(system) +
                             " And cName = " + quotedText(name))
      .value_or("");
}

int AccountPublicComponent::currentPeriodYear(Session& session) {
  const std::optional<std::string> unsettled =
      lookUp(session, "Select Min(iYear) From IA_PeriodState Where iMonth > 0 And bSettled = 0");
  if (unsettled) return leadingNumber(*unsettled);
  return leadingNumber(lookUp(session, "Select Max(iYear) From orvsystem..UA_Period Where iYear < 9999").value_or(""));
}

int AccountPublicComponent::costItemStartMonth(std::string_view year, Session& session) {
  const std::string start =
      lookUp(session, "Select cValue From AccInformation Where cSysID = N'CA' And cID = N'11002'").value_or("");
  constexpr std::size_t yearLength = 4;
  if (start.size() <= yearLength) return 0;
  const int startYear = leadingNumber(start.substr(0, yearLength));
  const int asked = leadingNumber(year);
  if (asked == startYear) return leadingNumber(start.substr(yearLength));
  return asked > startYear ? 1 : 0;
}

std::vector<std::string> AccountPublicComponent::usedYears(std::string_view accountCode, Session& session) {
  const std::unique_ptr<Recordset> rows =
      session.query("Select Distinct iYear From orvsystem..UA_Period Where cAcc_Id = " + quotedText(accountCode) +
                        " And iYear < 9999 Order By iYear",
                    readOnlyQuery);
  std::vector<std::string> years;
  for (; !rows->eof(); rows->moveNext())
    years.push_back(rows->text(0).value_or(""));
  rows->close();
  return years;
}

bool AccountPublicComponent::costItemOpeningsFinished(int year, Session& session) {
  return periodSettled({.year = year, .month = 0}, session);
}

AccountingPeriod AccountPublicComponent::moduleStart(std::string_view system, Session& session) {
  const std::string option = "d" + std::string(system) + "StartDate";
  const std::string date = accountInformation(system, option, session);
  const AccountingPeriod start = calendarMonth(date);
  if (start.month < 1 || start.month > 12) {
    throw AutomationError(hresult::fail, "IA_Pub.ClsIAPub",
                          "The account's option " + option + " of system " + std::string(system) + " is \"" + date +
                              "\"; it must be the date on which the module began, yyyy-mm-dd.");
  }
  return start;
}

PeriodDates AccountPublicComponent::datesOfPeriod(std::string_view accountCode, AccountingPeriod period,
                                                  Session& session) {
  const std::unique_ptr<Recordset> rows =
      session.query("Select dBegin, dEnd From orvsystem..UA_Period Where cAcc_Id = " + quotedText(accountCode) +
                        " And iYear = " + std::to_string(period.year) + " And iId = " + std::to_string(period.month),
                    readOnlyQuery);
  if (rows->eof()) {
    throw AutomationError(hresult::fail, "IA_Pub.ClsIAPub",
                          "The account " + std::string(accountCode) + " has no period " + std::to_string(period.month) +
                              " in " + std::to_string(period.year) + ".");
  }
  PeriodDates dates{.begin = dateOnly(rows->text(0).value_or("")), .end = dateOnly(rows->text(1).value_or(""))};
  rows->close();
  return dates;
}

AccountingPeriod AccountPublicComponent::periodOfDate(std::string_view date, Session& session) {
  const std::string day = quotedText(date);
  const std::unique_ptr<Recordset> rows =
      session.query("Select iYear, iId From orvsystem..UA_Period Where iYear < 9999 And dBegin <= " + day +
                        " And dEnd >= " + day + " Order By iYear, iId",
                    readOnlyQuery);
  AccountingPeriod period = calendarMonth(date);
  if (!rows->eof()) {
    period = {.year = leadingNumber(rows->text(0).value_or("")), .month = leadingNumber(rows->text(1).value_or(""))};
  }
  rows->close();
  return period;
}

bool AccountPublicComponent::periodSettled(AccountingPeriod period, Session& session) {
  return lookUp(session, "Select bSettled From IA_PeriodState Where iYear = " + std::to_string(period.year) +
                             " And iMonth = " + std::to_string(period.month)) == "True";
}

WorkbenchResources::WorkbenchResources(Language language, const AccountSource& account, SessionMaker makeSession,
                                       MessageSink messages)
    : language_(language),
      accountConnection_(account.readOnly().connectionString()),
      makeSession_(std::move(makeSession)),
      messages_(std::move(messages)) {}

void WorkbenchResources::takeLogin(Login& login) {
  language_ = languageOfRegion(login.languageRegion());
}

std::string WorkbenchResources::enumName(std::string_view type, std::string_view code) {
  if (!session_) session_ = openAccount(makeSession_, accountConnection_);
  return lookUp(*session_, "Select EnumName From AA_Enum Where EnumType = " + quotedText(type) +
                               " And EnumCode = " + quotedText(code) +
                               " And LocaleId = " + (language_ == Language::chinese ? "N'zh-CN'" : "N'en-US'"))
      .value_or(std::string(code));
}

std::string WorkbenchResources::text(std::string_view key) {
  return resourceText(key, language_);
}

std::string WorkbenchResources::formattedText(std::string_view key, const std::vector<std::string>& arguments) {
  std::string result = text(key);
  for (std::size_t i = 0; i < arguments.size(); ++i)
    replaceAll(result, "{" + std::to_string(i) + "}", arguments[i]);
  return result;
}

void WorkbenchResources::showMessage(std::string_view text, int flags) {
  if (messages_) messages_(text, flags);
}

std::string uniqueNamePart() {
  // 128 random bits, so that no two processes need to know of each other.
  std::random_device random;
  std::string part;
  for (int word = 0; word < 4; ++word) {
    std::array<char, 9> text{};
    std::snprintf(text.data(), text.size(), "%08x", static_cast<unsigned>(random()));
    part += text.data();
  }
  return part;
}

std::string freshResultTable() {
  return std::string(account::resultTablePrefix) + uniqueNamePart();
}

std::shared_ptr<Session> EmbeddedPlatform::createSession() {
  return options_.makeSession ? options_.makeSession() : std::make_shared<AccountSession>(options_.monitor);
}

std::shared_ptr<PublicComponent> EmbeddedPlatform::createPublicComponent() {
  return std::make_shared<AccountPublicComponent>();
}

std::shared_ptr<ResourceService> EmbeddedPlatform::createResourceService() {
  return std::make_shared<WorkbenchResources>(options_.language, options_.account, unwatchedSessions(),
                                              options_.messages);
}

std::shared_ptr<UniqueNameSource> EmbeddedPlatform::createUniqueNameSource() {
  return std::make_shared<WorkbenchUniqueNames>(options_.account.onServer() ? uniqueParts_ : nullptr);
}

std::shared_ptr<DrillThroughHelper> EmbeddedPlatform::createDrillThroughHelper() {
  return std::make_shared<EmptyDrillThrough>();
}

std::string EmbeddedPlatform::namingNumber() {
  constexpr unsigned mask = 0x7fffffffU;  // what a Long of automation holds
  return std::to_string(static_cast<unsigned>(std::random_device{}()) & mask);
}

std::unique_ptr<AccountLogin> EmbeddedPlatform::createAccountLogin() {
  return std::make_unique<WorkbenchAccountLogin>();
}

std::unique_ptr<InventoryEnvironment> EmbeddedPlatform::createInventoryEnvironment() {
  return std::make_unique<WorkbenchEnvironment>(unwatchedSessions(), freshResultTable());
}

std::unique_ptr<SourceVoucherComponent> EmbeddedPlatform::createSourceVoucherComponent() {
  return std::make_unique<WorkbenchSourceVouchers>(options_.language, options_.vouchers);
}

std::unique_ptr<LedgerModule> EmbeddedPlatform::createLedgerModule() {
  return std::make_unique<WorkbenchLedgerModule>(unwatchedSessions());
}

std::unique_ptr<LedgerVoucherComponent> EmbeddedPlatform::createLedgerVoucherComponent() {
  return std::make_unique<WorkbenchLedgerVouchers>(options_.vouchers);
}

SessionMaker EmbeddedPlatform::unwatchedSessions() const {
  if (options_.makeSession) return options_.makeSession;
  return [] { return std::make_shared<AccountSession>(); };
}

}  // namespace quillon::workbench
