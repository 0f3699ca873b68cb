#include "workbench/desk/json_forms.h"

#include <array>
#include <ctime>

namespace quillon::workbench::desk {

Json inBothLanguages(std::string_view chinese, std::string_view english) {
  return {{"zh", chinese}, {"en", english}};
}

std::string isoTime(std::chrono::system_clock::time_point time) {
  const std::time_t seconds = std::chrono::system_clock::to_time_t(time);
  std::tm parts{};
#ifdef _WIN32
  gmtime_s(&parts, &seconds);
#else
  gmtime_r(&seconds, &parts);
#endif
  std::array<char, 32> text{};
  const std::size_t length = std::strftime(text.data(), text.size(), "%Y-%m-%dT%H:%M:%SZ", &parts);
  return {text.data(), length};
}

std::string lineOf(const Json& json) {
  return json.dump(-1, ' ', false, Json::error_handler_t::replace);
}

}  // namespace quillon::workbench::desk
