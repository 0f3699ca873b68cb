// The checks of an account as people and programs ask for them: the keys by which reports join, and what is wrong in the
// ledger (workbench/account/ledger_check.h), with the reports that each touches.
#pragma once

#include <cstdint>
#include <optional>
#include <ostream>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "workbench/account/key_check.h"
#include "workbench/account/ledger_check.h"
#include "workbench/catalogue/report.h"
#include "workbench/platform/filter_object.h"
#include "workbench/platform/language.h"

namespace quillon::workbench {

// The name of the check of join keys; the others have those of account::ledgerChecks().
inline constexpr std::string_view joinKeysCheck = "join-keys";

// The names of all checks, in the order in which they are shown.
std::vector<std::string> checkNames();

// What a check found.
struct AccountFinding {
  std::string name;
  account::CheckRank rank = account::CheckRank::error;
  Caption title;
  Caption advice;
  std::string reports;                // those that it touches: "sfc-item, fx-detail"
  std::int64_t rows = 0;              // how many it found
  std::optional<tsql::Exact> amount;  // the sum of their amounts; none where rows have no amount
  std::vector<account::FoundRow> shown;
  std::vector<account::BrokenKey> keys;  // of joinKeysCheck, in the place of `shown`
};

// A finding for each check of these names (checkNames()), all when there are none, also for one that found nothing.
// `shown`: so many rows of each are told; nothing: all. Throws as account::checkLedger() does.
std::vector<AccountFinding> checkedAccount(tsql::Database& account, std::span<const std::string> names,
                                           const std::optional<std::int64_t>& shown);

// Whether one of them is an error that was found.
bool hasErrors(std::span<const AccountFinding> findings);

// {"checks":[{"name","rank","title","advice","reports","rows","amount","found":[...]}]}; amounts as texts with all their
// decimals.
void writeFindingsJson(std::ostream& out, std::span<const AccountFinding> findings, Language language);

// What a reader of the report should know before believing it: the errors that touch its rows, counted in the years of
// its filter, without rows; notes are none. The statements read the lines of these years, and of the one before, once or
// twice: little beside a report over a year, much beside one of a single inventory.
std::vector<AccountFinding> findingsOfReport(const Report& report, FilterObject& filter, tsql::Database& account);

// "3 found: cost items that do not sum to their ledger line, amount 12.50 (quillon account check SOURCE --check
// line-sum)". Names no account, for pages are handed on.
Message warningOf(const AccountFinding& finding);

}  // namespace quillon::workbench
