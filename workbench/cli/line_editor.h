// Lines that somebody types at a terminal.
#pragma once

#include <memory>
#include <string>

namespace quillon::workbench {

struct TypedLine {
  enum class End {
    entered,           // the line is complete
    interrupted,       // Ctrl-C took away what had been typed of it
    interruptedEmpty,  // Ctrl-C, and nothing had been typed
    left,              // Ctrl-D at its beginning, or the terminal is gone: no further line will come
  };
  End end = End::left;
  std::string text = {};  // UTF-8, without the line's end
};

class LineEditor {
 public:
  virtual ~LineEditor() = default;
  virtual TypedLine read(const std::string& prompt) = 0;
  // Keeps a line for the arrow keys, now and in later sessions.
  virtual void remember(const std::string& line) = 0;
};

// Natively a line can be edited, and earlier ones be fetched; on Windows the console has keys of its own for both.
std::unique_ptr<LineEditor> makeLineEditor();

}  // namespace quillon::workbench
