#include "filters/wt_filter_control.h"

#include <array>
#include <memory>

#include "filters/dialog_rules.h"
#include "frame/account_options.h"
#include "frame/report_session.h"
#include "frame/statement.h"

namespace quillon {

namespace {

// The identifier that the platform gave the report's filter; compared to the letter.
constexpr std::string_view voucherReport = "3D1986A9-884B-4835-B4AA-DCCBD2E1487C";

// 委外发料 stands in it twice: before the other subcontracting issues and among the issues of parts.
constexpr std::string_view businessTypes =
    "普通采购,委外加工,受托代销,普通销售,委托代销,分期收款,出口发票,直运出口发票,领料,假退料,限额领料,直接供应,配比出库,"
    "委外发料,委外倒冲,委外盘点补差,生产倒冲,生产盘点补差,成品入库,调拨入库,调拨出库,组装入库,组装出库,拆卸入库,拆卸出库,转换入库,转换出库,"
    "盘盈入库,盘亏出库,降级入库,不合格品,其他入库,其他出库,签回损失,备件领用,委外发料,服务配件领用,一般贸易进口,进料加工,配件出库,配件退库";

// Only the industrial edition has finished goods receipts and material issues, 10 and 11.
constexpr std::string_view industrialTypes =
    " and cvouchtype in ('05','06','08','09','10','11','20','21','22','25','24','26','27','28','29','32','35','EX26','EX27')";
constexpr std::string_view otherTypes =
    " and cvouchtype in ('05','06','08','09','20','21','22','24','25','26','27','28','29','32','35','EX26','EX27')";

// Flavours of a voucher type that VouchType has no rows for; the codes with a 1 behind them are the second flavours.
struct FlavouredType {
  std::string_view code;
  std::string_view enumeration;  // its code in the enumeration of voucher types
};
constexpr std::array flavouredTypes{
    FlavouredType{"01", "采购入库单(报销记账)"},     FlavouredType{"011", "采购入库单(暂估记账)"},
    FlavouredType{"30", "蓝字回冲单(报销)"},         FlavouredType{"301", "蓝字回冲单(暂估)"},
    FlavouredType{"70", "代管挂账确认单(报销记账)"}, FlavouredType{"701", "代管挂账确认单(暂估记账)"},
};

struct ClassLookup {
  std::string_view changed;
  std::string_view restricted;
  std::string_view column;  // of the looked-up table
};
constexpr std::array classLookups{
    ClassLookup{"Inventory.cInvCCode", "Inventory.cInvCode", "cInvCCode"},
    ClassLookup{"Customer.cCCCode", "Customer.cCusCode", "cCCCode"},
    ClassLookup{"Vendor.cVCCode", "Vendor.cVenCode", "cVCCode"},
};

// Unlike in the other dialogs, an account that is valued by inventory can still be asked for a warehouse, and an
// unknown method for both.
void applyVoucherReportRule(FilterDialog& dialog, std::string_view valuationMethod) {
  dialog.setUnavailable("cWhCode", false);
  dialog.setUnavailable("cDepCode", false);
  if (valuationMethod == valuationByDepartment) {
    dialog.setUnavailable("cWhCode", true);
  } else if (valuationMethod == valuationByWarehouse || valuationMethod == valuationByInventory) {
    dialog.setUnavailable("cDepCode", true);
  }
}

}  // namespace

void WtFilterControl::filterInit(FilterDialog& dialog) {
  openDialogSession(module_, dialog);
  liftDataRights(module_);
  if (dialog.identifier() != voucherReport) return;
  offerChoices(dialog);
  applyVoucherReportRule(dialog,
                         module_.publicComponent().accountInformation("IA", "cValueStyle", dialog.connection()));
}

void WtFilterControl::valueChange(std::string_view key, FilterDialog& dialog) {
  for (const ClassLookup& lookup : classLookups) {
    if (key != lookup.changed) continue;
    const std::string value = dialog.item(key)->value();
    dialog.setLookupConditionOfValue(lookup.restricted, concatenated({" #FN[", lookup.column, "]='", value, "'"}),
                                     value.empty());
  }
}

void WtFilterControl::offerChoices(FilterDialog& dialog) {
  const std::string languageRegion = module_.loginInUse().languageRegion();
  const int count = dialog.count();
  for (int position = 1; position <= count; ++position) {
    const std::unique_ptr<DialogItem> item = dialog.item(position);
    const std::string name = item->name();
    if (name == "cBusType") {
      item->setListSource(businessTypes);
    } else if (name == "cVouType") {
      item->setListSource(voucherTypesStatement(dialog, languageRegion));
    }
  }
}

// The choices are the statement's rows: code and name, under localized headings.
std::string WtFilterControl::voucherTypesStatement(FilterDialog& dialog, std::string_view languageRegion) {
  ResourceService& resources = module_.resources();
  const std::string codeHeading = resources.enumName("IA.FltField", "单据编码");
  const std::string nameHeading = resources.enumName("IA.FltField", "单据类型");
  const std::string edition = module_.publicComponent().accountInformation("AA", "cSysVersion", dialog.connection());
  std::string statement = concatenated({
      "select cVouchType as [",
      codeHeading,
      "] ,EnumName  As [",
      nameHeading,
      "] from VouchType inner join aa_enum on cVouchName=EnumCode where LocaleID='",
      languageRegion,
      "' and EnumType='IA.BillforVch' ",
      edition == industrialEdition ? industrialTypes : otherTypes,
  });
  for (const FlavouredType& type : flavouredTypes) {
    if (&type != &flavouredTypes.front()) statement += "' ";
    statement +=
        concatenated({" Union select '", type.code, "','", resources.enumName("IA.BillforVch", type.enumeration)});
  }
  return statement + "' Order By [" + codeHeading + "]";
}

}  // namespace quillon
