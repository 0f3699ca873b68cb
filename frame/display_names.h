// Statements that put names in place of codes in a report's own table, in the language of the account's connection
// (UDF_GetLocaleID). The names come from the enumerations of AA_Enum.
#pragma once

#include <string>
#include <string_view>

namespace quillon {

// The condition on VouchType and AA_Enum that gives each voucher type its name, AA_Enum.EnumName.
inline constexpr std::string_view voucherTypeNames =
    "inner join AA_Enum on VouchType.cVouchName=AA_Enum.EnumCode where AA_Enum.EnumType ='IA.vchtype' and AA_Enum.LocaleId=DBO.UDF_GetLocaleID()";

// Puts the business types' names into cBusType of `table`, as statements refer to it.
std::string nameBusinessTypes(std::string_view table);

// Puts the voucher types' names into cVouType of `table`, as statements refer to it. `code` is the expression for a
// row's type; rows stand under the alias temp.
std::string nameVoucherTypes(std::string_view table, std::string_view code);

}  // namespace quillon
