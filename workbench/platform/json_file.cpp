#include "workbench/platform/json_file.h"

#include <algorithm>
#include <fstream>
#include <iterator>

#include "workbench/messages/common.h"
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
    throw UserError(messages::invalidJson(name, line));
  } catch (const nlohmann::ordered_json::out_of_range&) {
    throw UserError(messages::tooManyDigits(name));
  }
}

std::string readTextFile(const std::string& path) {
  std::ifstream file(pathFromUtf8(path), std::ios::binary);
  if (!file) throw UserError(messages::cannotRead(path));
  return {std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
}

nlohmann::ordered_json readJsonFile(const std::string& path) {
  return parseJson(readTextFile(path), path);
}

}  // namespace quillon::workbench
