// Filters that a user keeps by name, each in a filter file (filter_file.h) of the user's configuration folder.
#pragma once

#include <filesystem>
#include <set>
#include <string>
#include <string_view>
#include <vector>

#include "workbench/messages/message.h"
#include "workbench/platform/filter_object.h"
#include "workbench/platform/language.h"

namespace quillon::workbench {

class SavedFilters {
 public:
  // Those in `folder`, which need not exist.
  explicit SavedFilters(std::filesystem::path folder) : folder_(std::move(folder)) {}
  // Those of the user: in quillon/filters of the folder that XDG_CONFIG_HOME names, or else of .config in the home folder;
  // on Windows in Quillon\filters of the folder that APPDATA names. Throws UserError when neither is set.
  static SavedFilters ofUser();

  const std::filesystem::path& folder() const { return folder_; }
  // The names of all filters, sorted. Other files of the folder have no names that a filter can have.
  std::vector<std::string> names() const;
  bool has(std::string_view name) const;
  // Where the filter is or would be. Throws UserError for a name that a filter cannot have.
  std::filesystem::path path(std::string_view name) const;

  // Throws UserError for a name that a filter cannot have, and when there is a filter of this name, unless it is to be
  // replaced. Whoever saves after long work asks before it.
  void requireFree(std::string_view name, bool replace) const;
  // Writes the filter in one step: a reader finds the older one or the newer one, whole. Throws as requireFree() does,
  // also for a filter that another program saved meanwhile, and when the folder cannot be written to.
  void save(std::string_view name, std::string_view text, bool replace) const;
  // Throws UserError, with the nearest name, when there is no such filter.
  void requireThere(std::string_view name) const;
  // The same, and when it cannot be removed.
  void remove(std::string_view name) const;

  // The file (UTF-8) that a user means by NAME|FILE: what isFilterFile() says is one, else the saved filter of this name,
  // and only without one a file again. Throws UserError when it is none of the two.
  std::string fileOf(const std::string& nameOrFile) const;

 private:
  [[noreturn]] void refuseUnknown(std::string_view name, bool orFile) const;

  std::filesystem::path folder_;
};

// How the filter of a run is to be saved.
struct FilterToSave {
  std::string name = {};  // empty: it is not saved
  bool replace = false;   // a filter of that name may go
};

// Whether a text for NAME|FILE can only be a file: it has a slash or a backslash in it, or .json at its end.
bool isFilterFile(std::string_view nameOrFile);

// What is wrong with `name` as a filter's; empty when nothing is. A name has 1 to 60 characters: letters and digits of any
// script, blanks and - _ . ( ) + , between them. It is none that Windows gives to a device, and does not end in .json.
Message faultOfFilterName(std::string_view name);

// The filter file of those entries of `filter`, in its order, with captions in `language`. Throws UserError for a value that
// is no Unicode text.
std::string filterFileText(const FilterObject& filter, const std::set<const FilterEntry*>& entries, Language language);

}  // namespace quillon::workbench
