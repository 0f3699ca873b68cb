#include "component/classes.h"

#include <memory>
#include <string>

#include "automation/dual_object.h"
#include "component/argument_adapters.h"
#include "component/filter_adapters.h"
#include "component/module_state.h"
#include "component/quillon_interfaces.h"
#include "component/voucher_adapters.h"
#include "filters/filter_control.h"
#include "filters/sfc_filter_control.h"
#include "filters/wt_filter_control.h"
#include "reports/fx_detail/fx_detail.h"
#include "reports/fx_wt/fx_wt.h"
#include "reports/outsum_item/outsum_item.h"
#include "reports/sfc_item/sfc_item.h"

namespace quillon::component {

using automation::ComPtr;
using automation::DualObject;
using automation::LateBound;
using automation::makeObject;
using automation::Variant;

namespace {

// The argument object that a caller passes by reference, as the core's port.
LateBoundReportArgument argumentOf(IDispatch** e) {
  return LateBoundReportArgument(ComPtr<IDispatch>(e ? *e : nullptr));
}

// The filter object that a dialog passes by reference, as the core's port.
LateBoundFilterDialog dialogOf(IDispatch** filter) {
  return LateBoundFilterDialog(ComPtr<IDispatch>(filter ? *filter : nullptr));
}

// The platform's object behind a filter that came from it; null for none.
ComPtr<IDispatch> objectOf(const std::shared_ptr<Filter>& filter) {
  return filter ? dynamic_cast<const LateBoundFilter&>(*filter).object() : ComPtr<IDispatch>();
}

// Gives the caller's variant a new value; one that refers to another variable passes it on to that one.
void assign(VARIANT& variable, Variant value) {
  if ((variable.vt & VT_BYREF) == 0) {
    VariantClear(&variable);
    variable = value.release();
  } else if (const HRESULT code = writeBack(variable, value); FAILED(code)) {
    throw AutomationError(code, std::string(automation::ownSource), "The variable for the result cannot hold a text.");
  }
}

// What all classes have in common: the thread's module, which outlives them.
template <class Interface, class Class>
class ModuleClass : public DualObject<Interface, Class> {
 protected:
  explicit ModuleClass(std::string_view progId) : DualObject<Interface, Class>(progId) {}

  Module& module() { return state_->module(); }

  // Runs the body of a member that uses the module.
  template <class Body>
  HRESULT use(std::string_view member, Body&& body) noexcept {
    return this->run(member, [&] {
      const Module::Use inUse(module());
      body();
    });
  }

 private:
  std::shared_ptr<ModuleState> state_ = threadState();
};

// The two summary reports have interfaces of one layout.
template <class Interface, class Class, class Report>
class SummaryReportClass : public ModuleClass<Interface, Class> {
 public:
  explicit SummaryReportClass(std::string_view progId) : ModuleClass<Interface, Class>(progId) {}

  STDMETHODIMP get_tarn_tmpTable(BSTR* value) override {
    return this->run("tarn_tmpTable", [&] { this->give(value, report_.tempTableProperty()); });
  }
  STDMETHODIMP put_tarn_tmpTable(BSTR* value) override {
    return this->run("tarn_tmpTable", [&] { report_.setTempTableProperty(this->taken(value)); });
  }
  STDMETHODIMP TempTablename(BSTR* result) override {
    return this->run("TempTablename", [&] { this->give(result, report_.tempTableName()); });
  }
  STDMETHODIMP MoveDataDetail(BSTR* result) override {
    return this->use("MoveDataDetail", [&] {
      this->require(result);
      this->give(result, report_.moveDataDetail());
    });
  }
  STDMETHODIMP GETSQL(IDispatch** e) override {
    return this->use("GETSQL", [&] {
      LateBoundReportArgument argument = argumentOf(e);
      report_.getSql(argument);
    });
  }
  STDMETHODIMP Execute(IDispatch** e) override {
    return this->run("Execute", [&] {
      LateBoundReportArgument argument = argumentOf(e);
      report_.execute(argument);
    });
  }

 private:
  Report report_{this->module()};
};

class SfcItemClass : public SummaryReportClass<_clsSFC_Item, clsSFC_Item, SfcItem> {
 public:
  SfcItemClass() : SummaryReportClass("Quillon.clsSFC_Item") {}
};

class OutsumItemClass : public SummaryReportClass<_clsOutsum_Item, clsOutsum_Item, OutsumItem> {
 public:
  OutsumItemClass() : SummaryReportClass("Quillon.clsOutsum_Item") {}
};

class BusinessClass : public ModuleClass<_ClsBusiness, ClsBusiness> {
 public:
  BusinessClass() : ModuleClass("Quillon.ClsBusiness") {}

  STDMETHODIMP Init(IDispatch** business, VARIANT* result) override {
    return use("Init", [&] {
      require(business);
      require(result);
      VariantInit(result);
      // "Nothing" takes back what was stored before.
      module().business = *business ? std::make_shared<BusinessObjectReference>(ComPtr<IDispatch>(*business)) : nullptr;
    });
  }
};

class FxDetailClass : public ModuleClass<_clsFXDetail, clsFXDetail> {
 public:
  FxDetailClass() : ModuleClass("Quillon.clsFXDetail") {}

  STDMETHODIMP GETSQL(IDispatch** e) override {
    return use("GETSQL", [&] {
      LateBoundReportArgument argument = argumentOf(e);
      report_.getSql(argument);
    });
  }
  STDMETHODIMP Execute(IDispatch** e) override {
    return use("Execute", [&] {
      LateBoundReportArgument argument = argumentOf(e);
      report_.execute(argument);
    });
  }

 private:
  FxDetail report_{this->module()};
};

class FxWtClass : public ModuleClass<_clsFXWt, clsFXWt> {
 public:
  FxWtClass() : ModuleClass("Quillon.clsFXWt") {}

  STDMETHODIMP get_msLanguage(BSTR* value) override {
    return run("msLanguage", [&] { give(value, report_.language()); });
  }
  STDMETHODIMP put_msLanguage(BSTR* value) override {
    return run("msLanguage", [&] { report_.setLanguage(taken(value)); });
  }
  STDMETHODIMP get_objFilter(IDispatch** value) override {
    return run("objFilter", [&] {
      require(value);
      *value = objectOf(report_.filter()).release();
    });
  }
  // The reserved slot: clients that know no assignment by reference (JScript) set the object through it.
  STDMETHODIMP put_objFilter(IDispatch** value) override { return putref_objFilter(value); }
  STDMETHODIMP putref_objFilter(IDispatch** value) override {
    return run("objFilter", [&] {
      require(value);
      report_.setFilter(*value ? std::make_shared<LateBoundFilter>(LateBound(ComPtr<IDispatch>(*value), "objFilter"))
                               : nullptr);
    });
  }
  STDMETHODIMP get_tarn_tmpTable(BSTR* value) override {
    return run("tarn_tmpTable", [&] { give(value, report_.tempTableProperty()); });
  }
  STDMETHODIMP put_tarn_tmpTable(BSTR* value) override {
    return run("tarn_tmpTable", [&] { report_.setTempTableProperty(taken(value)); });
  }
  STDMETHODIMP get_m_sBaseTable(BSTR* value) override {
    return run("m_sBaseTable", [&] { give(value, report_.baseTable()); });
  }
  STDMETHODIMP put_m_sBaseTable(BSTR* value) override {
    return run("m_sBaseTable", [&] { report_.setBaseTable(taken(value)); });
  }
  STDMETHODIMP GETSQL(IDispatch** e) override {
    return use("GETSQL", [&] {
      LateBoundReportArgument argument = argumentOf(e);
      report_.getSql(argument);
    });
  }
  STDMETHODIMP MoveDataDetail(BSTR* result) override {
    return use("MoveDataDetail", [&] {
      require(result);
      give(result, report_.moveDataDetail());
    });
  }
  STDMETHODIMP Execute(IDispatch** e) override {
    return use("Execute", [&] {
      LateBoundReportArgument argument = argumentOf(e);
      report_.execute(argument);
    });
  }

 private:
  FxWt report_{this->module()};
};

// What the filter dialogs' classes have in common; `Control` is the core's class behind one.
template <class Interface, class Class, class Control>
class DialogClass : public ModuleClass<Interface, Class> {
 public:
  explicit DialogClass(std::string_view progId) : ModuleClass<Interface, Class>(progId) {}

  STDMETHODIMP CallBack_FilterInit(IDispatch** filter, VARIANT* result) override {
    return this->use("CallBack_FilterInit", [&] {
      this->require(result);
      VariantInit(result);
      LateBoundFilterDialog dialog = dialogOf(filter);
      control_.filterInit(dialog);
    });
  }
  STDMETHODIMP CallBack_ValueChange(BSTR* key, IDispatch** filter) override {
    return this->use("CallBack_ValueChange", [&] {
      LateBoundFilterDialog dialog = dialogOf(filter);
      control_.valueChange(this->taken(key), dialog);
    });
  }

 protected:
  Control& control() { return control_; }

 private:
  Control control_{this->module()};
};

class WtFilterControlClass : public DialogClass<_clsWtFilterControl, clsWtFilterControl, WtFilterControl> {
 public:
  WtFilterControlClass() : DialogClass("Quillon.clsWtFilterControl") {}

  STDMETHODIMP get_msLanguage(BSTR* value) override {
    return run("msLanguage", [&] { give(value, control().language()); });
  }
  STDMETHODIMP put_msLanguage(BSTR* value) override {
    return run("msLanguage", [&] { control().setLanguage(taken(value)); });
  }
  STDMETHODIMP CallBack_FilterClick(IDispatch** /*filter*/, VARIANT_BOOL* /*cancel*/, VARIANT* result) override {
    return run("CallBack_FilterClick", [&] {
      require(result);
      *result = Variant(WtFilterControl::filterClick()).release();
    });
  }
};

class SfcFilterControlClass : public DialogClass<_clsSFCFilterControl, clsSFCFilterControl, SfcFilterControl> {
 public:
  SfcFilterControlClass() : DialogClass("Quillon.clsSFCFilterControl") {}

  STDMETHODIMP CallBack_FilterClick(IDispatch** /*filter*/, VARIANT_BOOL* /*cancel*/, VARIANT* result) override {
    return run("CallBack_FilterClick", [&] {
      require(result);
      *result = Variant(SfcFilterControl::filterClick()).release();
    });
  }
  STDMETHODIMP CallBack_ReportViewChange(BSTR* /*key*/, IDispatch** filter, VARIANT* viewClass) override {
    return giveView("CallBack_ReportViewChange", filter, viewClass);
  }
  STDMETHODIMP CallBack_ReportViewInit(IDispatch** filter, VARIANT* viewClass) override {
    return giveView("CallBack_ReportViewInit", filter, viewClass);
  }
  STDMETHODIMP InitYear() override {
    return use("InitYear", [&] { control().initYear(); });
  }
  STDMETHODIMP InitGrade() override {
    return use("InitGrade", [&] { control().initGrade(); });
  }

 private:
  HRESULT giveView(std::string_view member, IDispatch** filter, VARIANT* viewClass) noexcept {
    return use(member, [&] {
      require(viewClass);
      LateBoundFilterDialog dialog = dialogOf(filter);
      assign(*viewClass, SfcFilterControl::reportView(dialog));
    });
  }
};

class FilterControlClass : public DialogClass<_clsFilterControl, clsFilterControl, FilterControl> {
 public:
  FilterControlClass() : DialogClass("Quillon.clsFilterControl") {}

  STDMETHODIMP CallBack_FilterClick(IDispatch** filter, VARIANT_BOOL* cancel, VARIANT* result) override {
    return use("CallBack_FilterClick", [&] {
      require(cancel);
      require(result);
      VariantInit(result);
      LateBoundFilterDialog dialog = dialogOf(filter);
      if (control().filterClick(dialog)) *cancel = VARIANT_TRUE;
    });
  }
  STDMETHODIMP CallBack_ReportViewChange(BSTR* /*key*/, IDispatch** filter, VARIANT* viewClass) override {
    return giveView("CallBack_ReportViewChange", filter, viewClass);
  }
  STDMETHODIMP CallBack_ReportViewInit(IDispatch** filter, VARIANT* viewClass) override {
    return giveView("CallBack_ReportViewInit", filter, viewClass);
  }

 private:
  // A dialog without the item that decides leaves the caller's variable as it is.
  HRESULT giveView(std::string_view member, IDispatch** filter, VARIANT* viewClass) noexcept {
    return use(member, [&] {
      require(viewClass);
      LateBoundFilterDialog dialog = dialogOf(filter);
      if (const auto view = FilterControl::reportView(dialog)) assign(*viewClass, *view);
    });
  }
};

// The references that an instance has besides IUnknown do not matter to who makes it.
template <class T>
ComPtr<IUnknown> makeInstance() {
  return ComPtr<IUnknown>::adopt(static_cast<IDispatch*>(makeObject<T>().release()));
}

}  // namespace

std::span<const ServerClass> serverClasses() {
  static const ServerClass classes[] = {
      {__uuidof(clsSFC_Item), L"clsSFC_Item", L"Receipt/issue/balance by cost item", &makeInstance<SfcItemClass>},
      {__uuidof(ClsBusiness), L"ClsBusiness", L"Holder of the platform's business object",
       &makeInstance<BusinessClass>},
      {__uuidof(clsFXDetail), L"clsFXDetail", L"Cost-item detail ledger", &makeInstance<FxDetailClass>},
      {__uuidof(clsOutsum_Item), L"clsOutsum_Item", L"Outbound summary by cost item", &makeInstance<OutsumItemClass>},
      {__uuidof(clsFXWt), L"clsFXWt", L"Cost-item voucher report", &makeInstance<FxWtClass>},
      {__uuidof(clsWtFilterControl), L"clsWtFilterControl", L"Filter dialog of the cost-item voucher report",
       &makeInstance<WtFilterControlClass>},
      {__uuidof(clsSFCFilterControl), L"clsSFCFilterControl", L"Filter dialog of the two summary reports",
       &makeInstance<SfcFilterControlClass>},
      {__uuidof(clsFilterControl), L"clsFilterControl", L"Filter dialog of the cost-item detail ledger",
       &makeInstance<FilterControlClass>},
  };
  return classes;
}

}  // namespace quillon::component
