// The two languages that the workbench speaks.
#pragma once

#include <string_view>

namespace quillon::workbench {

enum class Language { chinese, english };

// A text in both languages; UTF-8.
struct Caption {
  std::string_view chinese;
  std::string_view english;

  constexpr std::string_view in(Language language) const { return language == Language::chinese ? chinese : english; }
};

}  // namespace quillon::workbench
