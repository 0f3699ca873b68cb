// Messages about the checks of an account's ledger: what each is called, what it says of a row, and what to do about it.
#pragma once

#include "workbench/messages/message.h"

namespace quillon::workbench::messages {

// --- What is found ----------------------------------------------------------------------------------------------------

inline constexpr Text<0> joinKeysTitle{"连接键有多行", "keys by which reports join and that several rows share"};
inline constexpr Text<0> lineSumTitle{"成本项目之和不等于明细账记录",
                                      "cost items that do not sum to their ledger line"};
inline constexpr Text<0> issueSumTitle{"发出分项之和不等于明细账记录",
                                       "cost items of issues that do not sum to their ledger line"};
inline constexpr Text<0> openingSumTitle{"成本项目之和不等于分项期初记录",
                                         "cost items that do not sum to their cost-item opening"};
inline constexpr Text<0> lineWithoutItemsTitle{"无成本项目的明细账记录，其存货在别处有成本项目",
                                               "lines without cost items, of inventories that have them elsewhere"};
inline constexpr Text<0> openingWithoutItemsTitle{
    "无成本项目的分项期初记录，其存货在别处有成本项目",
    "openings without cost items, of inventories that have them elsewhere"};
inline constexpr Text<0> neverSplitTitle{"从不分项的存货的明细账记录",
                                         "lines of inventories that never have cost items"};
inline constexpr Text<0> unknownItemTitle{"未知的成本项目或其明细",
                                          "cost items, or details of theirs, that are unknown"};
inline constexpr Text<0> strayItemTitle{"所属记录不存在的成本项目", "cost items of lines that are not there"};
inline constexpr Text<0> classTreeTitle{"分类树以外的成本项目和分类", "cost items and classes outside the class tree"};
inline constexpr Text<0> amountWithoutQuantityTitle{"有金额而无数量的记录", "lines with an amount and no quantity"};
inline constexpr Text<0> quantityWithoutAmountTitle{"有数量而无金额的记录", "lines with a quantity and no amount"};
inline constexpr Text<0> openingBalanceTitle{"年初余额不等于上年年末余额",
                                             "openings that are not the closing of the year before"};
inline constexpr Text<0> itemOpeningBalanceTitle{"分项期初不等于账面余额",
                                                 "cost-item openings that are not the ledger's balance"};
inline constexpr Text<0> balanceWithoutQuantityTitle{"年末有金额而无数量的余额",
                                                     "balances at a year's end with an amount and no quantity"};
inline constexpr Text<0> periodGapTitle{"已结账月之前未结账的月", "months not settled before settled ones"};

// --- What to do -------------------------------------------------------------------------------------------------------

inline constexpr Text<0> lineSumAdvice{
    "按成本项目的金额与存货的金额相差这些；请重新分摊这些记录。",
    "What the reports show by cost item differs from the inventory's amounts by this; split these lines anew."};
inline constexpr Text<0> issueSumAdvice{
    "cSource=1 时发出汇总表使用这些分项；请重新计算这些发出的分项，或用 cSource=0 编制。",
    "The outbound summary shows these with cSource=1; compute these issues' split anew, or run it with cSource=0."};
inline constexpr Text<0> openingSumAdvice{
    "请改正分项期初，使成本项目之和等于存货的余额。",
    "Correct the cost-item openings, so that they sum to the inventory's balance."};
inline constexpr Text<0> withoutItemsAdvice{
    "按成本项目的余额中缺少这些金额；请为这些记录补做分项。",
    "The balances by cost item lack these amounts; split these records over their cost items."};
inline constexpr Text<0> neverSplitAdvice{
    "没有成本项目的存货属于正常情况；若其中有应分项的存货，请为其设置成本项目。",
    "Some inventories have no cost items by their nature; if one of these should have, set its cost items up."};
inline constexpr Text<0> unknownItemAdvice{
    "报表中它们没有编码和名称；请补上成本项目或明细的档案，或改正记录。",
    "In reports they have no code and no name; enter the cost item or the detail again, or correct the record."};
inline constexpr Text<0> strayItemAdvice{"没有报表显示这些金额；请恢复其记录，或删除这些分项。",
                                         "No report shows these amounts; bring their lines back, or delete them."};
inline constexpr Text<0> classTreeAdvice{
    "按分类的报表找不到它们的上级分类；请改正分类的编码、级次或成本项目的分类。",
    "Reports by class find no class above them; correct the classes' codes and grades, or the cost item's class."};
inline constexpr Text<0> amountWithoutQuantityAdvice{
    "只有调整单可以没有数量；单价因此无法计算，请补上数量，或改用调整单。",
    "Only adjustments have no quantity, and there is no unit cost without; enter the quantity, or adjust instead."};
inline constexpr Text<0> quantityWithoutAmountAdvice{"请检查是否尚未记账，或成本确实为零。",
                                                     "See whether they wait for their cost, or really cost nothing."};
inline constexpr Text<0> openingBalanceAdvice{
    "上年的记录在结转后改动过，或期初改动过；请重新结转上年余额。",
    "Lines of the year before, or the openings, changed after the balances were carried over; carry them over again."};
inline constexpr Text<0> itemOpeningBalanceAdvice{
    "请按启用月初的账面余额重新录入分项期初。",
    "Enter the cost-item openings again, as the balances were when the cost items started."};
inline constexpr Text<0> balanceWithoutQuantityAdvice{"月末结账通常会用出库调整单转出这些余额。",
                                                      "An issue adjustment at the month's end usually clears them."};
inline constexpr Text<0> periodGapAdvice{
    "明细账在第一个未结账的月结束；请将这些月结账，或取消其后各月的结账。",
    "The ledger ends with the first month that is not settled; settle these, or open the months behind them again."};

// --- What a row is ----------------------------------------------------------------------------------------------------

inline constexpr Text<2> lineAndItems{"记录 {1}，成本项目 {2}", "line {1}, cost items {2}"};
inline constexpr Text<4> sidesAndItems{"收入 {1}，成本项目 {2}；发出 {3}，成本项目 {4}",
                                       "receipt {1}, cost items {2}; issue {3}, cost items {4}"};
inline constexpr Text<0> noItems{"无成本项目", "no cost items"};
inline constexpr Text<2> unknownItem{"{1}：成本项目 {2} 未知", "{1}: unknown cost item {2}"};
inline constexpr Text<3> unknownDetail{"{1}：成本项目 {2} 的明细 {3} 未知", "{1}: unknown detail {3} of cost item {2}"};
inline constexpr Text<4> detailOfAnother{"{1}：成本项目 {2} 的明细 {3} 属于成本项目 {4}",
                                         "{1}: detail {3} of cost item {2} belongs to cost item {4}"};
inline constexpr Text<3> lineMissing{"{1}：成本项目 {2}，{3} 中没有其记录", "{1}: cost item {2}, whose line {3} lacks"};
inline constexpr Text<2> classMissing{"成本项目 {1}：没有分类 {2}", "cost item {1}: there is no class {2}"};
inline constexpr Text<2> classAboveMissing{"{2} 级分类 {1}：没有上级分类",
                                           "class {1} of grade {2}: there is no class above it"};
inline constexpr Text<0> noQuantity{"无数量", "no quantity"};
inline constexpr Text<1> quantityAlone{"数量 {1}，无金额", "quantity {1}, no amount"};
inline constexpr Text<4> closingAndOpening{"年末 {1}，金额 {2}；年初 {3}，金额 {4}",
                                           "closing {1} at {2}, opening {3} at {4}"};
inline constexpr Text<1> leftOver{"年末无数量，金额 {1}", "closing without quantity at {1}"};
inline constexpr Text<4> ledgerAndOpening{"账面 {1}，金额 {2}；分项期初 {3}，金额 {4}",
                                          "ledger {1} at {2}, cost-item opening {3} at {4}"};
inline constexpr Text<1> ofWarehouse{"仓库 {1}", "warehouse {1}"};
inline constexpr Text<1> ofDepartment{"部门 {1}", "department {1}"};
inline constexpr Text<1> ofBatch{"批号 {1}", "batch {1}"};
inline constexpr Text<1> ofFreeItems{"自由项 {1}", "free items {1}"};
inline constexpr Text<0> partSeparator{"，", ", "};
inline constexpr Text<1> notSettled{"未结账，而 {1} 已结账", "not settled, while {1} is"};
inline constexpr Text<1> openingsNotFinished{"分项期初未完成，而 {1} 已结账",
                                             "the cost-item openings are not finished, while {1} is settled"};

// --- quillon account check --------------------------------------------------------------------------------------------

inline constexpr Text<0> checkHeading{"检查", "check"};
inline constexpr Text<0> rankHeading{"级别", "rank"};
inline constexpr Text<0> foundHeading{"行数", "rows"};
inline constexpr Text<0> amountHeading{"金额", "amount"};
inline constexpr Text<0> titleHeading{"内容", "what it finds"};
inline constexpr Text<0> lineHeading{"流水号", "line"};
inline constexpr Text<0> monthHeading{"月", "month"};
inline constexpr Text<0> dateHeading{"日期", "date"};
inline constexpr Text<0> documentHeading{"单据号", "document"};
inline constexpr Text<0> inventoryHeading{"存货编码", "inventory"};
inline constexpr Text<0> whatHeading{"说明", "what"};
inline constexpr Text<0> errorRank{"错误", "error"};
inline constexpr Text<0> noteRank{"提示", "note"};
inline constexpr Text<2> checkTitle{"{1}：{2}", "{1}: {2}"};
inline constexpr Text<3> keyOfTable{"{1}：{2}，{3} 行", "{1}: {2}, {3} rows"};
inline constexpr Text<1> moreFound{"另有 {1} 行；--limit 0 显示全部", "and {1} more; --limit 0 shows all"};
inline constexpr Text<0> ledgerSound{"账簿中没有错误", "there are no errors in the ledger"};

// --- Beside a report --------------------------------------------------------------------------------------------------

inline constexpr Text<0> checkCaption{"检查", "Check"};
inline constexpr Text<0> nothingTouches{"没有发现触及本报表的错误", "no errors touch this report"};
inline constexpr Text<3> reportTouched{"发现 {1} 处：{2}（quillon account check SOURCE --check {3}）",
                                       "{1} found: {2} (quillon account check SOURCE --check {3})"};
inline constexpr Text<4> reportTouchedBy{"发现 {1} 处：{2}，金额 {3}（quillon account check SOURCE --check {4}）",
                                         "{1} found: {2}, amount {3} (quillon account check SOURCE --check {4})"};

}  // namespace quillon::workbench::messages
