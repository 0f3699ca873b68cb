#include "workbench/desk/layout_forms.h"

#include <string>
#include <utility>
#include <vector>

#include "frame/text.h"
#include "workbench/catalogue/catalogue.h"
#include "workbench/desk/request_body.h"
#include "workbench/platform/user_error.h"

namespace quillon::workbench::desk {

namespace {

// The name of the report's column that `written` means, or else `written`: a layout may have columns of its own.
std::string columnName(const Report& report, const std::string& written) {
  const ReportColumn* captioned = nullptr;
  for (const ReportColumn& column : report.columns) {
    if (equalIgnoringCase(column.name, written)) return column.name;
    if (!equalIgnoringCase(column.chinese, written) && !equalIgnoringCase(column.english, written)) continue;
    if (captioned != nullptr) return written;
    captioned = &column;
  }
  return captioned == nullptr ? written : captioned->name;
}

Json namesOf(const Report& report, const std::vector<std::string>& written) {
  Json names = Json::array();
  for (const std::string& name : written)
    names.push_back(columnName(report, name));
  return names;
}

Json formOfSort(const std::vector<SortKey>& keys) {
  Json form = Json::array();
  for (const SortKey& key : keys)
    form.push_back({{"column", key.column}, {"descending", key.descending}});
  return form;
}

std::vector<SortKey> sortOf(const Report& report, const std::vector<std::string>& written) {
  std::vector<SortKey> keys;
  keys.reserve(written.size());
  for (const std::string& key : written) {
    const bool descending = key.starts_with('-');
    keys.push_back({columnName(report, descending ? key.substr(1) : key), descending});
  }
  return keys;
}

// The figure's name where `written` is a caption of one, with the share behind it.
std::string measureName(const Report& report, std::string_view mode, const std::string& written) {
  const std::string name = written.substr(0, written.find(':'));
  for (const PivotMeasure& measure : measuresOf(report, mode, true)) {
    if (equalIgnoringCase(measure.name, name) || equalIgnoringCase(measure.chinese, name) ||
        equalIgnoringCase(measure.english, name))
      return measure.name + written.substr(name.size());
  }
  return written;
}

Json formOfPivot(const Report& report, const LayoutText& text) {
  PivotArrangement pivot = parsePivot(text.pivot, text.arrangement.sort);
  // Which states and grades there are is the run's affair.
  constexpr std::string_view modeWithAll = "1";
  constexpr int anyGrade = 9;
  const PivotPlan plan = planPivot(report, modeWithAll, anyGrade, pivot);
  const auto take = [&pivot](std::vector<std::string>& written, const std::vector<ReportDimension>& meant) {
    for (std::size_t i = 0; i < written.size(); ++i) {
      for (SortKey& key : pivot.sort) {
        if (equalIgnoringCase(key.column, written[i])) key.column = meant[i].name;
      }
      written[i] = meant[i].name;
    }
  };
  take(pivot.rows, plan.rows);
  take(pivot.columns, plan.columns);
  for (std::string& measure : pivot.measures)
    measure = measureName(report, modeWithAll, measure);
  for (SortKey& key : pivot.sort)
    key.column = measureName(report, modeWithAll, key.column);
  return {
      {"rows", pivot.rows}, {"columns", pivot.columns}, {"measures", pivot.measures}, {"sort", formOfSort(pivot.sort)}};
}

std::vector<std::string> textsOf(const std::vector<SortKey>& keys) {
  std::vector<std::string> texts;
  texts.reserve(keys.size());
  for (const SortKey& key : keys)
    texts.push_back((key.descending ? "-" : "") + key.column);
  return texts;
}

std::string joinedBy(char separator, const std::vector<std::string>& texts) {
  std::string joined;
  for (const std::string& text : texts)
    joined.append(joined.empty() ? 0 : 1, separator).append(text);
  return joined;
}

}  // namespace

Json formOfLayout(const KeptLayout& kept) {
  const Report& report = reportNamed(kept.report);
  const LayoutText& text = kept.text;
  const bool isPivot = !text.pivot.empty();
  std::string layout(layoutName(isPivot ? Layout::pivot : ownLayout(text.layout).value_or(report.layouts.front())));
  return {{"layout", std::move(layout)},
          {"columns", namesOf(report, text.arrangement.columns)},
          {"sort", isPivot ? Json::array() : formOfSort(sortOf(report, text.arrangement.sort))},
          {"groupBy", namesOf(report, text.arrangement.groupBy)},
          {"allColumns", text.allColumns},
          {"details", text.details},
          {"pivot", isPivot ? formOfPivot(report, text) : Json()}};
}

KeptLayout keptLayoutOf(const Json& body, const Report& report) {
  KeptLayout kept{.report = report.registration.name, .text = {}};
  if (const auto pivot = body.find("pivot"); pivot != body.end() && !pivot->is_null()) {
    const PivotArrangement asked = pivotRequestOf(*pivot, Language::chinese).pivot.value();
    kept.text.pivot =
        joinedBy(',', asked.rows) + "/" + joinedBy(',', asked.columns) + "/" + joinedBy(',', asked.measures);
    kept.text.arrangement.sort = textsOf(asked.sort);
  } else {
    const ViewRequest asked = viewRequestOf(body, report, Language::chinese);
    kept.text = {.layout = std::string(layoutName(asked.layout)),
                 .arrangement = {.columns = asked.arrangement.columns,
                                 .sort = textsOf(asked.arrangement.sort),
                                 .groupBy = asked.arrangement.groupBy},
                 .allColumns = asked.allColumns,
                 .details = asked.details};
  }
  try {
    layoutOptionsOf(report, kept.text);
  } catch (const UserError& error) {
    throw ApiError(422, "layout", error.message());
  }
  return kept;
}

}  // namespace quillon::workbench::desk
