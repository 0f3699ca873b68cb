// Messages of traces: events and descriptions.
#pragma once

#include "workbench/messages/message.h"

namespace quillon::workbench::messages {

inline constexpr Text<2> nothingToTrace{"没有可跟踪的“{1}”{2}", "there is no \"{1}\" to trace{2}"};
inline constexpr Text<2> nothingCalled{"没有可跟踪的“{1}”；有：{2}",
                                       "there is nothing called \"{1}\" to trace; there are: {2}"};
inline constexpr Text<1> eventsOfDialogs{"只有对话框有事件；请去掉事件，或跟踪 {1}",
                                         "only a dialog has events; leave them out, or trace {1}"};
inline constexpr Text<1> noSuchEvent{
    "没有事件“{1}”；事件有：init、view、click、year、grade、change:KEY、change:KEY=VALUE、set:KEY=VALUE",
    "there is no event \"{1}\"; the events are: init, view, click, year, grade, change:KEY, change:KEY=VALUE, set:KEY=VALUE"};
inline constexpr Text<3> dialogLacksEvent{"{1} 没有事件“{2}”；请跟踪 {3}",
                                          "{1} has no event \"{2}\"; trace {3} for it"};
inline constexpr Text<1> rowsWithoutDocuments{"“{1}”的行不能打开单据", "the rows of \"{1}\" open no documents"};
inline constexpr Text<1> sessionLeftOpen{"编制停止，会话没有关闭：{1}",
                                         "the build stopped and left its session open: {1}"};
inline constexpr Text<0> traceNotTranslated{"过滤条件无法转换", "the filter could not be translated"};
inline constexpr Text<1> traceRefused{"有一条语句 {1}", "a statement was {1}"};
inline constexpr Text<1> dateWithoutPeriod{
    "“{1}”不属于日历中的任何月份；请把日期写成 yyyy-mm-dd，或在平台描述的 \"GetPeriodFromDate\" 中给出其期间",
    "\"{1}\" is in no month of the calendar; write a date as yyyy-mm-dd, or give its period in \"GetPeriodFromDate\" of the platform description"};

// --- Descriptions -----------------------------------------------------------------------------------------------------

inline constexpr Text<2> descriptionRefused{"{1}不能使用：{2}", "the {1} description cannot be used: {2}"};
inline constexpr Text<0> ofFilter{"过滤条件的描述", "filter's"};
inline constexpr Text<0> ofRow{"行的描述", "row's"};
inline constexpr Text<0> ofPlatform{"平台的描述", "platform's"};
inline constexpr Text<2> memberMustBe{"{1} 必须是{2}", "{1} must be {2}"};
inline constexpr Text<3> noRegularExpression{"{1}：“{2}”不是正则表达式：{3}",
                                             "{1}: \"{2}\" is not a regular expression: {3}"};
inline constexpr Text<0> wantedValue{"文本、数字、true、false 或 null", "a text, a number, true, false or null"};
inline constexpr Text<0> wantedWholeNumber{"整数", "a whole number"};
inline constexpr Text<0> wantedArray{"数组", "an array"};
inline constexpr Text<0> wantedNumberPair{"两个整数的数组", "an array of two whole numbers"};
inline constexpr Text<0> wantedDatePair{"两个日期的数组", "an array of two dates"};
inline constexpr Text<0> wantedRows{"行的数组，每行是字段的数组", "an array of rows, each an array of fields"};
inline constexpr Text<0> wantedItemKey{"过滤项的键", "the item's key"};
inline constexpr Text<0> wantedExpressions{"正则表达式的数组", "an array of regular expressions"};
inline constexpr Text<1> eventsMustBeTexts{
    "{1}：events 必须是文本的数组，例如 [\"init\", \"change:iYear=2024\"]",
    "{1}: events must be an array of texts, such as [\"init\", \"change:iYear=2024\"]"};
inline constexpr Text<1> caseNamesNoReport{"{1} 没有指明报表：请写上键 report、filter 和 platform",
                                           "{1} names no report: give it the keys report, filter and platform"};
inline constexpr Text<0> reportOrCase{"请给出 REPORT 连同 --filter 和 --platform，或给出 --case",
                                      "give either REPORT with --filter and --platform, or --case"};

}  // namespace quillon::workbench::messages
