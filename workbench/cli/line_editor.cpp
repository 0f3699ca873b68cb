#include "workbench/cli/line_editor.h"

#ifdef _WIN32
#include <windows.h>
#else
#include <fcntl.h>
#include <histedit.h>
#include <langinfo.h>
#include <poll.h>
#include <signal.h>
#include <unistd.h>

#include <cerrno>
#include <clocale>
#include <cstdio>
#include <cstring>
#include <stdexcept>

#include "workbench/cli/statement_history.h"
#include "workbench/messages/program.h"
#include "workbench/platform/user_error.h"
#include "workbench/presentation/text_cells.h"
#endif

#include <array>
#include <iostream>
#include <string_view>

#include "workbench/cli/stop_signals.h"

namespace quillon::workbench {

namespace {

#ifdef _WIN32

class ConsoleLines final : public LineEditor {
 public:
  TypedLine read(const std::string& prompt) override {
    std::cout << prompt << std::flush;
    std::wstring line;
    while (!line.ends_with(L'\n')) {
      std::array<wchar_t, 1024> part{};
      DWORD size = 0;
      const BOOL done = ReadConsoleW(GetStdHandle(STD_INPUT_HANDLE), part.data(), part.size(), &size, nullptr);
      if (!done || size == 0)
        return {.end = wasInterrupted() ? TypedLine::End::interruptedEmpty : TypedLine::End::left};
      line.append(part.data(), size);
    }
    constexpr wchar_t endOfInput = 0x1A;  // Ctrl-Z
    if (line.front() == endOfInput) return {};
    line.erase(line.find_last_not_of(L"\r\n") + 1);
    return {.end = TypedLine::End::entered, .text = utf8(line)};
  }

  void remember(const std::string& /*line*/) override {}

 private:
  // Ctrl-C is told on a thread of its own, which may come a little later.
  static bool wasInterrupted() {
    constexpr DWORD moment = 100;
    if (!stopCause()) Sleep(moment);
    return stopCause().has_value();
  }

  static std::string utf8(const std::wstring& text) {
    const int length = static_cast<int>(text.size());
    const int size = WideCharToMultiByte(CP_UTF8, 0, text.data(), length, nullptr, 0, nullptr, nullptr);
    std::string bytes(static_cast<std::size_t>(size), '\0');
    WideCharToMultiByte(CP_UTF8, 0, text.data(), length, bytes.data(), size, nullptr, nullptr);
    return bytes;
  }
};

#else

// How many bytes a character takes whose first byte is `front`; 1 of a byte that begins none.
std::size_t lengthOfCharacter(char front) {
  constexpr unsigned char two = 0xC2, three = 0xE0, four = 0xF0, none = 0xF5;
  const auto byte = static_cast<unsigned char>(front);
  if (byte < two || byte >= none) return 1;
  if (byte < three) return 2;
  return byte < four ? 3 : 4;
}

// libedit, with characters read here: a signal ends the reading, and input is UTF-8 whatever the locale is.
class EditedLines final : public LineEditor {
 public:
  EditedLines() : keys_(openKeys()), history_(history_init()), kept_(statementHistoryFile()) {
    // libedit writes characters as the locale says.
    if (std::setlocale(LC_CTYPE, "") == nullptr || std::strcmp(nl_langinfo(CODESET), "UTF-8") != 0)
      std::setlocale(LC_CTYPE, "C.UTF-8");
    // What is typed is shown where somebody sees it, if standard output is not there for it.
    FILE* const screen = isatty(STDOUT_FILENO) != 0 ? stdout : stderr;
    editor_ = el_init("quillon", stdin, screen, stderr);
    if (editor_ == nullptr || history_ == nullptr) throw UserError(messages::terminalNotReadable());
    el_set(editor_, EL_CLIENTDATA, this);
    el_set(editor_, EL_EDITOR, "emacs");
    el_set(editor_, EL_PROMPT, &EditedLines::promptOf);
    el_set(editor_, EL_GETCFN, &EditedLines::nextCharacter);
    HistEvent event;
    history(history_, &event, H_SETSIZE, static_cast<int>(StatementHistory::longest));
    history(history_, &event, H_SETUNIQUE, 1);
    for (const std::string& line : kept_.lines())
      history(history_, &event, H_ENTER, line.c_str());
    el_set(editor_, EL_HIST, &::history, history_);
    el_source(editor_, nullptr);
  }
  EditedLines(const EditedLines&) = delete;
  EditedLines& operator=(const EditedLines&) = delete;
  ~EditedLines() override {
    el_end(editor_);
    history_end(history_);
    if (keys_ != STDIN_FILENO) close(keys_);
  }

  TypedLine read(const std::string& prompt) override {
    prompt_ = prompt;
    interrupted_ = false;
    std::cout.flush();
    el_resize(editor_);  // the window may be another size by now
    int size = 0;
    const char* const line = el_gets(editor_, &size);
    if (interrupted_) {
      const LineInfo* const typed = el_line(editor_);
      const bool empty = typed->lastchar == typed->buffer;
      el_reset(editor_);
      return {.end = empty ? TypedLine::End::interruptedEmpty : TypedLine::End::interrupted};
    }
    if (line == nullptr || size <= 0) return {};
    std::string text(line, static_cast<std::size_t>(size));
    if (text.ends_with('\n')) text.pop_back();
    return {.end = TypedLine::End::entered, .text = std::move(text)};
  }

  void remember(const std::string& line) override {
    HistEvent event;
    history(history_, &event, H_ENTER, line.c_str());
    kept_.add(line);
  }

 private:
  static EditedLines& of(EditLine* editor) {
    void* self = nullptr;
    el_get(editor, EL_CLIENTDATA, &self);
    return *static_cast<EditedLines*>(self);
  }

  static char* promptOf(EditLine* editor) { return of(editor).prompt_.data(); }

  // Waits for a byte. False when the program was asked to end, or to end what it does: a signal that comes at any moment
  // before a byte is there, is seen.
  bool waitForByte() const {
    sigset_t stops, before;
    sigemptyset(&stops);
    for (const int signal : {SIGINT, SIGTERM, SIGHUP})
      sigaddset(&stops, signal);
    pthread_sigmask(SIG_BLOCK, &stops, &before);
    pollfd input{.fd = keys_, .events = POLLIN, .revents = 0};
    bool stopped = stopCause().has_value();
    while (!stopped && ppoll(&input, 1, nullptr, &before) < 0 && errno == EINTR)
      stopped = stopCause().has_value();
    pthread_sigmask(SIG_SETMASK, &before, nullptr);
    return !stopped;
  }

  // Gives 1 and the next byte, 0 at the end of the input, -1 when a signal wants something else.
  int nextByte(char& byte) {
    while (waitForByte()) {
      const ssize_t size = ::read(keys_, &byte, 1);
      if (size >= 0) return static_cast<int>(size);
      if (errno != EINTR && errno != EAGAIN) return 0;
    }
    interrupted_ = true;
    return -1;
  }

  // For libedit: as nextByte, with a character.
  static int nextCharacter(EditLine* editor, wchar_t* character) {
    std::string bytes;
    do {
      char byte = 0;
      if (const int got = of(editor).nextByte(byte); got <= 0) return got;
      bytes += byte;
    } while (bytes.size() < lengthOfCharacter(bytes.front()));
    std::string_view text = bytes;
    *character = static_cast<wchar_t>(takeCharacter(text));
    return 1;
  }

  // The terminal, opened once more so that a read never waits: a Ctrl-C throws away what was typed, also when the program
  // has been told that a byte is there. Standard input where that cannot be done.
  static int openKeys() {
    const char* const terminal = ttyname(STDIN_FILENO);
    const int keys = terminal == nullptr ? -1 : ::open(terminal, O_RDONLY | O_NONBLOCK | O_NOCTTY | O_CLOEXEC);
    return keys < 0 ? STDIN_FILENO : keys;
  }

  int keys_;
  History* history_;
  EditLine* editor_ = nullptr;
  StatementHistory kept_;
  std::string prompt_;
  bool interrupted_ = false;
};

#endif

}  // namespace

std::unique_ptr<LineEditor> makeLineEditor() {
#ifdef _WIN32
  return std::make_unique<ConsoleLines>();
#else
  return std::make_unique<EditedLines>();
#endif
}

}  // namespace quillon::workbench
