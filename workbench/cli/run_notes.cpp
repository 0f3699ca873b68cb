#include "workbench/cli/run_notes.h"

#include <array>
#include <cstdio>
#include <string>

#include "workbench/runs/run_monitor.h"

namespace quillon::workbench {

namespace {

std::string milliseconds(double seconds) {
  std::array<char, 32> text{};
  const int length = std::snprintf(text.data(), text.size(), "%.1f ms", seconds * 1000);
  return {text.data(), static_cast<std::size_t>(length)};
}

}  // namespace

void RunNotes::started(int number, std::string_view sql) {
  if (progress_ != nullptr) progress_->statement(number, sql);
}

void RunNotes::finished(int number, std::string_view sql, double seconds, std::int64_t rows) {
  clearProgress();
  if (explanation_ == nullptr) return;
  *explanation_ << '[' << number << "] " << milliseconds(seconds);
  if (rows >= 0) *explanation_ << ", " << rows << (rows == 1 ? " row" : " rows");
  *explanation_ << '\n' << sql << "\n\n";
}

void RunNotes::failed(int number, const StatementFailure& failure) {
  clearProgress();
  if (explanation_ == nullptr) return;
  *explanation_ << '[' << number << "] failed: " << errorText(failure.number, failure.line, failure.message) << '\n'
                << failure.sql << "\n\n";
}

void RunNotes::told(int number, const odbc::Diagnostic& message) {
  if (explanation_ == nullptr) return;
  clearProgress();
  *explanation_ << '[' << number << "] the server says: " << message.text << " (number " << message.number << ", line "
                << message.line << ")\n";
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
  std::array<char, 160> text{};
  const int length = std::snprintf(
      text.data(), text.size(), "%d statements, %.1f ms in the account, %.1f ms in all (the report itself %.2f ms)\n",
      statements, secondsInStatements * 1000, seconds * 1000, (seconds - secondsInStatements) * 1000);
  *explanation_ << std::string_view(text.data(), static_cast<std::size_t>(length));
}

void RunNotes::clearProgress() {
  if (progress_ != nullptr) progress_->clear();
}

}  // namespace quillon::workbench
