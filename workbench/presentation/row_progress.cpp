#include "workbench/presentation/row_progress.h"

#include <memory>
#include <utility>

namespace quillon::workbench {

namespace {

class NoRowProgress final : public RowProgress {
 public:
  bool shown() const override { return false; }
  void begin(std::optional<std::int64_t> /*rows*/) override {}
  void row() override {}
};

class WatchedRows final : public ViewRows {
 public:
  WatchedRows(std::unique_ptr<ViewRows> rows, RowProgress& progress) : rows_(std::move(rows)), progress_(progress) {}

  bool next() override {
    if (!rows_->next()) return false;
    if (rows_->row().kind == RowKind::line) progress_.row();
    return true;
  }
  const ViewRow& row() const override { return rows_->row(); }

 private:
  std::unique_ptr<ViewRows> rows_;
  RowProgress& progress_;
};

}  // namespace

RowProgress& noRowProgress() {
  static NoRowProgress none;
  return none;
}

View watched(View view, RowProgress& progress) {
  view.rows = [rows = std::move(view.rows), lines = view.lineCount, &progress]() -> std::unique_ptr<ViewRows> {
    progress.begin(lines);
    return std::make_unique<WatchedRows>(rows(), progress);
  };
  return view;
}

}  // namespace quillon::workbench
