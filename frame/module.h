// The module-wide state that the classes of the library share: one Module per thread, never used from another.
#pragma once

#include <memory>
#include <string>
#include <vector>

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

  // Puts `next` in the place of the session that is there, which is retired: there is one connection on a thread, and who
  // runs on the earlier one ends with an error at its next call. Nobody takes over an account that it did not open.
  void takeSession(std::shared_ptr<Session> next);
  // The session and the login that a run has put here. Throw throwTakenOver() when another run has taken them away.
  Session& sessionInUse();
  Login& loginInUse();

  // A member of one of the library's classes that uses the module; made where the platform calls in. While it is under
  // way, a call of the platform may lead back into the library on the same thread. What the outer member holds is then
  // kept until the outermost one ends, whatever the inner one replaces or releases.
  class Use {
   public:
    explicit Use(Module& module);
    Use(const Use&) = delete;
    Use& operator=(const Use&) = delete;
    ~Use();

   private:
    Module& module_;
  };

  std::shared_ptr<Session> session;          // set and, after a successful build, released by GETSQL
  std::shared_ptr<Login> login;              // set by GETSQL
  std::string namePrefix;                    // set anew by each instance of the two summary reports
  std::shared_ptr<BusinessObject> business;  // set by ClsBusiness.Init

 private:
  Platform& platform_;
  std::shared_ptr<PublicComponent> publicComponent_;
  std::shared_ptr<ResourceService> resources_;
  std::shared_ptr<UniqueNameSource> uniqueNames_;
  int uses_ = 0;
  std::vector<std::shared_ptr<void>> keptForOuterUses_;
};

}  // namespace quillon
