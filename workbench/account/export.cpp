#include <array>
#include <cstdio>
#include <fstream>
#include <system_error>
#include <utility>
#include <vector>

#include "workbench/account/partial_file.h"
#include "workbench/account/table_csv.h"
#include "workbench/account/transfer.h"
#include "workbench/account/transfer_files.h"
#include "workbench/messages/account.h"
#include "workbench/messages/common.h"
#include "workbench/tsql/engine/stored_schema.h"
#include "workbench/tsql/values/utf8_path.h"

namespace quillon::account {

namespace {

// A folder that is being filled: emptied again unless it becomes complete. A file that is there from the first to the
// last marks it as unfinished: what a killed export left is told from a folder that holds something else, and the next
// export takes it away.
class NewFolder {
 public:
  explicit NewFolder(std::filesystem::path folder) : folder_(std::move(folder)) {
    std::error_code error;
    made_ = std::filesystem::create_directories(folder_, error);
    if (!error) clearUnfinished();
    if (!error && !std::filesystem::is_empty(folder_, error) && !error) {
      throw AccountError(messages::folderHoldsFiles(utf8FromPath(folder_)));
    }
    if (error) throw AccountError(messages::cannotWriteFolder(utf8FromPath(folder_), error.message()));
  }
  NewFolder(const NewFolder&) = delete;
  NewFolder& operator=(const NewFolder&) = delete;
  ~NewFolder() {
    if (complete_) return;
    std::error_code ignored;
    for (auto file = files_.rbegin(); file != files_.rend(); ++file)
      std::filesystem::remove(*file, ignored);
    if (made_) std::filesystem::remove(folder_, ignored);
  }

  // The first is the mark.
  const std::filesystem::path& add(std::string_view name) {
    files_.push_back(inFolder(name));
    return files_.back();
  }
  // The mark, which has its content by now, gets the name `name`.
  void complete(std::string_view name) {
    std::error_code error;
    std::filesystem::rename(files_.front(), inFolder(name), error);
    if (error) throw AccountError(messages::cannotWriteBecause(utf8FromPath(inFolder(name)), error.message()));
    complete_ = true;
  }

 private:
  std::filesystem::path inFolder(std::string_view name) const { return folder_ / pathFromUtf8(name); }
  void clearUnfinished() const {
    std::error_code error;
    const std::filesystem::path mark = inFolder(unfinishedSchemaFileName);
    if (!std::filesystem::exists(mark, error)) return;
    for (const auto& entry : std::filesystem::directory_iterator(folder_, error))
      if (entry.path().extension() == ".csv") std::filesystem::remove(entry.path(), error);
    std::filesystem::remove(mark, error);
  }

  std::filesystem::path folder_;
  std::vector<std::filesystem::path> files_;
  bool made_ = false;
  bool complete_ = false;
};

template <typename Writing>
void writeFile(const std::filesystem::path& path, Writing writing) {
  std::ofstream file(path, std::ios::binary);
  if (file) writing(file);
  file.close();
  if (!file) {
    throw AccountError(messages::cannotWrite(utf8FromPath(path)));
  }
}

// Tables before their indexes, both before the code that may read them.
void writeSchema(std::ostream& out, const tsql::StoredSchema& schema) {
  for (const tsql::StoredTable& table : schema.tables) {
    out << createStatement(table) << ";\n";
    for (const tsql::StoredIndex& index : table.indexes)
      out << createStatement(table, index) << ";\n";
  }
  for (const tsql::StoredCode& code : schema.code)
    out << createStatement(code) << ";\n";
}

}  // namespace

std::string csvFileName(const tsql::DeclaredTable& table) {
  constexpr unsigned char firstPrintable = 0x20;
  std::string name;
  for (const char character : (table.database.empty() ? "" : table.database + "..") + table.name) {
    const bool refused = static_cast<unsigned char>(character) < firstPrintable ||
                         std::string_view("<>:\"/\\|?*%").find(character) != std::string_view::npos;
    std::array<char, 4> code{};
    if (refused) std::snprintf(code.data(), code.size(), "%%%02X", static_cast<unsigned>(character));
    name += refused ? std::string(code.data()) : std::string(1, character);
  }
  return name + ".csv";
}

TransferCounts exportAccount(tsql::Connection& connection, const std::filesystem::path& folder,
                             const TransferProgress& progress) {
  NewFolder target(folder);
  const std::filesystem::path schemaFile = target.add(unfinishedSchemaFileName);
  writeFile(schemaFile, [](std::ostream&) {});
  TransferCounts counts;
  RowCounter counter(progress);
  // One transaction: what is read is the account of one moment.
  connection.begin();
  const tsql::StoredSchema schema = storedSchema(connection);
  for (const tsql::StoredTable& table : schema.tables) {
    writeFile(target.add(csvFileName(table)), [&](std::ostream& out) { writeTable(out, connection, table, counter); });
    ++counts.tables;
  }
  writeFile(schemaFile, [&](std::ostream& out) { writeSchema(out, schema); });
  connection.commit();
  counts.rows = counter.rows();
  // Last, so that nothing is missing where it stands.
  target.complete(schemaFileName);
  return counts;
}

}  // namespace quillon::account
