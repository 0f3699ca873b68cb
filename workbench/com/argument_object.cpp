#include "workbench/com/argument_object.h"

#include <memory>
#include <string>
#include <utility>

#include "automation/dispatch_object.h"
#include "automation/late_bound.h"
#include "component/platform_bindings.h"
#include "workbench/com/filter_objects.h"
#include "workbench/com/login_object.h"

namespace quillon::workbench {

using automation::Call;
using automation::callable;
using automation::ComPtr;
using automation::DispatchObject;
using automation::makeObject;
using automation::readable;
using automation::toInteger;
using automation::toText;
using automation::Variant;
using automation::writable;
namespace bindings = component::bindings;

namespace {

class ExposedDataSource : public DispatchObject<ExposedDataSource> {
 public:
  static std::span<const Member> members() {
    static constexpr Member table[] = {
        {bindings::data_source::sql, DISPID_VALUE, readable | writable, 0, 0, &ExposedDataSource::sql},
        {bindings::data_source::type, 1, readable | writable, 0, 0, &ExposedDataSource::type},
    };
    return table;
  }

  explicit ExposedDataSource(std::shared_ptr<WorkbenchArgument> argument) : argument_(std::move(argument)) {}

 private:
  Variant sql(Call& call) {
    if (call.assigns()) argument_->dataSource()->setResultTable(toText(call.assigned()));
    return argument_->dataSource()->resultTable();
  }
  Variant type(Call& call) {
    if (call.assigns()) argument_->dataSource()->setType(toInteger(call.assigned()));
    return argument_->dataSourceState().type;
  }
  const char* sourceName() const override { return "Quillon data source"; }

  std::shared_ptr<WorkbenchArgument> argument_;
};

// The row that Execute is called for.
class ExposedRow : public DispatchObject<ExposedRow> {
 public:
  static std::span<const Member> members() {
    static constexpr Member table[] = {
        {bindings::report_row::value, 1, callable, 1, 1, &ExposedRow::value},
        {L"TakeRow", 2, callable, 1, 1, &ExposedRow::takeRow},
    };
    return table;
  }

  explicit ExposedRow(std::shared_ptr<WorkbenchArgument> argument) : argument_(std::move(argument)) {}

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

class ExposedArgument : public DispatchObject<ExposedArgument> {
 public:
  static std::span<const Member> members() {
    static constexpr Member table[] = {
        {bindings::argument::rawFilter, 1, readable, 0, 0, &ExposedArgument::rawFilter},
        {bindings::argument::login, 2, readable, 0, 0, &ExposedArgument::login},
        {bindings::argument::loginObj, 3, readable, 0, 0, &ExposedArgument::login},
        {bindings::argument::dataSource, 4, readable, 0, 0, &ExposedArgument::dataSource},
        {bindings::argument::action, 5, readable | writable, 0, 0, &ExposedArgument::action},
        {bindings::argument::row, 6, readable, 0, 0, &ExposedArgument::row},
        {bindings::argument::languageId, 7, readable, 0, 0, &ExposedArgument::languageId},
    };
    return table;
  }

  ExposedArgument(std::shared_ptr<WorkbenchArgument> argument, std::shared_ptr<FilterDialogObject> dialog)
      : argument_(std::move(argument)),
        login_(loginObject(argument_->login())),
        row_(makeObject<ExposedRow>(argument_)),
        action_(argument_->action()) {
    if (argument_->filter()) filter_ = argumentFilterObject(argument_->filter(), std::move(dialog), login_);
  }

 private:
  Variant rawFilter(Call&) { return filter_; }
  Variant login(Call&) { return login_; }
  Variant dataSource(Call&) { return makeObject<ExposedDataSource>(argument_); }
  Variant action(Call& call) {
    if (call.assigns()) action_ = toText(call.assigned());
    return action_;
  }
  Variant row(Call&) { return row_; }
  Variant languageId(Call&) { return argument_->languageId(); }
  const char* sourceName() const override { return "Quillon argument"; }

  std::shared_ptr<WorkbenchArgument> argument_;
  ComPtr<IDispatch> login_;
  ComPtr<IDispatch> filter_;
  ComPtr<ExposedRow> row_;
  std::string action_;
};

}  // namespace

ComPtr<IDispatch> argumentObject(std::shared_ptr<WorkbenchArgument> argument,
                                 std::shared_ptr<FilterDialogObject> dialog) {
  return makeObject<ExposedArgument>(std::move(argument), std::move(dialog));
}

}  // namespace quillon::workbench
