// Statements translated into SQLite's SQL and kept, for the next time that one of the same form comes: in the same report
// for the next month, or in the next report of the process. A translation holds while everything that its names stood
// for is declared in the same way; that is looked up again each time.
#pragma once

#include <cstddef>
#include <cstdint>
#include <list>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <utility>
#include <vector>

#include "workbench/tsql/binding/binder.h"
#include "workbench/tsql/binding/stored_tables.h"
#include "workbench/tsql/engine/modification.h"
#include "workbench/tsql/syntax/ast.h"
#include "workbench/tsql/syntax/statement_form.h"
#include "workbench/tsql/values/database.h"

namespace quillon::tsql {

// Looks names up and notes what was found.
class NotedLookup : public TableLookup {
 public:
  explicit NotedLookup(TableLookup& tables) : tables_(tables) {}

  std::shared_ptr<const Table> table(const ObjectName& name) override;
  std::optional<StoredObject> object(const ObjectName& name) override;
  std::string sysobjects(std::string_view database) const override;
  std::string sysindexes(std::string_view database) const override;

  struct Found {
    struct TableFound {
      ObjectName name;
      std::shared_ptr<const Table> table;
    };
    struct ObjectFound {
      ObjectName name;
      std::optional<StoredObject> object;
    };
    std::vector<TableFound> tables;
    std::vector<ObjectFound> objects;
    bool isWhole = true;  // false: something was asked that cannot be asked again by name

    // Whether the names stand for the same still.
    bool holds(TableLookup& tables) const;
  };
  Found take() { return std::move(found_); }

 private:
  TableLookup& tables_;
  mutable Found found_;
};

struct Translation {
  StatementKind kind = StatementKind::nothing;  // select, insert, update or remove
  Modification statement;                       // of a select only its SQL
  std::vector<Column> columns;                  // of a select
  StatementForm form;
  // Of each constant of the form, whether it is a parameter, and whether another one may stand in its place.
  std::vector<bool> isParameter, isFree;
  // A query of one row that says of each dependent key of the SQL whether rows are grouped by it; empty: there is none.
  std::string keysQuery;
  NotedLookup::Found names;
  int line = 0;                     // where the statement begins
  std::size_t begin = 0, rest = 0;  // how much of the batch stands before it and behind it, in bytes

  // Whether it is the translation of that form, as far as the text says it.
  bool fits(const StatementForm& other) const;
  // Takes over the binder's keys. False: the text has their marks for something else.
  bool takeKeys(const Parameters::DependentKeys& keys);
  // One of its SQL texts with those of the keys that `isKey` says.
  static std::string withKeys(std::string_view text, const std::vector<bool>& isKey);
};

// What one process keeps. Safe from several threads.
class Translations {
 public:
  // Most of what comes names a table of one run and comes once, so only a few are kept that have not been found again.
  static constexpr std::size_t mostNew = 32;
  static constexpr std::size_t mostProven = 224;
  static constexpr std::size_t longestSql = 64UL * 1024;  // so that all of them together stay below some 40 MiB

  static Translations& ofProcess();

  // Null when there is none that holds.
  std::shared_ptr<const Translation> find(const StatementForm& form, TableLookup& tables);
  void keep(std::shared_ptr<const Translation> translation);
  std::size_t size() const;

 private:
  struct Kept {
    std::shared_ptr<const Translation> translation;
    bool isProven = false;  // found at least once
  };
  using List = std::list<Kept>;

  void dropBeyond(List& list, std::size_t most);

  mutable std::mutex mutex_;
  List new_, proven_;                                                 // the one that was used last at the front
  std::unordered_multimap<std::string_view, List::iterator> byForm_;  // the views are into the translations
};

}  // namespace quillon::tsql
