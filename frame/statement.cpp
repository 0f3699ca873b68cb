#include "frame/statement.h"

namespace quillon {

std::string joined(Lines lines) {
  std::string statement;
  for (const std::string_view line : lines) {
    if (line.empty()) continue;
    if (!statement.empty()) statement += lineBreak;
    statement += line;
  }
  return statement;
}

std::string terminated(Lines lines) {
  std::string statement = joined(lines);
  statement += lineBreak;
  return statement;
}

std::string concatenated(Lines pieces) {
  std::string statement;
  for (const std::string_view piece : pieces)
    statement += piece;
  return statement;
}

}  // namespace quillon
