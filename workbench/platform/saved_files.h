// Files that a user keeps by name in a folder of the user's configuration: filters, layouts.
#pragma once

#include <filesystem>
#include <string>
#include <string_view>
#include <vector>

#include "workbench/messages/message.h"

namespace quillon::workbench {

// What is said of a kind of files.
struct SavedFileWords {
  const Text<2>& noName;  // a name, and what is wrong with it
  const Text<1>& taken;
  // A name that is not there, and what may be meant.
  const Text<2>& unknown;
  const Text<2>& neitherNameNorFile;
};

class SavedFiles {
 public:
  const std::filesystem::path& folder() const { return folder_; }
  // The names of all files, sorted. Other files of the folder have no names that a saved one can have.
  std::vector<std::string> names() const;
  bool has(std::string_view name) const;
  // What is wrong with `name`; empty when nothing is.
  Message faultOfName(std::string_view name) const { return faultOfName_(name); }
  // Where the file is or would be. Throws UserError for a name that it cannot have.
  std::filesystem::path path(std::string_view name) const;

  // Throws UserError for a name that a file cannot have, and when there is a file of this name, unless it is to be
  // replaced. Whoever saves after long work asks before it.
  void requireFree(std::string_view name, bool replace) const;
  // Writes the file in one step: a reader finds the older one or the newer one, whole. Throws as requireFree() does,
  // also for a file that another program saved meanwhile, and when the folder cannot be written to.
  void save(std::string_view name, std::string_view text, bool replace) const;
  // Throws UserError, with the nearest name, when there is no such file.
  void requireThere(std::string_view name) const;
  // The same, and when it cannot be removed.
  void remove(std::string_view name) const;

  // The file (UTF-8) that a user means by NAME|FILE: what isSavedAsFile() says is one, else the saved file of this name,
  // and only without one a file again. Throws UserError when it is none of the two.
  std::string fileOf(const std::string& nameOrFile) const;

 protected:
  using FaultOfName = Message (*)(std::string_view name);
  // Those in `folder`, which need not exist.
  SavedFiles(std::filesystem::path folder, FaultOfName faultOfName, const SavedFileWords& words)
      : folder_(std::move(folder)), faultOfName_(faultOfName), words_(words) {}

 private:
  void requireName(std::string_view name) const;
  [[noreturn]] void refuseUnknown(std::string_view name, bool orFile) const;

  std::filesystem::path folder_;
  FaultOfName faultOfName_;
  SavedFileWords words_;
};

// The folder `name` of the user's files: in quillon of the folder that XDG_CONFIG_HOME names, or else of .config in the home
// folder; on Windows in Quillon of the folder that APPDATA names. Throws UserError when neither is set.
std::filesystem::path folderOfUser(std::string_view name);

// How something of a run is to be saved.
struct FileToSave {
  std::string name = {};  // empty: it is not saved
  bool replace = false;   // one of that name may go
};

// Whether a text for NAME|FILE can only be a file: it has a slash or a backslash in it, or .json at its end.
bool isSavedAsFile(std::string_view nameOrFile);

// What is wrong with `name`; empty when nothing is. A name has 1 to 60 characters: letters and digits of any
// script, blanks and - _ . ( ) + , between them. It is none that Windows gives to a device, and does not end in .json.
Message faultOfSavedName(std::string_view name);

}  // namespace quillon::workbench
