#include "frame/work_table.h"

namespace quillon {

WorkTable WorkTable::named(Module& module, std::string_view suffix) {
  return WorkTable(module.namePrefix + module.uniqueNames().next() + std::string(suffix));
}

std::string WorkTable::dropIfKnownAs(std::string_view reference) const {
  return "If Exists(Select Name From Sysobjects Where Name = '" + name_ + "') Drop Table " + std::string(reference);
}

std::string WorkTable::dropBeforeCreating() const {
  return dropIfKnownAs(reference());
}

std::string WorkTable::dropByBareName() const {
  return dropIfKnownAs(name_);
}

std::string WorkTable::dropAfterBuild() const {
  return "If OBJECT_ID(N'" + reference() + "') is not null Drop Table " + reference();
}

TemporaryTable TemporaryTable::named(Module& module, std::string_view kind) {
  const std::string workstation = module.publicComponent().workstationName();
  return TemporaryTable("#" + workstation + std::string(kind) + std::to_string(module.platform().workTableNumber()));
}

std::string TemporaryTable::drop() const {
  return "if exists(select id from  tempdb..sysobjects where id=object_id(N'tempdb.." + name_ + "')) drop table " +
         name_;
}

}  // namespace quillon
