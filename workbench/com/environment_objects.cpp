#include "workbench/com/environment_objects.h"

#include <memory>
#include <string>
#include <utility>

#include "automation/class_lookup.h"
#include "component/platform_bindings.h"
#include "workbench/com/own_object.h"

namespace quillon::workbench {

using automation::Call;
using automation::ComPtr;
using automation::makeObject;
using automation::Variant;
namespace bindings = component::bindings;

namespace {

class ExposedWorkTableNumber : public automation::DispatchObject<ExposedWorkTableNumber> {
 public:
  static std::span<const Member> members() {
    static constexpr Member table[] = {
        {L"Number", DISPID_VALUE, automation::readable, 0, 0, &ExposedWorkTableNumber::number}};
    return table;
  }

  explicit ExposedWorkTableNumber(int number) : number_(number) {}

 private:
  Variant number(Call&) { return number_; }

  int number_;
};

class ExposedAccountLogin : public OwnObject<ExposedAccountLogin> {
 public:
  static constexpr IID ownId = {0x6fdcb58e, 0x2b11, 0x4f47, {0x8d, 0x1c, 0x08, 0x23, 0xde, 0x13, 0xb4, 0x3e}};

  static std::span<const Member> members() {
    static constexpr Member table[] = {
        {bindings::account_login::initialise, 1, automation::callable, 2, 2, &ExposedAccountLogin::initialise}};
    return table;
  }

  explicit ExposedAccountLogin(std::unique_ptr<AccountLogin> login) : login_(std::move(login)) {}

  AccountLogin& login() { return *login_; }

 private:
  Variant initialise(Call& call) {
    login_->initialise(call.text(0), call.text(1));
    return {};
  }
  const char* sourceName() const override { return "OrvPlatform.AccountLogin"; }

  std::unique_ptr<AccountLogin> login_;
};

// Empty until the environment fills it.
class ExposedAccountOptions : public OwnObject<ExposedAccountOptions> {
 public:
  static constexpr IID ownId = {0xd14a4f0f, 0xf614, 0x4c90, {0x9d, 0xb7, 0x67, 0xd6, 0x09, 0x02, 0xca, 0xff}};

  static std::span<const Member> members() {
    static constexpr Member table[] = {
        {bindings::account_options::costingBasis, 1, automation::readable, 0, 0, &ExposedAccountOptions::costingBasis},
        {bindings::account_options::inventoryTable, 2, automation::readable, 0, 0,
         &ExposedAccountOptions::inventoryTable},
        {bindings::account_options::warehouseTable, 3, automation::readable, 0, 0,
         &ExposedAccountOptions::warehouseTable},
    };
    return table;
  }

  void fill(std::unique_ptr<AccountOptions> options) { options_ = std::move(options); }

 private:
  AccountOptions& options() const {
    if (!options_) {
      throw AutomationError(hresult::unexpected, sourceName(),
                            "The account options are empty: call the environment's FillAccountOptions first.");
    }
    return *options_;
  }
  Variant costingBasis(Call&) { return options().costingBasis(); }
  Variant inventoryTable(Call&) { return options().inventoryTable(); }
  Variant warehouseTable(Call&) { return options().warehouseTable(); }
  const char* sourceName() const override { return "OrvPlatform.AccountOptions"; }

  std::unique_ptr<AccountOptions> options_;
};

class ExposedEnvironment : public automation::DispatchObject<ExposedEnvironment> {
 public:
  static std::span<const Member> members() {
    static constexpr Member table[] = {
        {bindings::inventory_environment::initialise, 1, automation::callable, 1, 1, &ExposedEnvironment::initialise},
        {bindings::inventory_environment::tableNames, 2, automation::callable, 2, 2, &ExposedEnvironment::tableNames},
        {bindings::inventory_environment::fillOptions, 3, automation::callable, 3, 3, &ExposedEnvironment::fillOptions},
    };
    return table;
  }

  explicit ExposedEnvironment(std::unique_ptr<InventoryEnvironment> environment)
      : environment_(std::move(environment)) {}

 private:
  ComPtr<ExposedAccountLogin> loginAt(Call& call, std::size_t index) const {
    return ExposedAccountLogin::from(call.object(index), sourceName(), "an account login");
  }

  Variant initialise(Call& call) {
    login_ = loginAt(call, 0);
    environment_->setLogin(login_->login());
    return {};
  }
  // The workbench has no use for a second table.
  Variant tableNames(Call& call) {
    call.writeBack(0, Variant(environment_->resultTable()));
    call.writeBack(1, Variant(""));
    return {};
  }
  Variant fillOptions(Call& call) {
    const auto options = ExposedAccountOptions::from(call.object(0), sourceName(), "account options");
    options->fill(environment_->accountOptions(loginAt(call, 1)->login(), call.text(2)));
    return {};
  }
  const char* sourceName() const override { return "OrvPlatform.InventoryEnvironment"; }

  std::unique_ptr<InventoryEnvironment> environment_;
  ComPtr<ExposedAccountLogin> login_;  // what the environment was handed stays with it
};

}  // namespace

EnvironmentStandIn::EnvironmentStandIn(EmbeddedPlatform& platform)
    : workTableNumber_(
          automation::classIdOf(bindings::workTableNumber),
          [&platform]() -> ComPtr<IUnknown> { return makeObject<ExposedWorkTableNumber>(platform.workTableNumber()); }),
      accountLogin_(
          automation::classIdOf(bindings::accountLogin),
          [&platform]() -> ComPtr<IUnknown> { return makeObject<ExposedAccountLogin>(platform.createAccountLogin()); }),
      environment_(automation::classIdOf(bindings::environment),
                   [&platform]() -> ComPtr<IUnknown> {
                     return makeObject<ExposedEnvironment>(platform.createInventoryEnvironment());
                   }),
      accountOptions_(automation::classIdOf(bindings::accountOptions),
                      []() -> ComPtr<IUnknown> { return makeObject<ExposedAccountOptions>(); }) {}

}  // namespace quillon::workbench
