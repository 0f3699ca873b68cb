#include "workbench/runs/run_monitor.h"

#include <array>
#include <cstdio>

#include "workbench/presentation/text_cells.h"

namespace quillon::workbench {

namespace {

std::string milliseconds(double seconds) {
  std::array<char, 32> text{};
  const int length = std::snprintf(text.data(), text.size(), "%.1f ms", seconds * 1000);
  return {text.data(), static_cast<std::size_t>(length)};
}

}  // namespace

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
  ++statements_;
  if (progress_ != nullptr) progress_->statement(statements_, sql);
}

void RunMonitor::finished(std::string_view sql, double seconds, std::int64_t rows) {
  seconds_ += seconds;
  clearProgress();
  if (explanation_ == nullptr) return;
  *explanation_ << '[' << statements_ << "] " << milliseconds(seconds);
  if (rows >= 0) *explanation_ << ", " << rows << (rows == 1 ? " row" : " rows");
  *explanation_ << '\n' << sql << "\n\n";
}

void RunMonitor::failed(const StatementFailure& failure) {
  failure_ = failure;
  clearProgress();
  if (explanation_ == nullptr) return;
  *explanation_ << '[' << statements_ << "] failed: " << errorText(failure.number, failure.line, failure.message)
                << '\n'
                << failure.sql << "\n\n";
}

void RunMonitor::told(const odbc::Diagnostic& message) {
  if (explanation_ == nullptr) return;
  clearProgress();
  *explanation_ << '[' << statements_ << "] the server says: " << message.text << " (number " << message.number
                << ", line " << message.line << ")\n";
}

void RunMonitor::clearProgress() {
  if (progress_ != nullptr) progress_->clear();
}

}  // namespace quillon::workbench
