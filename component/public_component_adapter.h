// PublicComponent (a port of the core) over IA_Pub.ClsIAPub: the library calls the port, the adapter calls the component
// late-bound. The one place that knows the component's argument orders.
#pragma once

#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "automation/late_bound.h"
#include "frame/platform.h"

namespace quillon::component {

// The members take sessions that LateBoundPlatform made.
class LateBoundPublicComponent : public PublicComponent {
 public:
  explicit LateBoundPublicComponent(automation::LateBound component) : component_(std::move(component)) {}

  std::string accountInformation(std::string_view system, std::string_view name, Session& session) override;
  int currentPeriodYear(Session& session) override;
  int costItemStartMonth(std::string_view year, Session& session) override;
  std::vector<std::string> usedYears(std::string_view accountCode, Session& session) override;
  bool costItemOpeningsFinished(int year, Session& session) override;
  AccountingPeriod moduleStart(std::string_view system, Session& session) override;
  PeriodDates datesOfPeriod(std::string_view accountCode, AccountingPeriod period, Session& session) override;
  AccountingPeriod periodOfDate(std::string_view date, Session& session) override;
  bool periodSettled(AccountingPeriod period, Session& session) override;
  std::string workstationName() override;

 private:
  automation::LateBound component_;
};

}  // namespace quillon::component
