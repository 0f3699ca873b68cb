// Values and types of the embedded account as ADO's fields give them to automation.
#pragma once

#include "automation/variant.h"
#include "workbench/tsql/values/value.h"

namespace quillon::workbench {

// ADO's data type numbers, by their ADO values.
enum class AdoType {
  integer = 3,
  real = 5,  // adDouble
  currency = 6,
  boolean = 11,
  bigInt = 20,
  numeric = 131,
  dateTime = 135,  // adDBTimeStamp
  text = 200,      // adVarChar
  longText = 201,
  wideText = 202,  // adVarWChar
  longWideText = 203,
};

AdoType adoType(const tsql::Type& type);

// The value of a field of type `type`: int as VT_I4, bit as VT_BOOL, bigint and decimal as VT_DECIMAL with the type's
// scale, money as VT_CY, float as VT_R8, datetime as VT_DATE, texts as VT_BSTR, null as VT_NULL. Nothing is rounded: a
// decimal that VT_DECIMAL cannot hold (more than 96 bits) throws AutomationError 0x80040E57.
automation::Variant adoValue(const tsql::Value& value, const tsql::Type& type);

}  // namespace quillon::workbench
