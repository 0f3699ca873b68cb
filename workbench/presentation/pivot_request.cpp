#include "workbench/presentation/pivot_request.h"

#include <algorithm>
#include <array>
#include <utility>

#include "frame/text.h"
#include "workbench/messages/pivot.h"
#include "workbench/platform/nearest_name.h"
#include "workbench/platform/resource_texts.h"
#include "workbench/platform/user_error.h"
#include "workbench/presentation/figure_columns.h"

namespace quillon::workbench {

namespace {

struct StateNames {
  std::string_view key;
  std::string_view name;
  Caption caption;
};
constexpr std::array<StateNames, 4> stateNames = {{{openingBalanceKey, "opening", {"期初", "Opening"}},
                                                   {receiptKey, "receipt", {"收入", "Receipt"}},
                                                   {issueKey, "issue", {"发出", "Issue"}},
                                                   {closingBalanceKey, "closing", {"期末", "Closing"}}}};

struct FigureNames {
  PivotFigure figure;
  std::string_view name;
  std::string_view nameOfState;  // behind that of the state
  Caption caption;
  Caption captionOfState;
  std::string_view column;  // as reports name it that have one
};
constexpr std::array<FigureNames, 3> figureNames = {
    {{PivotFigure::quantity, "quantity", "Quantity", quantityColumn, {"数量", " quantity"}, "iQuantity"},
     {PivotFigure::amount, "amount", "Amount", amountColumn, {"金额", " amount"}, "iMoney"},
     {PivotFigure::unitCost, "unitCost", "UnitCost", unitCostColumn, {"单价", " unit cost"}, "iCost"}}};

struct ShareNames {
  PivotShare share;
  std::string_view name;
  std::array<std::string_view, 2> chineseNames;
  Caption caption;  // behind that of the figure
};
constexpr std::array<ShareNames, 3> shareNames = {
    {{PivotShare::row, "row", {"行", "占行"}, {"占行%", ", % of row"}},
     {PivotShare::column, "column", {"列", "占列"}, {"占列%", ", % of column"}},
     {PivotShare::total, "total", {"总计", "占总计"}, {"占总计%", ", % of total"}}}};

// Empty parts are left out, so that an empty text has none.
std::vector<std::string> listed(std::string_view text) {
  std::vector<std::string> result;
  while (true) {
    const std::size_t end = text.find(',');
    if (std::string part = trimmed(text.substr(0, end)); !part.empty()) result.push_back(std::move(part));
    if (end == std::string_view::npos) return result;
    text.remove_prefix(end + 1);
  }
}

bool isCalled(std::string_view written, std::string_view name, std::string_view chinese, std::string_view english) {
  return equalIgnoringCase(written, name) || equalIgnoringCase(written, chinese) || equalIgnoringCase(written, english);
}

PivotMeasure measureOf(const FigureNames& figure, std::optional<std::size_t> state) {
  return {.name = std::string(figure.name),
          .chinese = std::string(figure.caption.chinese),
          .english = std::string(figure.caption.english),
          .figure = figure.figure,
          .state = state};
}

PivotMeasure measureOf(const FigureNames& figure, const StateNames& names, std::size_t state) {
  return {.name = std::string(names.name).append(figure.nameOfState),
          .chinese = std::string(names.caption.chinese).append(figure.captionOfState.chinese),
          .english = std::string(names.caption.english).append(figure.captionOfState.english),
          .figure = figure.figure,
          .state = state};
}

const StateNames& namesOf(const CrossState& state) {
  return *std::ranges::find(stateNames, state.nameKey, &StateNames::key);
}

class Planning {
 public:
  Planning(const Report& report, std::string_view mode, int classGrades)
      : report_(report), mode_(mode), dimensions_(dimensionsOf(report, mode, classGrades)) {}

  PivotPlan plan(const PivotArrangement& asked) {
    if (asked.rows.empty()) throw UserError(messages::pivotWithoutRows());
    if (asked.measures.empty()) throw UserError(messages::pivotWithoutMeasures());
    PivotPlan plan;
    for (const std::string& name : asked.rows)
      plan.rows.push_back(dimension(name));
    for (const std::string& name : asked.columns)
      plan.columns.push_back(dimension(name));
    offered_ = measuresOf(report_, mode_, hasState_);
    for (const std::string& written : asked.measures)
      addMeasures(written, plan.measures);
    for (const SortKey& key : asked.sort)
      plan.sort.push_back(sortKey(key, plan));
    return plan;
  }

 private:
  const ReportDimension& found(const std::string& written) const {
    for (const ReportDimension& each : dimensions_) {
      if (isCalled(written, each.name, each.chinese, each.english)) return each;
    }
    const ReportDimension* found = nullptr;
    for (const ReportDimension& each : dimensions_) {
      const auto isIt = [&written](const std::string& alias) { return equalIgnoringCase(alias, written); };
      if (std::ranges::none_of(each.aliases, isIt)) continue;
      if (found != nullptr) throw UserError(messages::dimensionOfTwo(written, found->name, each.name));
      found = &each;
    }
    if (found != nullptr) return *found;
    std::vector<std::string> names;
    for (const ReportDimension& each : dimensions_)
      names.insert(names.end(), {each.name, each.chinese, each.english});
    throw UserError(messages::noSuchDimension(report_.registration.name, written, suggestion(written, names)));
  }

  const ReportDimension& dimension(const std::string& written) {
    const ReportDimension& dimension = found(written);
    if (std::ranges::find(used_, &dimension) != used_.end()) throw UserError(messages::dimensionTwice(written));
    used_.push_back(&dimension);
    hasState_ = hasState_ || dimension.kind == DimensionKind::state;
    return dimension;
  }

  // Nothing where there is none of the name.
  std::vector<PivotMeasure> named(const std::string& written) const {
    for (const PivotMeasure& each : offered_) {
      if (isCalled(written, each.name, each.chinese, each.english)) return {each};
    }
    for (const FigureNames& figure : figureNames) {
      const bool any = isCalled(written, figure.name, figure.caption.chinese, figure.caption.english) ||
                       equalIgnoringCase(written, figure.column);
      if (any) return ofAllStates(figure);
    }
    return ofOnlyState(written);
  }

  std::vector<PivotMeasure> ofAllStates(const FigureNames& figure) const {
    std::vector<PivotMeasure> all;
    for (const PivotMeasure& each : offered_) {
      if (each.figure == figure.figure && each.state.has_value() != hasState_) all.push_back(each);
    }
    return all;
  }

  // Where there is but one state, its name may be said or not.
  std::vector<PivotMeasure> ofOnlyState(const std::string& written) const {
    const std::vector<CrossState> states = pivotStates(report_, mode_);
    if (states.size() != 1) return {};
    for (const FigureNames& figure : figureNames) {
      const PivotMeasure whole = measureOf(figure, namesOf(states.front()), 0);
      if (isCalled(written, whole.name, whole.chinese, whole.english)) return ofAllStates(figure);
    }
    return {};
  }

  std::vector<PivotMeasure> measures(const std::string& written) const {
    constexpr std::string_view wideColon = "：";
    std::size_t colon = written.find(':'), length = 1;
    if (colon == std::string::npos) {
      colon = written.find(wideColon);
      length = wideColon.size();
    }
    const std::string figure = trimmed(std::string_view(written).substr(0, colon));
    std::vector<PivotMeasure> found = named(figure);
    if (found.empty()) {
      std::vector<std::string> names;
      for (const PivotMeasure& each : offered_)
        names.insert(names.end(), {each.name, each.chinese, each.english});
      throw UserError(messages::noSuchMeasure(report_.registration.name, figure, suggestion(figure, names)));
    }
    if (colon == std::string::npos) return found;
    std::string share = trimmed(std::string_view(written).substr(colon + length));
    if (share.ends_with('%')) share.pop_back();
    const auto names = std::ranges::find_if(shareNames, [&share](const ShareNames& each) {
      return isCalled(share, each.name, each.chineseNames[0], each.chineseNames[1]);
    });
    if (names == shareNames.end()) throw UserError(messages::noSuchShare(figure, share));
    if (found.front().figure == PivotFigure::unitCost) throw UserError(messages::shareOfUnitCost(written));
    for (PivotMeasure& each : found) {
      each.name.append(":").append(names->name);
      each.chinese += names->caption.chinese;
      each.english += names->caption.english;
      each.share = names->share;
    }
    return found;
  }

  void addMeasures(const std::string& written, std::vector<PivotMeasure>& all) const {
    for (PivotMeasure& each : measures(written)) {
      if (std::ranges::find(all, each.name, &PivotMeasure::name) != all.end())
        throw UserError(messages::measureTwice(written));
      all.push_back(std::move(each));
    }
  }

  PivotSortKey sortKey(const SortKey& key, const PivotPlan& plan) const {
    for (std::size_t i = 0; i < used_.size(); ++i) {
      const ReportDimension& each = *used_[i];
      const auto isIt = [&key](const std::string& alias) { return equalIgnoringCase(alias, key.column); };
      if (isCalled(key.column, each.name, each.chinese, each.english) || std::ranges::any_of(each.aliases, isIt))
        return {.dimension = i, .descending = key.descending};
    }
    // A share orders as its figure does; of several states, the first that is shown counts.
    const std::string figure = trimmed(std::string_view(key.column).substr(0, key.column.find(':')));
    const std::vector<PivotMeasure> measures = named(figure);
    const auto shown = std::ranges::find_if(measures, [&plan](const PivotMeasure& each) {
      return std::ranges::any_of(plan.measures, [&each](const PivotMeasure& measure) {
        return measure.figure == each.figure && measure.state == each.state;
      });
    });
    const bool stateAcross =
        std::ranges::find(plan.columns, DimensionKind::state, &ReportDimension::kind) != plan.columns.end();
    if (stateAcross && !measures.empty() && !measures.front().state)
      throw UserError(messages::noTotalToSortBy(key.column));
    if (shown != measures.end()) return {.measure = *shown, .descending = key.descending};
    if (!measures.empty()) return {.measure = measures.front(), .descending = key.descending};
    std::vector<std::string> names;
    for (const ReportDimension* each : used_)
      names.insert(names.end(), {each->name, each->chinese, each->english});
    for (const PivotMeasure& each : offered_)
      names.insert(names.end(), {each.name, each.chinese, each.english});
    throw UserError(messages::noSuchPivotSort(key.column, suggestion(key.column, names)));
  }

  const Report& report_;
  std::string_view mode_;
  std::vector<ReportDimension> dimensions_;
  std::vector<const ReportDimension*> used_;  // of rows, then of columns
  bool hasState_ = false;
  std::vector<PivotMeasure> offered_;
};

}  // namespace

PivotArrangement parsePivot(std::string_view text, std::span<const std::string> sort) {
  const std::size_t first = text.find('/'), last = text.rfind('/');
  if (first == std::string_view::npos || std::ranges::count(text, '/') != 2) throw UserError(messages::noPivot(text));
  PivotArrangement asked{.rows = listed(text.substr(0, first)),
                         .columns = listed(text.substr(first + 1, last - first - 1)),
                         .measures = listed(text.substr(last + 1))};
  for (const std::string& list : sort) {
    for (std::string& key : listed(list)) {
      const bool descending = key.starts_with('-');
      asked.sort.push_back({descending ? key.substr(1) : std::move(key), descending});
    }
  }
  return asked;
}

std::vector<PivotMeasure> measuresOf(const Report& report, std::string_view mode, bool ownState) {
  std::vector<PivotMeasure> measures;
  const std::vector<CrossState> states = pivotStates(report, mode);
  if (ownState || states.size() == 1) {
    for (const FigureNames& figure : figureNames)
      measures.push_back(measureOf(figure, ownState ? std::nullopt : std::optional<std::size_t>(0)));
  }
  for (std::size_t state = 0; state < states.size() && states.size() > 1; ++state) {
    for (const FigureNames& figure : figureNames)
      measures.push_back(measureOf(figure, namesOf(states[state]), state));
  }
  return measures;
}

PivotPlan planPivot(const Report& report, std::string_view mode, int classGrades, const PivotArrangement& asked) {
  return Planning(report, mode, classGrades).plan(asked);
}

}  // namespace quillon::workbench
