#include "automation/errors.h"

#include <gtest/gtest.h>

#include <new>
#include <stdexcept>

#include "automation/com_object.h"
#include "automation/text.h"

namespace quillon::automation {
namespace {

constexpr GUID sampleInterface = {0x5d0f1f2e, 0x7c11, 0x4b0e, {0x9a, 0x11, 0x30, 0x52, 0x9e, 0x6f, 0x10, 0x01}};

struct Reported {
  HRESULT code;
  std::string source;
  std::string description;
};

// What an early-bound caller finds in its thread's IErrorInfo.
Reported reportedBy(HRESULT code) {
  ComPtr<IErrorInfo> info;
  if (GetErrorInfo(0, info.out()) != S_OK) return {code, "none", "none"};
  Bstr source;
  Bstr description;
  EXPECT_EQ(info->GetSource(source.out()), S_OK);
  EXPECT_EQ(info->GetDescription(description.out()), S_OK);
  return {code, source.utf8(), description.utf8()};
}

template <class Body>
Reported runGuarded(Body body) {
  return reportedBy(guarded(sampleInterface, "Quillon.sample", body));
}

TEST(Guarded, SuccessLeavesNoErrorBehind) {
  setErrorInfo({E_FAIL, "earlier", "call"}, sampleInterface);
  const Reported reported = runGuarded([] {});
  EXPECT_EQ(reported.code, S_OK);
  EXPECT_EQ(reported.source, "none");
}

TEST(Guarded, AnAutomationErrorKeepsCodeSourceAndDescription) {
  const Reported reported = runGuarded(
      [] { throw AutomationError(static_cast<HResult>(0x80040E14U), "ADODB.Connection", "Incorrect syntax"); });
  EXPECT_EQ(static_cast<std::uint32_t>(reported.code), 0x80040E14U);
  EXPECT_EQ(reported.source, "ADODB.Connection");
  EXPECT_EQ(reported.description, "Incorrect syntax");
}

TEST(Guarded, ASuccessCodeInAnErrorIsAFailure) {
  EXPECT_EQ(runGuarded([] { throw AutomationError(S_FALSE, "x", "y"); }).code, E_FAIL);
}

TEST(Guarded, MemoryThatRunsOut) {
  const Reported reported = runGuarded([] { throw std::bad_alloc(); });
  EXPECT_EQ(reported.code, E_OUTOFMEMORY);
  EXPECT_EQ(reported.source, "Quillon.sample");
}

TEST(Guarded, WhatElseIsThrownIsUnexpected) {
  const Reported known = runGuarded([] { throw std::logic_error("a wheel came off"); });
  EXPECT_EQ(known.code, E_UNEXPECTED);
  EXPECT_EQ(known.description, "Internal error: a wheel came off");
  const Reported unknown = runGuarded([] { throw 7; });
  EXPECT_EQ(unknown.code, E_UNEXPECTED);
}

class EarlyBound : public ComObject<ISupportErrorInfo> {
 public:
  STDMETHODIMP QueryInterface(REFIID id, void** object) override {
    *object = nullptr;
    if (id != IID_ISupportErrorInfo) return E_NOINTERFACE;
    AddRef();
    *object = this;
    return S_OK;
  }
  STDMETHODIMP InterfaceSupportsErrorInfo(REFIID id) override { return id == sampleInterface ? S_OK : S_FALSE; }
};

TEST(TakeErrorInfo, ComesFromACalleeThatSupportsIt) {
  const ComPtr<EarlyBound> callee = makeObject<EarlyBound>();
  setErrorInfo({E_ABORT, "Callee", "gave up"}, sampleInterface);
  const AutomationError error = takeErrorInfo(E_ABORT, *callee.get(), sampleInterface, "Service", "Text");
  EXPECT_EQ(error.code(), E_ABORT);
  EXPECT_EQ(error.source(), "Callee");
  EXPECT_EQ(error.description(), "gave up");
}

TEST(TakeErrorInfo, IsNotTakenFromACalleeThatDoesNot) {
  const ComPtr<EarlyBound> callee = makeObject<EarlyBound>();
  setErrorInfo({E_ABORT, "somebody", "else's"}, sampleInterface);
  const AutomationError error = takeErrorInfo(E_NOTIMPL, *callee.get(), IID_IDispatch, "Service", "Text");
  EXPECT_EQ(error.code(), E_NOTIMPL);
  EXPECT_EQ(error.source(), ownSource);
  EXPECT_TRUE(error.description().starts_with("Service.Text: ")) << error.description();
  SetErrorInfo(0, nullptr);
}

TEST(Guarded, WhatTheLibraryFailsWithItselfHasClassAndMemberAsItsSource) {
  const CalledMember called{.className = "Quillon.clsFXWt", .member = "GETSQL"};
  const auto sourceOf = [&](const auto& body) { return reportedBy(guarded(sampleInterface, called, body)).source; };
  EXPECT_EQ(sourceOf([] { throw AutomationError(E_FAIL, "Quillon", "x"); }), "Quillon.clsFXWt.GETSQL");
  EXPECT_EQ(sourceOf([] { throw AutomationError(E_FAIL, "Quillon.clsFXWt", "x"); }), "Quillon.clsFXWt.GETSQL");
  EXPECT_EQ(sourceOf([] { throw std::bad_alloc(); }), "Quillon.clsFXWt.GETSQL");
  EXPECT_EQ(sourceOf([] { throw std::logic_error("x"); }), "Quillon.clsFXWt.GETSQL");
  EXPECT_EQ(sourceOf([] { throw AutomationError(E_FAIL, "Quillon.clsFXDetail.Execute", "x"); }),
            "Quillon.clsFXDetail.Execute")
      << "another class, called meanwhile";
  EXPECT_EQ(sourceOf([] { throw AutomationError(E_FAIL, "ADODB.Connection", "x"); }), "ADODB.Connection");
}

TEST(KeptErrorInfo, IsThereAgainAfterwards) {
  setErrorInfo({E_ABORT, "Callee", "gave up"}, sampleInterface);
  {
    const KeptErrorInfo kept;
    EXPECT_EQ(reportedBy(S_OK).source, "none");
    setErrorInfo({E_FAIL, "somebody", "else's"}, sampleInterface);
  }
  EXPECT_EQ(reportedBy(S_OK).description, "gave up");
  {
    const KeptErrorInfo nothing;
    setErrorInfo({E_FAIL, "somebody", "else's"}, sampleInterface);
  }
  EXPECT_EQ(reportedBy(S_OK).source, "none");
}

}  // namespace
}  // namespace quillon::automation
