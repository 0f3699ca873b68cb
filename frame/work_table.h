// Work tables: how a report's own tables in the account database are named, and the two statements that drop them.
#pragma once

#include <string>
#include <string_view>

#include "frame/module.h"

namespace quillon {

class WorkTable {
 public:
  explicit WorkTable(std::string name) : name_(std::move(name)) {}

  // A new name: the module's name prefix, a fresh part from its unique-name source, then `suffix`, which tells what
  // the table is for. Throws AutomationError when the unique-name source cannot be created or does not answer.
  static WorkTable named(Module& module, std::string_view suffix);

  // The bare name, as Sysobjects holds it. It may begin with a digit, so statements use reference().
  const std::string& name() const { return name_; }
  // The name in square brackets, as statements refer to the table.
  std::string reference() const { return "[" + name_ + "]"; }

  // Run before the table is created, so that one left by a failed run is no error.
  std::string dropBeforeCreating() const;
  // Run when the table is no longer needed. A missing table is no error.
  std::string dropAfterBuild() const;

 private:
  std::string name_;
};

}  // namespace quillon
