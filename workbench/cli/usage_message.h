// What is wrong with how a command was called, in both languages. CLI11 carries one text from where an argument is checked
// to where errors are told: so both go in one.
#pragma once

#include <CLI/CLI.hpp>
#include <string>
#include <string_view>

#include "workbench/messages/common.h"

namespace quillon::workbench {

inline constexpr char languageMark = '\x1f';

// The message for a check of CLI11 to give; empty for an empty one, which says that nothing is wrong.
inline std::string usageText(const Message& message) {
  return message.empty() ? std::string() : message.english() + languageMark + message.in(Language::chinese);
}

// The message that stands in `text`, with the option that CLI11 puts before it ("--limit: ...").
inline Message usageMessage(std::string_view text) {
  const auto mark = text.find(languageMark);
  if (mark == std::string_view::npos) return Message::verbatim(std::string(text));
  const std::string_view english = text.substr(0, mark), chinese = text.substr(mark + 1);
  constexpr std::string_view colon = ": ";
  const auto name = english.starts_with('-') || english.find(colon) < english.find(' ') ? english.find(colon)
                                                                                        : std::string_view::npos;
  if (name == std::string_view::npos) return messages::said(Caption{chinese, english});
  return messages::headed(english.substr(0, name), Caption{chinese, english.substr(name + colon.size())});
}

}  // namespace quillon::workbench
