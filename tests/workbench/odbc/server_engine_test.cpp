#include "workbench/odbc/server_engine.h"

#include <gtest/gtest.h>

namespace quillon::odbc {
namespace {

constexpr std::string_view sqlServer = "Microsoft SQL Server 2019 (RTM) - 15.0.2000.5 (X64)";
constexpr std::string_view babelfish = "Babelfish for PostgreSQL with SQL Server Compatibility - 12.0.2000.8";

TEST(ServerEngine, SendsEverythingToSqlServerAsItIs) {
  const std::string sql =
      "if exists(select id from  tempdb..sysobjects where id=object_id(N'tempdb..#t')) drop table #t "
      "Select * From orvsystem..UA_Period";
  EXPECT_EQ(ServerEngine().rewritten(sql), sql);
  EXPECT_EQ(ServerEngine(sqlServer, "").rewritten(sql), sql);
  EXPECT_EQ(ServerEngine(sqlServer, "").rewritten(""), "");
}

TEST(ServerEngine, AsksBabelfishForATemporaryTableByItsObject) {
  const ServerEngine engine(babelfish, "");
  EXPECT_EQ(
      engine.rewritten(
          "if exists(select id from  tempdb..sysobjects where id=object_id(N'tempdb..#IA''1')) drop table #IA''1"),
      "if object_id(N'tempdb..#IA''1') is not null drop table #IA''1");
  EXPECT_EQ(
      engine.rewritten("IF EXISTS(SELECT ID FROM  TEMPDB..SYSOBJECTS WHERE ID=OBJECT_ID(N'tempdb..#t')) drop table #t"),
      "IF object_id(N'tempdb..#t') is not null drop table #t");
  // Nothing else of the text.
  for (const char* const other :
       {"Select id From tempdb..sysobjects", "exists(select id from  tempdb..sysobjects where id=object_id(@name))",
        "exists(select id from  tempdb..sysobjects where id=object_id(N'open",
        "Select N'exists(select id from  tempdb..sysobjects where id=object_id(N''t''))'"})
    EXPECT_EQ(engine.rewritten(other), other);
}

TEST(ServerEngine, FindsTheSystemTablesWhereTheyAre) {
  EXPECT_EQ(ServerEngine(sqlServer, "periods")
                .rewritten(
                    "Select OrvSystem..UA_Period.iYear From orvsystem..UA_Period With(NoLock), [orvsystem]..[ua_user]"),
            "Select periods.UA_Period.iYear From periods.UA_Period With(NoLock), periods.[ua_user]");
  EXPECT_EQ(ServerEngine(sqlServer, "other..").rewritten("Select * From orvsystem..UA_Period"),
            "Select * From other..UA_Period");
  EXPECT_EQ(ServerEngine(sqlServer, "other.dbo").rewritten("From orvsystem..UA_Period"), "From other.dbo.UA_Period");
  // Texts, comments, quoted names and longer names are no such tables.
  const ServerEngine engine(sqlServer, "periods");
  for (const char* const other :
       {"Select N'orvsystem..UA_Period', 'it''s orvsystem..x'", "-- orvsystem..UA_Period\n",
        "/* orvsystem..UA_Period */", "Select [a orvsystem..b], \"orvsystem..c\"", "Select * From myorvsystem..t",
        "Select * From 年orvsystem..t", "Select N'never ends orvsystem..t"})
    EXPECT_EQ(engine.rewritten(other), other);
  EXPECT_EQ(engine.rewritten("-- a comment\norvsystem..t"), "-- a comment\nperiods.t");
  EXPECT_EQ(engine.rewritten("N'it''s' + orvsystem..t"), "N'it''s' + periods.t");
}

}  // namespace
}  // namespace quillon::odbc
