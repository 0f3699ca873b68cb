// The style sheet of a report's page.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "workbench/presentation/page_plan.h"
#include "workbench/presentation/report_document.h"
#include "workbench/presentation/view.h"

namespace quillon::workbench {

// What all pages have alike. Tables of a section have the class "rows"; one that is split stands on the screen side by
// side: a table "keys" that stays in sight, and the blocks, whose own keys are shown on paper only.
std::string_view commonStyle();

// What a page's sheets of paper carry in their margins.
std::string marginStyle(const ReportDocument& document);

// A table that is not split, or a block of one, with the id `table`: which of its columns hold numbers, which break on
// paper, where its keys stay.
std::string tableStyle(const std::string& table, const View& view, const PagePlan& plan,
                       const std::vector<std::size_t>& columns);

// How many of `columns` from the first are keys.
std::size_t leadingKeys(const PagePlan& plan, const std::vector<std::size_t>& columns);

}  // namespace quillon::workbench
