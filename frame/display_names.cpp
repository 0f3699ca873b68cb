#include "frame/display_names.h"

#include "frame/statement.h"

namespace quillon {

std::string nameBusinessTypes(std::string_view table) {
  return concatenated({
      "Update ",
      table,
      " set cBusType=AA.EnumName from ",
      table,
      " Wt inner join aa_enum AA on  Wt.cBusType=AA.EnumCode where AA.EnumType='IA.BusType' and AA.LocaleId=DBO.UDF_GetLocaleID()",
  });
}

std::string nameVoucherTypes(std::string_view table, std::string_view code) {
  return concatenated({
      "Update ",
      table,
      " set cvoutype=AA_Enum.EnumName from  ",
      table,
      " temp inner join VouchType on ",
      code,
      "=VouchType.cVouchType",
      lineBreak,
      voucherTypeNames,
  });
}

}  // namespace quillon
