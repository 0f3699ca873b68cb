// The workbench's filter object: the items of one report, each with its registration (caption, kind, column) and the
// values that the user gave it.
#pragma once

#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "frame/automation_error.h"
#include "frame/filter.h"
#include "workbench/platform/language.h"

namespace quillon::workbench {

// The source text of every error that the filter object throws.
inline constexpr std::string_view filterSource = "Quillon filter object";

// How an item is entered.
enum class InputKind { text, reference, choice, flag, number, date };

// One code of a choice item.
struct Choice {
  std::string code;
  std::string chinese;
  std::string english;
};

struct Lookup;  // workbench/platform/lookup.h

// What a report registers for one filter item.
struct ItemRegistration {
  std::string key;      // "cInvCode"; found without regard to letter case
  std::string chinese;  // caption
  std::string english;  // caption
  InputKind kind = InputKind::text;
  bool range = false;       // entered as a lower and an upper bound
  bool multiple = false;    // several values may be selected
  bool required = false;    // cannot be left empty
  std::string column = {};  // the column of the condition that the filter object makes: "base.cBatchIA"
  std::string defaultValue = {};
  std::vector<Choice> choices = {};  // of a choice item, in the order in which they are offered
  const Lookup* lookup = nullptr;    // where codes of the item are looked up; nullptr: nowhere
  bool beginning = false;            // of a reference: takes the beginning of a code
  std::string example = {};          // a value, to show how one is written; empty: as the kind or the lookup has it

  const std::string& caption(Language language) const { return language == Language::chinese ? chinese : english; }
};

// What a report registers: its name on the command line, its title, the filter's identifier and the items in order.
struct ReportRegistration {
  std::string name;
  std::string chinese;
  std::string english;
  std::string identifier = {};
  std::vector<ItemRegistration> items = {};

  const std::string& title(Language language) const { return language == Language::chinese ? chinese : english; }
};

// An item as it stands: its registration, what the user gave it, what the dialog made of it and the token that the
// report wrote.
struct FilterEntry {
  ItemRegistration item;
  std::string value;  // several values are TAB-separated
  std::string value2;
  std::string sql;  // a condition given ready-made; it wins over the one made from the values
  int token = tokenFilter;
  bool available = true;        // whether the dialog lets the user enter it
  std::string lookupCondition;  // what its lookup is restricted to; #FN[column] is a column of the looked-up table
};

// The condition that the filter object makes of an entry: the column compared with the value, with the list of the
// values or with the bounds; quotes are doubled, texts written as N'...', dates as '...', numbers and flags bare. Empty
// when nothing was entered. Throws AutomationError (type mismatch) when a number item holds something else.
std::string conditionOf(const FilterEntry& entry);

// How the items of a new filter object begin.
enum class InitialValues {
  defaults,  // as the registration says
  none,      // empty, for a dialog to give them its own
};

class FilterObject final : public Filter {
 public:
  explicit FilterObject(const ReportRegistration& registration, InitialValues values = InitialValues::defaults);

  int count() override { return static_cast<int>(entries_.size()); }
  // Throws AutomationError (0x8002000B, bad index) when there is no such item.
  std::unique_ptr<FilterItem> item(int position) override;
  std::unique_ptr<FilterItem> item(std::string_view key) override;
  std::string whereWithToken(int token) override;

  // The identifier that tells a filter-control class which report it serves.
  const std::string& identifier() const { return identifier_; }
  // The entries in order, for the code that fills or shows them; nullptr when there is no item `key`.
  const std::vector<std::shared_ptr<FilterEntry>>& entries() const { return entries_; }
  FilterEntry* find(std::string_view key);
  // The entry at `position` (from 1), or of `key`; throws as item() does.
  const std::shared_ptr<FilterEntry>& entry(int position) const;
  const std::shared_ptr<FilterEntry>& entry(std::string_view key) const;
  // Adds an item behind the others.
  FilterEntry& add(ItemRegistration item);

 private:
  std::string identifier_;
  std::vector<std::shared_ptr<FilterEntry>> entries_;
};

}  // namespace quillon::workbench
