#include "frame/platform.h"

#include <gtest/gtest.h>

#include <functional>
#include <map>

#include "tests/frame/fakes.h"

namespace quillon {
namespace {

// A platform that offers what every platform has to, and no more.
class BarePlatform final : public Platform {
 public:
  std::shared_ptr<Session> createSession() override { return nullptr; }
  std::shared_ptr<PublicComponent> createPublicComponent() override { return nullptr; }
  std::shared_ptr<ResourceService> createResourceService() override { return nullptr; }
  std::shared_ptr<UniqueNameSource> createUniqueNameSource() override { return nullptr; }
  std::shared_ptr<DrillThroughHelper> createDrillThroughHelper() override { return nullptr; }
  std::string namingNumber() override { return {}; }
};

class BarePublicComponent final : public PublicComponent {
 public:
  std::string accountInformation(std::string_view, std::string_view, Session&) override { return {}; }
  int currentPeriodYear(Session&) override { return 0; }
  int costItemStartMonth(std::string_view, Session&) override { return 0; }
  std::vector<std::string> usedYears(std::string_view, Session&) override { return {}; }
};

class BareResources final : public ResourceService {
 public:
  void takeLogin(Login&) override {}
  std::string enumName(std::string_view, std::string_view) override { return {}; }
  std::string text(std::string_view) override { return {}; }
  void showMessage(std::string_view, int) override {}
};

class BareArgument final : public ReportArgument {
 public:
  std::shared_ptr<Filter> rawFilter() override { return nullptr; }
  std::shared_ptr<Login> login() override { return nullptr; }
  std::shared_ptr<Login> filterLogin() override { return nullptr; }
  std::unique_ptr<DataSource> dataSource() override { return nullptr; }
  std::string action() override { return {}; }
};

class BareDataSource final : public DataSource {
 public:
  void setType(int) override {}
  std::string resultTable() override { return {}; }
};

std::string refusal(const std::function<void()>& call) {
  try {
    call();
    return "no error";
  } catch (const AutomationError& error) {
    EXPECT_EQ(error.code(), hresult::notImplemented);
    return error.description();
  }
}

TEST(Platform, SaysWhatItDoesNotOffer) {
  BarePlatform platform;
  BarePublicComponent component;
  BareResources resources;
  BareArgument argument;
  BareDataSource dataSource;
  fakes::Record record;
  const std::vector<fakes::Answer> answers;
  fakes::FakeSession session(record, answers);

  const std::map<std::string, std::function<void()>> calls{
      {"the data source's table name", [&] { dataSource.setResultTable("t"); }},
      {"RelateData", [&] { argument.row(); }},
      {"LangID", [&] { argument.languageId(); }},
      {"IsFxFinishQC", [&] { component.costItemOpeningsFinished(2024, session); }},
      {"StartMonthYear", [&] { component.moduleStart("IA", session); }},
      {"GetDateFromPeriod", [&] { component.datesOfPeriod("001", {}, session); }},
      {"GetPeriodFromDate", [&] { component.periodOfDate("2024-06-30", session); }},
      {"GetMonthState", [&] { component.periodSettled({}, session); }},
      {"GetComputerName", [&] { component.workstationName(); }},
      {"formatted texts", [&] { resources.formattedText("key", {}); }},
      {"numbers for work tables", [&] { platform.workTableNumber(); }},
      {"a login for its inventory-accounting environment", [&] { platform.createAccountLogin(); }},
      {"an inventory-accounting environment", [&] { platform.createInventoryEnvironment(); }},
      {"PellUniVch.clsUniVch", [&] { platform.createSourceVoucherComponent(); }},
      {"ZzPub.clsPub", [&] { platform.createLedgerModule(); }},
      {"ZzPz.clsPZ", [&] { platform.createLedgerVoucherComponent(); }},
  };
  for (const auto& [offer, call] : calls) {
    EXPECT_EQ(refusal(call), "The host platform does not offer " + offer + ", which this report needs.");
  }
}

}  // namespace
}  // namespace quillon
