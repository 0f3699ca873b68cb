// What the program needs of the machine it runs on to speak UTF-8 everywhere, and to say what went wrong.
#pragma once

#include <string>
#include <vector>

namespace quillon::workbench {

// Makes the standard streams pass bytes on as they are: Windows would turn every line feed into two characters.
void prepareStandardStreams();

// A file that grows past the limit that the system sets for files becomes an error like that of a full disk; otherwise it
// would end the program without a word.
void reportFileSizeLimit();

// Whether somebody watches standard error.
bool errorsGoToTerminal();

// Asks on standard error and reads the answer from standard input; false without a person at both.
bool userAgrees(const std::string& question);

// The arguments after the program's name, in UTF-8 and, as CLI11 takes them, last first.
std::vector<std::string> utf8Arguments(int argc, char** argv);

}  // namespace quillon::workbench
