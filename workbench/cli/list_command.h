// `quillon list`: the codes and names of an account, as the filter items of the reports look them up.
#pragma once

#include <cstddef>
#include <optional>
#include <ostream>
#include <string>

#include "workbench/cli/screen_options.h"
#include "workbench/platform/account_source.h"
#include "workbench/platform/language.h"

namespace CLI {
class App;
}

namespace quillon::workbench {

enum class ListFormat { table, csv, json };

struct ListOptions {
  std::string kind = {};  // of a lookup (workbench/platform/lookup.h)
  AccountSource account = {};
  std::string search = {};
  std::size_t offset = 0;                 // entries left out at the beginning
  std::optional<std::size_t> limit = {};  // 0: all; without it: all, in a table a page of them
  ListFormat format = ListFormat::table;
  Language language = Language::chinese;
  ScreenOptions screen = {};
};

// Writes the entries that are found. Throws std::exception with one line for the user.
void runList(const ListOptions& options, std::ostream& out);

void addListCommand(CLI::App& app);

}  // namespace quillon::workbench
