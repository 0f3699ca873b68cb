#include "workbench/cli/browser.h"

#ifdef _WIN32
#include <windows.h>

#include <shellapi.h>
#else
#include <fcntl.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>
#endif

#include <cstdint>
#include <fstream>

#include "workbench/messages/desk.h"
#include "workbench/platform/user_error.h"
#include "workbench/tsql/values/utf8_path.h"

namespace quillon::workbench {

namespace {

std::string pageOf(const std::string& link) {
  return "<!doctype html>\n<html>\n<meta charset=\"utf-8\">\n<meta name=\"referrer\" content=\"no-referrer\">\n"
         "<meta http-equiv=\"refresh\" content=\"0; url=" +
         link + "\">\n<title>Quillon</title>\n<a href=\"" + link + "\">Quillon</a>\n</html>\n";
}

}  // namespace

#ifdef _WIN32

namespace {
// The folder for temporary files is the user's own there.
bool makePrivateFile(const std::filesystem::path&) {
  return true;
}
}  // namespace

bool showInBrowser(const std::filesystem::path& file) {
  constexpr std::intptr_t lastError = 32;
  const HINSTANCE shown = ShellExecuteW(nullptr, L"open", file.c_str(), nullptr, nullptr, SW_SHOWNORMAL);
  return reinterpret_cast<std::intptr_t>(shown) > lastError;
}

#else

namespace {
bool makePrivateFile(const std::filesystem::path& file) {
  const int descriptor = open(file.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, S_IRUSR | S_IWUSR);
  return descriptor >= 0 && close(descriptor) == 0;
}
}  // namespace

bool showInBrowser(const std::filesystem::path& file) {
  // What is to be executed is a child of the system's and not of this program's, which waits for the one between only. The
  // one between finds out whether there is such a program.
  int told[2] = {-1, -1};
  if (pipe2(told, O_CLOEXEC) != 0) return false;
  const pid_t between = fork();
  if (between == 0) {
    if (fork() != 0) _exit(0);
    setsid();
    const int nowhere = open("/dev/null", O_RDWR);
    for (const int stream : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO})
      dup2(nowhere, stream);
    execlp("xdg-open", "xdg-open", file.c_str(), static_cast<char*>(nullptr));
    const char failed = 1;
    [[maybe_unused]] const auto written = write(told[1], &failed, sizeof failed);
    _exit(1);
  }
  close(told[1]);
  if (between > 0) waitpid(between, nullptr, 0);
  char failed = 0;
  const bool found = between > 0 && read(told[0], &failed, sizeof failed) == 0;
  close(told[0]);
  return found;
}

#endif

LinkFile::LinkFile(const std::string& link) : file_(folder_.file().parent_path() / "open.html") {
  const bool made = makePrivateFile(file_);
  std::ofstream out(file_, std::ios::binary);
  out << pageOf(link);
  out.close();
  if (!made || !out) throw UserError(messages::linkNotKept(utf8FromPath(file_)));
}

}  // namespace quillon::workbench
