// A thread of the host platform on an account, with fault injection into every call of the library.
#pragma once

#include <string>

#include "frame/module.h"
#include "tests/faults/fault_injector.h"
#include "tests/faults/intercepted_ports.h"
#include "tests/faults/tiny_account.h"
#include "workbench/platform/embedded_platform.h"

namespace quillon::faults {

struct Thread {
  // `namingNumber`, unless it is empty, takes the place of the platform's own.
  explicit Thread(const TinyAccount& account, const std::string& namingNumber = {})
      : inner({.account = account.source(),
               .messages = [this](std::string_view text, int) { shown += std::string(text) + "\n"; },
               .vouchers = [this](const workbench::OpenedVoucher& voucher) { shown += voucher.member + "\n"; }}),
        platform(injector, inner),
        module(platform) {
    platform.setNamingNumber(namingNumber);
  }
  Thread(const Thread&) = delete;
  Thread& operator=(const Thread&) = delete;

  FaultInjector injector;
  // The messages that the user saw, and the members that opened documents; a line each.
  std::string shown;
  workbench::EmbeddedPlatform inner;
  InterceptedPlatform platform;
  Module module;
};

}  // namespace quillon::faults
