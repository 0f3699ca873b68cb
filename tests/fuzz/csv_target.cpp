#include <memory>
#include <optional>
#include <sstream>
#include <string>
#include <vector>

#include "tests/fuzz/targets.h"
#include "workbench/account/account_error.h"
#include "workbench/account/csv.h"
#include "workbench/account/table_csv.h"
#include "workbench/account/transfer_progress.h"
#include "workbench/tsql/engine/engine.h"

namespace quillon::fuzz {

namespace {

using namespace account;

using Record = std::vector<std::optional<std::string>>;

std::vector<Record> recordsOf(const std::string& text) {
  std::istringstream in(text);
  CsvReader reader(in);
  std::vector<Record> records;
  std::int64_t line = 0;
  while (reader.next()) {
    require(reader.line() > line, "lines are counted upwards");
    line = reader.line();
    require(!reader.fields().empty(), "a record has a value at least");
    Record& record = records.emplace_back();
    for (const CsvField& field : reader.fields()) {
      require(field.line >= reader.line(), "a value stands in its record");
      record.push_back(field.text.empty() && !field.quoted ? std::nullopt : std::optional(field.text));
    }
  }
  return records;
}

// A line of names, as every file begins with, and behind it the records.
std::string written(const std::vector<Record>& records) {
  std::string text = "names\r\n";
  for (const Record& record : records) {
    for (std::size_t i = 0; i < record.size(); ++i) {
      if (i > 0) text += ',';
      appendCsv(text, record[i]);
    }
    text += "\r\n";
  }
  return text;
}

void checkRecords(const std::string& text) {
  try {
    const std::vector<Record> records = recordsOf(text);
    std::vector<Record> again = recordsOf(written(records));
    again.erase(again.begin());
    require(again == records, "what is written reads back as the same");
  } catch (const CsvError& error) {
    require(error.line() > 0, "an error has a line");
    require(*error.what() != '\0', "an error says what is wrong");
  }
}

// A table with a column of every type.
constexpr std::string_view table =
    "Create Table t(i int, b bigint, f bit, d decimal(18,6), w decimal(38,4), m money, r float, dt datetime, n "
    "nvarchar(10), v varchar(10) Not Null)";

std::string exported(tsql::Connection& connection) {
  std::ostringstream out;
  const TransferProgress nobody;
  RowCounter counter(nobody);
  writeTable(out, connection, tsql::storedSchema(connection).tables.front(), counter);
  return out.str();
}

// Empties the table and reads `text` into it.
void import(tsql::Connection& connection, const std::string& text) {
  connection.execute("Truncate Table t");
  std::istringstream in(text);
  const TransferProgress nobody;
  RowCounter counter(nobody);
  readTable(in, "t.csv", tsql::storedSchema(connection).tables.front(), connection, counter);
}

void checkImport(const std::string& text) {
  static const std::unique_ptr<tsql::Connection> connection = [] {
    auto opened = tsql::Connection::openInMemory();
    opened->execute(table);
    return opened;
  }();
  try {
    import(*connection, text);
  } catch (const AccountError& error) {
    require(std::string_view(error.what()).starts_with("t.csv, line "), "an error has its place");
    return;
  } catch (const tsql::SqlError& error) {
    throw BrokenPromise("a value that the table does not take is refused with its place, but: " + error.message());
  }
  const std::string first = exported(*connection);
  import(*connection, first);
  require(exported(*connection) == first, "an account that is taken elsewhere and back is the same");
}

}  // namespace

void checkCsv(std::string_view input) {
  const std::string text(input);
  checkRecords(text);
  checkImport(text);
  // Inputs rarely hold the table's names by chance.
  checkImport("i,b,f,d,w,m,r,dt,n,v\n" + text);
}

}  // namespace quillon::fuzz
