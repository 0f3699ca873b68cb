// A thread of the host platform: what its classes share of an account, every call of them watched.
#pragma once

#include <string>

#include "frame/module.h"
#include "tests/faults/outside.h"
#include "tests/faults/tiny_account.h"
#include "tests/faults/watched_ports.h"
#include "workbench/platform/embedded_platform.h"

namespace quillon::faults {

struct Thread {
  // `namingNumber` stands in for the platform's own, unless it is empty.
  explicit Thread(const TinyAccount& account, const std::string& namingNumber = {})
      : inner({.account = account.source(),
               .messages = [this](std::string_view text, int) { shown += std::string(text) + "\n"; },
               .vouchers = [this](const workbench::OpenedVoucher& voucher) { shown += voucher.member + "\n"; }}),
        platform(outside, inner),
        module(platform) {
    platform.setNamingNumber(namingNumber);
  }
  Thread(const Thread&) = delete;
  Thread& operator=(const Thread&) = delete;

  Outside outside;
  // What the user was told, and the documents that were opened, by the member that opened them; a line each.
  std::string shown;
  workbench::EmbeddedPlatform inner;
  WatchedPlatform platform;
  Module module;
};

}  // namespace quillon::faults
