// The pseudo-random numbers of the sample account: xoshiro256**, seeded through splitmix64. Integers only, so that the
// same seed gives the same account on every platform.
#pragma once

#include <array>
#include <bit>
#include <cstdint>
#include <iterator>

namespace quillon::account {

// The next number of splitmix64, whose whole state is `state`.
inline std::uint64_t splitMix(std::uint64_t& state) {
  state += 0x9e3779b97f4a7c15U;
  std::uint64_t mixed = state;
  mixed = (mixed ^ (mixed >> 30U)) * 0xbf58476d1ce4e5b9U;
  mixed = (mixed ^ (mixed >> 27U)) * 0x94d049bb133111ebU;
  return mixed ^ (mixed >> 31U);
}

class Random {
 public:
  explicit Random(std::uint64_t seed) {
    for (std::uint64_t& word : state_)
      word = splitMix(seed);
  }
  // Continues from a state, which must not be all zeros.
  explicit Random(const std::array<std::uint64_t, 4>& state) : state_(state) {}

  std::uint64_t next() {
    const std::uint64_t result = std::rotl(state_[1] * 5U, 7) * 9U;
    const std::uint64_t shifted = state_[1] << 17U;
    state_[2] ^= state_[0];
    state_[3] ^= state_[1];
    state_[1] ^= state_[2];
    state_[0] ^= state_[3];
    state_[2] ^= shifted;
    state_[3] = std::rotl(state_[3], 45);
    return result;
  }

  // 0 to `count` - 1; `count` is 1 to 2^31. The bias is below one in 2^32 / count, which a sample can bear.
  std::int64_t below(std::int64_t count) {
    return static_cast<std::int64_t>(((next() >> 32U) * static_cast<std::uint64_t>(count)) >> 32U);
  }
  // `low` to `high`, both included.
  std::int64_t between(std::int64_t low, std::int64_t high) { return low + below(high - low + 1); }
  bool percent(int chance) { return below(100) < chance; }

  template <typename Range>
  const auto& pick(const Range& range) {
    return range[static_cast<std::size_t>(below(static_cast<std::int64_t>(std::size(range))))];
  }

 private:
  std::array<std::uint64_t, 4> state_{};
};

}  // namespace quillon::account
