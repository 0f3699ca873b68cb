// The sample account: a manufacturing company with several years of inventory ledger, made from a seed. The same
// options give the same rows on every platform.
//
// What holds in every sample, whatever the options:
//   - ia_subsidiary has exactly `rows` lines, opening lines included.
//   - A line that is broken down by cost item has parts in ia_subsidiary_Item whose quantities and amounts sum to the
//     line's own, exactly. The parts of IA_Subsidiary_QC_Item sum to their line of IA_Subsidiary_QC likewise.
//   - Per inventory, warehouse, batch and free items, and per cost-item detail of these, no balance of quantity or
//     amount ever falls below zero, and a year opens with what the year before closed with.
//   - Where a line has parts in ia_subsidiary_ItemOut they sum to its issued quantity and amount.
//   - A general-ledger voucher balances, and every ledger line that names a voucher finds it.
// Lines without cost items: all lines before the cost items start, low-value consumables, adjustments without amount.
#pragma once

#include <cstdint>
#include <functional>

#include "workbench/tsql/engine/engine.h"

namespace quillon::account {

enum class Valuation { inventory, warehouse, department };

struct SampleOptions {
  std::int64_t rows = 20'000;                  // lines of ia_subsidiary, 500 a year or more
  std::uint64_t seed = 1;                      // any number
  int years = 3;                               // 1 to 10; the last one is 2024
  Valuation valuation = Valuation::warehouse;  // cValueStyle
  int costItemStartMonth = 4;                  // 1 to 12, in the first year; later years begin in month 1
  int startMonth = 1;                          // 1 to costItemStartMonth: where inventory accounting begins
};

inline constexpr std::int64_t minimumSampleRowsAYear = 500;
inline constexpr int lastSampleYear = 2024;
inline constexpr int maximumSampleYears = 10;

// Told now and then while a sample is made: ledger lines written so far, and how many there will be.
using Progress = std::function<void(std::int64_t done, std::int64_t total)>;

// Throws AccountError when an option is out of its range, saying what the range is.
void checkOptions(const SampleOptions& options);

// Fills the empty tables of an account, in a transaction of the caller's. Memory does not grow with the ledger: what is
// kept is the company and one balance for each inventory, warehouse, batch and free items.
// Throws AccountError for the options, tsql::SqlError when the account does not take a row.
void writeSample(tsql::Connection& connection, const SampleOptions& options, const Progress& progress = {});

}  // namespace quillon::account
