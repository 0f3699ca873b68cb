#include "workbench/com/login_object.h"

#include <memory>
#include <string>
#include <utility>

#include "automation/dispatch_object.h"
#include "component/platform_bindings.h"
#include "workbench/com/number_or_text.h"

namespace quillon::workbench {

using automation::Call;
using automation::ComPtr;
using automation::DispatchObject;
using automation::makeObject;
using automation::readable;
using automation::toText;
using automation::Variant;
using automation::writable;
namespace bindings = component::bindings;

namespace {

class ExposedLogin : public DispatchObject<ExposedLogin> {
 public:
  static std::span<const Member> members() {
    static constexpr Member table[] = {
        {bindings::login::accountConnection, 1, readable, 0, 0, &ExposedLogin::accountConnection},
        {bindings::login::password, 2, readable, 0, 0, &ExposedLogin::password},
        {bindings::login::accountCode, 3, readable, 0, 0, &ExposedLogin::accountCode},
        {bindings::login::accountingYear, 4, readable, 0, 0, &ExposedLogin::accountingYear},
        {bindings::login::accountingYearText, 5, readable, 0, 0, &ExposedLogin::accountingYearText},
        {bindings::login::languageRegion, 6, readable, 0, 0, &ExposedLogin::languageRegion},
        {bindings::login::languageId, 7, readable, 0, 0, &ExposedLogin::languageId},
        {bindings::login::currentPeriodYear, 8, readable, 0, 0, &ExposedLogin::currentPeriodYear},
        {bindings::login::businessDate, 9, readable, 0, 0, &ExposedLogin::businessDate},
        {bindings::login::authString, 10, readable | writable, 0, 0, &ExposedLogin::authString},
        {bindings::login::moduleCode, 11, readable, 0, 0, &ExposedLogin::moduleCode},
    };
    return table;
  }

  explicit ExposedLogin(std::shared_ptr<Login> login) : login_(std::move(login)) {}

 private:
  Variant accountConnection(Call&) { return login_->accountConnection(); }
  Variant password(Call&) { return login_->password(); }
  Variant accountCode(Call&) { return login_->accountCode(); }
  Variant accountingYear(Call&) { return numberOrText(login_->accountingYear()); }
  Variant accountingYearText(Call&) { return login_->accountingYearText(); }
  Variant languageRegion(Call&) { return login_->languageRegion(); }
  Variant languageId(Call&) { return numberOrText(login_->languageId()); }
  Variant currentPeriodYear(Call&) { return login_->currentPeriodYear(); }
  Variant businessDate(Call&) { return login_->businessDate(); }
  Variant authString(Call& call) {
    if (call.assigns()) {
      authString_ = toText(call.assigned());
      login_->setAuthString(authString_);
    }
    return authString_;
  }
  Variant moduleCode(Call&) { return login_->moduleCode(); }
  const char* sourceName() const override { return "Quillon login"; }

  std::shared_ptr<Login> login_;
  std::string authString_;
};

}  // namespace

ComPtr<IDispatch> loginObject(std::shared_ptr<Login> login) {
  return makeObject<ExposedLogin>(std::move(login));
}

}  // namespace quillon::workbench
