// What must not leave the program: paths of the machine, connection strings and passwords.
#pragma once

#include <filesystem>
#include <string>
#include <utility>
#include <vector>

#include "workbench/platform/account_source.h"

namespace quillon::workbench::desk {

class Discretion {
 public:
  // `folders` are the program's own, such as that of the saved filters.
  Discretion(const AccountSource& account, const std::vector<std::filesystem::path>& folders);

  // What the account is called: its file's name, or the database's on a server.
  const std::string& accountName() const { return accountName_; }
  // `text` with the account called by that name, and without the folders.
  std::string of(std::string text) const;

 private:
  void hide(std::string secret, std::string instead);

  std::string accountName_;
  std::vector<std::pair<std::string, std::string>> secrets_;  // the longest first
};

}  // namespace quillon::workbench::desk
