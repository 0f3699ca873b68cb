#include "workbench/catalogue/report_layout.h"

#include <algorithm>

namespace quillon::workbench {

namespace {

struct NamedLayout {
  Layout layout;
  std::string_view name;
  Caption caption;
};

constexpr std::array<NamedLayout, 7> layouts = {{{Layout::summary, "summary", {"按成本项目汇总", "By cost item"}},
                                                 {Layout::tree, "tree", {"分级汇总", "Nested sums"}},
                                                 {Layout::lines, "lines", {"明细", "Rows"}},
                                                 {Layout::ledger, "ledger", {"明细账", "Ledger"}},
                                                 {Layout::columnar, "columnar", {"多栏账", "Columnar ledger"}},
                                                 {Layout::vouchers, "vouchers", {"单据", "Documents"}},
                                                 {Layout::pivot, "pivot", {"透视表", "Pivot table"}}}};

const NamedLayout& entry(Layout layout) {
  return *std::ranges::find(layouts, layout, &NamedLayout::layout);
}

}  // namespace

std::string_view layoutName(Layout layout) {
  return entry(layout).name;
}

Caption layoutCaption(Layout layout) {
  return entry(layout).caption;
}

std::optional<Layout> layoutNamed(std::string_view name) {
  const auto found = std::ranges::find(layouts, name, &NamedLayout::name);
  return found == layouts.end() ? std::nullopt : std::optional(found->layout);
}

std::vector<TreeLevel> summaryTreeLevels(std::string_view mode) {
  std::vector<TreeLevel> levels = {{"cFXCode", "cFXName"}};
  if (mode == "2") levels.push_back({"cAmoCode", "cAmoName"});
  levels.insert(levels.end(), {{"cWhCode", "cWhName"}, {"cInvCode", "cInvName"}});
  return levels;
}

std::string orZero(std::string_view column) {
  return "IsNull(" + std::string(column) + ", 0)";
}

}  // namespace quillon::workbench
