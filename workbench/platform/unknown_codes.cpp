#include "workbench/platform/unknown_codes.h"

#include <memory>
#include <optional>

#include "frame/automation_error.h"
#include "frame/text.h"
#include "workbench/platform/account_lookup.h"
#include "workbench/platform/account_session.h"
#include "workbench/platform/nearest_name.h"

namespace quillon::workbench {

namespace {

std::string listOf(const Master& master) {
  return " From " + std::string(master.table);
}

bool has(const Master& master, std::string_view code, Session& session) {
  const std::string column(master.code);
  return lookUp(session, "Select Top 1 " + column + listOf(master) + " Where " + column + " = " + quotedText(code))
      .has_value();
}

// "07 线边库": the entry of which code or name is nearest to `written`.
std::optional<std::string> nearestEntry(const Master& master, std::string_view written, Session& session) {
  const std::unique_ptr<Recordset> rows = session.query(
      "Select " + std::string(master.code) + ", " + std::string(master.name) + listOf(master), readOnlyQuery);
  std::optional<std::string> nearest;
  std::size_t least = 0;
  for (; !rows->eof(); rows->moveNext()) {
    const std::string code = rows->text(0).value_or(""), name = rows->text(1).value_or("");
    for (const std::string& text : {code, name}) {
      const auto distance = nearness(written, text);
      if (!distance || (nearest && *distance >= least)) continue;
      nearest = code;
      if (!name.empty() && name != code) nearest->append(" ").append(name);
      least = *distance;
    }
  }
  rows->close();
  return nearest;
}

void addUnknown(const ItemRegistration& item, std::string_view code, Session& session,
                std::vector<std::string>& lines) {
  try {
    if (has(*item.master, code, session)) return;
    const auto nearest = nearestEntry(*item.master, code, session);
    lines.push_back("filter item " + item.key + ": the account has no " + std::string(item.master->noun) + " " +
                    std::string(code) + (nearest ? "; did you mean " + *nearest + "?" : ""));
  } catch (const AutomationError&) {
    // An account of another make may keep its codes elsewhere: a note is not worth the report.
  }
}

}  // namespace

std::vector<std::string> unknownCodes(const FilterObject& filter, Session& session) {
  std::vector<std::string> lines;
  for (const auto& entry : filter.entries()) {
    const ItemRegistration& item = entry->item;
    if (!item.master || item.range || !entry->sql.empty()) continue;
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
