// IDispatch::Invoke for a dual interface, from its type description: takes the arguments in every form in which
// automation clients pass them and calls the interface's own slot.
#pragma once

#include "automation/win32.h"

namespace quillon::automation {

// `slots` describes the interface behind `object`, with its slots (slotDescription). The other parameters are Invoke's.
//
// Each argument may come by value, by typed reference or through variants, by position or by name; it is turned into
// what the member takes, and what the member changes goes back into the caller's variable in that variable's own form.
// Gives DISP_E_MEMBERNOTFOUND, DISP_E_BADPARAMCOUNT, DISP_E_PARAMNOTFOUND (a name or position that does not exist or is
// taken), DISP_E_PARAMNOTOPTIONAL, DISP_E_TYPEMISMATCH (the last three with the argument's place), DISP_E_EXCEPTION
// with what the member left in IErrorInfo, or E_OUTOFMEMORY.
HRESULT invokeDual(ITypeInfo& slots, IDispatch& object, DISPID id, WORD kind, const DISPPARAMS* parameters,
                   VARIANT* result, EXCEPINFO* info, UINT* badArgument) noexcept;

}  // namespace quillon::automation
