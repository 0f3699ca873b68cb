#include "reports/sfc_item/sfc_item.h"

#include <optional>
#include <utility>

#include "frame/pub_mod.h"
#include "frame/report_session.h"
#include "frame/text.h"
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
  session.execute(handOnCostItems(build));
}

// The period whose expense names the opening rows carry: the start period of the cost accounting when that began in
// the report year, else the year's first month.
std::string expensePeriod(const Build& build, Session& session) {
  const auto rows =
      session.query(queryExpensePeriod(build),
                    {.cursorType = CursorType::fixed, .lockType = LockType::readOnly, .cursorLocation = {}});
  std::string period = rows->eof() ? build.conditions.year + "01" : rows->text(0).value_or("");
  rows->close();
  return period;
}

void fillByExpenseType(const Build& build, Module& module, Session& session) {
  const std::string period = expensePeriod(build, session);
  const std::string opening = module.resources().text(openingKey);
  const std::string language = module.login->languageRegion();
  session.execute(insertExpenseOpenings(build, opening, language, period));
  session.execute(insertExpenseMovements(build, language));
  if (!build.conditions.opening.empty()) session.execute(turnIntoExpenseOpenings(build));
  session.execute(clearExpenseStates(build));
}

void buildResult(Filter& filter, const std::string& resultTable, Module& module, Session& session) {
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
  if (groupIndex) session.execute(dropGroupIndex(*groupIndex));
  session.execute(build.detail.dropAfterBuild());
}

// Runs one step of Execute; a step that fails is passed over.
template <typename Step>
void passOverErrors(Step step) noexcept {
  try {
    step();
  } catch (...) {
    // The platform expects Execute to succeed whatever its own objects answer.
    return;
  }
}

}  // namespace

SfcItem::SfcItem(Module& module) : module_(module) {
  module_.namePrefix = workTablePrefix(module_.platform());
}

void SfcItem::getSql(ReportArgument& argument) {
  filter_ = argument.rawFilter();
  openReportSession(module_, argument);
  const std::unique_ptr<DataSource> dataSource = argument.dataSource();
  dataSource->setType(dataSourceTable);
  resultTable_ = dataSource->resultTable();
  if (moveDataDetail().empty()) closeReportSession(module_);
}

std::string SfcItem::moveDataDetail() {
  // Held here, so that neither ends during the build whatever the platform does in between.
  const std::shared_ptr<Filter> filter = filter_;
  const std::shared_ptr<Session> session = module_.session;
  const std::string failed = " ";
  if (!filter || !session || !module_.login) return failed;
  try {
    buildResult(*filter, resultTable_, module_, *session);
    return {};
  } catch (...) {
    // The blank is all that the platform learns; the session stays open and knows what it refused.
    return failed;
  }
}

void SfcItem::execute(ReportArgument& argument) noexcept {
  bool drillThrough = false;
  std::shared_ptr<Login> login;
  std::shared_ptr<DrillThroughHelper> helper;
  passOverErrors([&] { drillThrough = equalIgnoringCase(argument.action(), "Link"); });
  passOverErrors([&] { login = argument.login(); });
  passOverErrors([&] { helper = module_.platform().createDrillThroughHelper(); });
  // The filter object that the helper gives is released at once: a summary report has nothing to open.
  passOverErrors([&] {
    if (login && helper) helper->filterFor(*login, drillThrough);
  });
}

}  // namespace quillon
