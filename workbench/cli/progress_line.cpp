#include "workbench/cli/progress_line.h"

#include <array>
#include <cstdio>

#include "workbench/messages/account.h"
#include "workbench/messages/common.h"
#include "workbench/messages/report.h"
#include "workbench/presentation/text_cells.h"
#include "workbench/presentation/value_output.h"

namespace quillon::workbench {

namespace {

constexpr std::string_view eraseLine = "\r\x1b[K";

}  // namespace

ProgressLine::ProgressLine(std::ostream& terminal, std::size_t columns, Language language)
    // A line that fills the terminal would push the next one down.
    : terminal_(terminal), cells_(columns > 1 ? columns - 1 : 1), language_(language) {}

ProgressLine::~ProgressLine() {
  finish();
}

void ProgressLine::statement(int number, std::string_view sql) {
  constexpr std::size_t bytesOfACell = 4;
  start(Work::other, std::to_string(number),
        std::string(messages::colon.in(language_)) + oneLine(sql.substr(0, bytesOfACell * cells_)), std::nullopt);
}

void ProgressLine::readSums() {
  start(Work::other, std::string(messages::summingUp.in(language_)), "", std::nullopt);
}

void ProgressLine::countRows() {
  rows_ = 0;
  start(Work::counted, "", "", std::nullopt);
}

void ProgressLine::countLedgerLines(std::int64_t total) {
  rows_ = 0;
  start(Work::ledgerLines, "", "", total);
}

void ProgressLine::makingIndexes() {
  start(Work::other, std::string(messages::makingIndexes.in(language_)), "", std::nullopt);
}

void ProgressLine::begin(std::optional<std::int64_t> rows) {
  rows_ = 0;
  start(Work::rows, "", "", rows);
}

void ProgressLine::start(Work work, std::string before, std::string behind, std::optional<std::int64_t> total) {
  {
    const std::scoped_lock lock(mutex_);
    if (finished_) return;
    work_ = work;
    before_ = std::move(before);
    behind_ = std::move(behind);
    total_ = total;
    begun_ = Clock::now();
    if (!drawn_ || begun_ - *drawn_ >= interval) draw();
    if (!drawing_.joinable()) drawing_ = std::thread([this] { keepDrawing(); });
  }
  changed_.notify_one();
}

void ProgressLine::clear() {
  const std::scoped_lock lock(mutex_);
  work_ = Work::none;
  erase();
}

void ProgressLine::finish() {
  {
    const std::scoped_lock lock(mutex_);
    work_ = Work::none;
    finished_ = true;
    erase();
  }
  changed_.notify_one();
  if (drawing_.joinable()) drawing_.join();
}

Message ProgressLine::writtenRows(std::int64_t rows) const {
  if (rows == 0) return messages::readingAndSorting();
  return total_ ? messages::rowsWrittenOf(groupedCount(rows), groupedCount(*total_))
                : messages::rowsWritten(groupedCount(rows));
}

std::string ProgressLine::line() const {
  const std::chrono::duration<double> time = Clock::now() - begun_;
  const std::int64_t rows = rows_;
  const bool takesLong = time.count() >= 1;
  if (work_ == Work::counted || work_ == Work::ledgerLines) {
    const Message done = work_ == Work::counted ? messages::rowsDone(groupedCount(rows))
                                                : messages::sampleProgress(groupedCount(rows), groupedCount(*total_));
    if (!takesLong) return done.in(language_);
    return messages::aSecond(done, groupedCount(static_cast<std::int64_t>(static_cast<double>(rows) / time.count())))
        .in(language_);
  }
  Message text = work_ == Work::other ? messages::said(before_) : writtenRows(rows);
  if (takesLong) {
    std::array<char, 32> seconds{};
    const int length = std::snprintf(seconds.data(), seconds.size(), "%.1f", time.count());
    text = messages::timed(text, std::string_view(seconds.data(), static_cast<std::size_t>(length)));
  }
  return work_ == Work::other ? text.in(language_) + behind_ : text.in(language_);
}

void ProgressLine::draw() {
  std::string text = shortened(line(), cells_, "…");
  if (text != visible_) terminal_ << eraseLine << text << std::flush;
  drawn_ = Clock::now();
  visible_ = std::move(text);
}

void ProgressLine::erase() {
  if (!visible_.empty()) terminal_ << eraseLine << std::flush;
  visible_.clear();
}

void ProgressLine::keepDrawing() {
  std::unique_lock lock(mutex_);
  while (!finished_) {
    if (work_ == Work::none) {
      changed_.wait(lock);
      continue;
    }
    const Clock::time_point next = drawn_ ? *drawn_ + interval : Clock::now();
    changed_.wait_until(lock, next);
    if (work_ != Work::none && (!drawn_ || Clock::now() >= *drawn_ + interval)) draw();
  }
}

}  // namespace quillon::workbench
