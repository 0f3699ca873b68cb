// Fault injection into the calls that Quillon.dll makes through COM. A proxy stands in front of every object that goes into
// the library and of every object that a call gives it; a class object stands in front of every class that the library
// creates. Each call through them is counted, and the one that a test chooses fails instead of reaching the object.
#pragma once

#include <cstddef>
#include <memory>
#include <string>
#include <vector>

#include "automation/class_factory.h"
#include "automation/com_ptr.h"
#include "automation/win32.h"
#include "workbench/platform/embedded_platform.h"

namespace quillon::faults {

// How the library reached an object.
enum class CallKind {
  create,  // CoCreateInstance: its failure is a code
  lookUp,  // GetIDsOfNames: its failure is a code
  invoke,  // Invoke, or a slot of the resource service: its failure has source and description
};

struct ComCall {
  CallKind kind = CallKind::invoke;
  std::string object;  // a ProgID, or the member that gave the object: "DataSource"
  std::string member;  // "SQL"; empty for a creation

  friend bool operator==(const ComCall&, const ComCall&) = default;
  // For failing tests.
  std::string shown() const {
    return (kind == CallKind::create ? "new " : kind == CallKind::lookUp ? "look up " : "") + object + "." + member;
  }
};

class ComFaultInjector {
 public:
  // What a failing call says; no code and no source that anything else here uses.
  static constexpr HRESULT failure = static_cast<HRESULT>(0x80043A07U);
  static constexpr const char* source = "FaultInjector";
  static std::string description(std::size_t call) { return "call " + std::to_string(call) + " was refused"; }

  // Counts calls from 1 on and fails call `failAt`; 0 fails none.
  void start(std::size_t failAt);
  // Ends counting and failing. What was counted stays.
  void stop() { counting_ = false; }
  const std::vector<ComCall>& calls() const { return calls_; }

  // Counts a call of the library; true when it is the one to fail. Calls that the platform makes are not counted.
  bool shouldFail(ComCall call);
  bool platformAtWork() const { return depth_ > 0; }

  // How many proxies the library keeps alive.
  int liveProxies = 0;

  // While one of these lives, the platform answers a call: what is called meanwhile is not called by the library.
  class PlatformAtWork {
   public:
    explicit PlatformAtWork(ComFaultInjector& injector) : depth_(injector.depth_) { ++depth_; }
    PlatformAtWork(const PlatformAtWork&) = delete;
    PlatformAtWork& operator=(const PlatformAtWork&) = delete;
    ~PlatformAtWork() { --depth_; }

   private:
    int& depth_;
  };

 private:
  std::vector<ComCall> calls_;
  std::size_t failAt_ = 0;
  bool counting_ = false;
  int depth_ = 0;
};

// A proxy in front of `inner`, called `name`. `injector` outlives it.
automation::ComPtr<IDispatch> intercepted(ComFaultInjector& injector, std::string name,
                                          automation::ComPtr<IDispatch> inner);

// Makes, in this thread's apartment and for as long as it lives, the ProgIDs of ADO and of the platform mean the
// workbench's components behind proxies.
class InterceptedClasses {
 public:
  // `injector` and `platform` outlive it and what it made; `monitor` watches the sessions.
  InterceptedClasses(ComFaultInjector& injector, workbench::EmbeddedPlatform& platform,
                     const std::shared_ptr<workbench::SessionMonitor>& monitor);

 private:
  std::vector<std::unique_ptr<automation::InProcessClass>> classes_;
};

}  // namespace quillon::faults
