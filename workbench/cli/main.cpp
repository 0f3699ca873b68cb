// The program `quillon`: the reports and the embedded account on the command line.
#include <CLI/CLI.hpp>
#include <cstdio>
#include <exception>
#include <iostream>
#include <string>
#include <utility>
#include <vector>

#include "workbench/cli/account_command.h"
#include "workbench/cli/dialog_command.h"
#include "workbench/cli/drill_command.h"
#include "workbench/cli/report_command.h"
#include "workbench/cli/run_monitor.h"
#include "workbench/cli/sql_command.h"
#include "workbench/cli/standard_streams.h"
#include "workbench/cli/stop_signals.h"
#include "workbench/cli/trace_command.h"
#include "workbench/odbc/connection_string.h"
#include "workbench/platform/user_error.h"
#include "workbench/tsql/values/stop.h"

namespace {

constexpr int failed = 1;
constexpr int wrongUsage = 2;

// What went wrong. An argument that is quoted in it may be a connection string.
std::string shown(const std::exception& error) {
  return quillon::odbc::ConnectionString(quillon::workbench::errorText(error)).withoutPassword();
}

// The end of a run that was asked to end. All that it made is put away by now; `error` is what ended it.
int stopped(const quillon::workbench::StopCause& stop, const std::exception& error) {
  if (*stop.name == '\0') return stop.exitStatus;
  // A command whose work cannot be taken back says what stands.
  const bool told = dynamic_cast<const quillon::workbench::UserError*>(&error) != nullptr;
  std::fprintf(stderr, "quillon: ended by %s; %s\n", stop.name, told ? error.what() : "nothing was written");
  return stop.exitStatus;
}

int run(std::vector<std::string> arguments) {
  CLI::App app("Inventory-accounting reports by cost item, and the workbench that runs them");
  app.name("quillon");
  // Under Wine a path may begin with a slash; it is not an option.
  app.allow_windows_style_options(false);
  app.require_subcommand(1);
  app.set_version_flag("--version", "quillon " QUILLON_VERSION);
  quillon::workbench::addAccountCommand(app);
  quillon::workbench::addDialogCommand(app);
  quillon::workbench::addDrillCommand(app);
  quillon::workbench::addReportCommand(app);
  quillon::workbench::addSqlCommand(app);
  quillon::workbench::addTraceCommand(app);
  try {
    app.parse(std::move(arguments));
    return 0;
  } catch (const CLI::Success& help) {
    return app.exit(help);
  } catch (const CLI::RuntimeError& end) {
    if (quillon::workbench::stopCause()) throw quillon::tsql::Stopped();
    return end.get_exit_code();
  } catch (const CLI::ParseError& error) {
    std::fprintf(stderr, "quillon: %s; see quillon --help\n", shown(error).c_str());
    return wrongUsage;
  }
}

}  // namespace

int main(int argc, char** argv) {
  try {
    quillon::workbench::watchStopSignals();
    quillon::workbench::prepareStandardStreams();
    quillon::workbench::reportFileSizeLimit();
    const int status = run(quillon::workbench::utf8Arguments(argc, argv));
    if (!std::cout.flush())
      throw quillon::workbench::UserError("standard output could not be written; check the disk's free space");
    return status;
  } catch (const std::exception& error) {
    if (const auto stop = quillon::workbench::stopCause()) return stopped(*stop, error);
    std::fprintf(stderr, "quillon: %s\n", shown(error).c_str());
    return failed;
  }
}
