// Text on its way to a stream, in pieces worth a call of the system.
#pragma once

#include <cstddef>
#include <ostream>
#include <string>

namespace quillon::workbench {

class OutputBuffer {
 public:
  explicit OutputBuffer(std::ostream& out) : out_(out) {}

  // What is appended here is written.
  std::string& text() { return text_; }
  // After each row.
  void endRow() {
    constexpr std::size_t enough = 65'536;
    if (text_.size() >= enough) flush();
  }
  // At the end, and before anything else is written to the stream.
  void flush() {
    out_.write(text_.data(), static_cast<std::streamsize>(text_.size()));
    text_.clear();
  }

 private:
  std::ostream& out_;
  std::string text_;
};

}  // namespace quillon::workbench
