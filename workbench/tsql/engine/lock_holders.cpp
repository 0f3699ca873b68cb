#include "workbench/tsql/engine/lock_holders.h"

#ifdef _WIN32
#include <windows.h>

#include <restartmanager.h>

#include <array>
#else
#include <sys/stat.h>
#include <unistd.h>

#include <fstream>
#include <sstream>
#endif

#include <filesystem>
#include <set>

#include "workbench/tsql/values/utf8_path.h"

namespace quillon::tsql {

namespace {

std::string listed(const std::set<std::string>& processes) {
  std::string text;
  for (const std::string& process : processes)
    text += (text.empty() ? "" : ", ") + process;
  return text;
}

std::string described(unsigned long process, const std::string& program) {
  return "process " + std::to_string(process) + (program.empty() ? "" : " (" + program + ")");
}

}  // namespace

#ifdef _WIN32

std::string lockHolders(const std::string& file) {
  DWORD session = 0;
  std::array<wchar_t, CCH_RM_SESSION_KEY + 1> key{};
  if (RmStartSession(&session, 0, key.data()) != ERROR_SUCCESS) return {};
  std::set<std::string> processes;
  const std::wstring path = pathFromUtf8(file).wstring();
  const wchar_t* resource = path.c_str();
  constexpr UINT most = 16;
  std::array<RM_PROCESS_INFO, most> found{};
  UINT needed = 0, count = most;
  DWORD reasons = 0;
  if (RmRegisterResources(session, 1, &resource, 0, nullptr, 0, nullptr) == ERROR_SUCCESS &&
      RmGetList(session, &needed, &count, found.data(), &reasons) == ERROR_SUCCESS) {
    for (UINT i = 0; i < count; ++i) {
      const DWORD process = found[i].Process.dwProcessId;
      if (process == GetCurrentProcessId()) continue;
      processes.insert(described(process, utf8FromPath(std::filesystem::path(found[i].strAppName))));
    }
  }
  RmEndSession(session);
  return listed(processes);
}

#else

std::string lockHolders(const std::string& file) {
  struct stat status {};
  if (stat(file.c_str(), &status) != 0) return {};
  std::set<std::string> processes;
  // A line is "1: POSIX  ADVISORY  READ 4711 08:01:131074 0 EOF"; one of who waits has "->" behind the number.
  std::ifstream locks("/proc/locks");
  for (std::string line; std::getline(locks, line);) {
    std::istringstream fields(line);
    std::string number, kind, mode, access, place;
    long process = 0;
    if (!(fields >> number >> kind >> mode >> access >> process >> place) || kind != "POSIX") continue;
    const std::size_t inode = place.rfind(':');
    if (inode == std::string::npos || place.substr(inode + 1) != std::to_string(status.st_ino)) continue;
    if (process <= 0 || process == static_cast<long>(getpid())) continue;
    std::string program;
    std::getline(std::ifstream("/proc/" + std::to_string(process) + "/comm"), program);
    processes.insert(described(static_cast<unsigned long>(process), program));
  }
  return listed(processes);
}

#endif

}  // namespace quillon::tsql
