// Accounts as folders of CSV files.
#include "workbench/account/transfer.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/workbench/account/test_folder.h"
#include "workbench/account/account.h"
#include "workbench/account/schema.h"
#include "workbench/tsql/engine/stored_schema.h"

namespace quillon::account {
namespace {

using ::testing::Contains;
using testing::contentOf;
using ::testing::ElementsAre;
using ::testing::Not;

std::string firstText(tsql::Connection& connection, std::string_view sql) {
  const auto rows = connection.query(sql);
  return rows->next() ? tsql::toText(rows->value(0)).value_or("NULL") : "no row";
}

// An account with a table more, made by these statements.
void makeAccount(const std::filesystem::path& file, std::string_view statements = {}) {
  const auto connection = tsql::Connection::open(file, tsql::OpenMode::createNew);
  createTables(*connection);
  createIndexes(*connection);
  connection->execute(statements);
}

TransferCounts exportFile(const std::filesystem::path& file, const std::filesystem::path& folder) {
  return exportAccount(*tsql::Connection::open(file, tsql::OpenMode::readOnly), folder);
}

template <typename Action>
std::string refusal(Action action) {
  try {
    action();
  } catch (const AccountError& error) {
    return error.what();
  }
  return "accepted";
}

// What stands in front of a message about a file: its folder is the test's.
std::string without(const std::filesystem::path& folder, const std::string& message) {
  const std::string prefix = (folder / "").string();
  return message.starts_with(prefix) ? message.substr(prefix.size()) : message;
}

constexpr std::string_view everyType =
    "Create Table Trial (id int identity(5, 1) not null, text nvarchar(40), long nvarchar(max), ansi varchar(5), whole "
    "bigint, flag bit, quantity decimal(38,10), price decimal(18,6), amount money, rate float, day datetime, "
    "Primary Key (id))";

class Transfer : public ::testing::Test {
 protected:
  testing::TestFolder folder_;
};

// --- There and back -------------------------------------------------------------------------------------------------

TEST_F(Transfer, WritesAFileForEachTable) {
  createSample(folder_ / "sample.account", {.rows = 1000, .seed = 3, .years = 2});
  const TransferCounts counts = exportFile(folder_ / "sample.account", folder_ / "csv");
  EXPECT_EQ(counts.tables, 42);
  EXPECT_GT(counts.rows, 1000);
  EXPECT_TRUE(std::filesystem::exists(folder_ / "csv/ia_subsidiary.csv"));
  EXPECT_TRUE(std::filesystem::exists(folder_ / "csv/orvsystem..UA_Period.csv"));
  EXPECT_THAT(contentOf(folder_ / "csv/VouchType.csv"), ::testing::StartsWith("cVouchType,cVouchName\r\n"));
}

TEST_F(Transfer, WritesEveryTypeExactly) {
  makeAccount(folder_ / "a",
              std::string(everyType) +
                  " Insert Into Trial Values "
                  "(N'材料', N'', 'ab', -9223372036854775808, 1, 1.5, -0.000001, -1.5, 0.1e0, '20240305'), "
                  "(Null, N' ', '', 0, 0, -9999999999999999999999999999.9999999999, 0, "
                  "-922337203685477.5808, -1e-300, '1753-01-01 00:00:00.003'), "
                  "(N'', Null, Null, Null, Null, Null, Null, Null, Null, Null)");
  exportFile(folder_ / "a", folder_ / "csv");
  EXPECT_EQ(contentOf(folder_ / "csv/Trial.csv"),
            "id,text,long,ansi,whole,flag,quantity,price,amount,rate,day\r\n"
            "5,材料,\"\",ab,-9223372036854775808,1,1.5000000000,-0.000001,-1.5000,0.1,2024-03-05 00:00:00.000\r\n"
            "6,, ,\"\",0,0,-9999999999999999999999999999.9999999999,0.000000,-922337203685477.5808,-1e-300,"
            "1753-01-01 00:00:00.003\r\n"
            "7,\"\",,,,,,,,,\r\n");
}

TEST_F(Transfer, WritesTheSchemaWithKeysIdentityAndIndexes) {
  makeAccount(folder_ / "a",
              "Create Table [a b] (n int identity(10, 5), c nvarchar(9) not null default N'x', Unique (n, c)) "
              "Create Index ix On [a b] (c, n)");
  exportFile(folder_ / "a", folder_ / "csv");
  const std::string schema = contentOf(folder_ / "csv/schema.sql");
  EXPECT_THAT(schema, ::testing::HasSubstr("Create Table [a b] (\n"
                                           "  [n] int identity(10, 5) not null,\n"
                                           "  [c] nvarchar(9) not null default N'x',\n"
                                           "  Unique ([n], [c])\n"
                                           ");\n"
                                           "Create Index [ix] On [a b] ([c], [n]);\n"));
  EXPECT_THAT(schema,
              ::testing::HasSubstr(
                  "Create Function dbo.[UDF_GetLocaleID]() Returns nvarchar(10) As Begin Return N'zh-CN' End;\n"));
}

TEST_F(Transfer, MakesTheSameAccountAgain) {
  createSample(folder_ / "sample.account", {.rows = 1000, .seed = 3, .years = 2});
  exportFile(folder_ / "sample.account", folder_ / "one");
  const TransferCounts counts = importAccount(folder_ / "again.account", folder_ / "one");
  EXPECT_EQ(counts.tables, 42);
  exportFile(folder_ / "again.account", folder_ / "two");
  std::size_t files = 0;
  for (const auto& entry : std::filesystem::directory_iterator(folder_ / "one")) {
    const std::string name = entry.path().filename().string();
    EXPECT_EQ(contentOf(entry.path()), contentOf(folder_ / ("two/" + name))) << name;
    ++files;
  }
  EXPECT_EQ(files, 43U);
  const auto before = tsql::Connection::open(folder_ / "sample.account", tsql::OpenMode::readOnly);
  const auto after = tsql::Connection::open(folder_ / "again.account", tsql::OpenMode::readOnly);
  for (const TableDefinition& table : tables()) {
    const auto one = before->describe(table.name), two = after->describe(table.name);
    ASSERT_EQ(one.size(), two.size()) << table.name;
    for (std::size_t i = 0; i < one.size(); ++i)
      EXPECT_EQ(one[i].type, two[i].type) << table.name << '.' << one[i].name;
  }
  EXPECT_EQ(firstText(*after, "Select dbo.UDF_GetLocaleID()"), "zh-CN");
}

TEST_F(Transfer, KeepsTextsToTheLastCharacter) {
  makeAccount(folder_ / "a", "Create Table t (n int Primary Key, c nvarchar(max))");
  const std::vector<std::string> texts = {"",
                                          " ",
                                          "  a  ",
                                          "\"",
                                          "\"\"",
                                          ",",
                                          "a\r\nb\nc\rd",
                                          "\n",
                                          "go\n",
                                          "库存商品 Ａ",
                                          "\xF0\xA0\xAE\xB7",  // beyond the basic plane
                                          "\xED\xA0\xBD",      // half of a surrogate pair
                                          std::string("a\0b", 3),
                                          "NULL",
                                          std::string(100'000, 'x')};
  {
    const auto connection = tsql::Connection::open(folder_ / "a", tsql::OpenMode::existing);
    const auto writer = connection->bulkWriter("t", std::vector<std::string>{"n", "c"});
    for (std::size_t i = 0; i < texts.size(); ++i)
      writer->write(std::vector<tsql::Value>{static_cast<std::int64_t>(i), texts[i]});
    writer->write(std::vector<tsql::Value>{static_cast<std::int64_t>(texts.size()), {}});
  }
  exportFile(folder_ / "a", folder_ / "csv");
  importAccount(folder_ / "b", folder_ / "csv");
  const auto connection = tsql::Connection::open(folder_ / "b", tsql::OpenMode::readOnly);
  const auto rows = connection->query("Select c From t Order By n");
  for (const std::string& text : texts) {
    ASSERT_TRUE(rows->next());
    EXPECT_EQ(tsql::toText(rows->value(0)), text);
  }
  ASSERT_TRUE(rows->next());
  EXPECT_TRUE(tsql::isNull(rows->value(0)));
  EXPECT_FALSE(rows->next());
}

TEST_F(Transfer, GoesOnNumberingWhereTheAccountStopped) {
  makeAccount(folder_ / "a",
              "Create Table t (n int identity(1, 1) Primary Key, c nvarchar(9)) "
              "Insert Into t (c) Values (N'a'), (N'b'), (N'c') Delete From t Where n = 2");
  exportFile(folder_ / "a", folder_ / "csv");
  importAccount(folder_ / "b", folder_ / "csv");
  const auto connection = tsql::Connection::open(folder_ / "b", tsql::OpenMode::existing);
  connection->execute("Insert Into t (c) Values (N'd')");
  EXPECT_EQ(firstText(*connection, "Select Max(n) From t"), "4");
  EXPECT_EQ(firstText(*connection, "Select Count(*) From t"), "3");
}

TEST_F(Transfer, KeepsKeysIndexesAndDefaults) {
  makeAccount(folder_ / "a",
              "Create Table t (a int, b nvarchar(9) default N'x', Primary Key (a)) "
              "Create Unique Index ux On t (b) Create Index ix On t (b, a) "
              "Create View v As Select a, b From t");
  exportFile(folder_ / "a", folder_ / "csv");
  importAccount(folder_ / "b", folder_ / "csv");
  const auto connection = tsql::Connection::open(folder_ / "b", tsql::OpenMode::existing);
  connection->execute("Insert Into t (a) Values (1)");
  EXPECT_EQ(firstText(*connection, "Select b From v"), "x");
  const tsql::StoredSchema schema = storedSchema(*connection);
  const tsql::StoredTable& table = schema.tables.back();
  EXPECT_EQ(table.name, "t");
  EXPECT_THAT(table.primaryKey(), ElementsAre("a"));
  ASSERT_EQ(table.indexes.size(), 2U);
  EXPECT_EQ(table.indexes[0].name, "ux");
  EXPECT_TRUE(table.indexes[0].unique);
  EXPECT_THAT(table.indexes[0].columns, ElementsAre("b"));
  EXPECT_EQ(table.indexes[1].name, "ix");
  EXPECT_FALSE(table.indexes[1].unique);
  EXPECT_THAT(table.indexes[1].columns, ElementsAre("b", "a"));
}

TEST_F(Transfer, GivesFilesNamesThatEverySystemTakes) {
  makeAccount(folder_ / "a", "Create Table [材料/a?%] (a int) Insert Into [材料/a?%] Values (1)");
  exportFile(folder_ / "a", folder_ / "csv");
  EXPECT_EQ(contentOf(folder_ / "csv/材料%2Fa%3F%25.csv"), "a\r\n1\r\n");
  importAccount(folder_ / "b", folder_ / "csv");
  EXPECT_EQ(firstText(*tsql::Connection::open(folder_ / "b", tsql::OpenMode::readOnly), "Select a From [材料/a?%]"),
            "1");
}

// --- Refusals of the export -----------------------------------------------------------------------------------------

TEST_F(Transfer, LeavesAFolderWithFilesAlone) {
  makeAccount(folder_ / "a");
  std::filesystem::create_directory(folder_ / "csv");
  testing::write(folder_ / "csv/notes.txt", "mine");
  EXPECT_EQ(refusal([&] { exportFile(folder_ / "a", folder_ / "csv"); }),
            (folder_ / "csv").string() + " holds files already; choose another folder or empty it first");
  EXPECT_EQ(contentOf(folder_ / "csv/notes.txt"), "mine");
}

TEST_F(Transfer, FillsAnEmptyFolder) {
  makeAccount(folder_ / "a");
  std::filesystem::create_directory(folder_ / "csv");
  EXPECT_EQ(exportFile(folder_ / "a", folder_ / "csv").tables, 42);
}

TEST_F(Transfer, FillsAFolderThatAnInterruptedExportLeft) {
  makeAccount(folder_ / "a");
  std::filesystem::create_directory(folder_ / "csv");
  testing::write(folder_ / "csv/schema.sql.part", "Create");
  testing::write(folder_ / "csv/Inventory.csv", "half of it");
  testing::write(folder_ / "csv/TableOfAnotherAccount.csv", "half of it");
  EXPECT_EQ(exportFile(folder_ / "a", folder_ / "csv").tables, 42);
  EXPECT_FALSE(std::filesystem::exists(folder_ / "csv/schema.sql.part"));
  EXPECT_FALSE(std::filesystem::exists(folder_ / "csv/TableOfAnotherAccount.csv"));
  EXPECT_EQ(importAccount(folder_ / "b", folder_ / "csv").tables, 42);
}

TEST_F(Transfer, LeavesOtherFilesOfAnUnfinishedFolderAlone) {
  makeAccount(folder_ / "a");
  std::filesystem::create_directory(folder_ / "csv");
  testing::write(folder_ / "csv/schema.sql.part", "Create");
  testing::write(folder_ / "csv/notes.txt", "mine");
  EXPECT_EQ(refusal([&] { exportFile(folder_ / "a", folder_ / "csv"); }),
            (folder_ / "csv").string() + " holds files already; choose another folder or empty it first");
  EXPECT_EQ(contentOf(folder_ / "csv/notes.txt"), "mine");
}

TEST_F(Transfer, DoesNotWriteBelowAFile) {
  makeAccount(folder_ / "a");
  EXPECT_THAT(refusal([&] { exportFile(folder_ / "a", folder_ / "a/csv"); }),
              ::testing::StartsWith("cannot write to the folder " + (folder_ / "a/csv").string() + ": "));
}

// --- Refusals of the import -----------------------------------------------------------------------------------------

// A folder with all tables of an account, empty, and the table Trial, whose file and definition a test writes.
class BadInput : public Transfer {
 protected:
  BadInput() {
    makeAccount(folder_ / "a");
    exportFile(folder_ / "a", csv());
    schema_ = contentOf(csv() / "schema.sql");
  }

  std::filesystem::path csv() const { return folder_ / "csv"; }

  // The message of the import without the folder's name. Whatever it is, no account is left behind.
  std::string message() {
    const std::string text = refusal([&] { importAccount(folder_ / "b", csv()); });
    EXPECT_THAT(folder_.names(), Not(Contains(::testing::StartsWith("b"))));
    return without(csv(), text);
  }

  std::string messageFor(std::string_view definition, std::string_view content) {
    testing::write(csv() / "schema.sql", schema_ + "Create Table Trial (" + std::string(definition) + ")");
    testing::write(csv() / "Trial.csv", content);
    return message();
  }
  // The message about one value of a column of that type, in line 2 and column 2.
  std::string messageForValue(std::string_view type, std::string_view value) {
    const std::string text =
        messageFor("k int not null, v " + std::string(type), "k,v\r\n1," + std::string(value) + "\r\n");
    const std::string_view place = "Trial.csv, line 2, column 2 (v): ";
    return text.starts_with(place) ? text.substr(place.size()) : text;
  }

  std::string schema_;  // that of an account
};

TEST_F(BadInput, AnExistingAccountIsLeftAlone) {
  EXPECT_EQ(refusal([&] { importAccount(folder_ / "a", csv()); }),
            (folder_ / "a").string() + " exists already; choose another name or delete the file first");
}

TEST_F(BadInput, NoFolder) {
  EXPECT_EQ(refusal([&] { importAccount(folder_ / "b", folder_ / "none"); }),
            "cannot read " + (folder_ / "none").string() +
                ": there is no such folder; name one that quillon account export wrote");
  EXPECT_THAT(folder_.names(), Not(Contains(::testing::StartsWith("b"))));
}

TEST_F(BadInput, NoSchema) {
  std::filesystem::remove(csv() / "schema.sql");
  EXPECT_EQ(message(),
            "cannot read " + (csv() / "schema.sql").string() + "; the folder must have it, and it must be readable");
}

TEST_F(BadInput, ASchemaThatIsNoStatement) {
  testing::write(csv() / "schema.sql", "Create Table a (b int)\nCreate Table c (d int,, e int)");
  EXPECT_EQ(message(), "schema.sql, line 2, column 22: Incorrect syntax near ','. Correct the statement");
}

TEST_F(BadInput, ASchemaWithATypeThatIsNotKnown) {
  testing::write(csv() / "schema.sql", "Create Table t\n(\n  a colour\n)");
  EXPECT_EQ(message(), "schema.sql, line 3, column 5: Type colour is not a defined system type. Correct the statement");
}

TEST_F(BadInput, ASchemaThatMakesATableTwice) {
  testing::write(csv() / "schema.sql", "Create Table a (b int);\n\nCreate Table a (c int);\n");
  EXPECT_EQ(
      message(),
      "schema.sql, line 3, column 14: There is already an object named 'a' in the database. Correct the statement");
}

TEST_F(BadInput, ASchemaThatDoesMore) {
  testing::write(csv() / "schema.sql", "Create Table a (b int)\nInsert Into a Values (1)");
  EXPECT_EQ(
      message(),
      "schema.sql, line 2, column 1: only Create Table, Index, View and Function stand here; take this statement out");
}

TEST_F(BadInput, ASchemaOfNoAccount) {
  testing::write(csv() / "schema.sql", "Create Table a (b int)");
  EXPECT_EQ(message(), "schema.sql makes no account: the table orvsystem..UA_Period is missing; add its Create Table");
}

TEST_F(BadInput, AMissingFile) {
  std::filesystem::remove(csv() / "Warehouse.csv");
  EXPECT_EQ(message(),
            "cannot read " + (csv() / "Warehouse.csv").string() + "; the folder must have it, and it must be readable");
}

TEST_F(BadInput, AFileOfNoTable) {
  testing::write(csv() / "Warehouses.csv", "cWhCode\n");
  EXPECT_EQ(message(), "Warehouses.csv belongs to no table of schema.sql; add the table there or take the file away");
}

TEST_F(BadInput, AnEmptyFile) {
  EXPECT_EQ(messageFor("a int", ""),
            "Trial.csv, line 1, column 1: the file is empty; begin it with the names of the table's columns");
}

TEST_F(BadInput, AHeaderThatDoesNotFit) {
  EXPECT_EQ(messageFor("a int, b int", "a,c\n"),
            "Trial.csv, line 1, column 2: the table has no column \"c\"; correct the name, or add it in schema.sql");
  EXPECT_EQ(messageFor("a int, b int", "a,b,A\n"),
            "Trial.csv, line 1, column 3: the column a stands here twice; leave one");
  EXPECT_EQ(messageFor("a int, b int", "b\n"),
            "Trial.csv, line 1, column 2: the column a is missing; add it, empty where it has no value");
  EXPECT_EQ(messageFor("a int", "a\xB2\xC4\n"),
            "Trial.csv, line 1, column 1: the text is not UTF-8; save the file in that encoding");
}

TEST_F(BadInput, TooFewOrTooManyValues) {
  EXPECT_EQ(messageFor("a int, b int, c int", "a,b,c\n1,2,3\n4\n"),
            "Trial.csv, line 3, column 2 (b): the line ends before this column; give it 3 values, empty ones for NULL");
  EXPECT_EQ(messageFor("a int, b int", "a,b\n\n"),
            "Trial.csv, line 2, column 2 (b): the line ends before this column; give it 2 values, empty ones for NULL");
  EXPECT_EQ(
      messageFor("a int, b int", "a,b\n1,2,5\n"),
      "Trial.csv, line 2, column 3: the line goes on behind its 2 values; put a value that holds a comma in quotes");
}

TEST_F(BadInput, WhatIsNoCsv) {
  EXPECT_EQ(messageFor("a int, b nvarchar(9)", "a,b\n1,\"x\ny\n"),
            "Trial.csv, line 2, column 2 (b): the quote that opens this value is not closed; close it");
  EXPECT_EQ(messageFor("a int, b nvarchar(9)", "a,b\n1,x\"y\n"),
            "Trial.csv, line 2, column 2 (b): a quote within a value; put the value in quotes and double the quotes "
            "within it");
}

TEST_F(BadInput, LinesAreCountedWithinTexts) {
  EXPECT_EQ(messageFor("a nvarchar(9), b int", "a,b\n\"1\n2\r\n3\",x\n"),
            "Trial.csv, line 4, column 2 (b): \"x\" is no int; write digits only, with a minus in front of a negative "
            "number");
}

TEST_F(BadInput, NoValueWhereThereMustBeOne) {
  EXPECT_EQ(messageForValue("nvarchar(9) not null", ""),
            "the column must have a value; write one, or \"\" for an empty text");
}

TEST_F(BadInput, NoWholeNumber) {
  const std::string digits = "write digits only, with a minus in front of a negative number";
  EXPECT_EQ(messageForValue("int", "1.5"), "\"1.5\" is no int; " + digits);
  EXPECT_EQ(messageForValue("int", " 1"), "\" 1\" is no int; " + digits);
  EXPECT_EQ(messageForValue("bigint", "\"1,000\""), "\"1,000\" is no bigint; " + digits);
  EXPECT_EQ(messageForValue("int", "\"\""), "\"\" is no int; leave the quotes out when there is no value");
  EXPECT_EQ(messageForValue("int", "2147483648"), "\"2147483648\" is out of the range of int; correct the number");
  EXPECT_EQ(messageForValue("bigint", "9223372036854775808"),
            "\"9223372036854775808\" is out of the range of bigint; correct the number");
  EXPECT_EQ(messageForValue("bit", "2"), "\"2\" is no bit; write 0 or 1");
  EXPECT_EQ(messageForValue("bit", "True"), "\"True\" is no bit; write 0 or 1");
}

TEST_F(BadInput, NoExactNumber) {
  const std::string digits = "write digits with a point before the decimals and nothing between the thousands";
  EXPECT_EQ(messageForValue("decimal(18,6)", "\"1,5\""), "\"1,5\" is no decimal(18,6); " + digits);
  EXPECT_EQ(messageForValue("money", "¥5"), "\"¥5\" is no money; " + digits);
  EXPECT_EQ(messageForValue("money", "1e3"), "\"1e3\" is no money; " + digits);
  EXPECT_EQ(messageForValue("decimal(18,2)", "1.005"), "\"1.005\" has more decimals than decimal(18,2); round it to 2");
  EXPECT_EQ(messageForValue("decimal(5,2)", "1000.00"),
            "\"1000.00\" is out of the range of decimal(5,2); correct the number");
  EXPECT_EQ(messageForValue("money", "922337203685477.5808"),
            "\"922337203685477.5808\" is out of the range of money; correct the number");
  EXPECT_EQ(messageForValue("decimal(38,0)", "1" + std::string(38, '0')),
            "\"1" + std::string(38, '0') + "\" is out of the range of decimal(38,0); correct the number");
}

TEST_F(BadInput, NoFloat) {
  EXPECT_EQ(messageForValue("float", "x"),
            "\"x\" is no float; write digits with a point before the decimals, or 1.5e-10");
  EXPECT_EQ(messageForValue("float", "nan"),
            "\"nan\" is no float; write digits with a point before the decimals, or 1.5e-10");
  EXPECT_EQ(messageForValue("float", "1e999"), "\"1e999\" is out of the range of float; correct the number");
}

TEST_F(BadInput, NoDate) {
  const std::string form = "write it as 2024-03-05 or 2024-03-05 13:14:15.457";
  EXPECT_EQ(messageForValue("datetime", "3/5/2024"), "\"3/5/2024\" is no datetime; " + form);
  EXPECT_EQ(messageForValue("datetime", "2024"), "\"2024\" is no datetime; " + form);
  EXPECT_EQ(messageForValue("datetime", "2024-03-05 at noon"), "\"2024-03-05 at noon\" is no datetime; " + form);
  EXPECT_EQ(messageForValue("datetime", "\"\""), "\"\" is no datetime; leave the quotes out when there is no value");
  EXPECT_EQ(messageForValue("datetime", "2023-02-29"),
            "\"2023-02-29\" is no day between 1753-01-01 and 9999-12-31; correct the date");
  EXPECT_EQ(messageForValue("datetime", "1752-12-31"),
            "\"1752-12-31\" is no day between 1753-01-01 and 9999-12-31; correct the date");
}

TEST_F(BadInput, NoText) {
  EXPECT_EQ(messageForValue("nvarchar(3)", "abcd"),
            "the text has 4 characters and nvarchar(3) takes 3; shorten it or widen the column in schema.sql");
  EXPECT_EQ(messageForValue("nvarchar(9)", "\xB2\xC4\xC1\xCF"),
            "the text is not UTF-8; save the file in that encoding");
  EXPECT_EQ(messageForValue("int", "\xB2\xC4"), "the text is not UTF-8; save the file in that encoding");
}

TEST_F(BadInput, ALongValueIsShownCut) {
  EXPECT_EQ(messageForValue("int", "\"" + std::string(30, 'x') + "\n" + std::string(30, 'y') + "\""),
            "\"" + std::string(30, 'x') + " " + std::string(9, 'y') +
                "...\" is no int; write digits only, with a minus in front of a negative number");
}

TEST_F(BadInput, AKeyTwice) {
  EXPECT_EQ(
      messageFor("a int not null, b nvarchar(9) not null, c int, Primary Key (a, b)", "c,b,a\n1,x,1\n2,y,1\n3,X,1\n"),
      "Trial.csv, line 4, column 3 (a): another row has the key a = \"1\", b = \"X\" already; leave one of them");
  EXPECT_EQ(messageFor("a int Primary Key, b nvarchar(9), Unique (b)", "a,b\n1,x\n2,y\n3,x\n"),
            "Trial.csv, line 4, column 2 (b): another row has the key b = \"x\" already; leave one of them");
  EXPECT_EQ(messageFor("a int, b nvarchar(9)) Create Unique Index ux On Trial (b, a", "a,b\n1,x\n2,x\n1,x\n"),
            "Trial.csv, line 4, column 2 (b): another row has the key b = \"x\", a = \"1\" already; leave one of them");
}

// --- What is taken --------------------------------------------------------------------------------------------------

TEST_F(BadInput, WhatSpreadsheetsMakeOfTheFilesIsTaken) {
  testing::write(csv() / "schema.sql", schema_ + std::string(everyType));
  testing::write(csv() / "Trial.csv",
                 "\xEF\xBB\xBF\"ID\",day,text,long,ansi,whole,flag,quantity,price,amount,rate\n"
                 "\"12\",2024/3/5 8:05,\" \",,,\"-1\",1,1.50,2.0000000,-3,1e2\n"
                 "13,20240305,,,,,,,,,");
  importAccount(folder_ / "b", csv());
  const auto connection = tsql::Connection::open(folder_ / "b", tsql::OpenMode::readOnly);
  EXPECT_EQ(firstText(*connection, "Select day From Trial Where id = 12"), "2024-03-05 08:05:00.000");
  EXPECT_EQ(firstText(*connection, "Select text From Trial Where id = 12"), " ");
  EXPECT_EQ(firstText(*connection, "Select whole From Trial Where id = 12"), "-1");
  EXPECT_EQ(firstText(*connection, "Select quantity From Trial Where id = 12"), "1.5000000000");
  EXPECT_EQ(firstText(*connection, "Select price From Trial Where id = 12"), "2.000000");
  EXPECT_EQ(firstText(*connection, "Select amount From Trial Where id = 12"), "-3.0000");
  EXPECT_EQ(firstText(*connection, "Select day From Trial Where id = 13"), "2024-03-05 00:00:00.000");
  EXPECT_EQ(firstText(*connection, "Select text From Trial Where id = 13"), "NULL");
}

}  // namespace
}  // namespace quillon::account
