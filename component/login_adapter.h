// Login (a port of the core) over the login object that the platform hands in: the library calls the port, the adapter calls
// the object late-bound, each member one call by name (platform_bindings.h).
#pragma once

#include <string>
#include <string_view>
#include <utility>

#include "automation/late_bound.h"
#include "frame/platform.h"

namespace quillon::component {

class LateBoundLogin : public Login {
 public:
  explicit LateBoundLogin(automation::LateBound login) : login_(std::move(login)) {}

  std::string accountConnection() override;
  std::string password() override;
  std::string accountCode() override;
  std::string accountingYear() override;
  std::string accountingYearText() override;
  std::string languageRegion() override;
  std::string languageId() override;
  int currentPeriodYear() override;
  // A date value as yyyy-mm-dd, a text as it stands.
  std::string businessDate() override;
  std::string moduleCode() override;
  void setAuthString(std::string_view rights) override;

  // The login itself, for the platform's components that take it.
  const automation::ComPtr<IDispatch>& object() const { return login_.object(); }

 private:
  automation::LateBound login_;
};

}  // namespace quillon::component
