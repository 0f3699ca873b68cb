#include "workbench/catalogue/sfc_item.h"

#include <array>

#include "reports/sfc_item/sfc_item.h"
#include "workbench/catalogue/registration_items.h"
#include "workbench/platform/resource_texts.h"

namespace quillon::workbench {

namespace {

// The closing balance compared with nothing: the digits of the three cJudge items.
std::vector<Choice> signChoices() {
  return {{"0", "大于零", "above zero"}, {"1", "等于零", "zero"}, {"2", "小于零", "below zero"}};
}

ReportRegistration sfcItemRegistration() {
  ReportRegistration report{.name = "sfc-item",
                            .chinese = "收发存汇总表（按成本项目）",
                            .english = "Receipt/issue/balance by cost item",
                            .identifier = "CA3BAD03-9D4C-463A-827E-E971D5A36C81",
                            .items = summaryReportItems()};
  append(report.items, {
                           {.key = "dKeepDate",
                            .chinese = "记账日期",
                            .english = "Posting date",
                            .kind = InputKind::date,
                            .range = true,
                            .column = "base.dKeepDate"},
                           {.key = "dVouDate",
                            .chinese = "单据日期",
                            .english = "Document date",
                            .kind = InputKind::date,
                            .range = true,
                            .column = "base.dVouDate"},
                           {.key = "cInvClass",
                            .chinese = "存货分类",
                            .english = "Inventory class",
                            .kind = InputKind::reference,
                            .column = "inv.cInvCCode",
                            .lookup = &inventoryClasses,
                            .beginning = true},
                           {.key = "cInvCode",
                            .chinese = "存货",
                            .english = "Inventory",
                            .kind = InputKind::reference,
                            .multiple = true,
                            .column = "base.cInvCode",
                            .lookup = &inventories},
                           {.key = "cWhCode",
                            .chinese = "仓库",
                            .english = "Warehouse",
                            .kind = InputKind::reference,
                            .multiple = true,
                            .column = "base.cWhCode",
                            .lookup = &warehouses},
                           {.key = "cDepCode",
                            .chinese = "部门",
                            .english = "Department",
                            .kind = InputKind::reference,
                            .multiple = true,
                            .column = "base.cDepCode",
                            .lookup = &departments},
                           {.key = "cFSType",
                            .chinese = "收发状态",
                            .english = "Movements",
                            .kind = InputKind::choice,
                            .defaultValue = "0",
                            .choices = {{"0", "全部", "all"},
                                        {"1", "有收发", "receipts or issues"},
                                        {"2", "无收发", "neither"},
                                        {"3", "只有收入", "receipts only"},
                                        {"4", "只有发出", "issues only"}}},
                           {.key = "cJudgeQuantity",
                            .chinese = "结存数量",
                            .english = "Closing quantity",
                            .kind = InputKind::choice,
                            .multiple = true,
                            .choices = signChoices()},
                           {.key = "cJudgeMoney",
                            .chinese = "结存金额",
                            .english = "Closing amount",
                            .kind = InputKind::choice,
                            .multiple = true,
                            .choices = signChoices()},
                           {.key = "cJudgeCost",
                            .chinese = "结存单价",
                            .english = "Closing unit cost",
                            .kind = InputKind::choice,
                            .multiple = true,
                            .choices = signChoices()},
                           {.key = "bIncludeExpire",
                            .chinese = "包含停用存货",
                            .english = "Include discontinued inventory",
                            .kind = InputKind::flag,
                            .defaultValue = "1",
                            .choices = yesNo()},
                           {.key = "bIncludeTransVouch",
                            .chinese = "包含调拨业务",
                            .english = "Include transfers",
                            .kind = InputKind::flag,
                            .defaultValue = "1",
                            .choices = yesNo()},
                           batchItem("cBatchIA"),
                       });
  append(report.items, freeItems());
  append(report.items, definedFields());
  return report;
}

std::vector<ReportColumn> sfcItemColumns() {
  using enum ColumnRole;
  std::vector<ReportColumn> all = {
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
  addFreeItems(all);
  all.insert(all.end(), {
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
  addUserDefinedFields(all);
  return all;
}

// By cost item or class, a row has one state, numbered 1 to 4, and its quantity and money are that state's. By expense
// item it has none, but a pair of columns for each.
std::vector<CrossState> sfcItemStates(std::string_view mode) {
  struct State {
    std::string_view nameKey;
    std::string_view quantity;
    std::string_view money;
  };
  static constexpr std::array states = {
      State{openingBalanceKey, "iQcQuantity", "iQcMoney"}, State{receiptKey, "iInQuantity", "iInMoney"},
      State{issueKey, "iOutQuantity", "iOutMoney"}, State{closingBalanceKey, "iQmQuantity", "iQmMoney"}};
  std::vector<CrossState> result;
  for (const State& state : states) {
    const std::string number = std::to_string(result.size() + 1);
    const auto ofState = [&number](std::string_view column) {
      return "Case When iState = " + number + " Then " + orZero(column) + " Else 0 End";
    };
    if (mode == "2") {
      result.push_back({state.nameKey, orZero(state.quantity), orZero(state.money)});
    } else {
      result.push_back({state.nameKey, ofState("iQuantity"), ofState("iMoney"), number});
    }
  }
  return result;
}

// By cost item or class a row is one state of a line, and these stand on each of its rows.
std::span<const std::string_view> wholeLineFigures(std::string_view mode) {
  static constexpr std::array<std::string_view, 8> figures = {"iQcQuantity",  "iQcMoney",  "iInQuantity", "iInMoney",
                                                              "iOutQuantity", "iOutMoney", "iQmQuantity", "iQmMoney"};
  if (mode == "2") return {};
  return figures;
}

constexpr std::array<CodeAndName, 5> codeNames = {{{"cWhCode", "cWhName"},
                                                   {"cDepCode", "cDepName"},
                                                   {"cInvCode", "cInvName"},
                                                   {"cFXCode", "cFXName"},
                                                   {"cAmoCode", "cAmoName"}}};

// The keys by which the build joins, in its order.
std::vector<account::JoinKey> sfcItemKeys() {
  return {{"ia_subsidiary", "AutoID"},
          {"IA_Subsidiary_QC", "AutoID"},
          {"Warehouse", "cWhCode"},
          {"Inventory", "cInvCode"},
          {"ComputationUnit", "cComUnitCode"},
          {"Department", "cDepCode"},
          {"Ca_FxDef", "iFxID"},
          {"Ca_FxClassDef", "iFxCId"},
          {"Ca_FxMapExpDID", "iFxDID"},
          {"Ca_FxMapExpDetails", "iFxDID"},
          {"Ca_CostExpDetail_Period", "cAmoID, cAmoType, iPeriod"},
          {"Ca_AmoTypeName", "cAmoType, localid"},
          account::oneClassAGrade()};
}

// The checks of the ledger that touch its rows.
std::vector<account::Check> sfcItemChecks() {
  using enum account::Check;
  return {lineSum,           openingSum, lineWithoutItems,      openingWithoutItems,   neverSplit,
          unknownItem,       classTree,  amountWithoutQuantity, quantityWithoutAmount, openingBalance,
          itemOpeningBalance};
}

}  // namespace

Report sfcItem() {
  return {
      .registration = sfcItemRegistration(),
      .reportClass = "clsSFC_Item",
      .make = makeCoreReport<SfcItem>,
      .dialog = &summaryDialog(),
      .columns = sfcItemColumns(),
      .layouts = {Layout::summary, Layout::tree, Layout::lines},
      .lineKeys = {"cWhCode", "cInvCode", "cInvName"},
      .treeLevels = summaryTreeLevels,
      .notInLines = wholeLineFigures,
      .crossStates = sfcItemStates,
      .codeNames = codeNames,
      .joinKeys = sfcItemKeys(),
      .ledgerChecks = sfcItemChecks(),
  };
}

}  // namespace quillon::workbench
