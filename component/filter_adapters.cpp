#include "component/filter_adapters.h"

#include "component/adapter_of.h"
#include "component/login_adapter.h"
#include "component/platform_bindings.h"

namespace quillon::component {

using automation::ComPtr;
using automation::LateBound;

void LateBoundFilterItem::setGroupToken(int token) {
  item_.put(bindings::filter::groupToken, token);
}

std::string LateBoundFilterItem::name() {
  return item_.text(bindings::filter::name);
}

std::string LateBoundFilterItem::value() {
  return item_.text(bindings::filter::value);
}

std::string LateBoundFilterItem::value2() {
  return item_.text(bindings::filter::value2);
}

bool LateBoundFilterItem::rangeInput() {
  return item_.flag(bindings::filter::rangeInput);
}

bool LateBoundFilterItem::multipleSelection() {
  return item_.flag(bindings::filter::multipleSelection);
}

std::string LateBoundFilterItem::sqlText() {
  return item_.text(bindings::filter::sqlText);
}

LateBound LateBoundFilter::list() const {
  return filter_.object(bindings::filter::filterList, "FilterList");
}

int LateBoundFilter::count() {
  return list().integer(bindings::filter::count);
}

std::unique_ptr<FilterItem> LateBoundFilter::item(int position) {
  return std::make_unique<LateBoundFilterItem>(list().item(position, "filter item"));
}

std::unique_ptr<FilterItem> LateBoundFilter::item(std::string_view key) {
  return std::make_unique<LateBoundFilterItem>(list().item(key, "filter item"));
}

std::string LateBoundFilter::whereWithToken(int token) {
  return filter_.text(bindings::filter::whereWithToken, {token});
}

std::string LateBoundDialogItem::name() {
  return item_.text(bindings::filter::name);
}

std::string LateBoundDialogItem::caption() {
  return item_.text(bindings::dialog::caption);
}

std::string LateBoundDialogItem::value() {
  return item_.text(bindings::filter::value);
}

void LateBoundDialogItem::setValue(std::string_view value) {
  item_.put(bindings::filter::value, value);
}

void LateBoundDialogItem::setBounds(std::string_view lower, std::string_view upper) {
  item_.put(bindings::filter::value, lower);
  item_.put(bindings::filter::value2, upper);
}

void LateBoundDialogItem::setListText(std::string_view choices) {
  item_.put(bindings::dialog::listText, choices);
}

void LateBoundDialogItem::setListSource(std::string_view choicesOrStatement) {
  item_.put(bindings::dialog::listSource, choicesOrStatement);
}

LateBound LateBoundFilterDialog::list() const {
  return filter_.object(bindings::filter::filterList, "FilterList");
}

std::shared_ptr<Login> LateBoundFilterDialog::login() {
  return std::make_shared<LateBoundLogin>(filter_.object(bindings::dialog::login, "Login"));
}

std::string LateBoundFilterDialog::identifier() {
  return filter_.text(bindings::dialog::identifier);
}

Session& LateBoundFilterDialog::connection() {
  if (!connection_)
    connection_ = std::make_unique<AdoSession>(filter_.object(bindings::dialog::connection, "dialog connection"));
  return *connection_;
}

int LateBoundFilterDialog::count() {
  return list().integer(bindings::filter::count);
}

std::unique_ptr<DialogItem> LateBoundFilterDialog::item(int position) {
  return std::make_unique<LateBoundDialogItem>(list().item(position, "filter item"));
}

std::unique_ptr<DialogItem> LateBoundFilterDialog::item(std::string_view key) {
  return std::make_unique<LateBoundDialogItem>(list().item(key, "filter item"));
}

void LateBoundFilterDialog::setUnavailable(std::string_view key, bool flag) {
  filter_.call(bindings::dialog::setUnavailable, {key, flag});
}

void LateBoundFilterDialog::setEnumeration(std::string_view key, std::string_view text) {
  filter_.call(bindings::dialog::setEnumeration, {key, text});
}

void LateBoundFilterDialog::setLookupCondition(std::string_view key, std::string_view secondArgument,
                                               std::string_view condition) {
  filter_.call(bindings::dialog::setLookupCondition, {key, secondArgument, condition});
}

void LateBoundFilterDialog::setLookupConditionOfValue(std::string_view key, std::string_view condition,
                                                      bool valueIsEmpty) {
  filter_.call(bindings::dialog::setLookupConditionOfValue, {key, condition, valueIsEmpty});
}

std::shared_ptr<Filter> LateBoundDrillThroughHelper::filterFor(Login* login, bool drillThrough) {
  // "Nothing" for a login that could not be read.
  const ComPtr<IDispatch> object = login ? adapterOf<LateBoundLogin>(*login).object() : ComPtr<IDispatch>();
  return std::make_shared<LateBoundFilter>(
      helper_.object(bindings::filterForLogin, "drill-through filter", {object, drillThrough}));
}

}  // namespace quillon::component
