#include "frame/com/platform_objects.h"

#include <array>
#include <cstdio>

#include "frame/automation_error.h"
#include "frame/com/errors.h"

namespace quillon::com {

namespace {

// The automation object behind a port. The core only hands back what it got from here, so another kind of port is a
// mistake of ours, not of the platform.
template <class Adapter, class Port>
Adapter& adapterOf(Port& port) {
  return dynamic_cast<Adapter&>(port);
}

GUID newGuid() {
  GUID id{};
  const HRESULT code = CoCreateGuid(&id);
  if (FAILED(code)) throw AutomationError(code, "Quillon", "No unique name can be made: " + systemMessage(code));
  return id;
}

// A connection as Basic passes it to a ByRef parameter: the callee sees a variable that holds it, ours stays as it is.
class ConnectionVariable {
 public:
  explicit ConnectionVariable(Session& session) : object_(adapterOf<AdoSession>(session).connection().get()) {
    if (object_) object_->AddRef();
  }
  ConnectionVariable(const ConnectionVariable&) = delete;
  ConnectionVariable& operator=(const ConnectionVariable&) = delete;
  ~ConnectionVariable() {
    if (object_) object_->Release();
  }
  Variant reference() { return Variant::reference(object_); }

 private:
  IDispatch* object_;
};

}  // namespace

// --- Filter

void ComFilterItem::setGroupToken(int token) {
  item_.put(bindings::filter::groupToken, token);
}

std::string ComFilterItem::name() {
  return item_.text(bindings::filter::name);
}

std::string ComFilterItem::value() {
  return item_.text(bindings::filter::value);
}

std::string ComFilterItem::value2() {
  return item_.text(bindings::filter::value2);
}

bool ComFilterItem::rangeInput() {
  return item_.flag(bindings::filter::rangeInput);
}

bool ComFilterItem::multipleSelection() {
  return item_.flag(bindings::filter::multipleSelection);
}

std::string ComFilterItem::sqlText() {
  return item_.text(bindings::filter::sqlText);
}

LateBound ComFilter::list() const {
  return filter_.object(bindings::filter::filterList, "FilterList");
}

int ComFilter::count() {
  return list().integer(bindings::filter::count);
}

std::unique_ptr<FilterItem> ComFilter::item(int position) {
  return std::make_unique<ComFilterItem>(list().item(position, "filter item"));
}

std::unique_ptr<FilterItem> ComFilter::item(std::string_view key) {
  return std::make_unique<ComFilterItem>(list().item(key, "filter item"));
}

std::string ComFilter::whereWithToken(int token) {
  return filter_.text(bindings::filter::whereWithToken, {token});
}

// --- Filter dialog

std::string ComDialogItem::name() {
  return item_.text(bindings::filter::name);
}

std::string ComDialogItem::caption() {
  return item_.text(bindings::dialog::caption);
}

std::string ComDialogItem::value() {
  return item_.text(bindings::filter::value);
}

void ComDialogItem::setValue(std::string_view value) {
  item_.put(bindings::filter::value, value);
}

void ComDialogItem::setBounds(std::string_view lower, std::string_view upper) {
  item_.put(bindings::filter::value, lower);
  item_.put(bindings::filter::value2, upper);
}

void ComDialogItem::setListText(std::string_view choices) {
  item_.put(bindings::dialog::listText, choices);
}

void ComDialogItem::setListSource(std::string_view choicesOrStatement) {
  item_.put(bindings::dialog::listSource, choicesOrStatement);
}

LateBound ComFilterDialog::list() const {
  return filter_.object(bindings::filter::filterList, "FilterList");
}

std::shared_ptr<Login> ComFilterDialog::login() {
  return std::make_shared<ComLogin>(filter_.object(bindings::dialog::login, "Login"));
}

std::string ComFilterDialog::identifier() {
  return filter_.text(bindings::dialog::identifier);
}

Session& ComFilterDialog::connection() {
  if (!connection_)
    connection_ = std::make_unique<AdoSession>(filter_.object(bindings::dialog::connection, "dialog connection"));
  return *connection_;
}

int ComFilterDialog::count() {
  return list().integer(bindings::filter::count);
}

std::unique_ptr<DialogItem> ComFilterDialog::item(int position) {
  return std::make_unique<ComDialogItem>(list().item(position, "filter item"));
}

std::unique_ptr<DialogItem> ComFilterDialog::item(std::string_view key) {
  return std::make_unique<ComDialogItem>(list().item(key, "filter item"));
}

void ComFilterDialog::setUnavailable(std::string_view key, bool flag) {
  filter_.call(bindings::dialog::setUnavailable, {key, flag});
}

void ComFilterDialog::setEnumeration(std::string_view key, std::string_view text) {
  filter_.call(bindings::dialog::setEnumeration, {key, text});
}

void ComFilterDialog::setLookupCondition(std::string_view key, std::string_view secondArgument,
                                         std::string_view condition) {
  filter_.call(bindings::dialog::setLookupCondition, {key, secondArgument, condition});
}

void ComFilterDialog::setLookupConditionOfValue(std::string_view key, std::string_view condition, bool valueIsEmpty) {
  filter_.call(bindings::dialog::setLookupConditionOfValue, {key, condition, valueIsEmpty});
}

// --- Login, data source, argument

std::string ComLogin::accountConnection() {
  return login_.text(bindings::login::accountConnection);
}

std::string ComLogin::password() {
  return login_.text(bindings::login::password);
}

std::string ComLogin::accountCode() {
  return login_.text(bindings::login::accountCode);
}

std::string ComLogin::accountingYear() {
  return login_.text(bindings::login::accountingYear);
}

std::string ComLogin::accountingYearText() {
  return login_.text(bindings::login::accountingYearText);
}

std::string ComLogin::languageRegion() {
  return login_.text(bindings::login::languageRegion);
}

std::string ComLogin::languageId() {
  return login_.text(bindings::login::languageId);
}

int ComLogin::currentPeriodYear() {
  return login_.integer(bindings::login::currentPeriodYear);
}

std::string ComLogin::businessDate() {
  return login_.text(bindings::login::businessDate);
}

void ComLogin::setAuthString(std::string_view rights) {
  login_.put(bindings::login::authString, rights);
}

void ComDataSource::setType(int type) {
  dataSource_.put(bindings::data_source::type, type);
}

std::string ComDataSource::resultTable() {
  return dataSource_.text(bindings::data_source::sql);
}

std::shared_ptr<Filter> ComReportArgument::rawFilter() {
  return std::make_shared<ComFilter>(argument_.object(bindings::argument::rawFilter, "rawFilter"));
}

std::shared_ptr<Login> ComReportArgument::login() {
  return std::make_shared<ComLogin>(argument_.object(bindings::argument::login, "Login"));
}

std::shared_ptr<Login> ComReportArgument::filterLogin() {
  return std::make_shared<ComLogin>(argument_.object(bindings::argument::loginObj, "LoginObj"));
}

std::unique_ptr<DataSource> ComReportArgument::dataSource() {
  return std::make_unique<ComDataSource>(argument_.object(bindings::argument::dataSource, "DataSource"));
}

std::string ComReportArgument::action() {
  return argument_.text(bindings::argument::action);
}

// --- Public component: the one place that knows its argument orders

std::string ComPublicComponent::accountInformation(std::string_view system, std::string_view name, Session& session) {
  ConnectionVariable connection(session);
  return component_.text(bindings::public_component::accountInformation, {system, name, connection.reference()});
}

int ComPublicComponent::currentPeriodYear(Session& session) {
  ConnectionVariable connection(session);
  return component_.integer(bindings::public_component::currentPeriodYear, {connection.reference()});
}

int ComPublicComponent::costItemStartMonth(std::string_view year, Session& session) {
  ConnectionVariable connection(session);
  return component_.integer(bindings::public_component::costItemStartMonth, {year, connection.reference()});
}

std::vector<std::string> ComPublicComponent::usedYears(std::string_view accountCode, Session& session) {
  ConnectionVariable connection(session);
  const LateBound dictionary =
      component_.object(bindings::public_component::usedYears, "used years", {accountCode, connection.reference()});
  std::vector<std::string> years;
  const int count = dictionary.integer(bindings::public_component::dictionaryCount);
  for (int key = 1; key <= count; ++key)
    years.push_back(toText(dictionary.getById(DISPID_VALUE, L"Item", {std::to_string(key)})));
  return years;
}

// --- Resource and message service

ComResourceService::ComResourceService(const LateBound& service) : source_(service.source()) {
  const HRESULT code =
      service.get()->QueryInterface(bindings::resourceServiceId, reinterpret_cast<void**>(service_.out()));
  if (FAILED(code))
    throw AutomationError(code, source_,
                          source_ +
                              " does not offer the resource service's interface: register the version that "
                              "belongs to this platform.");
}

template <class Operation>
void ComResourceService::call(std::string_view member, Operation operation) const {
  SetErrorInfo(0, nullptr);  // so that no earlier call's words pass for this one's
  const HRESULT code = operation();
  if (FAILED(code)) throw takeErrorInfo(code, *service_, bindings::resourceServiceId, source_, member);
}

void ComResourceService::takeLogin(Login& login) {
  Bstr none;
  const Variant object(adapterOf<ComLogin>(login).object());
  call("FormatText", [&] { return service_->FormatText(object, Variant::missing(), none.out()); });
}

std::string ComResourceService::enumName(std::string_view type, std::string_view code) {
  const Bstr typeText(type);
  const Bstr codeText(code);
  Bstr name;
  call("EnumName", [&] { return service_->EnumName(typeText.get(), codeText.get(), name.out()); });
  return name.utf8();
}

std::string ComResourceService::text(std::string_view key) {
  const Bstr keyText(key);
  Bstr text;
  call("Text", [&] { return service_->Text(keyText.get(), text.out()); });
  return text.utf8();
}

void ComResourceService::showMessage(std::string_view text, int flags) {
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

void KeysAsTexts::showMessage(std::string_view text, int /*flags*/) {
  throw AutomationError(
      hresult::fail, "Quillon",
      "The platform's message service is not registered, so this message could not be shown: " + std::string(text));
}

// --- Names of work tables

std::string ComUniqueNameSource::next() {
  return source_.text(bindings::uniqueName);
}

std::string BuiltInUniqueNames::next() {
  const GUID id = newGuid();
  std::array<char, 40> text{};
  const int length = std::snprintf(text.data(), text.size(), "%08lx%04x%04x%02x%02x%02x%02x%02x%02x%02x%02x",
                                   static_cast<unsigned long>(id.Data1), id.Data2, id.Data3, id.Data4[0], id.Data4[1],
                                   id.Data4[2], id.Data4[3], id.Data4[4], id.Data4[5], id.Data4[6], id.Data4[7]);
  return {text.data(), static_cast<std::size_t>(length)};
}

std::string builtInNamingNumber() {
  return std::to_string(newGuid().Data1);
}

// --- Drill-through

std::shared_ptr<Filter> ComDrillThroughHelper::filterFor(Login& login, bool drillThrough) {
  return std::make_shared<ComFilter>(helper_.object(bindings::filterForLogin, "drill-through filter",
                                                    {adapterOf<ComLogin>(login).object(), drillThrough}));
}

// --- The platform

std::shared_ptr<Session> ComPlatform::createSession() {
  return std::make_shared<AdoSession>(createObject(bindings::connection));
}

std::shared_ptr<PublicComponent> ComPlatform::createPublicComponent() {
  return std::make_shared<ComPublicComponent>(createObject(bindings::publicComponent));
}

std::shared_ptr<ResourceService> ComPlatform::createResourceService() {
  if (const LateBound service = tryCreateObject(bindings::resourceService))
    return std::make_shared<ComResourceService>(service);
  return std::make_shared<KeysAsTexts>();
}

std::shared_ptr<UniqueNameSource> ComPlatform::createUniqueNameSource() {
  if (LateBound source = tryCreateObject(bindings::uniqueNames))
    return std::make_shared<ComUniqueNameSource>(std::move(source));
  return std::make_shared<BuiltInUniqueNames>();
}

std::shared_ptr<DrillThroughHelper> ComPlatform::createDrillThroughHelper() {
  return std::make_shared<ComDrillThroughHelper>(createObject(bindings::drillThrough));
}

std::string ComPlatform::namingNumber() {
  if (const LateBound naming = tryCreateObject(bindings::naming))
    return toText(naming.getById(bindings::namingNumber, L"the naming number"));
  return builtInNamingNumber();
}

}  // namespace quillon::com
