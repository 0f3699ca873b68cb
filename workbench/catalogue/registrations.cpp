#include "workbench/catalogue/registrations.h"

#include <array>
#include <stdexcept>

namespace quillon::workbench {

namespace {

constexpr std::array reports = {sfcItemRegistration, outsumItemRegistration, fxDetailRegistration, fxWtRegistration};

}  // namespace

const ReportRegistration& registeredReport(std::string_view name) {
  for (const auto registration : reports) {
    if (registration().name == name) return registration();
  }
  throw std::invalid_argument("there is no report \"" + std::string(name) + "\"; the reports are: " + reportNames());
}

std::string reportNames() {
  std::string names;
  for (const auto registration : reports)
    names += (names.empty() ? "" : ", ") + registration().name;
  return names;
}

}  // namespace quillon::workbench
