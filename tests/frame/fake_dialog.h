// A filter dialog for tests: items with values, and each call in the record of the fake platform.
#pragma once

#include <memory>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "frame/filter_dialog.h"
#include "tests/frame/fakes.h"

namespace quillon::fakes {

class FakeDialogItem final : public DialogItem, private Counted {
 public:
  FakeDialogItem(Record& record, ItemValues& values) : Counted(record), values_(values) {}

  std::string name() override { return read("Name", values_.name); }
  std::string caption() override { return read("caption", "caption of " + values_.name); }
  std::string value() override { return read("value", values_.value); }
  void setValue(std::string_view value) override {
    call(values_.name + ".value = " + std::string(value));
    values_.value = value;
  }
  void setBounds(std::string_view lower, std::string_view upper) override {
    call(values_.name + ".bounds = " + std::string(lower) + ", " + std::string(upper));
    values_.value = lower;
    values_.value2 = upper;
  }
  void setListText(std::string_view choices) override { call(values_.name + ".list = " + std::string(choices)); }
  void setListSource(std::string_view source) override { call(values_.name + ".source = " + std::string(source)); }

 private:
  std::string read(std::string_view member, const std::string& value) const {
    call("DialogItem." + std::string(member));
    return value;
  }

  ItemValues& values_;
};

class FakeDialog final : public FilterDialog {
 public:
  FakeDialog(FakePlatform& platform, std::string identifier, std::vector<ItemValues> values)
      : items(std::move(values)),
        record_(platform.record),
        identifier_(std::move(identifier)),
        connection_(std::make_unique<FakeSession>(platform.record, platform.answers.queries)) {}

  std::vector<ItemValues> items;

  ItemValues& at(std::string_view key) {
    for (ItemValues& values : items) {
      if (values.name == key) return values;
    }
    throw AutomationError(hresult::subscriptOutOfRange, std::string(failingSource), "no item " + std::string(key));
  }

  std::shared_ptr<Login> login() override {
    record_.call("dialog.login");
    return std::make_shared<FakeLogin>(record_);
  }
  std::string identifier() override {
    record_.call("dialog.identifier");
    return identifier_;
  }
  Session& connection() override {
    record_.call("dialog.connection");
    return *connection_;
  }
  int count() override {
    record_.call("dialog.count");
    return static_cast<int>(items.size());
  }
  std::unique_ptr<DialogItem> item(int position) override {
    record_.call("dialog.item(" + std::to_string(position) + ")");
    return std::make_unique<FakeDialogItem>(record_, items.at(static_cast<std::size_t>(position) - 1));
  }
  std::unique_ptr<DialogItem> item(std::string_view key) override {
    record_.call("dialog.item(\"" + std::string(key) + "\")");
    return std::make_unique<FakeDialogItem>(record_, at(key));
  }
  void setUnavailable(std::string_view key, bool flag) override {
    record_.call("set " + std::string(key) + (flag ? " unavailable" : " available"));
  }
  void setEnumeration(std::string_view key, std::string_view text) override {
    record_.call("set " + std::string(key) + " enumeration " + std::string(text));
  }
  void setLookupCondition(std::string_view key, std::string_view secondArgument, std::string_view condition) override {
    record_.call("set " + std::string(key) + " lookup (" + std::string(secondArgument) + ") " + std::string(condition));
  }
  void setLookupConditionOfValue(std::string_view key, std::string_view condition, bool valueIsEmpty) override {
    record_.call("set " + std::string(key) + " lookup " + std::string(condition) + (valueIsEmpty ? " empty" : ""));
  }

 private:
  Record& record_;
  std::string identifier_;
  std::unique_ptr<FakeSession> connection_;
};

}  // namespace quillon::fakes
