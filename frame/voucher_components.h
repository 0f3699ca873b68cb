// The platform's voucher components: what a report opens when the user drills through to the document behind a row.
// Every member throws AutomationError with the failing call's own code, source and description. All texts are UTF-8.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "frame/session.h"

namespace quillon {

class Login;

// The platform's business object, kept for whoever drills through; the library only holds it.
class BusinessObject {
 public:
  virtual ~BusinessObject() = default;
};

// The source document of a ledger line.
struct SourceVoucher {
  std::string type;         // the voucher type's code, such as "32"
  std::string code;         // the voucher's own code
  std::int32_t lineId = 0;  // ia_subsidiary.AutoID of the ledger line
};

// The groups of voucher types for which ShowVoucher is called with a set of arguments of their own.
enum class VoucherGroup { adjustment, writeBack, other };

// PellUniVch.clsUniVch: opens source documents.
class SourceVoucherComponent {
 public:
  virtual ~SourceVoucherComponent() = default;

  // Init; the first call. `systemVersion` is the account's option AA cSysVersion.
  virtual void initialise(Login& login, Session& session, std::string_view systemVersion) = 0;
  virtual void showVoucher(VoucherGroup group, const SourceVoucher& voucher, Session& session) = 0;
  // ShowProJust: an issue adjustment by cost item.
  virtual void showCostItemAdjustment(const SourceVoucher& voucher, Session& session) = 0;
  // ShowDifVouchs: a difference carry-over. `commercial`: the account is not one of the industrial edition.
  virtual void showDifferences(const SourceVoucher& voucher, bool commercial, std::string_view valuationMethod,
                               Session& session) = 0;
  // ShowCostJustVouch: a planned price adjustment, which it finds by the voucher's code.
  virtual void showPriceAdjustment(const SourceVoucher& voucher) = 0;
};

// ZzPub.clsPub: the general ledger's shared state.
class LedgerModule {
 public:
  virtual ~LedgerModule() = default;

  virtual void setBusiness(BusinessObject& business) = 0;  // g_business
  virtual void setLogin(Login& login) = 0;                 // oLogIn
  // InitPubs2: opens the ledger of `year` in the account that `connection` and `passwordText` (";PWD=" and the
  // password) name.
  virtual void initialise(std::string_view connection, std::string_view passwordText, int year, Login& login) = 0;
};

// A general-ledger voucher and where in the platform's menus it is opened.
struct LedgerVoucher {
  std::string id;           // iPZID
  std::string menuCode;     // what the user must have the right to
  std::string moduleTitle;  // empty: the general ledger's own
};

// ZzPz.clsPZ: opens general-ledger vouchers.
class LedgerVoucherComponent {
 public:
  virtual ~LedgerVoucherComponent() = default;

  virtual void setLogin(Login& login) = 0;              // zzLogin
  virtual void setModule(LedgerModule& module) = 0;     // zzSys
  virtual void open(const LedgerVoucher& voucher) = 0;  // StartUpPz
};

}  // namespace quillon
