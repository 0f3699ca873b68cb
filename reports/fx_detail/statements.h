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

#include "frame/work_table.h"
#include "reports/fx_detail/period_range.h"

namespace quillon::fx_detail {

// What the costs of an inventory are kept by, beside the inventory itself.
enum class CostsKeptBy { inventoryAlone, department, warehouse };

// What the statements of one run have in common. Values of the filter are pasted into them unescaped.
struct Build {
  std::string inventoryCode;
  CostsKeptBy costsKeptBy = CostsKeptBy::inventoryAlone;
  // Code of the chosen department or warehouse, by `costsKeptBy`. The statements ask for it also when the filter names
  // none and it is empty.
  std::string placeCode;
  std::string inventoryTable;
  std::string warehouseTable;
  std::string resultTable;
  TemporaryTable main;
  TemporaryTable second;
  int quantityDecimals = 0;
  int unitCostDecimals = 0;
  DetailPeriodRange range;
  // The condition on the ledger lines beside place and inventory: " and " and a condition, any number of times.
  std::string condition;
  // Localized digests of the opening balances and, behind the month's number, of the month balances.
  std::string openingText;
  std::string monthText;
};

// The main work table, empty.
std::string createMainTable(const Build& build);

// Opening balances from the ledger: per cost item, then the inventory's own on the same rows.
std::string insertOpenings(const Build& build);
std::string setInventoryOpenings(const Build& build);

// Opening balances when cost items started after the account: those that were entered then, and the movements since.
// Collected in the second work table; per cost item, then, in a new second table, for the inventory as a whole.
std::string collectEnteredOpenings(const Build& build);
std::string collectMovementsSince(const Build& build);
std::string insertCollectedOpenings(const Build& build);
std::string collectEnteredInventoryOpenings(const Build& build);
std::string collectInventoryMovementsSince(const Build& build);
std::string setCollectedInventoryOpenings(const Build& build);

std::string insertMovements(const Build& build);

// Balances at the end of `month`, 1 to 12: per cost item, what was entered as opening balance when cost items started
// after the account, then the inventory's own.
std::string insertMonthBalances(const Build& build, int month);
std::string addEnteredOpenings(const Build& build, int month);
std::string setInventoryMonthBalances(const Build& build, int month);

std::string setUnitCosts(const Build& build);

// The rows in the order of the ledger, numbered, in the second work table; then the texts of vouchers.
std::string numberRows(const Build& build);
std::string setLedgerVoucherTexts(const Build& build);
std::string nameSalesIssues(const Build& build);

// The result table. Rows are numbered from 2; the rows of one ledger line then share the first one's number.
std::string createResult(const Build& build);
std::string shareRowNumbers(const Build& build);
// The result table without rows, from the empty main work table.
std::string createEmptyResult(const Build& build);

}  // namespace quillon::fx_detail
