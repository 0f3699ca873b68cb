#include "workbench/cli/json_file.h"

#include <algorithm>
#include <cstddef>
#include <fstream>
#include <iterator>

#include "workbench/cli/command_error.h"
#include "workbench/platform/account_source.h"

namespace quillon::workbench {

nlohmann::ordered_json readJsonFile(const std::string& path) {
  std::ifstream file(pathFromUtf8(path), std::ios::binary);
  if (!file) throw CommandError("cannot read " + path + "; check the name and its permissions");
  const std::string text((std::istreambuf_iterator<char>(file)), std::istreambuf_iterator<char>());
  try {
    return nlohmann::ordered_json::parse(text);
  } catch (const nlohmann::ordered_json::parse_error& error) {
    // The parser counts bytes from 1; a reader counts lines.
    const auto end = text.begin() + static_cast<std::ptrdiff_t>(std::min(error.byte, text.size()));
    const auto line = 1 + std::count(text.begin(), end, '\n');
    throw CommandError(path + " is not valid JSON: see line " + std::to_string(line));
  }
}

}  // namespace quillon::workbench
