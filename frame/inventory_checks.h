// What the stock of an inventory is kept apart by: batch and free items, as far as the inventory master asks for them.
#pragma once

#include <array>
#include <cstddef>
#include <string>
#include <string_view>

#include "frame/session.h"

namespace quillon {

inline constexpr std::size_t freeItemCount = 10;

struct InventoryChecks {
  bool batch = false;                              // bCheckBatch
  std::array<bool, freeItemCount> freeItems = {};  // bCheckFree1 to bCheckFree10
};

// Gives the query for the checks of inventory `code` in `table`, the inventory table as statements name it. The query
// calls the table `alias`. `code` is pasted unescaped.
std::string inventoryChecksQuery(std::string_view table, std::string_view alias, std::string_view code);

// Reads the answer to that query and closes it. An unknown inventory has no checks. Throws AutomationError when the
// recordset refuses.
InventoryChecks readInventoryChecks(Recordset& rows);

}  // namespace quillon
