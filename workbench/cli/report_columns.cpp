#include "workbench/cli/report_columns.h"

#include <vector>

namespace quillon::workbench {

namespace {

void addNumbered(std::vector<ReportColumn>& columns, const std::string& name, const std::string& chinese,
                 const std::string& english, int first, int last) {
  for (int number = first; number <= last; ++number) {
    const std::string text = std::to_string(number);
    columns.push_back({name + text, chinese + text, std::string(english).append(" ").append(text)});
  }
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
      {"cInvStd", "规格型号", "Specification"},
      {"cInvAddCode", "存货代码", "Additional code"},
      {"cUnitCode", "计量单位编码", "Unit code", internal},
      {"cUnitName", "计量单位", "Unit"},
      {"cBatchia", "批号", "Batch"},
  };
  addNumbered(columns, "cFree", "自由项", "Free item", 1, 10);
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
  addNumbered(columns, "cInvDefine", "存货自定义项", "Inventory field", 1, 16);
  addNumbered(columns, "cDefine", "自定义项", "User-defined field", 1, 16);
  addNumbered(columns, "cDefine", "自定义项", "User-defined field", 22, 37);
  return columns;
}

}  // namespace

std::span<const ReportColumn> sfcItemColumns() {
  static const std::vector<ReportColumn> columns = makeSfcItemColumns();
  return columns;
}

}  // namespace quillon::workbench
