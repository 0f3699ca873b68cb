// What the tests of faults try, natively and through COM: filters that take each report through all of its statements,
// dialogs with the items that their classes look at, rows to drill through from; and what statements do to an account.
#pragma once

#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "tests/faults/tiny_account.h"
#include "workbench/platform/argument.h"
#include "workbench/platform/filter_object.h"

namespace quillon::faults {

struct Item {
  std::string key;
  std::string value = {};
  std::string value2 = {};
};

// A filter of these items and of one that no report knows, so that it becomes a condition of the filter object's own.
std::shared_ptr<workbench::FilterObject> filterOf(const std::vector<Item>& items);

// Of the two summary reports, in report mode `mode`: a range of dates that begins within the year, so that earlier lines
// become openings.
std::vector<Item> summaryItems(const std::string& mode);
// Of the detail ledger. An item that is not given is there all the same.
std::vector<Item> ledgerItems(const std::vector<Item>& given);
// Of the voucher report.
std::vector<Item> voucherItems();

// What statements did to the account. Tables of the session ("#...") go with the session.
struct Changes {
  bool any = false;
  std::vector<std::string> tables = {};  // made and not dropped, by name
};
Changes changesOf(const std::vector<std::string>& statements);

// The reports' registrations with only those of their items that their dialogs look at.
workbench::ReportRegistration balanceDialog();
workbench::ReportRegistration outboundDialog();
workbench::ReportRegistration voucherDialog();
workbench::ReportRegistration ledgerDialog();
// All that the library may change in a dialog.
std::string stateOf(const workbench::FilterObject& filter);

// The row, as the reports show it, of the first ledger line of byWarehouse() that `condition` finds, as one of voucher
// type `type`.
workbench::RowValues rowOf(const std::string& condition, const std::string& type);
workbench::RowValues rowOfType(const std::string& type);
// A row that is posted to the general ledger.
workbench::RowValues postedRow();

}  // namespace quillon::faults
