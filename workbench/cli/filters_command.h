// `quillon filters`: the filters that the user keeps.
#pragma once

#include <ostream>
#include <string>

#include "workbench/platform/language.h"
#include "workbench/platform/saved_filters.h"

namespace CLI {
class App;
}

namespace quillon::workbench {

// A table of the filters: name, report and what is entered, as far as the file can be read.
void listFilters(const SavedFilters& filters, Language language, std::ostream& out);

void addFiltersCommand(CLI::App& app);

// Adds --filter, which takes a saved filter's name or a file; `file` gets the file, and outlives the parsing.
void addFilterOption(CLI::App& command, std::string& file, const std::string& description);

// Adds --save-filter and --replace-filter.
void addSaveFilterOptions(CLI::App& command, FilterToSave& saving);

}  // namespace quillon::workbench
