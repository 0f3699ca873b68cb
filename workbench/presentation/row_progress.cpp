#include "workbench/presentation/row_progress.h"

namespace quillon::workbench {

namespace {

class NoRowProgress final : public RowProgress {
 public:
  bool shown() const override { return false; }
  void begin(std::optional<std::int64_t> /*rows*/) override {}
  void row() override {}
};

}  // namespace

RowProgress& noRowProgress() {
  static NoRowProgress none;
  return none;
}

}  // namespace quillon::workbench
