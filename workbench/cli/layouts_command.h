// `quillon layouts`: the layouts that the user keeps; the options that name and keep one.
#pragma once

#include <ostream>
#include <string>

#include "workbench/platform/language.h"
#include "workbench/runs/kept_layouts.h"

namespace CLI {
class App;
class Option;
}  // namespace CLI

namespace quillon::workbench {

// A table of the layouts: name, report and the options that would show the same, as far as the file can be read.
void listLayouts(const KeptLayouts& layouts, Language language, std::ostream& out);

void addLayoutsCommand(CLI::App& app);

// Adds --layout, which takes one of the reports' own layouts, a kept one's name, or a file.
void addLayoutOption(CLI::App& command, std::string& layout);
// What `asked` comes to for the report when its layout is a kept one or a file; else `asked`. Throws CLI::ValidationError
// for a layout that is none of these, UserError for a file that cannot be used.
LayoutText layoutAskedFor(const Report& report, LayoutText asked);

// Adds --save-layout, which is given back, and --replace-layout.
CLI::Option& addSaveLayoutOptions(CLI::App& command, FileToSave& saving);

}  // namespace quillon::workbench
