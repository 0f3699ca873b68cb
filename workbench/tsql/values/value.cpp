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
  struct Writer {
    std::optional<std::string> operator()(std::monostate /*null*/) const { return {}; }
    std::optional<std::string> operator()(std::int64_t number) const { return std::to_string(number); }
    std::optional<std::string> operator()(double number) const {
      std::array<char, 32> buffer{};
      const auto end = std::to_chars(buffer.data(), buffer.data() + buffer.size(), number).ptr;
      return std::string(buffer.data(), end);
    }
    std::optional<std::string> operator()(const Exact& number) const { return tsql::toText(number); }
    std::optional<std::string> operator()(DateTime time) const { return tsql::toText(time); }
    std::optional<std::string> operator()(const std::string& text) const { return text; }
  };
  return std::visit(Writer(), value);
}

}  // namespace quillon::tsql
