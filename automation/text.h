// Text at the COM edge: UTF-8 inside, UTF-16 outside. Nothing is lost on the way there and back: a surrogate without
// its partner, which automation strings may hold, travels as the three bytes that its code point would have.
#pragma once

#include <string>
#include <string_view>

#include "automation/win32.h"

namespace quillon::automation {

// UTF-8 (with lone surrogates as three bytes) to UTF-16. A byte that belongs to no character becomes U+FFFD.
std::wstring toWide(std::string_view utf8);
// UTF-16 to UTF-8, lone surrogates included.
std::string toUtf8(std::wstring_view utf16);
// The text of an automation string; null is the empty text, a zero character inside is kept.
std::string toUtf8(BSTR text);

// A new automation string that the caller frees. Throws std::bad_alloc.
[[nodiscard]] BSTR makeBstr(std::string_view utf8);
[[nodiscard]] BSTR makeBstr(std::wstring_view utf16);

// An owned automation string.
class Bstr {
 public:
  Bstr() noexcept = default;
  explicit Bstr(std::string_view utf8) : text_(makeBstr(utf8)) {}
  explicit Bstr(std::wstring_view utf16) : text_(makeBstr(utf16)) {}
  Bstr(const Bstr&) = delete;
  Bstr& operator=(const Bstr&) = delete;
  ~Bstr() { SysFreeString(text_); }

  BSTR get() const noexcept { return text_; }
  std::string utf8() const { return toUtf8(text_); }
  // The place for a function that gives a string through a pointer; what was held is freed first.
  [[nodiscard]] BSTR* out() noexcept {
    SysFreeString(text_);
    text_ = nullptr;
    return &text_;
  }
  // The place for a function that reads the string and may replace it.
  [[nodiscard]] BSTR* inOut() noexcept { return &text_; }

 private:
  BSTR text_ = nullptr;
};

}  // namespace quillon::automation
