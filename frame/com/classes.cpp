#include "frame/com/classes.h"

#include <memory>
#include <string>

#include "filters/filter_control.h"
#include "filters/sfc_filter_control.h"
#include "frame/com/dual_object.h"
#include "frame/com/module_state.h"
#include "frame/com/quillon_interfaces.h"
#include "reports/fx_detail/fx_detail.h"
#include "reports/outsum_item/outsum_item.h"
#include "reports/sfc_item/sfc_item.h"

namespace quillon::com {

namespace {

// The argument object that a caller passes by reference, as the core's port.
ComReportArgument argumentOf(IDispatch** e) {
  return ComReportArgument(ComPtr<IDispatch>(e ? *e : nullptr));
}

// The filter object that a dialog passes by reference, as the core's port.
ComFilterDialog dialogOf(IDispatch** filter) {
  return ComFilterDialog(ComPtr<IDispatch>(filter ? *filter : nullptr));
}

// Gives the caller's variant a new value; one that refers to another variable passes it on to that one.
void assign(VARIANT& variable, Variant value) {
  if ((variable.vt & VT_BYREF) == 0) {
    VariantClear(&variable);
    variable = value.release();
  } else if (const HRESULT code = writeBack(variable, value); FAILED(code)) {
    throw AutomationError(code, "Quillon", "The variable for the result cannot hold a text.");
  }
}

// The two summary reports have interfaces of one layout.
template <class Interface, class Class, class Report>
class SummaryReportClass : public DualObject<Interface, Class> {
 public:
  explicit SummaryReportClass(std::string_view progId) : DualObject<Interface, Class>(progId) {}

  STDMETHODIMP get_tarn_tmpTable(BSTR* value) override {
    return this->run([&] { this->give(value, report_.tempTableProperty()); });
  }
  STDMETHODIMP put_tarn_tmpTable(BSTR* value) override {
    return this->run([&] { report_.setTempTableProperty(this->taken(value)); });
  }
  STDMETHODIMP TempTablename(BSTR* result) override {
    return this->run([&] { this->give(result, report_.tempTableName()); });
  }
  STDMETHODIMP MoveDataDetail(BSTR* result) override {
    return this->run([&] {
      this->require(result);
      this->give(result, report_.moveDataDetail());
    });
  }
  STDMETHODIMP GETSQL(IDispatch** e) override {
    return this->run([&] {
      ComReportArgument argument = argumentOf(e);
      report_.getSql(argument);
    });
  }
  STDMETHODIMP Execute(IDispatch** e) override {
    return this->run([&] {
      ComReportArgument argument = argumentOf(e);
      report_.execute(argument);
    });
  }

 private:
  std::shared_ptr<ModuleState> state_ = threadState();
  Report report_{state_->module()};
};

class ReceiptIssueBalanceClass : public SummaryReportClass<_clsSFC_Item, clsSFC_Item, SfcItem> {
 public:
  ReceiptIssueBalanceClass() : SummaryReportClass("Quillon.clsSFC_Item") {}
};

class OutboundSummaryClass : public SummaryReportClass<_clsOutsum_Item, clsOutsum_Item, OutsumItem> {
 public:
  OutboundSummaryClass() : SummaryReportClass("Quillon.clsOutsum_Item") {}
};

class BusinessClass : public DualObject<_ClsBusiness, ClsBusiness> {
 public:
  BusinessClass() : DualObject("Quillon.ClsBusiness") {}

  STDMETHODIMP Init(IDispatch** business, VARIANT* result) override {
    return run([&] {
      require(business);
      require(result);
      VariantInit(result);
      // "Nothing" takes back what was stored before.
      state_->module().business =
          *business ? std::make_shared<ComBusinessObject>(ComPtr<IDispatch>(*business)) : nullptr;
    });
  }

 private:
  std::shared_ptr<ModuleState> state_ = threadState();
};

class DetailLedgerClass : public DualObject<_clsFXDetail, clsFXDetail> {
 public:
  DetailLedgerClass() : DualObject("Quillon.clsFXDetail") {}

  STDMETHODIMP GETSQL(IDispatch** e) override {
    return run([&] {
      ComReportArgument argument = argumentOf(e);
      report_.getSql(argument);
    });
  }
  STDMETHODIMP Execute(IDispatch** e) override {
    return run([&] {
      ComReportArgument argument = argumentOf(e);
      report_.execute(argument);
    });
  }

 private:
  std::shared_ptr<ModuleState> state_ = threadState();
  FxDetail report_{state_->module()};
};

class VoucherReportClass : public DualObject<_clsFXWt, clsFXWt> {
 public:
  VoucherReportClass() : DualObject("Quillon.clsFXWt") {}

  STDMETHODIMP get_msLanguage(BSTR* value) override {
    return run([&] { give(value, language_); });
  }
  STDMETHODIMP put_msLanguage(BSTR* value) override {
    return run([&] { language_ = taken(value); });
  }
  STDMETHODIMP get_objFilter(IDispatch** value) override {
    return run([&] {
      require(value);
      *value = ComPtr<IDispatch>(filter_).release();
    });
  }
  // The reserved slot: clients that know no assignment by reference (JScript) set the object through it.
  STDMETHODIMP put_objFilter(IDispatch** value) override { return putref_objFilter(value); }
  STDMETHODIMP putref_objFilter(IDispatch** value) override {
    return run([&] {
      require(value);
      filter_ = ComPtr<IDispatch>(*value);
    });
  }
  STDMETHODIMP get_tarn_tmpTable(BSTR* value) override {
    return run([&] { give(value, tempTable_); });
  }
  STDMETHODIMP put_tarn_tmpTable(BSTR* value) override {
    return run([&] { tempTable_ = taken(value); });
  }
  STDMETHODIMP get_m_sBaseTable(BSTR* value) override {
    return run([&] { give(value, baseTable_); });
  }
  STDMETHODIMP put_m_sBaseTable(BSTR* value) override {
    return run([&] { baseTable_ = taken(value); });
  }
  STDMETHODIMP GETSQL(IDispatch** /*e*/) override { return notImplemented("GETSQL", subject); }
  STDMETHODIMP MoveDataDetail(BSTR* /*result*/) override { return notImplemented("MoveDataDetail", subject); }
  STDMETHODIMP Execute(IDispatch** /*e*/) override { return notImplemented("Execute", subject); }

 private:
  static constexpr std::string_view subject = "the cost-item voucher report";

  std::string language_;
  ComPtr<IDispatch> filter_;
  std::string tempTable_;
  std::string baseTable_;
};

class VoucherFilterClass : public DualObject<_clsWtFilterControl, clsWtFilterControl> {
 public:
  VoucherFilterClass() : DualObject("Quillon.clsWtFilterControl") {}

  STDMETHODIMP get_msLanguage(BSTR* value) override {
    return run([&] { give(value, language_); });
  }
  STDMETHODIMP put_msLanguage(BSTR* value) override {
    return run([&] { language_ = taken(value); });
  }
  STDMETHODIMP CallBack_FilterInit(IDispatch** /*filter*/, VARIANT* /*result*/) override {
    return notImplemented("CallBack_FilterInit", subject);
  }
  STDMETHODIMP CallBack_ValueChange(BSTR* /*key*/, IDispatch** /*filter*/) override {
    return notImplemented("CallBack_ValueChange", subject);
  }
  STDMETHODIMP CallBack_FilterClick(IDispatch** /*filter*/, VARIANT_BOOL* /*cancel*/, VARIANT* /*result*/) override {
    return notImplemented("CallBack_FilterClick", subject);
  }

 private:
  static constexpr std::string_view subject = "the filter dialog of the cost-item voucher report";

  std::string language_;
};

class SummaryFilterClass : public DualObject<_clsSFCFilterControl, clsSFCFilterControl> {
 public:
  SummaryFilterClass() : DualObject("Quillon.clsSFCFilterControl") {}

  STDMETHODIMP CallBack_FilterInit(IDispatch** filter, VARIANT* result) override {
    return run([&] {
      require(result);
      VariantInit(result);
      ComFilterDialog dialog = dialogOf(filter);
      control_.filterInit(dialog);
    });
  }
  STDMETHODIMP CallBack_ValueChange(BSTR* key, IDispatch** filter) override {
    return run([&] {
      ComFilterDialog dialog = dialogOf(filter);
      control_.valueChange(taken(key), dialog);
    });
  }
  STDMETHODIMP CallBack_FilterClick(IDispatch** /*filter*/, VARIANT_BOOL* /*cancel*/, VARIANT* result) override {
    return run([&] {
      require(result);
      *result = Variant(SfcFilterControl::filterClick()).release();
    });
  }
  STDMETHODIMP CallBack_ReportViewChange(BSTR* /*key*/, IDispatch** filter, VARIANT* viewClass) override {
    return giveView(filter, viewClass);
  }
  STDMETHODIMP CallBack_ReportViewInit(IDispatch** filter, VARIANT* viewClass) override {
    return giveView(filter, viewClass);
  }
  STDMETHODIMP InitYear() override {
    return run([&] { control_.initYear(); });
  }
  STDMETHODIMP InitGrade() override {
    return run([&] { control_.initGrade(); });
  }

 private:
  HRESULT giveView(IDispatch** filter, VARIANT* viewClass) noexcept {
    return run([&] {
      require(viewClass);
      ComFilterDialog dialog = dialogOf(filter);
      assign(*viewClass, SfcFilterControl::reportView(dialog));
    });
  }

  std::shared_ptr<ModuleState> state_ = threadState();
  SfcFilterControl control_{state_->module()};
};

class LedgerFilterClass : public DualObject<_clsFilterControl, clsFilterControl> {
 public:
  LedgerFilterClass() : DualObject("Quillon.clsFilterControl") {}

  STDMETHODIMP CallBack_FilterInit(IDispatch** filter, VARIANT* result) override {
    return run([&] {
      require(result);
      VariantInit(result);
      ComFilterDialog dialog = dialogOf(filter);
      control_.filterInit(dialog);
    });
  }
  STDMETHODIMP CallBack_FilterClick(IDispatch** filter, VARIANT_BOOL* cancel, VARIANT* result) override {
    return run([&] {
      require(cancel);
      require(result);
      VariantInit(result);
      ComFilterDialog dialog = dialogOf(filter);
      if (control_.filterClick(dialog)) *cancel = VARIANT_TRUE;
    });
  }
  STDMETHODIMP CallBack_ValueChange(BSTR* key, IDispatch** filter) override {
    return run([&] {
      ComFilterDialog dialog = dialogOf(filter);
      control_.valueChange(taken(key), dialog);
    });
  }
  STDMETHODIMP CallBack_ReportViewChange(BSTR* /*key*/, IDispatch** filter, VARIANT* viewClass) override {
    return giveView(filter, viewClass);
  }
  STDMETHODIMP CallBack_ReportViewInit(IDispatch** filter, VARIANT* viewClass) override {
    return giveView(filter, viewClass);
  }

 private:
  // A dialog without the item that decides leaves the caller's variable as it is.
  HRESULT giveView(IDispatch** filter, VARIANT* viewClass) noexcept {
    return run([&] {
      require(viewClass);
      ComFilterDialog dialog = dialogOf(filter);
      if (const auto view = FilterControl::reportView(dialog)) assign(*viewClass, *view);
    });
  }

  std::shared_ptr<ModuleState> state_ = threadState();
  FilterControl control_{state_->module()};
};

// The references that an instance has besides IUnknown do not matter to who makes it.
template <class T>
ComPtr<IUnknown> makeInstance() {
  return ComPtr<IUnknown>::adopt(static_cast<IDispatch*>(makeObject<T>().release()));
}

}  // namespace

std::span<const ServerClass> serverClasses() {
  static const ServerClass classes[] = {
      {__uuidof(clsSFC_Item), L"clsSFC_Item", L"Receipt/issue/balance by cost item",
       &makeInstance<ReceiptIssueBalanceClass>},
      {__uuidof(ClsBusiness), L"ClsBusiness", L"Holder of the platform's business object",
       &makeInstance<BusinessClass>},
      {__uuidof(clsFXDetail), L"clsFXDetail", L"Cost-item detail ledger", &makeInstance<DetailLedgerClass>},
      {__uuidof(clsOutsum_Item), L"clsOutsum_Item", L"Outbound summary by cost item",
       &makeInstance<OutboundSummaryClass>},
      {__uuidof(clsFXWt), L"clsFXWt", L"Cost-item voucher report", &makeInstance<VoucherReportClass>},
      {__uuidof(clsWtFilterControl), L"clsWtFilterControl", L"Filter dialog of the cost-item voucher report",
       &makeInstance<VoucherFilterClass>},
      {__uuidof(clsSFCFilterControl), L"clsSFCFilterControl", L"Filter dialog of the two summary reports",
       &makeInstance<SummaryFilterClass>},
      {__uuidof(clsFilterControl), L"clsFilterControl", L"Filter dialog of the cost-item detail ledger",
       &makeInstance<LedgerFilterClass>},
  };
  return classes;
}

}  // namespace quillon::com
