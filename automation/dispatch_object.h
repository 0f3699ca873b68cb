// A base for automation objects that are only called late-bound: a class lists its members in a table, and the base
// does the rest of IDispatch (names in any letter case, arguments in any form, assignments, write-back, errors).
//
//   class Field : public DispatchObject<Field> {
//    public:
//     static std::span<const Member> members() {
//       static constexpr Member rows[] = {
//           {L"Value", DISPID_VALUE, readable | writable, 0, 0, &Field::value},
//           {L"Name", 1, readable, 0, 0, &Field::name},
//       };
//       return rows;
//     }
//    private:
//     Variant value(Call& call) {
//       if (call.assigns()) { value_ = call.assigned(); return {}; }
//       return value_;
//     }
//     ...
//   };
//   ComPtr<Field> field = makeObject<Field>(...);
#pragma once

#include <cstddef>
#include <span>
#include <string>

#include "automation/com_object.h"
#include "automation/variant.h"

namespace quillon::automation {

// How a member may be used; combined with |. A caller that does not know whether a member is a property or a function
// asks for both, so `readable` and `callable` only differ for one that asks for exactly one of them.
inline constexpr WORD readable = DISPATCH_PROPERTYGET;
inline constexpr WORD writable = DISPATCH_PROPERTYPUT | DISPATCH_PROPERTYPUTREF;
inline constexpr WORD callable = DISPATCH_METHOD;

// One call of a member. Arguments are counted from 0 in their natural order; the assigned value is not among them.
class Call {
 public:
  Call(const DISPPARAMS& parameters, bool assigns) : parameters_(parameters), assigns_(assigns) {}

  bool assigns() const { return assigns_; }
  // The value that is assigned, behind all references.
  Variant assigned() const;

  std::size_t count() const { return parameters_.cArgs - (assigns_ ? 1 : 0); }
  // False for an argument that is left out, at the end of the list or in its midst.
  bool given(std::size_t index) const;
  // Reading an argument in a form that it does not have ends the call with DISP_E_TYPEMISMATCH and its index; reading
  // one that is not given ends it with DISP_E_PARAMNOTOPTIONAL.
  Variant value(std::size_t index) const;
  std::string text(std::size_t index) const;
  int integer(std::size_t index) const;
  bool flag(std::size_t index) const;
  ComPtr<IDispatch> object(std::size_t index) const;
  // Puts a result into the variable that the caller passed by reference; nothing happens for one passed by value.
  void writeBack(std::size_t index, const VARIANT& result) const;

 private:
  VARIANT& at(std::size_t index) const;
  template <class Read>
  auto read(std::size_t index, Read convert) const;

  const DISPPARAMS& parameters_;
  bool assigns_;
};

// What a Call ends with when an argument is not as the member needs it; only DispatchBase::Invoke sees it.
struct BadArgument {
  HRESULT code;
  UINT position;  // in DISPPARAMS
};

class DispatchBase : public ComObject<IDispatch> {
 public:
  STDMETHODIMP QueryInterface(REFIID id, void** object) override;
  STDMETHODIMP GetTypeInfoCount(UINT* count) override;
  STDMETHODIMP GetTypeInfo(UINT index, LCID locale, ITypeInfo** info) override;
  STDMETHODIMP GetIDsOfNames(REFIID reserved, LPOLESTR* names, UINT count, LCID locale, DISPID* ids) override;
  STDMETHODIMP Invoke(DISPID id, REFIID reserved, LCID locale, WORD kind, DISPPARAMS* parameters, VARIANT* result,
                      EXCEPINFO* info, UINT* badArgument) override;

 protected:
  struct MemberInfo {
    const wchar_t* name;
    DISPID id;
    WORD kinds;
    std::size_t fewest;  // arguments, without the assigned value
    std::size_t most;
  };

  virtual std::size_t memberCount() const = 0;
  virtual MemberInfo member(std::size_t index) const = 0;
  virtual Variant run(std::size_t index, Call& call) = 0;
  // The name that its errors of other kinds than AutomationError carry as their source.
  virtual const char* sourceName() const { return "Quillon"; }
};

template <class Self>
class DispatchObject : public DispatchBase {
 protected:
  struct Member {
    const wchar_t* name;
    DISPID id;
    WORD kinds;
    std::size_t fewest;
    std::size_t most;
    Variant (Self::*code)(Call& call);
  };

 private:
  std::size_t memberCount() const override { return Self::members().size(); }
  MemberInfo member(std::size_t index) const override {
    const Member& row = Self::members()[index];
    return {row.name, row.id, row.kinds, row.fewest, row.most};
  }
  Variant run(std::size_t index, Call& call) override {
    return (static_cast<Self*>(this)->*Self::members()[index].code)(call);
  }
};

}  // namespace quillon::automation
