// By what each report's rows can be told apart in a pivot: names that a reader can write, columns that the report has.
#include "workbench/catalogue/report_dimensions.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <set>
#include <string>
#include <vector>

#include "frame/text.h"
#include "workbench/catalogue/catalogue.h"

namespace quillon::workbench {
namespace {

using testing::AllOf;
using testing::Contains;
using testing::Not;

constexpr int grades = 3;

std::vector<std::string> captions(const std::string& report, std::string_view mode, Language language) {
  std::vector<std::string> texts;
  for (const ReportDimension& dimension : dimensionsOf(reportNamed(report), mode, grades))
    texts.push_back(dimension.caption(language));
  return texts;
}

const ReportDimension& dimension(const std::vector<ReportDimension>& all, std::string_view name) {
  const auto found = std::ranges::find(all, name, &ReportDimension::name);
  if (found == all.end()) throw std::out_of_range(std::string(name));
  return *found;
}

class ReportDimensions : public testing::TestWithParam<std::string> {
 protected:
  static const ReportColumn* column(std::string_view name) {
    const std::vector<ReportColumn>& columns = reportNamed(GetParam()).columns;
    const auto found =
        std::ranges::find_if(columns, [name](const ReportColumn& each) { return equalIgnoringCase(each.name, name); });
    return found == columns.end() ? nullptr : &*found;
  }
};

TEST_P(ReportDimensions, AreWrittenInOneWayEachAndWithoutTheSignsOfAPivot) {
  for (const char* mode : {"0", "1", "2"}) {
    std::set<std::string> names, chinese, english;
    for (const ReportDimension& each : dimensionsOf(reportNamed(GetParam()), mode, grades)) {
      EXPECT_TRUE(names.insert(each.name).second) << each.name;
      EXPECT_TRUE(chinese.insert(each.chinese).second) << each.chinese;
      EXPECT_TRUE(english.insert(each.english).second) << each.english;
      EXPECT_EQ((each.chinese + each.english).find_first_of("/,:"), std::string::npos) << each.english;
    }
  }
}

TEST_P(ReportDimensions, AreOfColumnsThatTheReportHas) {
  for (const ReportDimension& each : dimensionsOf(reportNamed(GetParam()), "1", grades)) {
    EXPECT_NE(column(each.column), nullptr) << each.column;
    EXPECT_TRUE(each.nameColumn.empty() || column(each.nameColumn) != nullptr) << each.nameColumn;
    EXPECT_TRUE(each.nameColumn.empty() || each.lookup == nullptr) << each.name << " is named twice";
  }
  for (const CodeAndName& pair : reportNamed(GetParam()).codeNames) {
    EXPECT_NE(column(pair.code), nullptr) << pair.code;
    EXPECT_NE(column(pair.name), nullptr) << pair.name;
  }
  for (const CodeNames& each : reportNamed(GetParam()).codesNamedElsewhere)
    EXPECT_NE(column(each.column), nullptr) << each.column;
}

TEST_P(ReportDimensions, TakeEveryColumnInThatIsNoNumberAndNoKey) {
  const std::vector<ReportDimension> all = dimensionsOf(reportNamed(GetParam()), "1", grades);
  for (const ReportColumn& each : reportNamed(GetParam()).columns) {
    const bool offered = std::ranges::any_of(all, [&each](const ReportDimension& dimension) {
      return equalIgnoringCase(dimension.column, each.name) || equalIgnoringCase(dimension.nameColumn, each.name);
    });
    const bool expected = !isNumber(each.role) && each.role != ColumnRole::internal;
    EXPECT_TRUE(offered || !expected) << each.name;
  }
}

INSTANTIATE_TEST_SUITE_P(All, ReportDimensions, testing::Values("sfc-item", "outsum-item", "fx-wt", "fx-detail"),
                         [](const auto& info) {
                           std::string name = info.param;
                           std::erase(name, '-');
                           return name;
                         });

TEST(Dimensions, JoinACodeWithItsName) {
  const std::vector<ReportDimension> all = dimensionsOf(reportNamed("sfc-item"), "1", grades);
  const ReportDimension& warehouse = dimension(all, "cWhCode");
  EXPECT_EQ(warehouse.chinese, "仓库");
  EXPECT_EQ(warehouse.english, "Warehouse");
  EXPECT_EQ(warehouse.nameColumn, "cWhName");
  EXPECT_THAT(warehouse.aliases, AllOf(Contains("cWhName"), Contains("仓库编码"), Contains("Warehouse code")));
  EXPECT_THAT(captions("sfc-item", "1", Language::chinese), Not(Contains("仓库编码")));
}

TEST(Dimensions, CallACodeByWhatALookupNames) {
  const std::vector<ReportDimension> all = dimensionsOf(reportNamed("fx-wt"), "", grades);
  EXPECT_EQ(dimension(all, "cVouType").chinese, "单据类型");
  EXPECT_EQ(dimension(all, "cVouType").english, "Voucher type");
  EXPECT_EQ(dimension(all, "cVouType").lookup, &voucherTypes);
  EXPECT_THAT(dimension(all, "cVouType").aliases, Contains("单据类型编码"));
}

TEST(Dimensions, HaveMonthsAndTheClassesOfEachGrade) {
  EXPECT_THAT(captions("outsum-item", "1", Language::english),
              AllOf(Contains("Month"), Contains("Document month"), Contains("Cost-item class grade 1"),
                    Contains("Cost-item class grade 3"), Not(Contains("Cost-item class grade 4"))));
  EXPECT_THAT(captions("fx-detail", "", Language::chinese), AllOf(Contains("月份"), Not(Contains("单据月份"))));
}

TEST(Dimensions, HaveTheStateWhereEachRowIsOne) {
  EXPECT_THAT(captions("sfc-item", "0", Language::english), Contains("State"));
  EXPECT_THAT(captions("sfc-item", "2", Language::english), Not(Contains("State")));
  EXPECT_THAT(captions("outsum-item", "1", Language::english), Not(Contains("State")));
}

}  // namespace
}  // namespace quillon::workbench
