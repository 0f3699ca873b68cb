// Rows of a view in a file: written while they come, read page by page. Memory does not grow with them.
#pragma once

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <fstream>
#include <mutex>
#include <optional>
#include <string>
#include <vector>

#include "workbench/presentation/view.h"

namespace quillon::workbench::desk {

// A row as the desk shows it.
struct WindowRow {
  RowKind kind = RowKind::line;
  int level = 0;
  std::optional<std::int64_t> ledgerLine = {};
  std::int64_t details = 0;  // rows folded away beneath it
  std::string cells = {};    // JSON: an array of texts and nulls
};

class RowSpool {
 public:
  // Makes `file`, which goes with the object. With `folded`, rows of kind `detail` are no rows of their own: they come
  // with details(). Throws std::runtime_error when the file cannot be made.
  RowSpool(std::filesystem::path file, bool folded);
  RowSpool(const RowSpool&) = delete;
  RowSpool& operator=(const RowSpool&) = delete;
  ~RowSpool();

  // One thread writes, others read meanwhile. Throws std::runtime_error when the disk is full.
  void add(WindowRow row);
  // No more rows come.
  void finish();

  // Rows that can be read.
  std::int64_t size() const;
  // Up to `limit` of them from `offset` on.
  std::vector<WindowRow> read(std::int64_t offset, std::int64_t limit) const;
  // What is folded away beneath row number `row`.
  std::vector<WindowRow> details(std::int64_t row) const;

 private:
  void write();
  // Moves the buffer into the file. Under the lock.
  void flush();
  // Reads records from where row number `row` begins. Under the lock.
  std::vector<WindowRow> readFrom(std::int64_t row, std::int64_t limit, bool details) const;

  std::filesystem::path path_;
  bool folded_;
  mutable std::mutex mutex_;
  mutable std::fstream file_;
  std::uint64_t end_ = 0;              // of what is written
  std::vector<std::uint64_t> places_;  // of every so manieth row
  std::int64_t size_ = 0;              // rows written
  std::string buffer_;                 // behind them: not yet written
  std::int64_t buffered_ = 0;          // rows in it
  std::optional<WindowRow> waiting_;   // a row whose details may still come
  std::vector<WindowRow> itsDetails_;
};

}  // namespace quillon::workbench::desk
