#include "workbench/com/name_objects.h"

#include <memory>
#include <string>
#include <utility>

#include "automation/dispatch_object.h"
#include "component/platform_bindings.h"
#include "workbench/com/number_or_text.h"

namespace quillon::workbench {

using automation::Call;
using automation::callable;
using automation::ComPtr;
using automation::DispatchObject;
using automation::makeObject;
using automation::readable;
using automation::Variant;
namespace bindings = component::bindings;

namespace {

class ExposedNaming : public DispatchObject<ExposedNaming> {
 public:
  static std::span<const Member> members() {
    static constexpr Member table[] = {
        {L"Number", bindings::namingNumber, readable | callable, 0, 0, &ExposedNaming::number}};
    return table;
  }

  explicit ExposedNaming(const std::string& number) : number_(numberOrText(number)) {}

 private:
  Variant number(Call&) { return number_; }

  Variant number_;
};

class ExposedUniqueName : public DispatchObject<ExposedUniqueName> {
 public:
  static std::span<const Member> members() {
    static constexpr Member table[] = {
        {bindings::uniqueName, DISPID_VALUE, readable, 0, 0, &ExposedUniqueName::uniqueName}};
    return table;
  }

  explicit ExposedUniqueName(std::shared_ptr<UniqueNameSource> names) : names_(std::move(names)) {}

 private:
  Variant uniqueName(Call&) { return names_->next(); }

  std::shared_ptr<UniqueNameSource> names_;
};

}  // namespace

ComPtr<IUnknown> namingObject(const std::string& number) {
  return makeObject<ExposedNaming>(number);
}

ComPtr<IUnknown> uniqueNamesObject(std::shared_ptr<UniqueNameSource> names) {
  return makeObject<ExposedUniqueName>(std::move(names));
}

}  // namespace quillon::workbench
