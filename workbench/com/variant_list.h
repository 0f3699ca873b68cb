// An IEnumVARIANT over values that stand ready: what "For Each" asks of a collection.
#pragma once

#include <vector>

#include "frame/com/com_object.h"
#include "frame/com/variant.h"

namespace quillon::workbench {

class VariantList : public com::ComObject<IEnumVARIANT> {
 public:
  explicit VariantList(std::vector<com::Variant> values) : values_(std::move(values)) {}

  STDMETHODIMP QueryInterface(REFIID id, void** object) override;
  STDMETHODIMP Next(ULONG count, VARIANT* values, ULONG* fetched) override;
  STDMETHODIMP Skip(ULONG count) override;
  STDMETHODIMP Reset() override;
  STDMETHODIMP Clone(IEnumVARIANT** copy) override;

 private:
  std::vector<com::Variant> values_;
  std::size_t position_ = 0;
};

// What a collection's member with DISPID_NEWENUM gives.
com::Variant enumeratorOf(std::vector<com::Variant> values);

}  // namespace quillon::workbench
