#include "tests/long_life/com_library.h"

#include <stdexcept>
#include <string>

#include "automation/late_bound.h"
#include "automation/text.h"
#include "workbench/catalogue/library_runner.h"
#include "workbench/com/argument_object.h"
#include "workbench/com/exposed_platform.h"
#include "workbench/com/filter_objects.h"

namespace quillon {

namespace {

long_life::ComLibrary* loaded = nullptr;

automation::LateBound createInstance(std::string_view className) {
  if (!loaded) throw std::logic_error("Quillon.dll is not loaded");
  return {loaded->create<IDispatch>(long_life::ComLibrary::classId(automation::toWide(className))),
          "Quillon." + std::string(className)};
}

}  // namespace

namespace long_life {

ComLibrary::ComLibrary() {
  loaded = this;
}

ComLibrary::~ComLibrary() {
  loaded = nullptr;
}

}  // namespace long_life

namespace workbench {

namespace {

class LibraryReportRunner final : public ReportRunner {
 public:
  explicit LibraryReportRunner(EmbeddedPlatform& platform)
      : standIn_(platform, std::shared_ptr<SessionMonitor>(std::shared_ptr<void>(), platform.options().monitor)) {}

  void run(const Report& report, const std::shared_ptr<WorkbenchArgument>& argument) override {
    call(L"GETSQL", report, argument);
  }
  void execute(const Report& report, const std::shared_ptr<WorkbenchArgument>& argument) override {
    call(L"Execute", report, argument);
  }

 private:
  static void call(const wchar_t* member, const Report& report, const std::shared_ptr<WorkbenchArgument>& argument) {
    const automation::ComPtr<IDispatch> e = argumentObject(argument);
    IDispatch* reference = e.get();
    createInstance(report.reportClass).call(member, {automation::Variant::reference(reference)});
  }

  PlatformStandIn standIn_;
};

class LibraryDialogRunner final : public DialogRunner {
 public:
  LibraryDialogRunner(EmbeddedPlatform& platform, const Report& report, std::shared_ptr<FilterDialogObject> dialog)
      : standIn_(platform, nullptr),
        control_(createInstance(report.dialog->name)),
        filter_(dialogObject(std::move(dialog))) {}

  void init() override { control_.call(L"CallBack_FilterInit", {automation::Variant(filter_)}); }
  void changed(const std::string& key) override {
    control_.call(L"CallBack_ValueChange", {key, automation::Variant(filter_)});
  }
  bool click() override {
    automation::Variant cancel(false);
    control_.call(L"CallBack_FilterClick", {automation::Variant(filter_), automation::Variant::reference(cancel)});
    return !automation::toFlag(cancel);
  }
  // The view makes no difference to the rows.
  std::optional<std::string> view() override { return std::nullopt; }
  std::optional<std::string> viewAfterChange(const std::string&) override { return std::nullopt; }

 private:
  PlatformStandIn standIn_;
  automation::LateBound control_;
  automation::ComPtr<IDispatch> filter_;
};

}  // namespace

std::unique_ptr<ReportRunner> makeReportRunner(EmbeddedPlatform& platform) {
  return std::make_unique<LibraryReportRunner>(platform);
}

std::unique_ptr<DialogRunner> makeDialogRunner(EmbeddedPlatform& platform, const Report& report,
                                               std::shared_ptr<FilterDialogObject> dialog) {
  return std::make_unique<LibraryDialogRunner>(platform, report, std::move(dialog));
}

}  // namespace workbench
}  // namespace quillon
