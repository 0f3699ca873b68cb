// What an accountant wants to know of a ledger before believing a report: whether the cost items sum to their lines,
// whether openings are what the year before closed with, whether cost items and classes are known. All statements only
// read, and are T-SQL that the embedded engine and a server take alike.
#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "workbench/messages/message.h"
#include "workbench/tsql/values/database.h"

namespace quillon::account {

enum class Check {
  lineSum,
  issueSum,
  openingSum,
  lineWithoutItems,
  openingWithoutItems,
  neverSplit,
  unknownItem,
  strayItem,
  classTree,
  amountWithoutQuantity,
  quantityWithoutAmount,
  openingBalance,
  itemOpeningBalance,
  balanceWithoutQuantity,
  periodGap,
};

enum class CheckRank {
  error,  // a report that shows the row is wrong
  note,   // may be right: something to know
};

struct CheckInfo {
  Check check;
  std::string_view name;  // "line-sum"
  CheckRank rank;
  bool hasAmount;  // its rows have one
  workbench::Caption title;
  workbench::Caption advice;  // what to do about its rows
};

// All checks, in the order of Check, which is that in which they are shown.
std::span<const CheckInfo> ledgerChecks();
const CheckInfo& infoOf(Check check);

// A row that a check found.
struct FoundRow {
  std::optional<std::int64_t> line;  // AutoID of the ledger line, or of the cost-item opening; none: a balance, a class
  std::optional<std::int64_t> year;  // none: of no year, such as a class
  std::optional<std::int64_t> month;  // 0: openings
  std::string date;                   // when the line was kept, yyyy-mm-dd; empty for none
  std::string document;               // the document's number
  std::string inventory;              // the inventory's code
  workbench::Message what;            // "line 100.00, cost items 99.00"
  std::optional<tsql::Exact> amount;  // by how much, or of how much; none where there is no amount
};

struct Finding {
  Check check;
  std::int64_t rows = 0;        // how many there are
  tsql::Exact amount;           // the sum of their amounts
  std::vector<FoundRow> shown;  // the first of them
};

struct YearRange {
  int first;
  int last;
};

struct CheckScope {
  std::span<const Check> checks = {};     // empty: all
  std::optional<YearRange> years = {};    // rows of these years and, of a balance, openings and closings of these years
  std::optional<std::int64_t> shown = 0;  // so many rows of each check are told one by one; nothing: all
};

// A finding for each check of the scope, in the order of Check, also when it found no row. Throws AccountError when the
// database lacks the tables of an account, and tsql::SqlError when it cannot be read.
std::vector<Finding> checkLedger(tsql::Database& account, const CheckScope& scope);

// An amount or a quantity with at least two decimals, and as many more as it needs: "0.00", "-12.5075".
std::string checkedNumber(const tsql::Exact& value);

}  // namespace quillon::account
