// Options whose value is checked while the command line is read, so that what is wrong is said in this program's words.
#pragma once

#include <CLI/CLI.hpp>
#include <charconv>
#include <concepts>
#include <limits>
#include <string>

#include "workbench/cli/usage_message.h"
#include "workbench/messages/filter.h"
#include "workbench/messages/program.h"
#include "workbench/platform/filter_input.h"

namespace quillon::workbench {

// A whole number from `least` to `most`, in decimal.
template <std::integral Number>
CLI::Validator wholeNumber(Number least, Number most = std::numeric_limits<Number>::max()) {
  return CLI::Validator(
      [least, most](std::string& text) -> std::string {
        Number number = 0;
        const char* const end = text.data() + text.size();
        const auto [stopped, error] = std::from_chars(text.data(), end, number);
        if (error == std::errc() && stopped == end && number >= least && number <= most) {
          text = std::to_string(number);  // leading zeros would make it octal
          return {};
        }
        const bool open = most == std::numeric_limits<Number>::max();
        if (open && stopped == end && error == std::errc::result_out_of_range && !text.starts_with('-'))
          return usageText(messages::numberTooLarge(text, most));
        return usageText(open ? messages::noWholeNumberFrom(text, least) : messages::noWholeNumber(text, least, most));
      },
      "");
}

// Adds --date, the login's date, which a filter's dates are checked like.
inline void addDateOption(CLI::App& command, std::string& date) {
  command.add_option("--date", date, "The login's date, yyyy-mm-dd")
      ->transform(CLI::Validator(
          [](std::string& text) -> std::string {
            const auto entered = enteredDate(text);
            if (!entered) return usageText(messages::noDate(text));
            text = *entered;
            return {};
          },
          ""));
}

}  // namespace quillon::workbench
