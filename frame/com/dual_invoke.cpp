#include "frame/com/dual_invoke.h"

#include <cstddef>
#include <new>
#include <string>
#include <utility>
#include <vector>

#include "frame/automation_error.h"
#include "frame/com/com_ptr.h"
#include "frame/com/errors.h"
#include "frame/com/variant.h"

namespace quillon::com {

namespace {

// What ends a call before the member is reached.
struct Refusal {
  HRESULT code;
  UINT position = 0;  // of the argument in DISPPARAMS, where one is to blame
};

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

// An argument as the member takes it: a variable of the member's type that the call refers to.
class Argument {
 public:
  // Throws AutomationError when `given` cannot be turned into `type`.
  Argument(VARIANT& given, UINT position, VARTYPE type) : given_(&given), position_(position), type_(type) {
    switch (type) {
      case VT_VARIANT:
        value_ = dereferenced(given);
        break;
      case VT_BSTR:
        // Null is no text; everything else that has a text form is taken.
        if (isNull(given)) throw AutomationError(hresult::typeMismatch, "Quillon", "Null is not a text.");
        value_ = toText(given);
        break;
      case VT_BOOL:
        value_ = toFlag(given);
        break;
      case VT_DISPATCH:
        value_ = toObject(given);
        break;
      default:
        throw AutomationError(hresult::typeMismatch, "Quillon", "The member takes a type that is not supported.");
    }
    before_ = value_;
  }

  UINT position() const { return position_; }

  // What goes on the stack: a reference to the value.
  Variant reference() {
    if (type_ == VT_VARIANT) return Variant::reference(value_);
    Variant reference;
    reference.vt = static_cast<VARTYPE>(type_ | VT_BYREF);
    reference.byref = &value_.byref;
    return reference;
  }

  // Gives a changed value back to the caller. A variable that the member left alone keeps its own value and form.
  HRESULT returnToCaller() { return changed() ? writeBack(*given_, value_) : S_OK; }

 private:
  bool changed() const {
    switch (type_) {
      case VT_BSTR:
        return toUtf8(value_.bstrVal) != toUtf8(before_.bstrVal);
      case VT_BOOL:
        return value_.boolVal != before_.boolVal;
      case VT_DISPATCH:
        return value_.pdispVal != before_.pdispVal;
      default:
        return true;
    }
  }

  VARIANT* given_;
  UINT position_;
  VARTYPE type_;
  Variant value_;
  Variant before_;
};

constexpr UINT notGiven = static_cast<UINT>(-1);

// Where in DISPPARAMS each of the member's arguments stands: named ones first, the others last to first behind them.
std::vector<UINT> positionsOf(const DISPPARAMS& parameters, UINT count, bool assigns) {
  if (parameters.cArgs > count) throw Refusal{DISP_E_BADPARAMCOUNT};
  if (parameters.cNamedArgs > parameters.cArgs) throw Refusal{E_INVALIDARG};
  std::vector<UINT> positions(count, notGiven);
  for (UINT i = parameters.cNamedArgs; i < parameters.cArgs; ++i)
    positions[parameters.cArgs - 1 - i] = i;
  for (UINT i = 0; i < parameters.cNamedArgs; ++i) {
    DISPID name = parameters.rgdispidNamedArgs[i];
    // The assigned value has a name of its own and is the last argument.
    if (assigns && name == DISPID_PROPERTYPUT) name = static_cast<DISPID>(count) - 1;
    if (name < 0 || static_cast<UINT>(name) >= count || positions[static_cast<UINT>(name)] != notGiven)
      throw Refusal{DISP_E_PARAMNOTFOUND, i};
    positions[static_cast<UINT>(name)] = i;
  }
  return positions;
}

std::vector<Argument> argumentsOf(const Function& function, const DISPPARAMS& parameters, bool assigns) {
  const std::vector<UINT> positions = positionsOf(parameters, function.argumentCount(), assigns);
  std::vector<Argument> arguments;
  // The call refers to these by their addresses.
  arguments.reserve(positions.size());
  for (UINT i = 0; i < positions.size(); ++i) {
    if (positions[i] == notGiven) throw Refusal{DISP_E_BADPARAMCOUNT};
    VARIANT& given = parameters.rgvarg[positions[i]];
    try {
      if (isMissing(given) && function.typeOf(i) != VT_VARIANT) throw Refusal{DISP_E_PARAMNOTOPTIONAL, positions[i]};
      arguments.emplace_back(given, positions[i], function.typeOf(i));
    } catch (const AutomationError&) {
      throw Refusal{DISP_E_TYPEMISMATCH, positions[i]};
    }
  }
  return arguments;
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
  std::vector<Argument> arguments = argumentsOf(function, parameters, assigns);

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

}  // namespace quillon::com
