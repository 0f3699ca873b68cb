#include <stdexcept>
#include <string>

#include "filters/filter_control.h"
#include "filters/sfc_filter_control.h"
#include "filters/wt_filter_control.h"
#include "frame/module.h"
#include "workbench/catalogue/library_runner.h"

namespace quillon::workbench {

namespace {

bool accepts(SfcFilterControl&, FilterDialog&) {
  return SfcFilterControl::filterClick();
}
bool accepts(FilterControl& control, FilterDialog& dialog) {
  return !control.filterClick(dialog).has_value();
}

bool accepts(WtFilterControl&, FilterDialog&) {
  return WtFilterControl::filterClick();
}

template <typename Control>
std::optional<std::string> viewOf(FilterDialog& dialog) {
  return Control::reportView(dialog);
}
// The cost-item voucher report has one view, which its class is not asked for.
template <>
std::optional<std::string> viewOf<WtFilterControl>(FilterDialog&) {
  return std::nullopt;
}

// A dialog that is served by an instance of `Control`.
template <typename Control>
class NativeDialog final : public DialogRunner {
 public:
  NativeDialog(EmbeddedPlatform& platform, std::shared_ptr<FilterDialogObject> dialog)
      : module_(platform), control_(module_), dialog_(std::move(dialog)) {}

  void init() override { control_.filterInit(*dialog_); }
  void changed(const std::string& key) override { control_.valueChange(key, *dialog_); }
  bool click() override { return accepts(control_, *dialog_); }
  std::optional<std::string> view() override { return viewOf<Control>(*dialog_); }
  std::optional<std::string> viewAfterChange(const std::string&) override { return viewOf<Control>(*dialog_); }

 private:
  Module module_;
  Control control_;
  std::shared_ptr<FilterDialogObject> dialog_;
};

}  // namespace

std::unique_ptr<DialogRunner> makeDialogRunner(EmbeddedPlatform& platform, const ReportRegistration& report,
                                               std::shared_ptr<FilterDialogObject> dialog) {
  if (report.filterControl == "clsSFCFilterControl")
    return std::make_unique<NativeDialog<SfcFilterControl>>(platform, std::move(dialog));
  if (report.filterControl == "clsFilterControl")
    return std::make_unique<NativeDialog<FilterControl>>(platform, std::move(dialog));
  if (report.filterControl == "clsWtFilterControl")
    return std::make_unique<NativeDialog<WtFilterControl>>(platform, std::move(dialog));
  throw std::invalid_argument("the library has no class " + report.filterControl);
}

}  // namespace quillon::workbench
