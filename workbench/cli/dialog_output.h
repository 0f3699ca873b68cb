// What a filter dialog shows, for people and for programs.
#pragma once

#include <ostream>

#include "workbench/platform/language.h"
#include "workbench/presentation/text_table.h"
#include "workbench/runs/dialog_steps.h"

namespace quillon::workbench {

// The dialog after `step`: an aligned table of its items with key, caption, value, choices, whether the user can enter
// it and what its lookup is restricted to; then the view class, what was shown to the user, and the answer to a click.
// Several values stand with commas between them, a range as "lower .. upper"; long lists of choices are cut.
void writeDialogTable(std::ostream& out, const DialogStep& step, const DialogPlay& play, const TableStyle& style);

// The same as one object on one line, nothing cut:
// {"step":"init","items":[{"key":"cVouType","caption":"...","kind":"choice","range":false,"multiple":true,
// "value":["32"],"choices":[{"code":"32","name":"..."}],"available":true,"lookup":"..."}],"view":"cross",
// "accepted":true,"messages":["..."]}. `kind` is text, reference, choice, flag, number or date. `value` is a text, an
// array of texts for an item of several values, {"lower":"...","upper":"..."} for a range. `view` and `accepted` are
// null when they are not known.
void writeDialogJson(std::ostream& out, const DialogStep& step, const DialogPlay& play, Language language);

}  // namespace quillon::workbench
