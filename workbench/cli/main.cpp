// The program `quillon`: the reports and the embedded account on the command line.
#include <cstdio>
#include <exception>
#include <iostream>
#include <string>
#include <utility>
#include <vector>

#include "workbench/cli/command_line.h"
#include "workbench/cli/language_option.h"
#include "workbench/cli/standard_streams.h"
#include "workbench/cli/stop_signals.h"
#include "workbench/messages/program.h"
#include "workbench/platform/user_error.h"

namespace {

using quillon::workbench::Language;
using quillon::workbench::Message;
namespace messages = quillon::workbench::messages;

constexpr int failed = 1;

// The end of a run that was asked to end. All that it made is put away by now; `error` is what ended it.
int stopped(const quillon::workbench::StopCause& stop, const std::exception& error, Language language) {
  if (stop.name.english.empty()) return stop.exitStatus;
  // A command whose work cannot be taken back says what stands.
  const auto* told = dynamic_cast<const quillon::workbench::UserError*>(&error);
  const Message line = messages::ended(stop.name, told != nullptr ? told->message() : messages::nothingWritten());
  std::fprintf(stderr, "quillon: %s\n", line.in(language).c_str());
  return stop.exitStatus;
}

}  // namespace

int main(int argc, char** argv) {
  Language language = Language::english;
  try {
    quillon::workbench::watchStopSignals();
    quillon::workbench::prepareStandardStreams();
    quillon::workbench::reportFileSizeLimit();
    std::vector<std::string> arguments = quillon::workbench::utf8Arguments(argc, argv);
    language = quillon::workbench::languageOf(arguments);
    const int status = quillon::workbench::runCommandLine(std::move(arguments), QUILLON_VERSION, std::cerr);
    if (!std::cout.flush()) throw quillon::workbench::UserError(messages::outputNotWritten());
    return status;
  } catch (const std::exception& error) {
    if (const auto stop = quillon::workbench::stopCause()) return stopped(*stop, error, language);
    std::fprintf(stderr, "quillon: %s\n", quillon::workbench::errorLine(error, language).c_str());
    return failed;
  }
}
