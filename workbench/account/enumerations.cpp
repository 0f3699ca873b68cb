#include "workbench/account/enumerations.h"

#include <string_view>

#include "workbench/account/table_writer.h"

namespace quillon::account {
namespace {

struct VoucherType {
  std::string_view code;
  std::string_view chinese;  // also the code of its name in AA_Enum
  std::string_view english;
};

constexpr VoucherType voucherTypes[] = {
    {"01", "采购入库单", "Purchase receipt"},
    {"05", "发货单", "Delivery note"},
    {"06", "委托代销发货单", "Consignment delivery note"},
    {"08", "其他出库单", "Other issue"},
    {"09", "其他入库单", "Other receipt"},
    {"10", "产成品入库单", "Finished goods receipt"},
    {"11", "材料出库单", "Material issue"},
    {"20", "入库调整单", "Receipt adjustment"},
    {"21", "出库调整单", "Issue adjustment"},
    {"22", "计划价调整单", "Planned price adjustment"},
    {"24", "红字回冲单", "Red-ink write-back"},
    {"25", "直运采购发票", "Direct shipment purchase invoice"},
    {"26", "销售专用发票", "Sales special invoice"},
    {"27", "销售普通发票", "Sales ordinary invoice"},
    {"28", "销售调拨单", "Sales transfer order"},
    {"29", "零售日报", "Daily retail report"},
    {"30", "蓝字回冲单", "Blue-ink write-back"},
    {"32", "销售出库单", "Sales issue"},
    {"33", "期初差异", "Opening difference"},
    {"34", "期初结存", "Opening balance"},
    {"35", "差异结转单", "Difference carry-over"},
    {"70", "代管挂账确认单", "Consignment confirmation"},
    {"EX26", "出口专用发票", "Export special invoice"},
    {"EX27", "出口普通发票", "Export ordinary invoice"},
};

struct TwoNames {
  std::string_view chinese;
  std::string_view english;
};

// The bookkeeping variants of three voucher types, told apart by the ledger's bFlag.
constexpr TwoNames voucherVariants[] = {
    {"采购入库单(报销记账)", "Purchase receipt (invoiced)"},
    {"采购入库单(暂估记账)", "Purchase receipt (estimated)"},
    {"蓝字回冲单(报销)", "Blue-ink write-back (invoiced)"},
    {"蓝字回冲单(暂估)", "Blue-ink write-back (estimated)"},
    {"代管挂账确认单(报销记账)", "Consignment confirmation (invoiced)"},
    {"代管挂账确认单(暂估记账)", "Consignment confirmation (estimated)"},
};

constexpr TwoNames businessTypes[] = {
    {"普通采购", "Ordinary purchase"},
    {"委外加工", "Subcontracting"},
    {"受托代销", "Consignment in"},
    {"普通销售", "Ordinary sale"},
    {"委托代销", "Consignment out"},
    {"分期收款", "Instalment sale"},
    {"出口发票", "Export invoice"},
    {"直运出口发票", "Direct export invoice"},
    {"领料", "Material requisition"},
    {"假退料", "Nominal material return"},
    {"限额领料", "Limited requisition"},
    {"直接供应", "Direct supply"},
    {"配比出库", "Issue by recipe"},
    {"委外发料", "Issue to subcontractor"},
    {"委外倒冲", "Subcontracting backflush"},
    {"委外盘点补差", "Subcontracting count difference"},
    {"生产倒冲", "Production backflush"},
    {"生产盘点补差", "Production count difference"},
    {"成品入库", "Finished goods receipt"},
    {"调拨入库", "Transfer in"},
    {"调拨出库", "Transfer out"},
    {"组装入库", "Assembly receipt"},
    {"组装出库", "Assembly issue"},
    {"拆卸入库", "Disassembly receipt"},
    {"拆卸出库", "Disassembly issue"},
    {"转换入库", "Conversion receipt"},
    {"转换出库", "Conversion issue"},
    {"盘盈入库", "Count surplus"},
    {"盘亏出库", "Count shortage"},
    {"降级入库", "Downgrade receipt"},
    {"不合格品", "Rejects"},
    {"其他入库", "Other receipt"},
    {"其他出库", "Other issue"},
    {"签回损失", "Loss on delivery"},
    {"备件领用", "Spare parts issue"},
    {"服务配件领用", "Service parts issue"},
    {"一般贸易进口", "General trade import"},
    {"进料加工", "Processing of imported material"},
    {"配件出库", "Parts issue"},
    {"配件退库", "Parts return"},
    {"直运采购", "Direct shipment purchase"},
    {"直运销售", "Direct shipment sale"},
    {"分项调整", "Cost item adjustment"},
};

constexpr TwoNames filterFields[] = {
    {"单据编码", "Voucher code"},
    {"单据类型", "Voucher type"},
};

struct ReceiptIssueType {
  std::string_view code;
  std::string_view name;
  bool receipt;
};

constexpr ReceiptIssueType receiptIssueTypes[] = {
    {"101", "采购入库", true},  {"102", "产成品入库", true}, {"103", "其他入库", true},  {"104", "调拨入库", true},
    {"105", "盘盈入库", true},  {"106", "委外入库", true},   {"107", "入库调整", true},  {"201", "领料出库", false},
    {"202", "销售出库", false}, {"203", "其他出库", false},  {"204", "调拨出库", false}, {"205", "盘亏出库", false},
    {"206", "委外发料", false}, {"207", "出库调整", false},
};

// By expense type, from 0.
constexpr TwoNames expenseTypes[] = {
    {"材料", "Material"},
    {"人工", "Labour"},
    {"制造费用", "Manufacturing overhead"},
    {"动力", "Energy"},
    {"采购费用", "Purchase costs"},
    {"委外加工费", "Subcontracting"},
};

void addNames(TableWriter& enumerations, std::string_view type, std::string_view code, std::string_view chinese,
              std::string_view english) {
  enumerations.add(type, code, "zh-CN", chinese);
  enumerations.add(type, code, "en-US", english);
}

}  // namespace

void writeEnumerations(tsql::Connection& connection) {
  TableWriter types(connection, "VouchType", {"cVouchType", "cVouchName"});
  TableWriter enumerations(connection, "AA_Enum", {"EnumType", "EnumCode", "LocaleId", "EnumName"});
  for (const VoucherType& type : voucherTypes) {
    types.add(type.code, type.chinese);
    addNames(enumerations, "IA.VchType", type.chinese, type.chinese, type.english);
    addNames(enumerations, "IA.BillforVch", type.chinese, type.chinese, type.english);
  }
  for (const TwoNames& variant : voucherVariants) {
    addNames(enumerations, "IA.BillforVch", variant.chinese, variant.chinese, variant.english);
  }
  for (const TwoNames& type : businessTypes) {
    addNames(enumerations, "IA.BusType", type.chinese, type.chinese, type.english);
  }
  for (const TwoNames& field : filterFields) {
    addNames(enumerations, "IA.FltField", field.chinese, field.chinese, field.english);
  }

  TableWriter receiptIssue(connection, "Rd_Style", {"cRdCode", "cRdName", "bRdFlag"});
  for (const ReceiptIssueType& type : receiptIssueTypes)
    receiptIssue.add(type.code, type.name, type.receipt);

  TableWriter expenses(connection, "Ca_AmoTypeName", {"cAmoType", "localid", "cAmoTypeName"});
  int number = 0;
  for (const TwoNames& type : expenseTypes) {
    expenses.add(number, "zh-CN", type.chinese);
    expenses.add(number, "en-US", type.english);
    ++number;
  }
}

}  // namespace quillon::account
