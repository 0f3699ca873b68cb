#include "workbench/catalogue/report_dimensions.h"

#include <algorithm>
#include <array>
#include <utility>

#include "frame/text.h"

namespace quillon::workbench {

namespace {

struct MonthOf {
  std::string_view column;
  std::string_view name;
  Caption caption;
};
constexpr std::array<MonthOf, 2> months = {
    {{"dKeepDate", "month", {"月份", "Month"}}, {"dVouDate", "documentMonth", {"单据月份", "Document month"}}}};

constexpr std::string_view stateName = "cState", stateNumber = "iState";

const ReportColumn* columnNamed(const Report& report, std::string_view name) {
  const auto found = std::ranges::find_if(
      report.columns, [name](const ReportColumn& column) { return equalIgnoringCase(column.name, name); });
  return found == report.columns.end() ? nullptr : &*found;
}

void addAliases(ReportDimension& dimension, const ReportColumn& column) {
  dimension.aliases.insert(dimension.aliases.end(), {column.name, column.chinese, column.english});
}

// A slash parts what stands down from what stands across.
std::string withoutSlash(std::string caption) {
  std::ranges::replace(caption, '/', '-');
  return caption;
}

class Dimensions {
 public:
  Dimensions(const Report& report, std::string_view mode, int classGrades)
      : report_(report), states_(rowsAreStates(report, mode)), classGrades_(classGrades) {}

  std::vector<ReportDimension> all() {
    for (const ReportColumn& column : report_.columns)
      add(column);
    return std::move(dimensions_);
  }

 private:
  void add(const ReportColumn& column) {
    if (column.role == ColumnRole::internal || isNumber(column.role)) return;
    if (equalIgnoringCase(column.name, stateName)) {
      if (states_) addOf(column, *columnNamed(report_, stateNumber), DimensionKind::state);
      return;
    }
    const auto pair = std::ranges::find_if(report_.codeNames, [&column](const CodeAndName& each) {
      return equalIgnoringCase(each.code, column.name) || equalIgnoringCase(each.name, column.name);
    });
    if (pair == report_.codeNames.end()) {
      addOf(column, column, DimensionKind::value);
    } else if (equalIgnoringCase(pair->code, column.name)) {
      addOf(*columnNamed(report_, pair->name), column, DimensionKind::value);
    }
    if (equalIgnoringCase(column.name, costItemCodeColumn)) addClasses(column);
    for (const MonthOf& month : months) {
      if (equalIgnoringCase(column.name, month.column)) addMonth(column, month);
    }
  }

  // A code that a lookup names is called as what it is the code of.
  void nameElsewhere(ReportDimension& dimension) const {
    const auto found = std::ranges::find_if(report_.codesNamedElsewhere, [&dimension](const CodeNames& each) {
      return equalIgnoringCase(each.column, dimension.column);
    });
    if (found == report_.codesNamedElsewhere.end()) return;
    constexpr std::string_view chineseCode = "编码", englishCode = " code";
    if (dimension.chinese.ends_with(chineseCode))
      dimension.chinese.resize(dimension.chinese.size() - chineseCode.size());
    if (dimension.english.ends_with(englishCode))
      dimension.english.resize(dimension.english.size() - englishCode.size());
    dimension.lookup = found->lookup;
  }

  // `code` may be `name`.
  void addOf(const ReportColumn& name, const ReportColumn& code, DimensionKind kind) {
    ReportDimension dimension{.name = kind == DimensionKind::state ? name.name : code.name,
                              .chinese = withoutSlash(name.chinese),
                              .english = withoutSlash(name.english),
                              .kind = kind,
                              .column = code.name,
                              .nameColumn = &name == &code ? std::string() : name.name};
    nameElsewhere(dimension);
    addAliases(dimension, name);
    if (&name != &code && kind != DimensionKind::state) addAliases(dimension, code);
    dimensions_.push_back(std::move(dimension));
  }

  void addMonth(const ReportColumn& date, const MonthOf& month) {
    dimensions_.push_back({.name = std::string(month.name),
                           .chinese = std::string(month.caption.chinese),
                           .english = std::string(month.caption.english),
                           .kind = DimensionKind::month,
                           .column = date.name,
                           .nameColumn = ""});
  }

  void addClasses(const ReportColumn& costItem) {
    const ReportColumn* const ownClass = columnNamed(report_, classCodeColumn);
    for (int grade = 1; grade <= classGrades_; ++grade) {
      const std::string number = std::to_string(grade);
      dimensions_.push_back({.name = "costItemClass" + number,
                             .chinese = "成本项目分类" + number + "级",
                             .english = "Cost-item class grade " + number,
                             .kind = DimensionKind::costItemClass,
                             .column = ownClass != nullptr ? ownClass->name : costItem.name,
                             .nameColumn = "",
                             .grade = grade,
                             .ofClassCodes = ownClass != nullptr});
    }
  }

  const Report& report_;
  bool states_;
  int classGrades_;
  std::vector<ReportDimension> dimensions_;
};

}  // namespace

bool rowsAreStates(const Report& report, std::string_view mode) {
  return report.notInLines != nullptr && !report.notInLines(mode).empty();
}

std::vector<ReportDimension> dimensionsOf(const Report& report, std::string_view mode, int classGrades) {
  return Dimensions(report, mode, classGrades).all();
}

std::vector<CrossState> pivotStates(const Report& report, std::string_view mode) {
  if (report.pivotSource != nullptr) return report.pivotSource->states();
  return report.crossStates != nullptr ? report.crossStates(mode) : std::vector<CrossState>();
}

}  // namespace quillon::workbench
