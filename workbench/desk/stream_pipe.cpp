#include "workbench/desk/stream_pipe.h"

#include <utility>

namespace quillon::workbench::desk {

StreamPipe::StreamPipe(std::function<void()> written) : written_(std::move(written)) {}

bool StreamPipe::write(std::string_view bytes) {
  while (!bytes.empty()) {
    const std::string_view piece = bytes.substr(0, pieceSize);
    bytes.remove_prefix(piece.size());
    std::unique_lock lock(mutex_);
    changed_.wait(lock, [this] { return gone_ || pending_.size() < enough; });
    if (gone_) return false;
    const bool wasEmpty = pending_.empty();
    pending_ += piece;
    lock.unlock();
    if (wasEmpty) written_();
  }
  return open();
}

bool StreamPipe::open() const {
  const std::lock_guard lock(mutex_);
  return !gone_;
}

void StreamPipe::end(bool failed, std::optional<DeskResponse> instead) {
  {
    const std::lock_guard lock(mutex_);
    ended_ = true;
    failed_ = failed;
    instead_ = std::move(instead);
  }
  written_();
}

void StreamPipe::abandon() {
  {
    const std::lock_guard lock(mutex_);
    gone_ = true;
  }
  changed_.notify_all();
}

StreamPipe::Taken StreamPipe::take() {
  Taken taken;
  {
    const std::lock_guard lock(mutex_);
    taken.bytes.swap(pending_);
    taken.ended = ended_;
    taken.failed = failed_;
    taken.instead = std::move(instead_);
  }
  changed_.notify_all();
  return taken;
}

}  // namespace quillon::workbench::desk
