// Messages about reports: running, arranging, writing and comparing them, and opening the documents behind their rows.
#pragma once

#include "workbench/messages/message.h"

namespace quillon::workbench::messages {

// --- Running a report -------------------------------------------------------------------------------------------------

inline constexpr Text<2> noSuchReport{"没有报表“{1}”；报表有：{2}", "there is no report \"{1}\"; the reports are: {2}"};
inline constexpr Text<3> noSuchReportNear{"没有报表“{1}”；您要的是 {2} 吗？报表有：{3}",
                                          "there is no report \"{1}\"; did you mean {2}? the reports are: {3}"};
inline constexpr Text<0> filterNotTranslated{
    "编制在语句失败之前就停止了：有一个过滤值无法转换",
    "the build stopped before a statement failed: a filter value could not be translated"};
inline constexpr Text<1> buildStopped{"编制已停止：{1}", "the build stopped: {1}"};
inline constexpr Text<1> groupIndexStays{
    "所有行都已写出，但报表未能删除其分组索引：语句中的索引名没有方括号，而此名以数字开头（{1}）",
    "all rows are written, but the report could not drop its group index: the statement names it without brackets and the name begins with a digit ({1})"};
inline constexpr Text<1> tableKept{"结果表 {1} 已保留", "the result table {1} is kept"};
inline constexpr Text<0> reportNotWritten{"报表无法写到标准输出", "the report could not be written to standard output"};
inline constexpr Text<0> nothingToLayOut{"没有符合条件的行，因此没有可排列的内容",
                                         "no rows meet the conditions, and so there is nothing to lay out"};

// An error of SQL: its own words stay as they are.
inline constexpr Text<2> sqlError{"错误 {1}：{2}", "error {1}: {2}"};
inline constexpr Text<2> sqlErrorAtLine{"批处理第 {1} 行：{2}", "line {1} of the batch: {2}"};
inline constexpr Text<3> sqlErrorInLine{"批处理第 {2} 行，错误 {1}：{3}", "error {1} in line {2} of the batch: {3}"};
inline constexpr Text<2> atStatement{"{1}，语句：{2}", "{1}, at: {2}"};

// --- Progress and explanation -----------------------------------------------------------------------------------------

inline constexpr Text<0> summingUp{"正在汇总结果", "Summing the result up"};
inline constexpr Text<0> readingAndSorting{"正在读取结果并排序", "Reading and sorting the result"};
inline constexpr Text<1> rowsWritten{"已写 {1} 行", "Rows written: {1}"};
inline constexpr Text<2> rowsWrittenOf{"已写 {1} / {2} 行", "Rows written: {1} of {2}"};
inline constexpr Text<2> timed{"{1}，{2} 秒", "{1}, {2} s"};
inline constexpr Text<2> explainedStatement{"[{1}] {2} 毫秒", "[{1}] {2} ms"};
inline constexpr Text<2> withRow{"{1}，{2} 行", "{1}, {2} row"};
inline constexpr Text<2> withRows{"{1}，{2} 行", "{1}, {2} rows"};
inline constexpr Text<2> explainedFailure{"[{1}] 失败：{2}", "[{1}] failed: {2}"};
inline constexpr Text<1> sentAs{"[{1}] 发给此服务器的是：", "[{1}] this server is sent:"};
inline constexpr Text<4> serverSays{"[{1}] 服务器消息：{2}（编号 {3}，第 {4} 行）",
                                    "[{1}] the server says: {2} (number {3}, line {4})"};
inline constexpr Text<4> explainedTotal{
    "{1} 条语句，账套中 {2} 毫秒，共 {3} 毫秒（报表本身 {4} 毫秒）",
    "{1} statements, {2} ms in the account, {3} ms in all (the report itself {4} ms)"};

// --- Layouts, columns and conditions ----------------------------------------------------------------------------------

inline constexpr Text<3> noSuchLayout{"{1} 没有版式 {2}；它有 {3}", "{1} has no layout {2}; it has {3}"};
inline constexpr Text<3> captionOfTwo{"“{1}”是两列的标题：{2} 和 {3}；请写其中一列的名称",
                                      "\"{1}\" is the caption of two columns, {2} and {3}; name one of these"};
inline constexpr Text<2> noSuchColumn{"没有列“{1}”{2}", "there is no column \"{1}\"{2}"};
inline constexpr Text<1> noCondition{
    "“{1}”不是条件；请写 column=value、column=value,value、column=lower..upper 或 column~part",
    "\"{1}\" is no condition; write column=value, column=value,value, column=lower..upper or column~part"};
inline constexpr Text<2> noDateOfColumn{"“{1}”不是日期，而列 {2} 是日期；请写成 2024-03-31",
                                        "\"{1}\" is no date, which column {2} holds; write it as 2024-03-31"};
inline constexpr Text<2> noNumberOfColumn{"“{1}”不是数字，而列 {2} 是数字",
                                          "\"{1}\" is no number, which column {2} holds"};
inline constexpr Text<3> rangeOfColumnBackwards{"{1} 的范围在开始之前就结束了：{2}..{3}",
                                                "the range of {1} ends before it begins: {2}..{3}"};
inline constexpr Text<1> noColumnInMode{"此报表在此方式下没有列 {1}", "this report has no column {1} in this mode"};
inline constexpr Text<1> groupedByPart{
    "单据不能按 {1} 分组，它区分的是一行的各部分；请在 lines 版式中按它分组",
    "documents cannot be grouped by {1}, which tells the parts of a line apart; group the layout lines by it"};
inline constexpr Text<1> columnLeftOut{"终端太窄，略去 1 列：{1}。用 --wide 显示全部。",
                                       "Left out, as the terminal is too narrow: 1 column: {1}. --wide shows all."};
inline constexpr Text<2> columnsLeftOut{"终端太窄，略去 {1} 列：{2}。用 --wide 显示全部。",
                                        "Left out, as the terminal is too narrow: {1} columns: {2}. --wide shows all."};

// --- Files that are written -------------------------------------------------------------------------------------------

inline constexpr Text<1> isAnAccount{"不会覆盖 {1}：它是账套；请指定其他文件",
                                     "will not write over {1}: it is an account; name another file"};
inline constexpr Text<1> isOfAnAccount{"不会覆盖 {1}：它属于一个账套；请指定其他文件",
                                       "will not write over {1}: it belongs to an account; name another file"};
inline constexpr Text<1> isReadByCommand{"不会覆盖 {1}：本命令正在读取它；请指定其他文件",
                                         "will not write over {1}: it is read by this command; name another file"};
inline constexpr Text<0> workbookNeedsFile{"xlsx 需要写入文件；请用 -o FILE 指定",
                                           "xlsx needs a file to write to; name one with -o FILE"};
inline constexpr Text<2> workbookNotWritten{"无法写入 {1}：{2}，或写成 --format csv",
                                            "cannot write {1}: {2}, or write --format csv"};
inline constexpr Text<1> noTemporaryFile{"无法写入 {1}：不能为它建立临时文件",
                                         "cannot write {1}: no temporary file can be made for it"};
inline constexpr Text<0> workbookMemory{"内存不足；请用 --limit 减少行数",
                                        "there is not enough memory; show fewer rows with --limit"};
inline constexpr Text<0> workbookTemporary{
    "其临时文件不能使用；请检查临时文件夹及其剩余空间",
    "its temporary file cannot be used; check the temporary folder and its free space"};
inline constexpr Text<0> workbookLongText{
    "有的文本超过单元格的 32,767 个字符；请用过滤条件去掉它所在的行",
    "a text is longer than the 32,767 characters of a cell; leave its row out with the filter"};
inline constexpr Text<0> workbookFailed{"工作簿未能生成；请检查文件夹及其剩余空间",
                                        "the workbook could not be put together; check the folder and its free space"};

// --- Comparing --------------------------------------------------------------------------------------------------------

inline constexpr Text<0> againstNeedsPivot{"--against 比较两个透视表；请用 --pivot 指定透视表",
                                           "--against holds two pivots against each other; say with --pivot which"};
inline constexpr Text<1> firstHasColumns{"第一个来源的列为 {1}", "the first source has the columns {1}"};
inline constexpr Text<1> secondHasColumns{"第二个来源的列为 {1}", "the second source has the columns {1}"};
inline constexpr Text<0> differentColumns{"不同：列", "different: the columns"};
inline constexpr Text<3> otherTypes{"列 {1} 在第一个来源中是 {2}，在第二个中是 {3}",
                                    "column {1} is {2} in the first source and {3} in the second"};
inline constexpr Text<2> rowButForDigits{"第 {1} 行，仅末位不同：{2}", "row {1}, but for a last digit: {2}"};
inline constexpr Text<1> moreRowsButForDigits{"另有 {1} 行仅末位不同", "and {1} more but for a last digit"};
inline constexpr Text<1> equalButForDigits{
    "{1} 行相同，仅除得的数末位不同；--exact 将其算作不同",
    "{1} rows agree but for the last digit of a quotient; --exact counts them as different"};
inline constexpr Text<2> rowOfBoth{"第 {1} 行：{2}", "row {1}: {2}"};
inline constexpr Text<2> rowOfFirst{"第 {1} 行，仅在第一个中：{2}", "row {1}, only in the first: {2}"};
inline constexpr Text<2> rowOfSecond{"第 {1} 行，仅在第二个中：{2}", "row {1}, only in the second: {2}"};
inline constexpr Text<1> moreRows{"另有 {1} 行", "and {1} more"};
inline constexpr Text<2> equalRows{"相同：{1} 行，{2} 列", "equal: {1} rows of {2} columns"};
inline constexpr Text<3> differentRows{"不同：{1} 行；第一个来源有 {2} 行，第二个有 {3} 行",
                                       "different: {1} rows; the first source has {2} rows, the second {3}"};

// --- Opening documents ------------------------------------------------------------------------------------------------

inline constexpr Text<0> nothingOpened{"没有打开单据：期初结存和月末结存行没有单据",
                                       "Nothing was opened: opening balances and month-end balances have no document"};
inline constexpr Text<0> openedBy{"打开方式", "Opened by"};
inline constexpr Text<1> noColumnOfRow{"“{1}”没有指明行的列；请写 column=value",
                                       "\"{1}\" names no column of a row; write column=value"};
inline constexpr Text<1> rowsLackColumn{
    "报表的行没有列“{1}”；quillon report ... --format csv 显示其列",
    "the rows of the report have no column \"{1}\"; quillon report ... --format csv shows their columns"};
inline constexpr Text<1> noSuchRow{"报表没有 {1} 的行", "no row of the report has {1}"};
inline constexpr Text<2> noDocuments{"{1} 的行不能打开单据；以下报表的行可以：{2}",
                                     "the rows of {1} open no documents; those of these reports do: {2}"};
inline constexpr Text<1> rowLacksColumns{"此行缺少打开单据所需的内容：请加上{1}",
                                         "the row lacks what opens its document: add{1}"};
inline constexpr Text<0> rowNumberNeedsFilter{
    "RowNo 是按过滤条件运行的报表的行号：请同时给出过滤条件（--set、--filter）",
    "RowNo counts the rows of a report that is run with a filter: give its filter too (--set, --filter)"};
inline constexpr Text<0> documentNotWritten{"单据无法写到标准输出",
                                            "the document could not be written to standard output"};

}  // namespace quillon::workbench::messages
