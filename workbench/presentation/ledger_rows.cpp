#include "workbench/presentation/ledger_rows.h"

#include "workbench/platform/resource_texts.h"

namespace quillon::workbench {

namespace {

using Kind = LedgerRow::Kind;

constexpr Caption kindCaption{"类型", "Kind"};
constexpr Caption monthBalanceCaption{"月末结存", "Month-end balance"};

std::string kindName(const ReportDocument& document, Kind kind) {
  switch (kind) {
    case Kind::opening:
      return resourceText(openingBalanceKey, document.language);
    case Kind::receipt:
      return resourceText(receiptKey, document.language);
    case Kind::issue:
      return resourceText(issueKey, document.language);
    case Kind::monthBalance:
      break;
  }
  return std::string(document.text(monthBalanceCaption));
}

bool isOne(const tsql::Value& value) {
  const auto* number = std::get_if<std::int64_t>(&value);
  return number != nullptr && *number == 1;
}

// `datatype` as the ledger's result table has it: 0 opening balance, 1 movement, 2 month balance.
Kind kindOf(const tsql::Value& datatype, const tsql::Value& isReceipt) {
  if (isOne(datatype)) return isOne(isReceipt) ? Kind::receipt : Kind::issue;
  const auto* number = std::get_if<std::int64_t>(&datatype);
  return number != nullptr && *number == 0 ? Kind::opening : Kind::monthBalance;
}

}  // namespace

std::vector<ReportColumn> ledgerColumns(const ReportDocument& document) {
  std::vector<ReportColumn> columns = document.columns;
  columns.insert(
      columns.begin() + 1,
      {.name = "", .chinese = std::string(kindCaption.chinese), .english = std::string(kindCaption.english)});
  return columns;
}

LedgerRows::LedgerRows(const ReportDocument& document, const ResultTable& table)
    : document_(document), cursor_(table.ledgerRows(document.columns)) {}

bool LedgerRows::next() {
  if (!cursor_->next()) return false;
  const std::vector<ReportColumn>& columns = document_.columns;
  row_.kind = kindOf(cursor_->value(columns.size()), cursor_->value(columns.size() + 1));
  row_.values.clear();
  std::vector<tsql::Value> lineValues;
  for (std::size_t i = 0; i < columns.size(); ++i) {
    row_.values.push_back(cursor_->value(i));
    if (columns[i].ofLine) lineValues.push_back(row_.values.back());
  }
  row_.beginsLine = lineValues != lineValues_;
  if (!row_.beginsLine) {
    for (std::size_t i = 0; i < columns.size(); ++i) {
      if (columns[i].ofLine) row_.values[i] = tsql::Value();
    }
  }
  lineValues_ = std::move(lineValues);
  row_.values.insert(row_.values.begin() + 1,
                     row_.beginsLine ? tsql::Value(kindName(document_, row_.kind)) : tsql::Value());
  return true;
}

}  // namespace quillon::workbench
