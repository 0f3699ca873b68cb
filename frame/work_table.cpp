#include "frame/work_table.h"

namespace quillon {

WorkTable WorkTable::named(Module& module, std::string_view suffix) {
  return WorkTable(module.namePrefix + module.uniqueNames().next() + std::string(suffix));
}

std::string WorkTable::dropBeforeCreating() const {
  return "If Exists(Select Name From Sysobjects Where Name = '" + name_ + "') Drop Table " + reference();
}

std::string WorkTable::dropAfterBuild() const {
  return "If OBJECT_ID(N'" + reference() + "') is not null Drop Table " + reference();
}

}  // namespace quillon
