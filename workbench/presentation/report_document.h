// What a report shows, whatever the format: heading, conditions, the rows of the result table, totals and cross view.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "workbench/catalogue/report_columns.h"
#include "workbench/platform/language.h"
#include "workbench/presentation/result_table.h"

namespace quillon::workbench {

struct ReportDocument {
  Language language = Language::chinese;
  std::string report;                                           // "sfc-item"
  std::string title;                                            // in the language
  std::vector<std::pair<std::string, std::string>> conditions;  // caption and what was entered
  std::string company;                                          // whose account it is
  std::string period;                                           // the year or the days that it is about
  std::string printed;                                          // the day on which it was written, yyyy-mm-dd
  int quantityDecimals = 2;                                     // the account's
  std::vector<ReportColumn> columns;                            // those that are shown, of the filled ones
  std::size_t columnsLeftOut = 0;                               // the filled ones that are not shown
  std::vector<std::optional<std::string>> totals;               // one a column
  std::vector<CrossState> crossStates;                          // empty: the report has no cross view
  CrossView cross;
  bool ledger = false;       // without totals and cross view; its rows are read as LedgerRows
  int unitCostDecimals = 4;  // the account's
  std::int64_t rowCount = 0;

  std::string_view text(const Caption& caption) const { return caption.in(language); }
};

// A cell of `column` for a reader: grouped numbers with the column's decimals, dates without a time of day, nothing for
// null.
std::string cellText(const ReportDocument& document, const ReportColumn& column, const tsql::Value& value);
// A sum (an exact text) of a quantity or a money column.
std::string quantityText(const ReportDocument& document, std::string_view exact);
std::string moneyText(std::string_view exact);
// What stands under column number `column` in the row of totals; the word for it under the first column.
std::string totalText(const ReportDocument& document, std::size_t column);
// How many rows there are and, when `limit` cuts them, how many of them are shown; how many columns are not shown.
std::string rowCountText(const ReportDocument& document, std::optional<std::int64_t> limit);

// Words that more than one format uses.
inline constexpr Caption totalCaption{"合计", "Total"};
inline constexpr Caption crossCaption{"按成本项目汇总", "By cost item"};
inline constexpr Caption rowsCaption{"明细", "Rows"};
inline constexpr Caption noRowsCaption{"没有符合条件的数据", "No rows meet the conditions"};
inline constexpr Caption codeCaption{"编码", "Code"};
inline constexpr Caption costItemCaption{"成本项目", "Cost item"};
inline constexpr Caption noCostItemCaption{"（无成本项目）", "(no cost item)"};
inline constexpr Caption quantityCaption{"数量", "quantity"};
inline constexpr Caption moneyCaption{"金额", "amount"};

// The name of a state of the cross view in the document's language.
std::string stateName(const ReportDocument& document, const CrossState& state);
// The heading of a state's quantity or money: "Receipt amount".
std::string crossHeading(const ReportDocument& document, const CrossState& state, const Caption& measure);
// What the cross view calls a row: its cost item; ledger lines that fall to none have neither code nor name.
std::string costItemName(const ReportDocument& document, const CrossRow& row);

}  // namespace quillon::workbench
