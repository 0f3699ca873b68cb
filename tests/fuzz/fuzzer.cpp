// Gives libFuzzer one entry point, the one that the build names.
#include <cstddef>
#include <cstdint>

#include "tests/fuzz/targets.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  // A promise that breaks leaves here as an exception, which ends the fuzzer and keeps the input.
  quillon::fuzz::QUILLON_FUZZ_TARGET(std::string_view(reinterpret_cast<const char*>(data), size));
  return 0;
}
