// An account whose ledger can be checked by hand: one inventory, valued by inventory, with two cost items of two classes.
//
//                      quantity   amount   A1 materials   B1 labour   neither
//   opening                  10   100.00          60.00       40.00
//   January  R-1 receipt      5    60.00          40.00       20.00
//            L-1 issue        3    32.00          20.00       12.00
//            balance         12   128.00          80.00       48.00
//   February L-2 issue        2    21.33          13.33        8.00
//            balance         10   106.67          66.67       40.00
//   March    R-2 receipt      1     7.50                                   7.50
//            balance         11   114.17          66.67       40.00        7.50
//
// January is settled: month balances end with February, whose rows are bounded by the end of the year and so carry its
// figures. L-2 was posted on March 1st and belongs to February's ledger. L-1 alone is posted to the general ledger.
#pragma once

#include <gtest/gtest.h>

#include <filesystem>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "tests/workbench/platform/temporary_file.h"
#include "tests/workbench/presentation/made_layout.h"
#include "workbench/account/schema.h"
#include "workbench/tsql/engine/engine.h"

namespace quillon::workbench::test {

inline void makeSmallLedger(const std::filesystem::path& file) {
  const auto account = tsql::Connection::open(file, tsql::OpenMode::createNew);
  account::createTables(*account);
  account->execute(
      "Insert Into AccInformation (cSysID, cID, cName, cValue) Values "
      "(N'AA', N'02', N'iStrsQuanDecDgt', N'2'), (N'AA', N'03', N'iStrsPriDecDgt', N'4'), "
      "(N'IA', N'01', N'dIAStartDate', N'2024-01-01'), (N'IA', N'02', N'dIAFirstDate', N'2024-01-01'), "
      "(N'IA', N'03', N'cValueStyle', N'按存货核算'), (N'CA', N'11002', N'cCAStartPeriod', N'202401')\n"
      "Insert Into IA_PeriodState Values (2024, 0, 1), (2024, 1, 1), (2024, 2, 0)\n"
      "Insert Into orvsystem..UA_Period Values (N'001', 2024, 1, '2024-01-01', '2024-01-31'), "
      "(N'001', 2024, 2, '2024-02-01', '2024-02-29'), (N'001', 2024, 3, '2024-03-01', '2024-03-31'), "
      "(N'001', 2024, 12, '2024-12-01', '2024-12-31')\n"
      "Insert Into VouchType Values (N'10', N'产成品入库单'), (N'11', N'材料出库单')\n"
      "Insert Into AA_Enum Values (N'IA.vchtype', N'产成品入库单', N'zh-CN', N'产成品入库单'), "
      "(N'IA.vchtype', N'材料出库单', N'zh-CN', N'材料出库单')\n"
      "Insert Into Ca_FxClassDef Values (1, N'01', N'材料', 1), (2, N'02', N'人工', 1)\n"
      "Insert Into Ca_FxDef Values (7, N'A1', N'直接材料', 1, 0), (8, N'B1', N'直接人工', 2, 0)\n"
      "Insert Into Rd_Style (cRdCode, cRdName, bRdFlag) Values (N'1', N'生产入库', 1)\n"
      "Insert Into gl_AccVouch Values "
      "(91, 2024, 1, N'转', 12, 1, '2024-01-31', N'张', N'领料', N'5001', 32, 0, N'IA', N'IA12')");
  account->execute(
      "Insert Into Inventory (cInvCode, cInvName, cInvCCode, cComUnitCode, bCheckBatch, bCheckFree1, bCheckFree2, "
      "bCheckFree3, bCheckFree4, bCheckFree5, bCheckFree6, bCheckFree7, bCheckFree8, bCheckFree9, bCheckFree10) "
      "Values (N'M1', N'钢板', N'1', N'KG', 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0)");
  account->execute(
      "Insert Into ia_subsidiary (AutoID, iYear, iMonth, dVouDate, dKeepDate, cVouType, cVouCode, bRdFlag, bFlag, "
      "cInvCode, iAInQuantity, iInCost, iAInPrice, iAOutQuantity, iOutCost, iAOutPrice, cBusType, cPZdigest, cPZID, "
      "iPZID, cRdCode) Values "
      "(1, 2024, 0, '2023-12-31', '2023-12-31', N'34', N'O-1', 1, 0, N'M1', 10, 10, 100, null, null, null, null, "
      "null, null, null, null), "
      "(2, 2024, 1, '2024-01-10', '2024-01-10', N'10', N'R-1', 1, 0, N'M1', 5, 12, 60, null, null, null, null, null, "
      "null, null, N'1'), "
      "(3, 2024, 1, '2024-01-20', '2024-01-20', N'11', N'L-1', 0, 0, N'M1', null, null, null, 3, 10.6667, 32, "
      "N'领料', N'领料', N'IA12', 91, null), "
      "(4, 2024, 2, '2024-02-28', '2024-03-01', N'11', N'L-2', 0, 0, N'M1', null, null, null, 2, 10.665, 21.33, "
      "N'领料', N'领料', null, null, null), "
      "(5, 2024, 3, '2024-03-05', '2024-03-05', N'10', N'R-2', 1, 0, N'M1', 1, 7.5, 7.5, null, null, null, null, "
      "N'盘盈', null, null, N'1')");
  account->execute(
      "Insert Into ia_subsidiary_Item (AutoID, iSubID, iItemID, iItemDetailID, iYear, iMonth, bRdFlag, "
      "iItemInQuantity, iItemInCost, iItemInPrice, iItemOutQuantity, iItemOutCost, iItemOutPrice) Values "
      "(1, 1, 7, 70, 2024, 0, 1, 10, 6, 60, null, null, null), (2, 1, 8, 80, 2024, 0, 1, 0, null, 40, null, null, "
      "null), "
      "(3, 2, 7, 70, 2024, 1, 1, 5, 8, 40, null, null, null), (4, 2, 8, 80, 2024, 1, 1, 0, null, 20, null, null, "
      "null), "
      "(5, 3, 7, 70, 2024, 1, 0, null, null, null, 3, 6.666667, 20), (6, 3, 8, 80, 2024, 1, 0, null, null, null, 0, "
      "null, 12), "
      "(7, 4, 7, 70, 2024, 2, 0, null, null, null, 2, 6.665, 13.33), (8, 4, 8, 80, 2024, 2, 0, null, null, null, 0, "
      "null, 8)");
}

// Tests on such an account, which is made once for all of them.
class SmallLedger : public testing::Test {
 protected:
  static void SetUpTestSuite() {
    file_ = std::make_unique<TemporaryFile>(".qacc");
    makeSmallLedger(file_->path());
  }
  static void TearDownTestSuite() { file_.reset(); }

  static MadeLayout made(std::vector<std::string> more = {}, Language language = Language::chinese) {
    std::vector<std::string> settings = {"iYear=2024", "cInvCode=M1"};
    settings.insert(settings.end(), more.begin(), more.end());
    return {"fx-detail", file_->path(), std::move(settings), language};
  }
  // The voucher report on it.
  static MadeLayout vouchers(std::vector<std::string> settings = {}, Language language = Language::chinese) {
    return {"fx-wt", file_->path(), std::move(settings), language};
  }
  static const std::filesystem::path& file() { return file_->path(); }

 private:
  static inline std::unique_ptr<TemporaryFile> file_;
};

}  // namespace quillon::workbench::test
