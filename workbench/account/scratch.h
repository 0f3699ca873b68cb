// The scratch file of a report run: where work tables and the result table lie, so that the account itself is only read.
#pragma once

#include <filesystem>

#include "workbench/account/held_file.h"

namespace quillon::account {

// A folder in the system's folder for temporary files (TMPDIR, TEMP), for this user only, with the name of a scratch
// file in it. The file is made by whoever opens it first (tsql::Connection::openWithScratch). The folder goes with the
// object, which therefore outlives every connection to the file.
//
// What a killed program left is removed by the next one that makes a scratch file: beside each folder is a file that its
// owner holds (held_file.h).
class Scratch {
 public:
  // Throws AccountError when the folder cannot be made.
  Scratch();
  Scratch(const Scratch&) = delete;
  Scratch& operator=(const Scratch&) = delete;
  ~Scratch();

  const std::filesystem::path& file() const { return file_; }

 private:
  HeldFile lock_;
  std::filesystem::path file_;
};

}  // namespace quillon::account
