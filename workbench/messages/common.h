// Messages of the workbench that several of its parts say: lists, suggestions, files.
#pragma once

#include "workbench/messages/message.h"

namespace quillon::workbench::messages {

// --- Lists and what is beside a text ----------------------------------------------------------------------------------

inline constexpr Text<0> listSeparator{"、", ", "};
inline constexpr Text<0> alternative{"或 ", " or "};
inline constexpr Text<0> colon{"：", ": "};
inline constexpr Text<1> said{"{1}", "{1}"};
inline constexpr Text<2> headed{"{1}：{2}", "{1}: {2}"};
inline constexpr Text<2> named{"{1}（{2}）", "{1} ({2})"};
inline constexpr Text<2> andMore{"{1}，另有 {2} 个", "{1}, and {2} more"};
inline constexpr Text<1> suggested{"；您要的是 {1} 吗？", "; did you mean {1}?"};
inline constexpr Text<0> yes{"是", "yes"};
inline constexpr Text<0> no{"否", "no"};

// --- Files ------------------------------------------------------------------------------------------------------------

inline constexpr Text<1> cannotRead{"无法读取 {1}；请检查名称和权限",
                                    "cannot read {1}; check the name and its permissions"};
inline constexpr Text<1> cannotWrite{"无法写入 {1}；请检查文件夹、权限和剩余空间",
                                     "cannot write {1}; check the folder, its permissions and its free space"};
inline constexpr Text<2> cannotWriteBecause{"无法写入 {1}：{2}", "cannot write {1}: {2}"};
inline constexpr Text<2> cannotRemove{"无法删除 {1}：{2}", "cannot remove {1}: {2}"};
inline constexpr Text<2> cannotUse{"无法使用 {1}：{2}", "cannot use {1}: {2}"};
inline constexpr Text<2> invalidJson{"{1} 不是有效的 JSON：见第 {2} 行", "{1} is not valid JSON: see line {2}"};
inline constexpr Text<1> tooManyDigits{"{1} 中有位数过多的数字；请写成文本，加引号",
                                       "{1} holds a number with too many digits; write it as a text, in quotes"};
inline constexpr Text<0> otherJsonKind{"JSON 文件中的值与要求的类型不符",
                                       "a JSON file holds another kind of value than is expected there"};

// A place in a file, and what is wrong there.
inline constexpr Text<3> atLine{"{1} 第 {2} 行：{3}", "{1}, line {2}: {3}"};
inline constexpr Text<4> atColumn{"{1} 第 {2} 行第 {3} 列：{4}", "{1}, line {2}, column {3}: {4}"};
inline constexpr Text<5> atNamedColumn{"{1} 第 {2} 行第 {3} 列（{4}）：{5}", "{1}, line {2}, column {3} ({4}): {5}"};

}  // namespace quillon::workbench::messages
