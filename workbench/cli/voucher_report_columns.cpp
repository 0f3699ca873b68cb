#include <string>
#include <vector>

#include "workbench/cli/report_columns.h"

namespace quillon::workbench {

namespace {

void addNumbered(std::vector<ReportColumn>& columns, const std::string& name, const std::string& chinese,
                 const std::string& english, ColumnRole role, int first, int last) {
  for (int number = first; number <= last; ++number) {
    const std::string text = std::to_string(number);
    columns.push_back({name + text, chinese + text, std::string(english).append(" ").append(text), role});
  }
}

// The figures of the line stand on each of its rows, so that only those of the cost item are summed.
std::vector<ReportColumn> makeFxWtColumns() {
  using enum ColumnRole;
  std::vector<ReportColumn> columns = {
      {"AutoID", "流水号", "Ledger line", internal},
      {"dKeepDate", "记账日期", "Posting date", date},
      {"dVouDate", "单据日期", "Document date", date},
      {"cVouType", "单据类型编码", "Voucher type code"},
      {"cVouCode", "单据号", "Voucher number"},
      {"cBusType", "业务类型", "Business type"},
      {"cPzID", "凭证标识", "Accounting voucher"},
      {"iPzid", "凭证分录", "Accounting voucher entry", internal},
      {"PzNoId", "凭证号", "Accounting voucher number"},
      {"cPZdigest", "凭证摘要", "Voucher digest"},
      {"cWhCode", "仓库编码", "Warehouse code", further},
      {"cWhName", "仓库", "Warehouse"},
      {"cInvCCode", "存货分类编码", "Inventory class code", further},
      {"cInvCode", "存货编码", "Inventory code"},
      {"cInvName", "存货", "Inventory"},
      {"cInvStd", "规格型号", "Specification"},
      {"cInvAddCode", "存货代码", "Additional code", further},
      {"cComUnitName", "主计量单位", "Unit"},
      {"cAssComUnitName", "辅计量单位", "Second unit", further},
      {"cBatchia", "批号", "Batch"},
  };
  addNumbered(columns, "cFree", "自由项", "Free item", text, 1, 10);
  columns.insert(columns.end(), {
                                    {"iAInQuantity", "收入数量", "Receipt quantity", movement},
                                    {"iInCost", "收入单价", "Receipt unit cost", unitCost},
                                    {"iAInPrice", "收入金额", "Receipt amount", amount},
                                    {"iAOutQuantity", "发出数量", "Issue quantity", movement},
                                    {"iOutCost", "发出单价", "Issue unit cost", unitCost},
                                    {"iAOutPrice", "发出金额", "Issue amount", amount},
                                    {"cfxcCode", "项目分类编码", "Cost-item class code", further},
                                    {"cfxcName", "项目分类", "Cost-item class", further},
                                    {"cfxCode", "成本项目编码", "Cost item code"},
                                    {"cfxName", "成本项目", "Cost item"},
                                    {"cAmoType", "费用类型", "Expense type"},
                                    {"cAmoID", "费用项目编码", "Expense item code"},
                                    {"cAmoName", "费用项目", "Expense item"},
                                    {"iItemInQuantity", "成本项目收入数量", "Cost item receipt quantity", quantity},
                                    {"iIteminCost", "成本项目收入单价", "Cost item receipt unit cost", internal},
                                    {"iIteminPrice", "成本项目收入金额", "Cost item receipt amount", money},
                                    {"iItemoutQuantity", "成本项目发出数量", "Cost item issue quantity", quantity},
                                    {"iItemoutCost", "成本项目发出单价", "Cost item issue unit cost", internal},
                                    {"iItemOutPrice", "成本项目发出金额", "Cost item issue amount", money},
                                    {"iUnitCost", "成本项目单价", "Cost item unit cost", unitCost},
                                    {"iUnitUsed", "单位用量", "Usage per unit", movement},
                                    {"cRdCode", "收发类别编码", "Receipt/issue type code", further},
                                    {"cRdName", "收发类别", "Receipt/issue type"},
                                    {"cAccDep", "核算部门编码", "Accounting department code", further},
                                    {"cDepName", "核算部门", "Accounting department"},
                                    {"cDeptID", "成本中心编码", "Cost centre code", further},
                                    {"costDepName", "成本中心", "Cost centre"},
                                    {"cProCode", "生产部门编码", "Production department code", further},
                                    {"cVCCode", "供应商分类编码", "Vendor class code", further},
                                    {"cVCName", "供应商分类", "Vendor class", further},
                                    {"cVenCode", "供应商编码", "Vendor code", further},
                                    {"cVenName", "供应商", "Vendor"},
                                    {"cCCCode", "客户分类编码", "Customer class code", further},
                                    {"cCCName", "客户分类", "Customer class", further},
                                    {"cCusCode", "客户编码", "Customer code", further},
                                    {"cCusName", "客户", "Customer"},
                                    {"cItem_Class", "项目大类编码", "Project class code", further},
                                    {"cItem_Classname", "项目大类", "Project class", further},
                                    {"cItemCode", "项目编码", "Project item code", further},
                                    {"cName", "项目", "Project item", further},
                                    {"cHandler", "经手人", "Handled by", further},
                                    {"cAccounter", "记账人", "Posted by", further},
                                    {"cMemo", "备注", "Memo", further},
                                    {"cBusCode", "业务号", "Business number", further},
                                    {"strContractCode", "合同号", "Contract", further},
                                    {"cproordercode", "生产订单号", "Production order", further},
                                    {"iproorderids", "生产订单行标识", "Production order line", internal},
                                    {"cworkprocode", "工序行号", "Operation", further},
                                    {"cworkcentercode", "工作中心编码", "Work centre code", further},
                                    {"cworkcentername", "工作中心", "Work centre", further},
                                    {"csaleordercode", "销售订单号", "Sales order", further},
                                    {"isaleorderids", "销售订单行标识", "Sales order line", internal},
                                    {"exoCode", "出口订单号", "Export order", further},
                                    {"iExRowno", "出口订单行号", "Export order line", internal},
                                    {"centrustordercode", "委外订单号", "Subcontracting order", further},
                                    {"cpurordercode", "采购订单号", "Purchase order", further},
                                    {"cIMOrderCode", "进口订单号", "Import order", further},
                                    {"cDemandCode", "需求跟踪号", "Demand", further},
                                    {"cdemandmemo", "需求跟踪说明", "Demand memo", further},
                                });
  addNumbered(columns, "cInvDefine", "存货自定义项", "Inventory field", userDefined, 1, 16);
  addNumbered(columns, "cDefine", "自定义项", "User-defined field", userDefined, 1, 16);
  addNumbered(columns, "cDefine", "自定义项", "User-defined field", userDefined, 22, 37);
  return columns;
}

}  // namespace

std::span<const ReportColumn> fxWtColumns() {
  static const std::vector<ReportColumn> columns = makeFxWtColumns();
  return columns;
}

}  // namespace quillon::workbench
