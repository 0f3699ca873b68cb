// The company behind the sample account: its masters, its cost items and how each inventory is made up of them.
#pragma once

#include <array>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "workbench/account/sample.h"
#include "workbench/account/sample_random.h"
#include "workbench/tsql/engine/engine.h"

namespace quillon::account {

inline constexpr std::size_t freeItemCount = 10;

enum class Category { rawMaterial, purchasedPart, semiFinished, finished, packaging, consumable };

struct NamedCode {
  std::string_view code;
  std::string_view name;
};

// A warehouse belongs to one department, and no two to the same: what is kept apart by warehouse is kept apart by
// department too.
struct Warehouse {
  NamedCode master;
  std::string_view department;
};

struct WorkCentre {
  std::string_view code;
  std::string_view name;
  std::string_view department;
};

// One cost item of an inventory, by one of its details.
struct CostPart {
  int costItem = 0;  // Ca_FxDef.iFxID
  int detail = 0;    // Ca_FxMapExpDID.iFxDID
  int quantityWeight = 0;
  int amountWeight = 0;
};

struct InventoryItem {
  std::string code;
  std::string name;
  Category category{};
  bool wholeUnits = false;                             // kept in whole units
  bool batches = false;                                // kept by batch
  std::array<bool, freeItemCount> checkedFreeItems{};  // kept by free items 1 to 10
  std::int64_t unitPrice = 0;                          // cents a unit, about which prices move
  std::int64_t targetStock = 0;                        // hundredths of a unit
  std::vector<CostPart> parts;                         // empty: not broken down by cost item
};

struct Company {
  std::vector<InventoryItem> items;
};

// The indexes in warehouses() of an item's main and second warehouse; consumables have no second one (-1).
int mainWarehouse(Category category);
int secondWarehouse(Category category);

const std::vector<Warehouse>& warehouses();
const std::vector<NamedCode>& departments();
const std::vector<WorkCentre>& workCentres();
const std::vector<NamedCode>& customers();
const std::vector<NamedCode>& vendors();
const std::vector<NamedCode>& persons();
const std::vector<NamedCode>& users();
const std::vector<NamedCode>& projects();
const std::vector<NamedCode>& researchTopics();
// The values of free item `number` (0 to 9).
const std::array<std::string_view, 4>& freeItemValues(std::size_t number);

// Makes up the company for the options: the more ledger lines, the more inventories, up to 12,000.
// Throws nothing of its own.
Company makeCompany(const SampleOptions& options, Random& random);

// Writes every table but the ledgers, the general-ledger vouchers and the period states.
void writeMasters(tsql::Connection& connection, const Company& company, const SampleOptions& options);

}  // namespace quillon::account
