// Automation variants: an owning one, reading a value out of any form in which a caller may pass it, and writing a
// result back into a caller's variable.
#pragma once

#include <concepts>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "automation/com_ptr.h"
#include "automation/text.h"
#include "automation/win32.h"

namespace quillon::automation {

// An owned VARIANT; it is one, so that its address can be handed to any automation function.
class Variant : public VARIANT {
 public:
  Variant() noexcept { VariantInit(this); }
  Variant(std::string_view utf8) : Variant() {
    bstrVal = makeBstr(utf8);
    vt = VT_BSTR;
  }
  Variant(const std::string& utf8) : Variant(std::string_view(utf8)) {}
  Variant(const char* utf8) : Variant(std::string_view(utf8)) {}
  Variant(int value) noexcept : Variant() {
    lVal = value;
    vt = VT_I4;
  }
  Variant(double value) noexcept : Variant() {
    dblVal = value;
    vt = VT_R8;
  }
  template <std::same_as<bool> T>
  Variant(T value) noexcept : Variant() {
    boolVal = value ? VARIANT_TRUE : VARIANT_FALSE;
    vt = VT_BOOL;
  }
  // Shares `object`; null gives an empty object reference ("Nothing").
  template <class T>
  requires std::convertible_to<T*, IDispatch*> Variant(T* object)
  noexcept : Variant() {
    pdispVal = object;
    if (object) object->AddRef();
    vt = VT_DISPATCH;
  }
  template <class T>
  requires std::convertible_to<T*, IDispatch*> Variant(const ComPtr<T>& object)
  noexcept : Variant(object.get()) {}
  // A copy of `other`; throws std::bad_alloc.
  explicit Variant(const VARIANT& other);
  Variant(const Variant& other) : Variant(static_cast<const VARIANT&>(other)) {}
  Variant(Variant&& other) noexcept : VARIANT(other) { other.vt = VT_EMPTY; }
  ~Variant() { VariantClear(this); }

  Variant& operator=(Variant other) noexcept;

  // Takes over what `value` holds.
  static Variant adopt(const VARIANT& value) noexcept;
  // An argument left out.
  static Variant missing() noexcept;
  static Variant null() noexcept;
  // A date, as automation counts it: days since 1899-12-30.
  static Variant fromDate(DATE days) noexcept;
  // The date that "yyyy-mm-dd" names. Throws AutomationError with DISP_E_TYPEMISMATCH for another text.
  static Variant fromIsoDate(std::string_view text);
  // An array of variants, counted from 0, that holds these texts. Throws std::bad_alloc.
  static Variant textArray(std::span<const std::string> texts);
  // References, as a caller passes its own variable.
  static Variant reference(VARIANT& variable) noexcept;
  static Variant reference(IDispatch*& variable) noexcept;
  static Variant reference(SHORT& variable) noexcept;
  static Variant reference(BSTR& variable) noexcept;
  static Variant dateReference(DATE& variable) noexcept;

  // Hands the value to the caller, who clears it; this becomes empty.
  [[nodiscard]] VARIANT release() noexcept;
  // The place for a function that gives a value through a pointer; what was held is cleared first.
  [[nodiscard]] VARIANT* out() noexcept;
};

// --- Reading. Every form is taken: by value, by typed reference, by reference to a variant, however deep. What cannot
// be read as asked throws AutomationError with DISP_E_TYPEMISMATCH, the source ownSource (errors.h) and a description that
// shows the value; a reference that leads nowhere or to itself included. An object stands for the value of its default
// member; what that member fails with is thrown as it is.

// A copy of the value behind all references.
Variant dereferenced(const VARIANT& value);
// True for what a caller passes when it leaves an argument out.
bool isMissing(const VARIANT& value);
bool isNull(const VARIANT& value);
// As text: numbers with a point and without group marks, a date as "yyyy-mm-dd" with " hh:mm:ss" behind it when it has
// a time, a flag as "True" or "False", whatever the machine's locale. Empty and Null give the empty text.
std::string toText(const VARIANT& value);
// As toText, but Null gives nullopt.
std::optional<std::string> toTextOrNull(const VARIANT& value);
// As a whole number (rounded); empty gives 0.
int toInteger(const VARIANT& value);
bool toFlag(const VARIANT& value);
// An array of values as texts.
std::vector<std::string> toTexts(const VARIANT& value);
// As an object; "Nothing" gives null.
ComPtr<IDispatch> toObject(const VARIANT& value);

// --- Writing back. Puts `value` into the variable that `target` refers to, in that variable's own form: a typed
// variable keeps its type (the value is converted to it), a variant takes the value as it is. A target passed by value
// has no variable behind it; nothing happens then. Returns DISP_E_TYPEMISMATCH when the value does not fit, E_POINTER when
// the reference leads nowhere or to itself.
HRESULT writeBack(VARIANT& target, const VARIANT& value) noexcept;

}  // namespace quillon::automation
