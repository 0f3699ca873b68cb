#include "workbench/platform/named_values.h"

#include <algorithm>
#include <optional>
#include <string_view>
#include <vector>

#include "frame/automation_error.h"
#include "frame/text.h"
#include "workbench/messages/common.h"
#include "workbench/messages/filter.h"
#include "workbench/platform/user_error.h"
#include "workbench/tsql/values/collation.h"

namespace quillon::workbench {

namespace {

constexpr std::size_t mostShown = 20;

[[noreturn]] void refuseNameOfSeveral(const ItemRegistration& item, const std::string& name,
                                      const std::vector<LookupRow>& rows) {
  const std::string chinese = choiceOf(rows, rows.size(), Language::chinese);
  const std::string english = choiceOf(rows, rows.size(), Language::english);
  throw UserError(messages::nameOfSeveral(item.key, Caption{item.chinese, item.english}, rows.size(), name,
                                          Caption{chinese, english}));
}

std::vector<LookupRow> choicesNamed(const ItemRegistration& item, std::string_view name, Language language) {
  std::vector<LookupRow> rows;
  for (const Choice& choice : item.choices) {
    if (tsql::equalText(choice.chinese, name) || tsql::equalText(choice.english, name))
      rows.push_back({choice.code, language == Language::chinese ? choice.chinese : choice.english});
  }
  return rows;
}

bool isChoice(const ItemRegistration& item, std::string_view code) {
  return std::ranges::find(item.choices, code, &Choice::code) != item.choices.end();
}

// What has this name and not this code.
std::vector<LookupRow> named(const ItemRegistration& item, const std::string& value, Session& session,
                             Language language) {
  if (!item.choices.empty())
    return isChoice(item, value) ? std::vector<LookupRow>() : choicesNamed(item, value, language);
  if (item.lookup == nullptr || !item.lookup->named) return {};
  try {
    if (hasCode(*item.lookup, value, item.beginning, session)) return {};
    return entriesNamed(*item.lookup, value, language, session);
  } catch (const AutomationError&) {
    return {};  // an account of another make may keep its codes elsewhere
  }
}

std::string resolved(const ItemRegistration& item, std::string_view text, Session& session, Language language) {
  std::string value(trimBlanks(text));
  if (value.empty()) return value;
  const std::vector<LookupRow> rows = named(item, value, session, language);
  if (rows.size() > 1) refuseNameOfSeveral(item, value, rows);
  return rows.empty() ? std::string(text) : rows.front().code;
}

}  // namespace

void resolveNames(FilterEntry& entry, Session& session, Language language) {
  if (!entry.sql.empty()) return;
  const bool sameBounds = entry.value2 == entry.value;
  std::string codes;
  for (std::string_view rest = entry.value;;) {
    const auto tab = rest.find('\t');
    codes += resolved(entry.item, rest.substr(0, tab), session, language);
    if (tab == std::string_view::npos) break;
    codes += '\t';
    rest.remove_prefix(tab + 1);
  }
  entry.value2 = sameBounds ? codes : resolved(entry.item, entry.value2, session, language);
  entry.value = std::move(codes);
}

void resolveNames(FilterObject& filter, Session& session, Language language, bool dialogToCome) {
  for (const auto& entry : filter.entries()) {
    const bool offered = entry->item.kind == InputKind::choice && entry->item.choices.empty();
    if (!offered || !dialogToCome) resolveNames(*entry, session, language);
  }
}

void resolveOffered(FilterObject& filter, Session& session, Language language) {
  for (const auto& entry : filter.entries()) {
    if (entry->item.kind == InputKind::choice) resolveNames(*entry, session, language);
  }
}

std::string choiceOf(std::span<const LookupRow> rows, std::size_t count, Language language) {
  std::string text;
  const std::size_t shown = std::min(rows.size(), mostShown);
  for (const LookupRow& row : rows.first(shown)) {
    text += text.empty() ? "" : messages::listSeparator.in(language);
    text += entryText(row);
  };
  if (count <= shown) return text;
  return messages::andMore(text, count - shown).in(language);
}

}  // namespace quillon::workbench
