#include "tests/component/fake_platform.h"

#include "automation/com_object.h"
#include "automation/errors.h"
#include "automation/text.h"
#include "frame/automation_error.h"

namespace quillon::component::test {

using automation::Call;
using automation::classIdOf;
using automation::ComObject;
using automation::ComPtr;
using automation::dereferenced;
using automation::guarded;
using automation::InProcessClass;
using automation::makeBstr;
using automation::makeObject;
using automation::NamedClass;
using automation::toUtf8;
using automation::Variant;

namespace {

// A member that does nothing and gives nothing.
Variant nothing(Call& /*call*/) {
  return {};
}

// The first day of a month; month 13 is the next year's first.
DATE firstDay(int year, int month) {
  SYSTEMTIME time{};
  time.wYear = static_cast<WORD>(year + (month - 1) / 12);
  time.wMonth = static_cast<WORD>((month - 1) % 12 + 1);
  time.wDay = 1;
  DATE days = 0;
  SystemTimeToVariantTime(&time, &days);
  return days;
}

class FakeResourceService : public ComObject<bindings::IResourceService, ISupportErrorInfo> {
 public:
  explicit FakeResourceService(Recorder& recorder) : recorder_(recorder) {}

  STDMETHODIMP QueryInterface(REFIID id, void** object) override {
    *object = nullptr;
    if (id == IID_ISupportErrorInfo) {
      *object = static_cast<ISupportErrorInfo*>(this);
    } else if (id == IID_IUnknown || id == IID_IDispatch || id == bindings::resourceServiceId) {
      *object = static_cast<bindings::IResourceService*>(this);
    } else {
      return E_NOINTERFACE;
    }
    AddRef();
    return S_OK;
  }
  STDMETHODIMP InterfaceSupportsErrorInfo(REFIID /*id*/) override { return S_OK; }
  STDMETHODIMP GetTypeInfoCount(UINT* /*count*/) override { return E_NOTIMPL; }
  STDMETHODIMP GetTypeInfo(UINT /*index*/, LCID /*locale*/, ITypeInfo** /*info*/) override { return E_NOTIMPL; }
  STDMETHODIMP GetIDsOfNames(REFIID /*reserved*/, LPOLESTR* /*names*/, UINT /*count*/, LCID /*locale*/,
                             DISPID* /*ids*/) override {
    return E_NOTIMPL;
  }
  STDMETHODIMP Invoke(DISPID /*id*/, REFIID /*reserved*/, LCID /*locale*/, WORD /*kind*/, DISPPARAMS* /*parameters*/,
                      VARIANT* /*result*/, EXCEPINFO* /*info*/, UINT* /*badArgument*/) override {
    return E_NOTIMPL;
  }
  STDMETHODIMP EnumName(BSTR type, BSTR code, BSTR* name) override {
    return answer("EnumName(" + toUtf8(type) + ", " + toUtf8(code) + ")", "name of " + toUtf8(code), name);
  }
  STDMETHODIMP Text(BSTR key, BSTR* text) override {
    const std::string name = toUtf8(key);
    return answer("Text(" + name + ")", "text " + name.substr(name.rfind('.') + 1), text);
  }
  STDMETHODIMP ShowMessage(BSTR text, LONG flags, LONG helpContext, LONG defaultAnswer) override {
    return answer("ShowMessage(" + toUtf8(text) + ", " + std::to_string(flags) + ", " + std::to_string(helpContext) +
                      ", " + std::to_string(defaultAnswer) + ")",
                  "", nullptr);
  }
  STDMETHODIMP FormatText(VARIANT keyOrLogin, VARIANT arguments, BSTR* text) override {
    const bool takesLogin = dereferenced(keyOrLogin).vt == VT_DISPATCH;
    return answer("FormatText(" + shown(keyOrLogin) + ", " + shown(arguments) + ")",
                  takesLogin ? "" : "text with " + shown(arguments), text);
  }

 private:
  HRESULT answer(const std::string& call, const std::string& text, BSTR* result) {
    return guarded(bindings::resourceServiceId, "ResourceService", [&] {
      recorder_.record("ResourceService." + call);
      if (result) *result = makeBstr(text);
    });
  }

  Recorder& recorder_;
};

ComPtr<FakeObject> itemObject(Recorder& recorder, const FakeItem& item) {
  ComPtr<FakeObject> object = makeObject<FakeObject>(recorder, "Item");
  object->property(bindings::filter::name, item.name)
      .property(bindings::filter::value, item.value)
      .property(bindings::filter::value2, item.value2)
      .property(bindings::filter::rangeInput, false)
      .property(bindings::filter::multipleSelection, false)
      .property(bindings::filter::sqlText, "")
      .property(bindings::filter::groupToken, 7)
      .property(bindings::dialog::caption, "caption of " + item.name)
      .property(bindings::dialog::listText)
      .property(bindings::dialog::listSource);
  return object;
}

ComPtr<FakeObject> filterObject(Recorder& recorder, const std::vector<FakeItem>& items,
                                const std::map<int, std::string>& conditions) {
  const ComPtr<FakeObject> list = makeObject<FakeObject>(recorder, "FilterList");
  std::vector<ComPtr<FakeObject>> objects;
  std::vector<std::string> names;
  for (const FakeItem& item : items) {
    objects.push_back(itemObject(recorder, item));
    names.push_back(item.name);
  }
  list->on(
      L"Item",
      [objects, names](Call& call) -> Variant {
        if (call.value(0).vt != VT_BSTR) return objects.at(static_cast<std::size_t>(call.integer(0) - 1));
        for (std::size_t i = 0; i < names.size(); ++i)
          if (names[i] == call.text(0)) return objects[i];
        throw AutomationError(hresult::invalidProcedureCall, "FilterList", "There is no such item.");
      },
      DISPID_VALUE);
  list->property(bindings::filter::count, static_cast<int>(items.size()));
  ComPtr<FakeObject> filter = makeObject<FakeObject>(recorder, "Filter");
  filter->property(bindings::filter::filterList, list)
      .on(bindings::filter::whereWithToken, [&conditions](Call& call) -> Variant {
        const auto found = conditions.find(call.integer(0));
        return found == conditions.end() ? "" : found->second;
      });
  return filter;
}

}  // namespace

FakePlatform::FakePlatform(Recorder& recorder)
    : recorder_(recorder),
      connection_(known(bindings::connection, &FakePlatform::makeConnection)),
      recordset_(known(bindings::recordset, &FakePlatform::makeRecordset)),
      publicComponent_(known(bindings::publicComponent, &FakePlatform::makePublicComponent)),
      resourceService_(known(bindings::resourceService, &FakePlatform::makeResourceService)),
      naming_(known(bindings::naming, &FakePlatform::makeNaming)),
      uniqueNames_(known(bindings::uniqueNames, &FakePlatform::makeUniqueNames)),
      drillThrough_(known(bindings::drillThrough, &FakePlatform::makeDrillThrough)),
      workTableNumber_(known(bindings::workTableNumber, &FakePlatform::makeWorkTableNumber)),
      accountLogin_(known(bindings::accountLogin, &FakePlatform::makeAccountLogin)),
      environment_(known(bindings::environment, &FakePlatform::makeEnvironment)),
      accountOptions_(known(bindings::accountOptions, &FakePlatform::makeAccountOptions)),
      sourceVoucher_(known(bindings::sourceVoucher, &FakePlatform::makeSourceVoucher)),
      ledgerModule_(known(bindings::ledgerModule, &FakePlatform::makeLedgerModule)),
      ledgerVoucher_(known(bindings::ledgerVoucher, &FakePlatform::makeLedgerVoucher)) {}

ComPtr<FakeObject> FakePlatform::loginObject() {
  ComPtr<FakeObject> login = makeObject<FakeObject>(recorder_, "Login");
  login->property(bindings::login::accountConnection, "Provider=Fake;Data Source=account")
      .property(bindings::login::password, "secret")
      .property(bindings::login::accountCode, "001")
      .property(bindings::login::accountingYear, 2024)
      .property(bindings::login::accountingYearText, "2024")
      .property(bindings::login::languageRegion, "zh-CN")
      .property(bindings::login::languageId, 2052)
      .property(bindings::login::currentPeriodYear, 2024)
      .property(bindings::login::businessDate, Variant::fromDate(45473.0))
      .property(bindings::login::authString, "");
  if (moduleCode) login->property(bindings::login::moduleCode, *moduleCode);
  return login;
}

FakePlatform::Class FakePlatform::known(const NamedClass& entry, ComPtr<IUnknown> (FakePlatform::*make)()) {
  return std::make_unique<InProcessClass>(classIdOf(entry), [this, &entry, make] {
    recorder_.record("new " + toUtf8(std::wstring_view(entry.progId)));
    return (this->*make)();
  });
}

ComPtr<FakeObject> FakePlatform::dialog(const std::string& identifier, const std::vector<FakeItem>& items) {
  ComPtr<FakeObject> dialog = filterObject(recorder_, items, conditions);
  dialog->property(bindings::dialog::login, loginObject())
      .property(bindings::dialog::identifier, identifier)
      .property(bindings::dialog::connection, makeObject<FakeObject>(recorder_, "DialogConnection"))
      .on(bindings::dialog::setUnavailable, nothing)
      .on(bindings::dialog::setEnumeration, nothing)
      .on(bindings::dialog::setLookupCondition, nothing)
      .on(bindings::dialog::setLookupConditionOfValue, nothing);
  return dialog;
}

ComPtr<FakeObject> FakePlatform::argument(const std::vector<FakeItem>& items) {
  const ComPtr<FakeObject> login = loginObject();
  const ComPtr<FakeObject> related = makeObject<FakeObject>(recorder_, "Row");
  related->on(bindings::report_row::value, [this](Call& call) -> Variant {
    const auto found = row.find(call.text(0));
    return found == row.end() ? Variant::null() : found->second;
  });
  const ComPtr<FakeObject> dataSource = makeObject<FakeObject>(recorder_, "DataSource");
  dataSource->property(bindings::data_source::type, 0).property(bindings::data_source::sql, "ResultTable");
  ComPtr<FakeObject> e = makeObject<FakeObject>(recorder_, "e");
  e->property(bindings::argument::rawFilter, filterObject(recorder_, items, conditions))
      .property(bindings::argument::login, login)
      .property(bindings::argument::loginObj, login)
      .property(bindings::argument::dataSource, dataSource)
      .property(bindings::argument::action, "Link")
      .property(bindings::argument::languageId, 2052)
      .property(bindings::argument::row, related);
  return e;
}

ComPtr<IUnknown> FakePlatform::makeConnection() {
  ComPtr<FakeObject> object = makeObject<FakeObject>(recorder_, "Connection");
  FakeObject* connection = object.get();
  const auto state = std::make_shared<int>(0);
  connection->property(bindings::ado::cursorLocation)
      .property(bindings::ado::connectionString)
      .property(bindings::ado::connectionTimeout)
      .property(bindings::ado::commandTimeout)
      .on(bindings::ado::open,
          [this, state](Call& /*call*/) -> Variant {
            *state = openState;
            return {};
          })
      .on(bindings::ado::execute,
          [](Call& call) -> Variant {
            call.writeBack(1, Variant(3));
            return Variant(static_cast<IDispatch*>(nullptr));
          })
      .on(bindings::ado::state, [state](Call& /*call*/) -> Variant { return *state; })
      .on(bindings::ado::close, [state](Call& /*call*/) -> Variant {
        *state = 0;
        return {};
      });
  return ComPtr<IUnknown>(object);
}

ComPtr<IUnknown> FakePlatform::makeRecordset() {
  ComPtr<FakeObject> object = makeObject<FakeObject>(recorder_, "Recordset");
  FakeObject* recordset = object.get();
  struct Content {
    std::vector<std::vector<Variant>> rows;
    std::size_t current = 0;
  };
  const auto content = std::make_shared<Content>();
  const ComPtr<FakeObject> fields = makeObject<FakeObject>(recorder_, "Fields");
  fields->on(
      L"Item",
      [this, content](Call& call) -> Variant {
        const ComPtr<FakeObject> field = makeObject<FakeObject>(recorder_, "Field");
        field->property(bindings::ado::value,
                        content->rows.at(content->current).at(static_cast<std::size_t>(call.integer(0))), DISPID_VALUE);
        return field;
      },
      DISPID_VALUE);
  recordset->property(bindings::ado::cursorLocation)
      .on(bindings::ado::open,
          [this, content](Call& call) -> Variant {
            if (rows) content->rows = rows(call.text(0));
            return {};
          })
      .on(bindings::ado::eof, [content](Call& /*call*/) -> Variant { return content->current >= content->rows.size(); })
      .on(bindings::ado::moveNext,
          [content](Call& /*call*/) -> Variant {
            ++content->current;
            return {};
          })
      .property(bindings::ado::fields, fields)
      .on(bindings::ado::close, [](Call& /*call*/) -> Variant { return {}; });
  return ComPtr<IUnknown>(object);
}

ComPtr<IUnknown> FakePlatform::makePublicComponent() {
  ComPtr<FakeObject> object = makeObject<FakeObject>(recorder_, "IAPub");
  const ComPtr<FakeObject> years = makeObject<FakeObject>(recorder_, "Years");
  years->property(bindings::public_component::dictionaryCount, 2)
      .on(
          L"Item", [](Call& call) -> Variant { return call.text(0) == "1" ? Variant(2023) : Variant("2024"); },
          DISPID_VALUE);
  object
      ->on(bindings::public_component::accountInformation,
           [this](Call& call) -> Variant {
             if (call.text(1) == "cSysVersion") return edition;
             if (call.text(1) == "dIAFirstDate") return firstDate;
             return call.text(0) == "AA" && call.text(1) != "cValueStyle" ? "2" : valuationMethod;
           })
      .property(bindings::public_component::currentPeriodYear, 2024)
      .on(bindings::public_component::costItemStartMonth, [this](Call& /*call*/) -> Variant { return startMonth; })
      .property(bindings::public_component::usedYears, years)
      .property(bindings::public_component::costItemOpeningsFinished, true)
      .on(bindings::public_component::moduleStart,
          [](Call& call) -> Variant {
            call.writeBack(2, Variant(5));
            call.writeBack(3, Variant(2023));
            return {};
          })
      .on(bindings::public_component::datesOfPeriod,
          [](Call& call) -> Variant {
            call.writeBack(4, Variant::fromDate(firstDay(call.integer(2), call.integer(3))));
            call.writeBack(5, Variant::fromDate(firstDay(call.integer(2), call.integer(3) + 1) - 1));
            return {};
          })
      .on(bindings::public_component::periodOfDate,
          [](Call& call) -> Variant {
            SYSTEMTIME time{};
            VariantTimeToSystemTime(call.value(1).date, &time);
            call.writeBack(2, Variant(int{time.wYear}));
            call.writeBack(3, Variant(int{time.wMonth}));
            return {};
          })
      .on(bindings::public_component::periodSettled,
          [this](Call& call) -> Variant { return call.integer(2) <= lastSettledMonth; })
      .property(bindings::public_component::workstationName, "DESK_7");
  return ComPtr<IUnknown>(object);
}

ComPtr<IUnknown> FakePlatform::makeResourceService() {
  return ComPtr<IUnknown>::adopt(
      static_cast<bindings::IResourceService*>(makeObject<FakeResourceService>(recorder_).release()));
}

ComPtr<IUnknown> FakePlatform::makeNaming() {
  ComPtr<FakeObject> object = makeObject<FakeObject>(recorder_, "Naming");
  object->property(L"Number", Variant(77.0), bindings::namingNumber);
  return ComPtr<IUnknown>(object);
}

ComPtr<IUnknown> FakePlatform::makeUniqueNames() {
  ComPtr<FakeObject> object = makeObject<FakeObject>(recorder_, "UniqueName");
  object->on(bindings::uniqueName, [this](Call& /*call*/) -> Variant { return "u" + std::to_string(++uniqueCount_); });
  return ComPtr<IUnknown>(object);
}

ComPtr<IUnknown> FakePlatform::makeDrillThrough() {
  ComPtr<FakeObject> object = makeObject<FakeObject>(recorder_, "DrillThrough");
  object->property(bindings::filterForLogin, makeObject<FakeObject>(recorder_, "DrillThroughFilter"));
  return ComPtr<IUnknown>(object);
}

ComPtr<IUnknown> FakePlatform::makeWorkTableNumber() {
  ComPtr<FakeObject> object = makeObject<FakeObject>(recorder_, "WorkTableNumber");
  constexpr int first = 500;
  object->property(L"Number", first + ++workTableCount_, DISPID_VALUE);
  return ComPtr<IUnknown>(object);
}

ComPtr<IUnknown> FakePlatform::makeAccountLogin() {
  ComPtr<FakeObject> object = makeObject<FakeObject>(recorder_, "AccountLogin");
  object->on(bindings::account_login::initialise, nothing);
  return ComPtr<IUnknown>(object);
}

ComPtr<IUnknown> FakePlatform::makeEnvironment() {
  ComPtr<FakeObject> object = makeObject<FakeObject>(recorder_, "Environment");
  object->on(bindings::inventory_environment::initialise, nothing)
      .on(bindings::inventory_environment::tableNames,
          [](Call& call) -> Variant {
            call.writeBack(0, Variant("DetailResult"));
            call.writeBack(1, Variant("OtherTable"));
            return {};
          })
      .on(bindings::inventory_environment::fillOptions, [this](Call& /*call*/) -> Variant {
        optionsFilled_ = true;
        return {};
      });
  return ComPtr<IUnknown>(object);
}

ComPtr<IUnknown> FakePlatform::makeAccountOptions() {
  optionsFilled_ = false;
  ComPtr<FakeObject> object = makeObject<FakeObject>(recorder_, "AccountOptions");
  const auto filled = [this](const std::string& value) {
    return [this, value](Call& /*call*/) -> Variant { return optionsFilled_ ? Variant(value) : Variant(); };
  };
  object->on(bindings::account_options::costingBasis, filled(costingBasis))
      .on(bindings::account_options::inventoryTable, filled("InventoryView"))
      .on(bindings::account_options::warehouseTable, filled("WarehouseView"));
  return ComPtr<IUnknown>(object);
}

ComPtr<IUnknown> FakePlatform::makeSourceVoucher() {
  ComPtr<FakeObject> object = makeObject<FakeObject>(recorder_, "UniVch");
  object->on(bindings::source_voucher::initialise, nothing)
      .on(bindings::source_voucher::show, nothing)
      .on(bindings::source_voucher::showCostItemAdjustment, nothing)
      .on(bindings::source_voucher::showDifferences, nothing)
      .on(bindings::source_voucher::showPriceAdjustment, nothing);
  return ComPtr<IUnknown>(object);
}

ComPtr<IUnknown> FakePlatform::makeLedgerModule() {
  ComPtr<FakeObject> object = makeObject<FakeObject>(recorder_, "ZzPub");
  object->property(bindings::ledger_module::business)
      .property(bindings::ledger_module::login)
      .on(bindings::ledger_module::initialise, nothing);
  return ComPtr<IUnknown>(object);
}

ComPtr<IUnknown> FakePlatform::makeLedgerVoucher() {
  ComPtr<FakeObject> object = makeObject<FakeObject>(recorder_, "ZzPz");
  object->property(bindings::ledger_voucher::login)
      .property(bindings::ledger_voucher::module)
      .on(bindings::ledger_voucher::open, nothing);
  return ComPtr<IUnknown>(object);
}

}  // namespace quillon::component::test
