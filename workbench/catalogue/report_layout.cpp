#include "workbench/catalogue/report_layout.h"

#include <array>
#include <stdexcept>

#include "workbench/platform/resource_texts.h"

namespace quillon::workbench {

namespace {

std::string orZero(std::string_view column) {
  return "IsNull(" + std::string(column) + ", 0)";
}

// By cost item or class, a row has one state, numbered 1 to 4, and its quantity and money are that state's. By expense
// item it has none, but a pair of columns for each.
std::vector<CrossState> sfcItemStates(std::string_view mode) {
  struct State {
    std::string_view nameKey;
    std::string_view quantity;
    std::string_view money;
  };
  static constexpr std::array states = {
      State{openingBalanceKey, "iQcQuantity", "iQcMoney"}, State{receiptKey, "iInQuantity", "iInMoney"},
      State{issueKey, "iOutQuantity", "iOutMoney"}, State{closingBalanceKey, "iQmQuantity", "iQmMoney"}};
  std::vector<CrossState> result;
  for (const State& state : states) {
    const std::string number = std::to_string(result.size() + 1);
    const auto ofState = [&number](std::string_view column) {
      return "Case When iState = " + number + " Then " + orZero(column) + " Else 0 End";
    };
    if (mode == "2") {
      result.push_back({state.nameKey, orZero(state.quantity), orZero(state.money)});
    } else {
      result.push_back({state.nameKey, ofState("iQuantity"), ofState("iMoney")});
    }
  }
  return result;
}

// Every row is an issue.
std::vector<CrossState> outsumItemStates(std::string_view) {
  return {{issueKey, orZero("iQuantity"), orZero("iMoney")}};
}

// A row is a part of a receipt or of an issue.
std::vector<CrossState> fxWtStates(std::string_view) {
  return {{receiptKey, orZero("iItemInQuantity"), orZero("iIteminPrice")},
          {issueKey, orZero("iItemoutQuantity"), orZero("iItemOutPrice")}};
}

}  // namespace

const ReportLayout& layoutOf(std::string_view report) {
  static const ReportLayout sfcItem = {sfcItemColumns(), sfcItemStates};
  static const ReportLayout outsumItem = {outsumItemColumns(), outsumItemStates};
  static const ReportLayout fxDetail = {fxDetailColumns(), nullptr, true};
  static const ReportLayout fxWt = {.columns = fxWtColumns(), .states = fxWtStates, .order = orderByLine};
  if (report == "fx-detail") return fxDetail;
  if (report == "sfc-item") return sfcItem;
  if (report == "outsum-item") return outsumItem;
  if (report == "fx-wt") return fxWt;
  throw std::invalid_argument("the report " + std::string(report) + " has no layout");
}

}  // namespace quillon::workbench
