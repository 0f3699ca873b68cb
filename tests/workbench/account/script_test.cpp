// Accounts as T-SQL scripts.
#include "workbench/account/script.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <sstream>

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

std::string scriptOf(tsql::Connection& connection) {
  std::ostringstream out;
  writeScript(connection, out);
  return out.str();
}

std::vector<std::string> linesOf(const std::string& script) {
  std::vector<std::string> lines;
  std::istringstream in(script);
  for (std::string line; std::getline(in, line);)
    lines.push_back(line);
  return lines;
}

// Sends the script as the usual programs do: whatever stands before a line that is only `go` is a batch.
void send(const std::string& script, tsql::Connection& server) {
  std::string batch;
  for (const std::string& line : linesOf(script)) {
    if (line == "go") {
      server.execute(batch);
      batch.clear();
    } else {
      batch += line + '\n';
    }
  }
  EXPECT_EQ(batch, "");
}

// The script of a table t (c nvarchar(max)) with this text, from the row on.
std::string scriptOfText(const std::string& text) {
  const auto connection = tsql::Connection::openInMemory();
  connection->execute("Create Table t (c nvarchar(max))");
  connection->bulkWriter("t", std::vector<std::string>{"c"})->write(std::vector<tsql::Value>{text});
  const std::string script = scriptOf(*connection);
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
      "Create Table orvsystem..[UA_Period] (\n"
      "  [iYear] int not null,\n"
      "  [dBegin] datetime not null,\n"
      "  Primary Key ([iYear])\n"
      ")\n"
      "go\n"
      "Insert Into orvsystem..[UA_Period] ([iYear], [dBegin]) Values\n"
      "(2024, N'20240101')\n"
      "go\n"
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
      "Insert Into [Trial] ([id], [name], [ansi], [whole], [flag], [price], [amount], [rate], [day]) Values\n"
      "(5, N'材料''s', N'a', -9223372036854775808, 1, 1.500000, -2.2500, 1e-01, N'20240305'),\n"
      "(6, N'', N'', 0, 0, 0.000000, 0.0000, -1.5e+21, N'2024-03-05T13:14:15.457'),\n"
      "(7, Null, Null, Null, Null, Null, Null, Null, Null)\n"
      "go\n"
      "Set Identity_Insert [Trial] Off\n"
      "go\n"
      "Create Table [no rows] (\n"
      "  [a] int null\n"
      ")\n"
      "go\n"
      "Create Unique Index [ux] On [Trial] ([whole], [flag])\n"
      "go\n"
      "Create Function dbo.[UDF_GetLocaleID]() Returns nvarchar(10) As Begin Return N'zh-CN' End\n"
      "go\n"
      "Create View dbo.[v] As Select name From Trial\n"
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
  const std::string script = scriptOf(*connection);
  EXPECT_THAT(script, HasSubstr("Insert Into [t] ([a]) Values\n(1),\n(2),\n"));
  EXPECT_THAT(script, HasSubstr(",\n(99),\n(100)\ngo\nInsert Into [t] ([a]) Values\n(101),\n(102),\n"));
  EXPECT_THAT(script, EndsWith(",\n(199),\n(200)\ngo\nInsert Into [t] ([a]) Values\n(201)\ngo\n"));
}

TEST(Script, EndsABatchOfAHundredRowsOnce) {
  const auto connection = tsql::Connection::openInMemory();
  connection->execute("Create Table t (a int Primary Key)");
  {
    const auto writer = connection->bulkWriter("t", std::vector<std::string>{"a"});
    for (std::int64_t i = 1; i <= 100; ++i)
      writer->write(std::vector<tsql::Value>{i});
  }
  EXPECT_THAT(scriptOf(*connection), EndsWith(",\n(99),\n(100)\ngo\n"));
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
