// A report class of the library, called directly.
#pragma once

#include <memory>
#include <type_traits>

#include "frame/drill_through.h"
#include "frame/module.h"

namespace quillon::workbench {

// One instance lives for one report run. Every member throws AutomationError when the class does.
class CoreReport {
 public:
  virtual ~CoreReport() = default;

  virtual void getSql(ReportArgument& argument) = 0;  // GETSQL
  // Execute, and what it came to; a class that opens no documents gives DrillThrough::nothing.
  virtual DrillThrough execute(ReportArgument& argument) = 0;
};

// An instance of `Class`, such as FxWt. `module` must outlive it.
template <typename Class>
std::unique_ptr<CoreReport> makeCoreReport(Module& module) {
  class Adapter final : public CoreReport {
   public:
    explicit Adapter(Module& state) : report_(state) {}

    void getSql(ReportArgument& argument) override { report_.getSql(argument); }
    DrillThrough execute(ReportArgument& argument) override {
      if constexpr (std::is_void_v<decltype(report_.execute(argument))>) {
        report_.execute(argument);
        return DrillThrough::nothing;
      } else {
        return report_.execute(argument);
      }
    }

   private:
    Class report_;
  };
  return std::make_unique<Adapter>(module);
}

}  // namespace quillon::workbench
