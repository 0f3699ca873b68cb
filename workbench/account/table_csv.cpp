#include "workbench/account/table_csv.h"

#include <algorithm>
#include <optional>
#include <string_view>
#include <vector>

#include "frame/text.h"
#include "workbench/account/account_error.h"
#include "workbench/account/csv.h"
#include "workbench/account/table_rows.h"
#include "workbench/account/text_values.h"
#include "workbench/messages/account.h"
#include "workbench/messages/common.h"

namespace quillon::account {

namespace {

class TableReader {
 public:
  TableReader(std::istream& in, const std::string& fileName, const tsql::StoredTable& table)
      : fileName_(fileName), table_(table), reader_(in) {}

  // Writes the rows to the table.
  void read(tsql::Connection& connection, RowCounter& counter) {
    try {
      readHeader();
      readRows(connection, counter);
    } catch (const CsvError& error) {
      refuse(error.line(), error.field(), error.message());
    }
  }

 private:
  [[noreturn]] void refuse(std::int64_t line, std::size_t field, const Message& message) const {
    if (field >= columns_.size()) throw AccountError(messages::atColumn(fileName_, line, field + 1, message));
    throw AccountError(messages::atNamedColumn(fileName_, line, field + 1, columns_[field]->name, message));
  }

  void readHeader() {
    if (!reader_.next()) refuse(1, 0, messages::emptyCsvFile());
    std::vector<const tsql::TableColumn*> columns;
    for (const CsvField& field : reader_.fields()) {
      try {
        requireUtf8(field.text);
      } catch (const ValueError& error) {
        refuse(field.line, columns.size(), error.message());
      }
      const int place = table_.find(field.text);
      if (place < 0) {
        refuse(field.line, columns.size(), messages::csvUnknownColumn(quotedForMessage(field.text)));
      }
      const tsql::TableColumn* const column = &table_.columns[static_cast<std::size_t>(place)];
      if (std::ranges::find(columns, column) != columns.end())
        refuse(field.line, columns.size(), messages::csvColumnTwice(column->name));
      columns.push_back(column);
    }
    for (const tsql::TableColumn& column : table_.columns) {
      if (std::ranges::find(columns, &column) == columns.end())
        refuse(1, columns.size(), messages::csvColumnMissing(column.name));
    }
    columns_ = std::move(columns);
  }

  void readRows(tsql::Connection& connection, RowCounter& counter) {
    std::vector<std::string> names;
    for (const tsql::TableColumn* column : columns_)
      names.push_back(column->name);
    const auto writer = connection.bulkWriter(tsql::writtenName(table_.database, table_.name), names);
    std::vector<tsql::Value> row(columns_.size());
    for (; reader_.next(); counter.row()) {
      requireFieldForEachColumn();
      for (std::size_t i = 0; i < columns_.size(); ++i)
        readValue(i, row[i]);
      write(*writer, row);
    }
  }

  void requireFieldForEachColumn() const {
    const std::span<const CsvField> fields = reader_.fields();
    const std::string wanted = std::to_string(columns_.size());
    if (fields.size() < columns_.size()) {
      refuse(fields.back().line, fields.size(), messages::csvLineTooShort(wanted));
    }
    if (fields.size() > columns_.size()) {
      refuse(fields[columns_.size()].line, columns_.size(), messages::csvLineTooLong(wanted));
    }
  }

  // No value becomes null.
  void readValue(std::size_t place, tsql::Value& value) const {
    const CsvField& field = reader_.fields()[place];
    const tsql::TableColumn& column = *columns_[place];
    if (field.text.empty() && !field.quoted) {
      if (column.notNull) refuse(field.line, place, messages::csvValueNeeded());
      value.emplace<std::monostate>();
      return;
    }
    try {
      value = valueFromText(field.text, column);
    } catch (const ValueError& error) {
      refuse(field.line, place, error.message());
    }
  }

  void write(tsql::BulkWriter& writer, const std::vector<tsql::Value>& row) const {
    try {
      writer.write(row);
    } catch (const tsql::SqlError& error) {
      constexpr int brokenPrimaryKey = 2627, brokenUniqueKey = 2601;
      if (error.number() == brokenPrimaryKey) refuseKey(table_.primaryKey());
      if (error.number() == brokenUniqueKey) refuseKey(uniqueKey(error.token()));
      throw;
    }
  }

  // The unique key that begins with `column`.
  std::vector<std::string> uniqueKey(const std::string& column) const {
    for (const tsql::KeyDefinition& key : table_.keys) {
      if (!key.primary && equalIgnoringCase(key.columns.front(), column)) return key.columns;
    }
    for (const tsql::StoredIndex& index : table_.indexes) {
      if (index.unique && equalIgnoringCase(index.columns.front(), column)) return index.columns;
    }
    return {column};
  }

  [[noreturn]] void refuseKey(const std::vector<std::string>& key) const {
    std::string shown;
    std::optional<std::size_t> first;
    for (const std::string& name : key) {
      const auto place = static_cast<std::size_t>(
          std::ranges::find_if(columns_, [&](const auto* column) { return equalIgnoringCase(column->name, name); }) -
          columns_.begin());
      if (!first) first = place;
      shown += (shown.empty() ? "" : ", ") + name + " = " + quotedForMessage(reader_.fields()[place].text);
    }
    refuse(reader_.fields()[*first].line, *first, messages::csvKeyTwice(shown));
  }

  const std::string& fileName_;
  const tsql::StoredTable& table_;
  CsvReader reader_;
  std::vector<const tsql::TableColumn*> columns_;  // in the file's order; empty while the header is read
};

}  // namespace

void writeTable(std::ostream& out, tsql::Connection& connection, const tsql::StoredTable& table, RowCounter& counter) {
  constexpr std::string_view lineEnd = "\r\n";
  constexpr std::size_t blockSize = 65'536;
  std::string lines;
  const auto separate = [&lines](std::size_t column) {
    if (column > 0) lines += ',';
  };
  for (std::size_t i = 0; i < table.columns.size(); ++i) {
    separate(i);
    appendCsv(lines, table.columns[i].name);
  }
  lines += lineEnd;
  const std::unique_ptr<tsql::Cursor> cursor = connection.query(selectAllRows(table));
  for (; out && cursor->next(); counter.row()) {
    for (std::size_t i = 0; i < table.columns.size(); ++i) {
      separate(i);
      const tsql::Value& value = cursor->value(i);
      if (const auto* const text = std::get_if<std::string>(&value)) {
        appendCsvText(lines, *text, EmptyText::quoted);
      } else {
        tsql::appendText(lines, value);  // numbers and dates hold nothing that needs quotes
      }
    }
    lines += lineEnd;
    if (lines.size() < blockSize) continue;
    out << lines;
    lines.clear();
  }
  out << lines;
}

void readTable(std::istream& in, const std::string& fileName, const tsql::StoredTable& table,
               tsql::Connection& connection, RowCounter& counter) {
  TableReader(in, fileName, table).read(connection, counter);
}

}  // namespace quillon::account
