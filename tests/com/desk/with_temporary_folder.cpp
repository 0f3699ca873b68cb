// Runs a program with a folder of its own for temporary files, which Wine lets nobody name from outside, and gives its exit
// status. Ctrl+C is the program's to take.
//   with_temporary_folder FOLDER PROGRAM ARGUMENT...
#include <windows.h>

#include <cstdio>
#include <string>

namespace {

constexpr int failed = 99;

BOOL WINAPI leaveToProgram(DWORD /*event*/) {
  return TRUE;
}

}  // namespace

int wmain(int count, wchar_t** arguments) {
  if (count < 3) return failed;
  for (const wchar_t* const name : {L"TMP", L"TEMP"})
    SetEnvironmentVariableW(name, arguments[1]);
  std::wstring line;
  for (int i = 2; i < count; ++i)
    line.append(i == 2 ? L"\"" : L" \"").append(arguments[i]).append(L"\"");
  SetConsoleCtrlHandler(leaveToProgram, TRUE);
  STARTUPINFOW start{};
  start.cb = sizeof start;
  PROCESS_INFORMATION process{};
  if (CreateProcessW(nullptr, line.data(), nullptr, nullptr, TRUE, 0, nullptr, nullptr, &start, &process) == 0) {
    std::fwprintf(stderr, L"%ls cannot be started: error %lu\n", arguments[2], GetLastError());
    return failed;
  }
  WaitForSingleObject(process.hProcess, INFINITE);
  DWORD status = failed;
  GetExitCodeProcess(process.hProcess, &status);
  return static_cast<int>(status);
}
