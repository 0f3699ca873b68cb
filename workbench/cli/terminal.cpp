#include "workbench/cli/terminal.h"

#ifdef _WIN32
#include <windows.h>

#include <io.h>

#include <cstdio>
#else
#include <sys/ioctl.h>
#include <sys/stat.h>
#include <unistd.h>
#endif

#include <charconv>
#include <cstdlib>
#include <string_view>

namespace quillon::workbench {

namespace {

constexpr std::size_t usualColumns = 80;

std::string_view environment(const char* name) {
  const char* const value = std::getenv(name);
  return value == nullptr ? std::string_view() : std::string_view(value);
}

// What COLUMNS says, if it is a width.
std::optional<std::size_t> statedColumns() {
  const std::string_view text = environment("COLUMNS");
  std::size_t columns = 0;
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), columns);
  if (error != std::errc() || end != text.data() + text.size() || columns == 0) return std::nullopt;
  return columns;
}

#ifdef _WIN32

struct Size {
  std::size_t columns = 0, lines = 0;
};

Size sizeOf(DWORD stream) {
  CONSOLE_SCREEN_BUFFER_INFO info{};
  if (!GetConsoleScreenBufferInfo(GetStdHandle(stream), &info)) return {};
  const auto columns = info.srWindow.Right - info.srWindow.Left + 1,
             lines = info.srWindow.Bottom - info.srWindow.Top + 1;
  // A line that fills the window is followed by an empty one.
  return {.columns = static_cast<std::size_t>(columns > 1 ? columns - 1 : 0),
          .lines = static_cast<std::size_t>(lines > 0 ? lines : 0)};
}

// Older consoles show the codes for bold and dim as they are.
bool consoleTakesCodes() {
  const HANDLE output = GetStdHandle(STD_OUTPUT_HANDLE);
  DWORD mode = 0;
  constexpr DWORD takesCodes = 0x0004;  // ENABLE_VIRTUAL_TERMINAL_PROCESSING
  return GetConsoleMode(output, &mode) && SetConsoleMode(output, mode | takesCodes);
}

constexpr DWORD standardOutput = STD_OUTPUT_HANDLE, standardError = STD_ERROR_HANDLE;
bool isTerminal(std::FILE* stream) {
  return _isatty(_fileno(stream)) != 0;
}

#else

struct Size {
  std::size_t columns = 0, lines = 0;
};

Size sizeOf(int stream) {
  winsize size{};
  if (ioctl(stream, TIOCGWINSZ, &size) != 0) return {};
  return {.columns = size.ws_col, .lines = size.ws_row};
}

bool consoleTakesCodes() {
  return true;
}

constexpr int standardOutput = STDOUT_FILENO, standardError = STDERR_FILENO;

#endif

}  // namespace

#ifdef _WIN32

bool inputIsTerminal() {
  return isTerminal(stdin);
}

bool outputIsFile() {
  return GetFileType(GetStdHandle(STD_OUTPUT_HANDLE)) == FILE_TYPE_DISK;
}

namespace {
bool outputIsTerminal() {
  return isTerminal(stdout);
}
}  // namespace

#else

bool inputIsTerminal() {
  return isatty(STDIN_FILENO) != 0;
}

bool outputIsFile() {
  struct stat status {};
  return fstat(STDOUT_FILENO, &status) == 0 && S_ISREG(status.st_mode);
}

namespace {
bool outputIsTerminal() {
  return isatty(STDOUT_FILENO) != 0;
}
}  // namespace

#endif

std::optional<Screen> outputScreen() {
  if (!outputIsTerminal()) return std::nullopt;
  Screen screen;
  const Size size = sizeOf(standardOutput);
  screen.columns = statedColumns();
  if (!screen.columns && size.columns > 0) screen.columns = size.columns;
  if (size.lines > 0) screen.lines = size.lines;
  screen.dumb = environment("TERM") == "dumb";
  screen.emphasis = !screen.dumb && environment("NO_COLOR").empty() && consoleTakesCodes();
  return screen;
}

std::size_t errorColumns() {
  const std::size_t columns = sizeOf(standardError).columns;
  return columns > 0 ? columns : usualColumns;
}

TableStyle tableStyle(const std::optional<Screen>& screen, bool wide, Language language) {
  if (!screen) return {.language = language};
  return {.width = wide ? std::nullopt : screen->columns, .emphasis = screen->emphasis, .language = language};
}

}  // namespace quillon::workbench
