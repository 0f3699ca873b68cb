#include "workbench/presentation/report_output.h"

#include <gmock/gmock.h>

#include <nlohmann/json.hpp>
#include <sstream>

#include "tests/workbench/presentation/small_result.h"

namespace quillon::workbench {
namespace {

class ReportOutputTest : public testing::Test {
 protected:
  std::string csv() {
    std::ostringstream out;
    writeCsv(out, result_);
    return out.str();
  }

  std::unique_ptr<tsql::Connection> account_ = test::accountWithResult();
  ResultTable result_{*account_, "Result"};
};

TEST_F(ReportOutputTest, CsvHasAllColumnsAndExactValues) {
  account_->execute(
      "Insert Into Result (autoid, cInvName, cFree1, dKeepDate, iState, iQuantity, iMoney) Values "
      "(1, N'螺栓, \"M8\"', N'', '2024-03-05', 2, 5.125, 50.5)");
  EXPECT_EQ(csv(),
            "autoid,cWhCode,cWhName,cInvCode,cInvName,cFree1,cFree2,dKeepDate,cFXCode,cFXName,cState,iState,iQuantity,"
            "iMoney,iQcQuantity,iQcMoney,iInQuantity,iInMoney,iOutQuantity,iOutMoney,iQmQuantity,iQmMoney,cFSType\r\n"
            "1,,,,\"螺栓, \"\"M8\"\"\",,,2024-03-05,,,,2,5.125000,50.5000,,,,,,,,,\r\n");
}

TEST_F(ReportOutputTest, RowsComeInASettledOrder) {
  test::fillResult(*account_);
  const std::string first = csv();
  account_->execute("Select * Into Copied From Result");
  account_->execute("Delete Result");
  account_->execute("Insert Into Result Select * From Copied Order By iMoney Desc, autoid");
  EXPECT_EQ(csv(), first);
}

TEST_F(ReportOutputTest, JsonIsOneDocument) {
  test::fillResult(*account_);
  std::ostringstream out;
  writeJson(out, test::documentOf(result_, Language::english), result_, reportNamed("sfc-item").columns);
  const auto document = nlohmann::json::parse(out.str());
  EXPECT_EQ(document["report"], "sfc-item");
  EXPECT_EQ(document["title"], "Receipt/issue/balance");
  EXPECT_EQ(document["columns"][13], nlohmann::json({"iMoney", "money"}));
  EXPECT_EQ(document["captions"]["cFXName"], "Cost item");
  ASSERT_EQ(document["rows"].size(), 6U);
  EXPECT_EQ(document["rows"][0][13], "100.0000");
  EXPECT_EQ(document["rows"][0][7], nullptr);
  EXPECT_EQ(document["rows"][1][7], "2024-03-05 00:00:00.000");
}

}  // namespace
}  // namespace quillon::workbench
