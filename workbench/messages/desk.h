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

}  // namespace quillon::workbench::messages
