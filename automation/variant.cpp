#include "automation/variant.h"

#include <array>
#include <charconv>
#include <cstdio>
#include <new>
#include <utility>

#include "automation/errors.h"
#include "frame/automation_error.h"
#include "frame/text.h"

namespace quillon::automation {

namespace {

// Conversions that must not depend on the machine's settings are made as in the United States: a point, no marks.
constexpr LCID neutralLocale = MAKELCID(MAKELANGID(LANG_ENGLISH, SUBLANG_ENGLISH_US), SORT_DEFAULT);

// The automation functions only read their source; their declarations here do not say so.
VARIANT* source(const VARIANT& value) {
  return const_cast<VARIANT*>(&value);
}

// A text in quotes, cut where it is long: between two characters, so that no half of one is left.
std::string quoted(BSTR text) {
  constexpr UINT longest = 60;
  UINT length = SysStringLen(text);
  const bool cut = length > longest;
  if (cut) length = (static_cast<unsigned>(text[longest - 1]) & 0xFC00U) == 0xD800U ? longest - 1 : longest;
  return "\"" + (text ? toUtf8(std::wstring_view(text, length)) : std::string()) + (cut ? "...\"" : "\"");
}

// As a connection string does that came in the place of an object or a number.
bool holdsPassword(std::string_view text) {
  for (std::size_t at = 0; at < text.size(); ++at)
    for (const std::string_view name : {"pwd=", "password="})
      if (equalIgnoringCase(text.substr(at, name.size()), name)) return true;
  return false;
}

// What a person is told of a value that cannot be read as asked; never fails for what the value is.
std::string shown(const VARIANT& value) {
  if (value.vt & VT_BYREF) return "A variable that leads nowhere";
  if (value.vt & VT_ARRAY) return "An array";
  switch (value.vt) {
    case VT_EMPTY:
      return "An empty value";
    case VT_NULL:
      return "Null";
    case VT_BSTR:
      return holdsPassword(toUtf8(value.bstrVal)) ? "A text that holds a password"
                                                  : "The text " + quoted(value.bstrVal);
    case VT_DISPATCH:
    case VT_UNKNOWN:
      return value.punkVal ? "An object" : "Nothing";
    case VT_ERROR:
      return value.scode == DISP_E_PARAMNOTFOUND ? "An argument that is left out" : "An error value";
    default:
      break;
  }
  Variant text;
  if (FAILED(VariantChangeTypeEx(&text, source(value), neutralLocale, VARIANT_ALPHABOOL, VT_BSTR)))
    return "A value of automation type " + std::to_string(value.vt);
  return "The value " + toUtf8(text.bstrVal);
}

[[noreturn]] void throwMismatch(const VARIANT& value, const char* wanted) {
  throw AutomationError(hresult::typeMismatch, std::string(ownSource),
                        shown(value) + " cannot be read as " + wanted + ".");
}

// The last of a chain of references to variants, each to the next; null when one leads nowhere or back into the chain.
VARIANT* endOfReferences(VARIANT* at) {
  const VARIANT* behind = at;  // moves at half the pace, so that a circle brings the two together
  for (bool both = false; at->vt == (VT_VARIANT | VT_BYREF); both = !both) {
    at = at->pvarVal;
    if (!at || at == behind) return nullptr;
    if (both) behind = behind->pvarVal;
  }
  return at;
}

bool isObject(const VARIANT& value) {
  return value.vt == VT_DISPATCH || value.vt == VT_UNKNOWN;
}

// The value behind all references, and behind an object its default member's value.
Variant plainValue(const VARIANT& value, const char* wanted) {
  Variant plain = dereferenced(value);
  if (!isObject(plain)) return plain;
  const ComPtr<IDispatch> object = toObject(plain);
  if (!object) throwMismatch(plain, wanted);
  DISPPARAMS none{};
  Variant result;
  EXCEPINFO info{};
  const HRESULT code = object->Invoke(DISPID_VALUE, IID_NULL, neutralLocale, DISPATCH_PROPERTYGET | DISPATCH_METHOD,
                                      &none, result.out(), &info, nullptr);
  // An object that has the value but cannot give it says why itself.
  if (code == DISP_E_EXCEPTION) throw takeExcepInfo(info, "Object", "Value");
  if (FAILED(code)) throwMismatch(plain, wanted);
  result = dereferenced(result);
  if (isObject(result)) throwMismatch(result, wanted);
  return result;
}

Variant converted(const VARIANT& value, VARTYPE type, const char* wanted) {
  Variant result;
  const HRESULT code = VariantChangeTypeEx(&result, source(value), neutralLocale, VARIANT_ALPHABOOL, type);
  if (code == E_OUTOFMEMORY) throw std::bad_alloc();
  if (FAILED(code)) throwMismatch(value, wanted);
  return result;
}

std::string isoDate(const VARIANT& value) {
  SYSTEMTIME time{};
  if (!VariantTimeToSystemTime(value.date, &time)) throwMismatch(value, "a date");
  std::array<char, 64> text{};
  const bool hasTime = time.wHour != 0 || time.wMinute != 0 || time.wSecond != 0;
  const int length =
      hasTime ? std::snprintf(text.data(), text.size(), "%04d-%02d-%02d %02d:%02d:%02d", time.wYear, time.wMonth,
                              time.wDay, time.wHour, time.wMinute, time.wSecond)
              : std::snprintf(text.data(), text.size(), "%04d-%02d-%02d", time.wYear, time.wMonth, time.wDay);
  return {text.data(), static_cast<std::size_t>(length)};
}

// The size of a variable that a typed reference points at and that is held inline, 0 for types that own something.
std::size_t inlineSize(VARTYPE type) {
  switch (type) {
    case VT_I1:
    case VT_UI1:
      return 1;
    case VT_I2:
    case VT_UI2:
    case VT_BOOL:
      return 2;
    case VT_I4:
    case VT_UI4:
    case VT_INT:
    case VT_UINT:
    case VT_R4:
    case VT_ERROR:
      return 4;
    case VT_I8:
    case VT_UI8:
    case VT_R8:
    case VT_CY:
    case VT_DATE:
      return 8;
    default:
      return 0;
  }
}

}  // namespace

Variant::Variant(const VARIANT& other) : Variant() {
  const HRESULT code = VariantCopy(this, source(other));
  if (code == E_OUTOFMEMORY) throw std::bad_alloc();
  if (FAILED(code)) throwMismatch(other, "a variant");
}

Variant& Variant::operator=(Variant other) noexcept {
  std::swap(static_cast<VARIANT&>(*this), static_cast<VARIANT&>(other));
  return *this;
}

Variant Variant::adopt(const VARIANT& value) noexcept {
  Variant result;
  static_cast<VARIANT&>(result) = value;
  return result;
}

Variant Variant::missing() noexcept {
  Variant result;
  result.vt = VT_ERROR;
  result.scode = DISP_E_PARAMNOTFOUND;
  return result;
}

Variant Variant::null() noexcept {
  Variant result;
  result.vt = VT_NULL;
  return result;
}

Variant Variant::fromDate(DATE days) noexcept {
  Variant result;
  result.vt = VT_DATE;
  result.date = days;
  return result;
}

Variant Variant::fromIsoDate(std::string_view text) {
  constexpr std::size_t length = 10;  // yyyy-mm-dd
  const auto number = [text](std::size_t at, std::size_t digits, WORD& value) {
    const char* end = text.data() + at + digits;
    const auto [stop, error] = std::from_chars(text.data() + at, end, value);
    return error == std::errc() && stop == end;
  };
  SYSTEMTIME time{};
  DATE days = 0;
  const bool isDate = text.size() == length && text[4] == '-' && text[7] == '-' && number(0, 4, time.wYear) &&
                      number(5, 2, time.wMonth) && number(8, 2, time.wDay) && SystemTimeToVariantTime(&time, &days);
  if (!isDate) throwMismatch(Variant(text), "a date");
  return fromDate(days);
}

Variant Variant::textArray(std::span<const std::string> texts) {
  Variant result;
  result.parray = SafeArrayCreateVector(VT_VARIANT, 0, static_cast<ULONG>(texts.size()));
  if (!result.parray) throw std::bad_alloc();
  result.vt = VT_ARRAY | VT_VARIANT;
  for (LONG index = 0; const std::string& text : texts) {
    Variant element(text);
    // Puts a copy; nothing but memory can be lacking, for the index is inside.
    if (FAILED(SafeArrayPutElement(result.parray, &index, &element))) throw std::bad_alloc();
    ++index;
  }
  return result;
}

Variant Variant::reference(VARIANT& variable) noexcept {
  Variant result;
  result.vt = VT_VARIANT | VT_BYREF;
  result.pvarVal = &variable;
  return result;
}

Variant Variant::reference(IDispatch*& variable) noexcept {
  Variant result;
  result.vt = VT_DISPATCH | VT_BYREF;
  result.ppdispVal = &variable;
  return result;
}

Variant Variant::reference(SHORT& variable) noexcept {
  Variant result;
  result.vt = VT_I2 | VT_BYREF;
  result.piVal = &variable;
  return result;
}

Variant Variant::reference(BSTR& variable) noexcept {
  Variant result;
  result.vt = VT_BSTR | VT_BYREF;
  result.pbstrVal = &variable;
  return result;
}

Variant Variant::dateReference(DATE& variable) noexcept {
  Variant result;
  result.vt = VT_DATE | VT_BYREF;
  result.pdate = &variable;
  return result;
}

VARIANT Variant::release() noexcept {
  VARIANT value = *this;
  vt = VT_EMPTY;
  return value;
}

VARIANT* Variant::out() noexcept {
  VariantClear(this);
  return this;
}

Variant dereferenced(const VARIANT& value) {
  const VARIANT* at = endOfReferences(source(value));
  if (!at) throwMismatch(value, "a variable");
  if (!(at->vt & VT_BYREF)) return Variant(*at);
  if (!at->byref) throwMismatch(*at, "a variable");
  Variant result;
  const HRESULT code = VariantCopyInd(&result, source(*at));
  if (code == E_OUTOFMEMORY) throw std::bad_alloc();
  if (FAILED(code)) throwMismatch(*at, "a value");
  return result;
}

bool isMissing(const VARIANT& value) {
  const Variant plain = dereferenced(value);
  return plain.vt == VT_ERROR && plain.scode == DISP_E_PARAMNOTFOUND;
}

bool isNull(const VARIANT& value) {
  return dereferenced(value).vt == VT_NULL;
}

std::optional<std::string> toTextOrNull(const VARIANT& value) {
  const Variant plain = plainValue(value, "text");
  switch (plain.vt) {
    case VT_NULL:
      return std::nullopt;
    case VT_EMPTY:
      return std::string();
    case VT_BSTR:
      return toUtf8(plain.bstrVal);
    case VT_DATE:
      return isoDate(plain);
    case VT_BOOL:
      return plain.boolVal != VARIANT_FALSE ? "True" : "False";
    default:
      return toUtf8(converted(plain, VT_BSTR, "text").bstrVal);
  }
}

std::string toText(const VARIANT& value) {
  return toTextOrNull(value).value_or(std::string());
}

int toInteger(const VARIANT& value) {
  return converted(plainValue(value, "a whole number"), VT_I4, "a whole number").lVal;
}

bool toFlag(const VARIANT& value) {
  return converted(plainValue(value, "a flag"), VT_BOOL, "a flag").boolVal != VARIANT_FALSE;
}

std::vector<std::string> toTexts(const VARIANT& value) {
  const Variant plain = dereferenced(value);
  if (plain.vt != (VT_ARRAY | VT_VARIANT) || SafeArrayGetDim(plain.parray) != 1) throwMismatch(plain, "a list");
  LONG index = 0;
  LONG last = -1;
  SafeArrayGetLBound(plain.parray, 1, &index);
  SafeArrayGetUBound(plain.parray, 1, &last);
  std::vector<std::string> texts;
  for (; index <= last; ++index) {
    Variant element;
    if (FAILED(SafeArrayGetElement(plain.parray, &index, element.out()))) throw std::bad_alloc();
    texts.push_back(toText(element));
  }
  return texts;
}

ComPtr<IDispatch> toObject(const VARIANT& value) {
  Variant plain = dereferenced(value);
  if (plain.vt == VT_DISPATCH) return ComPtr<IDispatch>(plain.pdispVal);
  ComPtr<IDispatch> object;
  if (plain.vt == VT_UNKNOWN) {
    if (!plain.punkVal) return object;
    if (SUCCEEDED(plain.punkVal->QueryInterface(IID_IDispatch, reinterpret_cast<void**>(object.out())))) return object;
  }
  throwMismatch(plain, "an object");
}

HRESULT writeBack(VARIANT& target, const VARIANT& value) noexcept {
  VARIANT* at = endOfReferences(&target);
  if (!at) return E_POINTER;
  if (!(at->vt & VT_BYREF)) return at == &target ? S_OK : VariantCopyInd(at, source(value));
  if (!at->byref) return E_POINTER;
  const VARTYPE type = static_cast<VARTYPE>(at->vt & ~VT_BYREF);
  VARIANT result;
  VariantInit(&result);
  const HRESULT code = VariantChangeTypeEx(&result, source(value), neutralLocale, VARIANT_ALPHABOOL, type);
  if (FAILED(code)) return code == E_OUTOFMEMORY ? code : DISP_E_TYPEMISMATCH;
  if (const std::size_t size = inlineSize(type)) {
    CopyMemory(at->byref, &result.lVal, size);
    return S_OK;
  }
  switch (type) {
    case VT_BSTR:
      SysFreeString(std::exchange(*at->pbstrVal, result.bstrVal));
      return S_OK;
    case VT_DISPATCH:
    case VT_UNKNOWN:
      if (IUnknown* old = std::exchange(*at->ppunkVal, result.punkVal)) old->Release();
      return S_OK;
    case VT_DECIMAL:
      result.decVal.wReserved = 0;
      *at->pdecVal = result.decVal;
      return S_OK;
    default:
      break;
  }
  // An array that someone has locked stays.
  if ((type & VT_ARRAY) && SUCCEEDED(SafeArrayDestroy(*at->pparray))) {
    *at->pparray = result.parray;
    return S_OK;
  }
  VariantClear(&result);
  return DISP_E_TYPEMISMATCH;
}

}  // namespace quillon::automation
