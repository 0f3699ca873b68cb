// Whether values of two databases agree. Databases differ in how they declare a column and in the last digit of what they
// divide.
#pragma once

#include "workbench/tsql/values/value.h"

namespace quillon::tsql {

enum class Agreement { same, lastDigit, different };

// `quotient`: the values are divided amounts, unit costs above all.
//   - Exact numbers are the same when they are equal, in however many decimals they are stored. Of quotients, one unit of
//     the last decimal that both have is a last digit.
//   - Where one of them is a floating-point number, both are compared as such; one unit of the fifteenth digit, all that
//     one is sure to have, is a last digit.
//   - Texts and dates are the same to the last letter and tick, null is the same as null.
Agreement agreementOf(const Value& one, const Value& other, bool quotient);

// As toText, but without zeros at the end of an exact number's decimals: equal numbers give equal texts however they are
// declared. Null gives nullopt.
std::optional<std::string> plainText(const Value& value);

}  // namespace quillon::tsql
