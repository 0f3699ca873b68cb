// Values of an account as text in files: written exactly, and read back with an error that says what is wrong.
#pragma once

#include <stdexcept>
#include <string>
#include <string_view>

#include "workbench/messages/told_error.h"
#include "workbench/tsql/values/declared_table.h"

namespace quillon::account {

// What is wrong with a value and what to do, without the place.
class ValueError : public workbench::Told<std::runtime_error> {
 public:
  using Told::Told;
};

// `text` as one line for a message: control characters are blanks, a long text is cut.
std::string quotedForMessage(std::string_view text);

// Throws ValueError when `text` is not UTF-8; half of a surrogate pair, which nvarchar may hold, is taken.
void requireUtf8(std::string_view text);

// The value that `text` (UTF-8) names in `column`, in the form that a BulkWriter takes:
//   int, bigint, bit     digits, with a minus in front
//   decimal, money       digits with a point; decimals beyond the column's must be zeros
//   float                "1.5", "-2e-10"
//   datetime             year first: "2024-03-05", "2024-03-05 13:14:15.457", "2024/3/5 8:05", "20240305"
//   nvarchar, varchar    the text itself
// Throws ValueError when it is none, or does not fit the column.
tsql::Value valueFromText(std::string_view text, const tsql::TableColumn& column);

}  // namespace quillon::account
