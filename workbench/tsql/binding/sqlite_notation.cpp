#include "workbench/tsql/binding/sqlite_notation.h"

#include <algorithm>
#include <bit>

#include "workbench/tsql/values/sql_error.h"

namespace quillon::tsql {
namespace {

// The end of what is quoted from `begin` on; a quote in it is doubled.
std::size_t endOfQuoted(std::string_view sql, std::size_t begin) {
  std::size_t end = begin;
  do {
    const std::size_t close = sql.find(sql[begin], end + 1);
    if (close == std::string_view::npos) return sql.size();
    end = close + 1;
  } while (end < sql.size() && sql[end] == sql[begin]);
  return end;
}

}  // namespace

std::string quoteName(std::string_view name) {
  std::string result = "\"";
  for (const char c : name) {
    if (c == '"') result += '"';
    result += c;
  }
  return result + '"';
}

std::vector<SqlName> namesIn(std::string_view sql) {
  const auto isOfName = [](char c) { return (c >= 'a' && c <= 'z') || (c >= '0' && c <= '9') || c == '_'; };
  std::vector<SqlName> names;
  for (std::size_t at = 0; at < sql.size();) {
    const std::size_t begin = at;
    const auto add = [&](SqlName::Kind kind) { names.push_back({kind, begin, sql.substr(begin, at - begin)}); };
    if (sql[at] == '\'') {
      at = endOfQuoted(sql, at);
    } else if (sql[at] == '"') {
      at = endOfQuoted(sql, at);
      if (!sql.substr(at).starts_with('.')) continue;
      // The row's number has no quotes.
      at = sql.substr(at).starts_with(".\"") ? endOfQuoted(sql, at + 1) : sql.find_first_of(" ,()", at);
      at = std::min(at, sql.size());
      add(SqlName::Kind::column);
    } else if (isOfName(sql[at])) {
      while (at < sql.size() && isOfName(sql[at]))
        ++at;
      if (at < sql.size() && sql[at] == '(') add(SqlName::Kind::call);
    } else if (sql[at++] == '?') {
      add(SqlName::Kind::parameter);
    }
  }
  return names;
}

std::vector<std::string> columnsIn(std::string_view sql) {
  std::vector<std::string> columns;
  for (const SqlName& name : namesIn(sql)) {
    if (name.kind == SqlName::Kind::column && std::ranges::find(columns, name.text) == columns.end())
      columns.emplace_back(name.text);
  }
  return columns;
}

std::string withColumnsReplaced(std::string_view sql, const std::vector<std::string>& columns,
                                const std::vector<std::string>& by) {
  std::string result;
  std::size_t at = 0;
  for (const SqlName& name : namesIn(sql)) {
    const auto column = std::ranges::find(columns, name.text);
    if (name.kind != SqlName::Kind::column || column == columns.end()) continue;
    result.append(sql.substr(at, name.begin - at)).append(by[static_cast<std::size_t>(column - columns.begin())]);
    at = name.begin + name.text.size();
  }
  return result.append(sql.substr(at));
}

std::int64_t typeCode(const Type& type) {
  constexpr std::int64_t million = 1'000'000;
  const int rest = static_cast<int>(type.kind) * 10'000 + type.precision * 100 + type.scale;
  return type.width * million + rest;
}

Type typeFromCode(std::int64_t code) {
  Type type;
  type.width = static_cast<int>(code / 1'000'000);
  const int rest = static_cast<int>(code % 1'000'000);
  type.kind = static_cast<Kind>(rest / 10'000);
  type.precision = rest / 100 % 100;
  type.scale = rest % 100;
  return type;
}

WideUnits encodeUnits(Int128 units) {
  WideUnits bytes{};
  const std::uint64_t high = static_cast<std::uint64_t>(units.high()) ^ (std::uint64_t{1} << 63);
  for (unsigned i = 0; i < 8; ++i) {
    bytes[i] = static_cast<char>(static_cast<unsigned char>(high >> (56 - 8 * i)));
    bytes[8 + i] = static_cast<char>(static_cast<unsigned char>(units.low() >> (56 - 8 * i)));
  }
  return bytes;
}

Int128 decodeUnits(std::string_view bytes) {
  if (bytes.size() != std::tuple_size_v<WideUnits>) throw SqlError(824, "The file holds a damaged decimal number.");
  std::uint64_t high = 0;
  std::uint64_t low = 0;
  for (std::size_t i = 0; i < 8; ++i) {
    high = (high << 8) | static_cast<unsigned char>(bytes[i]);
    low = (low << 8) | static_cast<unsigned char>(bytes[8 + i]);
  }
  return Int128::fromHalves(static_cast<std::int64_t>(high ^ (std::uint64_t{1} << 63)), low);
}

std::string sqlLiteral(const Value& value) {
  const auto hexadecimal = [](std::string_view bytes) {
    constexpr std::string_view digits = "0123456789ABCDEF";
    std::string result = "X'";
    for (const char c : bytes) {
      result += digits[static_cast<unsigned char>(c) >> 4U];
      result += digits[static_cast<unsigned char>(c) & 15U];
    }
    return result + '\'';
  };
  struct Writer {
    decltype(hexadecimal)& hex;
    std::string operator()(std::monostate /*null*/) const { return "NULL"; }
    std::string operator()(std::int64_t integer) const { return std::to_string(integer); }
    std::string operator()(DateTime time) const { return std::to_string(time.ticks); }
    std::string operator()(double real) const {
      std::string text = tsql::toText(Value(real)).value_or("");
      // SQLite reads back exactly what has few digits and no exponent; anything else may come out one bit off.
      constexpr std::size_t shortText = 16;
      if (text.find('e') != std::string::npos || text.size() > shortText)
        return "float_bits(" + std::to_string(std::bit_cast<std::int64_t>(real)) + ")";
      if (text.find('.') == std::string::npos) text += ".0";
      return text;
    }
    std::string operator()(const Exact& exact) const {
      if (exact.units.fitsInt64()) return std::to_string(exact.units.toInt64());
      const WideUnits wide = encodeUnits(exact.units);
      return hex(std::string_view(wide.data(), wide.size()));
    }
    std::string operator()(const std::string& text) const {
      if (text.find('\0') != std::string::npos) return "CAST(" + hex(text) + " AS TEXT)";
      std::string result = "'";
      for (const char c : text) {
        result += c;
        if (c == '\'') result += c;
      }
      return result + '\'';
    }
  };
  return std::visit(Writer{hexadecimal}, value);
}

}  // namespace quillon::tsql
