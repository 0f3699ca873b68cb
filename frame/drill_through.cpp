#include "frame/drill_through.h"

#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include "frame/account_options.h"
#include "frame/automation_error.h"
#include "frame/display_names.h"
#include "frame/report_session.h"
#include "frame/statement.h"
#include "frame/text.h"

namespace quillon {

namespace {

constexpr std::string_view notPostedKey = "Mirel.IA.CHHSSQL.02787";
constexpr int warning = 48;

constexpr std::string_view costItemAdjustment = "分项调整";

// Where the platform's menus hold a voucher: in the general ledger itself, or in inventory accounting.
constexpr std::string_view ledgerModuleCode = "ZZ";
constexpr std::string_view ledgerMenu = "0101";
constexpr std::string_view inventoryMenu = "*IACXPZ";
constexpr std::string_view inventoryTitle = "存货核算";

AutomationError failure(HResult code, std::string description) {
  return {code, "Quillon", std::move(description)};
}

template <typename Number>
Number number(const std::string& text, std::string_view what) {
  const auto value = wholeNumber<Number>(text);
  if (!value) {
    throw failure(hresult::typeMismatch, std::string(what) + " is \"" + text + "\", which is not a whole number.");
  }
  return *value;
}

// The row shows the voucher type's name; the components want its code. A type that has no name is shown by its code.
std::string voucherTypeCode(Session& session, const std::string& name) {
  return firstField(session, concatenated({"select VouchType.cVouchType from VouchType ", voucherTypeNames,
                                           " and AA_Enum.EnumName='", name, "'"}))
      .value_or(name);
}

// The connection and the login that a drill-through runs with, whatever another run puts into the module meanwhile.
struct Access {
  std::shared_ptr<Session> session;
  std::shared_ptr<Login> login;
};

void showSourceVoucher(Module& module, const Access& access, ReportRow& row, const std::string& typeName) {
  Session& session = *access.session;
  SourceVoucher voucher;
  voucher.type = voucherTypeCode(session, typeName);
  voucher.code = row.value("cVouCode");
  row.value("iPZID");  // read as the platform expects; a source document does not need it
  voucher.lineId = number<std::int32_t>(row.requiredValue("ID"), "The row's ID");

  const auto component = module.platform().createSourceVoucherComponent();
  PublicComponent& account = module.publicComponent();
  const std::string version = account.accountInformation("AA", "cSysVersion", session);
  component->initialise(*access.login, session, version);

  if (voucher.type == "20" || voucher.type == "21") {
    if (row.value("cBusType") == costItemAdjustment && voucher.type == "21") {
      component->showCostItemAdjustment(voucher, session);
    } else {
      component->showVoucher(VoucherGroup::adjustment, voucher, session);
    }
  } else if (voucher.type == "24" || voucher.type == "30") {
    component->showVoucher(VoucherGroup::writeBack, voucher, session);
  } else if (voucher.type == "35") {
    const std::string valuationMethod = account.accountInformation("AA", "cValueStyle", session);
    component->showDifferences(voucher, version != industrialEdition, valuationMethod, session);
  } else if (voucher.type == "22") {
    voucher.code = trimBlanks(voucher.code);
    component->showPriceAdjustment(voucher);
  } else {
    component->showVoucher(VoucherGroup::other, voucher, session);
  }
}

// The year in which the voucher `postingId` was posted, from the first of the two ledgers that knows it.
int voucherYear(Session& session, const std::string& postingId) {
  const std::string condition = " Where cPzID = N'" + postingId + "' and imonth <>0 order by iyear";
  std::optional<std::string> year = firstField(session, "Select iYear From IA_SubSidiary" + condition);
  if (!year) year = firstField(session, "Select iYear From IA_ENSubSidiary" + condition);
  if (!year) {
    throw failure(hresult::fail, "No ledger line is posted to voucher " + postingId +
                                     ", so that its year is not known; refresh the report.");
  }
  return number<int>(*year, "The year of voucher " + postingId);
}

bool isLedgerModule(const std::string& moduleCode) {
  return equalIgnoringCase(trimBlanks(moduleCode).substr(0, ledgerModuleCode.size()), ledgerModuleCode);
}

DrillThrough showLedgerVoucher(Module& module, const Access& access, ReportRow& row) {
  const std::string postingId = row.value("cPZID");
  if (postingId.empty()) {
    ResourceService& resources = module.resources();
    resources.showMessage(resources.text(notPostedKey), warning);
    return DrillThrough::notPosted;
  }
  const int year = voucherYear(*access.session, postingId);
  Login& login = *access.login;

  const auto ledger = module.platform().createLedgerModule();
  const auto component = module.platform().createLedgerVoucherComponent();
  if (module.business) ledger->setBusiness(*module.business);
  ledger->setLogin(login);
  const std::string connection = login.accountConnection();
  ledger->initialise(connection, ";PWD=" + login.password(), year, login);
  component->setLogin(login);
  component->setModule(*ledger);

  LedgerVoucher voucher{.id = row.value("iPZID"), .menuCode = {}, .moduleTitle = {}};
  if (isLedgerModule(login.moduleCode())) {
    voucher.menuCode = std::string(ledgerModuleCode) + std::string(ledgerMenu);
  } else {
    voucher.menuCode = inventoryMenu;
    voucher.moduleTitle = inventoryTitle;
  }
  component->open(voucher);
  return DrillThrough::ledgerVoucher;
}

// Releases session and login however the drill-through ends, unless another run has put its own in their place.
class ReleaseAtEnd {
 public:
  ReleaseAtEnd(Module& module, const Access& access) : module_(module), access_(access) {}
  ReleaseAtEnd(const ReleaseAtEnd&) = delete;
  ReleaseAtEnd& operator=(const ReleaseAtEnd&) = delete;
  ~ReleaseAtEnd() {
    if (access_.session && module_.session != access_.session) return;
    module_.session = nullptr;
    module_.login = nullptr;
  }

 private:
  Module& module_;
  const Access& access_;
};

DrillThrough open(Module& module, const Access& access, ReportArgument& argument) {
  const std::unique_ptr<ReportRow> row = argument.row();
  const std::string typeName = row->value("cVouType");
  if (typeName.empty()) return DrillThrough::nothing;
  openSession(*access.session, *access.login);
  module.publicComponent();  // created before the action is looked at
  if (argument.action() != "Vouch") return showLedgerVoucher(module, access, *row);
  showSourceVoucher(module, access, *row, typeName);
  return DrillThrough::sourceVoucher;
}

}  // namespace

DrillThrough drillThrough(Module& module, ReportArgument& argument) {
  Access access;
  const ReleaseAtEnd release(module, access);
  access.session = module.platform().createSession();
  module.takeSession(access.session);
  access.login = argument.login();
  module.login = access.login;
  return open(module, access, argument);
}

}  // namespace quillon
