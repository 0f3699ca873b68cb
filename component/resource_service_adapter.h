// ResourceService (a port of the core) over the platform's resource and message service, the one component that is called
// early-bound, and what takes its place where none is registered.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "automation/late_bound.h"
#include "component/platform_bindings.h"
#include "frame/platform.h"

namespace quillon::component {

class EarlyBoundResourceService : public ResourceService {
 public:
  // Throws AutomationError when `service` lacks the interface IResourceService.
  explicit EarlyBoundResourceService(const automation::LateBound& service);

  // `login` is one that came from a LateBoundReportArgument or a LateBoundFilterDialog.
  void takeLogin(Login& login) override;
  std::string enumName(std::string_view type, std::string_view code) override;
  std::string text(std::string_view key) override;
  std::string formattedText(std::string_view key, const std::vector<std::string>& arguments) override;
  void showMessage(std::string_view text, int flags) override;

 private:
  // Runs one call of the service; a failure is thrown with what the service left in IErrorInfo.
  template <class Operation>
  void call(std::string_view member, Operation operation) const;

  automation::ComPtr<bindings::IResourceService> service_;
  std::string name_;  // in errors that the service does not describe
};

// Stands in when no resource and message service is registered: a text is its own key, so that a report is made and
// shows which texts it lacks. A message cannot be shown; it becomes the text of an error.
class KeysAsTexts : public ResourceService {
 public:
  void takeLogin(Login& login) override;
  std::string enumName(std::string_view type, std::string_view code) override;
  std::string text(std::string_view key) override;
  // The key, and the arguments in brackets behind it.
  std::string formattedText(std::string_view key, const std::vector<std::string>& arguments) override;
  void showMessage(std::string_view text, int flags) override;
};

}  // namespace quillon::component
