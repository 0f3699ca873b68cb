#include "workbench/platform/missing_value.h"

#include <array>
#include <memory>
#include <vector>

#include "frame/text.h"
#include "workbench/messages/common.h"
#include "workbench/messages/filter.h"
#include "workbench/platform/account_lookup.h"
#include "workbench/platform/account_session.h"
#include "workbench/platform/lookup.h"
#include "workbench/platform/named_values.h"

namespace quillon::workbench {

namespace {

constexpr std::string_view ledgerAlias = "base.";

// "自由项10" is not the item "自由项1".
const FilterEntry* itemOf(const FilterObject& filter, std::string_view message, Language language) {
  const FilterEntry* item = nullptr;
  for (const auto& entry : filter.entries()) {
    const std::string& caption = entry->item.caption(language);
    if (!entry->value.empty() || !entry->item.column.starts_with(ledgerAlias)) continue;
    if (!containsIgnoringCase(message, caption)) continue;  // "the warehouse" is the item Warehouse
    if (item == nullptr || caption.size() > item->item.caption(language).size()) item = entry.get();
  }
  return item;
}

// What the ledger's lines are restricted to by the items that are given.
std::string restriction(const FilterObject& filter, std::string_view column) {
  constexpr std::array keys = {"cInvCode", "cWhCode", "cDepCode"};
  std::string sql;
  for (const auto& entry : filter.entries()) {
    for (const std::string_view key : keys) {
      const bool one = !entry->value.empty() && entry->value.find('\t') == std::string::npos;
      if (!one || !equalIgnoringCase(entry->item.key, key) || equalIgnoringCase(key, column)) continue;
      sql += " And " + std::string(key) + " = " + quotedText(entry->value);
    }
  }
  return sql;
}

std::vector<LookupRow> valuesOf(const ItemRegistration& item, const FilterObject& filter, Session& session) {
  const std::string column = item.column.substr(ledgerAlias.size());
  const std::string condition = " Where " + column + " <> N''" + restriction(filter, column);
  const auto rows = session.query("Select " + column + " From ia_subsidiary" + condition + " Union Select " + column +
                                      " From IA_Subsidiary_QC" + condition + " Order By 1",
                                  readOnlyQuery);
  std::vector<LookupRow> values;
  for (; !rows->eof(); rows->moveNext())
    values.push_back({rows->text(0).value_or(""), ""});
  rows->close();
  return values;
}

// The names of codes that stand in a master.
void addNames(std::vector<LookupRow>& values, const ItemRegistration& item, Session& session, Language language) {
  if (item.lookup == nullptr || !item.lookup->named) return;
  const std::vector<LookupRow> entries = findEntries(*item.lookup, {.language = language}, session).rows;
  for (LookupRow& value : values) {
    for (const LookupRow& entry : entries) {
      if (equalIgnoringCase(entry.code, value.code)) value.name = entry.name;
    }
  }
}

}  // namespace

std::optional<std::string> valuesToGive(const FilterObject& filter, std::string_view message, Session& session,
                                        Language language) {
  const FilterEntry* const missing = itemOf(filter, message, language);
  if (missing == nullptr) return std::nullopt;
  const ItemRegistration& item = missing->item;
  std::vector<LookupRow> values = valuesOf(item, filter, session);
  addNames(values, item, session, language);
  const std::string list = choiceOf(values, values.size(), language);
  const std::string keyFirst = messages::named(item.key, item.english).english();
  return (values.empty() ? messages::nothingToGive(Caption{item.chinese, keyFirst})
                         : messages::codesToGive(item.key, Caption{item.chinese, item.english}, list))
      .in(language);
}

}  // namespace quillon::workbench
