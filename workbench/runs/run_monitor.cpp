#include "workbench/runs/run_monitor.h"

#include "workbench/presentation/text_cells.h"

namespace quillon::workbench {

std::string errorText(int number, int line, std::string_view message) {
  std::string text;
  if (number != 0) text = "error " + std::to_string(number);
  if (line > 0) text += (text.empty() ? "line " : " in line ") + std::to_string(line) + " of the batch";
  return (text.empty() ? text : text + ": ").append(message);
}

std::string errorText(const StatementFailure& failure) {
  constexpr std::size_t statementCells = 160;
  return errorText(failure.number, failure.line, failure.message) +
         ", at: " + shortened(oneLine(failure.sql), statementCells);
}

std::string errorText(const std::exception& error) {
  if (const auto* refused = dynamic_cast<const StatementError*>(&error)) return errorText(refused->failure());
  if (const auto* sql = dynamic_cast<const tsql::SqlError*>(&error); sql != nullptr && sql->line() > 0)
    return errorText(sql->number(), sql->line(), sql->message());
  return error.what();
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

}  // namespace quillon::workbench
