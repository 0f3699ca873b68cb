// The filter file of `quillon report`: {"id":"...","items":[{"name":"cModal","value":"1","value2":"","range":false,
// "multi":false,"caption":"...","sql":"..."}]}, where only `name` must be there.
#pragma once

#include <nlohmann/json.hpp>

#include "workbench/platform/filter_object.h"

namespace quillon::workbench {

// Writes the items' values over those of `filter`. An item that the report did not register is added; it stands for the
// ledger column of its name. Throws UserError that names the member which cannot be used.
void applyFilterFile(FilterObject& filter, const nlohmann::ordered_json& description);

}  // namespace quillon::workbench
