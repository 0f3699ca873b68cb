// Words of the business types (cBusType of a ledger line) that statements look for.
#pragma once

#include <string_view>

namespace quillon {

// Direct shipments go from the vendor to the customer and never lie in a warehouse; their types begin with this word.
inline constexpr std::string_view directShipment = "直运";
inline constexpr std::string_view directShipmentSale = "直运销售";
inline constexpr std::string_view directShipmentPurchase = "直运采购";

}  // namespace quillon
