#include "workbench/catalogue/catalogue.h"

#include <algorithm>
#include <array>
#include <stdexcept>

#include "workbench/catalogue/fx_detail.h"
#include "workbench/catalogue/fx_wt.h"
#include "workbench/catalogue/outsum_item.h"
#include "workbench/catalogue/sfc_item.h"
#include "workbench/messages/report.h"
#include "workbench/platform/nearest_name.h"
#include "workbench/platform/user_error.h"

namespace quillon::workbench {

std::span<const Report> reports() {
  static const std::array all = {sfcItem(), outsumItem(), fxDetail(), fxWt()};
  return all;
}

const Report& reportNamed(std::string_view name) {
  for (const Report& report : reports()) {
    if (report.registration.name == name) return report;
  }
  std::vector<std::string> names;
  for (const Report& report : reports())
    names.push_back(report.registration.name);
  const auto nearest = nearestName(name, names);
  throw InputError(nearest ? messages::noSuchReportNear(name, *nearest, listOf(names))
                           : messages::noSuchReport(name, listOf(names)));
}

std::string reportNames() {
  std::string names;
  for (const Report& report : reports())
    names += (names.empty() ? "" : ", ") + report.registration.name;
  return names;
}

std::vector<account::ReportKeys> joinKeysOfReports() {
  std::vector<account::ReportKeys> keys;
  for (const Report& report : reports())
    keys.push_back({.report = report.registration.name, .keys = report.joinKeys});
  return keys;
}

std::string reportsTouchedBy(account::Check check) {
  std::string names;
  for (const Report& report : reports()) {
    if (std::ranges::find(report.ledgerChecks, check) != report.ledgerChecks.end())
      names += (names.empty() ? "" : ", ") + report.registration.name;
  }
  return names;
}

std::vector<const DialogClass*> dialogClasses() {
  std::vector<const DialogClass*> classes;
  for (const Report& report : reports()) {
    if (std::ranges::find(classes, report.dialog) == classes.end()) classes.push_back(report.dialog);
  }
  return classes;
}

}  // namespace quillon::workbench
