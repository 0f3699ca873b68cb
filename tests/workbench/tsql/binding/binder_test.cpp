// Names and types of queries over tables that a map holds: binding needs no database.
#include "workbench/tsql/binding/binder.h"

#include <gtest/gtest.h>

#include <map>

#include "workbench/tsql/binding/sqlite_notation.h"
#include "workbench/tsql/syntax/parser.h"
#include "workbench/tsql/values/sql_error.h"
#include "workbench/tsql/values/type_rules.h"

namespace quillon::tsql {
namespace {

class Tables : public TableLookup {
 public:
  void add(const std::string& name, std::vector<TableColumn> columns) {
    Table table;
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

}  // namespace
}  // namespace quillon::tsql
