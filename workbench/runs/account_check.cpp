#include "workbench/runs/account_check.h"

#include <algorithm>
#include <nlohmann/json.hpp>

#include "workbench/catalogue/catalogue.h"
#include "workbench/messages/account.h"
#include "workbench/messages/check.h"
#include "workbench/presentation/value_output.h"
#include "workbench/tsql/values/exact.h"
#include "workbench/tsql/values/text.h"

namespace quillon::workbench {

namespace {

using account::Check;
using account::CheckRank;
using Json = nlohmann::ordered_json;

AccountFinding brokenKeysOf(tsql::Database& connection) {
  AccountFinding finding{.name = std::string(joinKeysCheck),
                         .title = messages::joinKeysTitle.caption(),
                         .advice = messages::keysBroken.caption(),
                         .reports = reportNames(),
                         .amount = {},
                         .shown = {},
                         .keys = account::brokenKeys(connection, joinKeysOfReports())};
  finding.rows = static_cast<std::int64_t>(finding.keys.size());
  return finding;
}

AccountFinding told(account::Finding&& found) {
  const account::CheckInfo& info = account::infoOf(found.check);
  AccountFinding finding{.name = std::string(info.name),
                         .rank = info.rank,
                         .title = info.title,
                         .advice = info.advice,
                         .reports = reportsTouchedBy(info.check),
                         .rows = found.rows,
                         .amount = {},
                         .shown = std::move(found.shown),
                         .keys = {}};
  if (info.hasAmount) finding.amount = found.amount;
  return finding;
}

template <typename Value>
Json orNull(const std::optional<Value>& value) {
  return value ? Json(*value) : Json();
}

Json amountOrNull(const std::optional<tsql::Exact>& amount) {
  return amount ? Json(account::checkedNumber(*amount)) : Json();
}

Json rowJson(const account::FoundRow& row, Language language) {
  return {{"line", orNull(row.line)},      {"year", orNull(row.year)},
          {"month", orNull(row.month)},    {"date", row.date},
          {"document", row.document},      {"inventory", row.inventory},
          {"what", row.what.in(language)}, {"amount", amountOrNull(row.amount)}};
}

Json keyJson(const account::BrokenKey& key, Language language) {
  return {{"table", key.table}, {"key", key.key.in(language)}, {"rows", key.rows}, {"reports", key.reports}};
}

// The year that a filter item begins with, as "2024" or "2024-03-01" do.
std::optional<int> yearIn(const std::string& value) {
  constexpr std::size_t yearDigits = 4;
  return value.size() < yearDigits ? std::nullopt
                                   : tsql::text::leadingNumber(std::string_view(value).substr(0, yearDigits));
}

// The years that a report's filter names: its year, else the years of its days. Nothing: it names none.
std::optional<account::YearRange> yearsOf(FilterObject& filter) {
  if (const FilterEntry* year = filter.find("iYear")) {
    if (const auto number = yearIn(year->value)) return account::YearRange{*number, *number};
  }
  const FilterEntry* days = filter.find("dKeepDate");
  if (days == nullptr) return std::nullopt;
  const auto first = yearIn(days->value), last = yearIn(days->value2);
  if (!first && !last) return std::nullopt;
  constexpr int earliest = 1753, latest = 9999;
  return account::YearRange{first.value_or(earliest), last.value_or(latest)};
}

}  // namespace

std::vector<std::string> checkNames() {
  std::vector<std::string> names = {std::string(joinKeysCheck)};
  for (const account::CheckInfo& info : account::ledgerChecks())
    names.emplace_back(info.name);
  return names;
}

std::vector<AccountFinding> checkedAccount(tsql::Database& account, std::span<const std::string> names,
                                           const std::optional<std::int64_t>& shown) {
  const auto asked = [&](std::string_view name) {
    return names.empty() || std::ranges::find(names, name) != names.end();
  };
  std::vector<AccountFinding> findings;
  if (asked(joinKeysCheck)) findings.push_back(brokenKeysOf(account));
  std::vector<Check> checks;
  for (const account::CheckInfo& info : account::ledgerChecks()) {
    if (asked(info.name)) checks.push_back(info.check);
  }
  if (checks.empty()) return findings;
  for (account::Finding& finding : account::checkLedger(account, {.checks = checks, .shown = shown}))
    findings.push_back(told(std::move(finding)));
  return findings;
}

bool hasErrors(std::span<const AccountFinding> findings) {
  return std::ranges::any_of(findings,
                             [](const AccountFinding& each) { return each.rank == CheckRank::error && each.rows > 0; });
}

void writeFindingsJson(std::ostream& out, std::span<const AccountFinding> findings, Language language) {
  Json checks = Json::array();
  for (const AccountFinding& finding : findings) {
    Json found = Json::array();
    for (const account::FoundRow& row : finding.shown)
      found.push_back(rowJson(row, language));
    for (const account::BrokenKey& key : finding.keys)
      found.push_back(keyJson(key, language));
    checks.push_back({{"name", finding.name},
                      {"rank", finding.rank == CheckRank::error ? "error" : "note"},
                      {"title", finding.title.in(language)},
                      {"advice", finding.advice.in(language)},
                      {"reports", finding.reports},
                      {"rows", finding.rows},
                      {"amount", amountOrNull(finding.amount)},
                      {"found", std::move(found)}});
  }
  constexpr char blank = ' ';
  out << Json{{"checks", std::move(checks)}}.dump(-1, blank, false, Json::error_handler_t::replace) << '\n';
}

std::vector<AccountFinding> findingsOfReport(const Report& report, FilterObject& filter, tsql::Database& account) {
  std::vector<Check> checks;
  std::ranges::copy_if(report.ledgerChecks, std::back_inserter(checks),
                       [](Check check) { return account::infoOf(check).rank == CheckRank::error; });
  std::vector<AccountFinding> findings;
  if (checks.empty()) return findings;
  for (account::Finding& finding : account::checkLedger(account, {.checks = checks, .years = yearsOf(filter)})) {
    if (finding.rows > 0) findings.push_back(told(std::move(finding)));
  }
  return findings;
}

Message warningOf(const AccountFinding& finding) {
  const std::string rows = groupedCount(finding.rows);
  if (!finding.amount) return messages::reportTouched(rows, finding.title, finding.name);
  return messages::reportTouchedBy(rows, finding.title, account::checkedNumber(*finding.amount), finding.name);
}

}  // namespace quillon::workbench
