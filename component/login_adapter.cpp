#include "component/login_adapter.h"

#include "component/platform_bindings.h"

namespace quillon::component {

std::string LateBoundLogin::accountConnection() {
  return login_.text(bindings::login::accountConnection);
}

std::string LateBoundLogin::password() {
  return login_.text(bindings::login::password);
}

std::string LateBoundLogin::accountCode() {
  return login_.text(bindings::login::accountCode);
}

std::string LateBoundLogin::accountingYear() {
  return login_.text(bindings::login::accountingYear);
}

std::string LateBoundLogin::accountingYearText() {
  return login_.text(bindings::login::accountingYearText);
}

std::string LateBoundLogin::languageRegion() {
  return login_.text(bindings::login::languageRegion);
}

std::string LateBoundLogin::languageId() {
  return login_.text(bindings::login::languageId);
}

int LateBoundLogin::currentPeriodYear() {
  return login_.integer(bindings::login::currentPeriodYear);
}

std::string LateBoundLogin::businessDate() {
  return login_.text(bindings::login::businessDate);
}

std::string LateBoundLogin::moduleCode() {
  return login_.offers(bindings::login::moduleCode) ? login_.text(bindings::login::moduleCode) : std::string();
}

void LateBoundLogin::setAuthString(std::string_view rights) {
  login_.put(bindings::login::authString, rights);
}

}  // namespace quillon::component
