#include "workbench/com/public_component_object.h"

#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "automation/dispatch_object.h"
#include "component/ado_session.h"
#include "component/platform_bindings.h"
#include "frame/automation_error.h"

namespace quillon::workbench {

using automation::Call;
using automation::callable;
using automation::ComPtr;
using automation::DispatchObject;
using automation::makeObject;
using automation::readable;
using automation::Variant;
namespace bindings = component::bindings;

namespace {

// The used years as a dictionary: the keys are "1", "2" and so on.
class ExposedUsedYears : public DispatchObject<ExposedUsedYears> {
 public:
  static std::span<const Member> members() {
    static constexpr Member table[] = {
        {L"Item", DISPID_VALUE, readable, 1, 1, &ExposedUsedYears::item},
        {bindings::public_component::dictionaryCount, 1, readable, 0, 0, &ExposedUsedYears::count},
    };
    return table;
  }

  explicit ExposedUsedYears(std::vector<std::string> years) : years_(std::move(years)) {}

 private:
  Variant item(Call& call) {
    const int key = call.integer(0);
    // A dictionary answers an unknown key with an empty value.
    if (key < 1 || static_cast<std::size_t>(key) > years_.size()) return {};
    return years_[static_cast<std::size_t>(key) - 1];
  }
  Variant count(Call&) { return static_cast<int>(years_.size()); }

  std::vector<std::string> years_;
};

// IA_Pub.ClsIAPub over the connection that the caller passes. In the operations of all reports that is the one argument
// that is an object, wherever it stands among the others, so that callers of either argument order are served.
class ExposedPublicComponent : public DispatchObject<ExposedPublicComponent> {
 public:
  static std::span<const Member> members() {
    static constexpr Member table[] = {
        {bindings::public_component::accountInformation, 1, callable, 3, 3,
         &ExposedPublicComponent::accountInformation},
        {bindings::public_component::currentPeriodYear, 2, callable, 1, 1, &ExposedPublicComponent::currentPeriodYear},
        {bindings::public_component::costItemStartMonth, 3, callable, 2, 2,
         &ExposedPublicComponent::costItemStartMonth},
        {bindings::public_component::usedYears, 4, callable, 2, 2, &ExposedPublicComponent::usedYears},
        {bindings::public_component::costItemOpeningsFinished, 5, callable, 2, 2,
         &ExposedPublicComponent::costItemOpeningsFinished},
        {bindings::public_component::moduleStart, 6, callable, 4, 4, &ExposedPublicComponent::moduleStart},
        {bindings::public_component::datesOfPeriod, 7, callable, 6, 6, &ExposedPublicComponent::datesOfPeriod},
        {bindings::public_component::periodOfDate, 8, callable, 4, 4, &ExposedPublicComponent::periodOfDate},
        {bindings::public_component::periodSettled, 9, callable, 3, 3, &ExposedPublicComponent::periodSettled},
        {bindings::public_component::workstationName, 10, callable, 0, 0, &ExposedPublicComponent::workstationName},
    };
    return table;
  }

  explicit ExposedPublicComponent(std::shared_ptr<PublicComponent> component) : component_(std::move(component)) {}

 private:
  // The arguments of a call, sorted into the connection and the texts in their order.
  struct Sorted {
    component::AdoSession session;
    std::vector<std::string> texts;
  };

  Sorted sorted(Call& call) const {
    ComPtr<IDispatch> connection;
    std::vector<std::string> texts;
    for (std::size_t index = 0; index < call.count(); ++index) {
      const Variant value = call.value(index);
      if (value.vt == VT_DISPATCH || value.vt == VT_UNKNOWN) {
        connection = call.object(index);
      } else {
        texts.push_back(call.text(index));
      }
    }
    if (!connection || texts.size() + 1 != call.count()) {
      throw AutomationError(hresult::invalidArgument, sourceName(),
                            "One argument must be the connection to the account database, the others texts.");
    }
    return {component::AdoSession({std::move(connection), "ADODB.Connection"}), std::move(texts)};
  }

  Variant accountInformation(Call& call) {
    Sorted arguments = sorted(call);
    return component_->accountInformation(arguments.texts[0], arguments.texts[1], arguments.session);
  }
  Variant currentPeriodYear(Call& call) {
    Sorted arguments = sorted(call);
    return component_->currentPeriodYear(arguments.session);
  }
  Variant costItemStartMonth(Call& call) {
    Sorted arguments = sorted(call);
    return component_->costItemStartMonth(arguments.texts[0], arguments.session);
  }
  Variant usedYears(Call& call) {
    Sorted arguments = sorted(call);
    return makeObject<ExposedUsedYears>(component_->usedYears(arguments.texts[0], arguments.session));
  }

  // What the detail ledger asks. Results are written into variables behind the arguments that are read.
  component::AdoSession sessionAt(Call& call, std::size_t index) const {
    return component::AdoSession({call.object(index), "ADODB.Connection"});
  }
  Variant costItemOpeningsFinished(Call& call) {
    component::AdoSession session = sessionAt(call, 0);
    return component_->costItemOpeningsFinished(call.integer(1), session);
  }
  Variant moduleStart(Call& call) {
    component::AdoSession session = sessionAt(call, 1);
    const AccountingPeriod start = component_->moduleStart(call.text(0), session);
    call.writeBack(2, Variant(start.month));
    call.writeBack(3, Variant(start.year));
    return {};
  }
  Variant datesOfPeriod(Call& call) {
    component::AdoSession session = sessionAt(call, 0);
    const PeriodDates dates =
        component_->datesOfPeriod(call.text(1), {.year = call.integer(2), .month = call.integer(3)}, session);
    call.writeBack(4, Variant::fromIsoDate(dates.begin));
    call.writeBack(5, Variant::fromIsoDate(dates.end));
    return {};
  }
  Variant periodOfDate(Call& call) {
    component::AdoSession session = sessionAt(call, 0);
    const AccountingPeriod period = component_->periodOfDate(call.text(1), session);
    call.writeBack(2, Variant(period.year));
    call.writeBack(3, Variant(period.month));
    return {};
  }
  Variant periodSettled(Call& call) {
    component::AdoSession session = sessionAt(call, 0);
    return component_->periodSettled({.year = call.integer(1), .month = call.integer(2)}, session);
  }
  Variant workstationName(Call&) { return component_->workstationName(); }
  const char* sourceName() const override { return "IA_Pub.ClsIAPub"; }

  std::shared_ptr<PublicComponent> component_;
};

}  // namespace

ComPtr<IUnknown> publicComponentObject(std::shared_ptr<PublicComponent> component) {
  return makeObject<ExposedPublicComponent>(std::move(component));
}

}  // namespace quillon::workbench
