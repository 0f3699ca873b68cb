#include "workbench/platform/nearest_name.h"

#include <algorithm>
#include <cstdint>
#include <vector>

#include "workbench/messages/common.h"
#include "workbench/tsql/values/collation.h"
#include "workbench/tsql/values/text.h"

namespace quillon::workbench {

namespace {

// A letter by the collation's weight, so that letter case and width do not count.
using Letters = std::vector<std::uint32_t>;

Letters lettersOf(std::string_view text) {
  Letters letters;
  for (std::size_t position = 0; position < text.size();) {
    const char32_t character = tsql::text::next(text, position);
    letters.push_back(character > tsql::text::lastCharacter ? character : tsql::characterWeight(character));
  }
  return letters;
}

std::size_t apart(const Letters& written, const Letters& name) {
  // Rows of the table of distances between the beginnings of both: of all letters so far, of one and of two less.
  std::vector<std::size_t> row(name.size() + 1), above(row), aboveThat(row);
  for (std::size_t j = 0; j <= name.size(); ++j)
    row[j] = j;
  for (std::size_t i = 1; i <= written.size(); ++i) {
    aboveThat.swap(above);
    above.swap(row);
    row[0] = i;
    for (std::size_t j = 1; j <= name.size(); ++j) {
      const std::size_t replaced = above[j - 1] + (written[i - 1] == name[j - 1] ? 0 : 1);
      row[j] = std::min({above[j] + 1, row[j - 1] + 1, replaced});
      const bool swapped = i > 1 && j > 1 && written[i - 1] == name[j - 2] && written[i - 2] == name[j - 1];
      if (swapped) row[j] = std::min(row[j], aboveThat[j - 2] + 1);
    }
  }
  return row[name.size()];
}

// How far apart a slip and what was meant may be.
std::size_t limitFor(std::size_t written, std::size_t name) {
  const std::size_t longer = std::max(written, name);
  return longer < 2 ? 0 : std::max<std::size_t>(1, longer / 3);
}

// The distance, where it is within the limit.
std::optional<std::size_t> withinLimit(const Letters& written, const Letters& name) {
  const std::size_t limit = limitFor(written.size(), name.size());
  const std::size_t longer = std::max(written.size(), name.size()), shorter = std::min(written.size(), name.size());
  if (longer - shorter > limit) return std::nullopt;
  const std::size_t distance = apart(written, name);
  return distance <= limit ? std::optional(distance) : std::nullopt;
}

}  // namespace

std::optional<std::size_t> nearness(std::string_view written, std::string_view name) {
  return withinLimit(lettersOf(written), lettersOf(name));
}

std::optional<std::string> nearestName(std::string_view written, std::span<const std::string> names) {
  const Letters letters = lettersOf(written);
  std::optional<std::string> nearest;
  std::size_t least = 0;
  for (const std::string& name : names) {
    const auto distance = withinLimit(letters, lettersOf(name));
    if (!distance || (nearest && *distance >= least)) continue;
    nearest = name;
    least = *distance;
  }
  return nearest;
}

Message suggestion(std::string_view written, std::span<const std::string> names) {
  const auto nearest = nearestName(written, names);
  return nearest ? messages::suggested(*nearest) : Message();
}

}  // namespace quillon::workbench
