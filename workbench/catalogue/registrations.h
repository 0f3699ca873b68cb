// What the reports register with the platform: their filter items with captions and input kinds in both languages.
#pragma once

#include <string>
#include <string_view>

#include "workbench/platform/filter_object.h"

namespace quillon::workbench {

// Receipt/issue/balance by cost item, "sfc-item". The report's year has no default here: it is the login's. The same
// goes for the outbound summary.
const ReportRegistration& sfcItemRegistration();
// Outbound summary by cost item, "outsum-item". Its voucher and business types have no choices here: they are the
// year's.
const ReportRegistration& outsumItemRegistration();
// Cost-item detail ledger, "fx-detail".
const ReportRegistration& fxDetailRegistration();
// Cost-item voucher report, "fx-wt". Its voucher and business types have no choices here: the dialog gives them. Every
// key that the report does not know by name is a column of the ledger.
const ReportRegistration& fxWtRegistration();

// The report called `name`. Throws std::invalid_argument that lists the reports there are.
const ReportRegistration& registeredReport(std::string_view name);
// The names of all reports, separated by commas: "sfc-item, outsum-item, fx-detail, fx-wt".
std::string reportNames();

}  // namespace quillon::workbench
