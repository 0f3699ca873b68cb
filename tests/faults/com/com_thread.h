// A thread of the host platform that uses Quillon.dll: its apartment, the platform's classes behind proxies, and what is
// asked of the library through COM.
#pragma once

#include <gtest/gtest.h>

#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "automation/com_ptr.h"
#include "frame/automation_error.h"
#include "tests/automation/com_scope.h"
#include "tests/component/quillon_library.h"
#include "tests/faults/com/intercepted_objects.h"
#include "tests/faults/tiny_account.h"

namespace quillon::faults {

// How a call of the library ended: with an error, or without one.
using Ending = std::optional<AutomationError>;

// Keeps the statements that ran without an error.
class StatementLog final : public workbench::SessionMonitor {
 public:
  void opened() override {}
  void started(std::string_view) override {}
  void finished(std::string_view sql, double, std::int64_t) override { statements.emplace_back(sql); }
  void failed(const workbench::StatementFailure&) override {}
  void closed() override {}

  std::vector<std::string> statements;
};

// In an apartment of its own, which it leaves at its end: the library then releases what it keeps for the thread.
struct ComThread {
  // `injector` outlives it.
  ComThread(ComFaultInjector& injector, const TinyAccount& account);
  ComThread(const ComThread&) = delete;
  ComThread& operator=(const ComThread&) = delete;

  component::test::QuillonLibrary library;
  std::string shown;  // what the user was told, and the documents that were opened; a line each
  std::shared_ptr<StatementLog> log = std::make_shared<StatementLog>();
  workbench::EmbeddedPlatform inner;
  automation::test::ComScope apartment;
  InterceptedClasses classes;
};

// What an early-bound call that gave `code` left in the thread's IErrorInfo; nothing for success.
Ending endingOf(HRESULT code, IUnknown& callee, REFIID interfaceId);

// The failing call's own error left the library, as it was, and nothing more was called.
void expectPassedOn(const Ending& ending, const ComFaultInjector& injector, std::size_t failAt);

// How many such calls were answered.
int answered(const ComFaultInjector& injector, std::size_t failAt, const ComCall& call);

}  // namespace quillon::faults
