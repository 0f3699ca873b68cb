// Column lists from a table of columns. A statement that creates a table, fills it and reads it again lists the same
// columns several times: by name, by what they are selected from, by type or by sum. The report keeps one row a column,
// with all of these side by side, and the lists are made from the rows, so that no name can slip beside its expression.
//
// A row is a struct of the report's own with a member `name`. A row may also stand for a list of several columns, such
// as those in frame/ledger_columns.h; its texts then end with a comma.
#pragma once

#include <concepts>
#include <functional>
#include <ranges>
#include <string>
#include <string_view>

#include "frame/text.h"

namespace quillon {

// Gives one list of `columns`, in their order. `textOf` gives a row's text for this list: a pointer to its member, or a
// function of the row. A row with an empty text is left out. `separatorBehind` gives the text that stands between a row
// and the next one; nothing stands behind a list that ends with its own comma.
template <std::ranges::input_range Columns, typename TextOf, typename SeparatorBehind>
requires(!std::convertible_to<SeparatorBehind, std::string_view>) std::string
    columnList(const Columns& columns, TextOf textOf, SeparatorBehind separatorBehind) {
  std::string list;
  std::string_view due;
  for (const auto& row : columns) {
    const auto& text = std::invoke(textOf, row);
    if (text.empty()) continue;
    list += due;
    list += text;
    due = trimBlanks(text).ends_with(',') ? std::string_view() : std::string_view(separatorBehind(row));
  }
  return list;
}

// The same with one separator behind every row.
template <std::ranges::input_range Columns, typename TextOf>
std::string columnList(const Columns& columns, TextOf textOf, std::string_view separator) {
  return columnList(columns, textOf, [separator](const auto&) { return separator; });
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
