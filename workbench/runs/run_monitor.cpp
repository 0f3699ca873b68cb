#include "workbench/runs/run_monitor.h"

#include "workbench/messages/common.h"
#include "workbench/messages/report.h"
#include "workbench/messages/told_error.h"
#include "workbench/presentation/text_cells.h"

namespace quillon::workbench {

Message errorText(int number, int line, std::string_view message) {
  if (number != 0 && line > 0) return messages::sqlErrorInLine(number, line, message);
  if (number != 0) return messages::sqlError(number, message);
  if (line > 0) return messages::sqlErrorAtLine(line, message);
  return messages::said(message);
}

Message errorText(const StatementFailure& failure) {
  constexpr std::size_t statementCells = 160;
  return messages::atStatement(errorText(failure.number, failure.line, failure.message),
                               shortened(oneLine(failure.sql), statementCells));
}

Message errorText(const std::exception& error) {
  if (const auto* told = dynamic_cast<const InBothLanguages*>(&error)) return told->message();
  if (const auto* refused = dynamic_cast<const StatementError*>(&error)) return errorText(refused->failure());
  if (const auto* sql = dynamic_cast<const tsql::SqlError*>(&error); sql != nullptr && sql->line() > 0)
    return errorText(sql->number(), sql->line(), sql->message());
  return messages::said(error.what());
}

void RunMonitor::started(std::string_view sql) {
  observer_.started(++statements_, sql);
}

void RunMonitor::finished(std::string_view sql, double seconds, std::int64_t rows) {
  seconds_ += seconds;
  observer_.finished(statements_, sql, seconds, rows);
}

void RunMonitor::failed(const StatementFailure& failure) {
  failure_ = failure;
  observer_.failed(statements_, failure);
}

void RunMonitor::told(const odbc::Diagnostic& message) {
  observer_.told(statements_, message);
}

void RunMonitor::rewritten(std::string_view sql) {
  observer_.rewritten(statements_, sql);
}

}  // namespace quillon::workbench
