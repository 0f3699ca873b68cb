#include <algorithm>
#include <cctype>
#include <fstream>
#include <iterator>
#include <set>
#include <system_error>
#include <vector>

#include "workbench/account/partial_file.h"
#include "workbench/account/schema.h"
#include "workbench/account/table_csv.h"
#include "workbench/account/transfer.h"
#include "workbench/account/transfer_files.h"
#include "workbench/messages/account.h"
#include "workbench/messages/common.h"
#include "workbench/tsql/engine/stored_schema.h"
#include "workbench/tsql/values/utf8_path.h"

namespace quillon::account {

namespace {

std::filesystem::path inFolder(const std::filesystem::path& folder, std::string_view name) {
  return folder / pathFromUtf8(name);
}

void requireFolder(const std::filesystem::path& folder) {
  std::error_code error;
  if (!std::filesystem::is_directory(folder, error)) {
    throw AccountError(messages::noExportFolder(utf8FromPath(folder)));
  }
}

std::ifstream openToRead(const std::filesystem::path& path) {
  std::ifstream file(path, std::ios::binary);
  if (!file) throw AccountError(messages::cannotReadOfFolder(utf8FromPath(path)));
  return file;
}

// --- schema.sql -----------------------------------------------------------------------------------------------------

class SchemaScript {
 public:
  SchemaScript(tsql::Connection& connection, const std::filesystem::path& path) : connection_(connection), path_(path) {
    std::ifstream file = openToRead(path);
    text_.assign(std::istreambuf_iterator<char>(file), {});
    constexpr std::string_view byteOrderMark = "\xEF\xBB\xBF";
    if (text_.starts_with(byteOrderMark)) text_.erase(0, byteOrderMark.size());
    located(1, [this] { statements_ = tsql::statementsOf(text_); });
  }

  // Unique indexes come with the tables, so that the row that breaks one can be told; the others when the rows are there,
  // because that is quicker.
  void beforeRows() {
    for (const tsql::ScriptStatement& statement : statements_) {
      if (statement.kind != Kind::createIndex) run(statement);
    }
  }
  void afterRows() {
    for (const tsql::ScriptStatement& statement : statements_) {
      if (statement.kind == Kind::createIndex) run(statement);
    }
  }

 private:
  using Kind = tsql::ScriptStatement::Kind;

  void run(const tsql::ScriptStatement& statement) {
    if (statement.kind == Kind::other) {
      refuse(statement.line, statement.token, messages::otherStatement());
    }
    located(statement.line, [&] { connection_.execute(statement.text); });
  }

  // Runs `action`, whose errors count lines from `firstLine` of the file.
  template <typename Action>
  void located(int firstLine, Action action) {
    try {
      action();
    } catch (const tsql::SqlError& error) {
      refuse(firstLine + std::max(error.line(), 1) - 1, error.token(), messages::correctStatement(error.message()));
    }
  }

  // `token` tells the column when the line has it.
  [[noreturn]] void refuse(int line, std::string_view token, const Message& message) const {
    std::string_view rest = text_;
    for (int i = 1; i < line; ++i)
      rest.remove_prefix(std::min(rest.find('\n') + 1, rest.size()));
    const std::size_t column = placeOf(token, rest.substr(0, rest.find('\n')));
    if (column == std::string_view::npos) throw AccountError(messages::atLine(utf8FromPath(path_), line, message));
    throw AccountError(messages::atColumn(utf8FromPath(path_), line, column + 1, message));
  }

  // Where `token` stands in the line and is not a part of a word.
  static std::size_t placeOf(std::string_view token, std::string_view line) {
    const auto isWordAt = [line](std::size_t place) {
      return place < line.size() && (std::isalnum(static_cast<unsigned char>(line[place])) != 0 || line[place] == '_');
    };
    if (token.empty()) return std::string_view::npos;
    std::size_t place = line.find(token);
    while (place != std::string_view::npos) {
      const std::size_t end = place + token.size();
      const bool partOfWord =
          isWordAt(place) && isWordAt(end - 1) && ((place > 0 && isWordAt(place - 1)) || isWordAt(end));
      if (!partOfWord) break;
      place = line.find(token, place + 1);
    }
    return place;
  }

  tsql::Connection& connection_;
  std::filesystem::path path_;
  std::string text_;
  std::vector<tsql::ScriptStatement> statements_;
};

// --- The folder -----------------------------------------------------------------------------------------------------

void requireAccountTables(tsql::Connection& connection, const std::filesystem::path& schemaFile) {
  for (const TableDefinition& table : tables()) {
    if (connection.describe(table.name).empty()) {
      throw AccountError(messages::schemaLacksTable(utf8FromPath(schemaFile), table.name));
    }
  }
}

void requireTableForEachFile(const tsql::StoredSchema& schema, const std::filesystem::path& folder) {
  std::set<std::string> known;
  for (const tsql::StoredTable& table : schema.tables)
    known.insert(csvFileName(table));
  for (const auto& entry : std::filesystem::directory_iterator(folder)) {
    const std::string name = utf8FromPath(entry.path().filename());
    if (name.ends_with(".csv") && !known.contains(name)) {
      throw AccountError(messages::fileOfNoTable(utf8FromPath(entry.path())));
    }
  }
}

}  // namespace

TransferCounts importAccount(const std::filesystem::path& file, const std::filesystem::path& folder,
                             const TransferProgress& progress) {
  PartialFile partial(file);
  requireFolder(folder);
  TransferCounts counts;
  RowCounter counter(progress);
  try {
    const std::unique_ptr<tsql::Connection> connection =
        tsql::Connection::open(partial.path(), tsql::OpenMode::createNew);
    connection->begin();
    const std::filesystem::path schemaFile = inFolder(folder, schemaFileName);
    SchemaScript script(*connection, schemaFile);
    script.beforeRows();
    requireAccountTables(*connection, schemaFile);
    const tsql::StoredSchema schema = storedSchema(*connection);
    requireTableForEachFile(schema, folder);
    for (const tsql::StoredTable& table : schema.tables) {
      const std::filesystem::path path = inFolder(folder, csvFileName(table));
      std::ifstream csv = openToRead(path);
      readTable(csv, utf8FromPath(path), table, *connection, counter);
      ++counts.tables;
    }
    if (progress.indexes) progress.indexes();
    script.afterRows();
    connection->commit();
  } catch (const tsql::SqlError& error) {
    throw AccountError(messages::cannotWriteBecause(utf8FromPath(file), error.message()));
  }
  removeOrphanedJournals(file);
  partial.complete();
  counts.rows = counter.rows();
  return counts;
}

}  // namespace quillon::account
