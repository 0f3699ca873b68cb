#include "workbench/catalogue/report_columns.h"

namespace quillon::workbench {

namespace {

void addNumbered(std::vector<ReportColumn>& columns, const std::string& name, const std::string& chinese,
                 const std::string& english, ColumnRole role, int first, int last) {
  for (int number = first; number <= last; ++number) {
    const std::string text = std::to_string(number);
    columns.push_back({name + text, chinese + text, std::string(english).append(" ").append(text), role});
  }
}

}  // namespace

void addFreeItems(std::vector<ReportColumn>& columns) {
  addNumbered(columns, "cFree", "自由项", "Free item", ColumnRole::text, 1, 10);
}

void addUserDefinedFields(std::vector<ReportColumn>& columns) {
  using enum ColumnRole;
  addNumbered(columns, "cInvDefine", "存货自定义项", "Inventory field", userDefined, 1, 16);
  addNumbered(columns, "cDefine", "自定义项", "User-defined field", userDefined, 1, 16);
  addNumbered(columns, "cDefine", "自定义项", "User-defined field", userDefined, 22, 37);
}

}  // namespace quillon::workbench
