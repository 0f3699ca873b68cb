// How far an account is that is taken elsewhere or compared, for the person who waits for it.
#pragma once

#include <cstdint>
#include <functional>

namespace quillon::account {

// Whom to tell; either may be empty.
struct TransferProgress {
  std::function<void(std::int64_t rows)> rows;  // rows done so far, of all tables; told every thousand of them or so
  std::function<void()> indexes;                // the rows are there, and now their indexes are made
};

// Counts rows, and tells from time to time.
class RowCounter {
 public:
  explicit RowCounter(const TransferProgress& progress) : progress_(progress) {}

  void row() {
    constexpr std::int64_t step = 1024;
    if (++rows_ % step == 0 && progress_.rows) progress_.rows(rows_);
  }
  std::int64_t rows() const { return rows_; }

 private:
  const TransferProgress& progress_;
  std::int64_t rows_ = 0;
};

}  // namespace quillon::account
