#include "frame/report_mode.h"

#include <charconv>

#include "frame/text.h"

namespace quillon {

ReportMode reportMode(std::string_view mode) {
  const std::string_view text = trimBlanks(mode);
  double number = 0;
  std::from_chars(text.data(), text.data() + text.size(), number);
  if (number == 0) return ReportMode::costItemClass;
  return number == 2 ? ReportMode::expenseType : ReportMode::costItem;
}

}  // namespace quillon
