// Rows read and written as records stand beside SQLite's own statements on the same table.
#include "workbench/tsql/engine/stored_rows.h"

#include <gmock/gmock.h>
#include <sqlite3.h>

#include <cstdint>
#include <filesystem>
#include <initializer_list>
#include <map>
#include <random>
#include <string>
#include <string_view>
#include <system_error>
#include <vector>

#include "workbench/tsql/engine/engine.h"
#include "workbench/tsql/engine/record.h"
#include "workbench/tsql/engine/sqlite.h"
#include "workbench/tsql/values/sql_error.h"

namespace quillon::tsql {
namespace {

namespace fs = std::filesystem;
using ::testing::ElementsAre;
using Use = StoredRows::Use;

// A file with a table of two columns, a number and a text, and the schema "other" in a second file.
class RowsAsRecords : public ::testing::Test {
 protected:
  RowsAsRecords() {
    fs::create_directories(folder_);
    database_ = open();
    runSqlite(database_,
              "ATTACH '" + (folder_ / "other").generic_string() +
                  "' AS other; CREATE TABLE t (n INTEGER, s TEXT); CREATE TABLE other.t (n INTEGER, s TEXT); "
                  "CREATE TEMP TABLE own (n INTEGER, s TEXT)");
  }
  ~RowsAsRecords() override {
    sqlite3_close(database_);
    std::error_code ignored;
    fs::remove_all(folder_, ignored);
  }

  sqlite3* open() const {
    sqlite3* database = nullptr;
    sqlite3_open((folder_ / "main").generic_string().c_str(), &database);
    runSqlite(database, "PRAGMA synchronous = OFF");
    return database;
  }

  std::string record(std::int64_t number, std::string_view text) {
    Prepared values(database_, "SELECT ?1, ?2");
    values.bind(1, number);
    values.bind(2, text);
    RecordBuilder builder;
    if (values.step()) {
      for (const int column : {0, 1})
        builder.add(sqlite3_column_value(values.handle(), column));
    }
    return std::string(builder.record());
  }
  // "rowid:n:s", of each row in their order.
  std::vector<std::string> rows(const std::string& table = "main.t") {
    std::vector<std::string> result;
    Prepared all(database_, "SELECT rowid || ':' || n || ':' || s FROM " + table + " ORDER BY rowid");
    while (all.step())
      result.push_back(all.text(0));
    return result;
  }
  std::string integrity(const std::string& schema = "main") {
    Prepared check(database_, "PRAGMA " + schema + ".integrity_check");
    return check.step() ? check.text(0) : "";
  }
  // The table as the catalog would know it.
  static Table declared(const std::string& name, const std::string& schema = "main") {
    static const std::map<std::string, std::vector<std::string>> others = {{"numberless", {"a", "b"}},
                                                                           {"computed", {"a", "b"}},
                                                                           {"indexed", {"a", "b"}},
                                                                           {"watched", {"a"}},
                                                                           {"keyed", {"a"}}};
    Table table;
    table.schema = schema;
    table.stored = name;
    for (const std::string& column : others.contains(name) ? others.at(name) : std::vector<std::string>{"n", "s"})
      table.columns.emplace_back().name = column;
    return table;
  }
  bool opens(const std::string& table, Use use, const std::string& schema = "main") {
    const Savepoint savepoint(database_);
    return static_cast<bool>(StoredRows(database_, declared(table, schema), use));
  }

  const fs::path folder_ = fs::temp_directory_path() / "quillon_stored_rows_test";
  sqlite3* database_ = nullptr;
};

TEST_F(RowsAsRecords, AreReadByTheirNumbers) {
  runSqlite(database_,
            "INSERT INTO t(rowid, n, s) VALUES (1, 7, 'one'), (5, 8, 'five'), (-3, 9, 'less'), "
            "(9223372036854775807, 0, 'last')");
  const Savepoint savepoint(database_);
  StoredRows rows(database_, declared("t"), Use::read);
  ASSERT_TRUE(rows);
  EXPECT_EQ(rows.at(5), record(8, "five"));
  EXPECT_EQ(rows.at(1), record(7, "one"));
  EXPECT_EQ(rows.at(-3), record(9, "less"));
  for (const std::int64_t missing : {2, 0, 6, -4})
    EXPECT_EQ(rows.at(missing), "") << missing;
  EXPECT_EQ(rows.at(INT64_MAX), record(0, "last"));
  EXPECT_EQ(rows.last(), INT64_MAX);
}

TEST_F(RowsAsRecords, OfAnEmptyTableAreNone) {
  const Savepoint savepoint(database_);
  StoredRows rows(database_, declared("t"), Use::write);
  ASSERT_TRUE(rows);
  EXPECT_EQ(rows.last(), 0);
  EXPECT_EQ(rows.at(1), "");
  rows.add(1, record(4, "first"));
  EXPECT_EQ(rows.last(), 1);
  EXPECT_EQ(rows.at(1), record(4, "first"));
}

TEST_F(RowsAsRecords, ThatLieOnSeveralPagesAreReadWhole) {
  const std::string text(300'000, 'x');
  Prepared insert(database_, "INSERT INTO t VALUES (?1, ?2)");
  for (const std::size_t length : std::initializer_list<std::size_t>{300'000, 10, 9'000, 250'000}) {
    insert.bind(1, static_cast<std::int64_t>(length));
    insert.bind(2, std::string_view(text).substr(0, length));
    insert.step();
    insert.reset();
  }
  const Savepoint savepoint(database_);
  StoredRows rows(database_, declared("t"), Use::read);
  for (const std::int64_t number : {3, 1, 2, 4, 1}) {
    const std::int64_t length =
        std::vector<std::int64_t>{300'000, 10, 9'000, 250'000}[static_cast<std::size_t>(number - 1)];
    EXPECT_EQ(rows.at(number), record(length, std::string_view(text).substr(0, static_cast<std::size_t>(length))));
  }
}

// The rows that the table is to have are kept beside it.
TEST_F(RowsAsRecords, OfAllLengthsAreWhatSqliteReadsAfterwards) {
  std::map<std::int64_t, std::string> texts;
  std::mt19937 random(7);
  const auto text = [&] {
    const std::size_t lengths[] = {random() % 20, random() % 300, random() % 3000, random() % 12'000,
                                   random() % 70'000};
    return std::string(lengths[random() % (random() % 10 == 0 ? 5 : 3)], static_cast<char>('a' + random() % 26));
  };
  for (int round = 0; round < 6; ++round) {
    Savepoint savepoint(database_);
    {
      StoredRows rows(database_, declared("t"), Use::write);
      ASSERT_TRUE(rows);
      std::int64_t last = rows.last();
      EXPECT_EQ(last, texts.empty() ? 0 : texts.rbegin()->first);
      for (int i = 0; i < 700; ++i) {
        // Now and then a number is left out.
        last += 1 + (random() % 9 == 0 ? 1 : 0);
        texts[last] = text();
        rows.add(last, record(last, texts[last]));
        if (random() % 3 != 0) continue;
        // Replaced by a longer or a shorter one.
        const auto changed = texts.lower_bound(static_cast<std::int64_t>(random()) % last);
        changed->second = text();
        rows.replace(changed->first, record(changed->first, changed->second));
        EXPECT_EQ(rows.at(changed->first), record(changed->first, changed->second));
      }
    }
    savepoint.keep();
    // SQLite's own changes come between.
    runSqlite(database_, "DELETE FROM t WHERE rowid % 5 = " + std::to_string(round % 5));
    std::erase_if(texts, [round](const auto& row) { return row.first % 5 == round % 5; });
  }
  std::vector<std::string> expected;
  expected.reserve(texts.size());
  for (const auto& [number, content] : texts)
    expected.push_back(std::to_string(number) + ':' + std::to_string(number) + ':' + content);
  EXPECT_EQ(rows(), expected);
  EXPECT_EQ(integrity(), "ok");
  // Another connection reads them from the file.
  sqlite3* const other = open();
  {
    Prepared count(other, "SELECT count(*), sum(length(s)) FROM t");
    Prepared own(database_, "SELECT count(*), sum(length(s)) FROM t");
    ASSERT_TRUE(count.step());
    ASSERT_TRUE(own.step());
    EXPECT_EQ(count.integer(0), own.integer(0));
    EXPECT_EQ(count.integer(1), own.integer(1));
  }
  sqlite3_close(other);
}

TEST_F(RowsAsRecords, AreReplacedWhileAQueryReadsThem) {
  Prepared insert(database_, "INSERT INTO t VALUES (?1, 'short')");
  for (std::int64_t n = 1; n <= 2000; ++n) {
    insert.bind(1, n);
    insert.step();
    insert.reset();
  }
  Savepoint savepoint(database_);
  std::int64_t count = 0;
  {
    StoredRows rows(database_, declared("t"), Use::write);
    Prepared read(database_, "SELECT rowid, n FROM t");
    while (read.step()) {
      EXPECT_EQ(read.integer(1), ++count);
      rows.replace(read.integer(0), record(read.integer(1), std::string(static_cast<std::size_t>(count) % 700, 'y')));
    }
  }
  savepoint.keep();
  EXPECT_EQ(count, 2000);
  Prepared check(database_, "SELECT count(*) FROM t WHERE length(s) = n % 700 AND n = rowid");
  ASSERT_TRUE(check.step());
  EXPECT_EQ(check.integer(0), 2000);
  EXPECT_EQ(integrity(), "ok");
}

TEST_F(RowsAsRecords, OfTemporaryTablesAndOtherSchemasAreWritten) {
  for (const auto& [schema, table] : {std::pair{"temp", "own"}, {"other", "t"}, {"main", "t"}}) {
    Savepoint savepoint(database_);
    {
      StoredRows rows(database_, declared(table, schema), Use::write);
      ASSERT_TRUE(rows) << schema;
      rows.add(3, record(30, schema));
      rows.add(4, record(40, table));
      rows.replace(3, record(31, schema));
    }
    savepoint.keep();
    const std::string name = std::string(schema) + '.' + table;
    EXPECT_THAT(rows(name), ElementsAre(std::string("3:31:") + schema, std::string("4:40:") + table));
    EXPECT_EQ(integrity(schema), "ok");
  }
}

TEST_F(RowsAsRecords, AreUndoneWithTheirSavepoint) {
  runSqlite(database_, "INSERT INTO t VALUES (1, 'stays')");
  {
    const Savepoint undone(database_);
    StoredRows rows(database_, declared("t"), Use::write);
    rows.replace(1, record(2, std::string(9000, 'z')));
    for (std::int64_t number = 2; number < 500; ++number)
      rows.add(number, record(number, std::string(static_cast<std::size_t>(number), 'z')));
  }
  EXPECT_THAT(rows(), ElementsAre("1:1:stays"));
  // The same within another that is kept, after a change of SQLite's own and before one.
  {
    Savepoint kept(database_);
    runSqlite(database_, "INSERT INTO t VALUES (2, 'too')");
    {
      const Savepoint undone(database_);
      StoredRows rows(database_, declared("t"), Use::write);
      rows.replace(2, record(0, "gone"));
      rows.add(3, record(0, "gone"));
    }
    {
      StoredRows rows(database_, declared("t"), Use::write);
      rows.add(3, record(3, "three"));
    }
    runSqlite(database_, "INSERT INTO t VALUES (4, 'four')");
    kept.keep();
  }
  EXPECT_THAT(rows(), ElementsAre("1:1:stays", "2:2:too", "3:3:three", "4:4:four"));
  EXPECT_EQ(integrity(), "ok");
}

TEST_F(RowsAsRecords, OfAnythingButAPlainTableAreNone) {
  runSqlite(database_,
            "CREATE VIEW v AS SELECT * FROM t; CREATE TABLE numberless (a TEXT PRIMARY KEY, b) WITHOUT ROWID; "
            "CREATE TABLE computed (a INTEGER, b AS (a + 1)); CREATE TABLE indexed (a INTEGER, b TEXT); "
            "CREATE INDEX i ON indexed (a); CREATE TABLE watched (a INTEGER); "
            "CREATE TRIGGER r AFTER INSERT ON watched BEGIN SELECT 1; END; CREATE TABLE keyed (a TEXT UNIQUE)");
  for (const char* const none : {"v", "numberless", "computed", "nowhere"}) {
    EXPECT_FALSE(opens(none, Use::read)) << none;
    EXPECT_FALSE(opens(none, Use::write)) << none;
  }
  for (const char* const readable : {"indexed", "watched", "keyed"}) {
    EXPECT_TRUE(opens(readable, Use::read)) << readable;
    EXPECT_FALSE(opens(readable, Use::write)) << readable;
  }
  EXPECT_TRUE(opens("t", Use::write));
  EXPECT_TRUE(opens("T", Use::write)) << "names are alike in any case";
  EXPECT_FALSE(opens("t", Use::read, "temp"));
  EXPECT_FALSE(opens("t", Use::read, "nowhere"));
  runSqlite(database_, "DROP INDEX i");
  EXPECT_TRUE(opens("indexed", Use::write));
}

TEST_F(RowsAsRecords, AreNoneWhereAnotherConnectionHasChangedTheSchema) {
  EXPECT_TRUE(opens("t", Use::write));
  sqlite3* const other = open();
  runSqlite(other, "DROP TABLE t; CREATE TABLE first (x); CREATE TABLE t (n INTEGER, s TEXT); CREATE INDEX i ON t (n)");
  sqlite3_close(other);
  EXPECT_FALSE(opens("t", Use::write));
  EXPECT_FALSE(opens("t", Use::read));
  // Whoever runs a statement first has read it anew.
  EXPECT_THAT(rows(), ElementsAre());
  EXPECT_TRUE(opens("t", Use::read));
  EXPECT_FALSE(opens("t", Use::write)) << "there is an index now";
}

TEST_F(RowsAsRecords, OfATableThatIsAnotherByNowAreNone) {
  const Savepoint savepoint(database_);
  Table fewer = declared("t"), renamed = fewer, numbered = fewer;
  fewer.columns.pop_back();
  renamed.columns[1].name = "other";
  numbered.rowidColumn = 0;
  for (const Table& table : {fewer, renamed, numbered})
    EXPECT_FALSE(StoredRows(database_, table, Use::read));
  EXPECT_TRUE(StoredRows(database_, declared("t"), Use::read));
}

TEST_F(RowsAsRecords, OfATableWhoseKeyIsTheNumberHaveNullThere) {
  runSqlite(database_,
            "DROP TABLE t; CREATE TABLE t (n INTEGER, s TEXT, PRIMARY KEY (n)); INSERT INTO t VALUES (7, 'x')");
  EXPECT_FALSE(opens("t", Use::read));
  Table keyed = declared("t");
  keyed.rowidColumn = 0;
  const Savepoint savepoint(database_);
  StoredRows rows(database_, keyed, Use::read);
  ASSERT_TRUE(rows);
  RecordFields fields;
  fields.read(rows.at(7));
  EXPECT_TRUE(fields.isNull(0));
  EXPECT_FALSE(fields.isNull(1));
}

TEST_F(RowsAsRecords, AreRefusedOutsideOfSavepoints) {
  for (const Use use : {Use::read, Use::write})
    EXPECT_THROW(StoredRows(database_, declared("t"), use), SqlError);
  EXPECT_TRUE(opens("t", Use::write)) << "the connection goes on";
}

TEST_F(RowsAsRecords, AreReadWhileAStatementReadsTheFile) {
  runSqlite(database_, "INSERT INTO t VALUES (1, 'one')");
  Prepared reading(database_, "SELECT 1 FROM t");
  ASSERT_TRUE(reading.step());
  StoredRows rows(database_, declared("t"), Use::read);
  ASSERT_TRUE(rows);
  EXPECT_EQ(rows.at(1), record(1, "one"));
  EXPECT_THROW(StoredRows(database_, declared("t"), Use::write), SqlError);
}

TEST_F(RowsAsRecords, AreRefusedWhereTheFileMayOnlyBeRead) {
  sqlite3* reader = nullptr;
  ASSERT_EQ(sqlite3_open_v2((folder_ / "main").generic_string().c_str(), &reader, SQLITE_OPEN_READONLY, nullptr),
            SQLITE_OK);
  {
    const Savepoint savepoint(reader);
    Prepared count(reader, "SELECT count(*) FROM t");
    count.step();
    EXPECT_TRUE(StoredRows(reader, declared("t"), Use::read));
    try {
      const StoredRows opened(reader, declared("t"), Use::write);
      ADD_FAILURE() << "it was opened";
    } catch (const SqlError& error) {
      EXPECT_EQ(error.number(), 3906);
    }
  }
  sqlite3_close(reader);
}

TEST_F(RowsAsRecords, AreRefusedWhileAnotherConnectionWritesTheFile) {
  sqlite3* const other = open();
  runSqlite(other, "BEGIN IMMEDIATE");
  {
    const Savepoint savepoint(database_);
    EXPECT_TRUE(StoredRows(database_, declared("t"), Use::read));
    EXPECT_THROW(StoredRows(database_, declared("t"), Use::write), FileBusy);
  }
  runSqlite(other, "COMMIT");
  sqlite3_close(other);
  EXPECT_TRUE(opens("t", Use::write));
}

// A query that an index could answer alone gives the rows in the index's order, and in that of the table here.
TEST_F(RowsAsRecords, ComeInTheirOrderWhereItIsAskedFor) {
  runSqlite(database_, "CREATE INDEX i ON t (n); INSERT INTO t VALUES (3, 'a'), (1, 'b'), (2, 'c')");
  const auto numbers = [&] {
    std::string all;
    Prepared query(database_, "SELECT n FROM t");
    while (query.step())
      all += query.text(0);
    return all;
  };
  EXPECT_EQ(numbers(), "123");
  {
    const RowsAsStored inTheirOrder(database_);
    EXPECT_EQ(numbers(), "312");
  }
  EXPECT_EQ(numbers(), "123");
}

}  // namespace
}  // namespace quillon::tsql
