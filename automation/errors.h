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

// The error that a late-bound callee reported in `info` with DISP_E_EXCEPTION; asks for what the callee left to be
// filled in later. Frees the texts of `info`. `source` and `member` stand in for what the callee did not say.
AutomationError takeExcepInfo(EXCEPINFO& info, std::string_view source, std::string_view member);
// The error of an early-bound callee that returned `code`: what it left in the thread's IErrorInfo, when it says
// through ISupportErrorInfo that this interface's errors come that way.
AutomationError takeErrorInfo(HRESULT code, IUnknown& callee, REFIID interfaceId, std::string_view source,
                              std::string_view member);

// Inside a catch block: the exception being handled as AutomationError. std::bad_alloc is E_OUTOFMEMORY, whatever else
// E_UNEXPECTED with its text; `source` names the class for those.
AutomationError currentError(std::string_view source);

// Leaves `error` in the thread's IErrorInfo for an early-bound caller; gives the code to return.
HRESULT setErrorInfo(const AutomationError& error, REFIID interfaceId) noexcept;
// Puts `error` into a late-bound caller's EXCEPINFO, when there is one; gives DISP_E_EXCEPTION.
HRESULT fillExcepInfo(const AutomationError& error, EXCEPINFO* info) noexcept;

// Runs the body of an early-bound member: nothing is thrown out of it.
template <class Body>
HRESULT guarded(REFIID interfaceId, std::string_view source, Body&& body) noexcept {
  SetErrorInfo(0, nullptr);
  try {
    std::forward<Body>(body)();
    return S_OK;
  } catch (...) {
    try {
      return setErrorInfo(currentError(source), interfaceId);
    } catch (...) {
      return E_OUTOFMEMORY;
    }
  }
}

}  // namespace quillon::automation
