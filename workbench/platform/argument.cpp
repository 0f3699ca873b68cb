#include "workbench/platform/argument.h"

#include <algorithm>
#include <stdexcept>
#include <vector>

#include "workbench/platform/embedded_platform.h"

namespace quillon::workbench {

namespace {

class ArgumentDataSource final : public DataSource {
 public:
  explicit ArgumentDataSource(std::shared_ptr<DataSourceState> state) : state_(std::move(state)) {}
  void setType(int type) override { state_->type = type; }
  std::string resultTable() override { return state_->resultTable; }

 private:
  std::shared_ptr<DataSourceState> state_;
};

struct AccountYear {
  std::string year;
  std::string accountCode;
  std::string lastDay;
};

std::vector<AccountYear> accountYears(Session& session) {
  const std::unique_ptr<Recordset> rows = session.query(
      "Select iYear, cAcc_Id, Max(dEnd) From orvsystem..UA_Period Where iYear < 9999 Group By iYear, cAcc_Id Order By "
      "iYear",
      readOnlyQuery);
  std::vector<AccountYear> years;
  constexpr std::size_t dateLength = 10;
  for (; !rows->eof(); rows->moveNext()) {
    years.push_back(
        {rows->text(0).value_or(""), rows->text(1).value_or(""), rows->text(2).value_or("").substr(0, dateLength)});
  }
  rows->close();
  return years;
}

}  // namespace

LoginDetails accountLogin(Session& session, std::string accountConnection, Language language, const std::string& year,
                          const std::string& date) {
  const std::vector<AccountYear> years = accountYears(session);
  if (years.empty()) {
    throw AutomationError(hresult::fail, std::string(embeddedSource), "The account has no accounting periods.");
  }
  const int current = AccountPublicComponent().currentPeriodYear(session);
  const std::string wanted = year.empty() ? std::to_string(current) : year;
  const auto found = std::ranges::find(years, wanted, &AccountYear::year);
  if (found == years.end()) {
    throw std::invalid_argument("the account has no year \"" + wanted + "\"; its years are " + years.front().year +
                                " to " + years.back().year);
  }
  const bool chinese = language == Language::chinese;
  return {.accountConnection = std::move(accountConnection),
          .password = {},
          .accountCode = found->accountCode,
          .accountingYear = found->year,
          .languageRegion = chinese ? "zh-CN" : "en-US",
          .languageId = chinese ? "2052" : "1033",
          .currentPeriodYear = current,
          .businessDate = date.empty() ? found->lastDay : date};
}

WorkbenchArgument::WorkbenchArgument(std::shared_ptr<FilterObject> filter, std::shared_ptr<Login> login,
                                     std::string resultTable, std::string action)
    : filter_(std::move(filter)),
      login_(std::move(login)),
      dataSource_(std::make_shared<DataSourceState>()),
      action_(std::move(action)) {
  dataSource_->resultTable = std::move(resultTable);
}

std::unique_ptr<DataSource> WorkbenchArgument::dataSource() {
  return std::make_unique<ArgumentDataSource>(dataSource_);
}

}  // namespace quillon::workbench
