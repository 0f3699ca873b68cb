#include "workbench/cli/serve_command.h"

#include <CLI/CLI.hpp>
#include <chrono>
#include <iostream>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "workbench/cli/account_option.h"
#include "workbench/cli/browser.h"
#include "workbench/cli/checked_values.h"
#include "workbench/cli/language_option.h"
#include "workbench/desk/desk_api.h"
#include "workbench/desk/gate.h"
#include "workbench/desk/http_server.h"
#include "workbench/desk/pages.h"
#include "workbench/desk/secret.h"
#include "workbench/messages/desk.h"
#include "workbench/platform/user_error.h"
#include "workbench/tsql/values/stop.h"

namespace quillon::workbench {

namespace {

std::vector<desk::Licence> licences() {
  std::vector<desk::Licence> all;
  for (const desk::PageLicence& page : desk::pageLicences())
    all.push_back(
        {.name = std::string(page.name), .licence = std::string(page.licence), .text = std::string(page.text)});
  return all;
}

}  // namespace

void runServe(const ServeOptions& options, std::ostream& out, std::ostream& notes) {
  // An account that cannot be opened is said here, and not in the browser.
  options.account.readOnly().open(tsql::OpenMode::readOnly);
  desk::DeskApi handler({.account = options.account,
                         .filters = SavedFilters::ofUser(),
                         .layouts = KeptLayouts::ofUser(),
                         .version = QUILLON_VERSION,
                         .licences = licences()});
  desk::ServerLimits limits;
  limits.unused = std::chrono::minutes(options.idleMinutes);
  desk::HttpServer server(options.port, limits);
  desk::Gate gate(server.port(), desk::newSecret(), desk::newSecret());
  out << gate.link() << std::endl;
  if (!out) throw UserError(messages::linkNotWritten());
  std::optional<LinkFile> file;
  if (options.open) {
    file.emplace(gate.link());
    if (!showInBrowser(file->path())) notes << "quillon: " << messages::noBrowser().in(options.language) << '\n';
  }
  if (server.run(gate, handler, tsql::stopRequested) == desk::HttpServer::End::unused) {
    notes << "quillon: " << messages::deskUnused(options.idleMinutes).in(options.language) << '\n';
    return;
  }
  throw UserError(messages::deskClosed());
}

void addServeCommand(CLI::App& app) {
  CLI::App& command = *app.add_subcommand("serve", "Open the desk: the reports in a browser on this machine");
  const auto options = std::make_shared<ServeOptions>();
  addAccountOption(command, "--account", options->account).required();
  // Those below are the system's.
  constexpr unsigned short leastPort = 1024, mostPort = 65535;
  command.add_option("--port", options->port, "The port to listen on; without it, one that is free")
      ->transform(wholeNumber<int>(leastPort, mostPort));
  command.add_flag("--open", options->open, "Show the desk in the browser");
  constexpr int mostMinutes = 7 * 24 * 60;
  command.add_option("--idle", options->idleMinutes, "End after so many minutes in which nobody used the desk")
      ->transform(wholeNumber<int>(1, mostMinutes));
  addLanguageOption(command, options->language);
  command.callback([options] { runServe(*options, std::cout, std::cerr); });
}

}  // namespace quillon::workbench
