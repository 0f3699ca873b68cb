// The rows of the receipt/issue/balance report on sample accounts, where what they are is told by what the account lacks.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

#include "reports/sfc_item/sfc_item.h"
#include "tests/reports/table_lines.h"
#include "tests/workbench/account/leftovers.h"
#include "tests/workbench/platform/temporary_file.h"
#include "workbench/account/account.h"
#include "workbench/platform/account_source.h"
#include "workbench/platform/argument.h"
#include "workbench/platform/embedded_platform.h"
#include "workbench/platform/filter_object.h"
#include "workbench/tsql/engine/engine.h"

namespace quillon {
namespace {

// A sample account, changed by a statement.
class Account {
 public:
  explicit Account(const std::string& change) {
    account::createSample(file_.path(), {.rows = 1000, .seed = 7, .years = 1});
    account_ = tsql::Connection::open(file_.path(), tsql::OpenMode::existing);
    if (!change.empty()) account_->execute(change);
  }

  // How many rows the report for 2024 has in `mode`. The result table must be there, with the columns of every mode.
  std::size_t rowsOf(const std::string& mode) {
    const workbench::AccountSource source = workbench::AccountSource::inFile(file_.path());
    workbench::EmbeddedPlatform platform({.account = source});
    Module module(platform);
    const auto filter = std::make_shared<workbench::FilterObject>(workbench::ReportRegistration{});
    for (const auto& [key, value] :
         {std::pair<std::string, std::string>{"cModal", mode}, {"iGrade", "1"}, {"iYear", "2024"}})
      filter->add({.key = key, .chinese = key, .english = key}).value = value;
    const auto login = std::make_shared<workbench::WorkbenchLogin>(workbench::LoginDetails{
        .accountConnection = source.connectionString(), .languageRegion = "zh-CN", .businessDate = "2024-06-30"});
    workbench::WorkbenchArgument argument(filter, login, "sfc_result");
    SfcItem(module).getSql(argument);
    EXPECT_EQ(module.session, nullptr) << "the build did not come to its end";

    std::size_t rows = 0;
    {
      const auto cursor = account_->query("Select * From sfc_result");
      std::vector<std::string> columns;
      for (const tsql::Column& column : cursor->columns())
        columns.push_back(tables::lower(column.name));
      EXPECT_THAT(columns, testing::IsSupersetOf({"cinvcode", "cfxcode", "cfxname", "iqcquantity", "iqmmoney"}));
      while (cursor->next())
        ++rows;
    }
    account_->execute("Drop Table sfc_result");
    EXPECT_THAT(account::testing::leftoverNames(*account_), testing::IsEmpty());
    return rows;
  }

 private:
  workbench::test::TemporaryFile file_{".qacc"};
  std::unique_ptr<tsql::Connection> account_;
};

TEST(SfcItemRows, WithoutAnyCostItemRowsTheResultTableIsThereAndEmpty) {
  Account whole("");
  Account withoutCostItems(
      "Delete From ia_subsidiary_Item Delete From ia_subsidiary_ItemOut Delete From IA_Subsidiary_QC_Item");
  for (const char* mode : {"0", "1", "2"}) {
    SCOPED_TRACE(std::string("mode ") + mode);
    EXPECT_GT(whole.rowsOf(mode), 100U);
    EXPECT_EQ(withoutCostItems.rowsOf(mode), 0U);
  }
}

}  // namespace
}  // namespace quillon
