#include <stdexcept>
#include <string>

#include "filters/sfc_filter_control.h"
#include "frame/module.h"
#include "workbench/cli/library_runner.h"

namespace quillon::workbench {

namespace {

class NativeSfcDialog final : public DialogRunner {
 public:
  NativeSfcDialog(EmbeddedPlatform& platform, std::shared_ptr<FilterDialogObject> dialog)
      : module_(platform), control_(module_), dialog_(std::move(dialog)) {}

  void init() override { control_.filterInit(*dialog_); }
  void changed(const std::string& key) override { control_.valueChange(key, *dialog_); }
  bool click() override { return SfcFilterControl::filterClick(); }
  std::optional<std::string> view() override { return SfcFilterControl::reportView(*dialog_); }
  std::optional<std::string> viewAfterChange(const std::string&) override {
    return SfcFilterControl::reportView(*dialog_);
  }

 private:
  Module module_;
  SfcFilterControl control_;
  std::shared_ptr<FilterDialogObject> dialog_;
};

}  // namespace

std::unique_ptr<DialogRunner> makeDialogRunner(EmbeddedPlatform& platform, const ReportRegistration& report,
                                               std::shared_ptr<FilterDialogObject> dialog) {
  if (report.filterControl != "clsSFCFilterControl") {
    throw std::invalid_argument("the library has no class " + report.filterControl);
  }
  return std::make_unique<NativeSfcDialog>(platform, std::move(dialog));
}

}  // namespace quillon::workbench
