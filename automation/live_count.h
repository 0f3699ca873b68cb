// How many automation objects of this program or library are alive: what DllCanUnloadNow and the tests ask.
#pragma once

#include <atomic>

namespace quillon::automation {

// Each object that is handed out through COM, and each lock on the server, holds one.
class LiveCount {
 public:
  LiveCount() noexcept { ++count_; }
  LiveCount(const LiveCount&) = delete;
  LiveCount& operator=(const LiveCount&) = delete;
  ~LiveCount() { --count_; }

  static long value() noexcept { return count_; }

 private:
  static inline std::atomic<long> count_ = 0;
};

}  // namespace quillon::automation
