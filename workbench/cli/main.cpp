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
#include "workbench/cli/trace_command.h"
#include "workbench/odbc/connection_string.h"
#include "workbench/platform/user_error.h"

namespace {

constexpr int failed = 1;
constexpr int wrongUsage = 2;

// What went wrong. An argument that is quoted in it may be a connection string.
std::string shown(const std::exception& error) {
  return quillon::odbc::ConnectionString(quillon::workbench::errorText(error)).withoutPassword();
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
    return end.get_exit_code();
  } catch (const CLI::ParseError& error) {
    std::fprintf(stderr, "quillon: %s; see quillon --help\n", shown(error).c_str());
    return wrongUsage;
  }
}

}  // namespace

int main(int argc, char** argv) {
  try {
    quillon::workbench::prepareStandardStreams();
    quillon::workbench::reportFileSizeLimit();
    const int status = run(quillon::workbench::utf8Arguments(argc, argv));
    if (!std::cout.flush())
      throw quillon::workbench::UserError("standard output could not be written; check the disk's free space");
    return status;
  } catch (const std::exception& error) {
    std::fprintf(stderr, "quillon: %s\n", shown(error).c_str());
    return failed;
  }
}
