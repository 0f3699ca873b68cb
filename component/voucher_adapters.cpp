#include "component/voucher_adapters.h"

#include <string>
#include <vector>

#include "component/adapter_of.h"
#include "component/ado_session.h"
#include "component/login_adapter.h"
#include "component/platform_bindings.h"

namespace quillon::component {

using automation::Variant;

namespace {

const bindings::source_voucher::Arguments& argumentsOf(VoucherGroup group) {
  switch (group) {
    case VoucherGroup::adjustment:
      return bindings::source_voucher::ofAdjustment;
    case VoucherGroup::writeBack:
      return bindings::source_voucher::ofWriteBack;
    default:
      return bindings::source_voucher::ofOther;
  }
}

}  // namespace

void LateBoundSourceVoucherComponent::initialise(Login& login, Session& session, std::string_view systemVersion) {
  ConnectionVariable connection(session);
  component_.call(bindings::source_voucher::initialise,
                  {adapterOf<LateBoundLogin>(login).object(), connection.reference(), systemVersion});
}

void LateBoundSourceVoucherComponent::showVoucher(VoucherGroup group, const SourceVoucher& voucher, Session& session) {
  using bindings::source_voucher::Argument;
  ConnectionVariable connection(session);
  std::vector<Variant> arguments;
  for (const Argument argument : argumentsOf(group)) {
    switch (argument) {
      case Argument::typeCode:
        arguments.emplace_back(voucher.type);
        break;
      case Argument::voucherCode:
        arguments.emplace_back(voucher.code);
        break;
      case Argument::rowId:
        arguments.emplace_back(voucher.lineId);
        break;
      case Argument::connection:
        arguments.push_back(connection.reference());
        break;
    }
  }
  component_.call(bindings::source_voucher::show, arguments);
}

void LateBoundSourceVoucherComponent::showCostItemAdjustment(const SourceVoucher& voucher, Session& session) {
  ConnectionVariable connection(session);
  component_.call(bindings::source_voucher::showCostItemAdjustment, {connection.reference(), voucher.lineId});
}

void LateBoundSourceVoucherComponent::showDifferences(const SourceVoucher& voucher, bool commercial,
                                                      std::string_view valuationMethod, Session& session) {
  ConnectionVariable connection(session);
  component_.call(bindings::source_voucher::showDifferences,
                  {voucher.type, voucher.code, voucher.lineId, connection.reference(), commercial, valuationMethod});
}

void LateBoundSourceVoucherComponent::showPriceAdjustment(const SourceVoucher& voucher) {
  component_.call(bindings::source_voucher::showPriceAdjustment, {voucher.code});
}

void LateBoundLedgerModule::setBusiness(BusinessObject& business) {
  module_.putObject(bindings::ledger_module::business, adapterOf<BusinessObjectReference>(business).object());
}

void LateBoundLedgerModule::setLogin(Login& login) {
  module_.putObject(bindings::ledger_module::login, adapterOf<LateBoundLogin>(login).object());
}

void LateBoundLedgerModule::initialise(std::string_view connection, std::string_view passwordText, int year,
                                       Login& login) {
  const std::string accountCode = login.accountCode();
  module_.call(bindings::ledger_module::initialise,
               {connection, passwordText, year, accountCode, login.businessDate()});
}

void LateBoundLedgerVoucherComponent::setLogin(Login& login) {
  component_.putObject(bindings::ledger_voucher::login, adapterOf<LateBoundLogin>(login).object());
}

void LateBoundLedgerVoucherComponent::setModule(LedgerModule& module) {
  component_.putObject(bindings::ledger_voucher::module, adapterOf<LateBoundLedgerModule>(module).object());
}

void LateBoundLedgerVoucherComponent::open(const LedgerVoucher& voucher) {
  component_.call(bindings::ledger_voucher::open, {voucher.menuCode, voucher.moduleTitle, voucher.id});
}

}  // namespace quillon::component
