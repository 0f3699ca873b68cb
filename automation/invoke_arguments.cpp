#include "automation/invoke_arguments.h"

#include <cstddef>

#include "frame/automation_error.h"

namespace quillon::automation {

Argument::Argument(VARIANT& given, UINT position, VARTYPE type) : given_(&given), position_(position), type_(type) {
  switch (type) {
    case VT_VARIANT:
      value_ = dereferenced(given);
      break;
    case VT_BSTR:
      // Null is no text; everything else that has a text form is taken.
      if (isNull(given)) throw AutomationError(hresult::typeMismatch, "Quillon", "Null is not a text.");
      value_ = toText(given);
      break;
    case VT_BOOL: {
      // What only counts as True comes in as 1: a member that sets True then leaves another value than it was given.
      const Variant plain = dereferenced(given);
      const bool exactlyTrue = plain.vt == VT_BOOL && plain.boolVal == VARIANT_TRUE;
      value_ = toFlag(given);
      if (value_.boolVal != VARIANT_FALSE && !exactlyTrue) value_.boolVal = 1;
      break;
    }
    case VT_DISPATCH:
      value_ = toObject(given);
      break;
    default:
      throw AutomationError(hresult::typeMismatch, "Quillon", "The member takes a type that is not supported.");
  }
  before_ = value_;
}

Variant Argument::reference() {
  if (type_ == VT_VARIANT) return Variant::reference(value_);
  Variant reference;
  reference.vt = static_cast<VARTYPE>(type_ | VT_BYREF);
  reference.byref = &value_.byref;
  return reference;
}

HRESULT Argument::returnToCaller() {
  return changed() ? writeBack(*given_, value_) : S_OK;
}

bool Argument::changed() const {
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

namespace {

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

}  // namespace

std::vector<Argument> takeArguments(std::span<const VARTYPE> types, const DISPPARAMS& parameters, bool assigns) {
  const std::vector<UINT> positions = positionsOf(parameters, static_cast<UINT>(types.size()), assigns);
  std::vector<Argument> arguments;
  // The call refers to these by their addresses.
  arguments.reserve(positions.size());
  for (std::size_t i = 0; i < positions.size(); ++i) {
    const UINT position = positions[i];
    if (position == notGiven) throw Refusal{DISP_E_BADPARAMCOUNT};
    VARIANT& given = parameters.rgvarg[position];
    try {
      if (isMissing(given) && types[i] != VT_VARIANT) throw Refusal{DISP_E_PARAMNOTOPTIONAL, position};
      arguments.emplace_back(given, position, types[i]);
    } catch (const AutomationError&) {
      throw Refusal{DISP_E_TYPEMISMATCH, position};
    }
  }
  return arguments;
}

}  // namespace quillon::automation
