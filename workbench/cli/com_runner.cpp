#include <stdexcept>
#include <string>

#include "frame/com/class_lookup.h"
#include "frame/com/errors.h"
#include "frame/com/win32.h"
#include "workbench/cli/report_runner.h"
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

com::PlatformClass classOf(std::string_view report) {
  if (report == "sfc-item") return {L"Quillon.clsSFC_Item", CLSID_NULL};
  throw std::invalid_argument("there is no report \"" + std::string(report) + "\"");
}

// Calls the report classes as the host platform does: by ProgID, late-bound, the argument by reference.
class ComRunner final : public ReportRunner {
 public:
  // The platform owns its monitor and lives longer than anything made here.
  explicit ComRunner(EmbeddedPlatform& platform)
      : standIn_(platform, std::shared_ptr<SessionMonitor>(std::shared_ptr<void>(), platform.options().monitor)) {}

  void run(std::string_view report, const std::shared_ptr<WorkbenchArgument>& argument) override {
    const com::LateBound instance = com::tryCreateObject(classOf(report));
    if (!instance) {
      throw AutomationError(
          REGDB_E_CLASSNOTREG, "Quillon",
          "Quillon.dll is not registered on this machine: run \"regsvr32 Quillon.dll\" in its folder, "
          "as an administrator");
    }
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
