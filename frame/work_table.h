// Work tables: how a report's own tables are named in statements, and the statements that drop them.
#pragma once

#include <string>
#include <string_view>
#include <utility>

#include "frame/module.h"

namespace quillon {

// A work table in the account database. Other users see it, so each has a name of its own.
class WorkTable {
 public:
  explicit WorkTable(std::string name) : name_(std::move(name)) {}

  // A new name: the module's name prefix, a fresh part from its unique-name source, then `suffix`, which says what the
  // table is for. Throws AutomationError when the unique-name source cannot be created or does not answer.
  static WorkTable named(Module& module, std::string_view suffix);

  // The bare name, as Sysobjects holds it. It may begin with a digit, so statements use reference().
  const std::string& name() const { return name_; }
  // The name in square brackets, as statements refer to the table.
  std::string reference() const { return "[" + name_ + "]"; }

  // Run before the table is created, so that one left by a failed run is no error.
  std::string dropBeforeCreating() const;
  // Run when the table is no longer needed. A missing table is no error.
  std::string dropAfterBuild() const;
  // The same by the bare name, as the group index of the receipt/issue/balance report is dropped. A name that begins
  // with a digit is then refused by the database: docs/known-behaviour.md says what comes of it.
  std::string dropByBareName() const;

 private:
  std::string dropIfKnownAs(std::string_view reference) const;

  std::string name_;
};

// A work table in the database tempdb, which only the connection that made it sees and which ends with it.
class TemporaryTable {
 public:
  explicit TemporaryTable(std::string name) : name_(std::move(name)) {}

  // A new name: "#", the workstation's name (IA_Pub.ClsIAPub's GetComputerName), `kind`, which says what the table is
  // for, and a fresh number from the platform's helper. Throws AutomationError when the public component or the helper
  // refuses.
  static TemporaryTable named(Module& module, std::string_view kind);

  // The name as statements refer to the table.
  const std::string& name() const { return name_; }

  // Run before the table is created and when it is no longer needed. A missing table is no error.
  std::string drop() const;

 private:
  std::string name_;
};

}  // namespace quillon
