// What the workbench knows of a report. Each report fills one of these in its own file of this folder; whoever needs a
// fact about a report takes it from here.
#pragma once

#include <memory>
#include <span>
#include <string_view>
#include <vector>

#include "workbench/account/key_check.h"
#include "workbench/account/ledger_check.h"
#include "workbench/catalogue/core_report.h"
#include "workbench/catalogue/dialog_classes.h"
#include "workbench/catalogue/pivot_source.h"
#include "workbench/catalogue/report_columns.h"
#include "workbench/catalogue/report_layout.h"
#include "workbench/platform/filter_object.h"

namespace quillon::workbench {

struct Report {
  // Its name on the command line, its title and the items of its filter.
  ReportRegistration registration;

  // The class of the library that makes it, "clsSFC_Item", and an instance of that class called directly; `module` must
  // outlive what is made.
  std::string_view reportClass;
  std::unique_ptr<CoreReport> (*make)(Module& module);
  // The class that serves its dialog.
  const DialogClass* dialog;

  // The columns of its result table, in the order in which table and page show them.
  std::vector<ReportColumn> columns;
  RowOrder order = orderByPlace;
  // The layouts that it can be shown in; the first is shown unless another is asked for.
  std::vector<Layout> layouts;
  // What the rows of the layouts are ordered by where these have no order of their own.
  RowOrder lineOrder = orderByInventory;
  // The columns that say which row of the lines it is; they stand first and stay in sight.
  std::vector<std::string_view> lineKeys;
  // The levels of its tree below the classes, for a report mode.
  std::vector<TreeLevel> (*treeLevels)(std::string_view mode) = nullptr;
  // Columns that its lines do not show in a report mode: figures of the whole ledger line, of which a row is a part.
  std::span<const std::string_view> (*notInLines)(std::string_view mode) = nullptr;
  // The states of the cross view for a report mode (the value of cModal), which sums by the columns cFXCode and cFXName of
  // the result table. Nothing: the report has no cross view.
  std::vector<CrossState> (*crossStates)(std::string_view mode) = nullptr;
  // The report is a ledger: its rows are lines and balances, which cannot be summed and have no cross view.
  bool isLedger = false;

  // Columns that are the code and the name of one thing, and so one dimension of a pivot (report_dimensions.h).
  std::span<const CodeAndName> codeNames = {};
  // Columns of codes whose names stand elsewhere in the account.
  std::span<const CodeNames> codesNamedElsewhere = {};
  // The rows that a pivot sums, where these are not all.
  const PivotSource* pivotSource = nullptr;

  // The keys by which it joins masters to ledger lines, in its order.
  std::vector<account::JoinKey> joinKeys;
  // The checks of the ledger whose rows it shows or sums.
  std::vector<account::Check> ledgerChecks = {};

  // The ledger line that a row is of, as a T-SQL expression over the result table; null for a row that is of none, such
  // as a balance. Empty where rows open nothing.
  std::string_view ledgerLine = {};

  // The columns of a row that lead to the document behind it. Empty: its rows open nothing.
  std::span<const std::string_view> documentColumns = {};

  // Of these, what the source document and the general-ledger voucher cannot be opened without.
  std::span<const std::string_view> sourceDocumentColumns = {};
  std::span<const std::string_view> ledgerVoucherColumns = {};

  bool opensDocuments() const { return !documentColumns.empty(); }
};

}  // namespace quillon::workbench
