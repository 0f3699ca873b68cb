// Messages of the program `quillon` itself: how it is called, terminals, `quillon sql`.
#pragma once

#include "workbench/messages/message.h"

namespace quillon::workbench::messages {

// --- How it is called -------------------------------------------------------------------------------------------------

inline constexpr Text<2> noSuchCommand{"没有命令“{1}”{2}", "there is no command \"{1}\"{2}"};
inline constexpr Text<3> noSuchCommandOf{"{2} 没有命令“{1}”{3}", "there is no command \"{1}\" of {2}{3}"};
inline constexpr Text<1> commandsAre{"；命令有 {1}", "; the commands are {1}"};
inline constexpr Text<2> optionBehindCommand{"选项 {1} 要写在其命令之后：{2} {1} ...",
                                             "the option {1} stands behind its command: {2} {1} ..."};
inline constexpr Text<3> noSuchOption{"{1} 没有选项 {2}{3}", "{1} has no option {2}{3}"};
inline constexpr Text<2> noFurtherArgument{"{1} 不接受更多参数“{2}”", "{1} takes no further argument \"{2}\""};
inline constexpr Text<1> nameACommand{"请指定命令：{1}", "name a command: {1}"};
inline constexpr Text<1> optionNeeded{"必须给出 {1}", "{1} must be given"};
inline constexpr Text<2> optionExcludes{"{1} 不能与 {2} 同时给出", "{1} cannot be given together with {2}"};
inline constexpr Text<2> optionRequires{"{1} 需要 {2}", "{1} requires {2}"};
inline constexpr Text<1> optionNeedsValue{"{1} 需要一个值", "{1} needs a value"};
inline constexpr Text<1> optionOnce{"{1} 只能给出一次", "{1} can be given once only"};
inline constexpr Text<1> optionTakesNoValue{"{1} 不接受值", "{1} takes no value"};
inline constexpr Text<2> seeHelp{"{1}；见 {2} --help", "{1}; see {2} --help"};
inline constexpr Text<2> seeHelpAfterQuestion{"{1}见 {2} --help", "{1} See {2} --help"};
inline constexpr Text<3> noneOf{"“{1}”不在 {2} 之列{3}", "\"{1}\" is none of {2}{3}"};
inline constexpr Text<2> numberTooLarge{"{1} 太大；最大为 {2}", "{1} is too large; the most is {2}"};
inline constexpr Text<2> noWholeNumberFrom{"“{1}”不是 {2} 或更大的整数", "\"{1}\" is no whole number of {2} or more"};
inline constexpr Text<0> notEnoughMemory{"内存不足；请关闭其他程序，或收窄过滤条件",
                                         "there is not enough memory; close other programs, or narrow the filter"};
inline constexpr Text<0> outputNotWritten{"标准输出无法写入；请检查磁盘的剩余空间",
                                          "standard output could not be written; check the disk's free space"};
inline constexpr Text<2> ended{"运行已结束（{1}）；{2}", "ended by {1}; {2}"};
inline constexpr Text<0> nothingWritten{"没有写出任何内容", "nothing was written"};
inline constexpr Text<0> interruptKey{"Ctrl-C", "Ctrl-C"};
inline constexpr Text<0> windowClosed{"窗口或会话关闭", "the closing of its window or session"};
inline constexpr Text<0> terminalClosed{"终端关闭", "the closing of its terminal"};
inline constexpr Text<0> askedToEnd{"系统要求结束", "a request to end"};

// --- Terminals --------------------------------------------------------------------------------------------------------

inline constexpr Text<1> noPager{"没有分页程序“{1}”；请改正 PAGER，或加上 --no-pager",
                                 "there is no pager \"{1}\"; correct PAGER, or give --no-pager"};
inline constexpr Text<0> terminalNotReadable{"无法逐行读取终端", "the terminal cannot be read line by line"};

// --- quillon sql ------------------------------------------------------------------------------------------------------

inline constexpr Text<0> accountOrEmpty{"请给出 --account 或 --empty 之一", "give either --account or --empty"};
inline constexpr Text<1> stoppedInBatch{"在第 {1} 个批处理中；之前的批处理已完成",
                                        "in batch {1}; the batches before it are done"};
inline constexpr Text<0> theScript{"脚本", "the script"};
inline constexpr Text<0> theBatch{"批处理", "the batch"};
inline constexpr Text<0> resultsNotWritten{"结果无法写到标准输出",
                                           "the results could not be written to standard output"};
inline constexpr Text<3> errorInBatch{"{1}，在第 {2} 行开始的批处理中：{3}",
                                      "{1}, in the batch that begins in line {2}: {3}"};
inline constexpr Text<0> oneRow{"（1 行）", "(1 row)"};
inline constexpr Text<1> rowCount{"（{1} 行）", "({1} rows)"};
inline constexpr Text<0> promptWelcome{"单独一行的 `go` 运行之前输入的内容。.help 显示说明，.quit 结束。",
                                       "A line `go` runs what was typed before it. .help tells more, .quit ends."};
inline constexpr Text<0> promptHelp{
    "go              运行上一个 go 之后输入的内容；单独占一行\n"
    ".tables         账套的表\n"
    ".columns TABLE  表的列及其类型\n"
    ".help           本说明\n"
    ".quit           结束，与 Ctrl-D 相同\n"
    "Ctrl-C          撤回正在输入的行；在空行上撤回上一个 go 之后的所有行；停止正在运行的内容\n"
    "方向键          编辑行，取回以前的行",
    "go              runs what was typed since the last go; it stands on a line of its own\n"
    ".tables         the account's tables\n"
    ".columns TABLE  the columns of a table, with their types\n"
    ".help           this list\n"
    ".quit           ends, as Ctrl-D does\n"
    "Ctrl-C          takes back the line that is typed; on an empty line all lines since the last go; stops what runs\n"
    "Arrow keys      edit the line and fetch earlier ones"};
inline constexpr Text<0> promptNameTable{"请指定表：.columns TABLE", "name a table: .columns TABLE"};
inline constexpr Text<1> promptNoCommand{"没有命令 {1}；.help 列出命令", "there is no command {1}; .help lists them"};
inline constexpr Text<1> promptNoTable{"没有表 {1}；.tables 列出表", "there is no table {1}; .tables lists them"};
inline constexpr Text<0> promptStopped{"已停止", "stopped"};
inline constexpr Text<0> columnHeading{"列", "column"};
inline constexpr Text<0> typeHeading{"类型", "type"};

}  // namespace quillon::workbench::messages
