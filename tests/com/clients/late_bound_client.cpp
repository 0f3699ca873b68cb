// A late-bound client: creates the classes by ProgID and calls their members by name, by reference where Basic would.
//
//   late_bound_client ACCOUNT
#include "frame/automation_error.h"
#include "tests/automation/com_scope.h"
#include "tests/com/clients/client_session.h"

namespace quillon::automation::test {
namespace {

LateBound newObject(const wchar_t* progId) {
  CLSID classId;
  ComPtr<IDispatch> object;
  HRESULT code = CLSIDFromProgID(progId, &classId);
  if (SUCCEEDED(code))
    code =
        CoCreateInstance(classId, nullptr, CLSCTX_INPROC_SERVER, IID_IDispatch, reinterpret_cast<void**>(object.out()));
  if (FAILED(code)) throw AutomationError(code, "late-bound client", toUtf8(progId) + " cannot be created");
  return {object, toUtf8(progId)};
}

class LateBoundClasses final : public VoucherReportClasses {
 public:
  void create() override {
    control_ = newObject(L"Quillon.clsWtFilterControl");
    report_ = newObject(L"Quillon.clsFXWt");
  }

  Variant filterInit(IDispatch* filter) override {
    return control_.get(L"CallBack_FilterInit", {Variant::reference(filter)});
  }
  void valueChange(const char* key, IDispatch* filter) override {
    Variant variable(key);
    control_.call(L"CallBack_ValueChange", {Variant::reference(variable), Variant::reference(filter)});
  }
  bool filterClick(IDispatch* filter, bool& cancel) override {
    Variant variable(cancel);
    const bool accepted =
        control_.flag(L"CallBack_FilterClick", {Variant::reference(filter), Variant::reference(variable)});
    cancel = toFlag(variable);
    return accepted;
  }

  void setTemporaryTable(const char* name) override { report_.put(L"tarn_tmpTable", name); }
  std::string temporaryTable() override { return report_.text(L"tarn_tmpTable"); }
  ComPtr<IDispatch> filter() override { return toObject(report_.get(L"objFilter")); }
  void getSql(IDispatch* e) override { report_.call(L"GETSQL", {Variant::reference(e)}); }
  void execute(IDispatch* e) override { report_.call(L"Execute", {Variant::reference(e)}); }
  void moveDataDetail() override { report_.call(L"MoveDataDetail"); }
  bool hasMember(const wchar_t* name) override { return report_.offers(name); }

 private:
  LateBound control_;
  LateBound report_;
};

}  // namespace
}  // namespace quillon::automation::test

int main(int argumentCount, char** arguments) {
  const quillon::automation::test::ComScope apartment;
  quillon::automation::test::LateBoundClasses classes;
  return quillon::automation::test::runSession(classes, argumentCount, arguments);
}
