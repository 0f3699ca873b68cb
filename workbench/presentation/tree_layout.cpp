#include "workbench/presentation/tree_layout.h"

#include <algorithm>
#include <map>
#include <memory>
#include <utility>
#include <vector>

#include "frame/text.h"
#include "workbench/presentation/cost_item_classes.h"
#include "workbench/presentation/exact_sum.h"
#include "workbench/presentation/report_document.h"
#include "workbench/presentation/row_conditions.h"
#include "workbench/presentation/state_sums.h"
#include "workbench/presentation/value_output.h"
#include "workbench/tsql/values/collation.h"

namespace quillon::workbench {

namespace {

constexpr Caption itemCaption{"项目", "Item"};
constexpr Caption nothingCaption{"（空）", "(none)"};
constexpr std::string_view costItemColumn = "cFXCode";
constexpr std::string_view classMode = "0";

using NodeKey = CostItemClass;

struct Node {
  NodeKey key;
  std::vector<ExactSum> sums;
  std::vector<std::unique_ptr<Node>> children;
  std::map<std::string, Node*> byCode;  // the children, by code and name

  Node& child(const NodeKey& wanted) {
    Node*& found = byCode[wanted.code + '\t' + wanted.name];
    if (found == nullptr) {
      children.push_back(std::make_unique<Node>());
      children.back()->key = wanted;
      children.back()->sums.resize(sums.size());
      found = children.back().get();
    }
    return *found;
  }
};

std::vector<TreeLevel> levelsOf(const LayoutRequest& request) {
  if (request.arrangement.groupBy.empty()) return request.report.treeLevels(request.mode);
  std::vector<TreeLevel> levels;
  for (const std::string& name : request.arrangement.groupBy) {
    const auto known = request.report.treeLevels(request.mode);
    const auto level = std::ranges::find_if(known, [&name](const TreeLevel& each) {
      return equalIgnoringCase(each.code, name) || equalIgnoringCase(each.name, name);
    });
    levels.push_back(level == known.end() ? TreeLevel{.code = name, .name = ""} : *level);
  }
  return levels;
}

std::string keysOf(std::span<const TreeLevel> levels) {
  std::string keys;
  for (const TreeLevel& level : levels) {
    keys.append(keys.empty() ? "" : ", ").append(level.code);
    if (!level.name.empty()) keys.append(", ").append(level.name);
  }
  return keys;
}

// Without the levels that no row fills.
std::vector<TreeLevel> filledLevels(const LayoutRequest& request, const std::string& where) {
  std::vector<TreeLevel> levels = levelsOf(request);
  const std::vector<ReportColumn> filled = request.table.filledColumns(request.report.columns, where);
  std::erase_if(levels, [&filled](const TreeLevel& level) {
    return std::ranges::none_of(filled, [&level](const ReportColumn& column) {
      return equalIgnoringCase(column.name, level.code) || equalIgnoringCase(column.name, level.name);
    });
  });
  return levels;
}

std::string labelOf(const NodeKey& key, bool costItem, Language language) {
  if (key.code.empty() && key.name.empty())
    return std::string((costItem ? noCostItemCaption : nothingCaption).in(language));
  return key.name.empty() || key.code.empty() ? key.code + key.name : key.code + " " + key.name;
}

class Tree {
 public:
  Tree(const LayoutRequest& request, const std::string& where)
      : request_(request), levels_(filledLevels(request, where)), states_(request.report.crossStates(request.mode)) {
    root_.sums.resize(states_.size() * 2);
    const bool nestsClasses = !levels_.empty() && equalIgnoringCase(levels_.front().code, costItemColumn) &&
                              request.arrangement.groupBy.empty();
    std::optional<CostItemClasses> classes;
    if (nestsClasses) classes.emplace(request.table);
    if (levels_.empty()) return;
    const std::string keys = keysOf(levels_);
    const auto cursor = request.table.query("Select " + keys + stateSums(states_) + " From " + request.table.name() +
                                            " Where " + where + " Group By " + keys + " Order By " + keys);
    while (cursor->next())
      put(*cursor, classes);
    sort(root_);
  }

  View view() {
    View view;
    view.columns.push_back({.column = {.name = "item",
                                       .chinese = std::string(itemCaption.chinese),
                                       .english = std::string(itemCaption.english)},
                            .key = true});
    for (ViewColumn& column : stateColumns(states_))
      view.columns.push_back(std::move(column));
    auto rows = std::make_shared<std::vector<ViewRow>>();
    for (const auto& child : root_.children)
      write(*child, 0, *rows);
    view.lineCount = std::ranges::count(*rows, RowKind::line, &ViewRow::kind);
    view.rows = heldRows(std::move(rows));
    root_.key.code = std::string(totalCaption.in(request_.language));
    view.totals.push_back(rowOf(root_, RowKind::total, 0));
    return view;
  }

 private:
  void put(const tsql::Cursor& cursor, const std::optional<CostItemClasses>& classes) {
    std::vector<NodeKey> path;
    std::size_t column = 0;
    for (const TreeLevel& level : levels_) {
      NodeKey key{.code = plainText(cursor.value(column++), ""), .name = {}};
      if (!level.name.empty()) key.name = plainText(cursor.value(column++), "");
      if (path.empty() && classes) path = classes->above(key.code, request_.mode == classMode);
      path.push_back(std::move(key));
    }
    Node* node = &root_;
    const auto addTo = [&](Node& each) {
      for (std::size_t i = 0; i < each.sums.size(); ++i)
        each.sums[i].add(cursor.value(column + i));
    };
    addTo(*node);
    for (const NodeKey& key : path) {
      node = &node->child(key);
      addTo(*node);
    }
  }

  // By the sort keys, then by code; what has none comes last.
  void sort(Node& node) {
    const std::vector<ViewColumn> measures = stateColumns(states_);
    std::ranges::stable_sort(node.children, [&](const auto& one, const auto& other) {
      for (const SortKey& key : request_.arrangement.sort) {
        for (std::size_t i = 0; i < measures.size(); ++i) {
          if (measures[i].column.name != key.column) continue;
          const int order = compareValues(one->sums[i].value(), other->sums[i].value());
          if (order != 0) return key.descending ? order > 0 : order < 0;
        }
      }
      if (one->key.code.empty() != other->key.code.empty()) return other->key.code.empty();
      return tsql::compareText(one->key.code, other->key.code) < 0;
    });
    for (const auto& child : node.children)
      sort(*child);
  }

  ViewRow rowOf(const Node& node, RowKind kind, int level) const {
    ViewRow row{.kind = kind, .level = level, .cells = {labelOf(node.key, level == 0, request_.language)}};
    for (const ExactSum& sum : node.sums)
      row.cells.push_back(sum.value());
    return row;
  }

  void write(const Node& node, int level, std::vector<ViewRow>& rows) const {
    rows.push_back(rowOf(node, node.children.empty() ? RowKind::line : RowKind::group, level));
    for (const auto& child : node.children)
      write(*child, level + 1, rows);
  }

  const LayoutRequest& request_;
  std::vector<TreeLevel> levels_;
  std::vector<CrossState> states_;
  Node root_;
};

}  // namespace

View treeView(const LayoutRequest& request) {
  return Tree(request, conditionText(request.arrangement.where, request.table.columns())).view();
}

}  // namespace quillon::workbench
