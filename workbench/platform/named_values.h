// Names in filter items, where a person writes 线边库 for the warehouse 07.
#pragma once

#include <cstddef>
#include <span>
#include <string>

#include "frame/session.h"
#include "workbench/platform/filter_object.h"
#include "workbench/platform/language.h"
#include "workbench/platform/lookup.h"

namespace quillon::workbench {

// Puts the code in the place of each value of `entry`, and of each bound of its range, that is no code but the name of
// exactly one choice of the item, or without choices of one entry of its lookup. Names are compared whole, without letter
// case and width. A code wins over a name, and where codes are taken by their beginning, so does a beginning. What is
// neither stays, for whoever checks the item; so does a value whose lookup the account cannot be asked for, and all of an
// item with a ready-made condition.
//
// Throws UserError for the name of several, with those that it may be.
void resolveNames(FilterEntry& entry, Session& session, Language language);

// The same for all items; with `dialogToCome` without those whose choices the dialog is still to make. When it has,
// resolveOffered() does them.
void resolveNames(FilterObject& filter, Session& session, Language language, bool dialogToCome);
void resolveOffered(FilterObject& filter, Session& session, Language language);

// Entries for a reader to choose from: the first 20, and how many more there are (`count` in all).
std::string choiceOf(std::span<const LookupRow> rows, std::size_t count, Language language);

}  // namespace quillon::workbench
