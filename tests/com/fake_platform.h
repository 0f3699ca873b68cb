// A whole host platform for tests: ADO, the objects that a report is handed, and the components that the library
// creates, all of them writing down their calls in one Recorder.
#pragma once

#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "frame/com/class_factory.h"
#include "frame/com/platform_bindings.h"
#include "tests/com/fake_object.h"

namespace quillon::com::test {

struct FakeItem {
  std::string name;
  Variant value;
  Variant value2;
};

// Registered for the thread that makes it, for as long as it lives. An object's making is written down as
// "new ProgID" and can fail like a call.
class FakePlatform {
 public:
  explicit FakePlatform(Recorder& recorder);

  // The argument object e with a filter of these items.
  ComPtr<FakeObject> argument(const std::vector<FakeItem>& items);
  // The filter object of a dialog with these items, for the report that `identifier` names.
  ComPtr<FakeObject> dialog(const std::string& identifier, const std::vector<FakeItem>& items);

  // The rows that a statement gives; a statement that is not asked for here gives none.
  std::function<std::vector<std::vector<Variant>>(const std::string& sql)> rows;
  // ADO's State of each connection after Open.
  int openState = 1;
  // What the public component gives as iFxStartMonth.
  int startMonth = 1;

  // Takes a component out, as on a machine where it is not registered.
  void withoutResourceService() { resourceService_.reset(); }
  void withoutNaming() {
    naming_.reset();
    uniqueNames_.reset();
  }

 private:
  ComPtr<IUnknown> makeConnection();
  ComPtr<IUnknown> makeRecordset();
  ComPtr<IUnknown> makePublicComponent();
  ComPtr<IUnknown> makeResourceService();
  ComPtr<IUnknown> makeNaming();
  ComPtr<IUnknown> makeUniqueNames();
  ComPtr<IUnknown> makeDrillThrough();

  using Class = std::unique_ptr<InProcessClass>;
  Class known(const PlatformClass& entry, ComPtr<IUnknown> (FakePlatform::*make)());

  Recorder& recorder_;
  int uniqueCount_ = 0;
  Class connection_;
  Class recordset_;
  Class publicComponent_;
  Class resourceService_;
  Class naming_;
  Class uniqueNames_;
  Class drillThrough_;
};

}  // namespace quillon::com::test
