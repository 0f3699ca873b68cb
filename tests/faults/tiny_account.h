// The smallest account that takes every report through all of its statements: one inventory's ledger, and one line of
// each voucher type that a drill-through tells apart.
#pragma once

#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "tests/workbench/platform/temporary_file.h"
#include "workbench/account/sample.h"
#include "workbench/account/scratch.h"
#include "workbench/platform/account_source.h"
#include "workbench/platform/argument.h"
#include "workbench/platform/embedded_platform.h"
#include "workbench/tsql/engine/engine.h"

namespace quillon::faults {

class TinyAccount {
 public:
  // The inventory of the ledger, and where the account keeps costs by place a place that has lines of it.
  static constexpr std::string_view inventory = "0402-00019";
  static constexpr std::string_view warehouse = "04";

  TinyAccount(account::Valuation valuation, int costItemStartMonth);

  // The account as reports have it: its file is only read, and a scratch file has what they create.
  const workbench::AccountSource& source() const { return source_; }
  // The file itself, to be changed.
  std::unique_ptr<tsql::Connection> open() const;
  // Of 2024, in Chinese.
  std::shared_ptr<workbench::WorkbenchLogin> login() const;
  // A session of the tests' own, open.
  std::shared_ptr<workbench::AccountSession> openSession() const;

  // The account's tables that it did not have to begin with, by name.
  std::vector<std::string> newTables() const;
  void drop(const std::vector<std::string>& tables) const;
  // A line with the names of a query's columns and one for each row, in an order of their own; fields are parted by
  // bars.
  std::string rows(const std::string& sql) const;
  // The first field of the first row.
  std::string value(const std::string& sql) const;

 private:
  workbench::test::TemporaryFile file_{".account"};
  account::Scratch scratch_;
  workbench::AccountSource source_;
  std::unique_ptr<tsql::Database> account_;  // by source_
  std::vector<std::string> tables_;
};

// Made on first use and kept for the whole program: valued by warehouse with cost items from month 4 on, by department
// with cost items from the first month on, and by inventory with cost items from month 4 on.
const TinyAccount& byWarehouse();
const TinyAccount& byDepartment();
const TinyAccount& byInventory();

}  // namespace quillon::faults
