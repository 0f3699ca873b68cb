#include "frame/display_names.h"

#include <gtest/gtest.h>

namespace quillon {
namespace {

TEST(DisplayNames, OfBusinessTypes) {
  EXPECT_EQ(nameBusinessTypes("[t]"),
            "Update [t] set cBusType=AA.EnumName from [t] Wt inner join aa_enum AA on  Wt.cBusType=AA.EnumCode "
            "where AA.EnumType='IA.BusType' and AA.LocaleId=DBO.UDF_GetLocaleID()");
}

TEST(DisplayNames, OfVoucherTypes) {
  EXPECT_EQ(nameVoucherTypes("[t]", "temp.cvoutype"),
            "Update [t] set cvoutype=AA_Enum.EnumName from  [t] temp inner join VouchType on "
            "temp.cvoutype=VouchType.cVouchType\r\n"
            "inner join AA_Enum on VouchType.cVouchName=AA_Enum.EnumCode where AA_Enum.EnumType ='IA.vchtype' and "
            "AA_Enum.LocaleId=DBO.UDF_GetLocaleID()");
}

}  // namespace
}  // namespace quillon
