#include "workbench/com/variant_list.h"

#include <algorithm>

namespace quillon::workbench {

STDMETHODIMP VariantList::QueryInterface(REFIID id, void** object) {
  if (!object) return E_POINTER;
  *object = nullptr;
  if (id != IID_IUnknown && id != IID_IEnumVARIANT) return E_NOINTERFACE;
  *object = static_cast<IEnumVARIANT*>(this);
  AddRef();
  return S_OK;
}

STDMETHODIMP VariantList::Next(ULONG count, VARIANT* values, ULONG* fetched) {
  if (!values || (!fetched && count != 1)) return E_POINTER;
  ULONG given = 0;
  for (; given < count && position_ < values_.size(); ++given, ++position_) {
    VariantInit(&values[given]);
    const HRESULT code = VariantCopy(&values[given], &values_[position_]);
    if (FAILED(code)) {
      while (given > 0)
        VariantClear(&values[--given]);
      return code;
    }
  }
  if (fetched) *fetched = given;
  return given == count ? S_OK : S_FALSE;
}

STDMETHODIMP VariantList::Skip(ULONG count) {
  const std::size_t skipped = std::min<std::size_t>(count, values_.size() - position_);
  position_ += skipped;
  return skipped == count ? S_OK : S_FALSE;
}

STDMETHODIMP VariantList::Reset() {
  position_ = 0;
  return S_OK;
}

STDMETHODIMP VariantList::Clone(IEnumVARIANT** copy) {
  if (!copy) return E_POINTER;
  *copy = nullptr;
  try {
    com::ComPtr<VariantList> list = com::makeObject<VariantList>(values_);
    list->position_ = position_;
    *copy = list.release();
    return S_OK;
  } catch (const std::bad_alloc&) {
    return E_OUTOFMEMORY;
  }
}

com::Variant enumeratorOf(std::vector<com::Variant> values) {
  com::Variant result;
  result.punkVal = com::makeObject<VariantList>(std::move(values)).release();
  result.vt = VT_UNKNOWN;
  return result;
}

}  // namespace quillon::workbench
