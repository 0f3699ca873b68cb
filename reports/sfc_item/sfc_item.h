// clsSFC_Item: receipt/issue/balance by cost item.
#pragma once

#include <string>

#include "frame/summary_report.h"

namespace quillon {

class SfcItem final : public SummaryReport {
 public:
  using SummaryReport::SummaryReport;

 private:
  void build(Filter& filter, const std::string& resultTable, Module& module, Session& session) override;
};

}  // namespace quillon
