// Layouts that a user keeps by name, each in a layout file of the user's configuration folder: how a report is shown, apart
// from what it is of. docs/layout-files.md describes the format for whoever writes one, docs/layout-file.schema.json is the
// schema that the reader holds them to.
#pragma once

#include <filesystem>
#include <string>
#include <string_view>

#include "workbench/catalogue/report.h"
#include "workbench/platform/saved_files.h"
#include "workbench/runs/layout_text.h"

namespace quillon::workbench {

// The schema, as it ships.
extern const std::string_view layoutFileSchema;

struct KeptLayout {
  std::string report = {};  // as it is registered, such as "fx-wt"
  LayoutText text = {};     // without conditions
};

class KeptLayouts : public SavedFiles {
 public:
  // Those in `folder`, which need not exist.
  explicit KeptLayouts(std::filesystem::path folder);
  // Those in layouts of the user's folder. Throws as folderOfUser().
  static KeptLayouts ofUser() { return KeptLayouts(folderOfUser("layouts")); }

  // The layout of that name. Throws as requireThere() and parseKeptLayout().
  KeptLayout read(std::string_view name) const;
  // Throws as requireFree(), and UserError when there is a layout of that name for another report: that one is not
  // replaced.
  void requireFreeFor(std::string_view name, std::string_view report, bool replace) const;
  // Throws as requireFreeFor() and SavedFiles::save().
  void keep(std::string_view name, const KeptLayout& layout, bool replace) const;
};

// The layout in `text`, each column's name by itself; `name` is what errors call the file. Throws UserError, with the line, for a text that is no layout
// file, and for one that names a report or layout that is not there.
KeptLayout parseKeptLayout(std::string_view text, const std::string& name);
// The same of the file `path` (UTF-8).
KeptLayout readKeptLayout(const std::string& path);

// The layout as the text of a file. Throws UserError for what is no Unicode text.
std::string keptLayoutText(const KeptLayout& layout);

// What is asked of `report` where the layout is the kept one in the file `path` (UTF-8): its columns, order and groups, but
// those that are asked for beside it. Throws UserError when the file is of another report, or when columns or groups
// are asked of a pivot.
LayoutText withKeptLayout(const Report& report, LayoutText asked, const std::string& path);

}  // namespace quillon::workbench
