#include "workbench/com/com_runner.h"

#include <string>

#include "automation/class_lookup.h"
#include "automation/errors.h"
#include "automation/text.h"
#include "automation/win32.h"
#include "workbench/com/argument_object.h"
#include "workbench/com/exposed_platform.h"
#include "workbench/com/filter_objects.h"

namespace quillon::workbench {

namespace {

// The thread's apartment. Leaving it releases what Quillon.dll keeps for the thread.
class Apartment {
 public:
  Apartment() {
    const HRESULT code = CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED);
    if (FAILED(code)) throw AutomationError(code, "Quillon", "COM cannot be used: " + automation::systemMessage(code));
  }
  Apartment(const Apartment&) = delete;
  Apartment& operator=(const Apartment&) = delete;
  ~Apartment() { CoUninitialize(); }
};

// An instance of one of the library's classes, by its ProgID.
automation::LateBound createInstance(std::string_view className) {
  const std::wstring progId = automation::toWide("Quillon." + std::string(className));
  automation::LateBound instance = automation::tryCreateObject({progId.c_str(), CLSID_NULL});
  if (!instance) {
    throw AutomationError(REGDB_E_CLASSNOTREG, "Quillon",
                          "Quillon.dll is not registered on this machine: run \"regsvr32 Quillon.dll\" in its folder, "
                          "as an administrator");
  }
  return instance;
}

// What a class of the library finds of the host platform while it is called.
class Host {
 public:
  // The platform owns its monitor and lives longer than anything made here.
  explicit Host(EmbeddedPlatform& platform)
      : standIn_(platform, std::shared_ptr<SessionMonitor>(std::shared_ptr<void>(), platform.options().monitor)) {}

 private:
  Apartment apartment_;
  PlatformStandIn standIn_;
};

// Calls the report classes as the host platform does: by ProgID, late-bound, the argument by reference.
class ComReportRunner final : public ReportRunner {
 public:
  explicit ComReportRunner(EmbeddedPlatform& platform) : host_(platform) {}

  void run(const Report& report, const std::shared_ptr<WorkbenchArgument>& argument) override {
    call(L"GETSQL", report, argument);
  }
  void execute(const Report& report, const std::shared_ptr<WorkbenchArgument>& argument) override {
    call(L"Execute", report, argument);
  }

 private:
  static void call(const wchar_t* member, const Report& report, const std::shared_ptr<WorkbenchArgument>& argument) {
    const automation::LateBound instance = createInstance(report.reportClass);
    const automation::ComPtr<IDispatch> e = argumentObject(argument);
    IDispatch* reference = e.get();
    instance.call(member, {automation::Variant::reference(reference)});
  }

  Host host_;
};

// Calls a filter-control class likewise: the filter and what is written back by reference.
class ComDialogRunner final : public DialogRunner {
 public:
  ComDialogRunner(EmbeddedPlatform& platform, const Report& report, std::shared_ptr<FilterDialogObject> dialog)
      : host_(platform),
        control_(createInstance(report.dialog->name)),
        hasViews_(report.dialog->hasViews),
        filter_(dialogObject(std::move(dialog))) {}

  void init() override { control_.call(L"CallBack_FilterInit", {filter()}); }
  void changed(const std::string& key) override { control_.call(L"CallBack_ValueChange", {key, filter()}); }
  bool click() override {
    automation::Variant cancel(false);
    control_.call(L"CallBack_FilterClick", {filter(), automation::Variant::reference(cancel)});
    return !automation::toFlag(cancel);
  }
  std::optional<std::string> view() override {
    automation::Variant viewClass;
    if (hasViews_) control_.call(L"CallBack_ReportViewInit", {filter(), automation::Variant::reference(viewClass)});
    return textUnlessEmpty(viewClass);
  }
  std::optional<std::string> viewAfterChange(const std::string& key) override {
    automation::Variant viewClass;
    if (hasViews_)
      control_.call(L"CallBack_ReportViewChange", {key, filter(), automation::Variant::reference(viewClass)});
    return textUnlessEmpty(viewClass);
  }

 private:
  automation::Variant filter() {
    reference_ = filter_.get();
    return automation::Variant::reference(reference_);
  }

  static std::optional<std::string> textUnlessEmpty(const automation::Variant& value) {
    if (value.vt == VT_EMPTY) return std::nullopt;
    return automation::toText(value);
  }

  Host host_;
  automation::LateBound control_;
  bool hasViews_;
  automation::ComPtr<IDispatch> filter_;
  IDispatch* reference_ = nullptr;  // what the class gets a reference to
};

}  // namespace

std::unique_ptr<ReportRunner> makeComReportRunner(EmbeddedPlatform& platform) {
  return std::make_unique<ComReportRunner>(platform);
}

std::unique_ptr<DialogRunner> makeComDialogRunner(EmbeddedPlatform& platform, const Report& report,
                                                  std::shared_ptr<FilterDialogObject> dialog) {
  return std::make_unique<ComDialogRunner>(platform, report, std::move(dialog));
}

std::unique_ptr<ReportRunner> makeReportRunner(EmbeddedPlatform& platform) {
  return makeComReportRunner(platform);
}

std::unique_ptr<DialogRunner> makeDialogRunner(EmbeddedPlatform& platform, const Report& report,
                                               std::shared_ptr<FilterDialogObject> dialog) {
  return makeComDialogRunner(platform, report, std::move(dialog));
}

}  // namespace quillon::workbench
