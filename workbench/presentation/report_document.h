// What stands above a report, whatever the format, and how its cells read.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "workbench/catalogue/report_columns.h"
#include "workbench/platform/language.h"
#include "workbench/tsql/values/value.h"

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
  int unitCostDecimals = 4;                                     // the account's
  std::int64_t rowCount = 0;                                    // of the result table

  std::string_view text(const Caption& caption) const { return caption.in(language); }
};

// A cell of `column` for a reader: grouped numbers with the column's decimals, dates without a time of day, nothing for
// null.
std::string cellText(const ReportDocument& document, const ReportColumn& column, const tsql::Value& value);

// Words that more than one format uses.
inline constexpr Caption totalCaption{"合计", "Total"};
inline constexpr Caption noRowsCaption{"没有符合条件的数据", "No rows meet the conditions"};
inline constexpr Caption codeCaption{"编码", "Code"};
inline constexpr Caption costItemCaption{"成本项目", "Cost item"};
inline constexpr Caption noCostItemCaption{"（无成本项目）", "(no cost item)"};

}  // namespace quillon::workbench
