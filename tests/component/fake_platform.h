// A whole host platform for tests: ADO, the objects that a report is handed, and the components that the library
// creates, all of them writing down their calls in one Recorder.
#pragma once

#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "automation/class_factory.h"
#include "component/platform_bindings.h"
#include "tests/component/fake_object.h"

namespace quillon::component::test {

struct FakeItem {
  std::string name;
  automation::Variant value;
  automation::Variant value2;
};

// Registered for the thread that makes it, for as long as it lives. An object's making is written down as
// "new ProgID" and can fail like a call.
class FakePlatform {
 public:
  explicit FakePlatform(Recorder& recorder);

  // The argument object e with a filter of these items.
  automation::ComPtr<FakeObject> argument(const std::vector<FakeItem>& items);
  // The filter object of a dialog with these items, for the report that `identifier` names.
  automation::ComPtr<FakeObject> dialog(const std::string& identifier, const std::vector<FakeItem>& items);

  // The rows that a statement gives; a statement that is not asked for here gives none.
  std::function<std::vector<std::vector<automation::Variant>>(const std::string& sql)> rows;
  // The conditions that filter objects build, by token; a token that is not here has none.
  std::map<int, std::string> conditions;
  // ADO's State of each connection after Open.
  int openState = 1;
  // What the public component gives as iFxStartMonth.
  int startMonth = 1;
  // What it gives for options: the edition, the valuation method, and the first day of inventory accounting.
  std::string edition = "工业";
  std::string valuationMethod = "by inventory";
  std::string firstDate = "2023-01-01";
  // The last month of 2024 that it calls settled. The year's months are the calendar's.
  int lastSettledMonth = 1;
  // What the account options answer once the environment has filled them.
  std::string costingBasis = "按存货核算";
  // The row that Execute is called for; a column that is not here is Null.
  std::map<std::string, automation::Variant> row;
  // The module that the login tells; without one the login object lacks the member. Read when the login is made.
  std::optional<std::string> moduleCode = "IA";

  // Takes a component out, as on a machine where it is not registered.
  void withoutResourceService() { resourceService_.reset(); }
  void withoutNaming() {
    naming_.reset();
    uniqueNames_.reset();
    workTableNumber_.reset();
  }
  void withoutEnvironment() { environment_.reset(); }

 private:
  automation::ComPtr<IUnknown> makeConnection();
  automation::ComPtr<IUnknown> makeRecordset();
  automation::ComPtr<IUnknown> makePublicComponent();
  automation::ComPtr<IUnknown> makeResourceService();
  automation::ComPtr<IUnknown> makeNaming();
  automation::ComPtr<IUnknown> makeUniqueNames();
  automation::ComPtr<IUnknown> makeDrillThrough();
  automation::ComPtr<IUnknown> makeWorkTableNumber();
  automation::ComPtr<IUnknown> makeAccountLogin();
  automation::ComPtr<IUnknown> makeEnvironment();
  automation::ComPtr<IUnknown> makeAccountOptions();
  automation::ComPtr<IUnknown> makeSourceVoucher();
  automation::ComPtr<IUnknown> makeLedgerModule();
  automation::ComPtr<IUnknown> makeLedgerVoucher();

  automation::ComPtr<FakeObject> loginObject();

  using Class = std::unique_ptr<automation::InProcessClass>;
  Class known(const automation::NamedClass& entry, automation::ComPtr<IUnknown> (FakePlatform::*make)());

  Recorder& recorder_;
  int uniqueCount_ = 0;
  int workTableCount_ = 0;
  bool optionsFilled_ = false;
  Class connection_;
  Class recordset_;
  Class publicComponent_;
  Class resourceService_;
  Class naming_;
  Class uniqueNames_;
  Class drillThrough_;
  Class workTableNumber_;
  Class accountLogin_;
  Class environment_;
  Class accountOptions_;
  Class sourceVoucher_;
  Class ledgerModule_;
  Class ledgerVoucher_;
};

}  // namespace quillon::component::test
