// Filters that a user keeps by name, each in a filter file (filter_file.h) of the user's configuration folder.
#pragma once

#include <filesystem>
#include <set>
#include <string>
#include <string_view>
#include <utility>

#include "workbench/platform/filter_object.h"
#include "workbench/platform/language.h"
#include "workbench/platform/saved_files.h"

namespace quillon::workbench {

class SavedFilters : public SavedFiles {
 public:
  // Those in `folder`, which need not exist.
  explicit SavedFilters(std::filesystem::path folder);
  // Those in filters of the user's folder. Throws as folderOfUser().
  static SavedFilters ofUser() { return SavedFilters(folderOfUser("filters")); }
};

// How the filter of a run is to be saved.
using FilterToSave = FileToSave;

// The filter file of those entries of `filter`, in its order, with captions in `language`. Throws UserError for a value that
// is no Unicode text.
std::string filterFileText(const FilterObject& filter, const std::set<const FilterEntry*>& entries, Language language);

}  // namespace quillon::workbench
