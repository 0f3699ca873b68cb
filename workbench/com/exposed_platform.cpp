#include "workbench/com/exposed_platform.h"

#include <algorithm>
#include <optional>
#include <string>
#include <vector>

#include "automation/class_lookup.h"
#include "automation/errors.h"
#include "component/ado_session.h"
#include "component/platform_adapters.h"
#include "component/platform_bindings.h"
#include "workbench/com/variant_list.h"
#include "workbench/tsql/values/text.h"

namespace quillon::workbench {

using automation::Call;
using automation::ComPtr;
using automation::makeObject;
using automation::Variant;
namespace bindings = component::bindings;

namespace {

// Text as a number when it is one, as the platform gives years; otherwise the text.
Variant numberOrText(const std::string& text) {
  if (const std::optional<int> number = tsql::text::wholeNumber(text)) return *number;
  return text;
}

class LoginDispatch : public automation::DispatchObject<LoginDispatch> {
 public:
  static std::span<const Member> members() {
    static constexpr Member table[] = {
        {bindings::login::accountConnection, 1, automation::readable, 0, 0, &LoginDispatch::accountConnection},
        {bindings::login::password, 2, automation::readable, 0, 0, &LoginDispatch::password},
        {bindings::login::accountCode, 3, automation::readable, 0, 0, &LoginDispatch::accountCode},
        {bindings::login::accountingYear, 4, automation::readable, 0, 0, &LoginDispatch::accountingYear},
        {bindings::login::accountingYearText, 5, automation::readable, 0, 0, &LoginDispatch::accountingYearText},
        {bindings::login::languageRegion, 6, automation::readable, 0, 0, &LoginDispatch::languageRegion},
        {bindings::login::languageId, 7, automation::readable, 0, 0, &LoginDispatch::languageId},
        {bindings::login::currentPeriodYear, 8, automation::readable, 0, 0, &LoginDispatch::currentPeriodYear},
        {bindings::login::businessDate, 9, automation::readable, 0, 0, &LoginDispatch::businessDate},
        {bindings::login::authString, 10, automation::readable | automation::writable, 0, 0,
         &LoginDispatch::authString},
        {bindings::login::moduleCode, 11, automation::readable, 0, 0, &LoginDispatch::moduleCode},
    };
    return table;
  }

  explicit LoginDispatch(std::shared_ptr<Login> login) : login_(std::move(login)) {}

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
      authString_ = automation::toText(call.assigned());
      login_->setAuthString(authString_);
    }
    return authString_;
  }
  Variant moduleCode(Call&) { return login_->moduleCode(); }
  const char* sourceName() const override { return "Quillon login"; }

  std::shared_ptr<Login> login_;
  std::string authString_;
};

// The dialog that a filter object is in. Throws when it is in none.
FilterDialogObject& dialogOf(const std::shared_ptr<FilterDialogObject>& dialog) {
  if (!dialog) {
    throw AutomationError(hresult::unexpected, std::string(filterSource),
                          "This filter is not in a dialog: take the one of the argument that NewDialog makes.");
  }
  return *dialog;
}

class FilterItemDispatch : public automation::DispatchObject<FilterItemDispatch> {
 public:
  static std::span<const Member> members() {
    static constexpr Member table[] = {
        {bindings::filter::value, DISPID_VALUE, automation::readable | automation::writable, 0, 0,
         &FilterItemDispatch::value},
        {bindings::filter::value2, 1, automation::readable | automation::writable, 0, 0, &FilterItemDispatch::value2},
        {bindings::filter::name, 2, automation::readable, 0, 0, &FilterItemDispatch::name},
        {bindings::filter::rangeInput, 3, automation::readable, 0, 0, &FilterItemDispatch::rangeInput},
        {bindings::filter::multipleSelection, 4, automation::readable, 0, 0, &FilterItemDispatch::multipleSelection},
        {bindings::filter::groupToken, 5, automation::readable | automation::writable, 0, 0,
         &FilterItemDispatch::groupToken},
        {bindings::filter::sqlText, 6, automation::readable | automation::writable, 0, 0, &FilterItemDispatch::sqlText},
        {bindings::dialog::caption, 7, automation::readable, 0, 0, &FilterItemDispatch::caption},
        {bindings::dialog::listText, 8, automation::writable, 0, 0, &FilterItemDispatch::listText},
        {bindings::dialog::listSource, 9, automation::writable, 0, 0, &FilterItemDispatch::listSource},
        {L"Available", 10, automation::readable, 0, 0, &FilterItemDispatch::available},
        {L"Choices", 11, automation::readable, 0, 0, &FilterItemDispatch::choices},
        {L"LookupCondition", 12, automation::readable, 0, 0, &FilterItemDispatch::lookupCondition},
    };
    return table;
  }

  // `dialog` may be null: then the item is of a filter that is in no dialog.
  FilterItemDispatch(std::shared_ptr<FilterEntry> entry, std::shared_ptr<FilterDialogObject> dialog)
      : entry_(std::move(entry)), dialog_(std::move(dialog)) {}

 private:
  static Variant textMember(Call& call, std::string& text) {
    if (call.assigns()) text = automation::toText(call.assigned());
    return text;
  }

  Variant value(Call& call) { return textMember(call, entry_->value); }
  Variant value2(Call& call) { return textMember(call, entry_->value2); }
  Variant name(Call&) { return entry_->item.key; }
  Variant rangeInput(Call&) { return entry_->item.range; }
  Variant multipleSelection(Call&) { return entry_->item.multiple; }
  Variant groupToken(Call& call) {
    if (call.assigns()) entry_->token = automation::toInteger(call.assigned());
    return entry_->token;
  }
  Variant sqlText(Call& call) {
    if (call.assigns()) entry_->sql = automation::toText(call.assigned());
    return conditionOf(*entry_);
  }
  Variant caption(Call&) { return inDialog()->caption(); }
  Variant listText(Call& call) {
    inDialog()->setListText(automation::toText(call.assigned()));
    return {};
  }
  Variant listSource(Call& call) {
    inDialog()->setListSource(automation::toText(call.assigned()));
    return {};
  }
  Variant available(Call&) { return entry_->available; }
  Variant choices(Call&) {
    const Language language = dialog_ ? languageOfRegion(dialog_->login()->languageRegion()) : Language::chinese;
    std::string codes;
    std::string names;
    for (const Choice& choice : entry_->item.choices) {
      const bool first = &choice == &entry_->item.choices.front();
      codes += (first ? "" : "{#}") + choice.code;
      names += (first ? "" : "{#}") + (language == Language::chinese ? choice.chinese : choice.english);
    }
    return codes + "{##}" + names;
  }
  Variant lookupCondition(Call&) { return entry_->lookupCondition; }
  std::unique_ptr<DialogItem> inDialog() const { return dialogOf(dialog_).item(entry_->item.key); }
  const char* sourceName() const override { return "Quillon filter item"; }

  std::shared_ptr<FilterEntry> entry_;
  std::shared_ptr<FilterDialogObject> dialog_;
};

class FilterListDispatch : public automation::DispatchObject<FilterListDispatch> {
 public:
  static std::span<const Member> members() {
    static constexpr Member table[] = {
        {L"Item", DISPID_VALUE, automation::readable | automation::writable, 1, 1, &FilterListDispatch::item},
        {bindings::filter::count, 1, automation::readable, 0, 0, &FilterListDispatch::count},
        {L"_NewEnum", DISPID_NEWENUM, automation::readable, 0, 0, &FilterListDispatch::each},
    };
    return table;
  }

  FilterListDispatch(std::shared_ptr<FilterObject> filter, std::shared_ptr<FilterDialogObject> dialog)
      : filter_(std::move(filter)), dialog_(std::move(dialog)) {}

  // The item that the first argument names; what is assigned to it becomes its value, as by its default member.
  Variant item(Call& call) {
    const std::shared_ptr<FilterEntry> entry = entryAt(call.value(0));
    if (!call.assigns()) return makeObject<FilterItemDispatch>(entry, dialog_);
    entry->value = automation::toText(call.assigned());
    return {};
  }

 private:
  std::shared_ptr<FilterEntry> entryAt(const Variant& index) const {
    const auto& entries = filter_->entries();
    auto found = entries.end();
    if (index.vt == VT_BSTR) {
      found = std::ranges::find(entries, filter_->find(automation::toText(index)), &std::shared_ptr<FilterEntry>::get);
    } else if (const int position = automation::toInteger(index); position >= 1 && position <= filter_->count()) {
      found = entries.begin() + (position - 1);
    }
    if (found == entries.end()) {
      throw AutomationError(DISP_E_BADINDEX, sourceName(),
                            "The filter has no item \"" + automation::toText(index) + "\".");
    }
    return *found;
  }

  Variant count(Call&) { return filter_->count(); }
  Variant each(Call&) {
    std::vector<Variant> items;
    for (const auto& entry : filter_->entries())
      items.emplace_back(makeObject<FilterItemDispatch>(entry, dialog_));
    return enumeratorOf(std::move(items));
  }
  const char* sourceName() const override { return "Quillon filter list"; }

  std::shared_ptr<FilterObject> filter_;
  std::shared_ptr<FilterDialogObject> dialog_;
};

class FilterDispatch : public automation::DispatchObject<FilterDispatch> {
 public:
  static std::span<const Member> members() {
    static constexpr Member table[] = {
        {bindings::filter::filterList, 1, automation::readable | automation::writable, 0, 1,
         &FilterDispatch::filterList},
        {bindings::filter::whereWithToken, 2, automation::callable, 1, 1, &FilterDispatch::whereWithToken},
        {bindings::dialog::login, 3, automation::readable, 0, 0, &FilterDispatch::login},
        {bindings::dialog::identifier, 4, automation::readable, 0, 0, &FilterDispatch::identifier},
        {bindings::dialog::connection, 5, automation::readable, 0, 0, &FilterDispatch::connection},
        {bindings::dialog::setUnavailable, 6, automation::callable, 2, 2, &FilterDispatch::setUnavailable},
        {bindings::dialog::setEnumeration, 7, automation::callable, 2, 2, &FilterDispatch::setEnumeration},
        {bindings::dialog::setLookupCondition, 8, automation::callable, 3, 3, &FilterDispatch::setLookupCondition},
        {bindings::dialog::setLookupConditionOfValue, 9, automation::callable, 3, 3,
         &FilterDispatch::setLookupConditionOfValue},
    };
    return table;
  }

  explicit FilterDispatch(std::shared_ptr<FilterObject> filter) : filter_(std::move(filter)) {}
  // A filter with its dialog, which is on the same filter and may be null.
  FilterDispatch(std::shared_ptr<FilterObject> filter, std::shared_ptr<FilterDialogObject> dialog,
                 ComPtr<LoginDispatch> login)
      : filter_(std::move(filter)), dialog_(std::move(dialog)), login_(std::move(login)) {}

 private:
  Variant filterList(Call& call) {
    const ComPtr<FilterListDispatch> list = makeObject<FilterListDispatch>(filter_, dialog_);
    if (call.assigns() || call.given(0)) return list->item(call);
    return list;
  }
  Variant whereWithToken(Call& call) { return filter_->whereWithToken(call.integer(0)); }
  Variant login(Call&) {
    inDialog();
    return login_;
  }
  Variant identifier(Call&) { return filter_->identifier(); }
  Variant connection(Call&) { return makeObject<AdoConnection>(nullptr, inDialog().ownConnection()); }
  Variant setUnavailable(Call& call) {
    inDialog().setUnavailable(call.text(0), automation::toFlag(call.value(1)));
    return {};
  }
  Variant setEnumeration(Call& call) {
    inDialog().setEnumeration(call.text(0), call.text(1));
    return {};
  }
  Variant setLookupCondition(Call& call) {
    inDialog().setLookupCondition(call.text(0), call.text(1), call.text(2));
    return {};
  }
  Variant setLookupConditionOfValue(Call& call) {
    inDialog().setLookupConditionOfValue(call.text(0), call.text(1), automation::toFlag(call.value(2)));
    return {};
  }
  FilterDialogObject& inDialog() const { return dialogOf(dialog_); }
  const char* sourceName() const override { return "Quillon filter"; }

  std::shared_ptr<FilterObject> filter_;
  std::shared_ptr<FilterDialogObject> dialog_;
  ComPtr<LoginDispatch> login_;
};

class DataSourceDispatch : public automation::DispatchObject<DataSourceDispatch> {
 public:
  static std::span<const Member> members() {
    static constexpr Member table[] = {
        {bindings::data_source::sql, DISPID_VALUE, automation::readable | automation::writable, 0, 0,
         &DataSourceDispatch::sql},
        {bindings::data_source::type, 1, automation::readable | automation::writable, 0, 0, &DataSourceDispatch::type},
    };
    return table;
  }

  explicit DataSourceDispatch(std::shared_ptr<WorkbenchArgument> argument) : argument_(std::move(argument)) {}

 private:
  Variant sql(Call& call) {
    if (call.assigns()) argument_->dataSource()->setResultTable(automation::toText(call.assigned()));
    return argument_->dataSource()->resultTable();
  }
  Variant type(Call& call) {
    if (call.assigns()) argument_->dataSource()->setType(automation::toInteger(call.assigned()));
    return argument_->dataSourceState().type;
  }
  const char* sourceName() const override { return "Quillon data source"; }

  std::shared_ptr<WorkbenchArgument> argument_;
};

// The row that Execute is called for.
class RowDispatch : public automation::DispatchObject<RowDispatch> {
 public:
  static std::span<const Member> members() {
    static constexpr Member table[] = {
        {bindings::report_row::value, 1, automation::callable, 1, 1, &RowDispatch::value},
        {L"TakeRow", 2, automation::callable, 1, 1, &RowDispatch::takeRow},
    };
    return table;
  }

  explicit RowDispatch(std::shared_ptr<WorkbenchArgument> argument) : argument_(std::move(argument)) {}

 private:
  Variant value(Call& call) {
    if (!row_) row_ = argument_->row();
    return row_->value(call.text(0));
  }
  Variant takeRow(Call& call) {
    const automation::LateBound recordset(call.object(0), "ADODB.Recordset");
    const automation::LateBound fields = recordset.object(bindings::ado::fields, "Fields");
    const int count = fields.integer(L"Count");
    RowValues values;
    for (int position = 0; position < count; ++position) {
      const automation::LateBound field = fields.item(position, "Field");
      values.emplace_back(field.text(L"Name"), field.text(bindings::ado::value));
    }
    row_ = WorkbenchArgument(argument_->login(), std::move(values), {}).row();
    return {};
  }
  const char* sourceName() const override { return "Quillon row"; }

  std::shared_ptr<WorkbenchArgument> argument_;
  std::unique_ptr<ReportRow> row_;
};

class ArgumentDispatch : public automation::DispatchObject<ArgumentDispatch> {
 public:
  static std::span<const Member> members() {
    static constexpr Member table[] = {
        {bindings::argument::rawFilter, 1, automation::readable, 0, 0, &ArgumentDispatch::rawFilter},
        {bindings::argument::login, 2, automation::readable, 0, 0, &ArgumentDispatch::login},
        {bindings::argument::loginObj, 3, automation::readable, 0, 0, &ArgumentDispatch::login},
        {bindings::argument::dataSource, 4, automation::readable, 0, 0, &ArgumentDispatch::dataSource},
        {bindings::argument::action, 5, automation::readable | automation::writable, 0, 0, &ArgumentDispatch::action},
        {bindings::argument::row, 6, automation::readable, 0, 0, &ArgumentDispatch::row},
        {bindings::argument::languageId, 7, automation::readable, 0, 0, &ArgumentDispatch::languageId},
    };
    return table;
  }

  ArgumentDispatch(std::shared_ptr<WorkbenchArgument> argument, std::shared_ptr<FilterDialogObject> dialog)
      : argument_(std::move(argument)),
        login_(makeObject<LoginDispatch>(argument_->login())),
        row_(makeObject<RowDispatch>(argument_)),
        action_(argument_->action()) {
    if (argument_->filter()) filter_ = makeObject<FilterDispatch>(argument_->filter(), std::move(dialog), login_);
  }

 private:
  Variant rawFilter(Call&) { return filter_; }
  Variant login(Call&) { return login_; }
  Variant dataSource(Call&) { return makeObject<DataSourceDispatch>(argument_); }
  Variant action(Call& call) {
    if (call.assigns()) action_ = automation::toText(call.assigned());
    return action_;
  }
  Variant row(Call&) { return row_; }
  Variant languageId(Call&) { return argument_->languageId(); }
  const char* sourceName() const override { return "Quillon argument"; }

  std::shared_ptr<WorkbenchArgument> argument_;
  ComPtr<LoginDispatch> login_;
  ComPtr<FilterDispatch> filter_;
  ComPtr<RowDispatch> row_;
  std::string action_;
};

// The used years as a dictionary: the keys are "1", "2" and so on.
class UsedYearsDispatch : public automation::DispatchObject<UsedYearsDispatch> {
 public:
  static std::span<const Member> members() {
    static constexpr Member table[] = {
        {L"Item", DISPID_VALUE, automation::readable, 1, 1, &UsedYearsDispatch::item},
        {bindings::public_component::dictionaryCount, 1, automation::readable, 0, 0, &UsedYearsDispatch::count},
    };
    return table;
  }

  explicit UsedYearsDispatch(std::vector<std::string> years) : years_(std::move(years)) {}

 private:
  Variant item(Call& call) {
    const int key = call.integer(0);
    // A dictionary answers an unknown key with an empty value.
    if (key < 1 || static_cast<std::size_t>(key) > years_.size()) return {};
    return years_[static_cast<std::size_t>(key) - 1];
  }
  Variant count(Call&) { return static_cast<int>(years_.size()); }

  std::vector<std::string> years_;
};

// IA_Pub.ClsIAPub over the connection that the caller passes. In the operations of all reports that is the one argument
// that is an object, wherever it stands among the others, so that callers of either argument order are served.
class PublicComponentDispatch : public automation::DispatchObject<PublicComponentDispatch> {
 public:
  static std::span<const Member> members() {
    static constexpr Member table[] = {
        {bindings::public_component::accountInformation, 1, automation::callable, 3, 3,
         &PublicComponentDispatch::accountInformation},
        {bindings::public_component::currentPeriodYear, 2, automation::callable, 1, 1,
         &PublicComponentDispatch::currentPeriodYear},
        {bindings::public_component::costItemStartMonth, 3, automation::callable, 2, 2,
         &PublicComponentDispatch::costItemStartMonth},
        {bindings::public_component::usedYears, 4, automation::callable, 2, 2, &PublicComponentDispatch::usedYears},
        {bindings::public_component::costItemOpeningsFinished, 5, automation::callable, 2, 2,
         &PublicComponentDispatch::costItemOpeningsFinished},
        {bindings::public_component::moduleStart, 6, automation::callable, 4, 4, &PublicComponentDispatch::moduleStart},
        {bindings::public_component::datesOfPeriod, 7, automation::callable, 6, 6,
         &PublicComponentDispatch::datesOfPeriod},
        {bindings::public_component::periodOfDate, 8, automation::callable, 4, 4,
         &PublicComponentDispatch::periodOfDate},
        {bindings::public_component::periodSettled, 9, automation::callable, 3, 3,
         &PublicComponentDispatch::periodSettled},
        {bindings::public_component::workstationName, 10, automation::callable, 0, 0,
         &PublicComponentDispatch::workstationName},
    };
    return table;
  }

  explicit PublicComponentDispatch(std::shared_ptr<PublicComponent> component) : component_(std::move(component)) {}

 private:
  // The arguments of a call, sorted into the connection and the texts in their order.
  struct Sorted {
    component::AdoSession session;
    std::vector<std::string> texts;
  };

  Sorted sorted(Call& call) const {
    ComPtr<IDispatch> connection;
    std::vector<std::string> texts;
    for (std::size_t index = 0; index < call.count(); ++index) {
      const Variant value = call.value(index);
      if (value.vt == VT_DISPATCH || value.vt == VT_UNKNOWN) {
        connection = call.object(index);
      } else {
        texts.push_back(call.text(index));
      }
    }
    if (!connection || texts.size() + 1 != call.count()) {
      throw AutomationError(hresult::invalidArgument, sourceName(),
                            "One argument must be the connection to the account database, the others texts.");
    }
    return {component::AdoSession({std::move(connection), "ADODB.Connection"}), std::move(texts)};
  }

  Variant accountInformation(Call& call) {
    Sorted arguments = sorted(call);
    return component_->accountInformation(arguments.texts[0], arguments.texts[1], arguments.session);
  }
  Variant currentPeriodYear(Call& call) {
    Sorted arguments = sorted(call);
    return component_->currentPeriodYear(arguments.session);
  }
  Variant costItemStartMonth(Call& call) {
    Sorted arguments = sorted(call);
    return component_->costItemStartMonth(arguments.texts[0], arguments.session);
  }
  Variant usedYears(Call& call) {
    Sorted arguments = sorted(call);
    return makeObject<UsedYearsDispatch>(component_->usedYears(arguments.texts[0], arguments.session));
  }

  // What the detail ledger asks. Results are written into variables behind the arguments that are read.
  component::AdoSession sessionAt(Call& call, std::size_t index) const {
    return component::AdoSession({call.object(index), "ADODB.Connection"});
  }
  Variant costItemOpeningsFinished(Call& call) {
    component::AdoSession session = sessionAt(call, 0);
    return component_->costItemOpeningsFinished(call.integer(1), session);
  }
  Variant moduleStart(Call& call) {
    component::AdoSession session = sessionAt(call, 1);
    const AccountingPeriod start = component_->moduleStart(call.text(0), session);
    call.writeBack(2, Variant(start.month));
    call.writeBack(3, Variant(start.year));
    return {};
  }
  Variant datesOfPeriod(Call& call) {
    component::AdoSession session = sessionAt(call, 0);
    const PeriodDates dates =
        component_->datesOfPeriod(call.text(1), {.year = call.integer(2), .month = call.integer(3)}, session);
    call.writeBack(4, Variant::fromIsoDate(dates.begin));
    call.writeBack(5, Variant::fromIsoDate(dates.end));
    return {};
  }
  Variant periodOfDate(Call& call) {
    component::AdoSession session = sessionAt(call, 0);
    const AccountingPeriod period = component_->periodOfDate(call.text(1), session);
    call.writeBack(2, Variant(period.year));
    call.writeBack(3, Variant(period.month));
    return {};
  }
  Variant periodSettled(Call& call) {
    component::AdoSession session = sessionAt(call, 0);
    return component_->periodSettled({.year = call.integer(1), .month = call.integer(2)}, session);
  }
  Variant workstationName(Call&) { return component_->workstationName(); }
  const char* sourceName() const override { return "IA_Pub.ClsIAPub"; }

  std::shared_ptr<PublicComponent> component_;
};

// The late-bound half of the resource and message service.
class ResourceMembers : public automation::DispatchObject<ResourceMembers> {
 public:
  static std::span<const Member> members() {
    static constexpr Member table[] = {
        {L"EnumName", 1, automation::callable, 2, 2, &ResourceMembers::enumName},
        {L"Text", 2, automation::callable, 1, 1, &ResourceMembers::text},
        {L"ShowMessage", 3, automation::callable, 1, 4, &ResourceMembers::showMessage},
    };
    return table;
  }

  explicit ResourceMembers(std::shared_ptr<ResourceService> service) : service_(std::move(service)) {}

 private:
  Variant enumName(Call& call) { return service_->enumName(call.text(0), call.text(1)); }
  Variant text(Call& call) { return service_->text(call.text(0)); }
  Variant showMessage(Call& call) {
    service_->showMessage(call.text(0), call.given(1) ? call.integer(1) : 0);
    return {};
  }
  const char* sourceName() const override { return "Quillon resources"; }

  std::shared_ptr<ResourceService> service_;
};

// The resource and message service as the dual interface by which the library calls it.
class ResourceDispatch : public automation::ComObject<bindings::IResourceService> {
 public:
  explicit ResourceDispatch(const std::shared_ptr<ResourceService>& service)
      : service_(service), lateBound_(makeObject<ResourceMembers>(service)) {}

  STDMETHODIMP QueryInterface(REFIID id, void** object) override {
    if (!object) return E_POINTER;
    *object = nullptr;
    if (id != IID_IUnknown && id != IID_IDispatch && id != bindings::resourceServiceId) return E_NOINTERFACE;
    *object = static_cast<bindings::IResourceService*>(this);
    AddRef();
    return S_OK;
  }
  STDMETHODIMP GetTypeInfoCount(UINT* count) override { return lateBound_->GetTypeInfoCount(count); }
  STDMETHODIMP GetTypeInfo(UINT index, LCID locale, ITypeInfo** info) override {
    return lateBound_->GetTypeInfo(index, locale, info);
  }
  STDMETHODIMP GetIDsOfNames(REFIID reserved, LPOLESTR* names, UINT count, LCID locale, DISPID* ids) override {
    return lateBound_->GetIDsOfNames(reserved, names, count, locale, ids);
  }
  STDMETHODIMP Invoke(DISPID id, REFIID reserved, LCID locale, WORD kind, DISPPARAMS* parameters, VARIANT* result,
                      EXCEPINFO* info, UINT* badArgument) override {
    return lateBound_->Invoke(id, reserved, locale, kind, parameters, result, info, badArgument);
  }

  STDMETHODIMP EnumName(BSTR type, BSTR code, BSTR* name) override {
    return giveText(name, [&] { return service_->enumName(automation::toUtf8(type), automation::toUtf8(code)); });
  }
  STDMETHODIMP Text(BSTR key, BSTR* text) override {
    return giveText(text, [&] { return service_->text(automation::toUtf8(key)); });
  }
  STDMETHODIMP ShowMessage(BSTR text, LONG flags, LONG /*helpContext*/, LONG /*defaultAnswer*/) override {
    return automation::guarded(bindings::resourceServiceId, source,
                               [&] { service_->showMessage(automation::toUtf8(text), static_cast<int>(flags)); });
  }
  STDMETHODIMP FormatText(VARIANT keyOrLogin, VARIANT arguments, BSTR* text) override {
    return giveText(text, [&] { return formatted(keyOrLogin, arguments); });
  }

 private:
  static constexpr const char* source = "Quillon resources";

  // Leaves what `give` returns in `result`; nothing is thrown out of it.
  template <typename Give>
  static HRESULT giveText(BSTR* result, Give give) {
    if (!result) return E_POINTER;
    *result = nullptr;
    return automation::guarded(bindings::resourceServiceId, source, [&] { *result = automation::makeBstr(give()); });
  }

  std::string formatted(const VARIANT& keyOrLogin, const VARIANT& arguments) const {
    const Variant plain = automation::dereferenced(keyOrLogin);
    if (plain.vt == VT_DISPATCH) {
      component::ComLogin login({automation::toObject(plain), "login"});
      service_->takeLogin(login);
      return {};
    }
    if (automation::isMissing(arguments) || automation::dereferenced(arguments).vt == VT_EMPTY)
      return service_->text(automation::toText(plain));
    return service_->formattedText(automation::toText(plain), automation::toTexts(arguments));
  }

  std::shared_ptr<ResourceService> service_;
  ComPtr<ResourceMembers> lateBound_;
};

class NamingDispatch : public automation::DispatchObject<NamingDispatch> {
 public:
  static std::span<const Member> members() {
    static constexpr Member table[] = {{L"Number", bindings::namingNumber, automation::readable | automation::callable,
                                        0, 0, &NamingDispatch::number}};
    return table;
  }

  explicit NamingDispatch(const std::string& number) : number_(numberOrText(number)) {}

 private:
  Variant number(Call&) { return number_; }

  Variant number_;
};

class UniqueNameDispatch : public automation::DispatchObject<UniqueNameDispatch> {
 public:
  static std::span<const Member> members() {
    static constexpr Member table[] = {
        {bindings::uniqueName, DISPID_VALUE, automation::readable, 0, 0, &UniqueNameDispatch::uniqueName}};
    return table;
  }

  explicit UniqueNameDispatch(std::shared_ptr<UniqueNameSource> names) : names_(std::move(names)) {}

 private:
  Variant uniqueName(Call&) { return names_->next(); }

  std::shared_ptr<UniqueNameSource> names_;
};

// Gives an empty filter: nothing in the workbench is drilled through to from a summary report.
class DrillThroughDispatch : public automation::DispatchObject<DrillThroughDispatch> {
 public:
  static std::span<const Member> members() {
    static constexpr Member table[] = {
        {bindings::filterForLogin, 1, automation::callable, 1, 2, &DrillThroughDispatch::filterForLogin}};
    return table;
  }

 private:
  Variant filterForLogin(Call&) { return filterDispatch(std::make_shared<FilterObject>(ReportRegistration{})); }
};

}  // namespace

ComPtr<IDispatch> argumentObject(std::shared_ptr<WorkbenchArgument> argument,
                                 std::shared_ptr<FilterDialogObject> dialog) {
  return makeObject<ArgumentDispatch>(std::move(argument), std::move(dialog));
}

ComPtr<IDispatch> filterDispatch(std::shared_ptr<FilterObject> filter) {
  return makeObject<FilterDispatch>(std::move(filter));
}

ComPtr<IDispatch> dialogDispatch(std::shared_ptr<FilterDialogObject> dialog) {
  const std::shared_ptr<FilterObject> filter = dialog->filter();
  ComPtr<LoginDispatch> login = makeObject<LoginDispatch>(dialog->login());
  return makeObject<FilterDispatch>(filter, std::move(dialog), std::move(login));
}

ComPtr<IDispatch> loginObject(std::shared_ptr<Login> login) {
  return makeObject<LoginDispatch>(std::move(login));
}

PlatformStandIn::PlatformStandIn(EmbeddedPlatform& platform, const std::shared_ptr<SessionMonitor>& monitor)
    : PlatformStandIn(platform) {
  ado_.emplace(monitor);
}

PlatformStandIn::PlatformStandIn(EmbeddedPlatform& platform)
    : publicComponent_(automation::classIdOf(bindings::publicComponent),
                       [&platform]() -> ComPtr<IUnknown> {
                         return makeObject<PublicComponentDispatch>(platform.createPublicComponent());
                       }),
      resourceService_(
          automation::classIdOf(bindings::resourceService),
          [&platform]() -> ComPtr<IUnknown> { return makeObject<ResourceDispatch>(platform.createResourceService()); }),
      naming_(automation::classIdOf(bindings::naming),
              [&platform]() -> ComPtr<IUnknown> { return makeObject<NamingDispatch>(platform.namingNumber()); }),
      uniqueNames_(automation::classIdOf(bindings::uniqueNames),
                   [&platform]() -> ComPtr<IUnknown> {
                     return makeObject<UniqueNameDispatch>(platform.createUniqueNameSource());
                   }),
      drillThrough_(automation::classIdOf(bindings::drillThrough),
                    []() -> ComPtr<IUnknown> { return makeObject<DrillThroughDispatch>(); }),
      environment_(platform),
      vouchers_(platform) {}

}  // namespace quillon::workbench
