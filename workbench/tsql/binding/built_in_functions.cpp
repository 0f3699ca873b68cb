#include "workbench/tsql/binding/built_in_functions.h"

#include <algorithm>
#include <array>
#include <functional>

#include "workbench/tsql/values/datetime.h"
#include "workbench/tsql/values/sql_error.h"
#include "workbench/tsql/values/value_errors.h"

namespace quillon::tsql {
namespace {

using Arguments = std::vector<Fragment>;

Fragment asText(const Fragment& value) {
  if (value.isNullLiteral) return convert(value, varCharType(1), Conversion::cast);
  return isText(value.type) ? value : convert(value, implicitTextType(value.type), Conversion::cast);
}

Fragment asInt(const Fragment& value) {
  return convert(value, intType(), Conversion::cast);
}

Fragment asReal(const Fragment& value) {
  return convert(value, floatType(), Conversion::cast);
}

Fragment asDate(const Fragment& value) {
  return convert(value, dateTimeType(), Conversion::cast);
}

// nvarchar or varchar as the value is, with another width.
Type textType(const Fragment& value, std::int64_t width) {
  Type type = value.type;
  type.width = static_cast<int>(std::clamp<std::int64_t>(width, 1, Type::maxWidth));
  return type;
}

// When the count of characters is a constant, it limits the width of the result.
Type cutType(const Fragment& text, const Fragment& count) {
  if (count.constant && std::holds_alternative<std::int64_t>(*count.constant)) {
    return textType(text, std::min<std::int64_t>(std::get<std::int64_t>(*count.constant), text.type.width));
  }
  return text.type;
}

Fragment cut(std::string_view function, const Arguments& given) {
  const Fragment text = asText(given[0]);
  const Fragment count = asInt(given[1]);
  return call(function, {text, count}, cutType(text, given[1]));
}

Fragment substring(const Arguments& given) {
  const Fragment text = asText(given[0]);
  return call("text_substring", {text, asInt(given[1]), asInt(given[2])}, cutType(text, given[2]));
}

Fragment sameText(std::string_view function, const Arguments& given) {
  const Fragment text = asText(given[0]);
  return call(function, {text}, text.type);
}

// Functions whose result can be longer than their argument get the largest width below max: 4000 or 8000.
Type longText(const Fragment& text) {
  return textType(text, text.type.kind == Kind::nVarChar ? 4000 : 8000);
}

Fragment replace(const Arguments& given) {
  const Fragment text = asText(given[0]);
  const Fragment what = asText(given[1]);
  const Fragment by = asText(given[2]);
  Type type = longText(text);
  if (what.type.kind == Kind::nVarChar || by.type.kind == Kind::nVarChar) type = nVarCharType(4000);
  return call("text_replace", {text, what, by}, type);
}

Fragment isNullCall(const Arguments& given) {
  const Fragment& checked = given[0];
  const Type type = isNullType(checked.operand(), given[1].operand());
  const Fragment a = convert(checked, type, Conversion::cast);
  const Fragment b = convert(given[1], type, Conversion::cast);
  Fragment result = call("ifnull", {}, type);
  result.sql = "ifnull(" + a.sql + ", " + b.sql + ")";
  result.magnitude = std::max(a.magnitude, b.magnitude);
  result.mayOverflow = a.mayOverflow || b.mayOverflow;
  result.bare = checked.bare;
  result.bare.insert(result.bare.end(), given[1].bare.begin(), given[1].bare.end());
  return result;
}

Fragment coalesce(Arguments given) {
  Fragment result;
  result.type = unify(given);
  for (const Fragment& value : given) {
    result.sql += (result.sql.empty() ? "coalesce(" : ", ") + value.sql;
    result.magnitude = std::max(result.magnitude, value.magnitude);
    result.mayOverflow = result.mayOverflow || value.mayOverflow;
    result.bare.insert(result.bare.end(), value.bare.begin(), value.bare.end());
  }
  result.sql += ")";
  return result;
}

Fragment nullIf(const Arguments& given) {
  Fragment result = given[0];
  result.sql = "CASE WHEN " + compare("=", given[0], given[1]) + " THEN NULL ELSE " + given[0].sql + " END";
  result.constant.reset();
  result.isColumn = result.notNull = false;
  result.literalDigits = 0;
  result.bare.insert(result.bare.end(), given[1].bare.begin(), given[1].bare.end());
  return result;
}

// A number argument: a text becomes float.
Fragment asNumber(const Fragment& value) {
  if (value.isNullLiteral) return convert(value, intType(), Conversion::cast);
  return isExact(value.type) || value.type.kind == Kind::real ? value : asReal(value);
}

// The type of a number function's result: bit counts as int.
Type numberType(const Fragment& number) {
  return number.type.kind == Kind::bit ? floatType() : number.type;
}

Fragment exactArgument(const Type& type) {
  Fragment result;
  result.sql = typeArgument(type);
  return result;
}

Fragment absolute(const Arguments& given) {
  const Fragment number = asNumber(given[0]);
  if (number.type.kind == Kind::real) return call("abs", {number}, number.type);
  return call("exact_abs", {number, exactArgument(number.type)}, number.type);
}

Fragment sign(const Arguments& given) {
  const Fragment number = asNumber(given[0]);
  if (number.type.kind == Kind::real) return call("float_sign", {number}, number.type);
  return call("exact_sign", {number, exactArgument(number.type)}, number.type);
}

Fragment roundNumber(const Arguments& given) {
  const Fragment number = asNumber(given[0]);
  Arguments arguments{number};
  if (number.type.kind != Kind::real) arguments.push_back(exactArgument(number.type));
  for (std::size_t i = 1; i < given.size(); ++i)
    arguments.push_back(asInt(given[i]));
  return call(number.type.kind == Kind::real ? "float_round" : "exact_round", arguments, numberType(number));
}

Fragment neighbour(const std::string& name, const Arguments& given) {
  const Fragment number = asNumber(given[0]);
  if (number.type.kind == Kind::real) return call("float_" + name, {number}, number.type);
  Type type = number.type;
  if (type.kind == Kind::decimal) type.scale = 0;
  return call("exact_" + name, {number, exactArgument(number.type), exactArgument(type)}, type);
}

std::string datePartArgument(const Expression& expression) {
  const Expression& first = *expression.operands[0];
  const std::string name =
      first.kind == ExpressionKind::column && first.name.size() == 1 ? first.name[0] : std::string();
  const std::optional<DatePart> part = datePartNamed(name);
  if (!part) {
    throw SqlError(155, "'" + name + "' is not a recognized " + expression.name[0] + " option.", first.place.line,
                   first.place.token);
  }
  return "'" + std::string(nameOf(*part)) + "'";
}

Fragment partFragment(const Expression& expression) {
  Fragment result;
  result.sql = datePartArgument(expression);
  return result;
}

Fragment fixedPart(std::string_view part, const Arguments& given) {
  Fragment name;
  name.sql = "'" + std::string(part) + "'";
  return call("date_part", {name, asDate(given[0])}, intType());
}

struct Function {
  std::string_view name;
  std::size_t fewest, most;
  Fragment (*make)(const Arguments& given, const Expression& expression);
};

constexpr std::size_t anyNumber = 100;

// One row for each function, in alphabetical order.
constexpr auto builtInFunctions = std::to_array<Function>({
    {"abs", 1, 1, [](const Arguments& a, const Expression&) { return absolute(a); }},
    {"ascii", 1, 1, [](const Arguments& a, const Expression&) { return call("text_ascii", {asText(a[0])}, intType()); }},
    {"ceiling", 1, 1, [](const Arguments& a, const Expression&) { return neighbour("ceiling", a); }},
    {"char", 1, 1, [](const Arguments& a, const Expression&) { return call("text_char", {asInt(a[0])}, varCharType(1)); }},
    {"charindex", 2, 3,
     [](const Arguments& a, const Expression&) {
       Arguments texts{asText(a[0]), asText(a[1])};
       if (a.size() > 2) texts.push_back(asInt(a[2]));
       return call("text_charindex", texts, intType());
     }},
    {"coalesce", 1, anyNumber, [](const Arguments& a, const Expression&) { return coalesce(a); }},
    {"dateadd", 3, 3,
     [](const Arguments& a, const Expression& e) {
       return call("date_add", {partFragment(e), asInt(a[1]), asDate(a[2])}, dateTimeType());
     }},
    {"datediff", 3, 3,
     [](const Arguments& a, const Expression& e) {
       return call("date_diff", {partFragment(e), asDate(a[1]), asDate(a[2])}, intType());
     }},
    {"datename", 2, 2,
     [](const Arguments& a, const Expression& e) { return call("date_name", {partFragment(e), asDate(a[1])}, nVarCharType(30)); }},
    {"datepart", 2, 2,
     [](const Arguments& a, const Expression& e) { return call("date_part", {partFragment(e), asDate(a[1])}, intType()); }},
    {"day", 1, 1, [](const Arguments& a, const Expression&) { return fixedPart("day", a); }},
    {"db_id", 1, 1, [](const Arguments& a, const Expression&) { return call("db_id", {asText(a[0])}, intType()); }},
    {"floor", 1, 1, [](const Arguments& a, const Expression&) { return neighbour("floor", a); }},
    // All calls in a statement give the same time.
    {"getdate", 0, 0,
     [](const Arguments&, const Expression&) { return literalFragment(currentDateTime(), dateTimeType()); }},
    {"isnull", 2, 2, [](const Arguments& a, const Expression&) { return isNullCall(a); }},
    {"isnumeric", 1, 1, [](const Arguments& a, const Expression&) { return call("text_isnumeric", {asText(a[0])}, intType()); }},
    {"left", 2, 2, [](const Arguments& a, const Expression&) { return cut("text_left", a); }},
    {"len", 1, 1, [](const Arguments& a, const Expression&) { return call("text_len", {asText(a[0])}, intType()); }},
    {"lower", 1, 1, [](const Arguments& a, const Expression&) { return sameText("text_lower", a); }},
    {"ltrim", 1, 1, [](const Arguments& a, const Expression&) { return sameText("text_ltrim", a); }},
    {"month", 1, 1, [](const Arguments& a, const Expression&) { return fixedPart("month", a); }},
    {"nchar", 1, 1, [](const Arguments& a, const Expression&) { return call("text_nchar", {asInt(a[0])}, nVarCharType(1)); }},
    {"nullif", 2, 2, [](const Arguments& a, const Expression&) { return nullIf(a); }},
    {"object_id", 1, 2,
     [](const Arguments& a, const Expression&) { return call("object_id", {asText(a[0])}, intType()); }},
    {"patindex", 2, 2,
     [](const Arguments& a, const Expression&) { return call("text_patindex", {asText(a[0]), asText(a[1])}, intType()); }},
    {"power", 2, 2,
     [](const Arguments& a, const Expression&) {
       const Fragment base = asNumber(a[0]);
       const Fragment result = call("float_power", {asReal(base), asReal(a[1])}, floatType());
       return base.type.kind == Kind::real ? result : convert(result, base.type, Conversion::cast);
     }},
    {"quotename", 1, 1, [](const Arguments& a, const Expression&) { return call("text_quotename", {asText(a[0])}, nVarCharType(258)); }},
    {"replace", 3, 3, [](const Arguments& a, const Expression&) { return replace(a); }},
    {"replicate", 2, 2,
     [](const Arguments& a, const Expression&) {
       const Fragment text = asText(a[0]);
       return call("text_replicate", {text, asInt(a[1])}, longText(text));
     }},
    {"reverse", 1, 1, [](const Arguments& a, const Expression&) { return sameText("text_reverse", a); }},
    {"right", 2, 2, [](const Arguments& a, const Expression&) { return cut("text_right", a); }},
    {"round", 2, 3, [](const Arguments& a, const Expression&) { return roundNumber(a); }},
    {"rtrim", 1, 1, [](const Arguments& a, const Expression&) { return sameText("text_rtrim", a); }},
    {"sign", 1, 1, [](const Arguments& a, const Expression&) { return sign(a); }},
    {"space", 1, 1, [](const Arguments& a, const Expression&) { return call("text_space", {asInt(a[0])}, varCharType(8000)); }},
    {"sqrt", 1, 1, [](const Arguments& a, const Expression&) { return call("float_sqrt", {asReal(a[0])}, floatType()); }},
    {"str", 1, 3,
     [](const Arguments& a, const Expression&) {
       const Fragment length = a.size() > 1 ? asInt(a[1]) : literalFragment(std::int64_t{10}, intType());
       const Fragment decimals = a.size() > 2 ? asInt(a[2]) : literalFragment(std::int64_t{0}, intType());
       const auto* const width = length.constant ? std::get_if<std::int64_t>(&*length.constant) : nullptr;
       const bool isKnown = width != nullptr && *width > 0 && *width < 8000;
       const Type type = varCharType(isKnown ? static_cast<int>(*width) : 8000);
       return call("text_str", {asReal(a[0]), length, decimals}, type);
     }},
    {"stuff", 4, 4,
     [](const Arguments& a, const Expression&) {
       const Fragment text = asText(a[0]);
       return call("text_stuff", {text, asInt(a[1]), asInt(a[2]), asText(a[3])}, longText(text));
     }},
    {"substring", 3, 3, [](const Arguments& a, const Expression&) { return substring(a); }},
    {"unicode", 1, 1, [](const Arguments& a, const Expression&) { return call("text_unicode", {asText(a[0])}, intType()); }},
    {"upper", 1, 1, [](const Arguments& a, const Expression&) { return sameText("text_upper", a); }},
    {"year", 1, 1, [](const Arguments& a, const Expression&) { return fixedPart("year", a); }},
});

}  // namespace

Fragment scalarFunction(const std::string& name, const std::vector<Fragment>& arguments, const Expression& expression) {
  const auto* const found = std::lower_bound(builtInFunctions.begin(), builtInFunctions.end(), name,
                                             [](const Function& f, const std::string& n) { return f.name < n; });
  if (found == builtInFunctions.end() || found->name != name) {
    throw SqlError(195, "'" + expression.name[0] + "' is not a recognized built-in function name.",
                   expression.place.line, expression.name[0]);
  }
  if (arguments.size() < found->fewest || arguments.size() > found->most) {
    throw SqlError(
        174,
        "The " + name + " function requires " + std::to_string(found->fewest) +
            (found->most > found->fewest && found->most != anyNumber ? " to " + std::to_string(found->most) : "") +
            " argument(s).",
        expression.place.line, expression.name[0]);
  }
  return found->make(arguments, expression);
}

}  // namespace quillon::tsql
