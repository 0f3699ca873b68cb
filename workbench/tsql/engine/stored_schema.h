// What has been created in an account file, as it is declared, and the statements that create it again: for whoever
// takes an account elsewhere. With engine.h the face of the engine.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "workbench/tsql/engine/engine.h"
#include "workbench/tsql/values/declared_table.h"

namespace quillon::tsql {

struct StoredIndex {
  std::string name;
  std::vector<std::string> columns;
  bool unique = false;
};

// A table as it is declared, with its indexes.
struct StoredTable : DeclaredTable {
  std::vector<StoredIndex> indexes;  // those of Create Index, in the order in which they were made
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

// The statements that create these again, in T-SQL that a server takes as well: every column says whether it takes NULL,
// because a server's own default depends on the client.
std::string createStatement(const StoredTable& table);
std::string createStatement(const StoredTable& table, const StoredIndex& index);
std::string createStatement(const StoredCode& code);

// One statement of a script.
struct ScriptStatement {
  enum class Kind { createTable, createIndex, createUniqueIndex, createView, createFunction, other };

  Kind kind = Kind::other;
  std::string text;
  int line = 0;       // where it begins in the script, from 1
  std::string token;  // its first word
};

// The statements of a script in order. Throws SqlError when it is no T-SQL.
std::vector<ScriptStatement> statementsOf(std::string_view script);

}  // namespace quillon::tsql
