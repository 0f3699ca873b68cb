#include "workbench/platform/argument.h"

#include <algorithm>
#include <stdexcept>

#include "frame/text.h"
#include "workbench/messages/account.h"
#include "workbench/platform/embedded_platform.h"
#include "workbench/platform/user_error.h"

namespace quillon::workbench {

namespace {

class ArgumentDataSource final : public DataSource {
 public:
  explicit ArgumentDataSource(std::shared_ptr<DataSourceState> state) : state_(std::move(state)) {}
  void setType(int type) override { state_->type = type; }
  std::string resultTable() override { return state_->resultTable; }
  void setResultTable(std::string_view name) override { state_->resultTable = name; }

 private:
  std::shared_ptr<DataSourceState> state_;
};

class ArgumentRow final : public ReportRow {
 public:
  explicit ArgumentRow(RowValues values) : values_(std::move(values)) {}

  // A column that the report does not have is empty, as the platform has it; but a ledger line's number goes by ID also
  // where the report calls it AutoID.
  std::string value(std::string_view column) override {
    const std::string* own = find(column);
    if (own == nullptr && equalIgnoringCase(column, "ID")) own = find("AutoID");
    return own == nullptr ? std::string() : *own;
  }

 private:
  const std::string* find(std::string_view column) const {
    const auto found =
        std::ranges::find_if(values_, [column](const auto& entry) { return equalIgnoringCase(entry.first, column); });
    return found == values_.end() ? nullptr : &found->second;
  }

  RowValues values_;
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

LoginDetails accountLogin(Session& session, const AccountSource& account, Language language, const std::string& year,
                          const std::string& date) {
  const std::vector<AccountYear> years = accountYears(session);
  if (years.empty()) {
    throw AutomationError(hresult::fail, std::string(sessionSource), "The account has no accounting periods.");
  }
  const int current = AccountPublicComponent().currentPeriodYear(session);
  const std::string wanted = year.empty() ? std::to_string(current) : year;
  const auto found = std::ranges::find(years, wanted, &AccountYear::year);
  if (found == years.end()) {
    throw InputError(messages::noSuchYear(wanted, years.front().year, years.back().year));
  }
  const bool chinese = language == Language::chinese;
  return {.accountConnection = account.connectionString(),
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

WorkbenchArgument::WorkbenchArgument(std::shared_ptr<Login> login, RowValues row, std::string action)
    : login_(std::move(login)),
      dataSource_(std::make_shared<DataSourceState>()),
      action_(std::move(action)),
      row_(std::move(row)) {}

std::unique_ptr<ReportRow> WorkbenchArgument::row() {
  return row_ ? std::make_unique<ArgumentRow>(*row_) : ReportArgument::row();
}

std::unique_ptr<DataSource> WorkbenchArgument::dataSource() {
  return std::make_unique<ArgumentDataSource>(dataSource_);
}

}  // namespace quillon::workbench
