#include "workbench/platform/unknown_codes.h"

#include <optional>

#include "frame/automation_error.h"
#include "frame/text.h"
#include "workbench/messages/common.h"
#include "workbench/messages/filter.h"
#include "workbench/platform/lookup.h"
#include "workbench/platform/nearest_name.h"

namespace quillon::workbench {

namespace {

// "07 线边库": the entry of which code or name is nearest to `written`.
std::optional<std::string> nearestEntry(const Lookup& lookup, std::string_view written, Session& session) {
  std::optional<std::string> nearest;
  std::size_t least = 0;
  for (const LookupRow& row : findEntries(lookup, {}, session).rows) {
    for (const std::string& text : {row.code, row.name}) {
      const auto distance = nearness(written, text);
      if (!distance || (nearest && *distance >= least)) continue;
      nearest = entryText(row);
      least = *distance;
    }
  }
  return nearest;
}

void addUnknown(const ItemRegistration& item, std::string_view code, Session& session, std::vector<Message>& lines) {
  try {
    if (hasCode(*item.lookup, code, false, session)) return;
    const auto nearest = nearestEntry(*item.lookup, code, session);
    lines.push_back(
        messages::unknownCode(item.key, item.lookup->noun, code, nearest ? messages::suggested(*nearest) : Message()));
  } catch (const AutomationError&) {
    // An account of another make may keep its codes elsewhere: a note is not worth the report.
  }
}

}  // namespace

std::vector<Message> unknownCodes(const FilterObject& filter, Session& session) {
  std::vector<Message> lines;
  for (const auto& entry : filter.entries()) {
    const ItemRegistration& item = entry->item;
    const bool whole = item.kind == InputKind::reference && item.lookup != nullptr && !item.beginning && !item.range;
    if (!whole || !entry->sql.empty()) continue;
    std::string_view rest = entry->value;
    for (bool more = true; more;) {
      const auto tab = rest.find('\t');
      more = tab != std::string_view::npos;
      const std::string_view code = trimBlanks(rest.substr(0, tab));
      if (!code.empty()) addUnknown(item, code, session, lines);
      if (more) rest.remove_prefix(tab + 1);
    }
  }
  return lines;
}

}  // namespace quillon::workbench
