// How a report is shown, as people write it in an entry of a book.
#pragma once

#include <nlohmann/json.hpp>
#include <string>
#include <string_view>

#include "workbench/presentation/arrangement.h"
#include "workbench/runs/report_layouts.h"

namespace quillon::workbench {

struct LayoutText {
  std::string layout = {};  // the name of a layout; empty: the report's first
  ArrangementText arrangement = {};
  std::string pivot = {};  // DOWN/ACROSS/FIGURES; empty for none
};

// The members layout, columns, sort, groupBy, where and pivot of `object`, whose schema has been checked.
LayoutText layoutTextOf(const nlohmann::ordered_json& object);

// What `text` means for the report. Throws UserError for what the report does not have.
LayoutOptions layoutOptionsOf(const Report& report, const LayoutText& text);

}  // namespace quillon::workbench
