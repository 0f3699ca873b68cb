// Options whose value is one of a few words.
#pragma once

#include <CLI/CLI.hpp>
#include <map>
#include <string>
#include <vector>

#include "workbench/cli/usage_message.h"
#include "workbench/messages/program.h"
#include "workbench/platform/nearest_name.h"

namespace quillon::workbench {

// Turns the word (in any letter case) into the number that CLI11 makes the enumerator of; refuses any other word and
// says which there are.
template <typename Enumeration>
CLI::Validator oneOf(const std::map<std::string, Enumeration>& choices) {
  return CLI::Validator(
      [choices](std::string& word) -> std::string {
        const auto found = choices.find(CLI::detail::to_lower(word));
        if (found != choices.end()) {
          word = std::to_string(static_cast<int>(found->second));
          return {};
        }
        std::vector<std::string> names;
        names.reserve(choices.size());
        for (const auto& [name, value] : choices)
          names.push_back(name);
        return usageText(messages::noneOf(word, listOf(names), suggestion(word, names)));
      },
      "");
}

}  // namespace quillon::workbench
