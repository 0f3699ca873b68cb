#include "workbench/cli/progress_line.h"

#include <array>
#include <cstdio>

#include "workbench/presentation/text_cells.h"
#include "workbench/presentation/value_output.h"

namespace quillon::workbench {

namespace {

constexpr std::string_view eraseLine = "\r\x1b[K";

constexpr Caption sums{"正在汇总结果", "Summing the result up"};
constexpr Caption sorting{"正在读取结果并排序", "Reading and sorting the result"};
constexpr Caption writing{"已写 ", "Rows written: "};
constexpr Caption of{" / ", " of "};
constexpr Caption rowsUnit{" 行", ""};
constexpr Caption comma{"，", ", "};
constexpr Caption colon{"：", ": "};
constexpr Caption secondsUnit{" 秒", " s"};

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
        std::string(colon.in(language_)) + oneLine(sql.substr(0, bytesOfACell * cells_)), std::nullopt);
}

void ProgressLine::readSums() {
  start(Work::other, std::string(sums.in(language_)), "", std::nullopt);
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

std::string ProgressLine::line() const {
  const std::chrono::duration<double> time = Clock::now() - begun_;
  std::string seconds;
  if (time.count() >= 1) {
    std::array<char, 32> text{};
    const int length = std::snprintf(text.data(), text.size(), "%.1f", time.count());
    seconds = std::string(comma.in(language_)).append(text.data(), static_cast<std::size_t>(length));
    seconds += secondsUnit.in(language_);
  }
  if (work_ == Work::other) return before_ + seconds + behind_;
  const std::int64_t rows = rows_;
  if (rows == 0) return std::string(sorting.in(language_)) + seconds;
  std::string text = std::string(writing.in(language_)) + groupedCount(rows);
  if (total_) text += std::string(of.in(language_)) + groupedCount(*total_);
  return text + std::string(rowsUnit.in(language_)) + seconds;
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
