#include "component/platform_adapters.h"

#include <array>
#include <cstdio>
#include <utility>

#include "automation/errors.h"
#include "frame/automation_error.h"

namespace quillon::component {

using automation::Bstr;
using automation::createObject;
using automation::LateBound;
using automation::systemMessage;
using automation::takeErrorInfo;
using automation::toInteger;
using automation::toText;
using automation::tryCreateObject;
using automation::Variant;

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

const bindings::source_voucher::Arguments& argumentsOf(VoucherGroup group) {
  switch (group) {
    case VoucherGroup::adjustment:
      return bindings::source_voucher::ofAdjustment;
    case VoucherGroup::writeBack:
      return bindings::source_voucher::ofWriteBack;
    default:
      return bindings::source_voucher::ofOther;
  }
}

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

std::string ComLogin::moduleCode() {
  return login_.offers(bindings::login::moduleCode) ? login_.text(bindings::login::moduleCode) : std::string();
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

void ComDataSource::setResultTable(std::string_view name) {
  dataSource_.put(bindings::data_source::sql, name);
}

std::string ComReportRow::value(std::string_view column) {
  return row_.text(bindings::report_row::value, {column});
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

std::unique_ptr<ReportRow> ComReportArgument::row() {
  return std::make_unique<ComReportRow>(argument_.object(bindings::argument::row, "RelateData"));
}

std::string ComReportArgument::languageId() {
  return argument_.text(bindings::argument::languageId);
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

bool ComPublicComponent::costItemOpeningsFinished(int year, Session& session) {
  ConnectionVariable connection(session);
  return component_.flag(bindings::public_component::costItemOpeningsFinished, {connection.reference(), year});
}

AccountingPeriod ComPublicComponent::moduleStart(std::string_view system, Session& session) {
  ConnectionVariable connection(session);
  SHORT month = 0;
  SHORT year = 0;
  component_.call(bindings::public_component::moduleStart,
                  {system, connection.reference(), Variant::reference(month), Variant::reference(year)});
  return {.year = year, .month = month};
}

PeriodDates ComPublicComponent::datesOfPeriod(std::string_view accountCode, AccountingPeriod period, Session& session) {
  ConnectionVariable connection(session);
  DATE begin = 0;
  DATE end = 0;
  component_.call(bindings::public_component::datesOfPeriod,
                  {connection.reference(), accountCode, period.year, period.month, Variant::dateReference(begin),
                   Variant::dateReference(end)});
  return {.begin = toText(Variant::fromDate(begin)), .end = toText(Variant::fromDate(end))};
}

AccountingPeriod ComPublicComponent::periodOfDate(std::string_view date, Session& session) {
  ConnectionVariable connection(session);
  SHORT year = 0;
  SHORT month = 0;
  component_.call(bindings::public_component::periodOfDate, {connection.reference(), Variant::fromIsoDate(date),
                                                             Variant::reference(year), Variant::reference(month)});
  return {.year = year, .month = month};
}

bool ComPublicComponent::periodSettled(AccountingPeriod period, Session& session) {
  ConnectionVariable connection(session);
  return component_.flag(bindings::public_component::periodSettled,
                         {connection.reference(), period.year, period.month});
}

std::string ComPublicComponent::workstationName() {
  return component_.text(bindings::public_component::workstationName);
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

std::string ComResourceService::formattedText(std::string_view key, const std::vector<std::string>& arguments) {
  const Variant keyText(key);
  const Variant list = Variant::textArray(arguments);
  Bstr text;
  call("FormatText", [&] { return service_->FormatText(keyText, list, text.out()); });
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

std::int32_t builtInWorkTableNumber() {
  return static_cast<std::int32_t>(newGuid().Data1 >> 1U);
}

// --- Drill-through

std::shared_ptr<Filter> ComDrillThroughHelper::filterFor(Login& login, bool drillThrough) {
  return std::make_shared<ComFilter>(helper_.object(bindings::filterForLogin, "drill-through filter",
                                                    {adapterOf<ComLogin>(login).object(), drillThrough}));
}

// --- The inventory-accounting environment

void ComAccountLogin::initialise(std::string_view connection, std::string_view passwordText) {
  login_.call(bindings::account_login::initialise, {connection, passwordText});
}

std::string ComAccountOptions::costingBasis() {
  return options_.text(bindings::account_options::costingBasis);
}

std::string ComAccountOptions::inventoryTable() {
  return options_.text(bindings::account_options::inventoryTable);
}

std::string ComAccountOptions::warehouseTable() {
  return options_.text(bindings::account_options::warehouseTable);
}

void ComInventoryEnvironment::setLogin(AccountLogin& login) {
  environment_.call(bindings::inventory_environment::initialise, {adapterOf<ComAccountLogin>(login).object()});
}

std::string ComInventoryEnvironment::resultTable() {
  Bstr table;
  Bstr second;
  environment_.call(bindings::inventory_environment::tableNames,
                    {Variant::reference(*table.inOut()), Variant::reference(*second.inOut())});
  return table.utf8();
}

std::unique_ptr<AccountOptions> ComInventoryEnvironment::accountOptions(AccountLogin& login,
                                                                        std::string_view resultTable) {
  LateBound options = createObject(bindings::accountOptions);
  environment_.call(bindings::inventory_environment::fillOptions,
                    {options.object(), adapterOf<ComAccountLogin>(login).object(), resultTable});
  return std::make_unique<ComAccountOptions>(std::move(options));
}

// --- Voucher components: the one place that knows their argument orders

void ComSourceVoucherComponent::initialise(Login& login, Session& session, std::string_view systemVersion) {
  ConnectionVariable connection(session);
  component_.call(bindings::source_voucher::initialise,
                  {adapterOf<ComLogin>(login).object(), connection.reference(), systemVersion});
}

void ComSourceVoucherComponent::showVoucher(VoucherGroup group, const SourceVoucher& voucher, Session& session) {
  using bindings::source_voucher::Argument;
  ConnectionVariable connection(session);
  std::vector<Variant> arguments;
  for (const Argument argument : argumentsOf(group)) {
    switch (argument) {
      case Argument::typeCode:
        arguments.emplace_back(voucher.type);
        break;
      case Argument::voucherCode:
        arguments.emplace_back(voucher.code);
        break;
      case Argument::rowId:
        arguments.emplace_back(voucher.lineId);
        break;
      case Argument::connection:
        arguments.push_back(connection.reference());
        break;
    }
  }
  component_.call(bindings::source_voucher::show, arguments);
}

void ComSourceVoucherComponent::showCostItemAdjustment(const SourceVoucher& voucher, Session& session) {
  ConnectionVariable connection(session);
  component_.call(bindings::source_voucher::showCostItemAdjustment, {connection.reference(), voucher.lineId});
}

void ComSourceVoucherComponent::showDifferences(const SourceVoucher& voucher, bool commercial,
                                                std::string_view valuationMethod, Session& session) {
  ConnectionVariable connection(session);
  component_.call(bindings::source_voucher::showDifferences,
                  {voucher.type, voucher.code, voucher.lineId, connection.reference(), commercial, valuationMethod});
}

void ComSourceVoucherComponent::showPriceAdjustment(const SourceVoucher& voucher) {
  component_.call(bindings::source_voucher::showPriceAdjustment, {voucher.code});
}

void ComLedgerModule::setBusiness(BusinessObject& business) {
  module_.putObject(bindings::ledger_module::business, adapterOf<ComBusinessObject>(business).object());
}

void ComLedgerModule::setLogin(Login& login) {
  module_.putObject(bindings::ledger_module::login, adapterOf<ComLogin>(login).object());
}

void ComLedgerModule::initialise(std::string_view connection, std::string_view passwordText, int year, Login& login) {
  const std::string accountCode = login.accountCode();
  module_.call(bindings::ledger_module::initialise,
               {connection, passwordText, year, accountCode, login.businessDate()});
}

void ComLedgerVoucherComponent::setLogin(Login& login) {
  component_.putObject(bindings::ledger_voucher::login, adapterOf<ComLogin>(login).object());
}

void ComLedgerVoucherComponent::setModule(LedgerModule& module) {
  component_.putObject(bindings::ledger_voucher::module, adapterOf<ComLedgerModule>(module).object());
}

void ComLedgerVoucherComponent::open(const LedgerVoucher& voucher) {
  component_.call(bindings::ledger_voucher::open, {voucher.menuCode, voucher.moduleTitle, voucher.id});
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

std::int32_t ComPlatform::workTableNumber() {
  if (const LateBound number = tryCreateObject(bindings::workTableNumber))
    return toInteger(number.getById(DISPID_VALUE, L"the work table's number"));
  return builtInWorkTableNumber();
}

std::unique_ptr<AccountLogin> ComPlatform::createAccountLogin() {
  return std::make_unique<ComAccountLogin>(createObject(bindings::accountLogin));
}

std::unique_ptr<InventoryEnvironment> ComPlatform::createInventoryEnvironment() {
  return std::make_unique<ComInventoryEnvironment>(createObject(bindings::environment));
}

std::unique_ptr<SourceVoucherComponent> ComPlatform::createSourceVoucherComponent() {
  return std::make_unique<ComSourceVoucherComponent>(createObject(bindings::sourceVoucher));
}

std::unique_ptr<LedgerModule> ComPlatform::createLedgerModule() {
  return std::make_unique<ComLedgerModule>(createObject(bindings::ledgerModule));
}

std::unique_ptr<LedgerVoucherComponent> ComPlatform::createLedgerVoucherComponent() {
  return std::make_unique<ComLedgerVoucherComponent>(createObject(bindings::ledgerVoucher));
}

}  // namespace quillon::component
