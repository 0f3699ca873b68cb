#include "workbench/cli/standard_streams.h"

#ifdef _WIN32
#include <windows.h>

#include <fcntl.h>
#include <io.h>
#include <shellapi.h>

#include <cstdio>
#else
#include <unistd.h>

#include <csignal>
#endif

#include <algorithm>
#include <iostream>

namespace quillon::workbench {

#ifdef _WIN32

void prepareStandardStreams() {
  _setmode(_fileno(stdout), _O_BINARY);
  _setmode(_fileno(stderr), _O_BINARY);
}

void reportFileSizeLimit() {}

bool errorsGoToTerminal() {
  return _isatty(_fileno(stderr)) != 0;
}

namespace {
bool inputIsTyped() {
  return _isatty(_fileno(stdin)) != 0;
}
}  // namespace

std::vector<std::string> utf8Arguments(int, char**) {
  std::vector<std::string> arguments;
  int count = 0;
  wchar_t** const wide = CommandLineToArgvW(GetCommandLineW(), &count);
  for (int i = count - 1; i >= 1; --i) {
    const int size = WideCharToMultiByte(CP_UTF8, 0, wide[i], -1, nullptr, 0, nullptr, nullptr);
    std::string& argument = arguments.emplace_back(static_cast<std::size_t>(std::max(size, 1)), '\0');
    WideCharToMultiByte(CP_UTF8, 0, wide[i], -1, argument.data(), size, nullptr, nullptr);
    argument.pop_back();  // the terminating zero
  }
  LocalFree(wide);
  return arguments;
}

#else

void prepareStandardStreams() {}

void reportFileSizeLimit() {
  std::signal(SIGXFSZ, SIG_IGN);
}

bool errorsGoToTerminal() {
  return isatty(STDERR_FILENO) != 0;
}

namespace {
bool inputIsTyped() {
  return isatty(STDIN_FILENO) != 0;
}
}  // namespace

std::vector<std::string> utf8Arguments(int argc, char** argv) {
  std::vector<std::string> arguments(argv + 1, argv + argc);
  std::reverse(arguments.begin(), arguments.end());
  return arguments;
}

#endif

bool userAgrees(const std::string& question) {
  if (!inputIsTyped() || !errorsGoToTerminal()) return false;
  std::cerr << question << " [y/N] " << std::flush;
  std::string answer;
  std::getline(std::cin, answer);
  return answer == "y" || answer == "Y" || answer == "yes";
}

}  // namespace quillon::workbench
