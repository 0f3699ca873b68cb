#include "automation/late_bound.h"

#include <algorithm>
#include <utility>
#include <vector>

#include "automation/errors.h"

namespace quillon::automation {

namespace {

// Basic passes this when it reads a value: the member may be a property or a function.
constexpr WORD readKind = DISPATCH_METHOD | DISPATCH_PROPERTYGET;

}  // namespace

void LateBound::fail(HRESULT code, const wchar_t* member) const {
  throw AutomationError(code, std::string(ownSource),
                        name_ + "." + toUtf8(std::wstring_view(member)) + ": " + systemMessage(code));
}

HRESULT LateBound::find(const wchar_t* member, DISPID& id) const {
  if (!object_)
    throw AutomationError(hresult::objectNotSet, std::string(ownSource),
                          name_ + " is not set: its member " + toUtf8(std::wstring_view(member)) + " cannot be used.");
  std::wstring name(member);
  LPOLESTR names[] = {name.data()};
  return object_->GetIDsOfNames(IID_NULL, names, 1, LOCALE_USER_DEFAULT, &id);
}

DISPID LateBound::idOf(const wchar_t* member) const {
  DISPID id = DISPID_UNKNOWN;
  const HRESULT code = find(member, id);
  if (FAILED(code)) fail(code, member);
  return id;
}

bool LateBound::offers(const wchar_t* member) const {
  DISPID id = DISPID_UNKNOWN;
  const HRESULT code = find(member, id);
  if (FAILED(code) && code != DISP_E_UNKNOWNNAME) fail(code, member);
  return SUCCEEDED(code);
}

HRESULT LateBound::tryInvoke(DISPID id, const wchar_t* member, WORD kind, std::span<const Variant> arguments,
                             Variant& result) const {
  // Automation wants the arguments last to first. The array borrows what the arguments hold.
  std::vector<VARIANT> reversed(arguments.rbegin(), arguments.rend());
  DISPID assigned = DISPID_PROPERTYPUT;
  DISPPARAMS parameters{reversed.data(), nullptr, static_cast<UINT>(reversed.size()), 0};
  const bool put = (kind & (DISPATCH_PROPERTYPUT | DISPATCH_PROPERTYPUTREF)) != 0;
  if (put) {
    parameters.rgdispidNamedArgs = &assigned;
    parameters.cNamedArgs = 1;
  }
  EXCEPINFO info{};
  UINT badArgument = 0;
  const HRESULT code = object_->Invoke(id, IID_NULL, LOCALE_USER_DEFAULT, kind, &parameters,
                                       put ? nullptr : result.out(), &info, &badArgument);
  if (code == DISP_E_EXCEPTION) throw takeExcepInfo(info, name_, toUtf8(std::wstring_view(member)));
  return code;
}

Variant LateBound::invoke(DISPID id, const wchar_t* member, WORD kind, std::span<const Variant> arguments) const {
  Variant result;
  const HRESULT code = tryInvoke(id, member, kind, arguments, result);
  if (FAILED(code)) fail(code, member);
  return result;
}

void LateBound::call(const wchar_t* member, std::initializer_list<Variant> arguments) const {
  call(member, std::span<const Variant>(arguments.begin(), arguments.size()));
}

void LateBound::call(const wchar_t* member, std::span<const Variant> arguments) const {
  invoke(idOf(member), member, DISPATCH_METHOD, arguments);
}

Variant LateBound::get(const wchar_t* member, std::initializer_list<Variant> arguments) const {
  return invoke(idOf(member), member, readKind, {arguments.begin(), arguments.size()});
}

void LateBound::put(const wchar_t* member, Variant value) const {
  invoke(idOf(member), member, DISPATCH_PROPERTYPUT, {&value, 1});
}

void LateBound::putObject(const wchar_t* member, const ComPtr<IDispatch>& object) const {
  const DISPID id = idOf(member);
  const Variant value(object);
  Variant none;
  HRESULT code = tryInvoke(id, member, DISPATCH_PROPERTYPUTREF, {&value, 1}, none);
  if (code == DISP_E_MEMBERNOTFOUND) code = tryInvoke(id, member, DISPATCH_PROPERTYPUT, {&value, 1}, none);
  if (FAILED(code)) fail(code, member);
}

Variant LateBound::getById(DISPID id, const wchar_t* member, std::initializer_list<Variant> arguments) const {
  if (!object_) static_cast<void>(idOf(member));
  return invoke(id, member, readKind, {arguments.begin(), arguments.size()});
}

template <class Read>
auto LateBound::converted(const wchar_t* member, const Variant& value, Read convert) const {
  try {
    return convert(value);
  } catch (const AutomationError& error) {
    // What an object said of its own value stays as it is.
    if (error.source() != ownSource) throw;
    throw AutomationError(error.code(), error.source(),
                          name_ + "." + toUtf8(std::wstring_view(member)) + ": " + error.description());
  }
}

template <class Read>
auto LateBound::read(const wchar_t* member, std::initializer_list<Variant> arguments, Read convert) const {
  return converted(member, get(member, arguments), convert);
}

std::string LateBound::text(const wchar_t* member, std::initializer_list<Variant> arguments) const {
  return read(member, arguments, [](const VARIANT& value) { return toText(value); });
}

int LateBound::integer(const wchar_t* member, std::initializer_list<Variant> arguments) const {
  return read(member, arguments, [](const VARIANT& value) { return toInteger(value); });
}

bool LateBound::flag(const wchar_t* member, std::initializer_list<Variant> arguments) const {
  return read(member, arguments, [](const VARIANT& value) { return toFlag(value); });
}

LateBound LateBound::object(const wchar_t* member, std::string resultName,
                            std::initializer_list<Variant> arguments) const {
  return {read(member, arguments,
               [](const VARIANT& value) {
                 ComPtr<IDispatch> object = toObject(value);
                 if (!object)
                   throw AutomationError(hresult::objectNotSet, std::string(ownSource), "The object is not set.");
                 return object;
               }),
          std::move(resultName)};
}

LateBound LateBound::objectIfAny(const wchar_t* member, std::string resultName) const {
  DISPID id = DISPID_UNKNOWN;
  HRESULT code = find(member, id);
  if (code == DISP_E_UNKNOWNNAME) return {};
  if (FAILED(code)) fail(code, member);
  Variant value;
  code = tryInvoke(id, member, readKind, {}, value);
  if (code == DISP_E_MEMBERNOTFOUND) return {};
  if (FAILED(code)) fail(code, member);
  ComPtr<IDispatch> object = converted(member, value, [](const VARIANT& held) {
    const Variant plain = dereferenced(held);
    return plain.vt == VT_EMPTY || plain.vt == VT_NULL ? ComPtr<IDispatch>() : toObject(plain);
  });
  if (!object) return {};
  return {std::move(object), std::move(resultName)};
}

LateBound LateBound::item(Variant index, std::string resultName) const {
  const Variant value = getById(DISPID_VALUE, L"Item", {std::move(index)});
  ComPtr<IDispatch> object = toObject(value);
  if (!object) fail(hresult::objectNotSet, L"Item");
  return {std::move(object), std::move(resultName)};
}

}  // namespace quillon::automation
