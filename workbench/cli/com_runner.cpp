#include <string>

#include "frame/com/class_lookup.h"
#include "frame/com/errors.h"
#include "frame/com/text.h"
#include "frame/com/win32.h"
#include "workbench/cli/library_runner.h"
#include "workbench/com/platform_objects.h"

namespace quillon::workbench {

namespace {

// The thread's apartment. Leaving it releases what Quillon.dll keeps for the thread.
class Apartment {
 public:
  Apartment() {
    const HRESULT code = CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED);
    if (FAILED(code)) throw AutomationError(code, "Quillon", "COM cannot be used: " + com::systemMessage(code));
  }
  Apartment(const Apartment&) = delete;
  Apartment& operator=(const Apartment&) = delete;
  ~Apartment() { CoUninitialize(); }
};

// An instance of one of the library's classes, by its ProgID.
com::LateBound createInstance(std::string_view className) {
  const std::wstring progId = com::toWide("Quillon." + std::string(className));
  com::LateBound instance = com::tryCreateObject({progId.c_str(), CLSID_NULL});
  if (!instance) {
    throw AutomationError(REGDB_E_CLASSNOTREG, "Quillon",
                          "Quillon.dll is not registered on this machine: run \"regsvr32 Quillon.dll\" in its folder, "
                          "as an administrator");
  }
  return instance;
}

// Calls the report classes as the host platform does: by ProgID, late-bound, the argument by reference.
class ComRunner final : public ReportRunner {
 public:
  // The platform owns its monitor and lives longer than anything made here.
  explicit ComRunner(EmbeddedPlatform& platform)
      : standIn_(platform, std::shared_ptr<SessionMonitor>(std::shared_ptr<void>(), platform.options().monitor)) {}

  void run(const ReportRegistration& report, const std::shared_ptr<WorkbenchArgument>& argument) override {
    const com::LateBound instance = createInstance(report.reportClass);
    const com::ComPtr<IDispatch> e = argumentObject(argument);
    IDispatch* reference = e.get();
    instance.call(L"GETSQL", {com::Variant::reference(reference)});
  }

 private:
  Apartment apartment_;
  PlatformStandIn standIn_;
};

}  // namespace

std::unique_ptr<ReportRunner> makeReportRunner(EmbeddedPlatform& platform) {
  return std::make_unique<ComRunner>(platform);
}

}  // namespace quillon::workbench
