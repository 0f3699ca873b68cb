#include "workbench/desk/dialog_session.h"

#include <algorithm>
#include <optional>
#include <stdexcept>
#include <utility>

#include "frame/text.h"
#include "workbench/catalogue/library_runner.h"
#include "workbench/desk/json_forms.h"
#include "workbench/messages/filter.h"
#include "workbench/platform/lookup.h"
#include "workbench/platform/missing_value.h"
#include "workbench/platform/named_values.h"
#include "workbench/platform/user_error.h"
#include "workbench/runs/account_login.h"
#include "workbench/runs/dialog_steps.h"
#include "workbench/runs/run_monitor.h"

namespace quillon::workbench::desk {

namespace {

std::string_view kindName(InputKind kind) {
  switch (kind) {
    case InputKind::reference:
      return "reference";
    case InputKind::choice:
      return "choice";
    case InputKind::flag:
      return "flag";
    case InputKind::number:
      return "number";
    case InputKind::date:
      return "date";
    case InputKind::text:
      break;
  }
  return "text";
}

Json itemJson(const ItemRegistration& item) {
  Json choices = Json::array();
  for (const Choice& choice : item.choices) {
    const auto name = [&choice](const std::string& text) { return text.empty() ? choice.code : text; };
    choices.push_back(
        {{"code", choice.code}, {"caption", inBothLanguages(name(choice.chinese), name(choice.english))}});
  }
  return {{"key", item.key},
          {"caption", inBothLanguages(item.chinese, item.english)},
          {"kind", kindName(item.kind)},
          {"range", item.range},
          {"multiple", item.multiple},
          {"required", item.required},
          {"choices", std::move(choices)},
          {"lookup", item.lookup != nullptr && item.choices.empty()}};
}

}  // namespace

Json registeredItem(const ItemRegistration& item) {
  Json json = itemJson(item);
  json.update({{"available", true}, {"value", item.defaultValue}, {"value2", ""}});
  return json;
}

struct DialogSession::Inside {
  struct Said {
    std::string item;  // empty: of none
    std::string text;
  };

  Inside(const AccountSource& source, const Report& asked, Language asLanguage, const Discretion& itsDiscretion)
      : report(asked),
        language(asLanguage),
        discretion(itsDiscretion),
        account(logIn(source, asLanguage, "")),
        filter(std::make_shared<FilterObject>(asked.registration, InitialValues::none)),
        platform({.account = account.source,
                  .language = asLanguage,
                  .messages = [this](std::string_view text, int) { told.emplace_back(text); }}),
        dialog(std::make_shared<FilterDialogObject>(filter, account.login, account.session)),
        runner(makeDialogRunner(platform, asked, dialog)),
        play(dialog, *runner, told) {}

  void open(const std::vector<ItemValue>& values) {
    std::vector<FilterEntry*> given;
    for (const ItemValue& value : values) {
      FilterEntry* const entry = filter->find(value.key);
      if (entry == nullptr) {
        messages.push_back({"", messages::itemUnknown(value.key).in(language)});
        continue;
      }
      entry->value = value.value;
      entry->value2 = value.value2;
      if (takes(*entry, [&] { resolveNames(*entry, *account.session, language); })) given.push_back(entry);
    }
    play.take({.kind = DialogStep::Kind::init, .text = "init", .setting = {}});
    takeMessages();
    resolveOffered(*filter, *account.session, language);
    for (FilterEntry* const entry : given)
      takes(*entry, [&] { checkItem(*entry); });
    play.take({.kind = DialogStep::Kind::view, .text = "view", .setting = {}});
    takeMessages();
  }

  // Whether the entry's value stood the test; otherwise it is taken out and said why.
  template <typename Test>
  bool takes(FilterEntry& entry, const Test& test) {
    try {
      test();
      return true;
    } catch (const std::invalid_argument& refusal) {
      messages.push_back({entry.item.key, errorText(refusal).in(language)});
    } catch (const std::runtime_error& refusal) {
      messages.push_back({entry.item.key, errorText(refusal).in(language)});
    }
    entry.value.clear();
    entry.value2.clear();
    return false;
  }

  // What the class has said during the last step, each with the item that it speaks of by its caption.
  void takeMessages() {
    for (const std::string& text : play.messages()) {
      const FilterEntry* spokenOf = nullptr;
      for (const auto& entry : filter->entries()) {
        const std::string& caption = entry->item.caption(language);
        if (!containsIgnoringCase(text, caption)) continue;  // "the warehouse" is the item Warehouse
        if (spokenOf == nullptr || caption.size() > spokenOf->item.caption(language).size()) spokenOf = entry.get();
      }
      messages.push_back({spokenOf == nullptr ? "" : spokenOf->item.key, text});
    }
  }

  // After a refusal to leave an item empty: what there is for it.
  void addValuesToGive() {
    if (messages.empty()) return;
    const Said last = messages.back();
    try {
      if (auto line = valuesToGive(*filter, last.text, *account.session, language))
        messages.push_back({last.item, std::move(*line)});
    } catch (const AutomationError&) {
      // An account of another make may keep its ledger elsewhere: what is missing was said.
    }
  }

  // Whether every item that must have a value has one; a message at each that has none. The classes leave some of them to
  // whoever shows the dialog.
  bool isComplete() {
    const std::size_t before = messages.size();
    for (const auto& entry : filter->entries()) {
      if (!entry->item.required || !entry->value.empty()) continue;
      messages.push_back({entry->item.key, messages::itemEmpty(entry->item.caption(language)).in(language)});
    }
    return messages.size() == before;
  }

  Json state() const {
    Json items = Json::array();
    for (const auto& entry : filter->entries()) {
      Json item = itemJson(entry->item);
      item.update({{"available", entry->available}, {"value", entry->value}, {"value2", entry->value2}});
      items.push_back(std::move(item));
    }
    Json said = Json::array();
    for (const Said& message : messages)
      said.push_back(
          {{"item", message.item.empty() ? Json() : Json(message.item)}, {"text", discretion.of(message.text)}});
    return {{"report", report.registration.name},
            {"view", play.view() ? Json(*play.view()) : Json()},
            {"messages", std::move(said)},
            {"items", std::move(items)}};
  }

  const Report& report;
  Language language;
  const Discretion& discretion;
  std::vector<std::string> told;  // by the class, during a step
  std::vector<Said> messages;     // of the last step
  bool accepted = false;          // by the last step
  SignedInAccount account;
  std::shared_ptr<FilterObject> filter;
  EmbeddedPlatform platform;
  std::shared_ptr<FilterDialogObject> dialog;
  std::unique_ptr<DialogRunner> runner;
  DialogPlay play;
};

DialogSession::DialogSession(const AccountSource& account, const Report& report, Language language,
                             const Discretion& discretion, std::vector<ItemValue> values)
    : report_(report) {
  try {
    thread_.call([this, &account, language, &discretion, &values] {
      inside_ = std::make_unique<Inside>(account, report_, language, discretion);
      inside_->open(values);
    });
  } catch (...) {
    thread_.call([this] { inside_.reset(); });
    throw;
  }
}

DialogSession::~DialogSession() {
  thread_.stop();
  try {
    thread_.call([this] { inside_.reset(); });
  } catch (const ApiError&) {
    // The thread never ends before this.
  }
}

Json DialogSession::state() {
  return thread_.call([this] { return inside_->state(); });
}

Json DialogSession::change(const ItemValue& value) {
  return thread_.call([this, &value] {
    const auto refuse = [this, &value](const std::exception& why) {
      const FilterEntry* const entry = inside_->filter->find(value.key);
      throw ApiError(422, entry == nullptr ? "item" : "value", errorText(why), entry == nullptr ? "" : entry->item.key,
                     inside_->state());
    };
    inside_->messages.clear();
    inside_->accepted = false;
    try {
      inside_->play.take(value);
      inside_->takeMessages();
    } catch (const AutomationError& error) {
      inside_->takeMessages();
      refuse(error);
    } catch (const std::invalid_argument& refusal) {
      refuse(refusal);
    } catch (const UserError& refusal) {
      refuse(refusal);
    }
    return inside_->state();
  });
}

Json DialogSession::click() {
  return thread_.call([this] {
    inside_->messages.clear();
    inside_->accepted = false;
    try {
      // A person leaves an item that must be given empty.
      inside_->play.take({.kind = DialogStep::Kind::click, .text = "click", .setting = {}});
    } catch (const UserError& refusal) {
      throw ApiError(422, "dialog", refusal.message(), "", inside_->state());
    }
    inside_->takeMessages();
    inside_->accepted = inside_->play.accepted().value_or(false) && inside_->isComplete();
    if (!inside_->accepted) inside_->addValuesToGive();
    return Json{{"accepted", inside_->accepted}, {"state", inside_->state()}};
  });
}

Json DialogSession::lookUp(const std::string& item, const std::string& search, std::size_t offset, std::size_t limit) {
  return thread_.call([&] {
    const FilterEntry* const entry = inside_->filter->find(item);
    if (entry == nullptr) throw ApiError(422, "item", messages::itemUnknown(item), item);
    if (entry->item.lookup == nullptr)
      throw ApiError(422, "lookup", messages::notLookedUp(entry->item.key), entry->item.key);
    const LookupPage page = findEntries(*entry->item.lookup,
                                        {.search = search,
                                         .offset = offset,
                                         .limit = limit,
                                         .language = inside_->language,
                                         .restriction = entry->lookupCondition},
                                        *inside_->account.session);
    Json rows = Json::array();
    for (const LookupRow& row : page.rows)
      rows.push_back({{"code", row.code}, {"name", row.name}});
    return Json{{"count", page.count}, {"rows", std::move(rows)}};
  });
}

std::shared_ptr<FilterObject> DialogSession::acceptedFilter() {
  return thread_.call([this] {
    if (!inside_->accepted) throw ApiError(409, "state", messages::dialogNotAccepted());
    auto copy = std::make_shared<FilterObject>(report_.registration, InitialValues::none);
    for (const auto& entry : inside_->filter->entries())
      *copy->entry(entry->item.key) = *entry;
    return copy;
  });
}

}  // namespace quillon::workbench::desk
