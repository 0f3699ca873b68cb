// The ports that open vouchers over the platform's voucher components: the library calls the ports, the adapters call the
// components late-bound. Members take the ports that this folder's adapters implement. The one place that knows the
// components' argument orders.
#pragma once

#include <string_view>
#include <utility>

#include "automation/late_bound.h"
#include "frame/platform.h"

namespace quillon::component {

class LateBoundSourceVoucherComponent : public SourceVoucherComponent {
 public:
  explicit LateBoundSourceVoucherComponent(automation::LateBound component) : component_(std::move(component)) {}

  void initialise(Login& login, Session& session, std::string_view systemVersion) override;
  void showVoucher(VoucherGroup group, const SourceVoucher& voucher, Session& session) override;
  void showCostItemAdjustment(const SourceVoucher& voucher, Session& session) override;
  void showDifferences(const SourceVoucher& voucher, bool commercial, std::string_view valuationMethod,
                       Session& session) override;
  void showPriceAdjustment(const SourceVoucher& voucher) override;

 private:
  automation::LateBound component_;
};

// Only holds the reference.
class BusinessObjectReference : public BusinessObject {
 public:
  explicit BusinessObjectReference(automation::ComPtr<IDispatch> object) : object_(std::move(object)) {}
  const automation::ComPtr<IDispatch>& object() const { return object_; }

 private:
  automation::ComPtr<IDispatch> object_;
};

class LateBoundLedgerModule : public LedgerModule {
 public:
  explicit LateBoundLedgerModule(automation::LateBound module) : module_(std::move(module)) {}

  void setBusiness(BusinessObject& business) override;
  void setLogin(Login& login) override;
  void initialise(std::string_view connection, std::string_view passwordText, int year, Login& login) override;

  const automation::ComPtr<IDispatch>& object() const { return module_.object(); }

 private:
  automation::LateBound module_;
};

class LateBoundLedgerVoucherComponent : public LedgerVoucherComponent {
 public:
  explicit LateBoundLedgerVoucherComponent(automation::LateBound component) : component_(std::move(component)) {}

  void setLogin(Login& login) override;
  void setModule(LedgerModule& module) override;
  void open(const LedgerVoucher& voucher) override;

 private:
  automation::LateBound component_;
};

}  // namespace quillon::component
