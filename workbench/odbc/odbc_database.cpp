#include "workbench/odbc/odbc_database.h"

#include "frame/text.h"
#include "workbench/odbc/columns.h"
#include "workbench/odbc/link.h"

namespace quillon::odbc {

namespace {

// Reads the present row.
void readRow(Batch& batch, std::span<const tsql::Column> columns, std::vector<tsql::Value>& values) {
  values.clear();
  for (std::size_t i = 0; i < columns.size(); ++i)
    values.push_back(valueOf(batch, i, columns[i]));
}

// The rows of a batch's first result set; none when it has no such.
class OdbcCursor final : public tsql::Cursor {
 public:
  OdbcCursor(std::shared_ptr<Link> link, std::string_view sql) : batch_(std::move(link), sql) {
    if (batch_.hasRows() || batch_.nextRows()) columns_ = columnsOf(batch_);
    ended_ = columns_.empty();
  }

  std::span<const tsql::Column> columns() const override { return columns_; }
  bool next() override {
    if (ended_) return false;
    if (batch_.fetch()) {
      readRow(batch_, columns_, values_);
      return true;
    }
    ended_ = true;
    // What comes behind the rows may still fail.
    while (batch_.nextResult()) {
    }
    return false;
  }
  const tsql::Value& value(std::size_t column) const override { return values_[column]; }

 private:
  Batch batch_;
  std::vector<tsql::Column> columns_;
  std::vector<tsql::Value> values_;
  bool ended_ = false;
};

class OdbcDatabase final : public tsql::Database {
 public:
  explicit OdbcDatabase(std::shared_ptr<Link> link) : link_(std::move(link)) {}

  void run(std::string_view sql, tsql::ResultSink& sink) override {
    Batch batch(link_, sql);
    std::vector<tsql::Value> values;
    do {
      std::int64_t count = 0;
      if (batch.hasRows()) {
        const std::vector<tsql::Column> columns = columnsOf(batch);
        sink.columns(columns);
        for (; batch.fetch(); ++count) {
          readRow(batch, columns, values);
          sink.row(values);
        }
      } else {
        count = batch.rowCount();
      }
      if (count >= 0) sink.rowsAffected(count);
    } while (batch.nextResult());
  }

  std::int64_t execute(std::string_view sql) override {
    Batch batch(link_, sql);
    std::int64_t affected = -1;
    do {
      const std::int64_t count = batch.hasRows() ? -1 : batch.rowCount();
      if (count >= 0) affected = count;
    } while (batch.nextResult());
    return affected;
  }

  std::unique_ptr<tsql::Cursor> query(std::string_view sql) override {
    return std::make_unique<OdbcCursor>(link_, sql);
  }

  std::vector<tsql::Column> describe(std::string_view table) override {
    try {
      Batch batch(link_, "Select Top 0 * From " + std::string(table));
      return columnsOf(batch);
    } catch (const tsql::ConnectionLost&) {
      throw;
    } catch (const tsql::SqlError& error) {
      // SQL Server's number; others may have another one.
      constexpr int noSuchObject = 208;
      if (error.number() == noSuchObject || !isThere(table)) return {};
      throw;
    }
  }

  std::vector<std::string> tables(std::string_view database) override {
    const std::string qualifier = database.empty() ? "" : std::string(database) + "..";
    OdbcCursor rows(link_, "Select name From " + qualifier + "sysobjects Where xtype = N'U' Order By name");
    std::vector<std::string> names;
    while (rows.next())
      names.push_back(tsql::toText(rows.value(0)).value_or(""));
    return names;
  }

 private:
  // Whether there is an object of that name.
  bool isThere(std::string_view name) {
    std::string sent = link_->sent(name);
    replaceAll(sent, "'", "''");
    OdbcCursor rows(link_, "Select object_id(N'" + sent + "')");
    return rows.next() && !tsql::isNull(rows.value(0));
  }

  std::shared_ptr<Link> link_;
};

// What the server says of itself; nothing when it does not know the question.
std::string versionOf(tsql::Database& database) {
  try {
    const auto rows = database.query("Select @@Version As version");
    return rows->next() ? tsql::toText(rows->value(0)).value_or("") : "";
  } catch (const tsql::ConnectionLost&) {
    throw;
  } catch (const tsql::SqlError&) {
    return "";
  }
}

}  // namespace

std::unique_ptr<tsql::Database> connect(const ConnectionString& connectionString, ConnectOptions options) {
  const auto link = std::make_shared<Link>(connectionString, std::move(options));
  auto database = std::make_unique<OdbcDatabase>(link);
  // Some drivers have the server cut long texts.
  database->execute("Set TextSize 2147483647");
  link->setEngine({versionOf(*database), connectionString.valueOf(systemTablesKeyword)});
  return database;
}

}  // namespace quillon::odbc
