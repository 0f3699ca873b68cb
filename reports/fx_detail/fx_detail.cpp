#include "reports/fx_detail/fx_detail.h"

#include <string_view>
#include <utility>

#include "frame/account_options.h"
#include "frame/business_types.h"
#include "frame/display_names.h"
#include "frame/inventory_checks.h"
#include "frame/pub_mod.h"
#include "frame/report_session.h"
#include "frame/statement.h"
#include "reports/fx_detail/period_range.h"
#include "reports/fx_detail/statements.h"

namespace quillon {

namespace {

using namespace fx_detail;

constexpr std::string_view openingKey = "Mirel.IA.CHHSSQL.05360";
constexpr std::string_view monthKey = "Mirel.IA.Mirel71.00298";

// Opening differences, and direct shipments, which never were in stock, do not belong to an inventory's ledger.
std::string ledgerLinesOnly() {
  return concatenated({" and Base.cvoutype<>N'33' and isnull(Base.cBustype,N'') not in (N'", directShipmentSale, "',N'",
                       directShipmentPurchase, "') "});
}

CostsKeptBy costsKeptBy(std::string_view costingBasis) {
  if (costingBasis == valuationByDepartment) return CostsKeptBy::department;
  return costingBasis == valuationByWarehouse ? CostsKeptBy::warehouse : CostsKeptBy::inventoryAlone;
}

// The filter's conditions on batch and free items, as far as the inventory is checked for them.
std::string buildFreeItemCondition(Filter& filter, const Build& build, Session& session) {
  const InventoryChecks checks = readInventoryChecks(
      *session.query(inventoryChecksQuery(build.inventoryTable, "inventory", build.inventoryCode),
                     {.cursorType = CursorType::fixed, .lockType = LockType::optimistic, .cursorLocation = {}}));
  std::string condition = " and 1=1";
  const auto add = [&](const std::string& item) {
    const std::string text = filter.item(item)->sqlText();
    if (!text.empty()) condition += " and " + text;
  };
  for (std::size_t i = 0; i < freeItemCount; ++i) {
    if (checks.freeItems.at(i)) add("cFree" + std::to_string(i + 1));
  }
  if (checks.batch) add("cBatchIA");
  return condition;
}

void insertOpeningBalances(const Build& build, Session& session) {
  if (!build.range.splitOpening) {
    session.execute(insertOpenings(build));
    session.execute(setInventoryOpenings(build));
    return;
  }
  session.execute(build.second.drop());
  session.execute(collectEnteredOpenings(build));
  session.execute(collectMovementsSince(build));
  session.execute(insertCollectedOpenings(build));

  session.execute(build.second.drop());
  session.execute(collectEnteredInventoryOpenings(build));
  session.execute(collectInventoryMovementsSince(build));
  session.execute(setCollectedInventoryOpenings(build));
}

void insertMonthBalances(const Build& build, Session& session) {
  for (int month = build.range.startPeriod; month <= build.range.endPeriod; ++month) {
    session.execute(fx_detail::insertMonthBalances(build, month));
    if (build.range.splitOpening) session.execute(addEnteredOpenings(build, month));
    session.execute(setInventoryMonthBalances(build, month));
  }
}

void makeResult(const Build& build, Session& session) {
  session.execute(build.second.drop());
  session.execute(numberRows(build));
  session.execute(setLedgerVoucherTexts(build));
  session.execute(nameVoucherTypes(build.second.name(), "temp.cvoutype"));
  session.execute(nameSalesIssues(build));
  session.execute(createResult(build));
  session.execute(shareRowNumbers(build));
}

}  // namespace

FxDetail::~FxDetail() {
  const bool othersRun = module_.session && module_.session != session_;
  if (session_ && !othersRun) release();
}

void FxDetail::release() {
  module_.session = nullptr;
  module_.releasePublicComponent();
  module_.login = nullptr;
  session_ = nullptr;
}

void FxDetail::getSql(ReportArgument& argument) {
  const std::shared_ptr<Filter> filter = argument.rawFilter();
  session_ = module_.platform().createSession();
  module_.takeSession(session_);
  // Held here, as the callers of reports do it: another run may put its own into the module.
  const std::shared_ptr<Session> session = session_;
  const std::shared_ptr<Login> login = argument.login();
  module_.login = login;
  openSession(*session, *login);
  const OpenEnvironment environment = openInventoryEnvironment(module_.platform(), *argument.filterLogin());
  const std::unique_ptr<DataSource> dataSource = argument.dataSource();
  dataSource->setType(dataSourceTable);
  dataSource->setResultTable(environment.resultTable);
  requireSession(module_, session);
  build(*filter, *environment.options, environment.resultTable, *session);
  requireSession(module_, session);
  closeReportSession(module_);
  release();
}

void FxDetail::build(Filter& filter, AccountOptions& options, const std::string& resultTable, Session& session) {
  std::string inventoryCode = filter.item("cInvCode")->value();
  const std::string departmentCode = filter.item("cDepCode")->value();
  const std::string warehouseCode = filter.item("cWhCode")->value();
  const int quantityDecimals = decimalPlaces(module_, "iStrsQuanDecDgt");
  const int unitCostDecimals = decimalPlaces(module_, "iStrsPriDecDgt");
  const CostsKeptBy basis = costsKeptBy(options.costingBasis());
  Build build{.inventoryCode = std::move(inventoryCode),
              .costsKeptBy = basis,
              .placeCode = basis == CostsKeptBy::department ? departmentCode : warehouseCode,
              .inventoryTable = options.inventoryTable(),
              .warehouseTable = options.warehouseTable(),
              .resultTable = resultTable,
              .main = TemporaryTable::named(module_, "_FXDetail_"),
              .second = TemporaryTable::named(module_, "_FXDetail2_"),
              .quantityDecimals = quantityDecimals,
              .unitCostDecimals = unitCostDecimals,
              .range = {},
              .condition = {},
              .openingText = {},
              .monthText = {}};

  session.execute(build.main.drop());
  session.execute(createMainTable(build));
  // Asked for also when there is nothing to report.
  build.condition = buildFreeItemCondition(filter, build, session);
  build.range = resolvePeriodRange(filter, module_);
  if (build.range.ok) {
    build.condition += ledgerLinesOnly();
    build.openingText = module_.resources().text(openingKey);
    build.monthText = module_.resources().text(monthKey);
    insertOpeningBalances(build, session);
    session.execute(insertMovements(build));
    insertMonthBalances(build, session);
    session.execute(setUnitCosts(build));
    makeResult(build, session);
  } else {
    session.execute(createEmptyResult(build));
  }
  session.execute(build.main.drop());
  session.execute(build.second.drop());
}

}  // namespace quillon
