// The errors of the value layer, with SQL Server's numbers and texts.
#pragma once

#include <string>
#include <string_view>

#include "workbench/tsql/values/sql_error.h"
#include "workbench/tsql/values/value.h"

namespace quillon::tsql::errors {

SqlError divideByZero();  // 8134
// 8115. `from` is "expression" for arithmetic, else the source's name ("numeric", "nvarchar"); `to` as systemName().
SqlError overflow(std::string_view from, std::string_view to);
SqlError conversionFailed(const Type& from, std::string_view value, const Type& to);  // 245, quotes the value
SqlError errorConverting(const Type& from, const Type& to);                           // 8114
SqlError textOverflowsInt(const Type& from, std::string_view value);                  // 248
SqlError badMoneyText();                                                              // 235
SqlError notADate();                                                                  // 241
SqlError dateOutOfRange(const Type& from);                                            // 242
SqlError dateArithmeticOverflow();                                                    // 517
SqlError noRoomForMoney(const Type& to);                                              // 234
SqlError dateDifferenceOverflow();                                                    // 535
SqlError badStyle(int style, const Type& from, const Type& to);                       // 281
// 2628; without a table 8152.
SqlError wouldBeTruncated(std::string_view table, std::string_view column, std::string_view value);
SqlError invalidOperand(const Type& type, std::string_view operation);                   // 8117
SqlError incompatible(const Type& left, const Type& right, std::string_view operation);  // 402
SqlError explicitConversionNeeded(const Type& from, const Type& to);                     // 257
SqlError conversionNotAllowed(const Type& from, const Type& to);                         // 529
SqlError invalidLength(std::string_view function);                                       // 537
SqlError invalidEscape(std::string_view escape);                                         // 506

// The type's name in error texts: without width, decimal as "numeric".
std::string_view systemName(const Type& type);

}  // namespace quillon::tsql::errors
