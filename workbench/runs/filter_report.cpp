#include "workbench/runs/filter_report.h"

#include <algorithm>
#include <nlohmann/json.hpp>

#include "workbench/catalogue/catalogue.h"
#include "workbench/platform/json_file.h"

namespace quillon::workbench {

const Report* reportOfFilter(std::string_view text, const std::string& name) {
  const nlohmann::ordered_json file = parseJson(text, name);
  const auto id = file.find("id");
  if (id == file.end() || !id->is_string()) return nullptr;
  const auto all = reports();
  const auto found =
      std::ranges::find_if(all, [&id](const Report& report) { return *id == report.registration.identifier; });
  return found == all.end() ? nullptr : &*found;
}

}  // namespace quillon::workbench
