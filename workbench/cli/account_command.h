// `quillon account`: makes sample accounts, shows what is in one, and drops the tables that interrupted reports left.
#pragma once

#include <functional>
#include <ostream>
#include <string>

#include "workbench/cli/screen_options.h"
#include "workbench/platform/account_source.h"
#include "workbench/platform/language.h"

namespace CLI {
class App;
}

namespace quillon::workbench {

// `quillon account clean`: drops the tables that interrupted reports left. `agrees` is asked about those that may be in
// use or wanted. Throws std::exception with one line for the user.
void cleanAccount(const AccountSource& source, const std::function<bool(const std::string&)>& agrees, std::ostream& out,
                  Language language = Language::english);

// `quillon account info`: years and tables, and what interrupted reports left. Throws std::exception with one line for the
// user.
void showInfo(const AccountSource& source, std::ostream& out, Language language = Language::english,
              const ScreenOptions& screen = {});

void addAccountCommand(CLI::App& app);

}  // namespace quillon::workbench
