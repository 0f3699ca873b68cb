#include "workbench/presentation/cost_item_classes.h"

#include <algorithm>
#include <cstdint>
#include <variant>

namespace quillon::workbench {

namespace {

std::string text(const tsql::Cursor& cursor, std::size_t column) {
  return tsql::toText(cursor.value(column)).value_or("");
}

}  // namespace

// One cursor at a time is open.
CostItemClasses::CostItemClasses(const ResultTable& table) {
  {
    const auto classes = table.query("Select cFxCCode, cFxCName, iGrade From Ca_FxClassDef Order By iGrade, cFxCCode");
    while (classes->next()) {
      const auto* grade = std::get_if<std::int64_t>(&classes->value(2));
      classes_.push_back({{text(*classes, 0), text(*classes, 1)}, grade == nullptr ? 0 : static_cast<int>(*grade)});
    }
  }
  // Of several cost items with one code, the first counts, and so it is read last.
  const auto items = table.query(
      "Select item.cFxCode, class.cFxCCode From Ca_FxDef item inner join Ca_FxClassDef class on class.iFxCId = "
      "item.cFxCID Order By item.iFxID Desc");
  while (items->next())
    classOfItem_[text(*items, 0)] = text(*items, 1);
}

std::vector<CostItemClass> CostItemClasses::above(const std::string& code, bool isClass) const {
  std::string inner = code;
  if (!isClass) {
    const auto own = classOfItem_.find(code);
    if (own == classOfItem_.end()) return {};
    inner = own->second;
  }
  std::vector<CostItemClass> path;
  for (const Graded& each : classes_) {
    const bool outer = inner.size() > each.key.code.size() && inner.starts_with(each.key.code);
    if (!each.key.code.empty() && (outer || (!isClass && inner == each.key.code))) path.push_back(each.key);
  }
  return path;
}

CostItemClass CostItemClasses::atGrade(const std::string& code, bool isClass, int grade) const {
  const auto own = isClass ? classOfItem_.end() : classOfItem_.find(code);
  const std::string inner = isClass ? code : own == classOfItem_.end() ? std::string() : own->second;
  CostItemClass found;
  for (const Graded& each : classes_) {
    if (each.grade <= grade && !each.key.code.empty() && inner.starts_with(each.key.code)) found = each.key;
  }
  return found;
}

int CostItemClasses::grades() const {
  return classes_.empty() ? 0 : std::ranges::max(classes_, {}, &Graded::grade).grade;
}

}  // namespace quillon::workbench
