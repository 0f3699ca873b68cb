#include "workbench/com/number_or_text.h"

#include <optional>

#include "workbench/tsql/values/text.h"

namespace quillon::workbench {

automation::Variant numberOrText(const std::string& text) {
  if (const std::optional<int> number = tsql::text::wholeNumber(text)) return *number;
  return text;
}

}  // namespace quillon::workbench
