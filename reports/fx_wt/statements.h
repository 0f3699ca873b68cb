// The statements of the cost-item voucher report's build, as texts. Each function gives one statement, ready to be sent.
//
// The build collects the ledger lines in a work table, each as the parts that fall to its cost items, and groups them
// into the result table by everything but the figures. A line that is not split comes in once, without a cost item.
//
// In the ledger's tables iAInPrice, iAOutPrice, iItemInPrice and iItemOutPrice are amounts, while iInCost and iOutCost
// are unit costs. iIteminCost and iItemoutCost, the unit costs of a part, are computed here.
#pragma once

#include <string>

#include "frame/work_table.h"

namespace quillon::fx_wt {

// What the statements of one run have in common.
struct Build {
  std::string condition;    // on the lines; without "where"
  std::string resultTable;  // as the platform names it
  std::string language;     // of the names of expense types (Ca_AmoTypeName.localid)
  int quantityDecimals = 0;
  int unitCostDecimals = 0;
  WorkTable work;
};

std::string createWorkTable(const Build& build);
std::string insertLines(const Build& build);
std::string createResult(const Build& build);

}  // namespace quillon::fx_wt
