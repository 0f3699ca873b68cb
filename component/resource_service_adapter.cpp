#include "component/resource_service_adapter.h"

#include <utility>

#include "automation/errors.h"
#include "component/adapter_of.h"
#include "component/login_adapter.h"
#include "frame/automation_error.h"

namespace quillon::component {

using automation::Bstr;
using automation::LateBound;
using automation::takeErrorInfo;
using automation::Variant;

EarlyBoundResourceService::EarlyBoundResourceService(const LateBound& service) : name_(service.name()) {
  const HRESULT code =
      service.get()->QueryInterface(bindings::resourceServiceId, reinterpret_cast<void**>(service_.out()));
  if (FAILED(code))
    throw AutomationError(code, std::string(automation::ownSource),
                          name_ +
                              " does not offer the resource service's interface: register the version that "
                              "belongs to this platform.");
}

template <class Operation>
void EarlyBoundResourceService::call(std::string_view member, Operation operation) const {
  SetErrorInfo(0, nullptr);  // so that no earlier call's words pass for this one's
  const HRESULT code = operation();
  if (FAILED(code)) throw takeErrorInfo(code, *service_, bindings::resourceServiceId, name_, member);
}

void EarlyBoundResourceService::takeLogin(Login& login) {
  Bstr none;
  const Variant object(adapterOf<LateBoundLogin>(login).object());
  call("FormatText", [&] { return service_->FormatText(object, Variant::missing(), none.out()); });
}

std::string EarlyBoundResourceService::enumName(std::string_view type, std::string_view code) {
  const Bstr typeText(type);
  const Bstr codeText(code);
  Bstr name;
  call("EnumName", [&] { return service_->EnumName(typeText.get(), codeText.get(), name.out()); });
  return name.utf8();
}

std::string EarlyBoundResourceService::text(std::string_view key) {
  const Bstr keyText(key);
  Bstr text;
  call("Text", [&] { return service_->Text(keyText.get(), text.out()); });
  return text.utf8();
}

std::string EarlyBoundResourceService::formattedText(std::string_view key, const std::vector<std::string>& arguments) {
  const Variant keyText(key);
  const Variant list = Variant::textArray(arguments);
  Bstr text;
  call("FormatText", [&] { return service_->FormatText(keyText, list, text.out()); });
  return text.utf8();
}

void EarlyBoundResourceService::showMessage(std::string_view text, int flags) {
  const Bstr message(text);
  call("ShowMessage", [&] { return service_->ShowMessage(message.get(), flags, 0, 0); });
}

void KeysAsTexts::takeLogin(Login& /*login*/) {}

std::string KeysAsTexts::enumName(std::string_view /*type*/, std::string_view code) {
  return std::string(code);
}

std::string KeysAsTexts::text(std::string_view key) {
  return std::string(key);
}

std::string KeysAsTexts::formattedText(std::string_view key, const std::vector<std::string>& arguments) {
  std::string text(key);
  const char* separator = " (";
  for (const std::string& argument : arguments)
    text += std::exchange(separator, ", ") + argument;
  return arguments.empty() ? text : text + ")";
}

void KeysAsTexts::showMessage(std::string_view text, int /*flags*/) {
  throw AutomationError(
      hresult::fail, "Quillon",
      "The platform's message service is not registered, so this message could not be shown: " + std::string(text));
}

}  // namespace quillon::component
