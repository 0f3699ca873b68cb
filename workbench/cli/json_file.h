// JSON files that a person hands to a command.
#pragma once

#include <nlohmann/json.hpp>
#include <string>

namespace quillon::workbench {

// The document in `path` (UTF-8), its members in file order. Throws CommandError, with the line, when the file cannot
// be read or is not valid JSON.
nlohmann::ordered_json readJsonFile(const std::string& path);

}  // namespace quillon::workbench
