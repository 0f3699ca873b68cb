// Column lists from a table of columns. A statement that creates a table, fills it and reads it again lists the same
// columns several times: by name, by what they are selected from, by type or by sum. The report keeps one row a column,
// with all of these side by side, and the lists are made from the rows, so that no name can slip beside its expression.
//
// A row is a struct of the report's own with a member `name`. A row may also stand for a list of several columns, such
// as those in frame/ledger_columns.h; its texts then end with a comma.
#pragma once

#include <functional>
#include <ranges>
#include <string>
#include <string_view>
#include <type_traits>

#include "frame/text.h"

namespace quillon {

// Gives one list of `columns`, in their order. `textOf` gives a row's text for this list: a pointer to its member, or a
// function of the row. A row with an empty text is left out. `separator` stands between two rows, but not behind a list
// that ends with its own comma; it is a text, or a function that gives the text that stands behind a row.
template <std::ranges::input_range Columns, typename TextOf, typename Separator>
std::string columnList(const Columns& columns, TextOf textOf, Separator separator) {
  const auto separatorBehind = [&separator](const auto& row) -> std::string_view {
    if constexpr (std::is_invocable_v<Separator, decltype(row)>) {
      return std::invoke(separator, row);
    } else {
      return separator;
    }
  };
  std::string list;
  std::string_view due;
  for (const auto& row : columns) {
    const auto& text = std::invoke(textOf, row);
    if (text.empty()) continue;
    list += due;
    list += text;
    due = trimBlanks(text).ends_with(',') ? std::string_view() : separatorBehind(row);
  }
  return list;
}

// For a static_assert beside a table: whether each text that `textOf` gives ends with its row's name, be it as the
// column that is selected ("base.cInvCode") or as an alias ("base.cAccDep As cDepCode"). Letter case does not count.
// Rows that have no such text or stand for a list are passed over.
template <std::ranges::input_range Columns, typename TextOf>
constexpr bool allEndWithTheirNames(const Columns& columns, TextOf textOf) {
  for (const auto& row : columns) {
    const std::string_view text = std::invoke(textOf, row);
    const std::string_view name = row.name;
    if (text.empty() || trimBlanks(name).ends_with(',')) continue;
    if (text.size() < name.size() || !equalIgnoringCase(text.substr(text.size() - name.size()), name)) return false;
  }
  return true;
}

}  // namespace quillon
