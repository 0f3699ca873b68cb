// The two languages that the workbench speaks.
#pragma once

#include <string_view>

namespace quillon::workbench {

enum class Language { chinese, english };

// The language of a login's LanguageRegion: "zh-CN" and its like are Chinese, everything else is taken for English.
constexpr Language languageOfRegion(std::string_view region) {
  return region.starts_with("zh") ? Language::chinese : Language::english;
}

// A text in both languages; UTF-8.
struct Caption {
  std::string_view chinese;
  std::string_view english;

  constexpr std::string_view in(Language language) const { return language == Language::chinese ? chinese : english; }
};

}  // namespace quillon::workbench
