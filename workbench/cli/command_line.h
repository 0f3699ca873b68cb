// The command line of the program `quillon`: its commands, and what is said when they are called wrongly.
#pragma once

#include <exception>
#include <ostream>
#include <string>
#include <vector>

#include "workbench/platform/language.h"

namespace quillon::workbench {

// Runs the command that `arguments` (UTF-8, last first) name. Gives the program's exit status. Wrong usage is one line on
// `errors` in the command's language (language_option.h), status 2: what is wrong, what may have been meant, and whose help tells more. Throws std::exception for
// work that cannot be done.
int runCommandLine(std::vector<std::string> arguments, const std::string& version, std::ostream& errors);

// What went wrong, for a person, in one line in `language`. An argument that is quoted in it may be a connection string: its password
// is not told. What a library threw by itself is said in this program's words.
std::string errorLine(const std::exception& error, Language language = Language::english);

}  // namespace quillon::workbench
