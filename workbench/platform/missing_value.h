// What there is for an item that a filter dialog refuses to leave empty: after "批号不能为空", the batches.
#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "frame/session.h"
#include "workbench/platform/filter_object.h"
#include "workbench/platform/language.h"

namespace quillon::workbench {

// A line, in `language`, with the values that the ledger has for the item which `message` says must not be empty: those of
// the chosen inventory, and of the chosen warehouse and department; at most 20, and how many more. The item is told by its
// caption, which the messages have in them: a dialog says no more than that it refuses.
//
// Nothing when the message speaks of no empty item of the ledger. Throws AutomationError when the account cannot be asked.
std::optional<std::string> valuesToGive(const FilterObject& filter, std::string_view message, Session& session,
                                        Language language);

}  // namespace quillon::workbench
