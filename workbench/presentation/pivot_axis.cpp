#include "workbench/presentation/pivot_axis.h"

#include <algorithm>

#include "workbench/presentation/row_conditions.h"
#include "workbench/presentation/value_output.h"

namespace quillon::workbench {

namespace {

constexpr Caption noneLabel{"（无）", "(none)"};

int order(const tsql::Value& one, const tsql::Value& other) {
  const bool noOne = tsql::isNull(one), noOther = tsql::isNull(other);
  if (noOne || noOther) return static_cast<int>(noOne) - static_cast<int>(noOther);
  return compareValues(one, other);
}

}  // namespace

bool PivotKeyOrder::operator()(const PivotKey& one, const PivotKey& other) const {
  const int byCode = order(one.code, other.code);
  return byCode != 0 ? byCode < 0 : order(one.name, other.name) < 0;
}

std::size_t PivotAxis::leaf(std::span<const PivotKey> path) {
  std::size_t number = whole;
  for (const PivotKey& key : path) {
    const auto found = nodes_[number].children.find(key);
    if (found != nodes_[number].children.end()) {
      number = found->second;
      continue;
    }
    const std::size_t added = nodes_.size();
    nodes_.push_back({.parent = number, .depth = nodes_[number].depth + 1, .key = key});
    nodes_[number].children.emplace(key, added);
    number = added;
  }
  return number;
}

std::vector<std::size_t> PivotAxis::path(std::size_t number) const {
  std::vector<std::size_t> nodes;
  for (; number != whole; number = nodes_[number].parent)
    nodes.push_back(number);
  std::ranges::reverse(nodes);
  return nodes;
}

std::size_t PivotAxis::stateDepth() const {
  const auto state = std::ranges::find(dimensions_, DimensionKind::state, &ReportDimension::kind);
  return state == dimensions_.end() ? 0 : static_cast<std::size_t>(state - dimensions_.begin()) + 1;
}

std::string pivotLabel(const ReportDimension& dimension, const PivotKey& key, Language language) {
  if (key.isNone()) return std::string(noneLabel.in(language));
  std::string code = plainText(key.code, ""), name = plainText(key.name, "");
  if (dimension.kind == DimensionKind::state && !name.empty()) return name;
  if (code.empty() || name.empty() || code == name) return code.empty() ? name : code;
  return code + " " + name;
}

}  // namespace quillon::workbench
