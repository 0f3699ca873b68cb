// JSON files that a person hands to a command.
#pragma once

#include <nlohmann/json.hpp>
#include <string>
#include <string_view>

namespace quillon::workbench {

// What the file `path` (UTF-8) holds. Throws UserError when it cannot be read.
std::string readTextFile(const std::string& path);
// The document in `path` (UTF-8), its members in file order. Throws UserError, with the line, when the file cannot
// be read or is not valid JSON.
nlohmann::ordered_json readJsonFile(const std::string& path);
// The document that `text` is; errors call it `name`. Throws UserError, with the line, when it is not valid JSON,
// and for a number that no double holds.
nlohmann::ordered_json parseJson(std::string_view text, const std::string& name);

}  // namespace quillon::workbench
