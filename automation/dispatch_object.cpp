#include "automation/dispatch_object.h"

#include "automation/errors.h"

namespace quillon::automation {

VARIANT& Call::at(std::size_t index) const {
  return parameters_.rgvarg[parameters_.cArgs - 1 - index];
}

Variant Call::assigned() const {
  // The assigned value is the one named argument and so stands first.
  return dereferenced(parameters_.rgvarg[0]);
}

bool Call::given(std::size_t index) const {
  return index < count() && !isMissing(at(index));
}

template <class Read>
auto Call::read(std::size_t index, Read convert) const {
  if (!given(index))
    throw BadArgument{DISP_E_PARAMNOTOPTIONAL, static_cast<UINT>(index < count() ? parameters_.cArgs - 1 - index : 0)};
  try {
    return convert(at(index));
  } catch (const AutomationError& error) {
    throw BadArgument{error.code(), static_cast<UINT>(parameters_.cArgs - 1 - index)};
  }
}

Variant Call::value(std::size_t index) const {
  return read(index, [](const VARIANT& value) { return dereferenced(value); });
}

std::string Call::text(std::size_t index) const {
  return read(index, [](const VARIANT& value) { return toText(value); });
}

int Call::integer(std::size_t index) const {
  return read(index, [](const VARIANT& value) { return toInteger(value); });
}

bool Call::flag(std::size_t index) const {
  return read(index, [](const VARIANT& value) { return toFlag(value); });
}

ComPtr<IDispatch> Call::object(std::size_t index) const {
  return read(index, [](const VARIANT& value) { return toObject(value); });
}

void Call::writeBack(std::size_t index, const VARIANT& result) const {
  if (!given(index)) return;
  const HRESULT code = automation::writeBack(at(index), result);
  if (FAILED(code)) throw BadArgument{code, static_cast<UINT>(parameters_.cArgs - 1 - index)};
}

STDMETHODIMP DispatchBase::QueryInterface(REFIID id, void** object) {
  if (!object) return E_POINTER;
  *object = nullptr;
  if (id != IID_IUnknown && id != IID_IDispatch) return E_NOINTERFACE;
  *object = static_cast<IDispatch*>(this);
  AddRef();
  return S_OK;
}

STDMETHODIMP DispatchBase::GetTypeInfoCount(UINT* count) {
  if (!count) return E_POINTER;
  *count = 0;
  return S_OK;
}

STDMETHODIMP DispatchBase::GetTypeInfo(UINT /*index*/, LCID /*locale*/, ITypeInfo** info) {
  if (info) *info = nullptr;
  return DISP_E_BADINDEX;
}

STDMETHODIMP DispatchBase::GetIDsOfNames(REFIID reserved, LPOLESTR* names, UINT count, LCID /*locale*/, DISPID* ids) {
  if (reserved != IID_NULL) return DISP_E_UNKNOWNINTERFACE;
  if (!names || !ids || count == 0) return E_INVALIDARG;
  for (UINT i = 0; i < count; ++i)
    ids[i] = DISPID_UNKNOWN;
  for (std::size_t i = 0; i < memberCount(); ++i) {
    const MemberInfo row = member(i);
    if (CompareStringOrdinal(row.name, -1, names[0], -1, TRUE) != CSTR_EQUAL) continue;
    ids[0] = row.id;
    // Arguments have no names here, so whoever names one asks for something unknown.
    return count == 1 ? S_OK : DISP_E_UNKNOWNNAME;
  }
  return DISP_E_UNKNOWNNAME;
}

STDMETHODIMP DispatchBase::Invoke(DISPID id, REFIID reserved, LCID /*locale*/, WORD kind, DISPPARAMS* parameters,
                                  VARIANT* result, EXCEPINFO* info, UINT* badArgument) {
  if (reserved != IID_NULL) return DISP_E_UNKNOWNINTERFACE;
  if (!parameters) return E_POINTER;
  const bool assigns = (kind & writable) != 0;
  const UINT named = assigns ? 1 : 0;
  if (parameters->cNamedArgs > named) return DISP_E_NONAMEDARGS;
  if (assigns &&
      (parameters->cArgs == 0 || parameters->cNamedArgs != 1 || parameters->rgdispidNamedArgs[0] != DISPID_PROPERTYPUT))
    return DISP_E_PARAMNOTOPTIONAL;

  // What the member calls may release the last reference from outside.
  const ComPtr<DispatchBase> self(this);
  for (std::size_t i = 0; i < memberCount(); ++i) {
    const MemberInfo row = member(i);
    if (row.id != id || !(row.kinds & kind)) continue;
    Call call(*parameters, assigns);
    if (call.count() < row.fewest || call.count() > row.most) return DISP_E_BADPARAMCOUNT;
    try {
      Variant value = run(i, call);
      if (result) *result = value.release();
      return S_OK;
    } catch (const BadArgument& bad) {
      if (badArgument) *badArgument = bad.position;
      return bad.code;
    } catch (...) {
      try {
        return fillExcepInfo(currentError({.className = sourceName()}), info);
      } catch (...) {
        return E_OUTOFMEMORY;
      }
    }
  }
  return DISP_E_MEMBERNOTFOUND;
}

}  // namespace quillon::automation
