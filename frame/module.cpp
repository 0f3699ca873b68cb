#include "frame/module.h"

namespace quillon {

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
