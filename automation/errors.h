// Failures at the COM edge: from automation's EXCEPINFO and IErrorInfo to the core's AutomationError and back, always
// with the failing call's own code, source and description.
#pragma once

#include <string>
#include <string_view>
#include <utility>

#include "automation/win32.h"
#include "frame/automation_error.h"

namespace quillon::automation {

// A text for `code`: this library's own for automation's codes, else the system's, else the hexadecimal number.
std::string systemMessage(HRESULT code);

// The source of the errors that this library makes itself. At the edge it becomes the class and the member that was
// called: "Quillon.clsFXWt.GETSQL".
inline constexpr std::string_view ownSource = "Quillon";

// The error that a late-bound callee reported in `info` with DISP_E_EXCEPTION; asks for what the callee left to be
// filled in later. Frees the texts of `info`. A callee that says nothing is described by `object` and `member`; one that
// names no source has ownSource.
AutomationError takeExcepInfo(EXCEPINFO& info, std::string_view object, std::string_view member);
// The error of an early-bound callee that returned `code`: what it left in the thread's IErrorInfo, when it says
// through ISupportErrorInfo that this interface's errors come that way.
AutomationError takeErrorInfo(HRESULT code, IUnknown& callee, REFIID interfaceId, std::string_view object,
                              std::string_view member);

// A member of a class, as it is the source of errors; no member where none is called, as when the library is registered.
struct CalledMember {
  std::string_view className;  // a ProgID
  std::string_view member = {};
};

// Inside a catch block: the exception being handled as AutomationError. std::bad_alloc is E_OUTOFMEMORY, whatever else
// E_UNEXPECTED with its text; both, and the errors of ownSource or of the class itself, have `called` as their source.
AutomationError currentError(const CalledMember& called);

// Leaves `error` in the thread's IErrorInfo for an early-bound caller; gives the code to return.
HRESULT setErrorInfo(const AutomationError& error, REFIID interfaceId) noexcept;
// Puts `error` into a late-bound caller's EXCEPINFO, when there is one; gives DISP_E_EXCEPTION.
HRESULT fillExcepInfo(const AutomationError& error, EXCEPINFO* info) noexcept;

// Keeps what an early-bound caller is to find in the thread's IErrorInfo over calls that may leave something else there.
class KeptErrorInfo {
 public:
  KeptErrorInfo() noexcept;
  KeptErrorInfo(const KeptErrorInfo&) = delete;
  KeptErrorInfo& operator=(const KeptErrorInfo&) = delete;
  ~KeptErrorInfo();

 private:
  IErrorInfo* info_ = nullptr;
};

// Runs the body of an early-bound member: nothing is thrown out of it.
template <class Body>
HRESULT guarded(REFIID interfaceId, const CalledMember& called, Body&& body) noexcept {
  SetErrorInfo(0, nullptr);
  try {
    std::forward<Body>(body)();
    return S_OK;
  } catch (...) {
    try {
      return setErrorInfo(currentError(called), interfaceId);
    } catch (...) {
      return E_OUTOFMEMORY;
    }
  }
}
// The same where no member of a class is called: `source` is the errors' source as it stands.
template <class Body>
HRESULT guarded(REFIID interfaceId, std::string_view source, Body&& body) noexcept {
  return guarded(interfaceId, CalledMember{.className = source}, std::forward<Body>(body));
}

}  // namespace quillon::automation
