// Kept layouts as the JSON interface has them: with the members that a view or a pivot is asked for with.
#pragma once

#include "workbench/catalogue/report.h"
#include "workbench/desk/api_error.h"
#include "workbench/runs/kept_layouts.h"

namespace quillon::workbench::desk {

// {"layout", "columns", "sort", "groupBy", "allColumns", "details", "pivot"}; `pivot` is null or has "rows", "columns",
// "measures" and "sort". Of columns that a person has written by their captions it has the names, where the report alone
// tells these.
Json formOfLayout(const KeptLayout& kept);

// The layout that a request with these members keeps for the report. Throws ApiError 400 for another form, and 422 for a
// layout or a pivot that the report does not have.
KeptLayout keptLayoutOf(const Json& body, const Report& report);

}  // namespace quillon::workbench::desk
