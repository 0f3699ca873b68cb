#include "frame/cost_items.h"

#include <gtest/gtest.h>

namespace quillon {
namespace {

TEST(CostItems, APartOfTypeZeroIsAMaterialAndAnyOtherAnExpense) {
  EXPECT_EQ(expenseItem(lowerCaseWords, "Inventory.cInvName", "Ca_CostExpDetail_Period.cAmoName"),
            "case when Ca_FxMapExpDID.cAmotype = 0 then Inventory.cInvName else Ca_CostExpDetail_Period.cAmoName end");
  EXPECT_EQ(expenseItem(capitalWords, "a", "b"), "Case When Ca_FxMapExpDID.cAmotype = 0 Then a Else b End");
}

TEST(CostItems, AreShownByThemselvesOrByTheirClassAtTheChosenGrade) {
  EXPECT_EQ(costItemColumns(ReportMode::costItem), "Ca_FxDef.cFxCode, Ca_FxDef.cFxName");
  EXPECT_EQ(costItemColumns(ReportMode::expenseType), "Ca_FxDef.cFxCode, Ca_FxDef.cFxName");
  EXPECT_EQ(costItemColumns(ReportMode::costItemClass),
            "IsNull(fxcls.cFxCCode, Ca_FxClassDef.cFxCCode) As cFXCode, "
            "IsNull(fxcls.cfxCName, Ca_FxClassDef.cfxCName) As cFXName");
}

}  // namespace
}  // namespace quillon
