#include "reports/sfc_item/sfc_item.h"

#include <optional>
#include <utility>

#include "reports/sfc_item/filter_translation.h"
#include "reports/sfc_item/statements.h"

namespace quillon {

namespace {

using namespace sfc_item;

constexpr std::string_view detailSuffix = "IA_SFC_Item_DetailTmp";
constexpr std::string_view groupIndexSuffix = "IA_SFC_IX_GroupIndex";

// Resource keys of the state texts.
constexpr std::string_view openingKey = "Mirel.IA.CHHSSQL.00182";
constexpr std::string_view receiptKey = "Mirel.IA.Mirel71.00269";
constexpr std::string_view issueKey = "Mirel.IA.Mirel71.00270";
constexpr std::string_view closingKey = "Mirel.IA.Mirel71.00271";

void fillByCostItem(const Build& build, Module& module, Session& session) {
  ResourceService& resources = module.resources();
  const StateTexts states{.opening = resources.text(openingKey),
                          .receipt = resources.text(receiptKey),
                          .issue = resources.text(issueKey),
                          .closing = resources.text(closingKey)};
  session.execute(insertCostItemOpenings(build, states));
  session.execute(insertCostItemMovements(build, states));
  session.execute(insertLineOpenings(build, states));
  session.execute(insertLineMovements(build, states));
  if (!build.conditions.opening.empty()) session.execute(turnIntoOpenings(build, states));
  session.execute(insertClosings(build, states));
  session.execute(copyCostItemsToWholeLines(build));
}

// The period whose expense names the opening rows carry: the start period of the cost accounting when that began in
// the report year, else the year's first month.
std::string expensePeriod(const Build& build, Session& session) {
  return firstField(session, queryExpensePeriod(build), readOnlyLookup).value_or(build.conditions.year + "01");
}

void fillByExpenseType(const Build& build, Module& module, Session& session) {
  const std::string period = expensePeriod(build, session);
  const std::string opening = module.resources().text(openingKey);
  const std::string language = module.loginInUse().languageRegion();
  session.execute(insertExpenseOpenings(build, opening, language, period));
  session.execute(insertExpenseMovements(build, language));
  if (!build.conditions.opening.empty()) session.execute(turnIntoExpenseOpenings(build));
  session.execute(clearExpenseStates(build));
}

}  // namespace

void SfcItem::build(Filter& filter, const std::string& resultTable, Module& module, Session& session) {
  const FilterConditions conditions = translateFilter(filter, module);
  const Build build{.conditions = conditions,
                    .mode = reportMode(conditions.mode),
                    .resultTable = resultTable,
                    .detail = WorkTable::named(module, detailSuffix)};

  session.execute(build.detail.dropBeforeCreating());
  session.execute(createResultTable(build));
  session.execute(createDetailTable(build));
  if (build.mode == ReportMode::expenseType) {
    fillByExpenseType(build, module, session);
  } else {
    fillByCostItem(build, module, session);
  }

  std::optional<WorkTable> groupIndex;
  if (build.mode != ReportMode::expenseType && !conditions.having.empty()) {
    groupIndex = WorkTable::named(module, groupIndexSuffix);
    session.execute(groupIndex->dropBeforeCreating());
    session.execute(createGroupIndex(build, *groupIndex));
  }
  session.execute(insertReportRows(build, groupIndex ? &*groupIndex : nullptr));
  session.execute(deleteRowsWithoutCostItem(build));
  if (groupIndex) session.execute(groupIndex->dropByBareName());
  session.execute(build.detail.dropAfterBuild());
}

}  // namespace quillon
