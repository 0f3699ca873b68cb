// What has been created in an account file, as it is declared: for whoever takes an account elsewhere.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "workbench/tsql/engine/catalog.h"
#include "workbench/tsql/engine/engine.h"

namespace quillon::tsql {

struct StoredIndex {
  std::string name;
  std::vector<std::string> columns;
  bool unique = false;
};

// A table as it is declared, with its indexes.
struct StoredTable : Table {
  std::vector<StoredIndex> indexes;  // those of Create Index, in the order in which they were made

  // The columns of the primary key; empty without one.
  std::vector<std::string> primaryKey() const;
};

// A view or a function.
struct StoredCode {
  bool isView = false;
  std::string database;
  std::string name;
  std::string text;             // the view's query, the function's expression
  std::string returnType = {};  // of a function
};

// Tables before the code that may read them, either in the order in which they were made.
struct StoredSchema {
  std::vector<StoredTable> tables;
  std::vector<StoredCode> code;
};

// Reads all of it, #temp tables apart. Throws SqlError when the file cannot be read.
StoredSchema storedSchema(Connection& connection);

// How a statement names an object: "[Inventory]", "orvsystem..[UA_Period]".
std::string writtenName(std::string_view database, std::string_view name);
// "[a], [b]"
std::string bracketedList(const std::vector<std::string>& columns);

// The statements that make these things again, in T-SQL that a server takes as well: every column says whether it takes
// NULL, because a server's own default depends on the client.
std::string createStatement(const StoredTable& table);
std::string createStatement(const StoredTable& table, const StoredIndex& index);
std::string createStatement(const StoredCode& code);

}  // namespace quillon::tsql
