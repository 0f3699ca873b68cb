// Calls on an automation object by member name, as Basic makes them.
#pragma once

#include <initializer_list>
#include <optional>
#include <span>
#include <string>

#include "automation/variant.h"

namespace quillon::automation {

class LateBound {
 public:
  LateBound() = default;
  // `name` is what the object is called in the descriptions of errors that it does not describe itself
  // ("ADODB.Connection"); their source is ownSource.
  LateBound(ComPtr<IDispatch> object, std::string name) : object_(std::move(object)), name_(std::move(name)) {}

  explicit operator bool() const noexcept { return static_cast<bool>(object_); }
  IDispatch* get() const noexcept { return object_.get(); }
  const ComPtr<IDispatch>& object() const noexcept { return object_; }
  const std::string& name() const noexcept { return name_; }

  // All of these throw AutomationError: with what the object reported, with the failing code when the object lacks the
  // member or refuses the arguments, with DISP_E_TYPEMISMATCH when a result is not of the wanted kind, and with Basic's
  // error 91 when there is no object. Arguments stand in their natural order; a result written into a reference stays
  // in the caller's variable.
  void call(const wchar_t* member, std::initializer_list<Variant> arguments = {}) const;
  void call(const wchar_t* member, std::span<const Variant> arguments) const;
  Variant get(const wchar_t* member, std::initializer_list<Variant> arguments = {}) const;
  std::string text(const wchar_t* member, std::initializer_list<Variant> arguments = {}) const;
  int integer(const wchar_t* member, std::initializer_list<Variant> arguments = {}) const;
  bool flag(const wchar_t* member, std::initializer_list<Variant> arguments = {}) const;
  // The object that `member` gives; it is called `resultName` from then on. Throws Basic's error 91 for "Nothing".
  LateBound object(const wchar_t* member, std::string resultName, std::initializer_list<Variant> arguments = {}) const;
  // The same for a member that may be lacking: null where there is no such member, or no object in it ("Nothing", Empty or
  // Null).
  LateBound objectIfAny(const wchar_t* member, std::string resultName) const;
  void put(const wchar_t* member, Variant value) const;
  // Assigns an object as Basic's Set does; an object whose member only knows plain assignment gets that.
  void putObject(const wchar_t* member, const ComPtr<IDispatch>& object) const;

  // Whether the object has the member. Throws like the others for any other failure.
  bool offers(const wchar_t* member) const;

  // By dispatch id; `member` only names it in errors. DISPID_VALUE is the default member.
  Variant getById(DISPID id, const wchar_t* member, std::initializer_list<Variant> arguments = {}) const;
  // The item `index` of a collection, by its default member.
  LateBound item(Variant index, std::string resultName) const;

 private:
  HRESULT find(const wchar_t* member, DISPID& id) const;
  DISPID idOf(const wchar_t* member) const;
  // One call; gives the callee's code, except that an error which the callee describes is thrown.
  HRESULT tryInvoke(DISPID id, const wchar_t* member, WORD kind, std::span<const Variant> arguments,
                    Variant& result) const;
  Variant invoke(DISPID id, const wchar_t* member, WORD kind, std::span<const Variant> arguments) const;
  [[noreturn]] void fail(HRESULT code, const wchar_t* member) const;
  template <class Read>
  auto read(const wchar_t* member, std::initializer_list<Variant> arguments, Read convert) const;
  template <class Read>
  auto converted(const wchar_t* member, const Variant& value, Read convert) const;

  ComPtr<IDispatch> object_;
  std::string name_;
};

}  // namespace quillon::automation
