#include "workbench/cli/dialog_output.h"

#include <nlohmann/json.hpp>

#include "workbench/messages/common.h"
#include "workbench/messages/filter.h"
#include "workbench/presentation/text_cells.h"
#include "workbench/presentation/text_table.h"

namespace quillon::workbench {

namespace {

using Json = nlohmann::ordered_json;

std::vector<std::string> valuesOf(const FilterEntry& entry) {
  std::vector<std::string> values;
  std::string_view rest = entry.value;
  while (true) {
    const auto tab = rest.find('\t');
    values.emplace_back(rest.substr(0, tab));
    if (tab == std::string_view::npos) return values;
    rest.remove_prefix(tab + 1);
  }
}

const std::string& nameOf(const Choice& choice, Language language) {
  return language == Language::chinese ? choice.chinese : choice.english;
}

std::string choicesText(const ItemRegistration& item, Language language) {
  std::string text;
  for (const Choice& choice : item.choices) {
    const std::string& name = nameOf(choice, language);
    text += (text.empty() ? "" : ", ") + choice.code;
    if (!name.empty() && name != choice.code) text += " " + name;
  }
  constexpr std::size_t choicesCells = 60;
  return shortened(text, choicesCells);
}

std::string rangeText(const std::string& lower, const std::string& upper) {
  if (lower.empty() && upper.empty()) return {};
  return lower + (lower.empty() ? ".." : " ..") + (upper.empty() ? "" : " " + upper);
}

std::string valueText(const FilterEntry& entry) {
  if (entry.item.range) return rangeText(entry.value, entry.value2);
  std::string text;
  for (const std::string& value : valuesOf(entry))
    text += (text.empty() ? "" : ", ") + value;
  return text;
}

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
    default:
      return "text";
  }
}

Json valueJson(const FilterEntry& entry) {
  if (entry.item.range) return {{"lower", entry.value}, {"upper", entry.value2}};
  if (!entry.item.multiple) return entry.value;
  return entry.value.empty() ? Json::array() : Json(valuesOf(entry));
}

Json itemJson(const FilterEntry& entry, Language language) {
  Json choices = Json::array();
  for (const Choice& choice : entry.item.choices)
    choices.push_back({{"code", choice.code}, {"name", nameOf(choice, language)}});
  return {{"key", entry.item.key},
          {"caption", entry.item.caption(language)},
          {"kind", kindName(entry.item.kind)},
          {"range", entry.item.range},
          {"multiple", entry.item.multiple},
          {"value", valueJson(entry)},
          {"choices", std::move(choices)},
          {"available", entry.available},
          {"lookup", entry.lookupCondition}};
}

template <typename Value>
Json orNull(const std::optional<Value>& value) {
  return value ? Json(*value) : Json();
}

}  // namespace

void writeDialogTable(std::ostream& out, const DialogStep& step, const DialogPlay& play, const TableStyle& style) {
  const Language language = style.language;
  const auto line = [&](const Text<0>& caption, std::string_view text) {
    out << messages::headed(caption.caption(), text).in(language) << '\n';
  };
  line(messages::stepCaption, step.text);
  std::vector<TableColumn> columns;
  for (const Text<0>& caption : {messages::keyCaption, messages::itemCaption, messages::valueCaption,
                                 messages::choicesCaption, messages::availableCaption, messages::lookupCaption}) {
    columns.push_back({std::string(caption.in(language))});
  }
  TextTable table(out, std::move(columns), style);
  for (const auto& entry : play.filter().entries()) {
    table.row({entry->item.key, entry->item.caption(language), valueText(*entry), choicesText(entry->item, language),
               std::string((entry->available ? messages::yes : messages::no).in(language)), entry->lookupCondition});
  }
  table.finish();
  if (play.view()) line(messages::viewCaption, *play.view());
  for (const std::string& message : play.messages())
    line(messages::messageCaption, oneLine(message));
  if (play.accepted())
    line(messages::confirmationCaption,
         (*play.accepted() ? messages::acceptedText : messages::refusedText).in(language));
}

void writeDialogJson(std::ostream& out, const DialogStep& step, const DialogPlay& play, Language language) {
  Json items = Json::array();
  for (const auto& entry : play.filter().entries())
    items.push_back(itemJson(*entry, language));
  const Json document = {{"step", step.text},
                         {"items", std::move(items)},
                         {"view", orNull(play.view())},
                         {"accepted", orNull(play.accepted())},
                         {"messages", play.messages()}};
  // What comes from an account may be no UTF-8.
  out << document.dump(-1, ' ', false, Json::error_handler_t::replace) << '\n';
}

}  // namespace quillon::workbench
