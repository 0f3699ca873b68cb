// The part of automation that automation/variant.cpp, text.cpp and invoke_arguments.cpp use, for native builds: the same
// names with the same meaning, so that this code runs under the sanitizers and the fuzzers. What Windows itself makes of
// the same inputs is seen where they run on automation itself, under Wine.
//
// A BSTR's characters are wchar_t here too, one UTF-16 unit each, although the native wchar_t is wider.
#pragma once

#include <cstdint>
#include <cstring>

using BYTE = std::uint8_t;
using SHORT = std::int16_t;
using WORD = std::uint16_t;
using USHORT = std::uint16_t;
using LONG = std::int32_t;
using ULONG = std::uint32_t;
using UINT = std::uint32_t;
using DWORD = std::uint32_t;
using LONGLONG = std::int64_t;
using ULONGLONG = std::uint64_t;
using HRESULT = std::int32_t;
using SCODE = HRESULT;
using LCID = std::uint32_t;
using DISPID = LONG;
using DATE = double;
using VARTYPE = USHORT;
using VARIANT_BOOL = SHORT;
using OLECHAR = wchar_t;
using BSTR = wchar_t*;
using LPOLESTR = wchar_t*;

inline constexpr VARIANT_BOOL VARIANT_TRUE = -1;
inline constexpr VARIANT_BOOL VARIANT_FALSE = 0;

constexpr HRESULT failure(std::uint32_t code) {
  return static_cast<HRESULT>(code);
}
constexpr bool FAILED(HRESULT code) {
  return code < 0;
}
constexpr bool SUCCEEDED(HRESULT code) {
  return code >= 0;
}
inline constexpr HRESULT S_OK = 0;
inline constexpr HRESULT E_NOINTERFACE = failure(0x80004002);
inline constexpr HRESULT E_NOTIMPL = failure(0x80004001);
inline constexpr HRESULT E_POINTER = failure(0x80004003);
inline constexpr HRESULT E_OUTOFMEMORY = failure(0x8007000E);
inline constexpr HRESULT E_INVALIDARG = failure(0x80070057);
inline constexpr HRESULT DISP_E_MEMBERNOTFOUND = failure(0x80020003);
inline constexpr HRESULT DISP_E_PARAMNOTFOUND = failure(0x80020004);
inline constexpr HRESULT DISP_E_TYPEMISMATCH = failure(0x80020005);
inline constexpr HRESULT DISP_E_EXCEPTION = failure(0x80020009);
inline constexpr HRESULT DISP_E_BADVARTYPE = failure(0x80020008);
inline constexpr HRESULT DISP_E_OVERFLOW = failure(0x8002000A);
inline constexpr HRESULT DISP_E_BADINDEX = failure(0x8002000B);
inline constexpr HRESULT DISP_E_BADPARAMCOUNT = failure(0x8002000E);
inline constexpr HRESULT DISP_E_PARAMNOTOPTIONAL = failure(0x8002000F);

enum : VARTYPE {
  VT_EMPTY = 0,
  VT_NULL = 1,
  VT_I2 = 2,
  VT_I4 = 3,
  VT_R4 = 4,
  VT_R8 = 5,
  VT_CY = 6,
  VT_DATE = 7,
  VT_BSTR = 8,
  VT_DISPATCH = 9,
  VT_ERROR = 10,
  VT_BOOL = 11,
  VT_VARIANT = 12,
  VT_UNKNOWN = 13,
  VT_DECIMAL = 14,
  VT_I1 = 16,
  VT_UI1 = 17,
  VT_UI2 = 18,
  VT_UI4 = 19,
  VT_I8 = 20,
  VT_UI8 = 21,
  VT_INT = 22,
  VT_UINT = 23,
  VT_ARRAY = 0x2000,
  VT_BYREF = 0x4000,
};
inline constexpr VARTYPE VT_TYPEMASK = 0xfff;

struct IID {
  std::uint32_t name;
  friend bool operator==(const IID&, const IID&) = default;
};
using REFIID = const IID&;
inline constexpr IID IID_NULL{0};
inline constexpr IID IID_IUnknown{1};
inline constexpr IID IID_IDispatch{2};

#define STDMETHODCALLTYPE
#define STDMETHODIMP HRESULT
#define STDMETHODIMP_(type) type

struct VARIANT;
struct EXCEPINFO {
  WORD wCode;
  BSTR bstrSource;
  BSTR bstrDescription;
  SCODE scode;
};
struct IErrorInfo;
HRESULT SetErrorInfo(ULONG reserved, IErrorInfo* info);
struct ITypeInfo;

struct DISPPARAMS {
  VARIANT* rgvarg;
  DISPID* rgdispidNamedArgs;
  UINT cArgs;
  UINT cNamedArgs;
};

#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wnon-virtual-dtor"
struct IUnknown {
  virtual HRESULT QueryInterface(REFIID id, void** object) = 0;
  virtual ULONG AddRef() = 0;
  virtual ULONG Release() = 0;
};
struct IDispatch : IUnknown {
  virtual HRESULT GetTypeInfoCount(UINT* count) = 0;
  virtual HRESULT GetTypeInfo(UINT index, LCID locale, ITypeInfo** info) = 0;
  virtual HRESULT GetIDsOfNames(REFIID reserved, LPOLESTR* names, UINT count, LCID locale, DISPID* ids) = 0;
  virtual HRESULT Invoke(DISPID id, REFIID reserved, LCID locale, WORD kind, DISPPARAMS* parameters, VARIANT* result,
                         EXCEPINFO* info, UINT* badArgument) = 0;
};
#pragma GCC diagnostic pop

inline constexpr DISPID DISPID_VALUE = 0;
inline constexpr DISPID DISPID_PROPERTYPUT = -3;
inline constexpr WORD DISPATCH_METHOD = 1;
inline constexpr WORD DISPATCH_PROPERTYGET = 2;

struct SAFEARRAY;

struct CY {
  LONGLONG int64;
};
struct DECIMAL {
  USHORT wReserved;
  BYTE scale;
  BYTE sign;
  ULONG Hi32;
  ULONGLONG Lo64;
};

struct VARIANT {
  VARTYPE vt;
  WORD wReserved1, wReserved2, wReserved3;
  union {
    LONGLONG llVal;
    ULONGLONG ullVal;
    LONG lVal;
    ULONG ulVal;
    BYTE bVal;
    SHORT iVal;
    float fltVal;
    double dblVal;
    VARIANT_BOOL boolVal;
    SCODE scode;
    CY cyVal;
    DATE date;
    DECIMAL decVal;
    BSTR bstrVal;
    IUnknown* punkVal;
    IDispatch* pdispVal;
    SAFEARRAY* parray;
    SHORT* piVal;
    DATE* pdate;
    DECIMAL* pdecVal;
    BSTR* pbstrVal;
    IUnknown** ppunkVal;
    IDispatch** ppdispVal;
    SAFEARRAY** pparray;
    VARIANT* pvarVal;
    void* byref;
  };
};
using VARIANTARG = VARIANT;

struct SYSTEMTIME {
  WORD wYear, wMonth, wDayOfWeek, wDay, wHour, wMinute, wSecond, wMilliseconds;
};

inline constexpr WORD LANG_ENGLISH = 9;
inline constexpr WORD SUBLANG_ENGLISH_US = 1;
inline constexpr WORD SORT_DEFAULT = 0;
constexpr WORD MAKELANGID(WORD language, WORD sublanguage) {
  return static_cast<WORD>((sublanguage << 10) | language);
}
constexpr LCID MAKELCID(WORD language, WORD sort) {
  return (static_cast<LCID>(sort) << 16U) | language;
}
inline constexpr USHORT VARIANT_ALPHABOOL = 2;

BSTR SysAllocStringLen(const OLECHAR* text, UINT length);
void SysFreeString(BSTR text);
UINT SysStringLen(BSTR text);

inline void VariantInit(VARIANT* value) {
  std::memset(static_cast<void*>(value), 0, sizeof *value);
}
HRESULT VariantClear(VARIANT* value);
HRESULT VariantCopy(VARIANT* to, VARIANT* from);
// Follows a reference to a variant once, as automation does: one to another such reference is refused.
HRESULT VariantCopyInd(VARIANT* to, VARIANT* from);
// Knows the conversions that make sense between numbers, flags, dates and texts; texts of dates are not read.
HRESULT VariantChangeTypeEx(VARIANT* to, VARIANT* from, LCID locale, USHORT flags, VARTYPE type);
int VariantTimeToSystemTime(DATE days, SYSTEMTIME* time);
int SystemTimeToVariantTime(SYSTEMTIME* time, DATE* days);

// One dimension, elements VT_VARIANT.
SAFEARRAY* SafeArrayCreateVector(VARTYPE type, LONG lowest, ULONG count);
HRESULT SafeArrayDestroy(SAFEARRAY* array);
UINT SafeArrayGetDim(SAFEARRAY* array);
HRESULT SafeArrayGetLBound(SAFEARRAY* array, UINT dimension, LONG* bound);
HRESULT SafeArrayGetUBound(SAFEARRAY* array, UINT dimension, LONG* bound);
HRESULT SafeArrayPutElement(SAFEARRAY* array, LONG* index, void* element);
HRESULT SafeArrayGetElement(SAFEARRAY* array, LONG* index, void* element);

inline void CopyMemory(void* to, const void* from, std::size_t size) {
  std::memcpy(to, from, size);
}
