// What an inventory must be told apart by: batch and free items, as the inventory master says.
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

// Asks for the checks of inventory `code` in `table`, which the query calls `alias`. `code` is pasted unescaped.
std::string inventoryChecksQuery(std::string_view table, std::string_view alias, std::string_view code);

// Reads the answer to that query and closes it. An unknown inventory has no checks. Throws AutomationError when the
// recordset refuses.
InventoryChecks readInventoryChecks(Recordset& rows);

}  // namespace quillon
