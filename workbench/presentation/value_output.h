// Values of the engine as text for people and for programs.
#pragma once

#include <cstdint>
#include <ostream>
#include <span>
#include <string>
#include <string_view>

#include "workbench/tsql/engine/engine.h"

namespace quillon::workbench {

// `text` (UTF-8) as a JSON string. Control characters and unpaired surrogates become \u escapes, bytes that are no
// UTF-8 become U+FFFD; everything else stands as it is. nlohmann's writer is no help here: it refuses an unpaired
// surrogate, which an nvarchar may hold.
void writeJsonText(std::ostream& out, std::string_view text);
void appendJsonText(std::string& json, std::string_view text);

// `value` as JSON: null, a number for int, bigint, bit and float, a text for everything else (exact numbers with all
// their decimals, dates as "yyyy-mm-dd hh:mm:ss.fff").
void writeJsonValue(std::ostream& out, const tsql::Value& value);
void appendJsonValue(std::string& json, const tsql::Value& value);

// [["name","type"],...]
void writeJsonColumns(std::ostream& out, std::span<const tsql::Column> columns);

// The exact number `text` ("-1234.5678", as tsql::toText gives it) rounded to `decimals` places, half away from zero,
// with a comma between each three digits: "-1,234.57". A zero has no sign.
std::string groupedNumber(std::string_view text, int decimals);
// A count of rows or the like: "138,896".
std::string groupedCount(std::int64_t number);

// An exact part of one in per cent with two decimals, rounded half away from zero: 0.1234 is "12.34%". Empty for null.
std::string percentText(const tsql::Value& part);

// `value` for a reader: null is `null`, a date without time of day is the date alone, numbers have all their decimals.
std::string plainText(const tsql::Value& value, std::string_view null);
// The same behind `text`; null is nothing.
void appendPlainText(std::string& text, const tsql::Value& value);

}  // namespace quillon::workbench
