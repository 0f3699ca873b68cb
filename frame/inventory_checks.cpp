#include "frame/inventory_checks.h"

#include <optional>

#include "frame/text.h"

namespace quillon {

namespace {

// A flag comes as "True" or, from a view that computes it, as a number.
bool isSet(const std::optional<std::string>& flag) {
  if (!flag || flag->empty()) return false;
  return !equalIgnoringCase(*flag, "False") && *flag != "0";
}

}  // namespace

std::string inventoryChecksQuery(std::string_view table, std::string_view alias, std::string_view code) {
  return "select bcheckbatch,bCheckFree1,bCheckFree2,bCheckFree3,bCheckFree4,bCheckFree5,bCheckFree6,bCheckFree7,bCheckFree8,bCheckFree9,bCheckFree10 from " +
         std::string(table) + " " + std::string(alias) + " where cinvcode=N'" + std::string(code) + "'";
}

InventoryChecks readInventoryChecks(Recordset& rows) {
  InventoryChecks checks;
  if (!rows.eof()) {
    checks.batch = isSet(rows.text(0));
    for (std::size_t i = 0; i < freeItemCount; ++i)
      checks.freeItems.at(i) = isSet(rows.text(static_cast<int>(i) + 1));
  }
  rows.close();
  return checks;
}

}  // namespace quillon
