#include "workbench/tsql/values/value.h"

#include <array>
#include <charconv>

#include "workbench/tsql/values/datetime.h"
#include "workbench/tsql/values/exact.h"

namespace quillon::tsql {

std::string Type::name() const {
  const auto wide = [this](const char* base) {
    return std::string(base) + '(' + (width == maxWidth ? "max" : std::to_string(width)) + ')';
  };
  switch (kind) {
    case Kind::integer:
      return "int";
    case Kind::bigInt:
      return "bigint";
    case Kind::bit:
      return "bit";
    case Kind::decimal:
      return "decimal(" + std::to_string(precision) + ',' + std::to_string(scale) + ')';
    case Kind::money:
      return "money";
    case Kind::real:
      return "float";
    case Kind::dateTime:
      return "datetime";
    case Kind::nVarChar:
      return wide("nvarchar");
    case Kind::varChar:
      return wide("varchar");
  }
  return {};
}

std::optional<std::string> toText(const Value& value) {
  if (isNull(value)) return {};
  std::string text;
  appendText(text, value);
  return text;
}

void appendText(std::string& text, const Value& value) {
  const auto appendNumber = [&text](auto number) {
    std::array<char, 32> buffer{};
    const auto end = std::to_chars(buffer.data(), buffer.data() + buffer.size(), number).ptr;
    text.append(buffer.data(), end);
  };
  if (const auto* const known = std::get_if<std::string>(&value)) {
    text += *known;
  } else if (const auto* const integer = std::get_if<std::int64_t>(&value)) {
    appendNumber(*integer);
  } else if (const auto* const exact = std::get_if<Exact>(&value)) {
    appendText(text, *exact);
  } else if (const auto* const time = std::get_if<DateTime>(&value)) {
    appendText(text, *time);
  } else if (const auto* const real = std::get_if<double>(&value)) {
    appendNumber(*real);
  }
}

}  // namespace quillon::tsql
