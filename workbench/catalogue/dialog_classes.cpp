#include "workbench/catalogue/dialog_classes.h"

#include "filters/filter_control.h"
#include "filters/sfc_filter_control.h"
#include "filters/wt_filter_control.h"

namespace quillon::workbench {

namespace {

// What all classes do alike. A class that has no views or lists leaves the view as it is and has empty lists.
template <typename Class>
class DialogOf : public CoreDialog {
 public:
  explicit DialogOf(Module& module) : control_(module) {}

  void init(FilterDialog& dialog) override { control_.filterInit(dialog); }
  void changed(std::string_view key, FilterDialog& dialog) override { control_.valueChange(key, dialog); }
  std::optional<std::string> view(FilterDialog&) override { return std::nullopt; }
  std::vector<std::string> years() override { return {}; }
  std::vector<int> grades() override { return {}; }

 protected:
  Class& control() { return control_; }

 private:
  Class control_;
};

class SummaryDialog final : public DialogOf<SfcFilterControl> {
 public:
  using DialogOf::DialogOf;

  FilterClick click(FilterDialog&) override { return {.result = SfcFilterControl::filterClick()}; }
  std::optional<std::string> view(FilterDialog& dialog) override { return SfcFilterControl::reportView(dialog); }
  std::vector<std::string> years() override {
    control().initYear();
    return control().years();
  }
  std::vector<int> grades() override {
    control().initGrade();
    return control().grades();
  }
};

class DetailDialog final : public DialogOf<FilterControl> {
 public:
  using DialogOf::DialogOf;

  FilterClick click(FilterDialog& dialog) override { return {.cancelled = control().filterClick(dialog)}; }
  std::optional<std::string> view(FilterDialog& dialog) override { return FilterControl::reportView(dialog); }
};

class VoucherDialog final : public DialogOf<WtFilterControl> {
 public:
  using DialogOf::DialogOf;

  FilterClick click(FilterDialog&) override { return {.result = WtFilterControl::filterClick()}; }
};

template <typename Dialog>
std::unique_ptr<CoreDialog> make(Module& module) {
  return std::make_unique<Dialog>(module);
}

}  // namespace

const DialogClass& summaryDialog() {
  static constexpr DialogClass dialog{.name = "clsSFCFilterControl",
                                      .traceName = "dialog-sfc",
                                      .hasViews = true,
                                      .hasLists = true,
                                      .make = make<SummaryDialog>};
  return dialog;
}

const DialogClass& detailDialog() {
  static constexpr DialogClass dialog{
      .name = "clsFilterControl", .traceName = "dialog-detail", .hasViews = true, .make = make<DetailDialog>};
  return dialog;
}

const DialogClass& voucherDialog() {
  static constexpr DialogClass dialog{
      .name = "clsWtFilterControl", .traceName = "dialog-wt", .make = make<VoucherDialog>};
  return dialog;
}

}  // namespace quillon::workbench
