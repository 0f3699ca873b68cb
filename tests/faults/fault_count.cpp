#include "tests/faults/fault_count.h"

#include <gtest/gtest.h>

#include <iostream>
#include <utility>

namespace quillon::faults {

namespace {

struct Sum {
  std::size_t tried = 0;
  std::size_t survived = 0;
};
Sum total;

void print(const std::string& subject, const std::string& what, const Sum& sum) {
  std::cout << "faults: " << subject << ": " << sum.tried << ' ' << what << " failed, " << sum.survived
            << " survived\n";
}

class Total : public testing::Environment {
 public:
  void TearDown() override { print("all", "calls and allocations", total); }
};

// The framework owns it.
[[maybe_unused]] const testing::Environment* const printTotal = testing::AddGlobalTestEnvironment(new Total);

}  // namespace

FaultCount::FaultCount(std::string subject, std::string what) : subject_(std::move(subject)), what_(std::move(what)) {}

FaultCount::~FaultCount() {
  print(subject_, what_, {.tried = tried_, .survived = survived_});
  total.tried += tried_;
  total.survived += survived_;
}

int FaultCount::failures() {
  return testing::UnitTest::GetInstance()->current_test_info()->result()->total_part_count();
}

}  // namespace quillon::faults
