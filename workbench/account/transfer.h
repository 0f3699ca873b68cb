// An account as a folder of CSV files, and back: what comes back is the same account, value by value and type by type.
//
// The folder holds schema.sql, the T-SQL that makes the tables with their keys, identities and indexes, the views and
// the functions; and a CSV file (csv.h) for each table, "Inventory.csv", "orvsystem..UA_Period.csv". A file begins with
// the names of the table's columns. An empty value is NULL, "" an empty text. Numbers have all their decimals, dates are
// written "2024-03-05 00:00:00.000". Rows stand by primary key, without one by all columns.
#pragma once

#include <cstdint>
#include <filesystem>

#include "workbench/account/account_error.h"
#include "workbench/account/transfer_progress.h"
#include "workbench/tsql/engine/engine.h"

namespace quillon::account {

struct TransferCounts {
  std::int64_t tables = 0;
  std::int64_t rows = 0;
};

// Writes the account to `folder`, which is made when it does not exist and must be empty when it does. The files are
// those of one moment, whoever writes to the account meanwhile; memory does not grow with the rows. schema.sql comes last,
// and is called schema.sql.part until then: a folder that has it so is what an interrupted export left, and its CSV files
// are taken away first. Throws AccountError when the folder holds something else or cannot be written; then nothing is
// left in it.
TransferCounts exportAccount(tsql::Connection& connection, const std::filesystem::path& folder,
                             const TransferProgress& progress = {});

// Makes the account `file` of what exportAccount() wrote, or someone by its rules: columns may stand in any order, any
// value in quotes, lines end with LF alone. The file appears complete or not at all. Throws AccountError when `file`
// exists, and for the first thing that is wrong in the folder, by file, line and column.
TransferCounts importAccount(const std::filesystem::path& file, const std::filesystem::path& folder,
                             const TransferProgress& progress = {});

}  // namespace quillon::account
