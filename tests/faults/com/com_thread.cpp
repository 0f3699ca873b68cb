#include "tests/faults/com/com_thread.h"

#include <algorithm>

#include "automation/errors.h"

namespace quillon::faults {

ComThread::ComThread(ComFaultInjector& injector, const TinyAccount& account)
    : inner({.account = account.source(),
             .messages = [this](std::string_view text, int) { shown += std::string(text) + "\n"; },
             .vouchers = [this](const workbench::OpenedVoucher& voucher) { shown += voucher.member + "\n"; }}),
      classes(injector, inner, log) {}

Ending endingOf(HRESULT code, IUnknown& callee, REFIID interfaceId) {
  if (SUCCEEDED(code)) return std::nullopt;
  return automation::takeErrorInfo(code, callee, interfaceId, "nothing was said", "");
}

namespace {

// An error that the library describes has the called class and member as its source, but that of making an instance.
bool isOwnSource(const std::string& source) {
  return source == "Quillon" || (source.starts_with("Quillon.cls") && std::ranges::count(source, '.') == 2);
}

}  // namespace

void expectPassedOn(const Ending& ending, const ComFaultInjector& injector, std::size_t failAt) {
  EXPECT_EQ(injector.calls().size(), failAt) << "the platform was called after a call had failed";
  ASSERT_TRUE(ending.has_value()) << "the error was not passed on";
  EXPECT_EQ(ending->code(), ComFaultInjector::failure);
  const ComCall& failed = injector.calls().at(failAt - 1);
  switch (failed.kind) {
    case CallKind::invoke:
      EXPECT_EQ(ending->source(), ComFaultInjector::source);
      EXPECT_EQ(ending->description(), ComFaultInjector::description(failAt));
      break;
    case CallKind::lookUp:
      // Only a code comes back; the library says which member it was about.
      EXPECT_TRUE(isOwnSource(ending->source())) << ending->source();
      EXPECT_NE(ending->description().find("." + failed.member + ": "), std::string::npos) << ending->description();
      break;
    case CallKind::create:
      EXPECT_TRUE(isOwnSource(ending->source())) << ending->source();
      EXPECT_TRUE(ending->description().starts_with(failed.object + " cannot be created: ")) << ending->description();
      break;
  }
}

int answered(const ComFaultInjector& injector, std::size_t failAt, const ComCall& call) {
  int count = 0;
  for (std::size_t i = 0; i < injector.calls().size(); ++i) {
    if (i + 1 != failAt && injector.calls()[i] == call) ++count;
  }
  return count;
}

}  // namespace quillon::faults
