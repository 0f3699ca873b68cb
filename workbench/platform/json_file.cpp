#include "workbench/platform/json_file.h"

#include <algorithm>
#include <fstream>
#include <iterator>

#include "workbench/platform/user_error.h"
#include "workbench/tsql/values/utf8_path.h"

namespace quillon::workbench {

nlohmann::ordered_json parseJson(std::string_view text, const std::string& name) {
  try {
    return nlohmann::ordered_json::parse(text);
  } catch (const nlohmann::ordered_json::parse_error& error) {
    // The parser counts bytes from 1; a reader counts lines.
    const auto* const end = text.begin() + std::min(error.byte, text.size());
    const auto line = 1 + std::count(text.begin(), end, '\n');
    throw UserError(name + " is not valid JSON: see line " + std::to_string(line));
  } catch (const nlohmann::ordered_json::out_of_range&) {
    throw UserError(name + " holds a number with too many digits; write it as a text, in quotes");
  }
}

std::string readTextFile(const std::string& path) {
  std::ifstream file(pathFromUtf8(path), std::ios::binary);
  if (!file) throw UserError("cannot read " + path + "; check the name and its permissions");
  return {std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
}

nlohmann::ordered_json readJsonFile(const std::string& path) {
  return parseJson(readTextFile(path), path);
}

}  // namespace quillon::workbench
