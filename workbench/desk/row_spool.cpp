#include "workbench/desk/row_spool.h"

#include <algorithm>
#include <charconv>
#include <stdexcept>
#include <string_view>
#include <system_error>
#include <utility>
#include "workbench/messages/desk.h"
#include "workbench/platform/user_error.h"

namespace quillon::workbench::desk {

namespace {

constexpr std::int64_t rowsAPlace = 32;
constexpr std::size_t bufferSize = 262'144;

// "D kind level line details cells\n": a detail or a row (R), numbers in decimal, "-" for no ledger line.
std::string recordOf(const WindowRow& row, bool detail) {
  std::string record = detail ? "D " : "R ";
  record += std::to_string(static_cast<int>(row.kind)) + ' ' + std::to_string(row.level) + ' ' +
            (row.ledgerLine ? std::to_string(*row.ledgerLine) : "-") + ' ' + std::to_string(row.details) + ' ';
  return record.append(row.cells).append("\n");
}

std::int64_t number(std::string_view& text) {
  std::int64_t value = 0;
  const char* const end = std::from_chars(text.data(), text.data() + text.size(), value).ptr;
  text.remove_prefix(static_cast<std::size_t>(end - text.data()));
  text.remove_prefix(1);
  return value;
}

WindowRow rowOf(std::string_view record) {
  WindowRow row;
  record.remove_prefix(2);
  row.kind = static_cast<RowKind>(number(record));
  row.level = static_cast<int>(number(record));
  if (record.starts_with('-')) {
    record.remove_prefix(2);
  } else {
    row.ledgerLine = number(record);
  }
  row.details = number(record);
  row.cells = record;
  return row;
}

}  // namespace

RowSpool::RowSpool(std::filesystem::path file, bool folded) : path_(std::move(file)), folded_(folded) {
  file_.open(path_, std::ios::binary | std::ios::in | std::ios::out | std::ios::trunc);
  if (!file_) throw UserError(messages::rowsNotKept());
}

RowSpool::~RowSpool() {
  file_.close();
  std::error_code ignored;
  std::filesystem::remove(path_, ignored);
}

void RowSpool::add(WindowRow row) {
  if (folded_ && row.kind == RowKind::detail && waiting_) {
    itsDetails_.push_back(std::move(row));
    return;
  }
  write();
  waiting_ = std::move(row);
}

void RowSpool::finish() {
  write();
  const std::scoped_lock lock(mutex_);
  flush();
}

// Puts the waiting row with its details into the buffer.
void RowSpool::write() {
  if (!waiting_) return;
  waiting_->details = static_cast<std::int64_t>(itsDetails_.size());
  const std::scoped_lock lock(mutex_);
  if ((size_ + buffered_) % rowsAPlace == 0) places_.push_back(end_ + buffer_.size());
  buffer_ += recordOf(*waiting_, false);
  for (const WindowRow& detail : itsDetails_)
    buffer_ += recordOf(detail, true);
  ++buffered_;
  waiting_.reset();
  itsDetails_.clear();
  // The first rows are waited for.
  if (buffer_.size() >= bufferSize || size_ + buffered_ == rowsAPlace * 8) flush();
}

void RowSpool::flush() {
  file_.clear();
  file_.seekp(static_cast<std::streamoff>(end_));
  file_.write(buffer_.data(), static_cast<std::streamsize>(buffer_.size()));
  file_.flush();
  if (!file_) throw UserError(messages::temporaryDiskFull());
  end_ += buffer_.size();
  buffer_.clear();
  size_ += buffered_;
  buffered_ = 0;
}

std::int64_t RowSpool::size() const {
  const std::scoped_lock lock(mutex_);
  return size_;
}

std::vector<WindowRow> RowSpool::read(std::int64_t offset, std::int64_t limit) const {
  const std::scoped_lock lock(mutex_);
  return readFrom(offset, limit, false);
}

std::vector<WindowRow> RowSpool::details(std::int64_t row) const {
  const std::scoped_lock lock(mutex_);
  return readFrom(row, 1, true);
}

std::vector<WindowRow> RowSpool::readFrom(std::int64_t row, std::int64_t limit, bool details) const {
  std::vector<WindowRow> rows;
  if (row < 0 || row >= size_ || limit <= 0) return rows;
  file_.clear();
  file_.seekg(static_cast<std::streamoff>(places_[static_cast<std::size_t>(row / rowsAPlace)]));
  std::int64_t at = row / rowsAPlace * rowsAPlace - 1;  // the row that was read last
  const std::int64_t behind = std::min(row + limit, size_);
  std::uint64_t place = places_[static_cast<std::size_t>(row / rowsAPlace)];
  for (std::string record; place < end_ && std::getline(file_, record);) {
    place += record.size() + 1;
    const bool detail = record.starts_with('D');
    if (!detail && ++at >= behind) break;
    if (at >= row && detail == details) rows.push_back(rowOf(record));
  }
  return rows;
}

}  // namespace quillon::workbench::desk
