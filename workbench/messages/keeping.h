// Messages about what is kept and proved: fingerprints of runs, kept layouts, books.
#pragma once

#include "workbench/messages/message.h"

namespace quillon::workbench::messages {

// --- Fingerprints -----------------------------------------------------------------------------------------------------

inline constexpr Text<0> fingerprintCaption{"指纹", "Fingerprint"};
inline constexpr Text<0> fingerprintAccount{"账套", "Account"};
inline constexpr Text<0> fingerprintReport{"报表", "Report"};
inline constexpr Text<0> fingerprintDate{"登录日期", "Login date"};
inline constexpr Text<0> fingerprintRows{"行数", "Rows"};
inline constexpr Text<0> fingerprintFilter{"过滤条件", "Filter"};
inline constexpr Text<0> fingerprintSums{"合计", "Sums"};
inline constexpr Text<0> fingerprintForPrograms{"供 quillon verify 使用", "For quillon verify"};

inline constexpr Text<1> noFingerprint{
    "{1} 中没有指纹：它不是 quillon 写出的网页或工作簿，或由旧版本写出",
    "{1} holds no fingerprint: it is no page or workbook that quillon wrote, or one of an older version"};
inline constexpr Text<1> fingerprintDamaged{"{1} 中的指纹已被改动或不完整",
                                            "the fingerprint in {1} was changed or is not complete"};
inline constexpr Text<0> otherFingerprint{"不是此版本的指纹", "it is no fingerprint of this version"};
inline constexpr Text<0> damagedArchive{"压缩文件已损坏", "the archive is damaged"};
inline constexpr Text<1> workbookUnreadable{"{1} 是无法读取的工作簿", "{1} is a workbook that cannot be read"};
inline constexpr Text<3> fingerprintOfOther{"{1} 属于账套 {2}，而给出的是账套 {3}",
                                            "{1} is of account {2}, and the account given is {3}"};
inline constexpr Text<3> fingerprintOfOtherName{"{1} 属于账套 {2}；与名称不同的账套 {3} 比较",
                                                "{1} is of account {2}; it is compared with {3}, of another name"};
inline constexpr Text<1> fingerprintWithSql{"{1} 的过滤条件中有 SQL 语句；只有信任此文件时，才加上 --allow-sql",
                                            "the filter in {1} holds SQL; give --allow-sql if you trust the file"};
inline constexpr Text<3> verifiedSame{"相同：{1}，{2} 行，指纹 {3}", "the same: {1}, {2} rows, fingerprint {3}"};
inline constexpr Text<3> verifiedDifferent{"不同：{1}，文件中的指纹为 {2}，账套现在给出 {3}",
                                           "different: {1}, fingerprint {2} in the file, {3} of the account now"};
inline constexpr Text<3> differentRowCount{"  行数：文件 {1}，账套 {2}，差 {3}",
                                           "  rows: {1} in the file, {2} in the account, {3}"};
inline constexpr Text<4> differentSum{"  {1}：文件 {2}，账套 {3}，差 {4}",
                                      "  {1}: {2} in the file, {3} in the account, {4}"};
inline constexpr Text<1> differentOtherwise{"  {1}：两者不能比较", "  {1}: cannot be compared"};

// --- Kept layouts -----------------------------------------------------------------------------------------------------

inline constexpr Text<2> noLayoutName{"“{1}”不能作版式的名称：{2}", "\"{1}\" is no name for a layout: {2}"};
inline constexpr Text<0> nameOfOwnLayout{"报表自有同名的版式", "the reports have a layout of this name"};
inline constexpr Text<1> layoutNameTaken{"已有名为“{1}”的版式；请加上 --replace-layout，或换一个名称",
                                         "there is a layout \"{1}\" already; give --replace-layout, or another name"};
inline constexpr Text<2> layoutOfOtherReport{"已有 {2} 的版式名为“{1}”；请换一个名称",
                                             "there is a layout \"{1}\" of {2} already; give another name"};
inline constexpr Text<2> noKeptLayout{"没有保存的版式“{1}”{2}；见 quillon layouts list",
                                      "there is no kept layout \"{1}\"{2}; see quillon layouts list"};
inline constexpr Text<2> noLayoutNorFile{"没有版式“{1}”，也没有此文件{2}；见 quillon layouts list",
                                         "there is no layout \"{1}\", and no file{2}; see quillon layouts list"};
inline constexpr Text<3> layoutFileOfOther{"{1} 是 {2} 的版式，不能用于 {3}",
                                           "{1} is a layout of {2} and cannot be used for {3}"};
inline constexpr Text<0> layoutNotUnicode{"无法保存版式：有的名称不是 Unicode 文本",
                                          "the layout cannot be saved: a name is no Unicode text"};
inline constexpr Text<1> layoutSaved{"版式已保存：{1}", "the layout is saved as {1}"};
inline constexpr Text<0> layoutHeading{"版式", "Layout"};
inline constexpr Text<1> noLayouts{"没有保存的版式：{1}", "no layouts are saved in {1}"};

// --- Books ------------------------------------------------------------------------------------------------------------

inline constexpr Text<1> bookIsRight{"没有错误：{1} 项", "nothing is wrong: {1} entries"};
inline constexpr Text<2> bookEntryFails{"项 {1}：{2}", "entry {1}: {2}"};
inline constexpr Text<2> bookEntryMade{"项 {1}：{2} 行", "entry {1}: {2} rows"};
inline constexpr Text<2> settingTaken{"{1}：用于第 {2} 项", "{1}: taken by entry {2}"};
inline constexpr Text<1> settingOfNoEntry{"没有一项的报表有“{1}”的过滤项",
                                          "no entry's report has the filter item of \"{1}\""};
inline constexpr Text<1> bookWritten{"已写入 {1}", "written: {1}"};
inline constexpr Text<1> bookNotWritten{"有的项未能编制，因此没有写入 {1}",
                                        "{1} is not written, because not every entry could be made"};
inline constexpr Text<1> bookFolderNotEmpty{"{1} 已存在且不是空文件夹；请指定其他文件夹",
                                            "{1} exists and is no empty folder; name another one"};

}  // namespace quillon::workbench::messages
