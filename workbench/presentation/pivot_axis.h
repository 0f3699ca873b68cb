// One axis of a pivot: what stands down or across, nested by its dimensions.
#pragma once

#include <cstddef>
#include <map>
#include <span>
#include <string>
#include <vector>

#include "workbench/catalogue/report_dimensions.h"
#include "workbench/tsql/values/value.h"

namespace quillon::workbench {

// A value of a dimension; null is none. Blank texts count as none.
struct PivotKey {
  tsql::Value code;
  tsql::Value name;

  bool isNone() const { return tsql::isNull(code) && tsql::isNull(name); }
};

// By code, then by name, as the account sorts them; what has none comes last.
struct PivotKeyOrder {
  bool operator()(const PivotKey& one, const PivotKey& other) const;
};

class PivotAxis {
 public:
  // Node 0 is the whole; a node lies below the value of the dimension before.
  struct Node {
    std::size_t parent = 0;
    std::size_t depth = 0;  // 0 of the whole; its dimension is the one before
    PivotKey key = {};
    std::map<PivotKey, std::size_t, PivotKeyOrder> children = {};
  };
  static constexpr std::size_t whole = 0;

  explicit PivotAxis(std::vector<ReportDimension> dimensions) : dimensions_(std::move(dimensions)), nodes_(1) {}

  const std::vector<ReportDimension>& dimensions() const { return dimensions_; }
  // The node of a value for each dimension, which is made where there is none.
  std::size_t leaf(std::span<const PivotKey> path);
  const Node& node(std::size_t number) const { return nodes_[number]; }
  std::size_t nodeCount() const { return nodes_.size(); }
  bool isLeaf(std::size_t number) const { return nodes_[number].depth == dimensions_.size(); }
  // From the outermost value to that of the node itself; none of the whole.
  std::vector<std::size_t> path(std::size_t number) const;
  // Where the state stands among the dimensions, counted from 1; 0 where it does not.
  std::size_t stateDepth() const;

 private:
  std::vector<ReportDimension> dimensions_;
  std::vector<Node> nodes_;
};

// "01 原料库" for a reader.
std::string pivotLabel(const ReportDimension& dimension, const PivotKey& key, Language language);

}  // namespace quillon::workbench
