#include "workbench/presentation/state_sums.h"

#include <algorithm>
#include <array>
#include <string_view>
#include <utility>

#include "workbench/platform/resource_texts.h"
#include "workbench/presentation/report_document.h"

namespace quillon::workbench {

namespace {

constexpr std::array<std::pair<std::string_view, std::string_view>, 4> columnPrefixes = {
    {{openingBalanceKey, "opening"}, {receiptKey, "receipt"}, {issueKey, "issue"}, {closingBalanceKey, "closing"}}};

constexpr Caption quantityHeading{"数量", "Quantity"};
constexpr Caption amountHeading{"金额", "Amount"};

ViewColumn measure(const CrossState& state, std::string_view suffix, const Caption& heading, ColumnRole role) {
  const auto prefix =
      std::ranges::find(columnPrefixes, state.nameKey, &std::pair<std::string_view, std::string_view>::first);
  return {.column = {.name = std::string(prefix->second).append(suffix),
                     .chinese = std::string(heading.chinese),
                     .english = std::string(heading.english),
                     .role = role},
          .groupChinese = resourceText(state.nameKey, Language::chinese),
          .groupEnglish = resourceText(state.nameKey, Language::english)};
}

}  // namespace

std::vector<ViewColumn> stateColumns(std::span<const CrossState> states) {
  std::vector<ViewColumn> columns;
  for (const CrossState& state : states) {
    columns.push_back(measure(state, "Quantity", quantityHeading, ColumnRole::quantity));
    columns.push_back(measure(state, "Amount", amountHeading, ColumnRole::money));
  }
  return columns;
}

std::string stateSums(std::span<const CrossState> states) {
  std::string list;
  for (const CrossState& state : states)
    list += ", Sum(" + state.quantity + "), Sum(" + state.money + ")";
  return list;
}

}  // namespace quillon::workbench
