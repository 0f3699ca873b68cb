#include "workbench/catalogue/report_columns.h"

#include <vector>

namespace quillon::workbench {

namespace {

void addNumbered(std::vector<ReportColumn>& columns, const std::string& name, const std::string& chinese,
                 const std::string& english, ColumnRole role, int first, int last) {
  for (int number = first; number <= last; ++number) {
    const std::string text = std::to_string(number);
    columns.push_back({name + text, chinese + text, std::string(english).append(" ").append(text), role});
  }
}

void addFreeItems(std::vector<ReportColumn>& columns) {
  addNumbered(columns, "cFree", "自由项", "Free item", ColumnRole::text, 1, 10);
}

// The user-defined fields of the inventory and of the document.
void addUserDefinedFields(std::vector<ReportColumn>& columns) {
  using enum ColumnRole;
  addNumbered(columns, "cInvDefine", "存货自定义项", "Inventory field", userDefined, 1, 16);
  addNumbered(columns, "cDefine", "自定义项", "User-defined field", userDefined, 1, 16);
  addNumbered(columns, "cDefine", "自定义项", "User-defined field", userDefined, 22, 37);
}

std::vector<ReportColumn> makeSfcItemColumns() {
  using enum ColumnRole;
  std::vector<ReportColumn> columns = {
      {"autoid", "流水号", "Ledger line", internal},
      {"cWhCode", "仓库编码", "Warehouse code"},
      {"cWhName", "仓库", "Warehouse"},
      {"cDepCode", "部门编码", "Department code"},
      {"cDepName", "部门", "Department"},
      {"cInvCode", "存货编码", "Inventory code"},
      {"cInvName", "存货", "Inventory"},
      {"cInvStd", "规格型号", "Model"},
      {"cInvAddCode", "存货代码", "Additional code"},
      {"cUnitCode", "计量单位编码", "Unit code", internal},
      {"cUnitName", "计量单位", "Unit"},
      {"cBatchia", "批号", "Batch"},
  };
  addFreeItems(columns);
  columns.insert(columns.end(), {
                                    {"cFXCode", "成本项目编码", "Cost item code"},
                                    {"cFXName", "成本项目", "Cost item"},
                                    {"cFxCName", "费用类型", "Expense type"},
                                    {"cAmoCode", "费用项目编码", "Expense item code"},
                                    {"cAmoName", "费用项目", "Expense item"},
                                    {"dKeepDate", "记账日期", "Posting date", date},
                                    {"dVouDate", "单据日期", "Document date", date},
                                    {"cState", "收发状态", "State"},
                                    {"iState", "状态序号", "State number", internal},
                                    {"iQuantity", "数量", "Quantity", movement},
                                    {"iMoney", "金额", "Amount", amount},
                                    {"iQcQuantity", "期初数量", "Opening quantity", quantity},
                                    {"iQcMoney", "期初金额", "Opening amount", money},
                                    {"iInQuantity", "收入数量", "Receipt quantity", quantity},
                                    {"iInMoney", "收入金额", "Receipt amount", money},
                                    {"iOutQuantity", "发出数量", "Issue quantity", quantity},
                                    {"iOutMoney", "发出金额", "Issue amount", money},
                                    {"iQmQuantity", "期末数量", "Closing quantity", quantity},
                                    {"iQmMoney", "期末金额", "Closing amount", money},
                                    {"cJudgeQuantity", "结存数量判断", "Closing quantity test", internal},
                                    {"cJudgeMoney", "结存金额判断", "Closing amount test", internal},
                                    {"cJudgeCost", "结存单价判断", "Closing unit cost test", internal},
                                    {"cFSType", "收发筛选", "Movements chosen", internal},
                                });
  addUserDefinedFields(columns);
  return columns;
}

std::vector<ReportColumn> makeOutsumItemColumns() {
  using enum ColumnRole;
  std::vector<ReportColumn> columns = {
      {"autoid", "流水号", "Ledger line", internal},
      {"cSource", "数据来源", "Source", internal},
      {"dVouDate", "单据日期", "Document date", date},
      {"cVouType", "单据类型", "Voucher type"},
      {"cBusType", "业务类型", "Business type"},
      {"cVouCode", "单据号", "Voucher number"},
      {"dKeepDate", "记账日期", "Posting date", date},
      {"cWhCode", "仓库编码", "Warehouse code"},
      {"cWhName", "仓库", "Warehouse"},
      {"cInvCCode", "存货分类编码", "Inventory class code"},
      {"cInvCode", "存货编码", "Inventory code"},
      {"cInvName", "存货", "Inventory"},
      {"cInvStd", "规格型号", "Model"},
      {"cInvAddCode", "存货代码", "Additional code"},
      {"cbatchia", "批号", "Batch"},
  };
  addFreeItems(columns);
  columns.insert(columns.end(), {
                                    {"cFXCode", "成本项目编码", "Cost item code"},
                                    {"cFXName", "成本项目", "Cost item"},
                                    {"cFxCName", "费用类型", "Expense type"},
                                    {"cAmoCode", "费用项目编码", "Expense item code"},
                                    {"cAmoName", "费用项目", "Expense item"},
                                    {"iQuantity", "数量", "Quantity", quantity},
                                    {"iMoney", "金额", "Amount", money},
                                    {"iFXMoney", "成本项目金额", "Cost item amount", money},
                                    {"cCross", "交叉项", "Cross item", internal},
                                    {"cInvPspCode", "父项产品编码", "Parent product code"},
                                    {"cInvPspName", "父项产品", "Parent product"},
                                    {"RdCode", "收发类别编码", "Receipt/issue type code"},
                                    {"RdName", "收发类别", "Receipt/issue type"},
                                    {"cCostCenter", "成本中心编码", "Cost centre code"},
                                    {"cCostCenterName", "成本中心", "Cost centre"},
                                    {"cDepCode", "核算部门编码", "Accounting department code"},
                                    {"cDepName", "核算部门", "Accounting department"},
                                    {"cProCode", "生产部门编码", "Production department code"},
                                    {"cWhDep", "单据部门编码", "Document department code"},
                                    {"cWhDepName", "单据部门", "Document department"},
                                    {"cCusCCode", "客户分类编码", "Customer class code"},
                                    {"cCusCName", "客户分类", "Customer class"},
                                    {"cCusCode", "客户编码", "Customer code"},
                                    {"cCusName", "客户", "Customer"},
                                    {"cVenCode", "供应商编码", "Vendor code"},
                                    {"cVenName", "供应商", "Vendor"},
                                    {"cItem_Class", "项目大类编码", "Project class code"},
                                    {"cItem_ClassName", "项目大类", "Project class"},
                                    {"cItemCCode", "项目分类编码", "Project item class code"},
                                    {"cItemCName", "项目分类", "Project item class"},
                                    {"cItemCode", "项目编码", "Project item code"},
                                    {"cItemName", "项目", "Project item"},
                                    {"cOppHead", "对方科目编码", "Contra account code"},
                                    {"cOppHeadName", "对方科目", "Contra account"},
                                    {"strContractCode", "合同号", "Contract"},
                                    {"cProordercode", "生产订单号", "Production order"},
                                    {"iProorderids", "生产订单行标识", "Production order line", internal},
                                    {"cworkprocode", "工序行号", "Operation"},
                                    {"cworkcentercode", "工作中心编码", "Work centre code"},
                                    {"cworkcentername", "工作中心", "Work centre"},
                                    {"cSaleorderCode", "销售订单号", "Sales order"},
                                    {"isaleorderids", "销售订单行标识", "Sales order line", internal},
                                    {"exoCode", "出口订单号", "Export order"},
                                    {"iexrowno", "出口订单行号", "Export order line", internal},
                                    {"cImordercode", "进口订单号", "Import order"},
                                    {"cpurorderCode", "采购订单号", "Purchase order"},
                                    {"centrustordercode", "委外订单号", "Subcontracting order"},
                                    {"cBuscode", "业务号", "Business number"},
                                    {"cperson", "业务员编码", "Person code"},
                                    {"cPersonName", "业务员", "Person"},
                                    {"cMaker", "制单人编码", "Prepared by, code"},
                                    {"cMakerName", "制单人", "Prepared by"},
                                });
  addUserDefinedFields(columns);
  return columns;
}

// The inventory is the same in all rows and stands in the heading.
std::vector<ReportColumn> makeFxDetailColumns() {
  using enum ColumnRole;
  std::vector<ReportColumn> columns = {
      {"RowNo", "行号", "Line"},
      {"dKeepDate", "记账日期", "Posting date", date},
      {"cVouDate", "单据日期", "Document date", further},
      {"cVouType", "单据类型", "Voucher type"},
      {"cVouCode", "单据号", "Voucher number"},
      {"cPZCode", "凭证号", "Ledger voucher"},
      {"cPZdigest", "摘要", "Digest"},
      {"bRdFlag", "收发类别", "Receipt/issue type"},
      {"cBusType", "业务类型", "Business type"},
      {"cWhCode", "仓库编码", "Warehouse code", further},
      {"cWhName", "仓库", "Warehouse"},
      {"cVenCode", "供应商编码", "Vendor code", further},
      {"cVenName", "供应商", "Vendor", further},
      {"cCusCode", "客户编码", "Customer code", further},
      {"cCusName", "客户", "Customer", further},
      {"cItem_class", "项目大类编码", "Project class code", further},
      {"cItemCName", "项目大类", "Project class", further},
      {"cItemCode", "项目编码", "Project item code", further},
      {"cName", "项目", "Project item", further},
      {"cBusCode", "业务号", "Business number", further},
      {"strContractCode", "合同号", "Contract", further},
      {"cproordercode", "生产订单号", "Production order", further},
      {"iproorderids", "生产订单行标识", "Production order line", internal},
      {"cworkprocodedis", "工序", "Operation", further},
      {"cworkcentercode", "工作中心编码", "Work centre code", further},
      {"csaleordercode", "销售订单号", "Sales order", further},
      {"isaleorderids", "销售订单行标识", "Sales order line", internal},
      {"exoCode", "出口订单号", "Export order", further},
      {"iExRowno", "出口订单行号", "Export order line", internal},
      {"centrustordercode", "委外订单号", "Subcontracting order", further},
      {"cOrderCode", "采购订单号", "Purchase order", further},
      {"cAccounter", "记账人", "Posted by", further},
      {"cBatchia", "批号", "Batch"},
  };
  addFreeItems(columns);
  addUserDefinedFields(columns);
  columns.insert(columns.end(), {
                                    {"iQuantity", "数量", "Quantity", movement},
                                    {"iCost", "单价", "Unit cost", unitCost},
                                    {"iPrice", "金额", "Amount", amount},
                                });
  for (ReportColumn& column : columns)
    column.ofLine = true;
  columns.insert(columns.end(), {
                                    {"cfxCCode", "项目分类编码", "Cost-item class code", further},
                                    {"cfxCName", "项目分类", "Cost-item class"},
                                    {"cfxCode", "成本项目编码", "Cost item code"},
                                    {"cfxName", "成本项目", "Cost item"},
                                    {"iItemQuantity", "成本项目数量", "Cost item quantity", movement},
                                    {"iItemCost", "成本项目单价", "Cost item unit cost", unitCost},
                                    {"iItemPrice", "成本项目金额", "Cost item amount", amount},
                                    {"id", "流水号", "Ledger line", internal},
                                    {"datatype", "行类型", "Row kind", internal},
                                    {"cInvCode", "存货编码", "Inventory code", internal},
                                    {"cInvName", "存货", "Inventory", internal},
                                    {"cInvAddCode", "存货代码", "Additional code", internal},
                                    {"cInvStd", "规格型号", "Model", internal},
                                    {"cUnitName", "计量单位", "Unit", internal},
                                    {"cPZID", "凭证标识", "Ledger voucher key", internal},
                                    {"iPZID", "凭证分录标识", "Ledger voucher entry", internal},
                                });
  return columns;
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
      {"cInvStd", "规格型号", "Model"},
      {"cInvAddCode", "存货代码", "Additional code", further},
      {"cComUnitName", "主计量单位", "Unit"},
      {"cAssComUnitName", "辅计量单位", "Second unit", further},
      {"cBatchia", "批号", "Batch"},
  };
  addFreeItems(columns);
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
  addUserDefinedFields(columns);
  return columns;
}

}  // namespace

std::span<const ReportColumn> sfcItemColumns() {
  static const std::vector<ReportColumn> columns = makeSfcItemColumns();
  return columns;
}

std::span<const ReportColumn> outsumItemColumns() {
  static const std::vector<ReportColumn> columns = makeOutsumItemColumns();
  return columns;
}

std::span<const ReportColumn> fxDetailColumns() {
  static const std::vector<ReportColumn> columns = makeFxDetailColumns();
  return columns;
}

std::span<const ReportColumn> fxWtColumns() {
  static const std::vector<ReportColumn> columns = makeFxWtColumns();
  return columns;
}

}  // namespace quillon::workbench
