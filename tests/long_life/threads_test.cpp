// Many threads, each with its own account, report and dialog, at the same time: nothing of one is seen by another. In the
// Win32 program each thread is an apartment of its own, and the library's objects are those of Quillon.dll.
#include <gtest/gtest.h>

#include <chrono>
#include <deque>
#include <iostream>
#include <set>
#include <span>
#include <stdexcept>
#include <string>
#include <thread>

#include "tests/long_life/small_account.h"
#include "workbench/catalogue/catalogue.h"
#ifdef _WIN32
#include "tests/automation/com_scope.h"
#include "tests/long_life/com_library.h"
#endif

namespace quillon::long_life {
namespace {

#ifdef _WIN32
using Apartment = automation::test::ComScope;
#else
struct Apartment {
  ~Apartment() {}  // so that the compiler does not call a variable of this type unused
};
#endif

// What one thread does: uses its own account and report and compares each result with the known one.
class Worker {
 public:
  Worker(std::uint64_t seed, std::string_view report) : account_(seed), uses_(account_.uses()) {
    const Apartment apartment;
    std::erase_if(uses_, [report](const Use& use) { return use.report != report; });
    if (uses_.empty()) throw std::logic_error("SmallAccount::uses() has no use of " + std::string(report));
    for (const Use& use : uses_)
      known_.push_back(account_.resultOf(use));
  }

  const std::vector<std::string>& known() const { return known_; }
  int runs() const { return runs_; }
  const std::string& problem() const { return problem_; }

  // Goes through its uses in turn until `end`, or until a result differs from the known one.
  void work(std::chrono::steady_clock::time_point end) {
    try {
      const Apartment apartment;
      for (; runs_ == 0 || std::chrono::steady_clock::now() < end; ++runs_) {
        const std::size_t use = static_cast<std::size_t>(runs_) % uses_.size();
        if (account_.resultOf(uses_[use]) == known_[use]) continue;
        problem_ = "other rows than before: " + uses_[use].report;
        return;
      }
    } catch (const std::exception& error) {
      problem_ = error.what();
    }
  }

 private:
  SmallAccount account_;
  std::vector<Use> uses_;
  std::vector<std::string> known_;
  int runs_ = 0;
  std::string problem_;
};

TEST(Threads, EachSeesItsOwnAccountOnly) {
  const int count = numberFromEnvironment("QUILLON_THREADS", QUILLON_DEFAULT_THREADS);
  const int seconds = numberFromEnvironment("QUILLON_THREAD_SECONDS", QUILLON_DEFAULT_THREAD_SECONDS);
#ifdef _WIN32
  const ComLibrary library;
  const long objects = automation::LiveCount::value();
#endif
  std::deque<Worker> workers;
  std::set<std::string> firstResults;
  for (int i = 0; i < count; ++i) {
    const std::span<const workbench::Report> reports = workbench::reports();
    const auto number = static_cast<std::size_t>(i);
    const Worker& worker = workers.emplace_back(number + 1, reports[number % reports.size()].registration.name);
    firstResults.insert(worker.known().front());
    for (const std::string& known : worker.known())
      EXPECT_NE(known, "");
  }
  ASSERT_EQ(firstResults.size(), workers.size()) << "accounts that cannot be told from each other";

  const auto end = std::chrono::steady_clock::now() + std::chrono::seconds(seconds);
  std::deque<std::thread> threads;
  for (Worker& worker : workers)
    threads.emplace_back([&worker, end] { worker.work(end); });
  for (std::thread& thread : threads)
    thread.join();

  int runs = 0;
  for (const Worker& worker : workers) {
    EXPECT_EQ(worker.problem(), "");
    runs += worker.runs();
  }
  std::cout << "long life: threads | " << count << " threads for " << seconds << " s | " << runs
            << " runs, each with its account's own rows\n";
#ifdef _WIN32
  EXPECT_EQ(automation::LiveCount::value(), objects);
  EXPECT_EQ(library.canUnload(), S_OK) << "no thread has left anything";
#endif
}

}  // namespace
}  // namespace quillon::long_life
