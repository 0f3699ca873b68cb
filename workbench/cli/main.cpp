// The program `quillon`: the reports and the embedded account on the command line.
#include <cstdio>
#include <exception>
#include <iostream>

#include "workbench/cli/command_line.h"
#include "workbench/cli/standard_streams.h"
#include "workbench/cli/stop_signals.h"
#include "workbench/platform/user_error.h"

namespace {

constexpr int failed = 1;

// The end of a run that was asked to end. All that it made is put away by now; `error` is what ended it.
int stopped(const quillon::workbench::StopCause& stop, const std::exception& error) {
  if (*stop.name == '\0') return stop.exitStatus;
  // A command whose work cannot be taken back says what stands.
  const bool told = dynamic_cast<const quillon::workbench::UserError*>(&error) != nullptr;
  std::fprintf(stderr, "quillon: ended by %s; %s\n", stop.name, told ? error.what() : "nothing was written");
  return stop.exitStatus;
}

}  // namespace

int main(int argc, char** argv) {
  try {
    quillon::workbench::watchStopSignals();
    quillon::workbench::prepareStandardStreams();
    quillon::workbench::reportFileSizeLimit();
    const int status =
        quillon::workbench::runCommandLine(quillon::workbench::utf8Arguments(argc, argv), QUILLON_VERSION, std::cerr);
    if (!std::cout.flush())
      throw quillon::workbench::UserError("standard output could not be written; check the disk's free space");
    return status;
  } catch (const std::exception& error) {
    if (const auto stop = quillon::workbench::stopCause()) return stopped(*stop, error);
    std::fprintf(stderr, "quillon: %s\n", quillon::workbench::errorLine(error).c_str());
    return failed;
  }
}
