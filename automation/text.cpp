#include "automation/text.h"

#include <cstddef>
#include <new>

namespace quillon::automation {

namespace {

constexpr char32_t replacement = 0xFFFD;

bool isHighSurrogate(char32_t unit) {
  return unit >= 0xD800 && unit <= 0xDBFF;
}

bool isLowSurrogate(char32_t unit) {
  return unit >= 0xDC00 && unit <= 0xDFFF;
}

// Reads the character at `at` and moves `at` behind it; one byte of what is no character gives the replacement.
char32_t decode(std::string_view text, std::size_t& at) {
  const auto byte = [&](std::size_t index) { return static_cast<unsigned char>(text[index]); };
  const char32_t first = byte(at++);
  if (first < 0x80) return first;
  const std::size_t more = first >= 0xF0 ? 3 : first >= 0xE0 ? 2 : 1;
  if (first < 0xC2 || first > 0xF4 || at + more > text.size()) return replacement;
  char32_t value = first & (0x3FU >> more);
  for (std::size_t i = 0; i < more; ++i) {
    if ((byte(at + i) & 0xC0U) != 0x80) return replacement;
    value = (value << 6U) | (byte(at + i) & 0x3FU);
  }
  const char32_t least = more == 1 ? 0x80 : more == 2 ? 0x800 : 0x10000;
  if (value < least || value > 0x10FFFF) return replacement;
  at += more;
  return value;
}

void encode(std::string& out, char32_t value) {
  const auto tail = [&](unsigned shift) { out += static_cast<char>(0x80U | ((value >> shift) & 0x3FU)); };
  if (value < 0x80) {
    out += static_cast<char>(value);
  } else if (value < 0x800) {
    out += static_cast<char>(0xC0U | (value >> 6U));
    tail(0);
  } else if (value < 0x10000) {
    out += static_cast<char>(0xE0U | (value >> 12U));
    tail(6);
    tail(0);
  } else {
    out += static_cast<char>(0xF0U | (value >> 18U));
    tail(12);
    tail(6);
    tail(0);
  }
}

}  // namespace

std::wstring toWide(std::string_view utf8) {
  std::wstring out;
  out.reserve(utf8.size());
  for (std::size_t at = 0; at < utf8.size();) {
    const char32_t value = decode(utf8, at);
    if (value < 0x10000) {
      out += static_cast<wchar_t>(value);
    } else {
      out += static_cast<wchar_t>(0xD800U + ((value - 0x10000U) >> 10U));
      out += static_cast<wchar_t>(0xDC00U + (value & 0x3FFU));
    }
  }
  return out;
}

std::string toUtf8(std::wstring_view utf16) {
  std::string out;
  out.reserve(utf16.size());
  for (std::size_t at = 0; at < utf16.size(); ++at) {
    auto value = static_cast<char32_t>(utf16[at]);
    if (isHighSurrogate(value) && at + 1 < utf16.size()) {
      const auto low = static_cast<char32_t>(utf16[at + 1]);
      if (isLowSurrogate(low)) {
        value = 0x10000U + ((value - 0xD800U) << 10U) + (low - 0xDC00U);
        ++at;
      }
    }
    encode(out, value);
  }
  return out;
}

std::string toUtf8(BSTR text) {
  return text ? toUtf8(std::wstring_view(text, SysStringLen(text))) : std::string();
}

BSTR makeBstr(std::string_view utf8) {
  return makeBstr(toWide(utf8));
}

BSTR makeBstr(std::wstring_view utf16) {
  BSTR text = SysAllocStringLen(utf16.data(), static_cast<UINT>(utf16.size()));
  if (!text) throw std::bad_alloc();
  return text;
}

}  // namespace quillon::automation
