// Messages about filters: their items and values, files, saved filters, codes and lists.
#pragma once

#include "workbench/messages/message.h"

namespace quillon::workbench::messages {

// --- Items and values -------------------------------------------------------------------------------------------------

inline constexpr Text<3> filterItem{"过滤项 {1}（{2}）：{3}", "filter item {1} ({2}): {3}"};
inline constexpr Text<1> noDate{"“{1}”不是日期；请写成 yyyy-mm-dd", "\"{1}\" is no date; write it as yyyy-mm-dd"};
inline constexpr Text<1> noNumber{"“{1}”不是数字；请写数字，小数前加点",
                                  "\"{1}\" is no number; write digits with a point"};
inline constexpr Text<3> noWholeNumber{"“{1}”不是 {2} 至 {3} 的整数", "\"{1}\" is no whole number from {2} to {3}"};
inline constexpr Text<1> noSetting{"“{1}”没有设置过滤项；请写 key=value",
                                   "\"{1}\" sets no filter item; write key=value"};
inline constexpr Text<2> noSuchItem{"报表没有过滤项“{1}”；它有 {2}",
                                    "the report has no filter item \"{1}\"; it has {2}"};
inline constexpr Text<3> noSuchItemNear{"报表没有过滤项“{1}”；您要的是 {2} 吗？它有 {3}",
                                        "the report has no filter item \"{1}\"; did you mean {2}? it has {3}"};
inline constexpr Text<2> severalItems{"有几个过滤项名为“{1}”；请写其中一个的键：{2}",
                                      "several filter items are called \"{1}\"; write the key of one: {2}"};
inline constexpr Text<0> setTwice{"设置了两次", "is set twice"};
inline constexpr Text<0> noRangeButList{
    "不接受范围；请写各个值，用逗号分隔（含 \"..\" 的文本写在过滤文件中）",
    "takes no range; write its values with commas between them (a text that holds \"..\" goes into a filter file)"};
inline constexpr Text<0> noRangeButOne{
    "不接受范围；请写一个值（含 \"..\" 的文本写在过滤文件中）",
    "takes no range; write one value (a text that holds \"..\" goes into a filter file)"};
inline constexpr Text<0> notToBeEntered{"对话框现在不允许输入", "the dialog does not let it be entered now"};
inline constexpr Text<0> oneValueOnly{"只接受一个值", "takes one value only"};
inline constexpr Text<0> noRange{"接受单个值，而不是范围", "takes a single value, not a range"};
inline constexpr Text<2> rangeBackwards{
    "范围从 {1} 开始，却在它之前的 {2} 结束；请先写下限",
    "the range begins at {1} and ends before it, at {2}; write the lower bound first"};
inline constexpr Text<2> noSuchChoice{"没有选项“{1}”；可选 {2}", "there is no choice \"{1}\"; choose of {2}"};
inline constexpr Text<0> mustBeGiven{"必须给出", "must be given"};
inline constexpr Text<1> itemEmpty{"{1}不能为空", "{1} must be given"};
inline constexpr Text<5> nameOfSeveral{"过滤项 {1}（{2}）：名称为“{4}”的有 {3} 个，请改写编码：{5}",
                                       "filter item {1} ({2}): {3} are named \"{4}\"; give the code of one: {5}"};
inline constexpr Text<3> codesToGive{"可选的{2}（{1}）：{3}", "to be given for {1} ({2}): {3}"};
inline constexpr Text<1> nothingToGive{"账套中没有可选的{1}", "the account has nothing to give for {1}"};
inline constexpr Text<4> unknownCode{"过滤项 {1}：账套没有{2} {3}{4}",
                                     "filter item {1}: the account has no {2} {3}{4}"};

// --- Filter files -----------------------------------------------------------------------------------------------------

inline constexpr Text<4> faultInFile{"{1} 第 {2} 行：{3}{4}", "{1}, line {2}: {3} {4}"};
inline constexpr Text<0> theFile{"文件", "the file"};
inline constexpr Text<1> itemNumber{"第 {1} 项", "item {1}"};
inline constexpr Text<1> quotedName{"“{1}”", "\"{1}\""};
inline constexpr Text<1> neitherItemNorColumn{"为“{1}”，既不是报表的过滤项，也不是列名",
                                              "is \"{1}\", neither an item of the report nor a column's name"};
inline constexpr Text<1> notKnown{"无法识别{1}", "is not known{1}"};
inline constexpr Text<1> lacksMember{"缺少“{1}”", "lacks \"{1}\""};
inline constexpr Text<1> mustBe{"必须是{1}", "must be {1}"};
inline constexpr Text<0> mustNotBeEmpty{"不能为空", "must not be empty"};
inline constexpr Text<1> mustHaveCharacters{"至少要有 {1} 个字符", "must have {1} characters or more"};

// What a value of a JSON file is.
inline constexpr Text<0> jsonObject{"对象", "an object"};
inline constexpr Text<0> jsonList{"列表", "a list"};
inline constexpr Text<0> jsonText{"文本", "a text"};
inline constexpr Text<0> jsonNumber{"数字", "a number"};
inline constexpr Text<0> jsonFlag{"true 或 false", "true or false"};
inline constexpr Text<0> jsonNull{"null", "null"};

// --- Saved filters ----------------------------------------------------------------------------------------------------

inline constexpr Text<2> noFilterName{"“{1}”不能作过滤条件的名称：{2}", "\"{1}\" is no name for a filter: {2}"};
inline constexpr Text<0> nameOfOtherCharacters{"只能含文字、数字、空格和 - _ . ( ) + ,",
                                               "it may have letters, digits, blanks and - _ . ( ) + , in it"};
inline constexpr Text<0> nameEmpty{"它是空的", "it is empty"};
inline constexpr Text<1> nameTooLong{"它超过 {1} 个字符", "it has more than {1} characters"};
inline constexpr Text<0> nameOfBlankEnds{"它以空格或点开头或结尾", "it begins or ends with a blank or a point"};
inline constexpr Text<0> nameLikeOption{"它的开头像选项", "it begins like an option"};
inline constexpr Text<0> nameLikeFile{"它的结尾像文件名", "it ends like a file's"};
inline constexpr Text<0> nameOfDevice{"Windows 有同名的设备", "Windows has a device of this name"};
inline constexpr Text<0> noFilterFolderWindows{
    "APPDATA 没有指定文件夹，因而没有存放过滤条件和版式的文件夹；请设置它，或指定文件",
    "APPDATA names no folder, so there is none for saved filters and layouts; set it, or name a file"};
inline constexpr Text<0> noFilterFolder{
    "XDG_CONFIG_HOME 和 HOME 都没有指定文件夹，因而没有存放过滤条件和版式的文件夹；请设置其一，或指定文件",
    "neither XDG_CONFIG_HOME nor HOME names a folder, so there is none for saved filters and layouts; set one, or name a file"};
inline constexpr Text<1> filterNameTaken{"已有名为“{1}”的过滤条件；请加上 --replace-filter，或换一个名称",
                                         "there is a filter \"{1}\" already; give --replace-filter, or another name"};
inline constexpr Text<2> noSavedFilter{"没有保存的过滤条件“{1}”{2}；见 quillon filters list",
                                       "there is no saved filter \"{1}\"{2}; see quillon filters list"};
inline constexpr Text<2> noSavedFilterNorFile{
    "没有保存的过滤条件“{1}”，也没有此文件{2}；见 quillon filters list",
    "there is no saved filter \"{1}\", and no file{2}; see quillon filters list"};
inline constexpr Text<0> valueNotUnicode{"无法保存过滤条件：有的值不是 Unicode 文本",
                                         "the filter cannot be saved: a value is no Unicode text"};
inline constexpr Text<1> filterSaved{"过滤条件已保存：{1}", "the filter is saved as {1}"};
inline constexpr Text<0> filterNotConfirmed{
    "过滤条件没有保存：最后一步没有确认它（--step click）",
    "the filter is not saved: the last step does not confirm it (--step click)"};
inline constexpr Text<0> filterHeading{"名称", "Name"};
inline constexpr Text<0> reportHeading{"报表", "Report"};
inline constexpr Text<0> itemsHeading{"条件", "Items"};
inline constexpr Text<1> noFilters{"没有保存的过滤条件：{1}", "no filters are saved in {1}"};
inline constexpr Text<0> unreadable{"（无法读取）", "(cannot be read)"};

// --- Dialogs ----------------------------------------------------------------------------------------------------------

inline constexpr Text<0> stepCaption{"步骤", "Step"};
inline constexpr Text<0> keyCaption{"关键字", "Key"};
inline constexpr Text<0> itemCaption{"条件项", "Item"};
inline constexpr Text<0> valueCaption{"值", "Value"};
inline constexpr Text<0> choicesCaption{"选项", "Choices"};
inline constexpr Text<0> availableCaption{"可用", "Available"};
inline constexpr Text<0> lookupCaption{"参照条件", "Lookup condition"};
inline constexpr Text<0> viewCaption{"视图", "View"};
inline constexpr Text<0> messageCaption{"提示", "Message"};
inline constexpr Text<0> confirmationCaption{"确认", "Confirmation"};
inline constexpr Text<0> acceptedText{"接受", "accepted"};
inline constexpr Text<0> refusedText{"未接受，对话框不关闭", "refused, the dialog stays open"};
inline constexpr Text<1> noSuchStep{"没有步骤“{1}”；步骤有：init、view、click、change:KEY=VALUE",
                                    "there is no step \"{1}\"; the steps are: init, view, click, change:KEY=VALUE"};
inline constexpr Text<2> inStep{"步骤 {1}：{2}", "step {1}: {2}"};
inline constexpr Text<0> dialogRefuses{
    "报表的对话框不接受此过滤条件；请修改，或加上 --no-dialog",
    "the report's dialog does not accept the filter; change it, or give --no-dialog"};
inline constexpr Text<2> dialogWouldNotLet{
    "报表的对话框不允许在此账套中输入 {1}（{2}）；已按给出的值应用",
    "the report's dialog would not let {1} ({2}) be entered in this account; it is applied as it was given"};
inline constexpr Text<0> dialogNotWritten{"对话框无法写到标准输出",
                                          "the dialog could not be written to standard output"};

// --- quillon list -----------------------------------------------------------------------------------------------------

inline constexpr Text<0> codeHeading{"编码", "Code"};
inline constexpr Text<0> nameHeading{"名称", "Name"};
inline constexpr Text<1> allEntries{"共 {1} 项", "{1} entries"};
inline constexpr Text<0> oneEntry{"共 1 项", "1 entry"};
inline constexpr Text<2> someEntries{"共 {2} 项，显示 {1} 项；用 --search 查找，--limit 0 显示全部",
                                     "{1} of {2} entries; look for one with --search, or see all with --limit 0"};
inline constexpr Text<2> noSuchList{"没有列表“{1}”{2}", "there is no list of \"{1}\"{2}"};
inline constexpr Text<3> noSuchListOf{"没有列表“{1}”{2}；有：{3}", "there is no list of \"{1}\"{2}; there are: {3}"};
inline constexpr Text<0> listNotWritten{"列表无法写到标准输出", "the list could not be written to standard output"};

}  // namespace quillon::workbench::messages
