// Runs a program several times, one run after the other, and prints what it costs (name, blank, value):
//
//   seconds     median of the time from start to end
//   peak_mib    the most memory that a run had
//
// The program's output is dropped. Fails when the program does.
//
//   program_bench RUNS PROGRAM [ARGUMENT...]
#include <fcntl.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <cstdlib>
#include <iostream>
#include <stdexcept>
#include <string>
#include <vector>

namespace {

struct Run {
  double seconds = 0;
  double peakMib = 0;
};

Run runOnce(char** command) {
  const auto start = std::chrono::steady_clock::now();
  const pid_t child = fork();
  if (child < 0) throw std::runtime_error("no process can be started");
  if (child == 0) {
    dup2(open("/dev/null", O_WRONLY | O_CLOEXEC), STDOUT_FILENO);
    execv(command[0], command);
    _exit(127);
  }
  int status = 0;
  rusage usage{};
  if (wait4(child, &status, 0, &usage) != child || !WIFEXITED(status) || WEXITSTATUS(status) != 0)
    throw std::runtime_error(std::string(command[0]) + " failed");
  const std::chrono::duration<double> elapsed = std::chrono::steady_clock::now() - start;
  return {.seconds = elapsed.count(), .peakMib = static_cast<double>(usage.ru_maxrss) / 1024.0};
}

}  // namespace

int main(int argc, char** argv) {
  try {
    const int runs = argc > 2 ? std::atoi(argv[1]) : 0;
    if (runs < 1) throw std::runtime_error("usage: program_bench RUNS PROGRAM [ARGUMENT...]");
    std::vector<double> seconds;
    double peakMib = 0;
    for (int i = 0; i < runs; ++i) {
      const Run run = runOnce(argv + 2);
      seconds.push_back(run.seconds);
      peakMib = std::max(peakMib, run.peakMib);
    }
    std::sort(seconds.begin(), seconds.end());
    std::cout << "seconds " << seconds[seconds.size() / 2] << "\npeak_mib " << peakMib << '\n';
    return 0;
  } catch (const std::exception& error) {
    std::cerr << "program_bench: " << error.what() << '\n';
    return 1;
  }
}
