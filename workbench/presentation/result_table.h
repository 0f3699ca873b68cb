// The result table of a report run, as the report left it in the account: read with statements of the account's own
// dialect, so that sums are the account's sums, and dropped when it was read.
#pragma once

#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <mutex>
#include <optional>
#include <span>
#include <string>
#include <vector>

#include "workbench/catalogue/report_columns.h"
#include "workbench/catalogue/report_layout.h"
#include "workbench/tsql/values/database.h"

namespace quillon::workbench {

// What takes a whole reading of a large table to find out, kept for all who read the table from several threads. For a
// table that does not change any more.
class ResultFacts {
 public:
  std::int64_t rowCount(const std::function<std::int64_t()>& count);
  std::vector<ReportColumn> filledColumns(const std::function<std::vector<ReportColumn>()>& find);
  // The rows of a statement that sums, by its text.
  std::vector<std::vector<tsql::Value>> sums(const std::string& statement,
                                             const std::function<std::vector<std::vector<tsql::Value>>()>& find);

 private:
  std::mutex mutex_;
  std::optional<std::int64_t> rowCount_;
  std::optional<std::vector<ReportColumn>> filledColumns_;
  std::map<std::string, std::vector<std::vector<tsql::Value>>> sums_;
};

// Whether one of `columns` has the name, in whichever letter case.
bool hasColumn(std::span<const tsql::Column> columns, std::string_view name);

// The condition that every row meets.
inline constexpr const char* everyRow = "1 = 1";

class ResultTable {
 public:
  // `account` stays open as long as this. The table need not exist yet. `order` is what its rows are ordered by.
  // `facts` may be null; they are of the whole table and of the columns of one report.
  ResultTable(tsql::Database& account, std::string name, RowOrder order = orderByPlace,
              std::shared_ptr<ResultFacts> facts = nullptr)
      : account_(account), name_(std::move(name)), order_(order), facts_(std::move(facts)) {}

  const std::string& name() const { return name_; }
  tsql::Database& account() const { return account_; }
  bool exists() const { return !account_.describe(name_).empty(); }
  // Its columns as they are declared.
  std::vector<tsql::Column> columns() const { return account_.describe(name_); }
  // The rows that meet a condition.
  std::int64_t rowCount(const std::string& where = everyRow) const;

  // The columns of `known` that the table has and that hold something in the rows that meet a condition: a text that is not
  // empty, a date, a number other than zero. Internal columns are left out.
  std::vector<ReportColumn> filledColumns(std::span<const ReportColumn> known,
                                          const std::string& where = everyRow) const;

  // The rows of a select list of sums over the rows that meet a condition, for each of `groups`, a list of columns, in its
  // order; of an empty one there is one row.
  std::vector<std::vector<tsql::Value>> sums(const std::string& list, const std::string& where,
                                             const std::string& groups = {}) const;

  // All rows in the table's order, then by every other column, so that the same report always comes in the same order.
  // `columns` are the table's names; empty means all of them.
  std::unique_ptr<tsql::Cursor> rows(std::span<const ReportColumn> columns = {}) const;
  // The statement that gives them, or those of them that meet a condition.
  std::string selectRows(std::span<const ReportColumn> columns = {}, const std::string& where = {}) const;

  // The rows of a detail ledger in its order: by line number, the rows of a line by batch and free items, then by cost
  // item. Behind `columns` stand three more: the kind of the row (Datatype) and, of a movement, whether its ledger line is
  // a receipt and the ledger month of that line.
  std::unique_ptr<tsql::Cursor> ledgerRows(std::span<const ReportColumn> columns) const;

  // A statement over the table and the account's others. Destroy the cursor before the next one.
  std::unique_ptr<tsql::Cursor> query(const std::string& statement) const { return account_.query(statement); }

  // Drops the table if it exists.
  void drop();

 private:
  std::int64_t countRows(const std::string& where) const;
  std::vector<ReportColumn> findFilled(std::span<const ReportColumn> known, const std::string& where) const;

  tsql::Database& account_;
  std::string name_;
  RowOrder order_;
  std::shared_ptr<ResultFacts> facts_;
};

}  // namespace quillon::workbench
