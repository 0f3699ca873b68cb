#include "reports/fx_wt/fx_wt.h"

#include <string_view>

#include "frame/automation_error.h"
#include "frame/display_names.h"
#include "frame/pub_mod.h"
#include "frame/report_session.h"
#include "reports/fx_wt/filter_translation.h"
#include "reports/fx_wt/statements.h"
#include "reports/fx_wt/voucher_types.h"

namespace quillon {

namespace {

using namespace fx_wt;

constexpr std::string_view workSuffix = "FXWtTmp";

// The summary reports set the prefix of work-table names when they are created; this report may be the first to need it.
WorkTable workTable(Module& module) {
  if (module.namePrefix.empty()) module.namePrefix = workTablePrefix(module.platform());
  return WorkTable::named(module, workSuffix);
}

// The condition on the ledger lines: the filter's, and nothing from before inventory accounting began.
std::string lineCondition(Filter& filter, Module& module) {
  const FilterConditions conditions = translateFilter(filter);
  const std::string voucherTypes = voucherTypeCondition(conditions.voucherTypes);
  std::string condition = conditions.where + " And base.dKeepDate>='" +
                          module.publicComponent().accountInformation("IA", "dIAFirstDate", module.sessionInUse()) +
                          "'";
  if (!voucherTypes.empty()) condition += " and " + voucherTypes;
  return condition;
}

}  // namespace

void FxWt::getSql(ReportArgument& argument) {
  filter_ = argument.rawFilter();
  const std::shared_ptr<Session> session = openReportSession(module_, argument);
  const std::unique_ptr<DataSource> dataSource = argument.dataSource();
  dataSource->setType(dataSourceTable);
  resultTable_ = dataSource->resultTable();
  language_ = argument.languageId();
  requireSession(module_, session);
  moveDataDetail();
  requireSession(module_, session);
  closeReportSession(module_);
}

std::string FxWt::moveDataDetail() {
  // Held here, so that neither ends during the build whatever the platform does in between.
  const std::shared_ptr<Filter> filter = filter_;
  const std::shared_ptr<Session> session = module_.session;
  if (!filter || !session) {
    throw AutomationError(hresult::unexpected, "Quillon.clsFXWt",
                          "The report has no filter or no connection to the account yet; call GETSQL first.");
  }
  PublicComponent& component = module_.publicComponent();
  std::string condition = lineCondition(*filter, module_);
  // The work table takes its decimal places from the columns of the fill.
  const Build build{.condition = std::move(condition),
                    .resultTable = resultTable_,
                    .language = language_,
                    .quantityDecimals = decimalPlaces(module_, "iStrsQuanDecDgt"),
                    .unitCostDecimals = decimalPlaces(module_, "iStrsPriDecDgt"),
                    .work = workTable(module_)};
  session->execute(build.work.dropBeforeCreating());
  session->execute(createWorkTable(build));
  // Read as the platform expects; direct sales are treated like any other line.
  component.accountInformation("IA", "bZYXS", *session);
  session->execute(insertLines(build));
  session->execute(nameBusinessTypes(build.work.reference()));
  session->execute(createResult(build));
  session->execute(build.work.dropAfterBuild());
  return {};
}

}  // namespace quillon
