// clsOutsum_Item: the outbound summary by cost item.
#pragma once

#include <string>

#include "frame/summary_report.h"
#include "reports/outsum_item/filter_translation.h"

namespace quillon {

class OutsumItem final : public SummaryReport {
 public:
  using SummaryReport::SummaryReport;

 private:
  void build(Filter& filter, const std::string& resultTable, Module& module, Session& session) override;

  // Kept between runs: year, mode and grade hold until the filter gives them anew.
  outsum_item::FilterConditions conditions_;
};

}  // namespace quillon
