// What the program needs of the machine it runs on to speak UTF-8 everywhere.
#pragma once

#include <string>
#include <vector>

namespace quillon::workbench {

// Makes the standard streams pass bytes on as they are: Windows would turn every line feed into two characters.
void prepareStandardStreams();

// Whether somebody watches standard error.
bool errorsGoToTerminal();

// The arguments after the program's name, in UTF-8 and, as CLI11 takes them, last first.
std::vector<std::string> utf8Arguments(int argc, char** argv);

}  // namespace quillon::workbench
