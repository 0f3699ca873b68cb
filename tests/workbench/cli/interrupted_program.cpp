#include "tests/workbench/cli/interrupted_program.h"

#include <fcntl.h>
#include <signal.h>
#include <sys/ptrace.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <stdexcept>
#include <system_error>
#include <thread>

namespace quillon::workbench::test {

namespace {

[[noreturn]] void fail(const char* what) {
  throw std::system_error(errno, std::generic_category(), what);
}

// Whether the descriptor that a process writes to is a pipe. What is said on standard error goes into one, and a
// sanitizer tries addresses out by writing from them into one.
bool isPipe(pid_t process, std::uint64_t descriptor) {
  struct stat status {};
  const std::string path = "/proc/" + std::to_string(process) + "/fd/" + std::to_string(descriptor);
  return stat(path.c_str(), &status) == 0 && S_ISFIFO(status.st_mode);
}

// Whether this call of the process changes the file system, or might.
bool changesFiles(pid_t process, const __ptrace_syscall_info& call) {
  const auto opensForWriting = [](std::uint64_t flags) {
    return (flags & (O_WRONLY | O_RDWR | O_CREAT | O_TRUNC)) != 0;
  };
  switch (call.entry.nr) {
    case SYS_openat:
      return opensForWriting(call.entry.args[2]);
#ifdef SYS_open
    case SYS_open:
      return opensForWriting(call.entry.args[1]);
    case SYS_creat:
    case SYS_rename:
    case SYS_unlink:
    case SYS_mkdir:
    case SYS_rmdir:
    case SYS_chmod:
      return true;
#endif
    case SYS_write:
    case SYS_writev:
      return !isPipe(process, call.entry.args[0]);
    case SYS_pwrite64:
    case SYS_pwritev:
    case SYS_ftruncate:
    case SYS_truncate:
    case SYS_fallocate:
    case SYS_copy_file_range:
    case SYS_sendfile:
    case SYS_renameat:
    case SYS_renameat2:
    case SYS_unlinkat:
    case SYS_mkdirat:
    case SYS_fchmod:
    case SYS_fchmodat:
      return true;
    default:
      return false;
  }
}

// In the new process: becomes the program, or ends with a status of its own.
[[noreturn]] void become(const std::vector<std::string>& arguments, const ProgramLimits& limits, int errors) {
  constexpr int cannotRun = 127;
  const int output = ::open(limits.output.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0600);
  if (output < 0 || dup2(output, STDOUT_FILENO) < 0 || dup2(errors, STDERR_FILENO) < 0) _exit(cannotRun);
  if (limits.fileSize) {
    const rlimit size{*limits.fileSize, *limits.fileSize};
    if (setrlimit(RLIMIT_FSIZE, &size) != 0) _exit(cannotRun);
  }
  // The leak check of a sanitized build cannot work in a process that is traced already.
  setenv("LSAN_OPTIONS", "detect_leaks=0", 1);
  std::vector<char*> words;
  std::string program = QUILLON_PROGRAM;
  words.push_back(program.data());
  for (const std::string& argument : arguments)
    words.push_back(const_cast<char*>(argument.c_str()));
  words.push_back(nullptr);
  if (ptrace(PTRACE_TRACEME, 0, nullptr, nullptr) != 0) _exit(cannotRun);
  execv(program.c_str(), words.data());
  _exit(cannotRun);
}

// Follows the traced process from one system call to the next until its end, or until it is killed.
class Tracer {
 public:
  Tracer(pid_t process, std::optional<int> killBefore, int signal)
      : process_(process), killBefore_(killBefore), signal_(signal) {}

  int changes() const { return changes_; }

  // Gives the process' wait status.
  int follow() {
    int status = wait();
    if (WIFEXITED(status)) return status;
    if (ptrace(PTRACE_SETOPTIONS, process_, nullptr, PTRACE_O_TRACESYSGOOD | PTRACE_O_EXITKILL) != 0) fail("ptrace");
    int signal = 0;
    while (true) {
      if (ptrace(PTRACE_SYSCALL, process_, nullptr, signal) != 0 && errno != ESRCH) fail("ptrace");
      status = wait();
      if (!WIFSTOPPED(status)) return status;
      signal = 0;
      if (WSTOPSIG(status) != (SIGTRAP | 0x80)) {
        signal = WSTOPSIG(status);
      } else if (entersChange() && ++changes_ == killBefore_) {
        kill(process_, signal_);
      }
    }
  }

 private:
  int wait() const {
    int status = 0;
    if (waitpid(process_, &status, 0) != process_) fail("waitpid");
    return status;
  }
  bool entersChange() const {
    __ptrace_syscall_info call{};
    if (ptrace(PTRACE_GET_SYSCALL_INFO, process_, sizeof call, &call) < 0) fail("PTRACE_GET_SYSCALL_INFO");
    return call.op == PTRACE_SYSCALL_INFO_ENTRY && changesFiles(process_, call);
  }

  pid_t process_;
  std::optional<int> killBefore_;
  int signal_;
  int changes_ = 0;
};

// Lets the process run untraced and kills it after a while.
int followUntil(pid_t process, std::chrono::microseconds delay, int signal) {
  int status = 0;
  if (waitpid(process, &status, 0) != process) fail("waitpid");
  if (WIFEXITED(status)) return status;
  if (ptrace(PTRACE_DETACH, process, nullptr, nullptr) != 0) fail("ptrace");
  std::this_thread::sleep_for(delay);
  kill(process, signal);
  if (waitpid(process, &status, 0) != process) fail("waitpid");
  return status;
}

}  // namespace

ProgramEnd runProgram(const std::vector<std::string>& arguments, const Kill& kill, const ProgramLimits& limits) {
  // A pipe, as no limit on the size of files holds for it. What the program says is read at the end: it fits.
  std::array<int, 2> errors{};
  if (pipe2(errors.data(), O_CLOEXEC) != 0) fail("pipe2");
  const pid_t process = fork();
  if (process < 0) fail("fork");
  if (process == 0) become(arguments, limits, errors[1]);
  close(errors[1]);

  ProgramEnd end;
  int status = 0;
  if (kill.after) {
    status = followUntil(process, *kill.after, kill.signal);
  } else {
    Tracer tracer(process, kill.beforeChange, kill.signal);
    status = tracer.follow();
    end.changes = tracer.changes();
  }
  end.killed = WIFSIGNALED(status);
  if (end.killed && WTERMSIG(status) != kill.signal)
    throw std::runtime_error("the program ended with signal " + std::to_string(WTERMSIG(status)));
  if (!end.killed) end.status = WEXITSTATUS(status);
  std::array<char, 4096> part{};
  for (ssize_t size = 0; (size = read(errors[0], part.data(), part.size())) > 0;)
    end.errors.append(part.data(), static_cast<std::size_t>(size));
  close(errors[0]);
  return end;
}

}  // namespace quillon::workbench::test
