// What somebody meant who wrote a name that does not exist: a command, an option, a filter item, a code of a master.
#pragma once

#include <cstddef>
#include <optional>
#include <span>
#include <string>
#include <string_view>

#include "workbench/messages/message.h"

namespace quillon::workbench {

// How many letters are to be written, left out, replaced or swapped with their neighbour to make one text of the other,
// where that is few enough for a slip: a third of them, but one of two, and never all. Letter case and width do not count.
std::optional<std::size_t> nearness(std::string_view written, std::string_view name);

// The nearest of `names`, the first of several that are equally near; nullopt when none is near.
std::optional<std::string> nearestName(std::string_view written, std::span<const std::string> names);

// "; did you mean NAME?" for the nearest of `names`; empty when none is near.
Message suggestion(std::string_view written, std::span<const std::string> names);

}  // namespace quillon::workbench
