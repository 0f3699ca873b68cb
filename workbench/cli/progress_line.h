// What the program is doing, how far it is and for how long, in one line that is rewritten in place.
#pragma once

#include <atomic>
#include <chrono>
#include <condition_variable>
#include <cstdint>
#include <mutex>
#include <optional>
#include <ostream>
#include <string>
#include <string_view>
#include <thread>

#include "workbench/messages/message.h"
#include "workbench/platform/language.h"
#include "workbench/presentation/row_progress.h"

namespace quillon::workbench {

// The line is written at most ten times a second, by a thread of its own, because whoever reads a result waits for its
// first row. Before anything else is written to the same terminal, the line has to be taken away: clear().
class ProgressLine final : public RowProgress {
 public:
  static constexpr std::chrono::milliseconds interval{100};

  // `terminal` is one whose lines have `columns` cells.
  ProgressLine(std::ostream& terminal, std::size_t columns, Language language);
  ProgressLine(const ProgressLine&) = delete;
  ProgressLine& operator=(const ProgressLine&) = delete;
  // Takes the line away.
  ~ProgressLine() override;

  // Statement number `number` of a run runs now.
  void statement(int number, std::string_view sql);
  // The result's columns and sums are read.
  void readSums();
  bool shown() const override { return true; }
  // Rows are moved or compared now; counted() says how many are done.
  void countRows();
  // The same of a sample's ledger lines, of which there will be `total`.
  void countLedgerLines(std::int64_t total);
  void counted(std::int64_t done) { rows_.store(done, std::memory_order_relaxed); }
  void makingIndexes();
  void begin(std::optional<std::int64_t> rows) override;
  void row() override { rows_.fetch_add(1, std::memory_order_relaxed); }

  // Takes the line away until the next of what is above begins.
  void clear();
  // Takes it away for good.
  void finish();

 private:
  using Clock = std::chrono::steady_clock;
  enum class Work { none, rows, counted, ledgerLines, other };

  void start(Work work, std::string before, std::string behind, std::optional<std::int64_t> total);
  std::string line() const;
  Message writtenRows(std::int64_t rows) const;
  void draw();
  void erase();
  void keepDrawing();

  std::ostream& terminal_;
  std::size_t cells_;
  Language language_;
  std::atomic<std::int64_t> rows_{0};

  std::mutex mutex_;  // of what follows
  std::condition_variable changed_;
  Work work_ = Work::none;
  std::string before_, behind_;  // of the time, for other work than rows
  std::optional<std::int64_t> total_;
  Clock::time_point begun_;
  std::optional<Clock::time_point> drawn_;  // when it was seen to last
  std::string visible_;
  bool finished_ = false;
  std::thread drawing_;
};

}  // namespace quillon::workbench
