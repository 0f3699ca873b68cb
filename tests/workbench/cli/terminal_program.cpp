#include "tests/workbench/cli/terminal_program.h"

#include <fcntl.h>
#include <poll.h>
#include <pty.h>
#include <signal.h>
#include <sys/ioctl.h>
#include <sys/wait.h>
#include <termios.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <chrono>
#include <cstdlib>
#include <stdexcept>
#include <utility>

namespace quillon::workbench::test {

namespace {

constexpr std::chrono::minutes longest{1};
using Clock = std::chrono::steady_clock;

winsize sizeOf(unsigned short columns, unsigned short lines) {
  return {.ws_row = lines, .ws_col = columns, .ws_xpixel = 0, .ws_ypixel = 0};
}

[[noreturn]] void become(const std::vector<std::string>& arguments, const TerminalSetup& setup) {
  constexpr int cannotRun = 127;
  setenv("TERM", "xterm", 1);
  for (const char* const name : {"PAGER", "COLUMNS", "NO_COLOR", "LESS", "LESSCHARSET"})
    unsetenv(name);
  for (const auto& [name, value] : setup.environment)
    setenv(name.c_str(), value.c_str(), 1);
  if (!setup.output.empty()) {
    const int output = ::open(setup.output.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0600);
    if (output < 0 || dup2(output, STDOUT_FILENO) < 0) _exit(cannotRun);
  }
  std::string program = QUILLON_PROGRAM;
  std::vector<char*> words = {program.data()};
  for (const std::string& argument : arguments)
    words.push_back(const_cast<char*>(argument.c_str()));
  words.push_back(nullptr);
  execv(program.c_str(), words.data());
  _exit(cannotRun);
}

}  // namespace

TerminalProgram::TerminalProgram(const std::vector<std::string>& arguments, const TerminalSetup& setup) {
  const winsize size = sizeOf(setup.columns, setup.lines);
  process_ = forkpty(&terminal_, nullptr, nullptr, &size);
  if (process_ < 0) throw std::runtime_error("there is no terminal");
  if (process_ == 0) become(arguments, setup);
}

TerminalProgram::~TerminalProgram() {
  if (process_ > 0) {
    kill(process_, SIGKILL);
    waitpid(process_, nullptr, 0);
  }
  close(terminal_);
}

void TerminalProgram::type(const std::string& text) const {
  if (write(terminal_, text.data(), text.size()) != static_cast<ssize_t>(text.size()))
    throw std::runtime_error("the terminal takes no keys");
}

void TerminalProgram::resize(unsigned short columns, unsigned short lines) const {
  const winsize size = sizeOf(columns, lines);
  if (ioctl(terminal_, TIOCSWINSZ, &size) != 0) throw std::runtime_error("the terminal keeps its size");
}

void TerminalProgram::signal(int number) const {
  kill(process_, number);
}

// False when nobody has the terminal open any more.
bool TerminalProgram::readSome() {
  pollfd wait{.fd = terminal_, .events = POLLIN, .revents = 0};
  constexpr int milliseconds = 100;
  if (poll(&wait, 1, milliseconds) <= 0) return true;
  std::array<char, 4096> part{};
  const ssize_t size = read(terminal_, part.data(), part.size());
  if (size <= 0) return size < 0 && errno == EINTR;
  shown_.append(part.data(), static_cast<std::size_t>(size));
  for (std::size_t at = 0; (at = shown_.find("\r\n", at)) != std::string::npos;)
    shown_.erase(at, 1);
  return true;
}

void TerminalProgram::waitFor(const std::string& text) {
  const auto until = Clock::now() + longest;
  while (true) {
    if (const std::size_t at = shown_.find(text, found_); at != std::string::npos) {
      found_ = at + text.size();
      return;
    }
    if (!readSome() || Clock::now() > until)
      throw std::runtime_error("\"" + text + "\" did not come; there is: " + shown_.substr(found_));
  }
}

void TerminalProgram::waitForKeys() {
  const auto until = Clock::now() + longest;
  termios mode{};
  while (tcgetattr(terminal_, &mode) == 0 && (mode.c_lflag & ICANON) != 0) {
    if (!readSome() || Clock::now() > until) throw std::runtime_error("the program takes no keys");
  }
}

int TerminalProgram::end() {
  const auto until = Clock::now() + longest;
  while (readSome()) {
    if (Clock::now() > until) throw std::runtime_error("the program does not end; it has shown: " + shown_);
  }
  int status = 0;
  if (waitpid(process_, &status, 0) != process_) throw std::runtime_error("the program cannot be waited for");
  process_ = -1;
  return WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
}

}  // namespace quillon::workbench::test
