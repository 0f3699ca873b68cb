// Counts faults: how many were injected and how many were survived. Prints a line for each report and callback, and at the
// end of the program one for all.
#pragma once

#include <cstddef>
#include <string>

namespace quillon::faults {

// The faults of one report or callback. Prints "faults: sfc-item: 412 calls failed, 412 survived" when it ends.
class FaultCount {
 public:
  // `what` fails: "calls", "allocations".
  FaultCount(std::string subject, std::string what);
  FaultCount(const FaultCount&) = delete;
  FaultCount& operator=(const FaultCount&) = delete;
  ~FaultCount();

  // Calls `run`, which injects one fault. The fault is survived when no expectation of the running test fails meanwhile.
  template <typename Run>
  void tryFault(Run run) {
    const int before = failures();
    run();
    ++tried_;
    if (failures() == before) ++survived_;
  }

 private:
  static int failures();

  std::string subject_;
  std::string what_;
  std::size_t tried_ = 0;
  std::size_t survived_ = 0;
};

}  // namespace quillon::faults
