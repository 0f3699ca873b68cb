#include <array>
#include <cstddef>
#include <deque>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "automation/com_object.h"
#include "automation/invoke_arguments.h"
#include "frame/automation_error.h"
#include "tests/fuzz/targets.h"

namespace quillon::fuzz {

namespace {

using namespace automation;

// Reads the input byte by byte; zeros behind its end.
class Bytes {
 public:
  explicit Bytes(std::string_view input) : input_(input) {}

  std::uint8_t next() { return at_ < input_.size() ? static_cast<std::uint8_t>(input_[at_++]) : std::uint8_t{0}; }
  // 0 .. `count` - 1
  unsigned below(unsigned count) { return next() % count; }
  std::uint64_t number(int bytes) {
    std::uint64_t value = 0;
    for (int i = 0; i < bytes; ++i)
      value = value << 8U | next();
    return value;
  }

 private:
  std::string_view input_;
  std::size_t at_ = 0;
};

// An object whose default member gives a value, or fails when there is none.
class Holder : public ComObject<IDispatch> {
 public:
  explicit Holder(std::optional<Variant> value) : value_(std::move(value)) {}

  STDMETHODIMP QueryInterface(REFIID id, void** object) override {
    *object = nullptr;
    if (id != IID_IUnknown && id != IID_IDispatch) return E_NOINTERFACE;
    *object = static_cast<IDispatch*>(this);
    AddRef();
    return S_OK;
  }
  STDMETHODIMP GetTypeInfoCount(UINT* /*count*/) override { return E_NOTIMPL; }
  STDMETHODIMP GetTypeInfo(UINT /*index*/, LCID /*locale*/, ITypeInfo** /*info*/) override { return E_NOTIMPL; }
  STDMETHODIMP GetIDsOfNames(REFIID /*reserved*/, LPOLESTR* /*names*/, UINT /*count*/, LCID /*locale*/,
                             DISPID* /*ids*/) override {
    return E_NOTIMPL;
  }
  STDMETHODIMP Invoke(DISPID id, REFIID /*reserved*/, LCID /*locale*/, WORD /*kind*/, DISPPARAMS* /*parameters*/,
                      VARIANT* result, EXCEPINFO* /*info*/, UINT* /*badArgument*/) override {
    if (id != DISPID_VALUE || !value_) return DISP_E_MEMBERNOTFOUND;
    *result = Variant(*value_).release();
    return S_OK;
  }

 private:
  std::optional<Variant> value_;
};

// A caller with its variables. The input says what it passes.
class Caller {
 public:
  explicit Caller(Bytes& bytes) : bytes_(bytes) {}

  // One argument in any form; a reference stays valid as long as the caller does.
  Variant argument(int depth = 0) {
    constexpr int deepest = 4;
    const unsigned form = depth == deepest ? 0 : bytes_.below(8);
    switch (form) {
      case 4:
        return typedReference(value(depth));
      case 5: {
        const Variant inner = argument(depth + 1);
        return Variant::reference(variables_.emplace_back(inner));
      }
      case 6:
        return nowhere();
      case 7:
        return toItself();
      default:
        return value(depth);
    }
  }

 private:
  Variant text() {
    std::wstring units(bytes_.below(12), L'\0');
    for (wchar_t& unit : units)
      unit = static_cast<wchar_t>(bytes_.below(2) == 0 ? bytes_.number(1) : bytes_.number(2));
    Variant result;
    result.bstrVal = makeBstr(std::wstring_view(units));
    result.vt = VT_BSTR;
    return result;
  }

  Variant scalar(VARTYPE type, int size) {
    Variant result;
    result.ullVal = bytes_.number(size);
    if (type == VT_BOOL) result.boolVal = result.boolVal % 2 == 0 ? VARIANT_FALSE : VARIANT_TRUE;
    result.vt = type;
    return result;
  }

  Variant list(int depth) {
    std::vector<std::string> texts(bytes_.below(4), "x");
    Variant result = Variant::textArray(texts);
    for (LONG index = 0; index < static_cast<LONG>(texts.size()); ++index) {
      Variant element = value(depth + 1);
      SafeArrayPutElement(result.parray, &index, &element);
    }
    return result;
  }

  // A value that is no reference.
  Variant value(int depth) {
    constexpr int deepest = 4;
    constexpr struct {
      VARTYPE type;
      int size;
    } scalars[] = {{VT_I1, 1},  {VT_UI1, 1}, {VT_I2, 2},   {VT_UI2, 2},  {VT_BOOL, 1}, {VT_I4, 4},
                   {VT_UI4, 4}, {VT_INT, 4}, {VT_UINT, 4}, {VT_R4, 4},   {VT_I8, 8},   {VT_UI8, 8},
                   {VT_R8, 8},  {VT_CY, 8},  {VT_DATE, 8}, {VT_ERROR, 4}};
    switch (bytes_.below(depth >= deepest ? 4 : 8)) {
      case 0:
        return text();
      case 1: {
        const auto& [type, size] = scalars[bytes_.below(static_cast<unsigned>(std::size(scalars)))];
        return scalar(type, size);
      }
      case 2: {
        constexpr std::array plain{VT_EMPTY, VT_NULL};
        Variant result;
        result.vt = static_cast<VARTYPE>(plain[bytes_.below(2)]);
        return result;
      }
      case 3:
        return Variant::missing();
      case 4: {
        Variant held = value(depth + 1);
        return makeObject<Holder>(bytes_.below(4) == 0 ? std::nullopt : std::optional(held));
      }
      case 5: {
        Variant nothing(static_cast<IDispatch*>(nullptr));
        if (bytes_.below(2) == 0) nothing.vt = VT_UNKNOWN;
        return nothing;
      }
      case 6:
        return list(depth);
      default: {
        Variant result = makeObject<Holder>(std::nullopt);
        result.vt = VT_UNKNOWN;
        return result;
      }
    }
  }

  Variant typedReference(Variant held) {
    Variant& variable = variables_.emplace_back(std::move(held));
    Variant result;
    // There are no variables without a type.
    if (variable.vt == VT_EMPTY || variable.vt == VT_NULL) return Variant::reference(variable);
    result.byref = &variable.byref;
    result.vt = static_cast<VARTYPE>(variable.vt | VT_BYREF);
    return result;
  }

  Variant nowhere() {
    constexpr std::array types{VT_VARIANT, VT_BSTR, VT_I4, VT_DISPATCH, VT_BOOL, VT_DATE};
    Variant result;
    result.byref = nullptr;
    result.vt = static_cast<VARTYPE>(types[bytes_.below(static_cast<unsigned>(types.size()))] | VT_BYREF);
    return result;
  }

  // No client should, but one can: references that lead back to themselves.
  Variant toItself() {
    Variant& first = variables_.emplace_back();
    Variant& second = variables_.emplace_back(Variant::reference(first));
    static_cast<VARIANT&>(first) = Variant::reference(second);
    return Variant::reference(first);
  }

  Bytes& bytes_;
  std::deque<Variant> variables_;
};

// A text of automation goes through the library and back without loss; bytes that are no text become one that does.
void checkText(std::string_view input) {
  const std::wstring wide = toWide(input);
  require(toWide(toUtf8(wide)) == wide, "a text of automation comes back as it was");
  std::wstring units;
  for (std::size_t i = 0; i + 1 < input.size(); i += 2) {
    units += static_cast<wchar_t>(static_cast<unsigned>(static_cast<unsigned char>(input[i])) << 8U |
                                  static_cast<unsigned char>(input[i + 1]));
  }
  const Bstr text(units);
  const Bstr back(text.utf8());
  require(SysStringLen(back.get()) == units.size() && std::wstring(back.get(), units.size()) == units,
          "whatever an automation string holds comes back as it was");
}

// Whatever can be read of a value, in each form; the rest is a type mismatch.
struct Readings {
  std::optional<std::string> text;
  std::optional<int> integer;
  friend bool operator==(const Readings&, const Readings&) = default;
};

template <class Read>
auto readOrRefused(Read read) -> std::optional<decltype(read())> {
  try {
    return read();
  } catch (const AutomationError& error) {
    require(error.code() == hresult::typeMismatch, "what cannot be read is a type mismatch");
    return std::nullopt;
  }
}

Readings readingsOf(const VARIANT& value) {
  readOrRefused([&] { return toFlag(value); });
  readOrRefused([&] { return toTexts(value); });
  readOrRefused([&] { return toObject(value).get() != nullptr; });
  readOrRefused([&] { return isMissing(value); });
  return {readOrRefused([&] { return toText(value); }), readOrRefused([&] { return toInteger(value); })};
}

// What the member does to an argument: nothing, or another value.
void changeAsMember(Bytes& bytes, VARTYPE type, const Variant& reference, const ComPtr<Holder>& object) {
  if (bytes.below(2) == 0) return;
  switch (type) {
    case VT_BSTR:
      SysFreeString(std::exchange(*reference.pbstrVal, makeBstr(std::string_view("7"))));
      break;
    case VT_BOOL:
      *reference.piVal = VARIANT_TRUE;
      break;
    case VT_DISPATCH:
      if (IDispatch* old = std::exchange(*reference.ppdispVal, ComPtr<Holder>(object).release())) old->Release();
      break;
    default:
      *static_cast<Variant*>(reference.pvarVal) = Variant(7);
  }
}

void checkCall(Bytes& bytes) {
  constexpr std::array kinds{VT_VARIANT, VT_BSTR, VT_BOOL, VT_DISPATCH};
  constexpr unsigned mostArguments = 4;
  Caller caller(bytes);
  std::vector<VARTYPE> types(bytes.below(mostArguments + 1));
  for (VARTYPE& type : types)
    type = static_cast<VARTYPE>(kinds[bytes.below(static_cast<unsigned>(kinds.size()))]);
  const bool assigns = bytes.below(4) == 0;

  // Mostly as many as the member takes.
  std::vector<Variant> given;
  const std::size_t count = bytes.below(4) == 0 ? bytes.below(mostArguments + 2) : types.size();
  for (std::size_t i = 0; i < count; ++i)
    given.push_back(caller.argument());
  std::vector<DISPID> names(bytes.below(3) == 0 ? bytes.below(static_cast<unsigned>(count) + 2) : (assigns ? 1 : 0));
  for (DISPID& name : names)
    name = static_cast<DISPID>(bytes.below(8)) - 3;
  DISPPARAMS parameters{given.data(), names.data(), static_cast<UINT>(given.size()), static_cast<UINT>(names.size())};

  std::vector<Readings> before;
  before.reserve(given.size());
  for (const Variant& value : given)
    before.push_back(readingsOf(value));
  try {
    std::vector<Argument> arguments = takeArguments(types, parameters, assigns);
    require(arguments.size() == types.size(), "a member gets all of its arguments");
    for (std::size_t i = 0; i < arguments.size(); ++i) {
      const Argument& argument = arguments[i];
      require(argument.position() < given.size(), "an argument has its place in the call");
      const Variant reference = arguments[i].reference();
      require(reference.vt == (types[i] | VT_BYREF), "a member gets what it takes");
      if (types[i] == VT_BSTR) {
        require(toText(reference) == before[argument.position()].text, "a member gets the text that the caller gave");
      }
    }
    for (Argument& argument : arguments)
      require(argument.returnToCaller() == S_OK, "a variable that the member left alone takes its value back");
    for (std::size_t i = 0; i < given.size(); ++i)
      require(readingsOf(given[i]) == before[i], "a variable that the member left alone keeps its value");

    const ComPtr<Holder> object = makeObject<Holder>(std::nullopt);
    for (std::size_t i = 0; i < arguments.size(); ++i)
      changeAsMember(bytes, types[i], arguments[i].reference(), object);
    for (Argument& argument : arguments) {
      const HRESULT code = argument.returnToCaller();
      require(code == S_OK || code == DISP_E_TYPEMISMATCH,
              "a variable takes what the member gave or is of another type");
    }
  } catch (const Refusal& refusal) {
    require(refusal.code == DISP_E_BADPARAMCOUNT || refusal.code == E_INVALIDARG ||
                refusal.code == DISP_E_PARAMNOTFOUND || refusal.code == DISP_E_PARAMNOTOPTIONAL ||
                refusal.code == DISP_E_TYPEMISMATCH,
            "a call that does not fit ends with automation's own code");
    require(refusal.position == 0 || refusal.position < given.size(), "the argument to blame is one of the call's");
  }
}

}  // namespace

void checkArguments(std::string_view input) {
  const long alive = LiveCount::value();
  checkText(input);
  Bytes bytes(input);
  checkCall(bytes);
  require(LiveCount::value() == alive, "no reference is left");
}

}  // namespace quillon::fuzz
