// What the tests of faults tried and what held: a line on standard output for each report and callback, and at the end
// of the program one for all.
#pragma once

#include <cstddef>
#include <string>

namespace quillon::faults {

// The faults of one report or callback. Prints "faults: sfc-item: 412 calls failed, 412 survived" when it ends.
class Tally {
 public:
  // `what` fails: "calls", "allocations".
  Tally(std::string subject, std::string what);
  Tally(const Tally&) = delete;
  Tally& operator=(const Tally&) = delete;
  ~Tally();

  // Runs `trial` with one fault. The fault is survived when no expectation of the running test fails meanwhile.
  template <typename Trial>
  void fault(Trial trial) {
    const int before = failures();
    trial();
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
