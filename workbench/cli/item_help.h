// What a report's filter items are called and how each is written, for `quillon report REPORT --help`.
#pragma once

#include <string>
#include <string_view>

#include "workbench/catalogue/report.h"

namespace CLI {
class App;
}

namespace quillon::workbench {

// "cWhCode=07": how the item may be set; what the account then has of it is another question.
std::string exampleOf(const ItemRegistration& item);

// A table of the items in order: key, captions in both languages, kind, how many values, where codes are listed, and an
// example.
std::string itemHelp(const Report& report);

// Puts itemHelp() of the report that `name` holds when help is given behind the options of `command`; where it names none,
// how to see the items. `name` outlives the command.
void addItemHelp(CLI::App& command, const std::string& name);

}  // namespace quillon::workbench
