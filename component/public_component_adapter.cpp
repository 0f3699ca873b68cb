#include "component/public_component_adapter.h"

#include "component/ado_session.h"
#include "component/platform_bindings.h"

namespace quillon::component {

using automation::LateBound;
using automation::toText;
using automation::Variant;

std::string LateBoundPublicComponent::accountInformation(std::string_view system, std::string_view name,
                                                         Session& session) {
  ConnectionVariable connection(session);
  return component_.text(bindings::public_component::accountInformation, {system, name, connection.reference()});
}

int LateBoundPublicComponent::currentPeriodYear(Session& session) {
  ConnectionVariable connection(session);
  return component_.integer(bindings::public_component::currentPeriodYear, {connection.reference()});
}

int LateBoundPublicComponent::costItemStartMonth(std::string_view year, Session& session) {
  ConnectionVariable connection(session);
  return component_.integer(bindings::public_component::costItemStartMonth, {year, connection.reference()});
}

std::vector<std::string> LateBoundPublicComponent::usedYears(std::string_view accountCode, Session& session) {
  ConnectionVariable connection(session);
  const LateBound dictionary =
      component_.object(bindings::public_component::usedYears, "used years", {accountCode, connection.reference()});
  std::vector<std::string> years;
  const int count = dictionary.integer(bindings::public_component::dictionaryCount);
  for (int key = 1; key <= count; ++key)
    years.push_back(toText(dictionary.getById(DISPID_VALUE, L"Item", {std::to_string(key)})));
  return years;
}

bool LateBoundPublicComponent::costItemOpeningsFinished(int year, Session& session) {
  ConnectionVariable connection(session);
  return component_.flag(bindings::public_component::costItemOpeningsFinished, {connection.reference(), year});
}

AccountingPeriod LateBoundPublicComponent::moduleStart(std::string_view system, Session& session) {
  ConnectionVariable connection(session);
  SHORT month = 0;
  SHORT year = 0;
  component_.call(bindings::public_component::moduleStart,
                  {system, connection.reference(), Variant::reference(month), Variant::reference(year)});
  return {.year = year, .month = month};
}

PeriodDates LateBoundPublicComponent::datesOfPeriod(std::string_view accountCode, AccountingPeriod period,
                                                    Session& session) {
  ConnectionVariable connection(session);
  DATE begin = 0;
  DATE end = 0;
  component_.call(bindings::public_component::datesOfPeriod,
                  {connection.reference(), accountCode, period.year, period.month, Variant::dateReference(begin),
                   Variant::dateReference(end)});
  return {.begin = toText(Variant::fromDate(begin)), .end = toText(Variant::fromDate(end))};
}

AccountingPeriod LateBoundPublicComponent::periodOfDate(std::string_view date, Session& session) {
  ConnectionVariable connection(session);
  SHORT year = 0;
  SHORT month = 0;
  component_.call(bindings::public_component::periodOfDate, {connection.reference(), Variant::fromIsoDate(date),
                                                             Variant::reference(year), Variant::reference(month)});
  return {.year = year, .month = month};
}

bool LateBoundPublicComponent::periodSettled(AccountingPeriod period, Session& session) {
  ConnectionVariable connection(session);
  return component_.flag(bindings::public_component::periodSettled,
                         {connection.reference(), period.year, period.month});
}

std::string LateBoundPublicComponent::workstationName() {
  return component_.text(bindings::public_component::workstationName);
}

}  // namespace quillon::component
