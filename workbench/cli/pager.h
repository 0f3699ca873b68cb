// Long output page by page.
#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <ostream>

#include "workbench/cli/terminal.h"

namespace quillon::workbench {

// Output that goes through the user's pager when the terminal is too short for it. PAGER names the pager, a command line
// of the shell; without it that is `less -FRSX` where there is one, and on Windows none. Empty or "cat" is none, too, and
// so is a dumb terminal without PAGER. Until it is known whether a pager is needed, output is held back.
//
// A pager that the user leaves early is like a closed pipe: what runs is asked to end, without an error (stop_signals.h).
class PagedOutput {
 public:
  struct Options {
    std::optional<Screen> screen = std::nullopt;  // of `out`; none: `out` is no terminal
    bool pager = true;
    // Called once, before anything is written: what else stands on the user's terminal has to go. Without a pager, the first
    // 64 KB are held back for its sake. May be null.
    std::function<void()> beforeOutput = {};
  };

  // Both `out` and what the options' function uses outlive the object.
  PagedOutput(std::ostream& out, Options options);
  PagedOutput(const PagedOutput&) = delete;
  PagedOutput& operator=(const PagedOutput&) = delete;
  // Does what finish() does, without a word about what goes wrong.
  ~PagedOutput();

  std::ostream& stream();
  // Whether the pager runs: then it has the terminal, and whoever wants to say something says it in stream().
  bool paging() const;
  // Writes what was held back, and waits until the user leaves the pager. False when not everything could be written.
  // Throws UserError when there is no such pager as PAGER says.
  bool finish();

 private:
  class Buffer;

  std::ostream& out_;
  std::unique_ptr<Buffer> buffer_;  // none: everything goes straight to `out_`
  std::unique_ptr<std::ostream> stream_;
};

}  // namespace quillon::workbench
