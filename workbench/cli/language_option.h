// The language that a command speaks.
#pragma once

#include <CLI/CLI.hpp>
#include <map>
#include <string>
#include <vector>

#include "workbench/cli/named_choice.h"
#include "workbench/platform/language.h"

namespace quillon::workbench {

// Adds --lang: the language of the output, of notes and of errors. `language` holds what it is without the option.
inline void addLanguageOption(CLI::App& command, Language& language) {
  static const std::map<std::string, Language> languages = {{"zh", Language::chinese}, {"en", Language::english}};
  command.add_option("--lang", language, "zh or en")->transform(oneOf(languages));
}

// The language in which the command that `arguments` (last first) call speaks, found before they are understood, so that
// wrong usage is told in it, too: what --lang says, else Chinese for commands whose output is Chinese by itself, that is
// reports, their dialogs, filters and codes, and English for all others.
Language languageOf(const std::vector<std::string>& arguments);

}  // namespace quillon::workbench
