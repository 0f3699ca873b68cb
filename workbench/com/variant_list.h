// An IEnumVARIANT over values that stand ready: what "For Each" asks of a collection.
#pragma once

#include <vector>

#include "automation/com_object.h"
#include "automation/dispatch_object.h"
#include "automation/variant.h"

namespace quillon::workbench {

class VariantList : public automation::ComObject<IEnumVARIANT> {
 public:
  explicit VariantList(std::vector<automation::Variant> values) : values_(std::move(values)) {}

  STDMETHODIMP QueryInterface(REFIID id, void** object) override;
  STDMETHODIMP Next(ULONG count, VARIANT* values, ULONG* fetched) override;
  STDMETHODIMP Skip(ULONG count) override;
  STDMETHODIMP Reset() override;
  STDMETHODIMP Clone(IEnumVARIANT** copy) override;

 private:
  std::vector<automation::Variant> values_;
  std::size_t position_ = 0;
};

// What a collection's member with DISPID_NEWENUM gives.
automation::Variant enumeratorOf(std::vector<automation::Variant> values);

// What a member gives that stands for a collection of these values. Called without an argument: the collection, with
// Item (from 1; the default member), Count, and what "For Each" asks for. With one: that item, as Basic writes it.
// Throws AutomationError (bad index) for an item that there is not.
automation::Variant collectionMember(automation::Call& call, const std::vector<automation::Variant>& values);

}  // namespace quillon::workbench
