#include "frame/module.h"

#include <utility>

namespace quillon {

Module::Use::Use(Module& module) : module_(module) {
  if (module_.uses_ > 0) {
    std::vector<std::shared_ptr<void>>& kept = module_.keptForOuterUses_;
    kept.insert(kept.end(), {module_.session, module_.login, module_.business, module_.publicComponent_,
                             module_.resources_, module_.uniqueNames_});
  }
  ++module_.uses_;
}

Module::Use::~Use() {
  if (--module_.uses_ > 0) return;
  // First out of sight, then released: what is released may call back into the library.
  const std::vector<std::shared_ptr<void>> kept = std::exchange(module_.keptForOuterUses_, {});
}

void Module::takeSession(std::shared_ptr<Session> next) {
  const std::shared_ptr<Session> before = std::exchange(session, std::move(next));
  if (before) before->retire();
}

Session& Module::sessionInUse() {
  if (!session) throwTakenOver();
  return *session;
}

Login& Module::loginInUse() {
  if (!login) throwTakenOver();
  return *login;
}

PublicComponent& Module::publicComponent() {
  if (!publicComponent_) publicComponent_ = platform_.createPublicComponent();
  return *publicComponent_;
}

ResourceService& Module::resources() {
  if (!resources_) resources_ = platform_.createResourceService();
  return *resources_;
}

UniqueNameSource& Module::uniqueNames() {
  if (!uniqueNames_) uniqueNames_ = platform_.createUniqueNameSource();
  return *uniqueNames_;
}

}  // namespace quillon
