// What a layout is made of: the result table, what is known of its report, and what the reader asks for.
#pragma once

#include <string>

#include "workbench/catalogue/report.h"
#include "workbench/presentation/arrangement.h"
#include "workbench/presentation/result_table.h"

namespace quillon::workbench {

struct LayoutRequest {
  const Report& report;
  const ResultTable& table;  // with rows
  std::string mode;          // the report's mode, the value of cModal; empty for a report without
  Language language = Language::chinese;
  Arrangement arrangement = {};
  bool allColumns = false;   // also user-defined fields and what documents carry beside
  bool ledgerLines = false;  // rows say which ledger line they are of
};

// The columns that the report's table has, as the catalogue knows them and in its order.
std::vector<ReportColumn> columnsPresent(const LayoutRequest& request);

}  // namespace quillon::workbench
