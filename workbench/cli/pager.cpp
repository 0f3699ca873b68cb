#include "workbench/cli/pager.h"

#ifdef _WIN32
#include <cstdio>
#else
#include <fcntl.h>
#include <signal.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <chrono>
#include <thread>
#include <vector>
#endif

#include <algorithm>
#include <cstdlib>
#include <iostream>
#include <streambuf>
#include <string>
#include <string_view>
#include <utility>

#include "workbench/cli/stop_signals.h"
#include "workbench/messages/program.h"
#include "workbench/platform/user_error.h"
#include "workbench/presentation/text_cells.h"

namespace quillon::workbench {

namespace {

// The command line of the pager; none for none.
std::optional<std::string> pagerCommand([[maybe_unused]] const Screen& screen) {
  if (const char* const named = std::getenv("PAGER"); named != nullptr) {
    const std::string_view command = named;
    if (command.empty() || command == "cat") return std::nullopt;
    return std::string(command);
  }
#ifdef _WIN32
  return std::nullopt;
#else
  if (screen.dumb) return std::nullopt;
  return "if command -v less >/dev/null 2>&1; then exec less -FRSX; else exec cat; fi";
#endif
}

constexpr int notFound = 127, notExecutable = 126;  // the shell's exit status

#ifdef _WIN32

class Pager {
 public:
  explicit Pager(const std::string& command) : pipe_(_popen(command.c_str(), "wb")) {}
  Pager(const Pager&) = delete;
  Pager& operator=(const Pager&) = delete;
  ~Pager() { wait(); }

  // What a pager that has ended does not take is gone, and nobody misses it.
  bool write(std::string_view text) {
    if (pipe_ == nullptr) return false;
    if (std::fwrite(text.data(), 1, text.size(), pipe_) == text.size()) std::fflush(pipe_);
    return true;
  }

  // Gives the exit status.
  int wait() {
    if (pipe_ == nullptr) return notFound;
    return _pclose(std::exchange(pipe_, nullptr));
  }

 private:
  std::FILE* pipe_;
};

#else

class Pager {
 public:
  explicit Pager(const std::string& command) {
    std::array<int, 2> pipe{};
    if (pipe2(pipe.data(), O_CLOEXEC) != 0) return;
    posix_spawn_file_actions_t files{};
    posix_spawn_file_actions_init(&files);
    posix_spawn_file_actions_adddup2(&files, pipe[0], STDIN_FILENO);
    std::array<std::string, 3> words = {"sh", "-c", command};
    std::array<char*, words.size() + 1> arguments{};
    std::ranges::transform(words, arguments.begin(), [](std::string& word) { return word.data(); });
    // Texts are UTF-8 whatever the user's locale is.
    std::string utf8 = "LESSCHARSET=utf-8";
    std::vector<char*> environment;
    for (char** entry = environ; *entry != nullptr; ++entry)
      environment.push_back(*entry);
    if (std::getenv("LESSCHARSET") == nullptr) environment.push_back(utf8.data());
    environment.push_back(nullptr);
    if (posix_spawnp(&process_, words[0].c_str(), &files, nullptr, arguments.data(), environment.data()) != 0)
      process_ = 0;
    posix_spawn_file_actions_destroy(&files);
    close(pipe[0]);
    input_ = pipe[1];
    // Ctrl-C belongs to the pager, which stays: who has seen enough leaves it.
    struct sigaction ignored {};
    ignored.sa_handler = SIG_IGN;
    if (process_ != 0) sigaction(SIGINT, &ignored, &interrupt_);
  }
  Pager(const Pager&) = delete;
  Pager& operator=(const Pager&) = delete;
  ~Pager() { wait(); }

  bool write(std::string_view text) {
    while (!text.empty()) {
      const ssize_t size = ::write(input_, text.data(), text.size());
      if (size < 0 && errno != EINTR) return false;
      if (size < 0 && endsRun()) return false;
      if (size > 0) text.remove_prefix(static_cast<std::size_t>(size));
    }
    return true;
  }

  int wait() {
    if (input_ >= 0) close(std::exchange(input_, -1));
    if (process_ == 0) return notFound;
    int status = 0;
    bool told = false;
    constexpr std::chrono::milliseconds pause{10};
    while (waitpid(process_, &status, WNOHANG) == 0) {
      if (!told && endsRun()) {
        kill(process_, SIGTERM);
        told = true;
      }
      std::this_thread::sleep_for(pause);
    }
    sigaction(SIGINT, &interrupt_, nullptr);
    process_ = 0;
    return WIFEXITED(status) ? WEXITSTATUS(status) : 0;
  }

 private:
  // Whether somebody wants the whole program to end, and not only the statement.
  static bool endsRun() {
    const auto stop = stopCause();
    return stop && (stop->exitStatus == 128 + SIGTERM || stop->exitStatus == 128 + SIGHUP);
  }

  pid_t process_ = 0;
  int input_ = -1;
  struct sigaction interrupt_ {};  // what was done on Ctrl-C before
};

#endif

// How many lines of a terminal `text` takes.
std::size_t linesOnScreen(std::string_view text, const Screen& screen) {
  std::size_t lines = 0;
  while (!text.empty()) {
    const std::string_view line = text.substr(0, text.find('\n'));
    const std::size_t width = screen.columns ? cellWidth(line) : 0;
    lines += width == 0 ? 1 : (width - 1) / *screen.columns + 1;
    text.remove_prefix(std::min(line.size() + 1, text.size()));
  }
  return lines;
}

}  // namespace

class PagedOutput::Buffer final : public std::streambuf {
 public:
  Buffer(std::ostream& out, Options options) : out_(out), options_(std::move(options)) {
    if (options_.screen && options_.pager) command_ = pagerCommand(*options_.screen);
  }

  bool paging() const { return pager_ != nullptr; }

  bool finish() {
    if (state_ == State::held) {
      if (command_ && lines_ + linesOnScreen(std::string_view(text_).substr(counted_), *options_.screen) >=
                          options_.screen->lines) {
        startPager();
      } else {
        begin();
      }
    }
    bool complete = send() && !failed_;
    if (pager_ || paged_) {
      leavePager();
      if (std::exchange(noPager_, false)) throw UserError(messages::noPager(*command_));
    } else {
      complete = static_cast<bool>(out_.flush()) && complete;
    }
    state_ = State::held;
    paged_ = false;
    return complete;
  }

 protected:
  int_type overflow(int_type character) override {
    if (traits_type::eq_int_type(character, traits_type::eof())) return traits_type::not_eof(character);
    const char one = traits_type::to_char_type(character);
    return take({&one, 1}) ? character : traits_type::eof();
  }

  std::streamsize xsputn(const char* text, std::streamsize size) override {
    return take({text, static_cast<std::size_t>(size)}) ? size : 0;
  }

  int sync() override {
    if (state_ == State::held) return 0;
    return send() && (pager_ || out_.flush()) ? 0 : -1;
  }

 private:
  enum class State { held, passed };
  static constexpr std::size_t heldBytes = 65536;

  bool take(std::string_view text) {
    if (failed_) return false;
    text_ += text;
    if (state_ == State::held) {
      const bool full = text_.size() >= heldBytes;
      if (command_ && (full || tooLong())) {
        startPager();
      } else if (!command_ && (full || options_.screen)) {
        begin();
      } else {
        return true;
      }
    }
    return (pager_ && text_.size() < heldBytes) || send();
  }

  // Counts the lines that have come since it was asked last.
  bool tooLong() {
    const std::size_t end = text_.rfind('\n') + 1;  // 0: no line is complete
    if (end <= counted_) return false;
    lines_ += linesOnScreen(std::string_view(text_).substr(counted_, end - counted_), *options_.screen);
    counted_ = end;
    return lines_ >= options_.screen->lines;
  }

  void startPager() {
    begin();
    std::cout.flush();
    std::cerr.flush();
    pager_ = std::make_unique<Pager>(*command_);
  }

  void begin() {
    state_ = State::passed;
    lines_ = 0;
    counted_ = 0;
    if (options_.beforeOutput) std::exchange(options_.beforeOutput, nullptr)();
  }

  // Hands on what has come.
  bool send() {
    const std::string text = std::exchange(text_, {});
    if (failed_ || text.empty()) return !failed_;
    failed_ = pager_ ? !pager_->write(text) : !out_.write(text.data(), static_cast<std::streamsize>(text.size()));
    if (failed_ && pager_) leavePager();
    return !failed_;
  }

  // Waits for the pager's end. One that there is not has closed its pipe as well, but nobody has left it.
  void leavePager() {
    if (!pager_) return;
    const int status = pager_->wait();
    noPager_ = status == notFound || status == notExecutable;
    if (noPager_) forgetStopCause();
    pager_.reset();
    paged_ = true;
  }

  std::ostream& out_;
  Options options_;
  std::optional<std::string> command_;
  std::unique_ptr<Pager> pager_;
  State state_ = State::held;
  std::string text_;  // not yet handed on
  std::size_t lines_ = 0, counted_ = 0;
  bool failed_ = false;
  bool paged_ = false;    // the pager has ended
  bool noPager_ = false;  // because there is none
};

PagedOutput::PagedOutput(std::ostream& out, Options options) : out_(out) {
  if (!options.screen && !options.beforeOutput) return;
  buffer_ = std::make_unique<Buffer>(out, std::move(options));
  stream_ = std::make_unique<std::ostream>(buffer_.get());
}

PagedOutput::~PagedOutput() {
  if (!buffer_) return;
  try {
    buffer_->finish();
  } catch (const std::exception&) {
    // Whatever ended the run says more.
  }
}

std::ostream& PagedOutput::stream() {
  return stream_ ? *stream_ : out_;
}

bool PagedOutput::paging() const {
  return buffer_ && buffer_->paging();
}

bool PagedOutput::finish() {
  return buffer_ ? buffer_->finish() : static_cast<bool>(out_.flush());
}

}  // namespace quillon::workbench
