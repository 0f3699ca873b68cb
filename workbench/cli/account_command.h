// `quillon account`: makes sample accounts, tells what is in one, clears away what interrupted reports left.
#pragma once

#include <CLI/CLI.hpp>

namespace quillon::workbench {

void addAccountCommand(CLI::App& app);

}  // namespace quillon::workbench
