// Filling a filter object from what a person writes: a filter file or key=value texts. Every refusal is a
// std::invalid_argument (InputError) whose text names the item and says what is accepted.
#pragma once

#include <optional>
#include <span>
#include <string>
#include <string_view>

#include "frame/platform.h"
#include "workbench/platform/filter_object.h"

namespace quillon::workbench {

// Gives the items that depend on the account their choices, and the year its default: iYear the years of
// orvsystem..UA_Period and the login's year, iGrade the grades of Ca_FxClassDef. Throws AutomationError when a query
// fails.
void prepareFilter(FilterObject& filter, Login& login, Session& session);

// A date as people write it, yyyy-mm-dd where one digit of month and day is enough, with both digits of each; nullopt for
// a day that is in no calendar, or that a datetime cannot hold.
std::optional<std::string> enteredDate(std::string_view text);

// The item of that key, or else the one whose caption it is in either language; letter case does not matter, nor width in
// captions. Nullptr when there is none. Throws std::invalid_argument for the caption of several items.
FilterEntry* findItem(FilterObject& filter, std::string_view keyOrCaption);

// Sets item values from "key=value" texts in order, where the key may be a caption (findItem()). A range item takes
// "lower..upper", where either bound may be missing, or one value for both bounds; a date is "yyyy-mm-dd". An item of
// several values takes them separated by commas, or the key again. An empty value clears the item. ".." in a value of any
// other item is refused, for who writes it means a range; a filter file can give a text that holds it.
void setFilterItems(FilterObject& filter, std::span<const std::string> settings);

// Sets one item as the dialog lets the user do it: only an available one, and only to a value that the dialog accepts, or
// to the name of one (resolveNames() in named_values.h). Gives the item.
const FilterEntry& changeItem(FilterObject& filter, const std::string& setting, Session& session, Language language);

// What is entered in an item, as the filter object keeps it: several values with TABs between them, the bounds of a range
// as value and value2.
struct ItemValue {
  std::string key;  // or the caption
  std::string value;
  std::string value2 = {};
};
// Puts the values in as they are. Throws std::invalid_argument for an item that the filter does not have.
void setItems(FilterObject& filter, std::span<const ItemValue> values);
// The same as changeItem() above with a value that was not written on a command line. What was refused leaves the item as
// it was.
const FilterEntry& changeItem(FilterObject& filter, const ItemValue& change, Session& session, Language language);

// Checks what was entered in one item: choices against their codes, numbers, dates, that a single value is single, that
// a range does not end before it begins, and that what is compared with a column of whole numbers is one of 32 bits.
//
// Bounds that are texts are compared as an embedded account sorts them (workbench/tsql/values/collation.h), and numbers
// among them by their value as well, since nobody knows which of the two the column is: the range is refused when its
// lower bound is above the upper one either way.
void checkItem(const FilterEntry& entry);
// Checks that every item that must have a value has one.
void checkComplete(const FilterObject& filter);
// Both, for all items.
void checkFilter(const FilterObject& filter);

// What was entered in `entry`, for a reader: choices by their names, bounds as "from .. to", several values with
// commas; empty when nothing was entered.
std::string describeEntry(const FilterEntry& entry, Language language);

}  // namespace quillon::workbench
