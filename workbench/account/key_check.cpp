#include "workbench/account/key_check.h"

#include <algorithm>
#include <cstddef>
#include <utility>

#include "workbench/account/account.h"
#include "workbench/messages/account.h"

namespace quillon::account {
namespace {

// A key with the names of the reports that join by it.
struct SharedKey {
  JoinKey key;
  std::string reports;
};

// The keys of all reports, each once, in an order that is every report's: a key that only a later report has stands
// before the next one that it shares with an earlier.
std::vector<SharedKey> sharedKeys(std::span<const ReportKeys> reports) {
  std::vector<SharedKey> shared;
  for (const ReportKeys& report : reports) {
    std::vector<SharedKey> own;
    const auto place = [&](std::size_t position) {
      shared.insert(shared.begin() + static_cast<std::ptrdiff_t>(position), own.begin(), own.end());
      own.clear();
    };
    for (const JoinKey& key : report.keys) {
      const auto known = std::ranges::find(shared, key, &SharedKey::key);
      if (known == shared.end()) {
        own.push_back({.key = key, .reports = std::string(report.report)});
        continue;
      }
      known->reports.append(", ").append(report.report);
      place(static_cast<std::size_t>(known - shared.begin()));
    }
    place(shared.size());
  }
  return shared;
}

std::string textOf(const tsql::Cursor& cursor, std::size_t column) {
  return tsql::toText(cursor.value(column)).value_or("");
}

// A null never joins: it is counted here and passed over by keyText.
std::string duplicatesOf(const JoinKey& key) {
  const std::string columns(key.columns);
  return "Select " + columns + ", Count(*) From " + std::string(key.table) + " Group By " + columns +
         " Having Count(*) > 1 Order By " + columns;
}

// "iYear = 2024, cCode = 6602"; empty when a part of the key is null.
std::string keyText(const tsql::Cursor& row) {
  std::string text;
  for (std::size_t column = 0; column + 1 < row.columns().size(); ++column) {
    if (tsql::isNull(row.value(column))) return {};
    text += (text.empty() ? "" : ", ") + row.columns()[column].name + " = " + textOf(row, column);
  }
  return text;
}

// An issue at a mapped work centre finds that row of the map and, where its accounting department is mapped as well,
// the department's.
constexpr const char* doublyMapped =
    "Select work.WcCode, base.cAccDep, Count(Distinct costmap.bIsWCID) From ia_subsidiary base "
    "Inner Join sfc_workcenter work On work.Description = base.cworkcentername "
    "Inner Join CA_CostCenterMap costmap On costmap.cDepCode = Case When costmap.bIsWCID = 1 Then work.WcCode Else "
    "base.cAccDep End "
    "Where base.bRdFlag = 0 "
    "Group By work.WcCode, base.cAccDep Having Count(Distinct costmap.bIsWCID) > 1 "
    "Order By work.WcCode, base.cAccDep";

// By class, a class is shown under each class of the chosen grade with whose code its own begins.
constexpr const char* ambiguousClasses =
    "Select cls.cFxCCode, upper_class.iGrade, Count(*) From Ca_FxClassDef cls "
    "Inner Join Ca_FxClassDef upper_class On cls.cFxCCode Like (upper_class.cFxCCode + '%') "
    "Group By cls.iFxCId, cls.cFxCCode, upper_class.iGrade Having Count(*) > 1 "
    "Order By cls.cFxCCode, upper_class.iGrade";

}  // namespace

JoinKey oneCostCentreAnIssue() {
  return {.table = "CA_CostCenterMap",
          .columns = "work centre or department",
          .statement = doublyMapped,
          .describe = [](const tsql::Cursor& row) {
            return workbench::messages::workCentreAndDepartment(textOf(row, 0), textOf(row, 1));
          }};
}

JoinKey oneClassAGrade() {
  return {.table = "Ca_FxClassDef",
          .columns = "class above",
          .statement = ambiguousClasses,
          .describe = [](const tsql::Cursor& row) {
            return workbench::messages::classesOfGrade(textOf(row, 1), textOf(row, 0));
          }};
}

std::vector<BrokenKey> brokenKeys(tsql::Database& connection, std::span<const ReportKeys> reports) {
  requireAccount(connection);
  std::vector<BrokenKey> broken;
  for (const auto& [key, names] : sharedKeys(reports)) {
    const auto rows = connection.query(key.statement.empty() ? duplicatesOf(key) : std::string(key.statement));
    const std::size_t count = rows->columns().size() - 1;
    while (rows->next()) {
      workbench::Message text =
          key.describe == nullptr ? workbench::Message::verbatim(keyText(*rows)) : key.describe(*rows);
      if (text.empty()) continue;
      broken.push_back({std::string(key.table), std::move(text), std::get<std::int64_t>(rows->value(count)), names});
    }
  }
  return broken;
}

}  // namespace quillon::account
