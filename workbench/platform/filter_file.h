// Filter files: what is entered in the items of a filter, as JSON. docs/filter-files.md describes the format for whoever
// writes one, docs/filter-file.schema.json is the schema that the reader holds them to.
#pragma once

#include <string>
#include <string_view>

#include "workbench/platform/filter_object.h"

namespace quillon::workbench {

// The schema, as it ships.
extern const std::string_view filterFileSchema;

// Writes the items' values over those of `filter`. An item that the report did not register is added; it stands for the
// ledger column of its name. `name` is what errors call the file. Throws UserError, with the line and the item, for a text
// that is no filter file.
void applyFilterFile(FilterObject& filter, std::string_view text, const std::string& name);
// The same with the text of the file `path` (UTF-8). Throws UserError when it cannot be read.
void readFilterFile(FilterObject& filter, const std::string& path);

}  // namespace quillon::workbench
