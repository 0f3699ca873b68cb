// The reports of the library: one table, in the order in which they are listed to the user.
#pragma once

#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "workbench/catalogue/report.h"

namespace quillon::workbench {

std::span<const Report> reports();

// The report called `name`. Throws std::invalid_argument that lists the reports there are.
const Report& reportNamed(std::string_view name);
// The names of all reports, separated by commas: "sfc-item, outsum-item, fx-detail, fx-wt".
std::string reportNames();

// The keys by which each of them joins, for the check of an account.
std::vector<account::ReportKeys> joinKeysOfReports();

// The reports whose rows a check of the ledger touches: "sfc-item, fx-detail"; empty for none.
std::string reportsTouchedBy(account::Check check);

// The classes that serve the dialogs of the reports, each once, in the order of the reports.
std::vector<const DialogClass*> dialogClasses();

}  // namespace quillon::workbench
