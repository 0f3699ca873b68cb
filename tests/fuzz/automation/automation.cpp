#include <windows.h>

#include <array>
#include <charconv>
#include <chrono>
#include <cmath>
#include <cstdio>
#include <cwchar>
#include <limits>
#include <new>
#include <string>
#include <vector>

#include "automation/errors.h"

struct SAFEARRAY {
  LONG lowest = 0;
  std::vector<VARIANT> elements;
};

namespace {

// What stands before a text's characters.
struct Length {
  UINT units;
};
constexpr std::size_t head = sizeof(wchar_t) > sizeof(Length) ? sizeof(wchar_t) : sizeof(Length);

}  // namespace

BSTR SysAllocStringLen(const OLECHAR* text, UINT length) {
  auto* const block =
      static_cast<char*>(::operator new(head + (length + std::size_t{1}) * sizeof(wchar_t), std::nothrow));
  if (block == nullptr) return nullptr;
  new (block) Length{length};
  auto* const units = reinterpret_cast<wchar_t*>(block + head);
  if (length > 0) std::wmemcpy(units, text, length);
  units[length] = L'\0';
  return units;
}

void SysFreeString(BSTR text) {
  if (text != nullptr) ::operator delete(reinterpret_cast<char*>(text) - head);
}

UINT SysStringLen(BSTR text) {
  return text == nullptr ? 0 : reinterpret_cast<const Length*>(reinterpret_cast<char*>(text) - head)->units;
}

HRESULT VariantClear(VARIANT* value) {
  if ((value->vt & VT_BYREF) == 0) {
    if (value->vt == VT_BSTR) SysFreeString(value->bstrVal);
    if ((value->vt == VT_DISPATCH || value->vt == VT_UNKNOWN) && value->punkVal != nullptr) value->punkVal->Release();
    if ((value->vt & VT_ARRAY) != 0 && value->parray != nullptr) SafeArrayDestroy(value->parray);
  }
  value->vt = VT_EMPTY;
  return S_OK;
}

HRESULT VariantCopy(VARIANT* to, VARIANT* from) {
  if (to == from) return S_OK;
  VARIANT copy = *from;
  if ((from->vt & VT_BYREF) == 0) {
    const VARTYPE type = from->vt;
    if ((type & VT_ARRAY) == 0 && (type > VT_UINT || type == VT_VARIANT || type == 15)) return DISP_E_BADVARTYPE;
    if (type == VT_BSTR && from->bstrVal != nullptr)
      copy.bstrVal = SysAllocStringLen(from->bstrVal, SysStringLen(from->bstrVal));
    if ((type == VT_DISPATCH || type == VT_UNKNOWN) && from->punkVal != nullptr) from->punkVal->AddRef();
    if ((type & VT_ARRAY) != 0 && from->parray != nullptr) {
      copy.parray = SafeArrayCreateVector(VT_VARIANT, from->parray->lowest, 0);
      for (VARIANT& element : from->parray->elements) {
        VARIANT own;
        VariantInit(&own);
        VariantCopy(&own, &element);
        copy.parray->elements.push_back(own);
      }
    }
  }
  VariantClear(to);
  *to = copy;
  return S_OK;
}

HRESULT VariantCopyInd(VARIANT* to, VARIANT* from) {
  if ((from->vt & VT_BYREF) == 0) return VariantCopy(to, from);
  const VARTYPE type = static_cast<VARTYPE>(from->vt & ~VT_BYREF);
  if (type == VT_VARIANT) {
    if (from->pvarVal->vt == (VT_VARIANT | VT_BYREF)) return E_INVALIDARG;
    return VariantCopyInd(to, from->pvarVal);
  }
  VARIANT value;
  VariantInit(&value);
  value.vt = type;
  if ((type & VT_ARRAY) != 0) {
    value.parray = *from->pparray;
    return VariantCopy(to, &value);
  }
  switch (type) {
    case VT_I1:
    case VT_UI1:
      value.bVal = *static_cast<BYTE*>(from->byref);
      break;
    case VT_I2:
    case VT_UI2:
    case VT_BOOL:
      value.iVal = *from->piVal;
      break;
    case VT_I4:
    case VT_UI4:
    case VT_INT:
    case VT_UINT:
    case VT_R4:
    case VT_ERROR:
      std::memcpy(&value.lVal, from->byref, sizeof value.lVal);
      break;
    case VT_I8:
    case VT_UI8:
    case VT_R8:
    case VT_CY:
    case VT_DATE:
      std::memcpy(&value.llVal, from->byref, sizeof value.llVal);
      break;
    case VT_BSTR:
      value.bstrVal = *from->pbstrVal;
      break;
    case VT_DISPATCH:
    case VT_UNKNOWN:
      value.punkVal = *from->ppunkVal;
      break;
    case VT_DECIMAL:
      value.decVal = *from->pdecVal;
      break;
    default:
      return DISP_E_BADVARTYPE;
  }
  return VariantCopy(to, &value);
}

namespace {

constexpr double unitsOfCurrency = 10'000;

// The value as a number; false when it has none.
bool numberOf(const VARIANT& value, double& number) {
  switch (value.vt) {
    case VT_EMPTY:
      number = 0;
      return true;
    case VT_I1:
      number = static_cast<std::int8_t>(value.bVal);
      return true;
    case VT_UI1:
      number = value.bVal;
      return true;
    case VT_I2:
    case VT_BOOL:
      number = value.iVal;
      return true;
    case VT_UI2:
      number = static_cast<USHORT>(value.iVal);
      return true;
    case VT_I4:
    case VT_INT:
      number = value.lVal;
      return true;
    case VT_UI4:
    case VT_UINT:
      number = value.ulVal;
      return true;
    case VT_R4:
      number = static_cast<double>(value.fltVal);
      return true;
    case VT_I8:
      number = static_cast<double>(value.llVal);
      return true;
    case VT_UI8:
      number = static_cast<double>(value.ullVal);
      return true;
    case VT_R8:
    case VT_DATE:
      number = value.dblVal;
      return true;
    case VT_CY:
      number = static_cast<double>(value.cyVal.int64) / unitsOfCurrency;
      return true;
    case VT_DECIMAL:
      number = static_cast<double>(value.decVal.Lo64) / std::pow(10.0, value.decVal.scale) *
               (value.decVal.sign == 0 ? 1 : -1);
      return true;
    case VT_BSTR: {
      std::string text;
      for (UINT i = 0; i < SysStringLen(value.bstrVal); ++i) {
        if (value.bstrVal[i] > 0x7f) return false;
        text += static_cast<char>(value.bstrVal[i]);
      }
      const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
      return error == std::errc() && end == text.data() + text.size() && std::isfinite(number);
    }
    default:
      return false;
  }
}

template <class Number>
HRESULT store(double number, Number& place) {
  const double whole = std::nearbyint(number);
  if (!(whole >= static_cast<double>(std::numeric_limits<Number>::min()) &&
        whole < static_cast<double>(std::numeric_limits<Number>::max()) + 1))
    return DISP_E_OVERFLOW;
  place = static_cast<Number>(whole);
  return S_OK;
}

HRESULT convert(const VARIANT& from, double number, VARIANT& to) {
  switch (to.vt) {
    case VT_EMPTY:
      return S_OK;
    case VT_I1: {
      std::int8_t small = 0;
      const HRESULT code = store(number, small);
      to.bVal = static_cast<BYTE>(small);
      return code;
    }
    case VT_UI1:
      return store(number, to.bVal);
    case VT_I2:
      return store(number, to.iVal);
    case VT_BOOL:
      to.boolVal = number != 0 ? VARIANT_TRUE : VARIANT_FALSE;
      return S_OK;
    case VT_UI2: {
      USHORT small = 0;
      const HRESULT code = store(number, small);
      to.iVal = static_cast<SHORT>(small);
      return code;
    }
    case VT_I4:
    case VT_INT:
      return store(number, to.lVal);
    case VT_UI4:
    case VT_UINT:
      return store(number, to.ulVal);
    case VT_R4:
      if (std::fabs(number) > static_cast<double>(std::numeric_limits<float>::max())) return DISP_E_OVERFLOW;
      to.fltVal = static_cast<float>(number);
      return S_OK;
    case VT_I8:
      return store(number, to.llVal);
    case VT_UI8:
      return store(number, to.ullVal);
    case VT_R8:
    case VT_DATE:
      to.dblVal = number;
      return S_OK;
    case VT_CY:
      return store(number * unitsOfCurrency, to.cyVal.int64);
    case VT_DECIMAL:
      to.decVal = {};
      to.decVal.sign = number < 0 ? 0x80 : 0;
      return store(std::fabs(number), to.decVal.Lo64);
    case VT_BSTR: {
      std::array<char, 32> text{};
      const int length = from.vt == VT_EMPTY ? 0 : std::snprintf(text.data(), text.size(), "%.15g", number);
      const std::wstring wide(text.data(), text.data() + length);
      to.bstrVal = SysAllocStringLen(wide.data(), static_cast<UINT>(wide.size()));
      return S_OK;
    }
    default:
      return DISP_E_TYPEMISMATCH;
  }
}

}  // namespace

HRESULT VariantChangeTypeEx(VARIANT* to, VARIANT* from, LCID /*locale*/, USHORT flags, VARTYPE type) {
  VARIANT value;
  VariantInit(&value);
  if (const HRESULT code = VariantCopyInd(&value, from); FAILED(code)) return code;
  const bool bothObjects =
      (value.vt == VT_DISPATCH || value.vt == VT_UNKNOWN) && (type == VT_DISPATCH || type == VT_UNKNOWN);
  if (value.vt == type || bothObjects) {
    VariantClear(to);
    value.vt = type;  // every object of this program has both interfaces
    *to = value;
    return S_OK;
  }
  VARIANT result;
  VariantInit(&result);
  result.vt = type;
  double number = 0;
  HRESULT code = DISP_E_TYPEMISMATCH;
  const std::wstring text = value.vt == VT_BSTR ? std::wstring(value.bstrVal == nullptr ? L"" : value.bstrVal) : L"";
  if (type == VT_BOOL && (text == L"True" || text == L"False")) {
    result.boolVal = text == L"True" ? VARIANT_TRUE : VARIANT_FALSE;
    code = S_OK;
  } else if (type == VT_BSTR && value.vt == VT_BOOL && (flags & VARIANT_ALPHABOOL) != 0) {
    const std::wstring word = value.boolVal != VARIANT_FALSE ? L"True" : L"False";
    result.bstrVal = SysAllocStringLen(word.data(), static_cast<UINT>(word.size()));
    code = S_OK;
  } else if (numberOf(value, number)) {
    code = convert(value, number, result);
  }
  VariantClear(&value);
  if (FAILED(code)) return code;
  VariantClear(to);
  *to = result;
  return S_OK;
}

namespace {

// Automation counts days from this one; the time of a day before it counts away from zero.
constexpr std::chrono::sys_days dayZero = std::chrono::year{1899} / 12 / 30;
constexpr double firstDay = -657'434;  // 0100-01-01
constexpr double endOfDays = 2'958'466;
constexpr double secondsPerDay = 86'400;

}  // namespace

int VariantTimeToSystemTime(DATE days, SYSTEMTIME* time) {
  if (!(days > firstDay - 1 && days < endOfDays)) return 0;
  double day = std::trunc(days);
  double seconds = std::nearbyint(std::fabs(days - day) * secondsPerDay);
  if (seconds >= secondsPerDay) {
    seconds = 0;
    day += days < 0 ? -1 : 1;
    if (!(day >= firstDay && day < endOfDays)) return 0;
  }
  const std::chrono::year_month_day date(dayZero + std::chrono::days(static_cast<int>(day)));
  const int second = static_cast<int>(seconds);
  *time = {};
  time->wYear = static_cast<WORD>(static_cast<int>(date.year()));
  time->wMonth = static_cast<WORD>(static_cast<unsigned>(date.month()));
  time->wDay = static_cast<WORD>(static_cast<unsigned>(date.day()));
  time->wHour = static_cast<WORD>(second / 3600);
  time->wMinute = static_cast<WORD>(second / 60 % 60);
  time->wSecond = static_cast<WORD>(second % 60);
  return 1;
}

int SystemTimeToVariantTime(SYSTEMTIME* time, DATE* days) {
  const std::chrono::year_month_day date(std::chrono::year(time->wYear), std::chrono::month(time->wMonth),
                                         std::chrono::day(time->wDay));
  if (!date.ok() || time->wYear < 100 || time->wYear > 9999) return 0;
  *days = static_cast<double>((std::chrono::sys_days(date) - dayZero).count());
  return 1;
}

SAFEARRAY* SafeArrayCreateVector(VARTYPE /*type*/, LONG lowest, ULONG count) {
  auto* const array = new SAFEARRAY{lowest, {}};
  for (ULONG i = 0; i < count; ++i)
    VariantInit(&array->elements.emplace_back());
  return array;
}

HRESULT SafeArrayDestroy(SAFEARRAY* array) {
  if (array != nullptr) {
    for (VARIANT& element : array->elements)
      VariantClear(&element);
  }
  delete array;
  return S_OK;
}

UINT SafeArrayGetDim(SAFEARRAY* array) {
  return array == nullptr ? 0 : 1;
}

HRESULT SafeArrayGetLBound(SAFEARRAY* array, UINT /*dimension*/, LONG* bound) {
  *bound = array->lowest;
  return S_OK;
}

HRESULT SafeArrayGetUBound(SAFEARRAY* array, UINT /*dimension*/, LONG* bound) {
  *bound = array->lowest + static_cast<LONG>(array->elements.size()) - 1;
  return S_OK;
}

namespace {

VARIANT* elementAt(SAFEARRAY* array, LONG index) {
  const std::int64_t place = std::int64_t{index} - array->lowest;
  return place < 0 || place >= std::ssize(array->elements) ? nullptr
                                                           : &array->elements[static_cast<std::size_t>(place)];
}

}  // namespace

HRESULT SafeArrayPutElement(SAFEARRAY* array, LONG* index, void* element) {
  VARIANT* const place = elementAt(array, *index);
  return place == nullptr ? DISP_E_BADINDEX : VariantCopy(place, static_cast<VARIANT*>(element));
}

HRESULT SafeArrayGetElement(SAFEARRAY* array, LONG* index, void* element) {
  VARIANT* const place = elementAt(array, *index);
  return place == nullptr ? DISP_E_BADINDEX : VariantCopy(static_cast<VARIANT*>(element), place);
}

// No object of the native builds fails with a description; the library's own reading of one runs under Wine.
quillon::AutomationError quillon::automation::takeExcepInfo(EXCEPINFO& info, std::string_view source,
                                                            std::string_view member) {
  SysFreeString(info.bstrSource);
  SysFreeString(info.bstrDescription);
  return {info.scode, std::string(source), std::string(member)};
}
