#include "tests/component/fake_object.h"

#include <utility>

#include "automation/text.h"
#include "frame/automation_error.h"

namespace quillon::component::test {

using automation::Call;
using automation::callable;
using automation::dereferenced;
using automation::DispatchBase;
using automation::isMissing;
using automation::readable;
using automation::toText;
using automation::toUtf8;
using automation::Variant;
using automation::writable;

void Recorder::record(const std::string& call) {
  calls.push_back(call);
  const std::size_t number = calls.size();
  if (number == interruptAt && interruption) std::exchange(interruption, {})();
  if (number == failAt) throw AutomationError(failure, "Fake", "refused: " + call);
}

namespace {

std::string shownList(SAFEARRAY& list) {
  LONG last = -1;
  SafeArrayGetUBound(&list, 1, &last);
  std::string text = "[";
  for (LONG index = 0; index <= last; ++index) {
    Variant element;
    SafeArrayGetElement(&list, &index, element.out());
    text += (index > 0 ? ", " : "") + shown(element);
  }
  return text + "]";
}

}  // namespace

std::string shown(const VARIANT& value) {
  if (value.vt & VT_BYREF) return "ref " + shown(dereferenced(value));
  if (isMissing(value)) return "missing";
  switch (value.vt) {
    case VT_EMPTY:
      return "Empty";
    case VT_NULL:
      return "Null";
    case VT_BSTR:
      return '"' + toText(value) + '"';
    case VT_DISPATCH: {
      if (!value.pdispVal) return "Nothing";
      const auto* object = dynamic_cast<const FakeObject*>(value.pdispVal);
      return "<" + (object ? object->name() : "object") + ">";
    }
    case VT_ARRAY | VT_VARIANT:
      return shownList(*value.parray);
    default:
      return toText(value);
  }
}

FakeObject& FakeObject::on(const wchar_t* member, Handler handler, DISPID id) {
  // Ids that no one sets by hand lie apart from those that are.
  const DISPID given = id == DISPID_UNKNOWN ? nextId_++ : id;
  rows_.push_back({member, given, std::move(handler)});
  return *this;
}

FakeObject& FakeObject::property(const wchar_t* member, Variant value, DISPID id) {
  values_[member] = std::move(value);
  return on(
      member,
      [this, key = std::wstring(member)](Call& call) -> Variant {
        if (!call.assigns()) return values_[key];
        values_[key] = call.assigned();
        return {};
      },
      id);
}

FakeObject& FakeObject::without(const wchar_t* member) {
  std::erase_if(rows_, [member](const Row& row) { return row.name == member; });
  return *this;
}

STDMETHODIMP FakeObject::Invoke(DISPID id, REFIID reserved, LCID locale, WORD kind, DISPPARAMS* parameters,
                                VARIANT* result, EXCEPINFO* info, UINT* badArgument) {
  // A call may lead to another of the same object before it is through.
  const DISPPARAMS* outer = std::exchange(parameters_, parameters);
  const HRESULT code = DispatchBase::Invoke(id, reserved, locale, kind, parameters, result, info, badArgument);
  parameters_ = outer;
  return code;
}

DispatchBase::MemberInfo FakeObject::member(std::size_t index) const {
  constexpr std::size_t many = 16;
  return {rows_[index].name.c_str(), rows_[index].id, static_cast<WORD>(readable | writable | callable), 0, many};
}

Variant FakeObject::run(std::size_t index, Call& call) {
  std::string text = name_ + "." + toUtf8(std::wstring_view(rows_[index].name));
  if (call.assigns()) {
    text += " = " + shown(parameters_->rgvarg[0]);
  } else if (parameters_->cArgs > 0) {
    text += "(";
    for (UINT i = parameters_->cArgs; i > 0; --i)
      text += shown(parameters_->rgvarg[i - 1]) + (i > 1 ? ", " : ")");
  }
  recorder_.record(text);
  return rows_[index].handler(call);
}

}  // namespace quillon::component::test
