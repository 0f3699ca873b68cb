#include "workbench/cli/run_monitor.h"

#include <array>
#include <cstdio>

#include "workbench/messages/common.h"
#include "workbench/messages/report.h"
#include "workbench/messages/told_error.h"
#include "workbench/presentation/text_cells.h"

namespace quillon::workbench {

namespace {

std::string milliseconds(double seconds) {
  std::array<char, 32> text{};
  const int length = std::snprintf(text.data(), text.size(), "%.1f", seconds * 1000);
  return {text.data(), static_cast<std::size_t>(length)};
}

}  // namespace

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
  ++statements_;
  if (progress_ != nullptr) progress_->statement(statements_, sql);
}

void RunMonitor::finished(std::string_view sql, double seconds, std::int64_t rows) {
  seconds_ += seconds;
  clearProgress();
  if (explanation_ == nullptr) return;
  Message line = messages::explainedStatement(statements_, milliseconds(seconds));
  if (rows >= 0) line = rows == 1 ? messages::withRow(line, rows) : messages::withRows(line, rows);
  *explanation_ << line.in(language_) << '\n' << sql << "\n\n";
}

void RunMonitor::failed(const StatementFailure& failure) {
  failure_ = failure;
  clearProgress();
  if (explanation_ == nullptr) return;
  const Message error = errorText(failure.number, failure.line, failure.message);
  *explanation_ << messages::explainedFailure(statements_, error).in(language_) << '\n' << failure.sql << "\n\n";
}

void RunMonitor::told(const odbc::Diagnostic& message) {
  if (explanation_ == nullptr) return;
  clearProgress();
  *explanation_ << messages::serverSays(statements_, message.text, message.number, message.line).in(language_) << '\n';
}

void RunMonitor::clearProgress() {
  if (progress_ != nullptr) progress_->clear();
}

}  // namespace quillon::workbench
