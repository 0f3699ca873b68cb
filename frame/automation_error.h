// The one failure that crosses a seam: an automation call that went wrong, with what the failing object said about it.
#pragma once

#include <cstdint>
#include <exception>
#include <string>

namespace quillon {

// An HRESULT as automation returns it; negative means failure.
using HResult = std::int32_t;

namespace hresult {
inline constexpr HResult notImplemented = static_cast<HResult>(0x80004001U);
inline constexpr HResult fail = static_cast<HResult>(0x80004005U);
inline constexpr HResult pointer = static_cast<HResult>(0x80004003U);
inline constexpr HResult unexpected = static_cast<HResult>(0x8000FFFFU);
inline constexpr HResult invalidArgument = static_cast<HResult>(0x80070057U);
inline constexpr HResult outOfMemory = static_cast<HResult>(0x8007000EU);
inline constexpr HResult typeMismatch = static_cast<HResult>(0x80020005U);
// Microsoft's "invalid procedure call or argument", as automation clients know it from Basic's error 5.
inline constexpr HResult invalidProcedureCall = static_cast<HResult>(0x800A0005U);
// Basic's error 91, "Object variable not set".
inline constexpr HResult objectNotSet = static_cast<HResult>(0x800A005BU);
// Basic's error 9.
inline constexpr HResult subscriptOutOfRange = static_cast<HResult>(0x800A0009U);
// ADO's "item cannot be found in the collection", and a database command that the provider refuses.
inline constexpr HResult itemNotFound = static_cast<HResult>(0x800A0CC1U);
inline constexpr HResult databaseCommandFailed = static_cast<HResult>(0x80040E14U);
}  // namespace hresult

class AutomationError : public std::exception {
 public:
  // `source` names the object that failed ("ADODB.Connection"), `description` is its own message. Both UTF-8.
  AutomationError(HResult code, std::string source, std::string description);

  HResult code() const noexcept { return code_; }
  const std::string& source() const noexcept { return source_; }
  const std::string& description() const noexcept { return description_; }
  // The description, for whoever only knows std::exception.
  const char* what() const noexcept override { return description_.c_str(); }

 private:
  HResult code_;
  std::string source_;
  std::string description_;
};

}  // namespace quillon
