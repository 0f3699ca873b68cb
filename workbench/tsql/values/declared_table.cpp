#include "workbench/tsql/values/declared_table.h"

#include "frame/text.h"

namespace quillon::tsql {

int DeclaredTable::find(std::string_view column) const {
  for (std::size_t i = 0; i < columns.size(); ++i) {
    if (equalIgnoringCase(columns[i].name, column)) return static_cast<int>(i);
  }
  return -1;
}

std::vector<std::string> DeclaredTable::primaryKey() const {
  for (const KeyDefinition& key : keys) {
    if (key.primary) return key.columns;
  }
  return {};
}

std::string declaration(const Type& type) {
  const bool isText = type.kind == Kind::nVarChar || type.kind == Kind::varChar;
  if (isText && type.width == Type::maxWidth) return type.kind == Kind::nVarChar ? "nvarchar(max)" : "varchar(max)";
  return type.name();
}

std::string bracketed(std::string_view name) {
  std::string result = "[";
  for (const char c : name) {
    if (c == ']') result += ']';
    result += c;
  }
  return result + ']';
}

std::string writtenName(std::string_view database, std::string_view name) {
  return (database.empty() ? std::string() : std::string(database) + "..") + bracketed(name);
}

std::string bracketedList(const std::vector<std::string>& columns) {
  std::string list;
  for (const std::string& column : columns)
    list += (list.empty() ? "" : ", ") + bracketed(column);
  return list;
}

}  // namespace quillon::tsql
