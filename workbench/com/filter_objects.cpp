#include "workbench/com/filter_objects.h"

#include <algorithm>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "automation/dispatch_object.h"
#include "component/platform_bindings.h"
#include "frame/automation_error.h"
#include "workbench/com/ado.h"
#include "workbench/com/login_object.h"
#include "workbench/com/variant_list.h"

namespace quillon::workbench {

using automation::Call;
using automation::callable;
using automation::ComPtr;
using automation::DispatchObject;
using automation::makeObject;
using automation::readable;
using automation::toFlag;
using automation::toInteger;
using automation::toText;
using automation::Variant;
using automation::writable;
namespace bindings = component::bindings;

namespace {

// The dialog that a filter object is in. Throws when it is in none.
FilterDialogObject& dialogOf(const std::shared_ptr<FilterDialogObject>& dialog) {
  if (!dialog) {
    throw AutomationError(hresult::unexpected, std::string(filterSource),
                          "This filter is not in a dialog: take the one of the argument that NewDialog makes.");
  }
  return *dialog;
}

class ExposedFilterItem : public DispatchObject<ExposedFilterItem> {
 public:
  static std::span<const Member> members() {
    static constexpr Member table[] = {
        {bindings::filter::value, DISPID_VALUE, readable | writable, 0, 0, &ExposedFilterItem::value},
        {bindings::filter::value2, 1, readable | writable, 0, 0, &ExposedFilterItem::value2},
        {bindings::filter::name, 2, readable, 0, 0, &ExposedFilterItem::name},
        {bindings::filter::rangeInput, 3, readable, 0, 0, &ExposedFilterItem::rangeInput},
        {bindings::filter::multipleSelection, 4, readable, 0, 0, &ExposedFilterItem::multipleSelection},
        {bindings::filter::groupToken, 5, readable | writable, 0, 0, &ExposedFilterItem::groupToken},
        {bindings::filter::sqlText, 6, readable | writable, 0, 0, &ExposedFilterItem::sqlText},
        {bindings::dialog::caption, 7, readable, 0, 0, &ExposedFilterItem::caption},
        {bindings::dialog::listText, 8, writable, 0, 0, &ExposedFilterItem::listText},
        {bindings::dialog::listSource, 9, writable, 0, 0, &ExposedFilterItem::listSource},
        {L"Available", 10, readable, 0, 0, &ExposedFilterItem::available},
        {L"Choices", 11, readable, 0, 0, &ExposedFilterItem::choices},
        {L"LookupCondition", 12, readable, 0, 0, &ExposedFilterItem::lookupCondition},
    };
    return table;
  }

  // `dialog` may be null: then the item is of a filter that is in no dialog.
  ExposedFilterItem(std::shared_ptr<FilterEntry> entry, std::shared_ptr<FilterDialogObject> dialog)
      : entry_(std::move(entry)), dialog_(std::move(dialog)) {}

 private:
  static Variant textMember(Call& call, std::string& text) {
    if (call.assigns()) text = toText(call.assigned());
    return text;
  }

  Variant value(Call& call) { return textMember(call, entry_->value); }
  Variant value2(Call& call) { return textMember(call, entry_->value2); }
  Variant name(Call&) { return entry_->item.key; }
  Variant rangeInput(Call&) { return entry_->item.range; }
  Variant multipleSelection(Call&) { return entry_->item.multiple; }
  Variant groupToken(Call& call) {
    if (call.assigns()) entry_->token = toInteger(call.assigned());
    return entry_->token;
  }
  Variant sqlText(Call& call) {
    if (call.assigns()) entry_->sql = toText(call.assigned());
    return conditionOf(*entry_);
  }
  Variant caption(Call&) { return inDialog()->caption(); }
  Variant listText(Call& call) {
    inDialog()->setListText(toText(call.assigned()));
    return {};
  }
  Variant listSource(Call& call) {
    inDialog()->setListSource(toText(call.assigned()));
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

class ExposedFilterList : public DispatchObject<ExposedFilterList> {
 public:
  static std::span<const Member> members() {
    static constexpr Member table[] = {
        {L"Item", DISPID_VALUE, readable | writable, 1, 1, &ExposedFilterList::item},
        {bindings::filter::count, 1, readable, 0, 0, &ExposedFilterList::count},
        {L"_NewEnum", DISPID_NEWENUM, readable, 0, 0, &ExposedFilterList::each},
    };
    return table;
  }

  ExposedFilterList(std::shared_ptr<FilterObject> filter, std::shared_ptr<FilterDialogObject> dialog)
      : filter_(std::move(filter)), dialog_(std::move(dialog)) {}

  // The item that the first argument names; what is assigned to it becomes its value, as by its default member.
  Variant item(Call& call) {
    const std::shared_ptr<FilterEntry> entry = entryAt(call.value(0));
    if (!call.assigns()) return makeObject<ExposedFilterItem>(entry, dialog_);
    entry->value = toText(call.assigned());
    return {};
  }

 private:
  std::shared_ptr<FilterEntry> entryAt(const Variant& index) const {
    const auto& entries = filter_->entries();
    auto found = entries.end();
    if (index.vt == VT_BSTR) {
      found = std::ranges::find(entries, filter_->find(toText(index)), &std::shared_ptr<FilterEntry>::get);
    } else if (const int position = toInteger(index); position >= 1 && position <= filter_->count()) {
      found = entries.begin() + (position - 1);
    }
    if (found == entries.end()) {
      throw AutomationError(DISP_E_BADINDEX, sourceName(), "The filter has no item \"" + toText(index) + "\".");
    }
    return *found;
  }

  Variant count(Call&) { return filter_->count(); }
  Variant each(Call&) {
    std::vector<Variant> items;
    for (const auto& entry : filter_->entries())
      items.emplace_back(makeObject<ExposedFilterItem>(entry, dialog_));
    return enumeratorOf(std::move(items));
  }
  const char* sourceName() const override { return "Quillon filter list"; }

  std::shared_ptr<FilterObject> filter_;
  std::shared_ptr<FilterDialogObject> dialog_;
};

class ExposedFilter : public DispatchObject<ExposedFilter> {
 public:
  static std::span<const Member> members() {
    static constexpr Member table[] = {
        {bindings::filter::filterList, 1, readable | writable, 0, 1, &ExposedFilter::filterList},
        {bindings::filter::whereWithToken, 2, callable, 1, 1, &ExposedFilter::whereWithToken},
        {bindings::dialog::login, 3, readable, 0, 0, &ExposedFilter::login},
        {bindings::dialog::identifier, 4, readable, 0, 0, &ExposedFilter::identifier},
        {bindings::dialog::connection, 5, readable, 0, 0, &ExposedFilter::connection},
        {bindings::dialog::setUnavailable, 6, callable, 2, 2, &ExposedFilter::setUnavailable},
        {bindings::dialog::setEnumeration, 7, callable, 2, 2, &ExposedFilter::setEnumeration},
        {bindings::dialog::setLookupCondition, 8, callable, 3, 3, &ExposedFilter::setLookupCondition},
        {bindings::dialog::setLookupConditionOfValue, 9, callable, 3, 3, &ExposedFilter::setLookupConditionOfValue},
    };
    return table;
  }

  explicit ExposedFilter(std::shared_ptr<FilterObject> filter) : filter_(std::move(filter)) {}
  // A filter with its dialog, which is on the same filter and may be null.
  ExposedFilter(std::shared_ptr<FilterObject> filter, std::shared_ptr<FilterDialogObject> dialog,
                ComPtr<IDispatch> login)
      : filter_(std::move(filter)), dialog_(std::move(dialog)), login_(std::move(login)) {}

 private:
  Variant filterList(Call& call) {
    const ComPtr<ExposedFilterList> list = makeObject<ExposedFilterList>(filter_, dialog_);
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
    inDialog().setUnavailable(call.text(0), toFlag(call.value(1)));
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
    inDialog().setLookupConditionOfValue(call.text(0), call.text(1), toFlag(call.value(2)));
    return {};
  }
  FilterDialogObject& inDialog() const { return dialogOf(dialog_); }
  const char* sourceName() const override { return "Quillon filter"; }

  std::shared_ptr<FilterObject> filter_;
  std::shared_ptr<FilterDialogObject> dialog_;
  ComPtr<IDispatch> login_;
};

// Gives an empty filter: nothing in the workbench is drilled through to from a summary report.
class ExposedDrillThrough : public DispatchObject<ExposedDrillThrough> {
 public:
  static std::span<const Member> members() {
    static constexpr Member table[] = {
        {bindings::filterForLogin, 1, callable, 1, 2, &ExposedDrillThrough::filterForLogin}};
    return table;
  }

 private:
  Variant filterForLogin(Call&) { return filterObject(std::make_shared<FilterObject>(ReportRegistration{})); }
};

}  // namespace

ComPtr<IDispatch> filterObject(std::shared_ptr<FilterObject> filter) {
  return makeObject<ExposedFilter>(std::move(filter));
}

ComPtr<IDispatch> dialogObject(std::shared_ptr<FilterDialogObject> dialog) {
  const std::shared_ptr<FilterObject> filter = dialog->filter();
  ComPtr<IDispatch> login = loginObject(dialog->login());
  return makeObject<ExposedFilter>(filter, std::move(dialog), std::move(login));
}

ComPtr<IDispatch> argumentFilterObject(std::shared_ptr<FilterObject> filter, std::shared_ptr<FilterDialogObject> dialog,
                                       ComPtr<IDispatch> login) {
  return makeObject<ExposedFilter>(std::move(filter), std::move(dialog), std::move(login));
}

ComPtr<IUnknown> drillThroughObject() {
  return makeObject<ExposedDrillThrough>();
}

}  // namespace quillon::workbench
