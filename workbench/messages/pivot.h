// Messages about pivots: what is put down, across and summed.
#pragma once

#include "workbench/messages/message.h"

namespace quillon::workbench::messages {

inline constexpr Text<1> noPivot{
    "“{1}”不是透视；请写 行/列/数值，例如 仓库/月份/金额，列可以空着：仓库//金额",
    "\"{1}\" is no pivot; write down/across/figures, such as Warehouse/Month/Amount; across may be empty: Warehouse//Amount"};
inline constexpr Text<0> pivotWithoutRows{"透视表至少要有一个行维度", "a pivot needs at least one dimension down"};
inline constexpr Text<0> pivotWithoutMeasures{"透视表至少要有一个数值，例如 金额",
                                              "a pivot needs at least one figure, such as Amount"};
inline constexpr Text<3> noSuchDimension{"{1} 没有维度“{2}”{3}", "{1} has no dimension \"{2}\"{3}"};
inline constexpr Text<3> noSuchMeasure{"{1} 没有数值“{2}”{3}", "{1} has no figure \"{2}\"{3}"};
inline constexpr Text<2> noSuchPivotSort{
    "透视表不能按“{1}”排序：它既不是所选的维度，也不是数值{2}",
    "a pivot cannot be ordered by \"{1}\": it is neither a chosen dimension nor a figure{2}"};
inline constexpr Text<1> noTotalToSortBy{
    "不能按“{1}”排序：各收发状态不能相加，行没有合计；请按一个状态的数值排序，例如 期末金额",
    "rows cannot be ordered by \"{1}\": states do not add up, so rows have no total of it; order by the figure of one state, such as Closing amount"};
inline constexpr Text<3> dimensionOfTwo{"“{1}”指两个维度：{2} 和 {3}；请写其中一个的名称",
                                        "\"{1}\" may mean two dimensions, {2} and {3}; name one of these"};
inline constexpr Text<1> dimensionTwice{"维度“{1}”用了两次；行与列合计只能用一次",
                                        "the dimension \"{1}\" is used twice; it can stand down or across, once"};
inline constexpr Text<1> measureTwice{"数值“{1}”用了两次", "the figure \"{1}\" is asked for twice"};
inline constexpr Text<2> noSuchShare{"“{2}”不是“{1}”的占比；请写 {1}:row、{1}:column 或 {1}:total",
                                     "\"{2}\" is no share of {1}; write {1}:row, {1}:column or {1}:total"};
inline constexpr Text<1> shareOfUnitCost{"单价不能相加，因此没有占比：{1}",
                                         "unit costs do not add up, so there are no shares of them: {1}"};
inline constexpr Text<3> tooManyPivotColumns{
    "透视表会有 {1} 列数值，最多 {2} 列；请把 {3} 放到行上、减少数值，或用 --where 选出较少的行",
    "the pivot would have {1} columns of figures, and {2} are the most; put {3} down instead of across, ask for fewer figures, or choose fewer rows with --where"};
inline constexpr Text<0> comparedAcross{
    "对比时列由两份结果占用，维度只能放在行上",
    "of a comparison only the two results and their difference stand across; put dimensions down"};
inline constexpr Text<1> comparedShare{"对比不显示占比：{1}；请写数值本身",
                                       "a comparison shows no shares: {1}; name the figure itself"};
inline constexpr Text<2> noSuchComparedSort{
    "对比不能按“{1}”排序：它既不是所选的维度，也不是对比的列{2}",
    "a comparison cannot be ordered by \"{1}\": it is neither a chosen dimension nor one of its columns{2}"};
inline constexpr Text<0> comparedReports{"只能与同一报表的运行对比", "only runs of the same report can be compared"};
inline constexpr Text<0> comparedNoRows{"此处没有某一方单独的行；请点某一方的数值",
                                        "no rows of one side stand behind this; choose a figure of one side"};
inline constexpr Text<0> pivotAlone{
    "--pivot 自己决定列和分组；请去掉 --layout、--columns 和 --group-by",
    "--pivot decides columns and groups itself; leave --layout, --columns and --group-by out"};

}  // namespace quillon::workbench::messages
