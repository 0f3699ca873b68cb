// Accounts as T-SQL scripts.
#include "workbench/account/script.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <sstream>
#include <utility>

#include "tests/workbench/account/test_folder.h"
#include "workbench/account/account.h"
#include "workbench/account/schema.h"
#include "workbench/account/transfer.h"

namespace quillon::account {
namespace {

using testing::contentOf;
using ::testing::EndsWith;
using ::testing::HasSubstr;
using testing::TestFolder;

std::string scriptOf(tsql::Connection& connection, const ScriptOptions& options = {}) {
  std::ostringstream out;
  writeScript(connection, out, options);
  return out.str();
}

// Without the check at the end.
std::string uncheckedScriptOf(tsql::Connection& connection, const ScriptOptions& options = {}) {
  const std::string script = scriptOf(connection, options);
  return script.substr(0, script.find("-- What is there now.\n"));
}

std::vector<std::string> linesOf(const std::string& script) {
  std::vector<std::string> lines;
  std::istringstream in(script);
  for (std::string line; std::getline(in, line);)
    lines.push_back(line);
  return lines;
}

// As the usual programs send them: whatever stands before a line that is only `go` is a batch.
std::vector<std::string> batchesOf(const std::string& script) {
  std::vector<std::string> batches;
  std::string batch;
  for (const std::string& line : linesOf(script)) {
    if (line == "go") {
      batches.push_back(std::exchange(batch, {}));
    } else {
      batch += line + '\n';
    }
  }
  EXPECT_EQ(batch, "");
  return batches;
}

void send(const std::string& script, tsql::Connection& server) {
  for (const std::string& batch : batchesOf(script))
    server.execute(batch);
}

// All rows of a query, a line each.
std::string rowsOf(tsql::Connection& connection, const std::string& query) {
  std::string text;
  const auto rows = connection.query(query);
  while (rows->next()) {
    for (std::size_t i = 0; i < rows->columns().size(); ++i)
      text += (i > 0 ? " " : "") + tsql::toText(rows->value(i)).value_or("NULL");
    text += '\n';
  }
  return text;
}

// The script of a table t (c nvarchar(max)) with this text, from the row on.
std::string scriptOfText(const std::string& text) {
  const auto connection = tsql::Connection::openInMemory();
  connection->execute("Create Table t (c nvarchar(max))");
  connection->bulkWriter("t", std::vector<std::string>{"c"})->write(std::vector<tsql::Value>{text});
  const std::string script = uncheckedScriptOf(*connection);
  const std::string_view before = "Insert Into [t] ([c]) Values\n";
  return script.substr(script.find(before) + before.size());
}

TEST(Script, IsTheAccountInStatements) {
  const auto connection = tsql::Connection::openInMemory();
  connection->execute(
      "Create Table orvsystem..UA_Period (iYear int Primary Key, dBegin datetime not null) "
      "Insert Into orvsystem..UA_Period Values (2024, '20240101') "
      "Create Table Trial (id int identity(5, 1) not null, name nvarchar(20), ansi varchar(9) default 'x', whole bigint, "
      "flag bit, price decimal(18,6), amount money, rate float, day datetime, Primary Key (id), Unique (name)) "
      "Insert Into Trial Values (N'材料''s', 'a', -9223372036854775808, 1, 1.5, -2.25, 0.1e0, '20240305'), "
      "(N'', '', 0, 0, 0, 0, -15e20, '2024-03-05 13:14:15.457'), (Null, Null, Null, Null, Null, Null, Null, Null) "
      "Create Unique Index ux On Trial (whole, flag)"
      "Create Table [no rows] (a int)");
  connection->execute("Create Function dbo.UDF_GetLocaleID() Returns nvarchar(10) As Begin Return N'zh-CN' End");
  connection->execute("Create View v As Select name From Trial");
  EXPECT_EQ(
      scriptOf(*connection),
      "-- An account, for SQL Server 2012 or later. Make an empty database with the collation Chinese_PRC_CI_AS on a "
      "server\n"
      "-- that has no database orvsystem yet, and send this file (UTF-8) to it, one of:\n"
      "--   sqlcmd -S SERVER -d DATABASE -U USER -b -f 65001 -i FILE\n"
      "--   tsql -S SERVER -D DATABASE -U USER -J UTF-8 < FILE\n"
      "--   bsqldb -S SERVER -D DATABASE -U USER -i FILE\n"
      "-- Rows come in batches of at most 100. When it breaks off, send the same file again: what is there already\n"
      "-- is passed over. The last batches count every table; a table with more or fewer rows is an error.\n"
      "Set NoCount On\n"
      "Set Quoted_Identifier On\n"
      "Set Ansi_Nulls On\n"
      "Set Ansi_Padding On\n"
      "Set Ansi_Warnings On\n"
      "Set Concat_Null_Yields_Null On\n"
      "Set Xact_Abort On\n"
      "go\n"
      "If Db_Id(N'orvsystem') Is Null Create Database orvsystem Collate Chinese_PRC_CI_AS\n"
      "go\n"
      "If Object_Id(N'orvsystem..[UA_Period]') Is Null\n"
      "Create Table orvsystem..[UA_Period] (\n"
      "  [iYear] int not null,\n"
      "  [dBegin] datetime not null,\n"
      "  Primary Key ([iYear])\n"
      ")\n"
      "go\n"
      "If Not Exists (Select * From orvsystem..[UA_Period] Where [iYear] = 2024)\n"
      "Insert Into orvsystem..[UA_Period] ([iYear], [dBegin]) Values\n"
      "(2024, N'20240101')\n"
      "go\n"
      "If Object_Id(N'[Trial]') Is Null\n"
      "Create Table [Trial] (\n"
      "  [id] int identity(5, 1) not null,\n"
      "  [name] nvarchar(20) null,\n"
      "  [ansi] varchar(9) null default 'x',\n"
      "  [whole] bigint null,\n"
      "  [flag] bit null,\n"
      "  [price] decimal(18,6) null,\n"
      "  [amount] money null,\n"
      "  [rate] float null,\n"
      "  [day] datetime null,\n"
      "  Primary Key ([id]),\n"
      "  Unique ([name])\n"
      ")\n"
      "go\n"
      "Set Identity_Insert [Trial] On\n"
      "go\n"
      "If Not Exists (Select * From [Trial] Where [id] = 5)\n"
      "Insert Into [Trial] ([id], [name], [ansi], [whole], [flag], [price], [amount], [rate], [day]) Values\n"
      "(5, N'材料''s', N'a', -9223372036854775808, 1, 1.500000, -2.2500, 1e-01, N'20240305'),\n"
      "(6, N'', N'', 0, 0, 0.000000, 0.0000, -1.5e+21, N'2024-03-05T13:14:15.457'),\n"
      "(7, Null, Null, Null, Null, Null, Null, Null, Null)\n"
      "go\n"
      "Set Identity_Insert [Trial] Off\n"
      "go\n"
      "If Object_Id(N'[no rows]') Is Null\n"
      "Create Table [no rows] (\n"
      "  [a] int null\n"
      ")\n"
      "go\n"
      "If Not Exists (Select * From sysindexes Where id = Object_Id(N'[Trial]') And name = N'ux')\n"
      "Create Unique Index [ux] On [Trial] ([whole], [flag])\n"
      "go\n"
      "If Object_Id(N'dbo.[UDF_GetLocaleID]') Is Not Null Drop Function dbo.[UDF_GetLocaleID]\n"
      "go\n"
      "Create Function dbo.[UDF_GetLocaleID]() Returns nvarchar(10) As Begin Return N'zh-CN' End\n"
      "go\n"
      "If Object_Id(N'dbo.[v]') Is Not Null Drop View dbo.[v]\n"
      "go\n"
      "Create View dbo.[v] As Select name From Trial\n"
      "go\n"
      "-- What is there now.\n"
      "If Object_Id(N'tempdb..#counted') Is Not Null Drop Table #counted\n"
      "go\n"
      "Create Table #counted ([table] nvarchar(300) null, [expected] bigint null, [found] bigint null)\n"
      "go\n"
      "Insert Into #counted Select N'orvsystem..[UA_Period]', 1, Count_Big(*) From orvsystem..[UA_Period]\n"
      "go\n"
      "Insert Into #counted Select N'[Trial]', 3, Count_Big(*) From [Trial]\n"
      "go\n"
      "Insert Into #counted Select N'[no rows]', 0, Count_Big(*) From [no rows]\n"
      "go\n"
      "If Exists (Select * From #counted Where [expected] <> [found])\n"
      "Begin\n"
      "  Select [table], [expected], [found] From #counted Where [expected] <> [found]\n"
      "  Raiserror(N'The account is not complete: the tables above hold more or fewer rows than they have to.', 16, 1)\n"
      "End\n"
      "Else Select Count(*) As [tables], Sum([found]) As [rows] From #counted\n"
      "go\n"
      "Drop Table #counted\n"
      "go\n");
}

TEST(Script, HasNoMoreThanAHundredRowsInABatch) {
  const auto connection = tsql::Connection::openInMemory();
  connection->execute("Create Table t (a int Primary Key)");
  {
    const auto writer = connection->bulkWriter("t", std::vector<std::string>{"a"});
    for (std::int64_t i = 1; i <= 201; ++i)
      writer->write(std::vector<tsql::Value>{i});
  }
  const std::string script = uncheckedScriptOf(*connection);
  EXPECT_THAT(script, HasSubstr("Insert Into [t] ([a]) Values\n(1),\n(2),\n"));
  EXPECT_THAT(script, HasSubstr(",\n(99),\n(100)\ngo\nIf Not Exists (Select * From [t] Where [a] = 101)\n"
                                "Insert Into [t] ([a]) Values\n(101),\n(102),\n"));
  EXPECT_THAT(script, EndsWith(",\n(199),\n(200)\ngo\nIf Not Exists (Select * From [t] Where [a] = 201)\n"
                               "Insert Into [t] ([a]) Values\n(201)\ngo\n"));
}

TEST(Script, EndsABatchOfAHundredRowsOnce) {
  const auto connection = tsql::Connection::openInMemory();
  connection->execute("Create Table t (a int Primary Key)");
  {
    const auto writer = connection->bulkWriter("t", std::vector<std::string>{"a"});
    for (std::int64_t i = 1; i <= 100; ++i)
      writer->write(std::vector<tsql::Value>{i});
  }
  EXPECT_THAT(uncheckedScriptOf(*connection), EndsWith(",\n(99),\n(100)\ngo\n"));
}

TEST(Script, KeepsLineBreaksOutOfTheLines) {
  EXPECT_EQ(scriptOfText("go"), "(N'go')\ngo\n");
  EXPECT_EQ(scriptOfText("a\r\ngo\nb"), "(N'a' + NChar(13) + NChar(10) + N'go' + NChar(10) + N'b')\ngo\n");
  EXPECT_EQ(scriptOfText("\n"), "(NChar(10))\ngo\n");
  EXPECT_EQ(scriptOfText(std::string("\0\t\x7f", 3)), "(NChar(0) + NChar(9) + NChar(127))\ngo\n");
}

TEST(Script, HasNoVariablesOfTheSendingProgram) {
  EXPECT_EQ(scriptOfText("$(user)"), "(N'$' + N'(user)')\ngo\n");
  EXPECT_EQ(scriptOfText("$5 (a)"), "(N'$5 (a)')\ngo\n");
}

TEST(Script, WritesHalvesOfSurrogatePairsByNumber) {
  EXPECT_EQ(scriptOfText("\xED\xA0\xBD"), "(NChar(55357))\ngo\n");
  EXPECT_EQ(scriptOfText("\xF0\xA0\xAE\xB7"), "(N'\xF0\xA0\xAE\xB7')\ngo\n");
}

TEST(Script, CutsLongTextsWithoutLosingTheirEnd) {
  EXPECT_EQ(scriptOfText(std::string(501, 'x')), "(N'" + std::string(500, 'x') + "' + N'x')\ngo\n");
  const std::string script = scriptOfText(std::string(4001, 'x'));
  EXPECT_THAT(script, ::testing::StartsWith("(Cast(N'' As nvarchar(max)) + N'xxx"));
  for (const std::string& line : linesOf(script))
    EXPECT_LE(line.size(), 2047U);
}

TEST(Script, BreaksLongLinesBetweenValuesAndNames) {
  const auto connection = tsql::Connection::openInMemory();
  std::string columns;
  for (int i = 0; i < 300; ++i)
    columns += (i == 0 ? "c" : ", c") + std::to_string(i) + " nvarchar(100)";
  connection->execute("Create Table t (" + columns + ") Insert Into t (c0, c299) Values (N'first', N'last')");
  const std::string script = scriptOf(*connection);
  for (const std::string& line : linesOf(script))
    EXPECT_LE(line.size(), 2047U);
  const auto server = tsql::Connection::openInMemory();
  send(script, *server);
  const auto rows = server->query("Select c0, c298, c299 From t");
  ASSERT_TRUE(rows->next());
  EXPECT_EQ(tsql::toText(rows->value(0)), "first");
  EXPECT_EQ(tsql::toText(rows->value(1)), std::nullopt);
  EXPECT_EQ(tsql::toText(rows->value(2)), "last");
}

TEST(Script, BringsEveryTextToTheServer) {
  const std::vector<std::string> texts = {"",
                                          " ",
                                          "'",
                                          "''",
                                          "go\n",
                                          "a\r\ngo\r\nb",
                                          "库存 $(x) \xF0\xA0\xAE\xB7 \xED\xA0\xBD",
                                          std::string("a\0b", 3),
                                          "-- no comment",
                                          "/* neither */",
                                          std::string(9000, '\''),
                                          std::string(3000, 'x') + "\n" + std::string(3000, 'y')};
  const auto connection = tsql::Connection::openInMemory();
  connection->execute("Create Table t (n int Primary Key, c nvarchar(max))");
  {
    const auto writer = connection->bulkWriter("t", std::vector<std::string>{"n", "c"});
    for (std::size_t i = 0; i < texts.size(); ++i)
      writer->write(std::vector<tsql::Value>{static_cast<std::int64_t>(i), texts[i]});
  }
  const auto server = tsql::Connection::openInMemory();
  send(scriptOf(*connection), *server);
  const auto rows = server->query("Select c From t Order By n");
  for (const std::string& text : texts) {
    ASSERT_TRUE(rows->next());
    EXPECT_EQ(tsql::toText(rows->value(0)), text);
  }
  EXPECT_FALSE(rows->next());
}

TEST(Script, BringsEveryNumberAndDateToTheServer) {
  const std::string_view values =
      "Create Table t (n int Primary Key, d decimal(38,10), e decimal(5,2), m money, f float, b bigint, t datetime) "
      "Insert Into t Values (1, 9999999999999999999999999999.9999999999, 999.99, 922337203685477.5807, "
      "1.7976931348623157e308, 9223372036854775807, '9999-12-31 23:59:59.997'), "
      "(2, -0.0000000001, -0.01, -922337203685477.5808, 4.9406564584124654e-300, -9223372036854775808, '1753-01-01'), "
      "(3, 0, 0, 0.0001, 0.30000000000000004e0, 0, '2024-02-29 00:00:00.003')";
  const auto connection = tsql::Connection::openInMemory();
  connection->execute(values);
  const auto server = tsql::Connection::openInMemory();
  send(scriptOf(*connection), *server);
  const auto expected = connection->query("Select * From t Order By n");
  const auto actual = server->query("Select * From t Order By n");
  for (int row = 0; row < 3; ++row) {
    ASSERT_TRUE(expected->next());
    ASSERT_TRUE(actual->next());
    for (std::size_t i = 0; i < expected->columns().size(); ++i)
      EXPECT_EQ(actual->value(i), expected->value(i)) << expected->columns()[i].name;
  }
  EXPECT_FALSE(actual->next());
}

TEST(Script, MakesAnAccountWithTheSameFiles) {
  const TestFolder folder;
  createSample(folder / "sample.account", {.rows = 1000, .seed = 3, .years = 2});
  const auto sample = tsql::Connection::open(folder / "sample.account", tsql::OpenMode::existing);
  sample->execute(
      "Update Inventory Set cInvName = cInvName + NChar(13) + NChar(10) + N'go' + NChar(10) + N'\"'',$(x)'");
  const auto server = tsql::Connection::openInMemory();
  send(scriptOf(*sample), *server);
  exportAccount(*sample, folder / "one");
  exportAccount(*server, folder / "two");
  std::size_t files = 0;
  for (const auto& entry : std::filesystem::directory_iterator(folder / "one")) {
    const std::string name = entry.path().filename().string();
    EXPECT_EQ(contentOf(entry.path()), contentOf(folder / ("two/" + name))) << name;
    ++files;
  }
  EXPECT_EQ(files, 43U);
  const auto locale = server->query("Select dbo.UDF_GetLocaleID()");
  ASSERT_TRUE(locale->next());
  EXPECT_EQ(tsql::toText(locale->value(0)), "zh-CN");
}

// --- Batches, breaks, the check --------------------------------------------------------------------------------------

TEST(Script, StatesAndKeepsTheSizeOfItsBatches) {
  const auto connection = tsql::Connection::openInMemory();
  connection->execute("Create Table t (a int Primary Key) Insert Into t Values (1), (2), (3), (4), (5)");
  const std::string script = uncheckedScriptOf(*connection, {.accountId = {}, .batchRows = 2});
  EXPECT_THAT(script, HasSubstr("-- Rows come in batches of at most 2. "));
  EXPECT_THAT(script, EndsWith("If Not Exists (Select * From [t] Where [a] = 1)\n"
                               "Insert Into [t] ([a]) Values\n(1),\n(2)\ngo\n"
                               "If Not Exists (Select * From [t] Where [a] = 3)\n"
                               "Insert Into [t] ([a]) Values\n(3),\n(4)\ngo\n"
                               "If Not Exists (Select * From [t] Where [a] = 5)\n"
                               "Insert Into [t] ([a]) Values\n(5)\ngo\n"));
}

TEST(Script, EndsABatchOfTextsInManyPieces) {
  const auto connection = tsql::Connection::openInMemory();
  connection->execute("Create Table t (a int Primary Key, c nvarchar(200))");
  {
    const auto writer = connection->bulkWriter("t", std::vector<std::string>{"a", "c"});
    for (std::int64_t i = 0; i < 500; ++i)
      writer->write(std::vector<tsql::Value>{i, std::string(20, '\n')});
  }
  const std::string script = scriptOf(*connection, {.accountId = {}, .batchRows = mostBatchRows});
  const auto server = tsql::Connection::openInMemory();
  send(script, *server);
  EXPECT_EQ(scriptOf(*server, {.accountId = {}, .batchRows = mostBatchRows}), script);
}

// Tables of every kind: keys of one column and of several, of texts that need care, none at all with rows alike, numbers
// that the server gives; indexes, a function and a view that reads another.
std::unique_ptr<tsql::Connection> accountOfEveryKind() {
  auto connection = tsql::Connection::openInMemory();
  connection->execute(
      "Create Table orvsystem..UA_Period (cAcc_Id nvarchar(10) not null, iYear int not null, iId int not null, "
      "Primary Key (cAcc_Id, iYear, iId)) "
      "Insert Into orvsystem..UA_Period Values (N'001', 2023, 1), (N'001', 2023, 2), (N'001', 2024, 1) "
      "Create Table orvsystem..ua_user (cUser_Id nvarchar(20) not null, cUser_Name nvarchar(40), Primary Key (cUser_Id)) "
      "Insert Into orvsystem..ua_user Values (N'01', N'Wang'), (N'02', N'O''Neill'), (N'03', N'Zhang') "
      "Create Index byName On orvsystem..ua_user (cUser_Name) "
      "Create Table Plain (a int not null, b nvarchar(10) not null, c money, Primary Key (a, b)) "
      "Insert Into Plain Values (1, N'a''s', 1), (1, N'b', Null), (2, N'a', 3), (2, N'b', 4), (3, N'', 5) "
      "Create Table Numbered (id int identity(5, 1) not null, c nvarchar(max), Primary Key (id)) "
      "Insert Into Numbered Values (N'x'), (N'y' + NChar(10) + N'go' + NChar(10)), (Null) "
      "Create Table Texts (c nvarchar(20) not null, Primary Key (c)) "
      "Insert Into Texts Values (N'' + NChar(10) + N'go'), (N'$(x)'), (N'库存') "
      "Create Table Keyless (a int, b float) Insert Into Keyless Values (1, 0.5), (1, 0.5), (1, 0.5), (Null, 1e300) "
      "Create Table Empty (a int) "
      "Create Index ix On Plain (c) Create Unique Index ux On Numbered (id, c)");
  connection->execute("Create Function dbo.F() Returns int As Begin Return 7 End");
  connection->execute("Create View V As Select a From Plain");
  connection->execute("Create View W As Select a From V");
  return connection;
}

const ScriptOptions inBatchesOfTwo = {.accountId = {}, .batchRows = 2};

TEST(Script, TwiceIsAsOnce) {
  const auto account = accountOfEveryKind();
  const std::string script = scriptOf(*account, inBatchesOfTwo);
  const auto server = tsql::Connection::openInMemory();
  send(script, *server);
  ASSERT_EQ(scriptOf(*server, inBatchesOfTwo), script);
  send(script, *server);
  EXPECT_EQ(scriptOf(*server, inBatchesOfTwo), script);
}

TEST(Script, GoesOnAfterABreakAtAnyBatch) {
  const auto account = accountOfEveryKind();
  const std::string script = scriptOf(*account, inBatchesOfTwo);
  const std::vector<std::string> batches = batchesOf(script);
  ASSERT_GT(batches.size(), 40U);
  const TestFolder folder;
  for (std::size_t sent = 1; sent < batches.size(); ++sent) {
    const std::filesystem::path file = folder / std::to_string(sent);
    {
      const auto server = tsql::Connection::open(file, tsql::OpenMode::createNew);
      for (std::size_t i = 0; i < sent; ++i)
        server->execute(batches[i]);
    }
    const auto server = tsql::Connection::open(file, tsql::OpenMode::existing);
    send(script, *server);
    ASSERT_EQ(scriptOf(*server, inBatchesOfTwo), script)
        << "broken off behind batch " << sent << ": " << batches[sent - 1];
  }
}

// What the last batches of the script say of a server: the rows that they show, and the error.
std::string checkOf(const std::string& script, tsql::Connection& server) {
  struct Shown : tsql::ResultSink {
    std::string text;
    void columns(std::span<const tsql::Column>) override {}
    void row(std::span<const tsql::Value> values) override {
      for (const tsql::Value& value : values)
        text += tsql::toText(value).value_or("NULL") + ' ';
      text += '\n';
    }
    void rowsAffected(std::int64_t) override {}
  } shown;
  for (const std::string& batch : batchesOf(script.substr(script.find("-- What is there now.\n")))) {
    try {
      server.run(batch, shown);
    } catch (const tsql::SqlError& error) {
      shown.text += std::to_string(error.number()) + ": " + error.message() + '\n';
    }
  }
  return shown.text;
}

constexpr const char* notComplete =
    "50000: The account is not complete: the tables above hold more or fewer rows than they have to.\n";

TEST(Script, TellsTablesWithMoreOrFewerRows) {
  const auto account = accountOfEveryKind();
  const std::string script = scriptOf(*account);
  const auto server = tsql::Connection::openInMemory();
  send(script, *server);
  EXPECT_EQ(checkOf(script, *server), "7 21 \n") << "tables and rows";
  server->execute("Delete From Texts Where c = N'库存' Insert Into Empty Values (1)");
  EXPECT_EQ(checkOf(script, *server), std::string("[Texts] 3 2 \n[Empty] 0 1 \n") + notComplete);
  server->execute("Insert Into Texts Values (N'库存') Delete From Empty");
  EXPECT_EQ(checkOf(script, *server), "7 21 \n") << "it can be asked again";
}

// --- A second account on a server --------------------------------------------------------------------------------------

constexpr const char* periods = "Select cAcc_Id, iYear, iId From orvsystem..UA_Period Order By cAcc_Id, iYear, iId";
constexpr const char* users = "Select cUser_Id, cUser_Name From orvsystem..ua_user Order By cUser_Id";
const ScriptOptions asSecond = {.accountId = "002", .batchRows = 2};

// A server that has a system database with account 001.
std::unique_ptr<tsql::Connection> serverWithAnAccount() {
  auto server = tsql::Connection::openInMemory();
  server->execute(
      "Create Table orvsystem..UA_Period (cAcc_Id nvarchar(10) not null, iYear int not null, iId int not null, "
      "Primary Key (cAcc_Id, iYear, iId)) "
      "Insert Into orvsystem..UA_Period Values (N'001', 2020, 1), (N'001', 2023, 1) "
      "Create Table orvsystem..ua_user (cUser_Id nvarchar(20) not null, cUser_Name nvarchar(40), Primary Key (cUser_Id)) "
      "Insert Into orvsystem..ua_user Values (N'02', N'Li'), (N'99', N'Zhao')");
  return server;
}

TEST(ScriptOfASecondAccount, LeavesTheFirstAsItWas) {
  const auto account = accountOfEveryKind();
  const std::string script = scriptOf(*account, asSecond);
  const auto server = serverWithAnAccount();
  for (int time = 0; time < 2; ++time) {
    send(script, *server);
    EXPECT_EQ(rowsOf(*server, periods), "001 2020 1\n001 2023 1\n002 2023 1\n002 2023 2\n002 2024 1\n");
    EXPECT_EQ(rowsOf(*server, users), "01 Wang\n02 Li\n03 Zhang\n99 Zhao\n");
    EXPECT_EQ(rowsOf(*server, "Select a, b, c From Plain Order By a, b"),
              rowsOf(*account, "Select a, b, c From Plain Order By a, b"));
    EXPECT_EQ(checkOf(script, *server), "7 21 \n");
  }
}

TEST(ScriptOfASecondAccount, GoesOnAfterABreakAtAnyBatch) {
  const auto account = accountOfEveryKind();
  const std::string script = scriptOf(*account, asSecond);
  const auto whole = serverWithAnAccount();
  send(script, *whole);
  const std::vector<std::string> batches = batchesOf(script);
  for (std::size_t sent = 1; sent < batches.size(); ++sent) {
    const auto server = serverWithAnAccount();
    for (std::size_t i = 0; i < sent; ++i)
      server->execute(batches[i]);
    send(script, *server);
    ASSERT_EQ(scriptOf(*server), scriptOf(*whole)) << "broken off behind batch " << sent;
  }
}

TEST(ScriptOfASecondAccount, ReplacesItsOwnRows) {
  const auto account = accountOfEveryKind();
  const auto server = serverWithAnAccount();
  send(scriptOf(*account, asSecond), *server);
  account->execute("Delete From orvsystem..UA_Period Where iYear = 2023 Update orvsystem..UA_Period Set iId = 9");
  send(scriptOf(*account, asSecond), *server);
  EXPECT_EQ(rowsOf(*server, periods), "001 2020 1\n001 2023 1\n002 2024 9\n");
}

TEST(ScriptOfASecondAccount, MakesTheSystemDatabaseWhereThereIsNone) {
  const auto account = accountOfEveryKind();
  const auto server = tsql::Connection::openInMemory();
  send(scriptOf(*account, asSecond), *server);
  EXPECT_EQ(rowsOf(*server, periods), "002 2023 1\n002 2023 2\n002 2024 1\n");
  EXPECT_EQ(rowsOf(*server, users), rowsOf(*account, users));
}

TEST(ScriptOfASecondAccount, TakesOneAccountOutOfSeveral) {
  const auto account = accountOfEveryKind();
  account->execute("Insert Into orvsystem..UA_Period Values (N'007', 2024, 5)");
  const auto server = serverWithAnAccount();
  send(scriptOf(*account, asSecond), *server);
  EXPECT_EQ(rowsOf(*server, periods), "001 2020 1\n001 2023 1\n002 2023 1\n002 2023 2\n002 2024 1\n");
}

TEST(ScriptOfASecondAccount, TellsWhichOfItsRowsAreMissing) {
  const auto account = accountOfEveryKind();
  const std::string script = scriptOf(*account, asSecond);
  const auto server = serverWithAnAccount();
  send(script, *server);
  server->execute(
      "Delete From orvsystem..ua_user Where cUser_Id = N'03' Insert Into orvsystem..ua_user Values (N'44', Null)");
  server->execute("Delete From orvsystem..UA_Period Where cAcc_Id = N'002' And iYear = 2024");
  EXPECT_EQ(checkOf(script, *server),
            std::string("orvsystem..[UA_Period] 3 2 \norvsystem..[ua_user] 3 2 \n") + notComplete);
}

TEST(ScriptOfASecondAccount, SharesTablesWithoutAKeyOfOneColumn) {
  const auto account = tsql::Connection::openInMemory();
  account->execute(
      "Create Table orvsystem..pairs (a int not null, b int not null, Primary Key (a, b)) "
      "Insert Into orvsystem..pairs Values (1, 1), (1, 2) "
      "Create Table orvsystem..loose (a int, b nvarchar(5)) Insert Into orvsystem..loose Values (1, N'x'), (1, Null)");
  const std::string script = scriptOf(*account, asSecond);
  const auto server = tsql::Connection::openInMemory();
  server->execute(
      "Create Table orvsystem..pairs (a int not null, b int not null, Primary Key (a, b)) "
      "Insert Into orvsystem..pairs Values (1, 2), (9, 9) "
      "Create Table orvsystem..loose (a int, b nvarchar(5)) Insert Into orvsystem..loose Values (7, N'z')");
  send(script, *server);
  send(script, *server);
  EXPECT_EQ(rowsOf(*server, "Select a, b From orvsystem..pairs Order By a, b"), "1 1\n1 2\n9 9\n");
  EXPECT_EQ(rowsOf(*server, "Select a, b From orvsystem..loose Order By a, b"), "1 NULL\n1 x\n7 z\n");
  server->execute("Delete From orvsystem..loose Delete From orvsystem..pairs Where a = 1");
  EXPECT_EQ(checkOf(script, *server), std::string("orvsystem..[pairs] 2 1 \norvsystem..[loose] 2 0 \n") + notComplete);
}

TEST(ScriptOfASecondAccount, TakesNoIdThatDoesNotFit) {
  const auto account = accountOfEveryKind();
  EXPECT_THAT(scriptOf(*account, {.accountId = "O'1234567\xE5\xB8\x90", .batchRows = 1}),
              HasSubstr("Delete From orvsystem..[UA_Period] Where [cAcc_Id] = N'O''1234567\xE5\xB8\x90'\n"));
  EXPECT_THROW(scriptOf(*account, {.accountId = "12345678901", .batchRows = 1}), AccountError);
  EXPECT_THROW(scriptOf(*account, {.accountId = "1\ngo", .batchRows = 1}), AccountError);
}

TEST(Script, CannotMakeCodeInTheSystemDatabase) {
  const auto connection = tsql::Connection::openInMemory();
  connection->execute("Create Table orvsystem..a (b int)");
  connection->execute("Create View orvsystem..v As Select b From orvsystem..a");
  try {
    scriptOf(*connection);
    FAIL() << "a script was written";
  } catch (const AccountError& error) {
    EXPECT_STREQ(
        error.what(),
        "a script cannot make orvsystem..[v]: a server makes a view or function from within its database only; "
        "drop it first");
  }
}

}  // namespace
}  // namespace quillon::account
