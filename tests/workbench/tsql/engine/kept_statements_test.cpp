// Statements that are translated once and kept. A batch with a comment is read anew each time, so what a kept statement
// gives is compared with that.
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sqlite3.h>

#include <array>
#include <filesystem>
#include <random>
#include <string>
#include <thread>
#include <vector>

#include "workbench/tsql/engine/engine.h"
#include "workbench/tsql/engine/statement_pool.h"
#include "workbench/tsql/engine/translation.h"
#include "workbench/tsql/values/sql_error.h"

namespace quillon::tsql {
namespace {

namespace fs = std::filesystem;
using ::testing::Each;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

// The rows of a query, their values separated by blanks.
std::vector<std::string> rows(Database& database, const std::string& query) {
  std::vector<std::string> result;
  const auto cursor = database.query(query);
  while (cursor->next()) {
    std::string row;
    for (std::size_t i = 0; i < cursor->columns().size(); ++i)
      row += (i == 0 ? "" : " ") + toText(cursor->value(i)).value_or("null");
    result.push_back(std::move(row));
  }
  return result;
}

// The text with `value` in place of each `mark`.
std::string put(std::string text, std::string_view value, char mark = '$') {
  for (std::size_t at = text.find(mark); at != std::string::npos; at = text.find(mark, at + value.size()))
    text.replace(at, 1, value);
  return text;
}

int errorOf(Database& database, const std::string& batch) {
  try {
    database.execute(batch);
  } catch (const SqlError& error) {
    return error.number();
  }
  return 0;
}

class KeptStatements : public ::testing::Test {
 protected:
  // Both ways, which must give the same; the kept one twice.
  std::vector<std::string> both(const std::string& query) {
    std::vector<std::string> anew = rows(*database_, query + " -- read anew");
    EXPECT_EQ(rows(*database_, query), anew) << query;
    EXPECT_EQ(rows(*database_, query), anew) << query;
    return anew;
  }

  std::unique_ptr<Connection> database_ = Connection::openInMemory();
};

TEST_F(KeptStatements, TakeOtherConstants) {
  database_->execute("Create Table t (i int, s nvarchar(20), m money)");
  for (int i = 0; i < 5; ++i) {
    database_->execute(put("Insert Into t (i, s, m) Select $, N'text $', 2.5", std::to_string(i)));
  }
  EXPECT_THAT(both("Select i From t Where i = 2"), ElementsAre("2"));
  EXPECT_THAT(both("Select i From t Where i = 3"), ElementsAre("3"));
  EXPECT_THAT(both("Select i From t Where 4 > i And i > 2"), ElementsAre("3"));
  EXPECT_THAT(both("Select i From t Where 3 > i And i > 1"), ElementsAre("2"));
  EXPECT_THAT(both("Select i From t Where s = N'TEXT 4'"), ElementsAre("4"));
  EXPECT_THAT(both("Select i From t Where s = N'text 3'"), ElementsAre("3"));
  EXPECT_THAT(both("Select i From t Where s = N'te''t 3'"), IsEmpty());
  EXPECT_EQ(database_->execute("Update t Set m = 7 Where i = 2"), 1);
  EXPECT_EQ(database_->execute("Update t Set m = 8 Where i = 3"), 1);
  EXPECT_EQ(database_->execute("Delete t Where i = 4"), 1);
  EXPECT_EQ(database_->execute("Delete t Where i = 7"), 0);
  EXPECT_THAT(both("Select i, s, m From t Order By i"),
              ElementsAre("0 text 0 2.5000", "1 text 1 2.5000", "2 text 2 7.0000", "3 text 3 8.0000"));
}

TEST_F(KeptStatements, KeepConstantsThatDecideMoreThanTheirValue) {
  database_->execute("Create Table t (i int, d decimal(5, 2), s nvarchar(20), v datetime)");
  database_->execute("Insert Into t Values (5, 7.25, N'ab', '2024-05-01')");
  for (const char* n : {"2", "3", "7", "25", "100"}) {
    both(std::string("Select i / ") + n + ", d * " + n + ", left(s, " + n + ") From t Order By 2");
    both(std::string("Select cast(d As decimal(9, ") + (n[0] == '1' ? "1" : n[0] == '2' ? "2" : "3") + ")) From t");
    both(std::string("Select i From t Where d < ") + n + " Or i + " + n + " > 9");
    both(std::string("Select Top ") + n + " i From t Where s Like N'" + n + "%' Or i in (5, " + n + ")");
    both(std::string("Select case when i = ") + n + " then " + n +
         " else 2 end, count(*) From t Group By case when i = " + n + " then " + n + " else 2 end Having count(*) < " +
         n);
    both(std::string("Select (Select count(*) From t x Where x.i < ") + n + ") From t Where i < " + n +
         " Union Select " + n);
    both(std::string("Select i From t Where v = N'2024-05-0") + n[0] +
         "' Or s = " + (n[0] == '1' ? "N'ab'" : "N'abc'"));
  }
}

TEST_F(KeptStatements, InsertConstantsOfTheColumnsForm) {
  database_->execute("Create Table t (i int, b bit, d decimal(5, 2), s nvarchar(4), f float)");
  for (const char* n : {"2", "31", "4"})
    database_->execute(std::string("Insert Into t (i, b, d, s, f) Select ") + n + ", " + n + ", " + n + ", " + n +
                       ", " + n);
  EXPECT_THAT(rows(*database_, "Select * From t"), ElementsAre("2 1 2.00 2 2", "31 1 31.00 31 31", "4 1 4.00 4 4"));
  EXPECT_EQ(errorOf(*database_, "Insert Into t (s) Select N'abcd'"), 0);
  EXPECT_EQ(errorOf(*database_, "Insert Into t (s) Select N'abcde'"), 2628);
  EXPECT_EQ(errorOf(*database_, "Insert Into t (s) Select N'vwxyz'"), 2628);
  EXPECT_EQ(errorOf(*database_, "Insert Into t (i) Select distinct 7 From t Union Select 8"), 0);
  EXPECT_EQ(errorOf(*database_, "Insert Into t (i) Select distinct 8 From t Union Select 8"), 0);
  EXPECT_THAT(rows(*database_, "Select i From t Where s is null Order By i"), ElementsAre("7", "8", "8"));
}

TEST_F(KeptStatements, FollowATableThatIsMadeAnew) {
  for (const std::string name : {"t", "#t"}) {
    const std::string query = "Select * From " + name + " Where a = 2";
    const std::string insert = "Insert Into " + name + " (a) Select 2";
    const std::string update = "Update " + name + " Set a = 3 Where a = 2";
    EXPECT_EQ(errorOf(*database_, query), 208);
    database_->execute("Create Table " + name + " (a int, b int)");
    database_->execute(insert);
    EXPECT_THAT(both(query), ElementsAre("2 null"));
    database_->execute(update);
    database_->execute("Drop Table " + name);
    EXPECT_EQ(errorOf(*database_, query), 208);
    EXPECT_EQ(errorOf(*database_, update), 208);
    // Other columns, other types: the constant has to be converted now.
    database_->execute("Create Table " + name + " (c decimal(9, 3), a nvarchar(10), d bit)");
    database_->execute(insert);
    EXPECT_THAT(both(query), ElementsAre("null 2 null"));
    database_->execute(update);
    EXPECT_THAT(both("Select a From " + name), ElementsAre("3"));
    database_->execute("Drop Table " + name);
    database_->execute("Create Table " + name + " (b int)");
    EXPECT_EQ(errorOf(*database_, query), 207);
    EXPECT_EQ(errorOf(*database_, insert), 207);
    // Declared as at first.
    database_->execute(put("Drop Table $ Create Table $ (a int, b int)", name));
    database_->execute(insert);
    EXPECT_THAT(both(query), ElementsAre("2 null"));
    database_->execute("Drop Table " + name);
  }
}

TEST_F(KeptStatements, KnowATableFromAViewOfItsName) {
  database_->execute("Create Table base (i int, j int)");
  database_->execute("Insert Into base Values (2, 3)");
  database_->execute("Create View v As Select i As k From base Where i = 2");
  EXPECT_THAT(both("Select k From v Where k = 2"), ElementsAre("2"));
  database_->execute("Drop View v");
  EXPECT_EQ(errorOf(*database_, "Select k From v Where k = 2"), 208);
  database_->execute("Create View v As Select j As k From base Where i = 2");
  EXPECT_THAT(both("Select k From v Where k = 2"), IsEmpty());
  EXPECT_THAT(both("Select k From v Where k = 3"), ElementsAre("3"));
  database_->execute("Drop View v");
  database_->execute("Create Table v (k nvarchar(5))");
  database_->execute("Insert Into v Values (N'3')");
  EXPECT_THAT(both("Select k From v Where k = 3"), ElementsAre("3"));
}

TEST_F(KeptStatements, FollowAFunction) {
  database_->execute("Create Table t (i int)");
  database_->execute("Insert Into t Values (2)");
  database_->execute("Create Function f() Returns int As Begin Return 5 End");
  EXPECT_THAT(both("Select i + dbo.f() From t Where i = 2"), ElementsAre("7"));
  database_->execute("Drop Function f");
  EXPECT_EQ(errorOf(*database_, "Select i + dbo.f() From t Where i = 2"), 4121);
  database_->execute("Create Function f() Returns nvarchar(5) As Begin Return N'50' End");
  EXPECT_THAT(both("Select i + dbo.f() From t Where i = 2"), ElementsAre("52"));
}

TEST_F(KeptStatements, GoOnWithAnIndexAndWithoutIt) {
  database_->execute("Create Table t (i int, j int)");
  for (int i = 2; i < 30; ++i)
    database_->execute("Insert Into t (i, j) Select " + std::to_string(i) + ", " + std::to_string(30 - i));
  EXPECT_THAT(both("Select j From t Where i = 7"), ElementsAre("23"));
  database_->execute("Create Index ix On t (i, j)");
  EXPECT_THAT(both("Select j From t Where i = 8"), ElementsAre("22"));
  database_->execute("Drop Index t.ix");
  EXPECT_THAT(both("Select j From t Where i = 9"), ElementsAre("21"));
  database_->execute("Create Unique Index ix On t (i)");
  EXPECT_EQ(errorOf(*database_, "Insert Into t (i, j) Select 9, 9"), 2601);
}

TEST_F(KeptStatements, ObeySettings) {
  database_->execute("Create Table t (id int identity(1, 1), i int)");
  const std::string insert = "Insert Into t (id, i) Select 7, 8";
  EXPECT_EQ(errorOf(*database_, insert), 544);
  database_->execute("Set Identity_Insert t On");
  EXPECT_EQ(errorOf(*database_, insert), 0);
  database_->execute("Set Identity_Insert t Off");
  EXPECT_EQ(errorOf(*database_, insert), 544);
  EXPECT_EQ(errorOf(*database_, "Insert Into t (i) Select 9"), 0);
  EXPECT_EQ(errorOf(*database_, "Insert Into t (i) Select 10"), 0);
  EXPECT_THAT(both("Select id, i From t Order By id"), ElementsAre("7 8", "8 9", "9 10"));
}

TEST_F(KeptStatements, WidenSums) {
  database_->execute("Create Table t (i int, d decimal(18, 0))");
  database_->execute("Create Table sums (d decimal(38, 0))");
  database_->execute("Insert Into t Values (2, 999999999999999999)");
  for (int i = 0; i < 5; ++i)
    database_->execute("Insert Into t Select i, d From t -- 32 rows at last");
  for (int round = 0; round < 2; ++round) {
    EXPECT_THAT(both("Select sum(d) From t Where i = 2"), ElementsAre("31999999999999999968"));
    EXPECT_THAT(both("Select sum(d) From t Where i = 3"), ElementsAre("null"));
    EXPECT_EQ(database_->execute("Insert Into sums (d) Select sum(d) From t Where i = 2"), 1);
  }
  EXPECT_THAT(both("Select d From sums"), ElementsAre("31999999999999999968", "31999999999999999968"));
}

TEST_F(KeptStatements, TellWhereAnErrorIs) {
  database_->execute("Create Table t (i int, s nvarchar(3))");
  const auto placeOf = [&](const std::string& batch) {
    try {
      database_->execute(batch);
    } catch (const SqlError& error) {
      return std::to_string(error.number()) + " in line " + std::to_string(error.line());
    }
    return std::string();
  };
  for (const char* end : {"", " -- read anew"}) {
    for (const char* n : {"2", "3"}) {
      EXPECT_EQ(placeOf(std::string("\n\nInsert Into t (s)\nSelect N'abc' + N'") + n + "'" + end), "2628 in line 3");
      EXPECT_EQ(placeOf(std::string("\nSelect i From t\nWhere unknown = ") + n + end), "207 in line 3");
    }
  }
}

TEST_F(KeptStatements, ReportTheTextThatRan) {
  database_->execute("Create Table t (i int)");
  std::vector<std::string> seen;
  database_->observe([&](const StatementReport& report) {
    seen.push_back(std::string(report.sql) + ": " + std::to_string(report.rows));
  });
  database_->execute("  Insert Into t Select 5 ;");
  database_->execute("  Insert Into t Select 6789 ;");
  EXPECT_THAT(seen, ElementsAre("Insert Into t Select 5: 1", "Insert Into t Select 6789: 1"));
}

TEST_F(KeptStatements, AreGroupedByKeysThatDependOnOneRow) {
  database_->execute(
      "Create Table kind (code nvarchar(5), byBatch bit, byColour int, name nvarchar(9), Primary Key (code)) "
      "Create Table line (code nvarchar(5), place int, batch nvarchar(5), colour nvarchar(5), n int) "
      "Create Table sums (batch nvarchar(5), colour nvarchar(5), code nvarchar(5), name nvarchar(9), place int, n int)");
  database_->execute(
      "Insert Into kind Values (N'a', 0, 0, N'A') Insert Into kind Values (N'b', 1, 0, N'B') "
      "Insert Into kind Values (N'c', 0, 1, N'C') Insert Into kind Values (N'd', 1, 1, N'D') "
      "Insert Into kind Values (N'e', null, null, null)");
  int n = 1;
  for (const char* code : {"a", "B", "b", "c", "d", "D", "e", "f"}) {
    for (const char* batch : {"N'2'", "N'1'", "null", "N'x'", "N'X'"}) {
      for (const char* colour : {"N'r'", "N''", "null"}) {
        database_->execute(std::string("Insert Into line Values (N'") + code + "', " + std::to_string(n % 3) + ", " +
                           batch + ", " + colour + ", " + std::to_string(n) + ")");
        ++n;
      }
    }
  }
  const std::string_view batch = "case when isnull(kind.byBatch, 0) = 1 then isnull(line.batch, N'') else N'' end";
  const std::string_view colour =
      "case when isnull(kind.byColour, 0) = 1 then isnull(line.colour, N'') else cast(N'' as nvarchar(5)) end";
  for (const char* code : {"a", "b", "c", "d", "e", "f", "g"}) {
    std::string sums = put(
        "Select # As batch, ~ As colour, line.code, name, sum(n) As n From line Left Join kind On kind.code = line.code "
        "Where line.code = @ Group By #, line.code, ~, name",
        code);
    sums = put(put(sums, batch, '#'), colour, '~');
    // With a sum of texts nobody sees beforehand which one row it is.
    const std::string slowly = put(sums, put("N'' + N'$'", code), '@') + " -- read anew";
    const std::string quickly = put(sums, put("N'$'", code), '@');
    std::vector<std::vector<std::string>> results;
    for (const std::string& each : {slowly, quickly, quickly + " -- read anew", quickly}) {
      database_->execute("Truncate Table sums");
      database_->execute("Insert Into sums (batch, colour, code, name, n) " + each);
      // A line break ends the comment.
      database_->execute("Update sums Set place = a.n From sums Inner Join (" + each +
                         "\n) a On a.batch = sums.batch And a.colour = sums.colour");
      results.push_back(rows(*database_, "Select * From sums"));
    }
    EXPECT_THAT(results, Each(results[0])) << code;
    const std::size_t groups[] = {1, 4, 2, 8, 1, 1, 0};
    EXPECT_EQ(results[0].size(), groups[code[0] - 'a']) << code;
  }
  // What the row says may change.
  database_->execute("Update kind Set byBatch = 1 Where code = N'a'");
  database_->execute("Truncate Table sums");
  database_->execute(put(
      "Insert Into sums (batch, n) Select $, sum(n) From line Left Join kind On kind.code = line.code Where line.code "
      "= N'a' Group By $, line.code",
      batch));
  EXPECT_THAT(rows(*database_, "Select batch, n From sums"), ElementsAre(" 24", "1 15", "2 6", "x 75"));
}

TEST_F(KeptStatements, AreNotGroupedByFewerKeysWhereTheRowsDiffer) {
  database_->execute(
      "Create Table kind (code nvarchar(5), byBatch bit) Create Table line (code nvarchar(5), batch nvarchar(5), n int) "
      "Create Table sums (batch nvarchar(5), n int)");
  // The code is no key, so a line may have several kinds.
  database_->execute("Insert Into kind Values (N'a', 0) Insert Into kind Values (N'a', 1)");
  database_->execute("Insert Into line Values (N'a', N'1', 2) Insert Into line Values (N'a', N'2', 3)");
  for (const char* end : {" -- read anew", "", ""}) {
    database_->execute("Truncate Table sums");
    database_->execute(
        std::string(
            "Insert Into sums (batch, n) Select case when byBatch = 1 then batch else N'' end, sum(n) From line Left Join "
            "kind On kind.code = line.code Where line.code = N'a' Group By case when byBatch = 1 then batch else "
            "N'' end, line.code") +
        end);
    EXPECT_THAT(rows(*database_, "Select * From sums"), ElementsAre(" 5", "1 2", "2 3"));
  }
}

TEST_F(KeptStatements, AreNotTakenForOtherRowsThanTheirFormReads) {
  // The groups of the derived table are restricted to those of the lines, and ordered rows are looked up first.
  database_->execute(
      "Create Table line (i int, s nvarchar(5)) Create Table part (line int, n int) Create Table result (i int, n int)");
  for (int i = 2; i < 9; ++i) {
    database_->execute(
        put("Insert Into line Values ($, N's$') Insert Into part Values ($, $) Insert Into part Values ($, 10)",
            std::to_string(i)));
  }
  const std::string joined =
      "Select line.i, sums.n From line Left Join (Select line, sum(n) As n From part Group By line) sums On line.i = "
      "sums.line Where line.";
  for (int i = 2; i < 9; ++i) {
    const std::string n = std::to_string(i);
    const std::string expected = put("$ ", n) + std::to_string(i + 10);
    EXPECT_THAT(both(put(joined + "i = $", n)), ElementsAre(expected));
    EXPECT_THAT(both(put(joined + "s = N's$'", n)), ElementsAre(expected));
    database_->execute("Truncate Table result");
    database_->execute("Insert Into result (i, n) " + put(joined + "i = $", n));
    database_->execute("Insert Into result (i, n) " + put(joined + "i = $ Order By line.i", n));
    EXPECT_THAT(both("Select i, n From result"), ElementsAre(expected, expected));
  }
}

TEST_F(KeptStatements, ChangeManyRowsByKeys) {
  database_->execute(
      "Create Table few (i int) Create Table line (i int, kind int, n int) Create Table sum (kind int, month int, n int)");
  for (int i = 0; i < 10; ++i)
    database_->execute(put("Insert Into few Values ($)", std::to_string(i)));
  database_->execute(
      "Insert Into line (i, kind) Select a.i * 1000 + b.i * 100 + c.i * 10 + d.i, d.i From few a, few b, few c, few d");
  for (int month = 2; month < 5; ++month)
    database_->execute(put("Insert Into sum Select i, $, i * $ From few Where i <> $", std::to_string(month)));
  const std::string update =
      "Update line Set n = s.n From line Inner Join (Select kind, sum(n) As n From sum Where month = $ Group By kind) s On "
      "s.kind = line.kind Where line.i < $000";
  for (const std::string month : {"2", "3", "4", "5"}) {
    std::vector<std::vector<std::string>> results;
    for (const std::string end : {" -- read anew", "", ""}) {
      database_->execute("Update line Set n = null");
      const std::int64_t changed = database_->execute(put(update, month) + end);
      EXPECT_EQ(changed, month == "5" ? 0 : std::stoi(month) * 900);
      results.push_back(
          rows(*database_, "Select kind, count(n), min(n), max(n) From line Group By kind Order By kind"));
    }
    EXPECT_THAT(results, Each(results[0])) << month;
  }
}

class KeptStatementsInFiles : public ::testing::Test {
 protected:
  KeptStatementsInFiles() {
    fs::create_directories(folder_);
    Connection::open(account(), OpenMode::createNew)
        ->execute("Create Table t (a int) Insert Into t Values (2) Create Table orvsystem..s (a int)");
  }
  ~KeptStatementsInFiles() override {
    std::error_code ignored;
    fs::remove_all(folder_, ignored);
  }
  fs::path account() const { return folder_ / "kept.account"; }

  fs::path folder_ = fs::temp_directory_path() / ("quillon-kept-" + std::to_string(std::random_device()()));
};

TEST_F(KeptStatementsInFiles, FollowWhatAnotherConnectionChanges) {
  const auto one = Connection::open(account(), OpenMode::existing);
  const auto other = Connection::open(account(), OpenMode::existing);
  EXPECT_THAT(rows(*one, "Select * From t Where a = 2"), ElementsAre("2"));
  EXPECT_THAT(rows(*other, "Select * From t Where a = 2"), ElementsAre("2"));
  other->execute("Drop Table t Create Table t (b int, a nvarchar(5)) Insert Into t Values (7, N'2')");
  EXPECT_THAT(rows(*one, "Select * From t Where a = 2"), ElementsAre("7 2"));
  other->execute("Drop Table t");
  EXPECT_EQ(errorOf(*one, "Select * From t Where a = 2"), 208);
  other->execute("Create View t As Select 2 As a, 3 As b");
  EXPECT_THAT(rows(*one, "Select * From t Where a = 2"), ElementsAre("2 3"));
  other->execute("Drop View t Create View t As Select 2 As a");
  EXPECT_THAT(rows(*one, "Select * From t Where a = 2"), ElementsAre("2"));
}

TEST_F(KeptStatementsInFiles, AreEachConnectionsOwn) {
  const auto plain = Connection::open(account(), OpenMode::existing);
  const auto scratch = Connection::openWithScratch(account(), folder_ / "scratch");
  const auto empty = Connection::openInMemory();
  for (int round = 0; round < 2; ++round) {
    EXPECT_THAT(rows(*plain, "Select a From t Where a = 2"), ElementsAre("2"));
    EXPECT_THAT(rows(*scratch, "Select a From t Where a = 2"), ElementsAre("2"));
    EXPECT_EQ(errorOf(*empty, "Select a From t Where a = 2"), 208);
    plain->execute("Create Table #t (a int) Insert Into #t Values (3)");
    scratch->execute("Create Table #t (a nvarchar(5), b int) Insert Into #t Values (N'3', 4)");
    EXPECT_THAT(rows(*plain, "Select * From #t Where a = 3"), ElementsAre("3"));
    EXPECT_THAT(rows(*scratch, "Select * From #t Where a = 3"), ElementsAre("3 4"));
    plain->execute("Drop Table #t");
    scratch->execute("Drop Table #t");
  }
  // What is created beside the account hides the account's own.
  scratch->execute("Create Table own (a int) Insert Into own Values (2)");
  EXPECT_THAT(rows(*scratch, "Select a From own Where a = 2"), ElementsAre("2"));
  EXPECT_EQ(errorOf(*plain, "Select a From own Where a = 2"), 208);
  EXPECT_EQ(errorOf(*scratch, "Update t Set a = 3 Where a = 2"), 3906);
  EXPECT_EQ(errorOf(*plain, "Update t Set a = 3 Where a = 2"), 0);
  EXPECT_EQ(errorOf(*scratch, "Update t Set a = 2 Where a = 3"), 3906);
}

TEST_F(KeptStatementsInFiles, AreSafeFromSeveralThreads) {
  const auto work = [this](int number) {
    const auto connection = Connection::open(account(), OpenMode::readOnly);
    const std::string own = std::to_string(number);
    connection->execute("Create Table #w (a int, s nvarchar(20))");
    for (int i = 2; i < 150; ++i) {
      const std::string n = std::to_string(i);
      connection->execute(put(put("Insert Into #w (a, s) Select $, N'~' From t Where a = 2", n), own, '~'));
      EXPECT_THAT(rows(*connection, put("Select a, s From #w Where a = $", n)), ElementsAre(put("$ ", n) + own));
      rows(*connection, put("Select a As c$ From #w Where a = 2", n));
    }
  };
  std::array<std::thread, 4> threads;
  for (std::size_t i = 0; i < threads.size(); ++i)
    threads.at(i) = std::thread(work, static_cast<int>(i));
  for (std::thread& thread : threads)
    thread.join();
}

TEST_F(KeptStatements, AreSoManyAtMost) {
  constexpr std::size_t most = Translations::mostNew + Translations::mostProven;
  database_->execute("Create Table t (i int)");
  const auto select = [&](std::size_t i) { rows(*database_, "Select i As c" + std::to_string(i) + " From t"); };
  for (std::size_t i = 0; i < most + 50; ++i) {
    select(i);
    select(i);
  }
  for (std::size_t i = 0; i < most; ++i)
    select(1000 + i);
  EXPECT_EQ(Translations::ofProcess().size(), most);
  EXPECT_THAT(both("Select i As c0 From t"), IsEmpty());
}

TEST_F(KeptStatements, AreFewWhileEachComesOnce) {
  database_->execute("Create Table t (i int)");
  const std::size_t before = Translations::ofProcess().size();
  for (std::size_t i = 0; i < 500; ++i)
    rows(*database_, "Select i As once" + std::to_string(i) + " From t");
  EXPECT_LE(Translations::ofProcess().size(), before + Translations::mostNew);
}

TEST(StatementPool, LendsAStatementToOneAtATime) {
  const auto database = Connection::openInMemory();
  const auto pool = std::make_shared<StatementPool>(database->handle());
  {
    const auto one = pool->take("SELECT ?1");
    const auto other = pool->take("SELECT ?1");
    one->bind(1, 5);
    other->bind(1, 6);
    EXPECT_TRUE(one->step());
    EXPECT_TRUE(other->step());
    EXPECT_EQ(one->integer(0), 5);
    EXPECT_EQ(other->integer(0), 6);
    EXPECT_EQ(pool->size(), 0U);
  }
  EXPECT_EQ(pool->size(), 2U);
  const auto again = pool->take("SELECT ?1");
  EXPECT_EQ(pool->size(), 1U);
  EXPECT_TRUE(again->step());
  EXPECT_TRUE(again->isNull(0));
}

TEST(StatementPool, KeepsTheLastOnes) {
  const auto database = Connection::openInMemory();
  auto pool = std::make_shared<StatementPool>(database->handle());
  for (std::size_t i = 0; i < StatementPool::mostStatements + 5; ++i)
    pool->take("SELECT " + std::to_string(i));
  EXPECT_EQ(pool->size(), StatementPool::mostStatements);
  EXPECT_THROW(pool->take("SELECT unknown"), SqlError);
  // One on loan outlives the pool.
  auto loan = pool->take("SELECT 7");
  pool.reset();
  EXPECT_TRUE(loan->step());
}

}  // namespace
}  // namespace quillon::tsql
