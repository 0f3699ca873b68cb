// The built program `quillon` on a terminal, with somebody at the keys.
#pragma once

#include <sys/types.h>

#include <map>
#include <string>
#include <vector>

namespace quillon::workbench::test {

struct TerminalSetup {
  unsigned short columns = 80;
  unsigned short lines = 24;
  std::map<std::string, std::string> environment =
      {};                   // TERM is xterm, PAGER, COLUMNS and NO_COLOR are unset, otherwise
  std::string output = {};  // the file that standard output goes to; empty: the terminal, as standard error does
};

class TerminalProgram {
 public:
  // Throws std::runtime_error when there is no terminal for it.
  TerminalProgram(const std::vector<std::string>& arguments, const TerminalSetup& setup = {});
  TerminalProgram(const TerminalProgram&) = delete;
  TerminalProgram& operator=(const TerminalProgram&) = delete;
  ~TerminalProgram();

  void type(const std::string& text) const;
  void resize(unsigned short columns, unsigned short lines) const;
  // Waits until the terminal has been sent `text` behind what the last call found. Throws when that takes longer than a
  // minute.
  void waitFor(const std::string& text);
  // Waits until the program takes keys one by one. Before that the terminal keeps a line until it ends, shows keys itself
  // and forgets a Ctrl-D. Throws when it takes longer than a minute.
  void waitForKeys();
  // Sends the program a signal, and it alone.
  void signal(int number) const;
  // Waits for the program's end and gives its exit status, 128 and the number of the signal that ended it. Throws when that
  // takes longer than a minute.
  int end();
  // All that the terminal has been sent, without its carriage returns before line feeds.
  const std::string& shown() const { return shown_; }

 private:
  bool readSome();

  pid_t process_ = -1;
  int terminal_ = -1;
  std::string shown_;
  std::size_t found_ = 0;
};

}  // namespace quillon::workbench::test
