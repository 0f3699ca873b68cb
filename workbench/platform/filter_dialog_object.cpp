#include "workbench/platform/filter_dialog_object.h"

#include <utility>

#include "frame/text.h"

namespace quillon::workbench {

namespace {

std::vector<std::string_view> split(std::string_view text, std::string_view separator) {
  std::vector<std::string_view> parts;
  while (true) {
    const auto end = text.find(separator);
    parts.push_back(text.substr(0, end));
    if (end == std::string_view::npos) return parts;
    text.remove_prefix(end + separator.size());
  }
}

bool isSelect(std::string_view text) {
  constexpr std::string_view keyword = "select ";
  return equalIgnoringCase(trimBlanks(text).substr(0, keyword.size()), keyword);
}

// The rows of a list source: the first column is the code, the second, where there is one, the name.
std::vector<Choice> choicesOfStatement(AccountSession& connection, std::string_view statement) {
  const std::unique_ptr<AccountRecordset> rows = connection.openRecordset(statement);
  const bool named = rows->columns().size() > 1;
  std::vector<Choice> choices;
  for (; !rows->eof(); rows->moveNext()) {
    const std::string name = named ? rows->text(1).value_or("") : "";
    choices.push_back({rows->text(0).value_or(""), name, name});
  }
  rows->close();
  return choices;
}

// An item as the filter-control classes see it. It shares the entry, so it stays valid when the dialog is gone.
class EntryDialogItem final : public DialogItem {
 public:
  EntryDialogItem(std::shared_ptr<FilterEntry> entry, Language language, std::shared_ptr<AccountSession> connection)
      : entry_(std::move(entry)), language_(language), connection_(std::move(connection)) {}

  std::string name() override { return entry_->item.key; }
  std::string caption() override { return entry_->item.caption(language_); }
  std::string value() override { return entry_->value; }
  void setValue(std::string_view value) override { entry_->value = value; }
  void setBounds(std::string_view lower, std::string_view upper) override {
    entry_->value = lower;
    entry_->value2 = upper;
  }
  void setListText(std::string_view choices) override { entry_->item.choices = choicesOfList(choices); }
  void setListSource(std::string_view choicesOrStatement) override {
    entry_->item.choices = isSelect(choicesOrStatement) ? choicesOfStatement(*connection_, choicesOrStatement)
                                                        : choicesOfList(choicesOrStatement);
  }

 private:
  std::shared_ptr<FilterEntry> entry_;
  Language language_;
  std::shared_ptr<AccountSession> connection_;
};

}  // namespace

std::vector<Choice> choicesOfList(std::string_view list) {
  std::vector<Choice> choices;
  for (const std::string_view code : split(list, ",")) {
    if (!code.empty()) choices.push_back({std::string(code), "", ""});
  }
  return choices;
}

std::vector<Choice> choicesOfEnumeration(std::string_view text) {
  const std::vector<std::string_view> halves = split(text, "{##}");
  const std::vector<std::string_view> codes = split(halves.front(), "{#}");
  const std::vector<std::string_view> names = split(halves.back(), "{#}");
  if (halves.size() != 2 || codes.size() != names.size()) {
    throw AutomationError(hresult::invalidArgument, std::string(filterSource),
                          "\"" + std::string(text) +
                              "\" is no enumeration: it must be codes separated by {#}, then {##}, then as many names "
                              "separated by {#}.");
  }
  std::vector<Choice> choices;
  if (halves.front().empty() && halves.back().empty()) return choices;
  for (std::size_t i = 0; i < codes.size(); ++i)
    choices.push_back({std::string(codes[i]), std::string(names[i]), std::string(names[i])});
  return choices;
}

FilterDialogObject::FilterDialogObject(std::shared_ptr<FilterObject> filter, std::shared_ptr<Login> login,
                                       std::shared_ptr<AccountSession> connection)
    : filter_(std::move(filter)), login_(std::move(login)), connection_(std::move(connection)) {}

std::unique_ptr<DialogItem> FilterDialogObject::item(int position) {
  return std::make_unique<EntryDialogItem>(filter_->entry(position), languageOfRegion(login_->languageRegion()),
                                           connection_);
}

std::unique_ptr<DialogItem> FilterDialogObject::item(std::string_view key) {
  return std::make_unique<EntryDialogItem>(filter_->entry(key), languageOfRegion(login_->languageRegion()),
                                           connection_);
}

void FilterDialogObject::setUnavailable(std::string_view key, bool flag) {
  filter_->entry(key)->available = !flag;
}

void FilterDialogObject::setEnumeration(std::string_view key, std::string_view text) {
  filter_->entry(key)->item.choices = choicesOfEnumeration(text);
}

void FilterDialogObject::setLookupCondition(std::string_view key, std::string_view, std::string_view condition) {
  filter_->entry(key)->lookupCondition = condition;
}

void FilterDialogObject::setLookupConditionOfValue(std::string_view key, std::string_view condition,
                                                   bool valueIsEmpty) {
  filter_->entry(key)->lookupCondition = valueIsEmpty ? std::string_view() : condition;
}

}  // namespace quillon::workbench
