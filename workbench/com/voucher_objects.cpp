#include "workbench/com/voucher_objects.h"

#include <algorithm>
#include <memory>
#include <optional>
#include <string_view>
#include <utility>

#include "automation/class_lookup.h"
#include "component/ado_session.h"
#include "component/login_adapter.h"
#include "component/platform_bindings.h"
#include "frame/text.h"
#include "workbench/com/own_object.h"

namespace quillon::workbench {

using automation::Call;
using automation::ComPtr;
using automation::makeObject;
using automation::Variant;
namespace bindings = component::bindings;

namespace {

component::AdoSession sessionAt(Call& call, std::size_t index) {
  return component::AdoSession({call.object(index), "ADODB.Connection"});
}

component::LateBoundLogin loginOf(ComPtr<IDispatch> object) {
  return component::LateBoundLogin({std::move(object), "login"});
}

// The document that the arguments of a call name by type code, voucher code and row id.
SourceVoucher voucherOf(Call& call) {
  return {.type = call.text(0), .code = call.text(1), .lineId = call.integer(2)};
}

class ExposedSourceVoucher : public automation::DispatchObject<ExposedSourceVoucher> {
 public:
  static std::span<const Member> members() {
    static constexpr Member table[] = {
        {bindings::source_voucher::initialise, 1, automation::callable, 3, 3, &ExposedSourceVoucher::initialise},
        {bindings::source_voucher::show, 2, automation::callable, 4, 4, &ExposedSourceVoucher::show},
        {bindings::source_voucher::showCostItemAdjustment, 3, automation::callable, 2, 2,
         &ExposedSourceVoucher::showCostItemAdjustment},
        {bindings::source_voucher::showDifferences, 4, automation::callable, 6, 6,
         &ExposedSourceVoucher::showDifferences},
        {bindings::source_voucher::showPriceAdjustment, 5, automation::callable, 1, 1,
         &ExposedSourceVoucher::showPriceAdjustment},
    };
    return table;
  }

  explicit ExposedSourceVoucher(std::unique_ptr<SourceVoucherComponent> component) : component_(std::move(component)) {}

 private:
  Variant initialise(Call& call) {
    component::LateBoundLogin login = loginOf(call.object(0));
    session_.emplace(sessionAt(call, 1));
    component_->initialise(login, *session_, call.text(2));
    return {};
  }
  // All groups of voucher types are shown alike.
  Variant show(Call& call) {
    component::AdoSession session = sessionAt(call, 3);
    component_->showVoucher(VoucherGroup::other, voucherOf(call), session);
    return {};
  }
  Variant showCostItemAdjustment(Call& call) {
    component::AdoSession session = sessionAt(call, 0);
    component_->showCostItemAdjustment({.type = {}, .code = {}, .lineId = call.integer(1)}, session);
    return {};
  }
  Variant showDifferences(Call& call) {
    component::AdoSession session = sessionAt(call, 3);
    component_->showDifferences(voucherOf(call), call.flag(4), call.text(5), session);
    return {};
  }
  Variant showPriceAdjustment(Call& call) {
    component_->showPriceAdjustment({.type = {}, .code = call.text(0)});
    return {};
  }
  const char* sourceName() const override { return "PellUniVch.clsUniVch"; }

  std::unique_ptr<SourceVoucherComponent> component_;
  std::optional<component::AdoSession> session_;  // the component reads through it later
};

// What the caller hands over as its business object: kept, and never called.
class KeptBusinessObject : public BusinessObject {
 public:
  explicit KeptBusinessObject(ComPtr<IDispatch> object) : object_(std::move(object)) {}

 private:
  ComPtr<IDispatch> object_;
};

class ExposedLedgerModule : public OwnObject<ExposedLedgerModule> {
 public:
  static constexpr IID ownId = {0x9c5a61b4, 0x1a82, 0x4270, {0x96, 0x43, 0xdb, 0x26, 0xc0, 0xbc, 0x1d, 0xf0}};

  static std::span<const Member> members() {
    static constexpr Member table[] = {
        {bindings::ledger_module::business, 1, automation::writable, 0, 0, &ExposedLedgerModule::business},
        {bindings::ledger_module::login, 2, automation::writable, 0, 0, &ExposedLedgerModule::login},
        {bindings::ledger_module::initialise, 3, automation::callable, 5, 5, &ExposedLedgerModule::initialise},
    };
    return table;
  }

  explicit ExposedLedgerModule(std::unique_ptr<LedgerModule> module) : module_(std::move(module)) {}

  LedgerModule& module() { return *module_; }

 private:
  Variant business(Call& call) {
    business_.emplace(automation::toObject(call.assigned()));
    module_->setBusiness(*business_);
    return {};
  }
  Variant login(Call& call) {
    login_.emplace(loginOf(automation::toObject(call.assigned())));
    module_->setLogin(*login_);
    return {};
  }
  // The login says the rest.
  Variant initialise(Call& call) {
    if (!login_) throw AutomationError(hresult::unexpected, sourceName(), "oLogIn has not been set.");
    module_->initialise(call.text(0), call.text(1), call.integer(2), *login_);
    return {};
  }
  const char* sourceName() const override { return "ZzPub.clsPub"; }

  std::unique_ptr<LedgerModule> module_;
  std::optional<KeptBusinessObject> business_;
  std::optional<component::LateBoundLogin> login_;
};

class ExposedLedgerVoucher : public automation::DispatchObject<ExposedLedgerVoucher> {
 public:
  static std::span<const Member> members() {
    static constexpr Member table[] = {
        {bindings::ledger_voucher::login, 1, automation::writable, 0, 0, &ExposedLedgerVoucher::login},
        {bindings::ledger_voucher::module, 2, automation::writable, 0, 0, &ExposedLedgerVoucher::module},
        {bindings::ledger_voucher::open, 3, automation::callable, 3, 3, &ExposedLedgerVoucher::open},
    };
    return table;
  }

  explicit ExposedLedgerVoucher(std::unique_ptr<LedgerVoucherComponent> component) : component_(std::move(component)) {}

 private:
  Variant login(Call& call) {
    login_.emplace(loginOf(automation::toObject(call.assigned())));
    component_->setLogin(*login_);
    return {};
  }
  Variant module(Call& call) {
    module_ = ExposedLedgerModule::from(automation::toObject(call.assigned()), sourceName(), "a ZzPub.clsPub");
    component_->setModule(module_->module());
    return {};
  }
  Variant open(Call& call) {
    component_->open({.id = call.text(2), .menuCode = call.text(0), .moduleTitle = call.text(1)});
    return {};
  }
  const char* sourceName() const override { return "ZzPz.clsPZ"; }

  ComPtr<ExposedLedgerModule> module_;  // before the component, which refers to it
  std::optional<component::LateBoundLogin> login_;
  std::unique_ptr<LedgerVoucherComponent> component_;
};

class ExposedOpenedVoucher : public automation::DispatchObject<ExposedOpenedVoucher> {
 public:
  static std::span<const Member> members() {
    static constexpr Member table[] = {
        {L"Text", DISPID_VALUE, automation::readable, 0, 0, &ExposedOpenedVoucher::text},
        {L"Member", 1, automation::readable, 0, 0, &ExposedOpenedVoucher::member},
        {L"Title", 2, automation::readable, 0, 0, &ExposedOpenedVoucher::title},
        {L"Heading", 3, automation::readable | automation::callable, 1, 1, &ExposedOpenedVoucher::heading},
        {L"LineCount", 4, automation::readable, 0, 0, &ExposedOpenedVoucher::lineCount},
        {L"Line", 5, automation::readable | automation::callable, 2, 2, &ExposedOpenedVoucher::line},
    };
    return table;
  }

  ExposedOpenedVoucher(OpenedVoucher voucher, Language language) : voucher_(std::move(voucher)), language_(language) {}

 private:
  Variant text(Call&) {
    std::string shown = std::string(voucher_.title.in(language_)) + "\r\n";
    for (const auto& [field, value] : voucher_.heading)
      if (!value.empty()) shown += std::string(field.caption.in(language_)) + ": " + value + "\r\n";
    const auto addRow = [&shown](const auto& cells, const auto& textOf) {
      for (const auto& cell : cells)
        shown += std::string(&cell == &cells.front() ? "" : "\t") + std::string(textOf(cell));
      shown += "\r\n";
    };
    addRow(voucher_.columns, [this](const VoucherField& field) { return field.caption.in(language_); });
    for (const auto& cells : voucher_.lines)
      addRow(cells, [](const std::string& cell) { return std::string_view(cell); });
    return shown;
  }
  Variant member(Call&) { return voucher_.member; }
  Variant title(Call&) { return std::string(voucher_.title.in(language_)); }
  Variant heading(Call& call) {
    const std::string name = call.text(0);
    const auto found = std::ranges::find_if(
        voucher_.heading, [&](const auto& entry) { return equalIgnoringCase(entry.first.name, name); });
    if (found == voucher_.heading.end()) throw missing("heading has no field \"" + name + "\"");
    return found->second;
  }
  Variant lineCount(Call&) { return static_cast<int>(voucher_.lines.size()); }
  // Lines are counted from 1.
  Variant line(Call& call) {
    const int number = call.integer(0);
    if (number < 1 || static_cast<std::size_t>(number) > voucher_.lines.size())
      throw missing("document has no line " + std::to_string(number));
    const std::string name = call.text(1);
    const auto found = std::ranges::find_if(
        voucher_.columns, [&](const VoucherField& field) { return equalIgnoringCase(field.name, name); });
    if (found == voucher_.columns.end()) throw missing("lines have no field \"" + name + "\"");
    const auto column = static_cast<std::size_t>(found - voucher_.columns.begin());
    return voucher_.lines[static_cast<std::size_t>(number) - 1][column];
  }
  static AutomationError missing(const std::string& what) {
    return {DISP_E_BADINDEX, "Quillon opened voucher", "The " + what + "."};
  }
  const char* sourceName() const override { return "Quillon opened voucher"; }

  OpenedVoucher voucher_;
  Language language_;
};

class ExposedMessage : public automation::DispatchObject<ExposedMessage> {
 public:
  static std::span<const Member> members() {
    static constexpr Member table[] = {
        {L"Text", DISPID_VALUE, automation::readable, 0, 0, &ExposedMessage::text},
        {L"Flags", 1, automation::readable, 0, 0, &ExposedMessage::flags},
    };
    return table;
  }

  ExposedMessage(std::string text, int flags) : text_(std::move(text)), flags_(flags) {}

 private:
  Variant text(Call&) { return text_; }
  Variant flags(Call&) { return flags_; }

  std::string text_;
  int flags_;
};

}  // namespace

VoucherStandIn::VoucherStandIn(EmbeddedPlatform& platform)
    : sourceVoucher_(
          automation::classIdOf(bindings::sourceVoucher),
          [&platform]() -> ComPtr<IUnknown> { return sourceVoucherObject(platform.createSourceVoucherComponent()); }),
      ledgerModule_(
          automation::classIdOf(bindings::ledgerModule),
          [&platform]() -> ComPtr<IUnknown> { return makeObject<ExposedLedgerModule>(platform.createLedgerModule()); }),
      ledgerVoucher_(automation::classIdOf(bindings::ledgerVoucher), [&platform]() -> ComPtr<IUnknown> {
        return makeObject<ExposedLedgerVoucher>(platform.createLedgerVoucherComponent());
      }) {}

ComPtr<IDispatch> sourceVoucherObject(std::unique_ptr<SourceVoucherComponent> component) {
  return makeObject<ExposedSourceVoucher>(std::move(component));
}

ComPtr<IDispatch> openedVoucherObject(OpenedVoucher voucher, Language language) {
  return makeObject<ExposedOpenedVoucher>(std::move(voucher), language);
}

ComPtr<IDispatch> messageObject(std::string text, int flags) {
  return makeObject<ExposedMessage>(std::move(text), flags);
}

}  // namespace quillon::workbench
