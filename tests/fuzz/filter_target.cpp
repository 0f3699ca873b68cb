#include <algorithm>
#include <string>
#include <vector>

#include "frame/automation_error.h"
#include "tests/fuzz/targets.h"
#include "workbench/catalogue/catalogue.h"
#include "workbench/platform/filter_file.h"
#include "workbench/platform/filter_input.h"
#include "workbench/platform/user_error.h"

namespace quillon::fuzz {

namespace {

using namespace workbench;

std::vector<std::string> linesOf(std::string_view text) {
  std::vector<std::string> lines;
  for (bool more = true; more;) {
    const std::size_t end = text.find('\n');
    more = end != std::string_view::npos;
    lines.emplace_back(text.substr(0, end));
    if (more) text.remove_prefix(end + 1);
  }
  return lines;
}

struct Written {
  std::string report;
  std::string json;
  std::vector<std::string> settings;
};

Written read(std::string_view input) {
  Written written;
  const std::vector<std::string> lines = linesOf(input);
  const auto set = std::ranges::find(lines, "--set");
  written.report = lines.front();
  for (auto line = lines.begin() + 1; line < set; ++line)
    written.json += *line + '\n';
  if (set != lines.end()) written.settings.assign(set + 1, lines.end());
  return written;
}

// The condition that the filter object itself makes of the items: whatever the values hold, a text ends where it should.
void requireTextsClosed(FilterObject& filter) {
  for (const auto& entry : filter.entries()) {
    if (!entry->sql.empty()) continue;  // given ready-made
    try {
      const std::string condition = conditionOf(*entry);
      require(std::ranges::count(condition, '\'') % 2 == 0, "the filter object closes every text that it opens");
    } catch (const AutomationError& error) {
      require(error.code() == hresult::typeMismatch, "a value that is no number is a type mismatch");
    }
  }
}

}  // namespace

void checkFilter(std::string_view input) {
  const Written written = read(input);
  try {
    FilterObject filter(reportNamed(written.report).registration);
    applyFilterFile(filter, written.json, "filter.json");
    setFilterItems(filter, written.settings);
    requireTextsClosed(filter);
    workbench::checkFilter(filter);
    requireTextsClosed(filter);
    for (const auto& entry : filter.entries()) {
      for (const Language language : {Language::chinese, Language::english})
        require(!describeEntry(*entry, language).empty() || entry->value.empty() || entry->item.range,
                "a value that was given is shown");
    }
  } catch (const UserError& error) {
    require(*error.what() != '\0', "an error says what is wrong");
  } catch (const std::invalid_argument& error) {
    require(*error.what() != '\0', "an error says what is wrong");
  }
}

}  // namespace quillon::fuzz
