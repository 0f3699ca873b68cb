#include "workbench/desk/check_session.h"

#include <algorithm>
#include <exception>
#include <string_view>
#include <utility>

#include "workbench/desk/json_forms.h"
#include "workbench/messages/check.h"
#include "workbench/messages/desk.h"
#include "workbench/runs/run_monitor.h"
#include "workbench/tsql/values/exact.h"

namespace quillon::workbench::desk {

namespace {

template <typename Value>
Json orNull(const std::optional<Value>& value) {
  return value ? Json(*value) : Json();
}

Json amountOrNull(const std::optional<tsql::Exact>& amount) {
  return amount ? Json(account::checkedNumber(*amount)) : Json();
}

// The names in "sfc-item, fx-detail".
Json listOf(std::string_view names) {
  constexpr std::string_view between = ", ";
  Json list = Json::array();
  while (!names.empty()) {
    const auto end = names.find(between);
    list.push_back(names.substr(0, end));
    if (end == std::string_view::npos) break;
    names.remove_prefix(end + between.size());
  }
  return list;
}

Json checkJson(const AccountFinding& finding) {
  return {{"name", finding.name},
          {"rank", finding.rank == account::CheckRank::error ? "error" : "note"},
          {"title", inBothLanguages(finding.title.chinese, finding.title.english)},
          {"advice", inBothLanguages(finding.advice.chinese, finding.advice.english)},
          {"reports", listOf(finding.reports)},
          {"rows", finding.rows},
          {"amount", amountOrNull(finding.amount)}};
}

Json rowJson(const account::FoundRow& row, Language language) {
  return {{"line", orNull(row.line)},      {"year", orNull(row.year)},
          {"month", orNull(row.month)},    {"date", row.date},
          {"document", row.document},      {"inventory", row.inventory},
          {"what", row.what.in(language)}, {"amount", amountOrNull(row.amount)}};
}

// A key has none of what a row of the ledger has.
Json keyJson(const account::BrokenKey& key, Language language) {
  account::FoundRow row;
  row.what = messages::keyOfTable(key.table, key.key, key.rows);
  return rowJson(row, language);
}

Json pageOf(const auto& kept, std::int64_t offset, std::int64_t limit, const auto& form) {
  Json rows = Json::array();
  const auto count = static_cast<std::int64_t>(kept.size());
  for (std::int64_t i = offset; i < count && i - offset < limit; ++i)
    rows.push_back(form(kept[static_cast<std::size_t>(i)]));
  return rows;
}

}  // namespace

CheckSession::CheckSession(Work work, const Discretion& discretion)
    : discretion_(discretion), started_(isoTime(std::chrono::system_clock::now())) {
  thread_.post([this, work = std::move(work)] { make(work); });
}

CheckSession::~CheckSession() {
  stop();
}

void CheckSession::make(const Work& work) {
  State state = State::done;
  std::vector<AccountFinding> findings;
  Message error;
  try {
    findings = work();
    if (thread_.stopped()) state = State::stopped;
  } catch (const std::exception& failure) {
    state = thread_.stopped() ? State::stopped : State::failed;
    if (state == State::failed) error = errorText(failure);
  }
  const std::scoped_lock lock(mutex_);
  if (state == State::done) findings_ = std::move(findings);
  error_ = std::move(error);
  endedMs_ = elapsedMs();
  state_ = state;
}

bool CheckSession::running() const {
  const std::scoped_lock lock(mutex_);
  return state_ == State::running;
}

std::int64_t CheckSession::elapsedMs() const {
  return std::chrono::duration_cast<std::chrono::milliseconds>(std::chrono::steady_clock::now() - begun_).count();
}

Json CheckSession::info(Language language) const {
  const std::scoped_lock lock(mutex_);
  Json checks = Json::array();
  for (const AccountFinding& finding : findings_)
    checks.push_back(checkJson(finding));
  return {{"state", nameOf(state_)},
          {"started", started_},
          {"elapsedMs", state_ == State::running ? elapsedMs() : endedMs_},
          {"error", state_ == State::failed ? Json(discretion_.of(error_.in(language))) : Json()},
          {"checks", std::move(checks)}};
}

Json CheckSession::infoOfNone() {
  return {{"state", "none"}, {"started", nullptr}, {"elapsedMs", 0}, {"error", nullptr}, {"checks", Json::array()}};
}

Json CheckSession::rows(const std::string& check, std::int64_t offset, std::int64_t limit, Language language) const {
  const std::vector<std::string> names = checkNames();
  if (std::ranges::find(names, check) == names.end()) throw unknown(messages::noSuchCheck(check));
  const std::scoped_lock lock(mutex_);
  const auto finding = std::ranges::find(findings_, check, &AccountFinding::name);
  if (finding == findings_.end()) throw ApiError(409, "state", messages::checksNotMade());
  const auto rowForm = [language](const account::FoundRow& row) { return rowJson(row, language); };
  const auto keyForm = [language](const account::BrokenKey& key) { return keyJson(key, language); };
  return {{"rowCount", finding->rows},
          {"kept", finding->shown.size() + finding->keys.size()},
          {"rows", finding->keys.empty() ? pageOf(finding->shown, offset, limit, rowForm)
                                         : pageOf(finding->keys, offset, limit, keyForm)}};
}

}  // namespace quillon::workbench::desk
