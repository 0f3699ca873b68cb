#include "workbench/cli/language_option.h"

#include <algorithm>
#include <array>
#include <optional>
#include <string_view>

#include "frame/text.h"

namespace quillon::workbench {

namespace {

constexpr std::array<std::string_view, 8> chineseCommands = {"book",    "dialog", "drill",  "filters",
                                                             "layouts", "list",   "report", "verify"};

std::optional<Language> languageNamed(std::string_view word) {
  if (equalIgnoringCase(word, "zh")) return Language::chinese;
  if (equalIgnoringCase(word, "en")) return Language::english;
  return std::nullopt;
}

}  // namespace

Language languageOf(const std::vector<std::string>& arguments) {
  constexpr std::string_view option = "--lang", withValue = "--lang=";
  std::optional<Language> stated;
  std::string_view command;
  for (auto argument = arguments.rbegin(); argument != arguments.rend(); ++argument) {
    if (*argument == "--") break;
    if (command.empty() && !argument->starts_with('-')) command = *argument;
    std::optional<Language> named;
    if (argument->starts_with(withValue)) named = languageNamed(std::string_view(*argument).substr(withValue.size()));
    if (*argument == option && argument + 1 != arguments.rend()) named = languageNamed(*(argument + 1));
    if (named) stated = named;
  }
  if (stated) return *stated;
  return std::ranges::find(chineseCommands, command) != chineseCommands.end() ? Language::chinese : Language::english;
}

}  // namespace quillon::workbench
