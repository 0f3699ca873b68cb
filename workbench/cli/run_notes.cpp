#include "workbench/cli/run_notes.h"

#include <array>
#include <cstdio>
#include <string>

#include "workbench/messages/common.h"
#include "workbench/messages/report.h"
#include "workbench/runs/run_monitor.h"

namespace quillon::workbench {

namespace {

std::string decimals(const char* format, double number) {
  std::array<char, 64> text{};
  const int length = std::snprintf(text.data(), text.size(), format, number);
  return {text.data(), static_cast<std::size_t>(length)};
}

}  // namespace

void RunNotes::started(int number, std::string_view sql) {
  if (progress_ != nullptr) progress_->statement(number, sql);
}

void RunNotes::finished(int number, std::string_view sql, double seconds, std::int64_t rows) {
  clearProgress();
  if (explanation_ == nullptr) return;
  Message line = messages::explainedStatement(number, decimals("%.1f", seconds * 1000));
  if (rows >= 0) line = rows == 1 ? messages::withRow(line, rows) : messages::withRows(line, rows);
  *explanation_ << line.in(language_) << '\n' << sql << "\n\n";
}

void RunNotes::failed(int number, const StatementFailure& failure) {
  clearProgress();
  if (explanation_ == nullptr) return;
  const Message error = errorText(failure.number, failure.line, failure.message);
  *explanation_ << messages::explainedFailure(number, error).in(language_) << '\n' << failure.sql << "\n\n";
}

void RunNotes::told(int number, const odbc::Diagnostic& message) {
  if (explanation_ == nullptr) return;
  clearProgress();
  *explanation_ << messages::serverSays(number, message.text, message.number, message.line).in(language_) << '\n';
}

void RunNotes::rewritten(int number, std::string_view sql) {
  if (explanation_ == nullptr) return;
  clearProgress();
  *explanation_ << messages::sentAs(number).in(language_) << '\n' << sql << "\n\n";
}

void RunNotes::shown(std::string_view message) {
  clearProgress();
  notes_ << message << '\n';
}

void RunNotes::noted(std::string_view line) {
  notes_ << "quillon: " << line << '\n';
}

void RunNotes::ended(int statements, double secondsInStatements, double seconds) {
  if (explanation_ == nullptr) return;
  const Message line = messages::explainedTotal(statements, decimals("%.1f", secondsInStatements * 1000),
                                                decimals("%.1f", seconds * 1000),
                                                decimals("%.2f", (seconds - secondsInStatements) * 1000));
  *explanation_ << line.in(language_) << '\n';
}

void RunNotes::clearProgress() {
  if (progress_ != nullptr) progress_->clear();
}

}  // namespace quillon::workbench
