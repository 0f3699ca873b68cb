// The module-wide state that the classes of the library share: one Module per thread, never used from another.
#pragma once

#include <memory>
#include <string>

#include "frame/platform.h"

namespace quillon {

class Module {
 public:
  // `platform` makes the components and must outlive the module.
  explicit Module(Platform& platform) : platform_(platform) {}
  Module(const Module&) = delete;
  Module& operator=(const Module&) = delete;

  Platform& platform() { return platform_; }

  // Created by the platform on first use and kept. A creation that fails throws AutomationError and is tried again on
  // the next use.
  PublicComponent& publicComponent();
  ResourceService& resources();
  UniqueNameSource& uniqueNames();
  // Releases the public component; the next use creates it anew.
  void releasePublicComponent() { publicComponent_.reset(); }

  std::shared_ptr<Session> session;          // set and, after a successful build, released by GETSQL
  std::shared_ptr<Login> login;              // set by GETSQL
  std::string namePrefix;                    // set anew by each instance of the two summary reports
  std::shared_ptr<BusinessObject> business;  // set by ClsBusiness.Init

 private:
  Platform& platform_;
  std::shared_ptr<PublicComponent> publicComponent_;
  std::shared_ptr<ResourceService> resources_;
  std::shared_ptr<UniqueNameSource> uniqueNames_;
};

}  // namespace quillon
