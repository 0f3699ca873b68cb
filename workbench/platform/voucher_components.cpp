#include "workbench/platform/voucher_components.h"

#include <algorithm>

#include "frame/automation_error.h"
#include "frame/text.h"
#include "workbench/platform/account_session.h"

namespace quillon::workbench {

namespace {

using enum VoucherField::Kind;

AutomationError failure(HResult code, std::string_view component, std::string description) {
  return {code, std::string(component), std::move(description)};
}

constexpr std::string_view sourceComponent = "PellUniVch.clsUniVch";
constexpr std::string_view ledgerComponent = "ZzPz.clsPZ";

constexpr Caption sourceTitle{"源单据", "Source document"};
constexpr Caption ledgerTitle{"记账凭证", "General-ledger voucher"};

// --- Source documents -----------------------------------------------------------------------------------------------

const std::vector<VoucherField> sourceHeading = {
    {"cVouType", {"单据类型", "Voucher type"}},
    {"cVouName", {"单据名称", "Voucher name"}},
    {"cVouCode", {"单据号", "Voucher number"}},
    {"dVouDate", {"单据日期", "Document date"}},
    {"dKeepDate", {"记账日期", "Posting date"}},
    {"cBusType", {"业务类型", "Business type"}},
    {"cRdName", {"收发类别", "Receipt/issue type"}},
    {"cWhName", {"仓库", "Warehouse"}},
    {"cDepName", {"部门", "Department"}},
    {"cVenName", {"供应商", "Vendor"}},
    {"cCusName", {"客户", "Customer"}},
    {"cMaker", {"制单人", "Prepared by"}},
};
// The heading's fields, of the line on which the document is opened.
constexpr std::string_view sourceHeadingQuery =
    "Select base.cVouType, IsNull(name.EnumName, base.cVouType), base.cVouCode, base.dVouDate, base.dKeepDate, "
    "base.cBusType, style.cRdName, place.cWhName, dep.cDepName, ven.cVenName, cus.cCusName, base.cMaker "
    "From ia_subsidiary base "
    "left join VouchType kind on kind.cVouchType = base.cVouType "
    "left join AA_Enum name on name.EnumType = N'IA.vchtype' and name.EnumCode = kind.cVouchName and name.LocaleId = ";
constexpr std::string_view sourceHeadingMasters =
    " left join Rd_Style style on style.cRdCode = base.cRdCode "
    "left join Warehouse place on place.cWhCode = base.cWhCode "
    "left join Department dep on dep.cDepCode = base.cDepCode "
    "left join Vendor ven on ven.cVenCode = base.cVenCode "
    "left join Customer cus on cus.cCusCode = base.cCusCode ";

const std::vector<VoucherField> sourceColumns = {
    {"AutoID", {"流水号", "Ledger line"}},
    {"cInvCode", {"存货编码", "Inventory code"}},
    {"cInvName", {"存货", "Inventory"}},
    {"cBatchIA", {"批号", "Batch"}},
    {"cFxCode", {"成本项目编码", "Cost item code"}},
    {"cFxName", {"成本项目", "Cost item"}},
    {"iQuantity", {"数量", "Quantity"}, quantity},
    {"iPrice", {"金额", "Amount"}, money},
};
// A line without cost items shows its own figures.
constexpr std::string_view sourceLinesQuery =
    "Select base.AutoID, base.cInvCode, inv.cInvName, base.cBatchIA, fx.cFxCode, fx.cFxName, "
    "Case When part.AutoID Is Null Then Case When base.bRdFlag = 1 Then base.iAInQuantity Else base.iAOutQuantity End "
    "When base.bRdFlag = 1 Then part.iItemInQuantity Else part.iItemOutQuantity End, "
    "Case When part.AutoID Is Null Then Case When base.bRdFlag = 1 Then base.iAInPrice Else base.iAOutPrice End "
    "When base.bRdFlag = 1 Then part.iItemInPrice Else part.iItemOutPrice End "
    "From ia_subsidiary base "
    "left join ia_subsidiary_Item part on part.iSubID = base.AutoID "
    "left join Ca_FxDef fx on fx.iFxID = part.iItemID "
    "left join Inventory inv on inv.cInvCode = base.cInvCode ";
constexpr std::string_view sourceLinesOrder = " Order By base.AutoID, part.AutoID";

// --- General-ledger vouchers ----------------------------------------------------------------------------------------

const std::vector<VoucherField> ledgerHeading = {
    {"cSign", {"凭证类别", "Voucher class"}}, {"ino_id", {"凭证号", "Voucher number"}},
    {"dbill_date", {"制单日期", "Date"}},     {"iPeriod", {"会计期间", "Period"}},
    {"cBill", {"制单人", "Prepared by"}},
};
constexpr VoucherField menuField = {"menuCode", {"菜单", "Menu"}};
constexpr VoucherField moduleField = {"moduleTitle", {"模块", "Module"}};

const std::vector<VoucherField> ledgerColumns = {
    {"cDigest", {"摘要", "Digest"}},  {"cCode", {"科目编码", "Account code"}}, {"cCode_Name", {"科目", "Account"}},
    {"md", {"借方", "Debit"}, money}, {"mc", {"贷方", "Credit"}, money},
};

std::vector<std::vector<std::string>> rowsOf(Session& session, std::string_view sql, std::size_t columns) {
  std::vector<std::vector<std::string>> result;
  const std::unique_ptr<Recordset> rows = session.query(sql, readOnlyQuery);
  for (; !rows->eof(); rows->moveNext()) {
    auto& row = result.emplace_back();
    for (std::size_t column = 0; column < columns; ++column)
      row.push_back(rows->text(static_cast<int>(column)).value_or(""));
  }
  rows->close();
  return result;
}

std::vector<std::pair<VoucherField, std::string>> headingOf(const std::vector<VoucherField>& fields,
                                                            const std::vector<std::string>& values) {
  std::vector<std::pair<VoucherField, std::string>> heading;
  for (std::size_t i = 0; i < fields.size(); ++i) {
    const bool date = fields[i].name.starts_with('d');
    heading.emplace_back(fields[i], date ? dateOnly(values[i]) : values[i]);
  }
  return heading;
}

bool isNumber(std::string_view text) {
  return !text.empty() && std::ranges::all_of(text, isDigit);
}

}  // namespace

void WorkbenchSourceVouchers::initialise(Login&, Session& session, std::string_view) {
  session_ = &session;
}

void WorkbenchSourceVouchers::showVoucher(VoucherGroup, const SourceVoucher& voucher, Session& session) {
  show("ShowVoucher", session, "base.AutoID = " + std::to_string(voucher.lineId), voucher);
}

void WorkbenchSourceVouchers::showCostItemAdjustment(const SourceVoucher& voucher, Session& session) {
  show("ShowProJust", session, "base.AutoID = " + std::to_string(voucher.lineId), voucher);
}

void WorkbenchSourceVouchers::showDifferences(const SourceVoucher& voucher, bool, std::string_view, Session& session) {
  show("ShowDifVouchs", session, "base.AutoID = " + std::to_string(voucher.lineId), voucher);
}

void WorkbenchSourceVouchers::showPriceAdjustment(const SourceVoucher& voucher) {
  if (session_ == nullptr) throw failure(hresult::unexpected, sourceComponent, "Init has not been called.");
  show("ShowCostJustVouch", *session_, "base.cVouType = N'22' And base.cVouCode = " + quotedText(voucher.code),
       voucher);
}

void WorkbenchSourceVouchers::show(std::string_view member, Session& session, const std::string& lineCondition,
                                   const SourceVoucher& voucher) {
  if (session_ == nullptr) throw failure(hresult::unexpected, sourceComponent, "Init has not been called.");
  const std::string locale = language_ == Language::chinese ? "N'zh-CN'" : "N'en-US'";
  const auto found = rowsOf(
      session, std::string(sourceHeadingQuery) + locale + std::string(sourceHeadingMasters) + "Where " + lineCondition,
      sourceHeading.size());
  if (found.empty()) {
    throw failure(hresult::fail, sourceComponent,
                  "The ledger has no line of document " + voucher.code + " (type " + voucher.type + ", line " +
                      std::to_string(voucher.lineId) + "); run the report again.");
  }
  const std::string& type = found.front()[0];
  const std::string& code = found.front()[2];
  OpenedVoucher opened{.member = std::string(member),
                       .title = sourceTitle,
                       .heading = headingOf(sourceHeading, found.front()),
                       .columns = sourceColumns,
                       .lines = rowsOf(session,
                                       std::string(sourceLinesQuery) + "Where base.cVouType = " + quotedText(type) +
                                           " And base.cVouCode = " + quotedText(code) + std::string(sourceLinesOrder),
                                       sourceColumns.size())};
  if (sink_) sink_(opened);
}

void WorkbenchLedgerModule::initialise(std::string_view connection, std::string_view, int year, Login&) {
  ledger_ = openAccount(makeSession_, connection);
  year_ = year;
}

Session& WorkbenchLedgerModule::ledger() const {
  if (!ledger_) throw failure(hresult::unexpected, "ZzPub.clsPub", "InitPubs2 has not been called.");
  return *ledger_;
}

void WorkbenchLedgerVouchers::setModule(LedgerModule& module) {
  module_ = dynamic_cast<WorkbenchLedgerModule*>(&module);
  if (module_ == nullptr)
    throw failure(hresult::invalidArgument, ledgerComponent, "zzSys is not an object that this platform made.");
}

void WorkbenchLedgerVouchers::open(const LedgerVoucher& voucher) {
  if (module_ == nullptr) throw failure(hresult::unexpected, ledgerComponent, "zzSys has not been set.");
  if (!isNumber(voucher.id)) {
    throw failure(hresult::typeMismatch, ledgerComponent,
                  "\"" + voucher.id + "\" is no number of a general-ledger voucher.");
  }
  Session& ledger = module_->ledger();
  const std::string year = std::to_string(module_->year());
  const std::string entries = " Where entry.iYear = " + year +
                              " And entry.coutNo_ID = (Select coutNo_ID From gl_AccVouch Where i_id = " + voucher.id +
                              ") Order By entry.inid";
  const auto found = rowsOf(ledger,
                            "Select entry.cSign, entry.ino_id, entry.dbill_date, entry.iPeriod, entry.cBill From "
                            "gl_AccVouch entry" +
                                entries,
                            ledgerHeading.size());
  if (found.empty()) {
    throw failure(hresult::fail, ledgerComponent,
                  "The general ledger of " + year + " has no voucher " + voucher.id + "; run the report again.");
  }
  OpenedVoucher opened{
      .member = "StartUpPz",
      .title = ledgerTitle,
      .heading = headingOf(ledgerHeading, found.front()),
      .columns = ledgerColumns,
      .lines = rowsOf(ledger,
                      "Select entry.cDigest, entry.cCode, account.cCode_Name, entry.md, entry.mc From gl_AccVouch "
                      "entry left join Code account on account.iYear = entry.iYear and account.cCode = entry.cCode" +
                          entries,
                      ledgerColumns.size())};
  opened.heading.emplace_back(menuField, voucher.menuCode);
  opened.heading.emplace_back(moduleField, voucher.moduleTitle);
  if (sink_) sink_(opened);
}

}  // namespace quillon::workbench
