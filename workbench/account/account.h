// Account files: making a sample, telling what is in one.
#pragma once

#include <cstdint>
#include <filesystem>
#include <string>
#include <vector>

#include "workbench/account/account_error.h"
#include "workbench/account/sample.h"
#include "workbench/tsql/engine/engine.h"

namespace quillon::account {

// Makes a sample account in `file`. The file appears complete or not at all: it grows as a part (makePart()) in
// the same folder and is renamed at the end. Throws AccountError when `file` exists, if only since another run has made it
// meanwhile, when the options are out of range or when the folder cannot be written.
void createSample(const std::filesystem::path& file, const SampleOptions& options, const Progress& progress = {});

// One accounting year.
struct YearInfo {
  int year = 0;
  int costItemStartMonth = 0;  // 0: no cost items in this year
  int settledMonths = 0;       // months 1 to this one are settled
  std::int64_t ledgerLines = 0;
};

struct AccountInfo {
  std::string accountCode;      // cAcc_Id in the system database
  std::string startDate;        // "2022-01-01": where inventory accounting begins (IA, dIAStartDate)
  std::string valuationMethod;  // "按存货核算", "按仓库核算" or "按部门核算" (IA, cValueStyle)
  int currentYear = 0;          // the year of the first month that is not settled, else the last year
  std::vector<YearInfo> years;  // in order
  struct TableInfo {
    std::string name;
    std::int64_t rows = 0;
  };
  std::vector<TableInfo> tables;  // the tables of the schema, those of the system database with their qualifier
};

// Throws AccountError when the database lacks a table of an account.
void requireAccount(tsql::Database& connection);

// Reads the account. Throws AccountError when the database lacks the tables of an account.
AccountInfo info(tsql::Database& connection);

}  // namespace quillon::account
