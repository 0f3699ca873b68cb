// The database over the real driver manager and a driver whose answers the tests write down.
#include "workbench/odbc/odbc_database.h"

#include <gmock/gmock.h>

#include "tests/workbench/odbc/scripted_server.h"

namespace quillon::odbc {
namespace {

using test::Record;
using test::Result;
using test::ResultColumn;
using testing::Contains;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::Not;

const Record linkFailure{.state = u"08S01", .number = 10054, .text = u"[Vendor][Driver]Communication link failure"};

// Writes down what a batch gives.
class ResultLog final : public tsql::ResultSink {
 public:
  void columns(std::span<const tsql::Column> columns) override {
    std::string line = "columns";
    for (const auto& column : columns)
      line += " " + column.name + ":" + column.type.name();
    log.push_back(line);
  }
  void row(std::span<const tsql::Value> values) override {
    std::string line = "row";
    for (const auto& value : values)
      line += " " + tsql::toText(value).value_or("null");
    log.push_back(line);
  }
  void rowsAffected(std::int64_t count) override { log.push_back("count " + std::to_string(count)); }

  std::vector<std::string> log;
};

class OdbcDatabase : public testing::Test {
 protected:
  void SetUp() override { database_ = connect(ConnectionString(server_.connectionString()), {}); }

  // The server answers the next batch with these results.
  void answer(std::vector<Result> results) {
    server_.answer = [results = std::move(results)](const std::string&) { return results; };
  }
  std::vector<std::string> resultsOf(std::string_view sql) {
    ResultLog results;
    database_->run(sql, results);
    return results.log;
  }
  // The only value of a batch that answers with it.
  tsql::Value valueOf(ResultColumn column, test::Cell cell) {
    answer({{.columns = {std::move(column)}, .rows = {{std::move(cell)}}}});
    const auto rows = database_->query("Select x");
    EXPECT_TRUE(rows->next());
    tsql::Value value = rows->value(0);
    EXPECT_FALSE(rows->next());
    return value;
  }
  tsql::SqlError errorOf(const std::function<void()>& action) {
    try {
      action();
    } catch (const tsql::SqlError& error) {
      return error;
    }
    return {0, "nothing failed"};
  }
  int batches() const {
    return static_cast<int>(
        std::ranges::count_if(server_.log, [](const std::string& line) { return line.starts_with("run "); }));
  }

  test::ScriptedServer server_;
  std::unique_ptr<tsql::Database> database_;
};

TEST_F(OdbcDatabase, ConnectsWithTheConnectionStringAndWithoutTimeLimits) {
  database_->execute("Select 1");
  EXPECT_THAT(server_.log, Contains("connect " + server_.connectionString()));
  EXPECT_THAT(server_.log, Contains("connection attribute " + std::to_string(SQL_ATTR_LOGIN_TIMEOUT) + " = 0"));
  EXPECT_THAT(server_.log, Contains("connection attribute " + std::to_string(SQL_ATTR_CONNECTION_TIMEOUT) + " = 0"));
  EXPECT_THAT(server_.log, Contains("statement attribute " + std::to_string(SQL_ATTR_QUERY_TIMEOUT) + " = 0"));
  EXPECT_THAT(server_.log, Contains("run Set TextSize 2147483647"));
}

TEST_F(OdbcDatabase, PassesTimeLimitsOn) {
  database_ = connect(ConnectionString(server_.connectionString()), {.connectionTimeout = 15, .commandTimeout = 30});
  database_->execute("Select 1");
  EXPECT_THAT(server_.log, Contains("connection attribute " + std::to_string(SQL_ATTR_LOGIN_TIMEOUT) + " = 15"));
  EXPECT_THAT(server_.log, Contains("statement attribute " + std::to_string(SQL_ATTR_QUERY_TIMEOUT) + " = 30"));
}

TEST_F(OdbcDatabase, DisconnectsWhenItGoes) {
  EXPECT_THAT(server_.log, Not(Contains("disconnect")));
  database_.reset();
  EXPECT_EQ(server_.log.back(), "disconnect");
}

TEST_F(OdbcDatabase, SendsStatementsWhole) {
  const std::string half = "\xed\xa0\xbd";  // of a pair
  const std::string sql = "Select N'按存货核算 😀" + half + "'" + std::string(100'000, ' ') + "-- end";
  database_->execute(sql);
  EXPECT_EQ(server_.log.back(), "run " + sql);
  EXPECT_THAT(server_.log, Contains("statement attribute " + std::to_string(SQL_ATTR_NOSCAN) + " = 1"))
      << "no driver reads braces in it as ODBC's";
}

TEST_F(OdbcDatabase, ReadsTextsOfAllCharacters) {
  const std::string text = "金属材料费 😀 \xed\xb8\x80 ü";
  EXPECT_EQ(std::get<std::string>(valueOf({.name = u"x", .size = 60}, test::utf16(text))), text);
  EXPECT_EQ(std::get<std::string>(valueOf({.name = u"x", .size = 60}, u"")), "");
  EXPECT_TRUE(tsql::isNull(valueOf({.name = u"x", .size = 60}, {})));
}

TEST_F(OdbcDatabase, ReadsLongTextsWhole) {
  // A pair lies across each place where one piece may end and the next begin.
  std::u16string text(4094, u'中');
  while (text.size() < 100'000)
    text += u"😀x😀";
  for (const bool tells : {true, false}) {
    server_.tellsLength = tells;
    const auto value = valueOf({.name = u"x", .sqlType = SQL_WLONGVARCHAR, .size = 0x3fffffff}, text);
    EXPECT_EQ(std::get<std::string>(value), test::utf8(text));
  }
}

TEST_F(OdbcDatabase, ReadsATextThatJustFillsAPiece) {
  for (const std::size_t length : {4094U, 4095U, 4096U, 8190U, 8191U}) {
    const std::u16string text(length, u'x');
    EXPECT_EQ(std::get<std::string>(valueOf({.name = u"x"}, text)).size(), length);
  }
}

TEST_F(OdbcDatabase, ReadsValuesWithTheirTypes) {
  answer({{.columns = {{.name = u"id", .sqlType = SQL_INTEGER},
                       {.name = u"flag", .sqlType = SQL_BIT},
                       {.name = u"big", .sqlType = SQL_BIGINT},
                       {.name = u"amount", .sqlType = SQL_DECIMAL, .size = 19, .digits = 4, .typeName = u"money"},
                       {.name = u"quantity", .sqlType = SQL_DECIMAL, .size = 38, .digits = 6, .typeName = u"decimal"},
                       {.name = u"rate", .sqlType = SQL_DOUBLE},
                       {.name = u"day", .sqlType = SQL_TYPE_TIMESTAMP},
                       {.name = u"名称", .sqlType = SQL_WVARCHAR, .size = 60}},
           .rows = {{std::int64_t{-7}, std::int64_t{1}, std::int64_t{9'007'199'254'740'993}, std::string(".5000"),
                     std::string("12345678901234567890123456789012.345678"), 0.1,
                     SQL_TIMESTAMP_STRUCT{2024, 3, 5, 8, 30, 0, 0}, u"中"},
                    {{}, {}, {}, {}, {}, {}, {}, {}}}}});
  EXPECT_THAT(resultsOf("Select"),
              ElementsAre("columns id:int flag:bit big:bigint amount:money quantity:decimal(38,6) rate:float "
                          "day:datetime 名称:nvarchar(60)",
                          "row -7 1 9007199254740993 0.5000 12345678901234567890123456789012.345678 0.1 2024-03-05 "
                          "08:30:00.000 中",
                          "row null null null null null null null null", "count 2"));
}

TEST_F(OdbcDatabase, RefusesAValueThatItWouldChange) {
  const auto error = errorOf([&] {
    valueOf({.name = u"day", .sqlType = SQL_TYPE_TIMESTAMP}, SQL_TIMESTAMP_STRUCT{1, 1, 1, 0, 0, 0, 0});
  });
  EXPECT_EQ(error.number(), 8114);
  EXPECT_EQ(error.message(), "The column day holds a date in the year 1, which cannot be read as datetime.");
}

const std::vector<Result> severalResults = {
    {.rowCount = 3},
    {.columns = {{.name = u"a", .sqlType = SQL_INTEGER}}, .rows = {{std::int64_t{1}}, {std::int64_t{2}}}},
    {.rowCount = -1},
    {.columns = {{.name = u"b", .sqlType = SQL_INTEGER}}},
    {.rowCount = 5}};

TEST_F(OdbcDatabase, GivesAllResultsInOrder) {
  answer(severalResults);
  EXPECT_THAT(resultsOf("batch"), ElementsAre("count 3", "columns a:int", "row 1", "row 2", "count 2", "columns b:int",
                                              "count 0", "count 5"));
}

TEST_F(OdbcDatabase, ExecuteGivesTheLastCount) {
  answer(severalResults);
  EXPECT_EQ(database_->execute("batch"), 5);
  answer({{.rowCount = 4}, {.rowCount = -1}});
  EXPECT_EQ(database_->execute("batch"), 4);
  answer({{.rowCount = 0}});
  EXPECT_EQ(database_->execute("Delete nothing"), 0);
  answer({});
  EXPECT_EQ(database_->execute("Set NoCount On"), -1);
}

TEST_F(OdbcDatabase, QueryPassesOverCountsAndFurtherRows) {
  answer(severalResults);
  const auto rows = database_->query("batch");
  ASSERT_EQ(rows->columns().size(), 1U);
  EXPECT_EQ(rows->columns()[0].name, "a");
  EXPECT_TRUE(rows->next());
  EXPECT_TRUE(rows->next());
  EXPECT_EQ(std::get<std::int64_t>(rows->value(0)), 2);
  EXPECT_FALSE(rows->next());
  EXPECT_FALSE(rows->next()) << "the end stays the end";
}

TEST_F(OdbcDatabase, QueryWithoutRowsHasNoColumns) {
  answer({{.rowCount = 3}});
  const auto rows = database_->query("Delete t");
  EXPECT_TRUE(rows->columns().empty());
  EXPECT_FALSE(rows->next());
}

const std::vector<Record> duplicateKey = {
    {.state = u"23000",
     .number = 2627,
     .line = 3,
     .text = u"[Vendor][Driver for SQL Server][SQL Server]Violation of PRIMARY KEY constraint '存货'."},
    {.state = u"01000",
     .number = 3621,
     .line = 3,
     .text = u"[Vendor][Driver for SQL Server][SQL Server]The statement has been terminated."}};

TEST_F(OdbcDatabase, TellsAnErrorWithNumberLineAndEverythingSaid) {
  answer({{.error = duplicateKey}});
  const auto error = errorOf([&] { database_->execute("Insert"); });
  EXPECT_EQ(error.number(), 2627);
  EXPECT_EQ(error.line(), 3);
  EXPECT_EQ(error.message(),
            "Violation of PRIMARY KEY constraint '存货'.; error 3621: The statement has been terminated.");
  answer({});
  EXPECT_NO_THROW(database_->execute("Select 1")) << "the connection goes on";
}

TEST_F(OdbcDatabase, KeepsTheBracketsOfAMessage) {
  answer(
      {{.error = {{.state = u"42000", .number = 50000, .text = u"[Vendor][Driver][SQL Server][dbo].[t] is locked"}}}});
  EXPECT_EQ(errorOf([&] { database_->execute("Exec p"); }).message(), "[dbo].[t] is locked");
}

TEST_F(OdbcDatabase, TellsAnErrorOfALaterStatement) {
  answer({{.rowCount = 3}, {.error = duplicateKey}});
  EXPECT_EQ(errorOf([&] { database_->execute("Insert a Insert b"); }).number(), 2627);
  EXPECT_EQ(errorOf([&] { resultsOf("Insert a Insert b"); }).number(), 2627);
}

TEST_F(OdbcDatabase, TellsAnErrorBehindTheRows) {
  answer(
      {{.columns = {{.name = u"a", .sqlType = SQL_INTEGER}},
        .rows = {{std::int64_t{1}}},
        .error = {{.state = u"22012", .number = 8134, .text = u"[V][D][SQL Server]Divide by zero error encountered."}},
        .failsBehindRows = true}});
  const auto rows = database_->query("Select");
  EXPECT_TRUE(rows->next());
  EXPECT_EQ(errorOf([&] { rows->next(); }).message(), "Divide by zero error encountered.");
}

TEST_F(OdbcDatabase, TellsAnErrorOfAStatementBehindTheRows) {
  answer({{.columns = {{.name = u"a", .sqlType = SQL_INTEGER}}}, {.error = duplicateKey}});
  EXPECT_EQ(errorOf([&] { database_->query("Select")->next(); }).number(), 2627);
}

TEST_F(OdbcDatabase, TellsALongMessageWhole) {
  const std::u16string text(3000, u'长');
  answer({{.error = {{.state = u"42000", .number = 50000, .text = u"[V][D][SQL Server]" + text}}}});
  EXPECT_EQ(errorOf([&] { database_->execute("Exec p"); }).message(), test::utf8(text));
}

TEST_F(OdbcDatabase, PassesOnWhatTheServerSaysBeside) {
  std::vector<std::string> said;
  database_ = connect(
      ConnectionString(server_.connectionString()), {.messages = [&said](const Diagnostic& message) {
        said.push_back(std::to_string(message.number) + " in " + std::to_string(message.line) + ": " + message.text);
      }});
  answer({{.rowCount = 1,
           .messages = {{.state = u"01003",
                         .number = 8153,
                         .line = 1,
                         .text = u"[V][D][SQL Server]Warning: Null value is eliminated by an aggregate."}}},
          {.messages = {{.state = u"01000", .number = 0, .line = 2, .text = u"[V][D][SQL Server]printed"}}}});
  database_->execute("batch");
  EXPECT_THAT(said, ElementsAre("8153 in 1: Warning: Null value is eliminated by an aggregate.", "0 in 2: printed"));
}

TEST_F(OdbcDatabase, ALostConnectionIsOneErrorAndNothingIsAskedAnyMore) {
  answer({{.error = {linkFailure}}});
  const auto error = errorOf([&] { database_->execute("Select 1"); });
  EXPECT_EQ(error.message(),
            "the connection to the database server is lost: Communication link failure; run it again when the server "
            "can be reached");
  const int asked = batches();
  for (const auto& action : std::initializer_list<std::function<void()>>{
           [&] { database_->execute("Select 2"); }, [&] { database_->query("Select 2"); },
           [&] { resultsOf("Select 2"); }, [&] { database_->describe("t"); }, [&] { database_->tables(""); }}) {
    EXPECT_THROW(action(), tsql::ConnectionLost);
  }
  EXPECT_EQ(batches(), asked);
}

TEST_F(OdbcDatabase, FreeTdsTellsALostConnectionByItsOwnNumbers) {
  for (const auto& [number, text] :
       std::initializer_list<std::pair<int, std::u16string>>{{20004, u"Read from the server failed"},
                                                             {20006, u"Write to the server failed"},
                                                             {20017, u"Unexpected EOF from the server"},
                                                             {20047, u"DBPROCESS is dead or not enabled"}}) {
    answer({});
    database_ = connect(ConnectionString(server_.connectionString()), {});
    answer({{.error = {{.state = u"HY000", .number = number, .text = u"[FreeTDS][SQL Server]" + text}}}});
    EXPECT_THROW(database_->execute("Select 1"), tsql::ConnectionLost) << number;
  }
}

// What FreeTDS says of a connection that was reset.
TEST_F(OdbcDatabase, ALostConnectionThatOnlyTheDriverKnowsOf) {
  const Record nothingSaid{.state = u"HY000", .text = u"[FreeTDS][SQL Server]Unknown error"};
  answer({{.error = {nothingSaid}}});
  EXPECT_EQ(errorOf([&] { database_->execute("Select 1"); }).message(), "Unknown error (SQLSTATE HY000)");
  server_.isDead = true;
  const auto error = errorOf([&] { database_->execute("Select 1"); });
  EXPECT_THAT(error.message(),
              HasSubstr("the connection to the database server is lost: Unknown error (SQLSTATE HY000)"));
  EXPECT_THROW(database_->execute("Select 1"), tsql::ConnectionLost);
}

TEST_F(OdbcDatabase, AServersErrorOfSuchANumberIsItsOwn) {
  answer({{.error = {
               {.state = u"HY000", .number = 20017, .text = u"[FreeTDS][SQL Server]The subscription is unknown."}}}});
  const auto error = errorOf([&] { database_->execute("Select 1"); });
  EXPECT_EQ(error.number(), 20017);
  EXPECT_EQ(error.message(), "The subscription is unknown.");
  answer({});
  EXPECT_NO_THROW(database_->execute("Select 2"));
}

TEST_F(OdbcDatabase, AConnectionLostWhileReadingEndsTheRows) {
  answer({{.columns = {{.name = u"a", .sqlType = SQL_INTEGER}},
           .rows = {{std::int64_t{1}}},
           .error = {linkFailure},
           .failsBehindRows = true}});
  const auto rows = database_->query("Select");
  EXPECT_TRUE(rows->next());
  EXPECT_THROW(rows->next(), tsql::ConnectionLost);
  EXPECT_THROW(rows->next(), tsql::ConnectionLost);
  EXPECT_THROW(database_->execute("Select 1"), tsql::ConnectionLost);
}

TEST_F(OdbcDatabase, ACursorKeepsTheConnection) {
  answer({{.columns = {{.name = u"a", .sqlType = SQL_INTEGER}}, .rows = {{std::int64_t{1}}}}});
  auto rows = database_->query("Select");
  database_.reset();
  EXPECT_TRUE(rows->next());
  EXPECT_FALSE(rows->next());
  rows.reset();
  EXPECT_EQ(server_.log.back(), "disconnect");
}

TEST_F(OdbcDatabase, DescribesATable) {
  answer({{.columns = {{.name = u"iID", .sqlType = SQL_INTEGER}, {.name = u"cName", .size = 60}}}});
  const auto columns = database_->describe("[a b]");
  EXPECT_EQ(server_.log.back(), "run Select Top 0 * From [a b]");
  ASSERT_EQ(columns.size(), 2U);
  EXPECT_EQ(columns[1].name, "cName");
  EXPECT_EQ(columns[1].type.name(), "nvarchar(60)");
}

TEST_F(OdbcDatabase, DescribesNoTableAsNothing) {
  answer({{.error = {{.state = u"42S02", .number = 208, .text = u"[V][D][SQL Server]Invalid object name 'x'."}}}});
  EXPECT_TRUE(database_->describe("x").empty());
  answer({{.error = {
               {.state = u"42000", .number = 229, .text = u"[V][D][SQL Server]The SELECT permission was denied."}}}});
  EXPECT_EQ(errorOf([&] { database_->describe("x"); }).number(), 229);
}

TEST_F(OdbcDatabase, NamesTheTables) {
  answer({{.columns = {{.name = u"name", .size = 128}}, .rows = {{u"a"}, {u"b"}}}});
  EXPECT_THAT(database_->tables(""), ElementsAre("a", "b"));
  EXPECT_EQ(server_.log.back(), "run Select name From sysobjects Where xtype = N'U' Order By name");
  database_->tables("orvsystem");
  EXPECT_EQ(server_.log.back(), "run Select name From orvsystem..sysobjects Where xtype = N'U' Order By name");
}

TEST_F(OdbcDatabase, ARefusedLoginNamesTheReasonAndNotThePassword) {
  server_.refusal = {
      {.state = u"28000", .number = 18456, .text = u"[V][D][SQL Server]Login failed for 'sa', 'geheim'."}};
  const auto error = errorOf([&] { connect(ConnectionString(server_.connectionString()), {}); });
  EXPECT_EQ(error.number(), 18456);
  EXPECT_EQ(
      error.message(),
      "cannot connect to the database server: Login failed for 'sa', '***'.; check the user and the password (UID=, "
      "PWD=)");
}

TEST_F(OdbcDatabase, ARefusedDatabaseNamesTheReason) {
  server_.refusal = {
      {.state = u"42000", .number = 4060, .text = u"[V][D][SQL Server]Cannot open database \"account\"."}};
  EXPECT_THAT(errorOf([&] { connect(ConnectionString(server_.connectionString()), {}); }).message(),
              HasSubstr("Cannot open database \"account\".; check the connection string"));
}

}  // namespace
}  // namespace quillon::odbc
