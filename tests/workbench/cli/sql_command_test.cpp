#include "workbench/cli/sql_command.h"

#include <gtest/gtest.h>

#include <sstream>

#include "workbench/tsql/engine/engine.h"

namespace quillon::workbench {
namespace {

struct Outcome {
  int failed = 0;
  std::string out;
  std::string errors;
};

Outcome run(const std::string& text, SqlFormat format) {
  const auto account = tsql::Connection::openInMemory();
  std::istringstream script(text);
  std::ostringstream out;
  std::ostringstream errors;
  const int failed = runScript(*account, script, "script.sql", format, out, errors);
  return {failed, out.str(), errors.str()};
}

TEST(SqlScript, PrintsOneObjectALine) {
  const Outcome outcome =
      run("Create Table t (i int, d decimal(9,2), c nvarchar(20), b bit)\n"
          "go\n"
          "Insert Into t Values (1, 1.5, N'甲', 1), (2, Null, Null, 0)\n"
          "GO\n"
          "Select i, d, c, b From t Order By i\n",
          SqlFormat::json);
  EXPECT_EQ(outcome.out,
            "{\"rowsAffected\":2}\n"
            "{\"columns\":[[\"i\",\"int\"],[\"d\",\"decimal(9,2)\"],[\"c\",\"nvarchar(20)\"],[\"b\",\"bit\"]],"
            "\"rows\":[[1,\"1.50\",\"甲\",1],[2,null,null,0]]}\n");
  EXPECT_EQ(outcome.failed, 0);
  EXPECT_EQ(outcome.errors, "");
}

TEST(SqlScript, PrintsAResultSetWithoutRows) {
  EXPECT_EQ(run("Select 1 As a Where 1 = 0", SqlFormat::json).out, "{\"columns\":[[\"a\",\"int\"]],\"rows\":[]}\n");
}

TEST(SqlScript, WritesResultSetsAsCsv) {
  const Outcome outcome =
      run("Create Table t (i int, c nvarchar(40), d decimal(9,2))\n"
          "Insert Into t Values (1, N'螺栓, \"M8\"', 1.5), (2, Null, Null)\n"
          "Select i, c, d From t Order By i\n"
          "go\n"
          "Select i From nowhere\n"
          "go\n"
          "Select i From t Where i > 5\n"
          "Select Count(*) As [n, in all] From t\n",
          SqlFormat::csv);
  EXPECT_EQ(outcome.out,
            "i,c,d\r\n"
            "1,\"螺栓, \"\"M8\"\"\",1.50\r\n"
            "2,,\r\n"
            "\r\n"
            "i\r\n"
            "\r\n"
            "\"n, in all\"\r\n"
            "2\r\n");
  EXPECT_EQ(outcome.errors, "quillon: script.sql, line 5: error 208: Invalid object name 'nowhere'.\n");
  EXPECT_EQ(outcome.failed, 1);
}

TEST(SqlScript, EndsABatchAtItsErrorAndGoesOn) {
  const Outcome outcome =
      run("Create Table t (i int)\n"
          "Insert Into t Values (1)\n"
          "Select i From nowhere\n"
          "Insert Into t Values (2)\n"
          "  Go \r\n"
          "Select Count(*) As n From t\n"
          "go\n",
          SqlFormat::json);
  EXPECT_EQ(outcome.out,
            "{\"rowsAffected\":1}\n"
            "{\"error\":{\"number\":208,\"message\":\"Invalid object name 'nowhere'.\"}}\n"
            "{\"columns\":[[\"n\",\"int\"]],\"rows\":[[1]]}\n");
  EXPECT_EQ(outcome.failed, 1);
}

TEST(SqlScript, LeavesOutEmptyBatches) {
  EXPECT_EQ(run("go\n\n  \ngo\nGo\n", SqlFormat::json).out, "");
  EXPECT_EQ(run("", SqlFormat::json).out, "");
}

TEST(SqlScript, IgnoresAByteOrderMark) {
  EXPECT_EQ(run("\xEF\xBB\xBFSelect 1 As a\n", SqlFormat::json).out,
            "{\"columns\":[[\"a\",\"int\"]],\"rows\":[[1]]}\n");
}

TEST(SqlScript, KeepsAConnectionsTemporaryTables) {
  EXPECT_EQ(run("Select 1 As a Into #w\ngo\nSelect a From #w\n", SqlFormat::json).out,
            "{\"rowsAffected\":1}\n{\"columns\":[[\"a\",\"int\"]],\"rows\":[[1]]}\n");
}

TEST(SqlScript, PrintsTablesForPeople) {
  const Outcome outcome =
      run("Select 1 As 编号, N'甲' As 名称 Union All Select 20, Null Order By 编号\n"
          "go\n"
          "Delete nowhere\n",
          SqlFormat::table);
  EXPECT_EQ(outcome.out,
            "编号  名称\n"
            "----  ----\n"
            "   1  甲\n"
            "  20  NULL\n"
            "(2 rows)\n\n");
  EXPECT_EQ(outcome.errors, "quillon: script.sql, line 3: error 208: Invalid object name 'nowhere'.\n");
  EXPECT_EQ(outcome.failed, 1);
}

TEST(SqlScript, NamesTheLineOfTheScriptInEachError) {
  EXPECT_EQ(run("\xEF\xBB\xBF\n"
                "Select 1 As a\r\n"
                "go\r\n"
                "\r\n"
                "Create Table t (i int)\r\n"
                "Select *\r\n"
                "From nowhere\r\n"
                "GO\r\n"
                "Selct 2\r\n"
                "go\n"
                "Select 1 / 0",
                SqlFormat::table)
                .errors,
            "quillon: script.sql, line 7: error 208: Invalid object name 'nowhere'.\n"
            "quillon: script.sql, line 9: error 102: Incorrect syntax near 'Selct'.\n"
            "quillon: script.sql, line 11: error 8134: Divide by zero error encountered.\n");
}

// A server need not say in which line a statement failed.
TEST(SqlScript, NamesTheBatchWhereTheLineIsNotKnown) {
  struct Server : tsql::Database {
    void run(std::string_view batch, tsql::ResultSink&) override {
      if (batch.find("fail") != std::string_view::npos) throw tsql::SqlError(50000, "It failed.");
    }
    std::int64_t execute(std::string_view) override { return 0; }
    std::unique_ptr<tsql::Cursor> query(std::string_view) override { return nullptr; }
    std::vector<tsql::Column> describe(std::string_view) override { return {}; }
    std::vector<std::string> tables(std::string_view) override { return {}; }
  };
  Server server;
  std::istringstream script("well\ngo\nwell\nfail\n");
  std::ostringstream out, errors;
  EXPECT_EQ(runScript(server, script, "the script", SqlFormat::table, out, errors), 1);
  EXPECT_EQ(errors.str(), "quillon: the script, in the batch that begins in line 3: error 50000: It failed.\n");
}

}  // namespace
}  // namespace quillon::workbench
