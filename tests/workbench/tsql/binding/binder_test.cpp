// Names and types of queries over tables that a map holds: binding needs no database.
#include "workbench/tsql/binding/binder.h"

#include <gtest/gtest.h>

#include <map>
#include <string>
#include <vector>

#include "workbench/tsql/binding/sqlite_notation.h"
#include "workbench/tsql/syntax/parser.h"
#include "workbench/tsql/values/sql_error.h"
#include "workbench/tsql/values/type_rules.h"

namespace quillon::tsql {
namespace {

class Tables : public TableLookup {
 public:
  void add(const std::string& name, std::vector<TableColumn> columns, std::vector<KeyDefinition> keys = {}) {
    Table table;
    table.keys = std::move(keys);
    table.name = name;
    table.columns = std::move(columns);
    table.schema = "main";
    table.stored = name;
    table.physical = "main." + quoteName(name);
    tables_[name] = std::make_shared<const Table>(std::move(table));
  }
  void addView(const std::string& name, const std::string& query) { views_[name] = query; }

  std::shared_ptr<const Table> table(const ObjectName& name) override {
    const auto found = tables_.find(name.name);
    return found == tables_.end() ? nullptr : found->second;
  }
  std::optional<StoredObject> object(const ObjectName& name) override {
    const auto found = views_.find(name.name);
    if (found == views_.end()) return std::nullopt;
    return StoredObject{.id = 1, .type = 'V', .name = name.name, .definition = found->second};
  }
  std::string sysobjects(std::string_view) const override { return "SELECT 1"; }
  std::string sysindexes(std::string_view) const override { return "SELECT 1"; }

 private:
  std::map<std::string, std::shared_ptr<const Table>> tables_;
  std::map<std::string, std::string> views_;
};

TableColumn column(const std::string& name, const Type& type) {
  TableColumn result;
  result.name = name;
  result.type = type;
  return result;
}

class BinderOfQueries : public testing::Test {
 protected:
  BinderOfQueries() {
    TableColumn key = column("i", intType());
    key.notNull = true;
    tables_.add("t", {key, column("m", moneyType())});
    tables_.add("u", {column("i", intType()), column("s", nVarCharType(20))});
    tables_.addView("v", "select i, m * 2 as doubled from t");
  }

  BoundQuery bind(const std::string& query) {
    const std::vector<StatementPtr> statements = parseBatch(query);
    return Binder(tables_, false).query(*statements.at(0)->query);
  }
  int errorOf(const std::string& query) {
    try {
      bind(query);
    } catch (const SqlError& error) {
      return error.number();
    }
    return 0;
  }

 private:
  Tables tables_;
};

TEST_F(BinderOfQueries, GivesTheStatementThatDoesTheSameInSqlite) {
  EXPECT_EQ(bind("select i from t").sql, "SELECT \"t\".\"i\" FROM main.\"t\" AS \"t\"");
  EXPECT_EQ(bind("select x.I from t x where x.i > 1").sql,
            "SELECT \"x\".\"i\" FROM main.\"t\" AS \"x\" WHERE (\"x\".\"i\" > 1)");
}

TEST_F(BinderOfQueries, DerivesTheColumns) {
  const BoundQuery query = bind("select t.i, m * 2 as doubled, s from t inner join u on t.i = u.i");
  ASSERT_EQ(query.columns.size(), 3U);
  EXPECT_EQ(query.columns[0].name, "i");
  EXPECT_TRUE(query.columns[0].notNull);
  EXPECT_EQ(query.columns[1].type, moneyType());
  EXPECT_EQ(query.columns[2].type, nVarCharType(20));
}

TEST_F(BinderOfQueries, ReadsAViewAsItsQuery) {
  const BoundQuery query = bind("select doubled from v");
  ASSERT_EQ(query.columns.size(), 1U);
  EXPECT_EQ(query.columns[0].type, moneyType());
}

TEST_F(BinderOfQueries, RefusesNamesThatNothingBears) {
  EXPECT_EQ(errorOf("select i from w"), 208);
  EXPECT_EQ(errorOf("select i from elsewhere..t"), 208);
  EXPECT_EQ(errorOf("select x from t"), 207);
  EXPECT_EQ(errorOf("select x.i from t"), 4104);
  EXPECT_EQ(errorOf("select i from t, u"), 209);
}

// Lines of twelve columns w1 to w12, left joined to two lists: of the kinds the code is the key, of the places it is not.
class CompositionsOfRows : public testing::Test {
 protected:
  CompositionsOfRows() {
    std::vector<TableColumn> line = {column("id", intType()), column("kind", nVarCharType(10)),
                                     column("place", nVarCharType(10))};
    for (int i = 1; i <= 12; ++i) {
      line.push_back(column("w" + std::to_string(i), intType()));
      columns_ += "l.w" + std::to_string(i) + ", ";
    }
    tables_.add("line", std::move(line));
    tables_.add("kinds", {column("code", nVarCharType(10)), column("name", nVarCharType(20))},
                {{.primary = true, .columns = {"code"}}});
    tables_.add("places",
                {column("code", nVarCharType(10)), column("grade", intType()), column("name", nVarCharType(20))});
  }

  std::optional<RowComposition> composed(const std::string& query) {
    const std::vector<StatementPtr> statements = parseBatch(query);
    return Binder(tables_, false).query(*statements.at(0)->query).composition;
  }
  static std::vector<std::string> lookUpsOf(const RowComposition& composition) {
    std::vector<std::string> texts;
    for (const RowComposition::Source& source : composition.sources) {
      if (!source.lookUp.empty()) texts.push_back(source.lookUp);
    }
    return texts;
  }

  static constexpr const char* joins =
      " Left Join kinds k On k.code = l.kind Left Join places p On p.code = l.place And p.grade = 1";
  std::string columns_;
  Tables tables_;
};

TEST_F(CompositionsOfRows, AskForTheNumberOfTheRowAndLookTheRestUp) {
  const auto made =
      composed("select " + columns_ + "k.name, isnull(p.name, N'none') as place, 7 as n into x from line l" + joins);
  ASSERT_TRUE(made);
  EXPECT_EQ(made->sql, "SELECT \"l\".rowid, 7 FROM main.\"line\" AS \"l\"");
  const std::vector<std::string> expected = {
      "SELECT \"k\".\"name\" FROM (SELECT 1) LEFT JOIN main.\"kinds\" AS \"k\" ON (\"k\".\"code\" = (?1 COLLATE "
      "Chinese_PRC_CI_AS))",
      "SELECT ifnull(\"p\".\"name\", 'none') FROM (SELECT 1) LEFT JOIN main.\"places\" AS \"p\" ON ((\"p\".\"code\" = (?1 "
      "COLLATE Chinese_PRC_CI_AS)) AND (\"p\".\"grade\" = 1))"};
  EXPECT_EQ(lookUpsOf(*made), expected);
  // The keys are columns of the line's row; without a key of their own the places have to be few.
  ASSERT_EQ(made->sources.size(), 3U);
  EXPECT_EQ(made->sources[1].keys.at(0).source, 0U);
  EXPECT_EQ(made->sources[1].keys.at(0).column, 1U);
  EXPECT_TRUE(made->sources[1].smallTables.empty());
  EXPECT_EQ(made->sources[2].smallTables, std::vector<std::string>{"main.\"places\""});
  // w1 to w12, the kind's name, the place's, the number.
  ASSERT_EQ(made->pieces.size(), 4U);
  EXPECT_EQ(made->pieces[0].count, 12U);
  EXPECT_EQ(made->pieces[0].first, 3U);
  EXPECT_EQ(made->pieces[3].kind, RowComposition::Kind::value);
}

TEST_F(CompositionsOfRows, LeaveATableInItsPlaceThatTheConditionsName) {
  const auto made = composed("select " + columns_ + "k.name into x from line l" + joins + " where k.name <> N'a'");
  ASSERT_TRUE(made);
  EXPECT_NE(made->sql.find("LEFT JOIN main.\"kinds\""), std::string::npos);
  // Nobody asks for the places, but several of them would make several rows.
  EXPECT_NE(made->sql.find("LEFT JOIN main.\"places\""), std::string::npos);
  EXPECT_TRUE(lookUpsOf(*made).empty());
}

TEST_F(CompositionsOfRows, LeaveOutATableThatGivesNothing) {
  const auto made = composed("select " + columns_ + "l.id into x from line l left join kinds k on k.code = l.kind");
  ASSERT_TRUE(made);
  EXPECT_EQ(made->sql, "SELECT \"l\".rowid FROM main.\"line\" AS \"l\"");
}

TEST_F(CompositionsOfRows, LookJoinedTablesUpTogether) {
  const auto made = composed(
      "select " + columns_ +
      "k.name, p.name as place into x from line l left join kinds k on k.code = l.kind left join places p on p.code = k.name");
  ASSERT_TRUE(made);
  const std::vector<std::string> expected = {
      "SELECT \"k\".\"name\", \"p\".\"name\" FROM (SELECT 1) LEFT JOIN main.\"kinds\" AS \"k\" ON (\"k\".\"code\" = (?1 "
      "COLLATE Chinese_PRC_CI_AS)) LEFT JOIN main.\"places\" AS \"p\" ON (\"p\".\"code\" = \"k\".\"name\")"};
  EXPECT_EQ(lookUpsOf(*made), expected);
}

TEST_F(CompositionsOfRows, AreNoneForDistinctOrGroupedOrNarrowRows) {
  EXPECT_FALSE(composed("select distinct " + columns_ + "l.id into x from line l"));
  EXPECT_FALSE(composed("select count(*) as n into x from line l"));
  EXPECT_FALSE(composed("select l.w1, l.w2, l.w3, l.w4 into x from line l"));
  EXPECT_FALSE(composed("select " + columns_ + "l.id from line l"));
}

}  // namespace
}  // namespace quillon::tsql
