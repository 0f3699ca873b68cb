#include "frame/com/classes.h"

#include <memory>
#include <string>

#include "frame/com/dual_object.h"
#include "frame/com/module_state.h"
#include "frame/com/quillon_interfaces.h"
#include "reports/sfc_item/sfc_item.h"

namespace quillon::com {

namespace {

// The argument object that a caller passes by reference, as the core's port.
ComReportArgument argumentOf(IDispatch** e) {
  return ComReportArgument(ComPtr<IDispatch>(e ? *e : nullptr));
}

class SfcItemClass : public DualObject<_clsSFC_Item, clsSFC_Item> {
 public:
  SfcItemClass() : DualObject("Quillon.clsSFC_Item") {}

  STDMETHODIMP get_tarn_tmpTable(BSTR* value) override {
    return run([&] { give(value, report_.tempTableProperty()); });
  }
  STDMETHODIMP put_tarn_tmpTable(BSTR* value) override {
    return run([&] { report_.setTempTableProperty(taken(value)); });
  }
  STDMETHODIMP TempTablename(BSTR* result) override {
    return run([&] { give(result, report_.tempTableName()); });
  }
  STDMETHODIMP MoveDataDetail(BSTR* result) override {
    return run([&] {
      require(result);
      give(result, report_.moveDataDetail());
    });
  }
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
  SfcItem report_{state_->module()};
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

  STDMETHODIMP GETSQL(IDispatch** /*e*/) override { return notImplemented("GETSQL", subject); }
  STDMETHODIMP Execute(IDispatch** /*e*/) override { return notImplemented("Execute", subject); }

 private:
  static constexpr std::string_view subject = "the cost-item detail ledger";
};

class OutboundSummaryClass : public DualObject<_clsOutsum_Item, clsOutsum_Item> {
 public:
  OutboundSummaryClass() : DualObject("Quillon.clsOutsum_Item") {}

  STDMETHODIMP get_tarn_tmpTable(BSTR* value) override {
    return run([&] { give(value, tempTable_); });
  }
  STDMETHODIMP put_tarn_tmpTable(BSTR* value) override {
    return run([&] { tempTable_ = taken(value); });
  }
  STDMETHODIMP TempTablename(BSTR* /*result*/) override { return notImplemented("TempTablename", subject); }
  STDMETHODIMP MoveDataDetail(BSTR* /*result*/) override { return notImplemented("MoveDataDetail", subject); }
  STDMETHODIMP GETSQL(IDispatch** /*e*/) override { return notImplemented("GETSQL", subject); }
  STDMETHODIMP Execute(IDispatch** /*e*/) override { return notImplemented("Execute", subject); }

 private:
  static constexpr std::string_view subject = "the outbound summary by cost item";

  std::string tempTable_;
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

  STDMETHODIMP CallBack_FilterInit(IDispatch** /*filter*/, VARIANT* /*result*/) override {
    return notImplemented("CallBack_FilterInit", subject);
  }
  STDMETHODIMP CallBack_ValueChange(BSTR* /*key*/, IDispatch** /*filter*/) override {
    return notImplemented("CallBack_ValueChange", subject);
  }
  STDMETHODIMP CallBack_FilterClick(IDispatch** /*filter*/, VARIANT_BOOL* /*cancel*/, VARIANT* /*result*/) override {
    return notImplemented("CallBack_FilterClick", subject);
  }
  STDMETHODIMP CallBack_ReportViewChange(BSTR* /*key*/, IDispatch** /*filter*/, VARIANT* /*viewClass*/) override {
    return notImplemented("CallBack_ReportViewChange", subject);
  }
  STDMETHODIMP CallBack_ReportViewInit(IDispatch** /*filter*/, VARIANT* /*viewClass*/) override {
    return notImplemented("CallBack_ReportViewInit", subject);
  }
  STDMETHODIMP InitYear() override { return notImplemented("InitYear", subject); }
  STDMETHODIMP InitGrade() override { return notImplemented("InitGrade", subject); }

 private:
  static constexpr std::string_view subject = "the filter dialog of the summary reports";
};

class LedgerFilterClass : public DualObject<_clsFilterControl, clsFilterControl> {
 public:
  LedgerFilterClass() : DualObject("Quillon.clsFilterControl") {}

  STDMETHODIMP CallBack_FilterInit(IDispatch** /*filter*/, VARIANT* /*result*/) override {
    return notImplemented("CallBack_FilterInit", subject);
  }
  STDMETHODIMP CallBack_FilterClick(IDispatch** /*filter*/, VARIANT_BOOL* /*cancel*/, VARIANT* /*result*/) override {
    return notImplemented("CallBack_FilterClick", subject);
  }
  STDMETHODIMP CallBack_ValueChange(BSTR* /*key*/, IDispatch** /*filter*/) override {
    return notImplemented("CallBack_ValueChange", subject);
  }
  STDMETHODIMP CallBack_ReportViewChange(BSTR* /*key*/, IDispatch** /*filter*/, VARIANT* /*viewClass*/) override {
    return notImplemented("CallBack_ReportViewChange", subject);
  }
  STDMETHODIMP CallBack_ReportViewInit(IDispatch** /*filter*/, VARIANT* /*viewClass*/) override {
    return notImplemented("CallBack_ReportViewInit", subject);
  }

 private:
  static constexpr std::string_view subject = "the filter dialog of the cost-item detail ledger";
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
