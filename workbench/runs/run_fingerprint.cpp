#include "workbench/runs/run_fingerprint.h"

#include <algorithm>
#include <nlohmann/json.hpp>
#include <set>
#include <utility>

#include "workbench/catalogue/catalogue.h"
#include "workbench/catalogue/report_dimensions.h"
#include "workbench/messages/common.h"
#include "workbench/platform/filter_file.h"
#include "workbench/platform/resource_texts.h"
#include "workbench/tsql/values/utf8_path.h"

namespace quillon::workbench {

namespace {

// Several values widen a filter whatever their order.
std::string inOrder(const std::string& values) {
  std::set<std::string> sorted;
  for (std::size_t at = 0; at <= values.size();) {
    const std::size_t end = std::min(values.find('\t', at), values.size());
    if (end > at) sorted.insert(values.substr(at, end - at));
    at = end + 1;
  }
  std::string result;
  for (const std::string& value : sorted)
    result.append(result.empty() ? "" : "\t").append(value);
  return result;
}

FingerprintItem itemOf(const FilterEntry& entry) {
  return {.name = entry.item.key,
          .value = entry.item.multiple ? inOrder(entry.value) : entry.value,
          .value2 = entry.value2,
          .sql = entry.sql,
          .range = entry.item.range,
          .multiple = entry.item.multiple};
}

std::string databaseOf(const odbc::ConnectionString& connection) {
  for (const char* keyword : {"Database", "Initial Catalog", "DSN", "FileDSN", "Server", "Data Source"}) {
    for (const auto& attribute : connection.attributes()) {
      if (!attribute.is(keyword)) continue;
      // A file's folder says nothing about the account.
      return attribute.is("FileDSN") ? utf8FromPath(pathFromUtf8(attribute.value).filename()) : attribute.value;
    }
  }
  return {};
}

// What one sum of the fingerprint is: an expression, and what the sum is called.
struct Summed {
  std::string name;
  std::string expression;
  Message caption;
};

Message captionOf(const ReportColumn& column) {
  return messages::said(Caption{column.chinese, column.english});
}

std::vector<Summed> summedColumns(const Report& report, const std::vector<tsql::Column>& present,
                                  const std::string& mode) {
  std::vector<CrossState> states;
  if (report.crossStates != nullptr && rowsAreStates(report, mode)) states = report.crossStates(mode);
  std::vector<Summed> summed;
  for (const ReportColumn& column : report.columns) {
    const bool ofState = column.role == ColumnRole::movement || column.role == ColumnRole::amount;
    if ((!isSummed(column.role) && !ofState) || !hasColumn(present, column.name)) continue;
    const std::string value = "IsNull(" + column.name + ", 0)";
    if (!ofState || states.empty()) {
      summed.push_back({column.name, value, captionOf(column)});
      continue;
    }
    for (const CrossState& state : states) {
      const std::string chinese = resourceText(state.nameKey, Language::chinese);
      const std::string english = resourceText(state.nameKey, Language::english);
      summed.push_back({column.name + "/" + state.stateNumber,
                        "Case When iState = " + state.stateNumber + " Then " + value + " Else 0 End",
                        messages::headed(Caption{chinese, english}, captionOf(column))});
    }
  }
  return summed;
}

}  // namespace

RunFingerprint fingerprintOfAccount(const SignedInAccount& account) {
  RunFingerprint fingerprint;
  fingerprint.accountCode = account.login->accountCode();
  fingerprint.accountName = account.source.onServer() ? databaseOf(odbc::ConnectionString(account.source.text()))
                                                      : utf8FromPath(account.source.file().filename());
  fingerprint.date = account.login->businessDate();
  return fingerprint;
}

RunFingerprint fingerprintOf(const MadeReport& report) {
  RunFingerprint fingerprint = fingerprintOfAccount(report.account());
  fingerprint.report = report.report().registration.name;
  std::string mode;
  for (const auto& entry : report.filter().entries()) {
    if (entry->item.key == "cModal") mode = entry->value;
    if (!entry->value.empty() || !entry->value2.empty() || !entry->sql.empty())
      fingerprint.filter.push_back(itemOf(*entry));
  }
  const ResultTable table = report.table();
  const std::vector<Summed> summed = summedColumns(report.report(), table.columns(), mode);
  std::string list = "Count(*)";
  for (const Summed& column : summed)
    list.append(", Sum(").append(column.expression).append(")");
  const auto rows = table.sums(list, everyRow);
  fingerprint.rows = std::get<std::int64_t>(rows.at(0).at(0));
  for (std::size_t i = 0; i < summed.size(); ++i) {
    // There is no sum of no rows.
    const std::string sum = tsql::toText(rows[0].at(i + 1)).value_or("0");
    fingerprint.sums.push_back({summed[i].name, withoutEndingZeros(sum), summed[i].caption});
  }
  return fingerprint;
}

std::shared_ptr<FilterObject> filterOf(const RunFingerprint& fingerprint) {
  auto filter = std::make_shared<FilterObject>(reportNamed(fingerprint.report).registration, InitialValues::none);
  nlohmann::ordered_json items = nlohmann::ordered_json::array();
  for (const FingerprintItem& item : fingerprint.filter) {
    nlohmann::ordered_json written = {{"name", item.name}, {"value", item.value}, {"value2", item.value2}};
    if (!item.sql.empty()) written["sql"] = item.sql;
    written["range"] = item.range;
    written["multi"] = item.multiple;
    items.push_back(std::move(written));
  }
  applyFilterFile(*filter, nlohmann::ordered_json{{"items", std::move(items)}}.dump(), fingerprint.report);
  return filter;
}

}  // namespace quillon::workbench
