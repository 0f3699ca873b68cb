// Between the thread of a stream, which writes, and the one of input and output, which sends.
#pragma once

#include <condition_variable>
#include <cstddef>
#include <functional>
#include <mutex>
#include <optional>
#include <string>
#include <string_view>

#include "workbench/desk/handler.h"

namespace quillon::workbench::desk {

// Holds a few pieces: a stream does not run ahead of its reader.
class StreamPipe final : public Sink {
 public:
  // `written` is called when something has come into an empty pipe, and at its end; on the stream's thread.
  explicit StreamPipe(std::function<void()> written);

  bool write(std::string_view bytes) override;
  bool open() const override;

  // The stream has said everything, or has failed; one that has not begun may have another answer in its place.
  void end(bool failed, std::optional<DeskResponse> instead = {});
  // Nobody reads any more.
  void abandon();

  struct Taken {
    std::string bytes;
    bool ended = false;  // nothing follows
    bool failed = false;
    std::optional<DeskResponse> instead = {};
  };
  // Everything that is there.
  Taken take();

 private:
  static constexpr std::size_t pieceSize = std::size_t{64} * 1024, enough = 4 * pieceSize;

  const std::function<void()> written_;
  mutable std::mutex mutex_;
  std::condition_variable changed_;
  std::string pending_;
  std::optional<DeskResponse> instead_;
  bool ended_ = false, failed_ = false, gone_ = false;
};

}  // namespace quillon::workbench::desk
