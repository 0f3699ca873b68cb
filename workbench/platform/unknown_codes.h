// Codes in a filter that the account does not have. The report runs with them all the same and finds nothing: whoever
// wrote one is told.
#pragma once

#include <string>
#include <vector>

#include "frame/session.h"
#include "workbench/messages/message.h"
#include "workbench/platform/filter_object.h"

namespace quillon::workbench {

// A line for each code in `filter` that its item's master does not have: "filter item cWhCode: the account has no
// warehouse Q7; did you mean 07 线边库?", where the nearest code or name is near enough for a slip. Bounds of a range
// and the beginnings of codes need not exist, and what goes in as a ready-made condition is not looked at. Asks the
// account once for each code, and once more for one that it does not have. A master that the account cannot be asked for
// gives no line.
std::vector<Message> unknownCodes(const FilterObject& filter, Session& session);

}  // namespace quillon::workbench
