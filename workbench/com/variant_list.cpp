#include "workbench/com/variant_list.h"

#include <algorithm>
#include <string>
#include <utility>

#include "frame/automation_error.h"

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
    automation::ComPtr<VariantList> list = automation::makeObject<VariantList>(values_);
    list->position_ = position_;
    *copy = list.release();
    return S_OK;
  } catch (const std::bad_alloc&) {
    return E_OUTOFMEMORY;
  }
}

namespace {

constexpr const char* collectionSource = "Quillon collection";

automation::Variant itemAt(automation::Call& call, const std::vector<automation::Variant>& values) {
  const int position = call.integer(0);
  if (position < 1 || static_cast<std::size_t>(position) > values.size()) {
    throw AutomationError(DISP_E_BADINDEX, collectionSource,
                          "The collection has " + std::to_string(values.size()) + " items, but item " +
                              std::to_string(position) + " was asked for.");
  }
  return values[static_cast<std::size_t>(position) - 1];
}

class Collection : public automation::DispatchObject<Collection> {
 public:
  static std::span<const Member> members() {
    static constexpr Member table[] = {
        {L"Item", DISPID_VALUE, automation::readable, 1, 1, &Collection::item},
        {L"Count", 1, automation::readable, 0, 0, &Collection::count},
        {L"_NewEnum", DISPID_NEWENUM, automation::readable | automation::callable, 0, 0, &Collection::each},
    };
    return table;
  }

  explicit Collection(std::vector<automation::Variant> values) : values_(std::move(values)) {}

 private:
  automation::Variant item(automation::Call& call) { return itemAt(call, values_); }
  automation::Variant count(automation::Call&) { return static_cast<int>(values_.size()); }
  automation::Variant each(automation::Call&) { return enumeratorOf(values_); }
  const char* sourceName() const override { return collectionSource; }

  std::vector<automation::Variant> values_;
};

}  // namespace

automation::Variant collectionMember(automation::Call& call, const std::vector<automation::Variant>& values) {
  if (call.given(0)) return itemAt(call, values);
  return automation::makeObject<Collection>(values);
}

automation::Variant enumeratorOf(std::vector<automation::Variant> values) {
  automation::Variant result;
  result.punkVal = automation::makeObject<VariantList>(std::move(values)).release();
  result.vt = VT_UNKNOWN;
  return result;
}

}  // namespace quillon::workbench
