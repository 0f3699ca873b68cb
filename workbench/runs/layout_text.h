// How a report is shown, as people write it: in an entry of a book, in a layout file.
#pragma once

#include <nlohmann/json.hpp>
#include <optional>
#include <string>
#include <string_view>

#include "workbench/presentation/arrangement.h"
#include "workbench/runs/report_layouts.h"

namespace quillon::workbench {

struct LayoutText {
  std::string layout = {};  // the name of a layout; empty: the report's first
  ArrangementText arrangement = {};
  std::string pivot = {};   // DOWN/ACROSS/FIGURES; empty for none
  bool allColumns = false;  // also those that are shown when asked
  bool details = false;     // of a ledger: the cost items of each line beneath it
};

// The members of that name of `object`, whose schema has been checked; columns, sort, groupBy and where are lists.
LayoutText layoutTextOf(const nlohmann::ordered_json& object);

// The reports' own layout of that name, in any letter case.
std::optional<Layout> ownLayout(std::string_view name);

// What `text` means for the report; its layout is one of the reports' own, in any letter case. Throws UserError for what the
// report does not have.
LayoutOptions layoutOptionsOf(const Report& report, const LayoutText& text);

}  // namespace quillon::workbench
