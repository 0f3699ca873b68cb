#include "automation/errors.h"

#include <array>
#include <cstdio>
#include <new>

#include "automation/com_ptr.h"
#include "automation/text.h"

namespace quillon::automation {

namespace {

struct KnownCode {
  HRESULT code;
  const char* message;
};

// Codes of calls that go wrong before they reach the callee, and for which not every system has a text.
constexpr KnownCode knownCodes[] = {
    {DISP_E_UNKNOWNNAME, "The object has no member of this name."},
    {DISP_E_MEMBERNOTFOUND, "The object's member cannot be used in this way."},
    {DISP_E_TYPEMISMATCH, "An argument or result is of the wrong type."},
    {DISP_E_BADPARAMCOUNT, "The member takes another number of arguments."},
    {DISP_E_PARAMNOTOPTIONAL, "An argument is missing that may not be left out."},
    {DISP_E_PARAMNOTFOUND, "The member has no argument of this name or place."},
    {DISP_E_EXCEPTION, "The member failed without saying why."},
    {hresult::objectNotSet, "The object is not set."},
};

// Automation's rule for an error that is only a number: it is one of Basic's, in the control facility.
constexpr HRESULT fromBasicNumber(WORD number) {
  return static_cast<HRESULT>(0x800A0000U | number);
}

// What a callee did not say is filled in.
AutomationError describedError(HRESULT code, std::string source, std::string description, std::string_view object,
                               std::string_view member) {
  if (source.empty()) source = ownSource;
  if (description.empty()) description = std::string(object) + "." + std::string(member) + ": " + systemMessage(code);
  return {code, std::move(source), std::move(description)};
}

std::string sourceOf(const CalledMember& called) {
  std::string source(called.className);
  if (!called.member.empty()) source.append(".").append(called.member);
  return source;
}

}  // namespace

std::string systemMessage(HRESULT code) {
  for (const KnownCode& known : knownCodes)
    if (known.code == code) return known.message;
  wchar_t* text = nullptr;
  const DWORD length =
      FormatMessageW(FORMAT_MESSAGE_ALLOCATE_BUFFER | FORMAT_MESSAGE_FROM_SYSTEM | FORMAT_MESSAGE_IGNORE_INSERTS,
                     nullptr, static_cast<DWORD>(code), 0, reinterpret_cast<wchar_t*>(&text), 0, nullptr);
  std::string message = length == 0 ? std::string() : toUtf8(std::wstring_view(text, length));
  LocalFree(text);
  while (!message.empty() && (message.back() == '\n' || message.back() == '\r' || message.back() == ' '))
    message.pop_back();
  if (!message.empty()) return message;
  std::array<char, 32> number{};
  const int size = std::snprintf(number.data(), number.size(), "error 0x%08lx", static_cast<unsigned long>(code));
  return {number.data(), static_cast<std::size_t>(size)};
}

AutomationError takeExcepInfo(EXCEPINFO& info, std::string_view object, std::string_view member) {
  if (info.pfnDeferredFillIn) {
    // A fill-in that fails leaves what is already there.
    static_cast<void>(info.pfnDeferredFillIn(&info));
    info.pfnDeferredFillIn = nullptr;
  }
  Bstr sourceText;
  Bstr description;
  *sourceText.out() = std::exchange(info.bstrSource, nullptr);
  *description.out() = std::exchange(info.bstrDescription, nullptr);
  SysFreeString(std::exchange(info.bstrHelpFile, nullptr));
  HRESULT code = info.scode;
  if (code == 0 && info.wCode != 0) code = fromBasicNumber(info.wCode);
  // A callee that says "exception" but gives no failure code has failed all the same.
  if (SUCCEEDED(code)) code = DISP_E_EXCEPTION;
  return describedError(code, sourceText.utf8(), description.utf8(), object, member);
}

AutomationError takeErrorInfo(HRESULT code, IUnknown& callee, REFIID interfaceId, std::string_view object,
                              std::string_view member) {
  Bstr sourceText;
  Bstr description;
  ComPtr<ISupportErrorInfo> support;
  ComPtr<IErrorInfo> info;
  if (SUCCEEDED(callee.QueryInterface(IID_ISupportErrorInfo, reinterpret_cast<void**>(support.out()))) &&
      support->InterfaceSupportsErrorInfo(interfaceId) == S_OK && GetErrorInfo(0, info.out()) == S_OK) {
    static_cast<void>(info->GetSource(sourceText.out()));
    static_cast<void>(info->GetDescription(description.out()));
  }
  return describedError(code, sourceText.utf8(), description.utf8(), object, member);
}

AutomationError currentError(const CalledMember& called) {
  try {
    throw;
  } catch (const AutomationError& error) {
    const bool own = error.source() == ownSource || error.source() == called.className;
    // A success code would tell the caller that nothing went wrong.
    const HResult code = error.code() < 0 ? error.code() : hresult::fail;
    return {code, own ? sourceOf(called) : error.source(), error.description()};
  } catch (const std::bad_alloc&) {
    return {hresult::outOfMemory, sourceOf(called), "There is not enough memory to finish the call."};
  } catch (const std::exception& error) {
    return {hresult::unexpected, sourceOf(called), std::string("Internal error: ") + error.what()};
  } catch (...) {
    return {hresult::unexpected, sourceOf(called), "Internal error of an unknown kind."};
  }
}

KeptErrorInfo::KeptErrorInfo() noexcept {
  // Without one the pointer stays null, and null is what is put back.
  static_cast<void>(GetErrorInfo(0, &info_));
}

KeptErrorInfo::~KeptErrorInfo() {
  SetErrorInfo(0, info_);
  if (info_) info_->Release();
}

HRESULT setErrorInfo(const AutomationError& error, REFIID interfaceId) noexcept {
  try {
    Bstr source(error.source());
    Bstr description(error.description());
    ComPtr<ICreateErrorInfo> creator;
    ComPtr<IErrorInfo> info;
    if (SUCCEEDED(CreateErrorInfo(creator.out())) && SUCCEEDED(creator->SetGUID(interfaceId)) &&
        SUCCEEDED(creator->SetSource(source.get())) && SUCCEEDED(creator->SetDescription(description.get())) &&
        SUCCEEDED(creator->QueryInterface(IID_IErrorInfo, reinterpret_cast<void**>(info.out()))))
      SetErrorInfo(0, info.get());
  } catch (const std::bad_alloc&) {
    SetErrorInfo(0, nullptr);  // the code alone still tells what failed
  }
  return error.code();
}

HRESULT fillExcepInfo(const AutomationError& error, EXCEPINFO* info) noexcept {
  if (!info) return DISP_E_EXCEPTION;
  *info = EXCEPINFO{};
  info->scode = error.code();
  try {
    info->bstrSource = makeBstr(error.source());
    info->bstrDescription = makeBstr(error.description());
  } catch (const std::bad_alloc&) {
    // The code alone still tells what failed.
    return DISP_E_EXCEPTION;
  }
  return DISP_E_EXCEPTION;
}

}  // namespace quillon::automation
