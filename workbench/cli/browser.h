// Showing a link in the user's browser.
#pragma once

#include <memory>
#include <string>

#include "workbench/account/scratch.h"

namespace quillon::workbench {

// A page that leads to a link, in a file that nobody but the user can read. A browser is given the file's name: a link on
// its command line could be read in the list of processes by everyone on this machine.
class LinkFile {
 public:
  // `link` is an address of this program's own, without characters that mean anything in HTML. Throws UserError, and
  // account::AccountError when there is no folder for temporary files.
  explicit LinkFile(const std::string& link);

  const std::filesystem::path& path() const { return file_; }

 private:
  account::Scratch folder_;  // goes with the object, also when the program is killed: the next one removes it
  std::filesystem::path file_;
};

// Shows the file in the user's browser and does not wait for it. False when there is nothing to show it with.
bool showInBrowser(const std::filesystem::path& file);

}  // namespace quillon::workbench
