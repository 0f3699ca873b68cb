// The statements of the detail ledger's build, as texts. Each function gives one statement, ready to be sent.
//
// The build collects three kinds of rows in a main work table (column Datatype): opening balances (0), movements (1)
// and month balances (2), one row per cost item each. A row carries the amounts of its cost item (iItemQuantity,
// iItemPrice) and, beside them, those of the inventory as a whole (iQuantity, iPrice). A second work table assembles
// opening balances and, at the end, numbers the rows.
//
// In the ledger's tables iainPrice, iaoutPrice, iItemInPrice and iItemOutPrice are amounts, iInCost, iOutCost,
// iItemInCost and iItemOutCost unit costs.
#pragma once

#include <string>

#include "reports/fx_detail/period_range.h"

namespace quillon::fx_detail {

// What the statements of one run have in common. Values of the filter are pasted into them unescaped.
struct DetailBuild {
  std::string inventoryCode;
  std::string departmentCode;
  std::string warehouseCode;
  // The costing basis: what the ledger of an inventory is kept apart by. At most one of them is set. Their conditions
  // stand also when the filter names no department or warehouse.
  bool byDepartment = false;
  bool byWarehouse = false;
  std::string inventoryTable;
  std::string warehouseTable;
  std::string resultTable;
  std::string main;
  std::string second;
  int quantityDecimals = 0;
  int unitCostDecimals = 0;
  DetailPeriodRange range;
  // The condition on the ledger lines beside place and inventory: " and " and a condition, any number of times.
  std::string condition;
  // Localized digests of the opening balances and, behind the month's number, of the month balances.
  std::string openingText;
  std::string monthText;
};

std::string dropWorkTable(const std::string& table);

// The main work table, empty.
std::string createMainTable(const DetailBuild& build);

// Opening balances from the ledger: per cost item, then the inventory's own on the same rows.
std::string insertOpenings(const DetailBuild& build);
std::string setInventoryOpenings(const DetailBuild& build);

// Opening balances when cost items started after the account: those that were entered then, and the movements since.
// Collected in the second work table; per cost item, then, in a new second table, for the inventory as a whole.
std::string collectEnteredOpenings(const DetailBuild& build);
std::string collectMovementsSince(const DetailBuild& build);
std::string insertCollectedOpenings(const DetailBuild& build);
std::string collectEnteredInventoryOpenings(const DetailBuild& build);
std::string collectInventoryMovementsSince(const DetailBuild& build);
std::string setCollectedInventoryOpenings(const DetailBuild& build);

std::string insertMovements(const DetailBuild& build);

// Balances at the end of `month`, 1 to 12: per cost item, what was entered as opening balance when cost items started
// after the account, then the inventory's own.
std::string insertMonthBalances(const DetailBuild& build, int month);
std::string addEnteredOpenings(const DetailBuild& build, int month);
std::string setInventoryMonthBalances(const DetailBuild& build, int month);

std::string setUnitCosts(const DetailBuild& build);

// The rows in the order of the ledger, numbered, in the second work table; then the texts of vouchers.
std::string numberRows(const DetailBuild& build);
std::string setLedgerVoucherTexts(const DetailBuild& build);
std::string setVoucherTypeNames(const DetailBuild& build);
std::string nameSalesIssues(const DetailBuild& build);

// The result table. Rows are numbered from 2; the rows of one ledger line then share the first one's number.
std::string createResult(const DetailBuild& build);
std::string shareRowNumbers(const DetailBuild& build);
// The result table without rows, from the empty main work table.
std::string createEmptyResult(const DetailBuild& build);

}  // namespace quillon::fx_detail
