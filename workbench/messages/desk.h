// What `quillon serve` says.
#pragma once

#include "workbench/messages/message.h"

namespace quillon::workbench::messages {

inline constexpr Text<1> portTaken{
    "工作台无法在本机端口 {1} 上监听，可能已被其他程序占用；请用 --port 另选一个，或不指定端口",
    "the desk cannot listen on port {1} of this machine, which another program may have; choose another with --port, or leave "
    "it out"};
inline constexpr Text<1> linkNotKept{"无法写入 {1}；请不用 --open，手工打开链接",
                                     "cannot write {1}; open the link by hand, without --open"};
inline constexpr Text<0> linkNotWritten{"链接无法写到标准输出", "the link could not be written to standard output"};
inline constexpr Text<0> deskClosed{"工作台已关闭，它所建立的内容都已清除",
                                    "the desk is closed, and what it had made is gone"};
inline constexpr Text<0> rowsNotKept{"无法保存报表的行：不能为它们建立文件",
                                     "the rows of the report cannot be kept: no file can be made for them"};
inline constexpr Text<0> temporaryDiskFull{
    "无法保存报表的行：存放临时文件的磁盘已满",
    "the rows of the report cannot be kept: the disk for temporary files is full"};
inline constexpr Text<0> noRandomNumbers{"系统不提供随机数，工作台因此不安全",
                                         "the system gives no random numbers, without which the desk is not safe"};
inline constexpr Text<0> noBrowser{"没有找到浏览器；请手工打开链接", "no browser was found; open the link by hand"};
inline constexpr Text<1> deskUnused{"{1} 分钟内无人使用工作台，工作台已结束",
                                    "nobody used the desk for {1} minutes; it has ended"};

// --- What is wrong with a request to the interface ---------------------------------------------------------------------

inline constexpr Text<0> noSuchAddress{"没有这个地址", "there is no such address"};
inline constexpr Text<1> noSuchDialog{"没有打开的对话框 {1}，可能已关闭",
                                      "there is no dialog {1}; it may have been closed"};
inline constexpr Text<1> noSuchRun{"没有运行 {1}，可能已关闭", "there is no run {1}; it may have been closed"};
inline constexpr Text<1> noSuchView{"没有视图 {1}，可能已关闭", "there is no view {1}; it may have been closed"};
inline constexpr Text<1> noSuchRowOfView{"视图没有第 {1} 行", "the view has no row {1}"};
inline constexpr Text<1> noSuchColumnOfView{"视图没有第 {1} 列", "the view has no column {1}"};
inline constexpr Text<1> noSuchLayoutKept{"没有名为“{1}”的版式", "there is no layout \"{1}\""};
inline constexpr Text<1> noSuchFilter{"没有名为“{1}”的过滤条件", "there is no filter \"{1}\""};
inline constexpr Text<1> itemUnknown{"此报表没有过滤项“{1}”", "this report has no filter item \"{1}\""};
inline constexpr Text<2> layoutUnknown{"{1} 没有版式“{2}”", "{1} has no layout \"{2}\""};
inline constexpr Text<1> noSuchCheck{"没有名为“{1}”的检查", "there is no check \"{1}\""};
inline constexpr Text<0> closedMeanwhile{"已经关闭", "it has been closed"};

inline constexpr Text<0> bodyNoJson{"请求的正文不是 JSON", "the body of the request is no JSON"};
inline constexpr Text<0> bodyNoObject{"请求的正文必须是对象", "the body of the request must be an object"};
inline constexpr Text<1> objectExpected{"此处应为含“{1}”的对象", "an object was expected that has \"{1}\""};
inline constexpr Text<1> memberMissing{"缺少“{1}”", "\"{1}\" is missing"};
inline constexpr Text<2> wrongMember{"“{1}”必须是{2}", "\"{1}\" must be {2}"};
inline constexpr Text<0> anArrayOfTexts{"文本的数组", "an array of texts"};
inline constexpr Text<0> anArrayOfRows{"行号的数组", "an array of numbers of rows"};
inline constexpr Text<0> aWholeNumber{"整数", "a whole number"};
inline constexpr Text<0> aCount{"不小于 0 的整数", "a whole number of 0 or more"};
inline constexpr Text<0> aLanguage{"zh 或 en", "zh or en"};
inline constexpr Text<0> aConditionKind{"equals、contains 或 range", "equals, contains or range"};
inline constexpr Text<0> aConditionsValues{"范围的两个值，否则至少一个值",
                                           "two values of a range, and at least one otherwise"};

// --- What cannot be done now ------------------------------------------------------------------------------------------

inline constexpr Text<0> tooManyDialogs{"打开的对话框过多，请先关闭一个", "too many dialogs are open: close one"};
inline constexpr Text<0> tooManyRuns{"保留的运行过多，请先关闭一个", "too many runs are kept: close one"};
inline constexpr Text<0> tooManyRunning{"正在运行的报表过多，请等待或停止其中一个",
                                        "too many reports are running: wait for one, or stop it"};
inline constexpr Text<0> dialogOfOtherReport{"此对话框属于另一报表", "the dialog is of another report"};
inline constexpr Text<0> dialogNotAccepted{"对话框还没有接受过滤条件，请先确认",
                                           "the dialog has not accepted the filter: confirm it first"};
inline constexpr Text<0> dialogRefusesRun{"报表的对话框不接受此过滤条件，请修改",
                                          "the report's dialog does not accept the filter; change it"};
inline constexpr Text<0> noResult{"此运行没有结果", "the run has no result"};
inline constexpr Text<0> checksNotMade{"账套还没有检查", "the account has not been checked"};
inline constexpr Text<0> opensNoDocument{"此行没有可打开的单据", "this row opens no document"};
inline constexpr Text<1> notLookedUp{"{1} 的编码没有可查找之处", "codes of {1} are looked up nowhere"};
inline constexpr Text<0> noExportFormat{"视图可输出为 csv、xlsx 或 html", "a view is exported as csv, xlsx or html"};
inline constexpr Text<0> wasStopped{"已停止", "it was stopped"};
inline constexpr Text<0> wentWrong{"程序出错", "something went wrong in the program"};

// --- What the desk does not let in, or cannot serve --------------------------------------------------------------------

inline constexpr Text<0> fieldTwice{"只能有一个值的标头出现了两次",
                                    "a header field that has one value was given twice"};
inline constexpr Text<0> otherHost{"工作台只在它显示的地址上应答",
                                   "the desk answers under the address that it printed, and under no other name"};
inline constexpr Text<0> otherVersion{"工作台只使用 HTTP/1.1", "the desk speaks HTTP/1.1 only"};
inline constexpr Text<0> lengthMissing{"请给出正文的长度：Content-Length",
                                       "say the length of the body: Content-Length"};
inline constexpr Text<0> otherExpectation{"工作台不认识这个 Expect", "the desk knows no such expectation"};
inline constexpr Text<0> targetUnclear{"地址不明确", "the address is not clear"};
inline constexpr Text<0> linkSpent{"此链接不能打开工作台，或已经用过",
                                   "this link does not open the desk, or has been used"};
inline constexpr Text<0> noSession{"请先用链接打开工作台", "open the desk by its link first"};
inline constexpr Text<0> otherPage{"只有工作台自己的页面可以这样请求", "only the desk's own pages may ask this"};
inline constexpr Text<0> methodOfInterface{"工作台使用 GET、POST、PUT 和 DELETE",
                                           "the desk knows GET, POST, PUT and DELETE"};
inline constexpr Text<0> methodOfPage{"页面只能读取：GET", "a page can only be read: GET"};
inline constexpr Text<0> bodyOfReading{"读取的请求不能有正文", "what is only read takes no body"};
inline constexpr Text<0> bodyTooLarge{"正文超过 1 MB", "the body is larger than 1 MB"};
inline constexpr Text<0> bodyOfOtherType{"正文必须是 JSON：Content-Type: application/json",
                                         "the body has to be JSON: Content-Type: application/json"};
inline constexpr Text<0> noSuchPage{"没有这个页面", "there is no such page"};
inline constexpr Text<0> requestTooSlow{"请求来得太慢", "the request came too slowly"};
inline constexpr Text<0> requestUnreadable{"工作台读不懂这个请求", "this is no request that the desk can read"};
inline constexpr Text<0> headTooLarge{"请求的标头超过 16 KB", "the head of the request is larger than 16 KB"};
inline constexpr Text<0> tooManyStreams{"打开的下载和进度显示过多，请关闭一些",
                                        "too many downloads and progress displays are open; close some"};
inline constexpr Text<0> tooManyConnections{"连接过多，请关闭一些页面",
                                            "too many connections are open; close some pages"};
inline constexpr Text<0> answerFailed{"工作台无法作出应答", "the desk could not answer this"};

}  // namespace quillon::workbench::messages
