#include "tests/faults/com/com_thread.h"

#include "automation/errors.h"

namespace quillon::faults {

ComThread::ComThread(Border& border, const TinyAccount& account)
    : inner({.account = account.source(),
             .messages = [this](std::string_view text, int) { shown += std::string(text) + "\n"; },
             .vouchers = [this](const workbench::OpenedVoucher& voucher) { shown += voucher.member + "\n"; }}),
      classes(border, inner, log) {}

Ending endingOf(HRESULT code, IUnknown& callee, REFIID interfaceId) {
  if (SUCCEEDED(code)) return std::nullopt;
  return automation::takeErrorInfo(code, callee, interfaceId, "nothing was said", "");
}

void expectPassedOn(const Ending& ending, const Border& border, std::size_t failAt) {
  EXPECT_EQ(border.calls().size(), failAt) << "the outside was called after a call had failed";
  ASSERT_TRUE(ending.has_value()) << "the error was not passed on";
  EXPECT_EQ(ending->code(), Border::failure);
  const BorderCall& failed = border.calls().at(failAt - 1);
  switch (failed.kind) {
    case Kind::invoke:
      EXPECT_EQ(ending->source(), Border::source);
      EXPECT_EQ(ending->description(), Border::description(failAt));
      break;
    case Kind::find:
      // Only a code comes back; the library says which member it was about.
      EXPECT_FALSE(ending->source().empty());
      EXPECT_NE(ending->description().find("." + failed.member + ": "), std::string::npos) << ending->description();
      break;
    case Kind::create:
      EXPECT_EQ(ending->source(), failed.object);
      EXPECT_TRUE(ending->description().starts_with(failed.object + " cannot be created: ")) << ending->description();
      break;
  }
}

int answered(const Border& border, std::size_t failAt, const BorderCall& call) {
  int count = 0;
  for (std::size_t i = 0; i < border.calls().size(); ++i) {
    if (i + 1 != failAt && border.calls()[i] == call) ++count;
  }
  return count;
}

}  // namespace quillon::faults
