// How far the rows of a report have come, for the person who waits for it. Writers of every format tell it; who shows it,
// and whether anybody does, is the caller's affair.
#pragma once

#include <cstdint>
#include <optional>

#include "workbench/presentation/view.h"

namespace quillon::workbench {

class RowProgress {
 public:
  virtual ~RowProgress() = default;

  // Whether anybody watches: then it is worth counting the rows for begin().
  virtual bool shown() const = 0;
  // Rows will now be read, in their order, and written: `rows` of them, where that is known. Until the first of them comes,
  // the account sorts.
  virtual void begin(std::optional<std::int64_t> rows) = 0;
  // One of them was read. Called for each: it costs next to nothing.
  virtual void row() = 0;
};

// Shows nothing.
RowProgress& noRowProgress();

// The view, of which `progress` is told each line that is read. `progress` outlives it.
View watched(View view, RowProgress& progress);

}  // namespace quillon::workbench
