// The arguments of an Invoke call as the member takes them, and what the member changed back in the caller's variables.
#pragma once

#include <span>
#include <vector>

#include "automation/variant.h"
#include "automation/win32.h"

namespace quillon::automation {

// What ends a call before the member is reached.
struct Refusal {
  HRESULT code;
  UINT position = 0;  // of the argument in DISPPARAMS, where one is to blame
};

// An argument as the member takes it: a variable of the member's type that the call refers to. It must stay where it is
// from reference() on, and the caller's `given` must outlive it.
class Argument {
 public:
  // Throws AutomationError when `given` cannot be turned into `type`.
  Argument(VARIANT& given, UINT position, VARTYPE type);

  UINT position() const { return position_; }
  // What goes on the stack: a reference to the value.
  Variant reference();
  // Gives a changed value back to the caller. A variable that the member left alone keeps its own value and form. A flag
  // that the member sets to True counts as changed unless the variable was exactly True, so that a variable that held 7
  // is True (-1) afterwards.
  HRESULT returnToCaller();

 private:
  bool changed() const;

  VARIANT* given_;
  UINT position_;
  VARTYPE type_;
  Variant value_;
  Variant before_;
};

// The arguments of `parameters` in the member's order, each turned into its type of `types` (VT_VARIANT, VT_BSTR, VT_BOOL
// or VT_DISPATCH). In `parameters` named ones stand first, the others last to first behind them; the value that is
// assigned (`assigns`) has a name of its own and is the member's last argument. Throws Refusal: DISP_E_BADPARAMCOUNT,
// DISP_E_PARAMNOTFOUND, DISP_E_PARAMNOTOPTIONAL, DISP_E_TYPEMISMATCH, or E_INVALIDARG for more names than arguments.
std::vector<Argument> takeArguments(std::span<const VARTYPE> types, const DISPPARAMS& parameters, bool assigns);

}  // namespace quillon::automation
