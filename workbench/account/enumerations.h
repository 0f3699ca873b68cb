// The account's fixed lists: voucher types, business types, receipt and issue types, their names in two languages.
#pragma once

#include "workbench/tsql/engine/engine.h"

namespace quillon::account {

// Writes VouchType, Rd_Style, AA_Enum and Ca_AmoTypeName. Throws tsql::SqlError.
void writeEnumerations(tsql::Connection& connection);

}  // namespace quillon::account
