#include "workbench/runs/row_document.h"

#include <algorithm>
#include <memory>
#include <span>

#include "frame/text.h"
#include "workbench/catalogue/library_runner.h"
#include "workbench/messages/report.h"
#include "workbench/platform/user_error.h"
#include "workbench/presentation/value_output.h"

namespace quillon::workbench {

namespace {

std::string described(const RowValues& row) {
  std::string text;
  for (const auto& [column, value] : row)
    text.append(text.empty() ? "" : ", ").append(column).append("=").append(value);
  return text;
}

void requireColumns(const RowValues& wanted, std::span<const tsql::Column> columns) {
  for (const auto& entry : wanted) {
    const auto has = [&entry](const tsql::Column& column) { return equalIgnoringCase(column.name, entry.first); };
    if (std::ranges::any_of(columns, has)) continue;
    throw UserError(messages::rowsLackColumn(entry.first));
  }
}

RowValues presentRow(AccountRecordset& rows) {
  RowValues row;
  for (std::size_t i = 0; i < rows.columns().size(); ++i)
    row.emplace_back(rows.columns()[i].name, rows.text(static_cast<int>(i)).value_or(""));
  return row;
}

}  // namespace

const std::string* valueIn(const RowValues& row, std::string_view column) {
  const auto found =
      std::ranges::find_if(row, [column](const auto& entry) { return equalIgnoringCase(entry.first, column); });
  return found == row.end() ? nullptr : &found->second;
}

RowValues findRow(const MadeReport& report, const RowValues& wanted) {
  const ResultTable table = report.table();
  const auto rows = report.account().session->openRecordset(table.selectRows());
  requireColumns(wanted, rows->columns());
  for (; !rows->eof(); rows->moveNext()) {
    RowValues row = presentRow(*rows);
    const auto has = [&row](const auto& entry) { return *valueIn(row, entry.first) == entry.second; };
    if (std::ranges::all_of(wanted, has)) return row;
  }
  throw UserError(messages::noSuchRow(described(wanted)));
}

RowValues rowOfLedgerLine(const MadeReport& report, std::int64_t line) {
  const std::string number = std::to_string(line);
  std::string where(report.report().ledgerLine);
  where.append(" = ").append(number);
  const auto rows = report.account().session->openRecordset(report.table().selectRows({}, where));
  if (rows->eof()) throw UserError(messages::noSuchRow("AutoID=" + number));
  return presentRow(*rows);
}

OpenedDocuments openDocuments(const Report& report, const SignedInAccount& account, Language language,
                              const RowValues& row, const std::string& action) {
  OpenedDocuments outcome;
  EmbeddedPlatform platform(
      {.account = account.source,
       .language = language,
       .messages = [&outcome](std::string_view text, int) { outcome.messages.emplace_back(text); },
       .vouchers = [&outcome](const OpenedVoucher& voucher) { outcome.opened.push_back(voucher); }});
  const auto runner = makeReportRunner(platform);
  runner->execute(report, std::make_shared<WorkbenchArgument>(account.login, row, action));
  return outcome;
}

std::string shownValue(const VoucherField& field, const std::string& value) {
  constexpr int moneyDecimals = 2;
  if (value.empty() || field.kind == VoucherField::Kind::text) return value;
  if (field.kind == VoucherField::Kind::money) return groupedNumber(value, moneyDecimals);
  const auto point = value.find('.');
  const std::size_t decimals = point == std::string::npos ? 0 : value.size() - point - 1;
  return groupedNumber(value, std::max(static_cast<int>(decimals), moneyDecimals));
}

}  // namespace quillon::workbench
