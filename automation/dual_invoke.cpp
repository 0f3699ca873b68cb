#include "automation/dual_invoke.h"

#include <cstddef>
#include <new>
#include <string>
#include <utility>
#include <vector>

#include "automation/com_ptr.h"
#include "automation/errors.h"
#include "automation/invoke_arguments.h"
#include "automation/variant.h"
#include "frame/automation_error.h"

namespace quillon::automation {

namespace {

// A member's description, given back to its owner at the end.
class Function {
 public:
  // The member `id` that can be used in one of the ways `kind`; throws Refusal when there is none. An assignment that
  // may be of either sort is one by reference when `preferReference` is set.
  Function(ITypeInfo& slots, DISPID id, WORD kind, bool preferReference) : slots_(slots) {
    // The descriptions end where the index does.
    FUNCDESC* found = nullptr;
    for (UINT i = 0; SUCCEEDED(slots.GetFuncDesc(i, &found)); ++i) {
      const bool fits = found->memid == id && (found->invkind & kind) != 0;
      const bool better = !description_ || (preferReference && found->invkind == INVOKE_PROPERTYPUTREF);
      if (fits && better) std::swap(description_, found);
      if (found) slots.ReleaseFuncDesc(found);
    }
    if (!description_) throw Refusal{DISP_E_MEMBERNOTFOUND};
  }
  Function(const Function&) = delete;
  Function& operator=(const Function&) = delete;
  ~Function() { slots_.ReleaseFuncDesc(description_); }

  std::string name() const {
    Bstr text;
    static_cast<void>(slots_.GetDocumentation(description_->memid, text.out(), nullptr, nullptr, nullptr));
    return text.utf8();
  }
  std::size_t slotOffset() const { return static_cast<std::size_t>(description_->oVft); }
  CALLCONV callingConvention() const { return description_->callconv; }
  // How many arguments a caller gives; the result is not one of them.
  UINT argumentCount() const { return parameterCount() - (hasResult() ? 1 : 0); }
  // The type behind the reference by which argument (or result) `index` is passed.
  VARTYPE typeOf(UINT index) const {
    const TYPEDESC& type = description_->lprgelemdescParam[index].tdesc;
    return type.vt == VT_PTR ? type.lptdesc->vt : type.vt;
  }
  bool hasResult() const {
    return parameterCount() > 0 &&
           (description_->lprgelemdescParam[parameterCount() - 1].paramdesc.wParamFlags & PARAMFLAG_FRETVAL) != 0;
  }

 private:
  UINT parameterCount() const { return static_cast<UINT>(description_->cParams); }

  ITypeInfo& slots_;
  FUNCDESC* description_ = nullptr;
};

bool isAssignment(WORD kind) {
  return (kind & (DISPATCH_PROPERTYPUT | DISPATCH_PROPERTYPUTREF)) != 0;
}

std::vector<VARTYPE> typesOf(const Function& function) {
  std::vector<VARTYPE> types;
  for (UINT i = 0; i < function.argumentCount(); ++i)
    types.push_back(function.typeOf(i));
  return types;
}

IID interfaceOf(ITypeInfo& slots) {
  TYPEATTR* attributes = nullptr;
  if (FAILED(slots.GetTypeAttr(&attributes))) return IID_IDispatch;
  const IID id = attributes->guid;
  slots.ReleaseTypeAttr(attributes);
  return id;
}

HRESULT invoke(ITypeInfo& slots, IDispatch& object, DISPID id, WORD kind, const DISPPARAMS& parameters, VARIANT* result,
               EXCEPINFO* info, UINT* badArgument) {
  const bool assigns = isAssignment(kind);
  const bool ofObject = assigns && parameters.cArgs > 0 && dereferenced(parameters.rgvarg[0]).vt == VT_DISPATCH;
  const Function function(slots, id, kind, ofObject);
  std::vector<Argument> arguments = takeArguments(typesOf(function), parameters, assigns);

  // The result's slot wants a variable of its own type; a Variant of that type holds and frees what comes.
  Variant resultValue;
  std::vector<Variant> stack;
  stack.reserve(arguments.size() + 1);
  for (Argument& argument : arguments)
    stack.push_back(argument.reference());
  if (function.hasResult()) {
    const VARTYPE type = function.typeOf(function.argumentCount());
    if (type == VT_VARIANT) {
      stack.push_back(Variant::reference(resultValue));
    } else {
      resultValue.vt = type;
      resultValue.llVal = 0;
      Variant reference;
      reference.vt = static_cast<VARTYPE>(type | VT_BYREF);
      reference.byref = &resultValue.byref;
      stack.push_back(std::move(reference));
    }
  }

  std::vector<VARTYPE> types;
  std::vector<VARIANTARG*> places;
  for (Variant& entry : stack) {
    types.push_back(entry.vt);
    places.push_back(&entry);
  }
  Variant returned;
  SetErrorInfo(0, nullptr);  // so that no earlier call's words pass for this one's
  const HRESULT called = DispCallFunc(&object, function.slotOffset(), function.callingConvention(), VT_I4,
                                      static_cast<UINT>(stack.size()), types.data(), places.data(), &returned);
  if (FAILED(called)) return called;
  if (FAILED(returned.lVal))
    return fillExcepInfo(takeErrorInfo(returned.lVal, object, interfaceOf(slots), "Quillon", function.name()), info);

  for (Argument& argument : arguments) {
    const HRESULT code = argument.returnToCaller();
    if (code == E_OUTOFMEMORY) return code;
    if (FAILED(code)) {
      if (badArgument) *badArgument = argument.position();
      return DISP_E_TYPEMISMATCH;
    }
  }
  if (result) *result = resultValue.release();
  return S_OK;
}

}  // namespace

HRESULT invokeDual(ITypeInfo& slots, IDispatch& object, DISPID id, WORD kind, const DISPPARAMS* parameters,
                   VARIANT* result, EXCEPINFO* info, UINT* badArgument) noexcept {
  if (!parameters) return E_POINTER;
  try {
    return invoke(slots, object, id, kind, *parameters, result, info, badArgument);
  } catch (const Refusal& refusal) {
    if (badArgument) *badArgument = refusal.position;
    return refusal.code;
  } catch (const AutomationError& error) {
    return error.code();
  } catch (const std::bad_alloc&) {
    return E_OUTOFMEMORY;
  } catch (...) {
    return E_UNEXPECTED;
  }
}

}  // namespace quillon::automation
