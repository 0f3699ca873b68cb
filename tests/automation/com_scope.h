// An apartment for a test: entered on construction, left on destruction.
#pragma once

#include <stdexcept>

#include "automation/win32.h"

namespace quillon::automation::test {

class ComScope {
 public:
  ComScope() {
    if (FAILED(CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED))) throw std::runtime_error("no apartment");
  }
  ComScope(const ComScope&) = delete;
  ComScope& operator=(const ComScope&) = delete;
  ~ComScope() { CoUninitialize(); }
};

}  // namespace quillon::automation::test
