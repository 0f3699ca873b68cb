#include "workbench/platform/embedded_platform.h"

#include <array>
#include <charconv>
#include <cstdio>
#include <random>

#include "workbench/platform/filter_object.h"
#include "workbench/platform/resource_texts.h"

namespace quillon::workbench {

namespace {

// The first field of the query's first row; nullopt when there is no row or the field is null.
std::optional<std::string> lookUp(Session& session, std::string_view sql) {
  const std::unique_ptr<Recordset> rows = session.query(sql, readOnlyQuery);
  std::optional<std::string> value;
  if (!rows->eof()) value = rows->text(0);
  rows->close();
  return value;
}

std::string quotedText(std::string_view text) {
  std::string result = "N'";
  for (const char c : text)
    result.append(c == '\'' ? 2 : 1, c);
  return result + "'";
}

// The number at the front of `text`; 0 when there is none.
int leadingNumber(std::string_view text) {
  int number = 0;
  std::from_chars(text.data(), text.data() + text.size(), number);
  return number;
}

// Execute of the two summary reports asks for a filter and does nothing with it.
class EmptyDrillThrough final : public DrillThroughHelper {
 public:
  std::shared_ptr<Filter> filterFor(Login&, bool) override {
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

WorkbenchResources::WorkbenchResources(Language language, std::string accountConnection, SessionMaker makeSession,
                                       MessageSink messages)
    : language_(language),
      accountConnection_(std::move(accountConnection)),
      makeSession_(std::move(makeSession)),
      messages_(std::move(messages)) {}

void WorkbenchResources::takeLogin(Login& login) {
  language_ = languageOfRegion(login.languageRegion());
}

std::string WorkbenchResources::enumName(std::string_view type, std::string_view code) {
  if (!session_) {
    const std::shared_ptr<Session> session = makeSession_();
    session->setConnectionString(accountConnection_);
    session->open("", "", optionsUnspecified);
    session_ = session;
  }
  return lookUp(*session_, "Select EnumName From AA_Enum Where EnumType = " + quotedText(type) +
                               " And EnumCode = " + quotedText(code) +
                               " And LocaleId = " + (language_ == Language::chinese ? "N'zh-CN'" : "N'en-US'"))
      .value_or(std::string(code));
}

std::string WorkbenchResources::text(std::string_view key) {
  return resourceText(key, language_);
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

std::shared_ptr<Session> EmbeddedPlatform::createSession() {
  return options_.makeSession ? options_.makeSession() : std::make_shared<EmbeddedSession>(options_.monitor);
}

std::shared_ptr<PublicComponent> EmbeddedPlatform::createPublicComponent() {
  return std::make_shared<AccountPublicComponent>();
}

std::shared_ptr<ResourceService> EmbeddedPlatform::createResourceService() {
  // What the service reads of an embedded account is no part of a report: nobody watches it.
  SessionMaker sessions =
      options_.makeSession ? options_.makeSession : SessionMaker([] { return std::make_shared<EmbeddedSession>(); });
  return std::make_shared<WorkbenchResources>(options_.language, options_.accountConnection, std::move(sessions),
                                              options_.messages);
}

std::shared_ptr<UniqueNameSource> EmbeddedPlatform::createUniqueNameSource() {
  return std::make_shared<WorkbenchUniqueNames>();
}

std::shared_ptr<DrillThroughHelper> EmbeddedPlatform::createDrillThroughHelper() {
  return std::make_shared<EmptyDrillThrough>();
}

std::string EmbeddedPlatform::namingNumber() {
  constexpr unsigned mask = 0x7fffffffU;  // what a Long of automation holds
  return std::to_string(static_cast<unsigned>(std::random_device{}()) & mask);
}

}  // namespace quillon::workbench
