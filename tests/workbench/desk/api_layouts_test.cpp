// The interface's kept layouts: kept as they are shown, given back so that a view can be asked for with them.
#include "tests/workbench/account/test_folder.h"
#include "tests/workbench/desk/desk_test_base.h"
#include "workbench/catalogue/catalogue.h"

namespace quillon::workbench::desk {
namespace {

using testing::HasSubstr;
using testing::Not;
using testing::SizeIs;

class DeskLayouts : public test::DeskTest {
 protected:
  test::Answer keep(const std::string& name, const Json& layout) {
    return ask("PUT", "layouts/" + name, layout.dump());
  }
  KeptLayouts files() const { return KeptLayouts(layouts_.path()); }
  std::string fileOf(const std::string& name) const { return account::testing::contentOf(files().path(name)); }
  // The cells of a view or pivot that is asked for with what was kept.
  Json shown(const std::string& run, const Json& asked, const char* where = "/views") {
    Json body = asked;
    body["lang"] = "en";
    const test::Answer answer = post(run + where, body);
    EXPECT_EQ(answer.status, 201) << answer.response.body;
    Json cells = Json::array();
    for (const Json& row : allRows(run, answer.json))
      cells.push_back(row["cells"]);
    return cells;
  }
};

TEST_F(DeskLayouts, AreKeptAndGivenBackAsAViewIsAskedFor) {
  const Json asked = {
      {"layout", "lines"},
      {"columns", {"iMoney", "cInvCode", "cWhCode"}},
      {"sort", {{{"column", "iMoney"}, {"descending", true}}, {{"column", "cInvCode"}, {"descending", false}}}},
      {"groupBy", {"cWhCode"}},
      {"allColumns", true},
      {"details", false}};
  EXPECT_EQ(get("layouts"), Json::array());
  Json body = asked;
  body["report"] = "outsum-item";
  body["where"] = {{{"column", "cWhCode"}, {"values", {"01"}}}};
  ASSERT_EQ(keep("月末", body).status, 200);
  const Json kept = get("layouts/月末");
  EXPECT_EQ(kept["name"], "月末");
  EXPECT_EQ(kept["report"], "outsum-item");
  EXPECT_THAT(kept["changed"].get<std::string>(), HasSubstr("T"));
  EXPECT_EQ(kept["pivot"], Json());
  EXPECT_FALSE(kept.contains("where")) << "which rows are shown is not kept";
  for (const auto& [member, value] : asked.items())
    EXPECT_EQ(kept[member], value) << member;
  const std::string run = done("outsum-item");
  EXPECT_EQ(shown(run, kept), shown(run, asked));
  EXPECT_NE(shown(run, kept), shown(run, {{"layout", "lines"}}));
}

TEST_F(DeskLayouts, AreKeptAsPivots) {
  const Json pivot = {{"rows", {"cWhCode", "cfxCode"}},
                      {"columns", {"month"}},
                      {"measures", {"amount", "amount:row"}},
                      {"sort", {{{"column", "amount"}, {"descending", true}}}}};
  ASSERT_EQ(keep("sums", {{"report", "fx-wt"}, {"layout", "pivot"}, {"pivot", pivot}}).status, 200);
  const Json kept = get("layouts/sums");
  EXPECT_EQ(kept["layout"], "pivot");
  EXPECT_EQ(kept["pivot"], pivot);
  EXPECT_THAT(fileOf("sums"), HasSubstr("\"pivot\": \"cWhCode,cfxCode/month/amount,amount:row\""));
  const std::string run = done("fx-wt");
  EXPECT_EQ(shown(run, kept["pivot"], "/pivots"), shown(run, pivot, "/pivots"));
}

TEST_F(DeskLayouts, OfTheCommandLineHaveNamesInPlaceOfCaptions) {
  files().save(
      "mine",
      R"({"report": "outsum-item", "columns": ["存货编码,金额", "no such"], "layout": "LINES", "sort": ["-Amount"]})",
      false);
  const Json lines = get("layouts/mine");
  EXPECT_EQ(lines["layout"], "lines");
  EXPECT_EQ(lines["columns"], (Json{"cInvCode", "iMoney", "no such"}));
  EXPECT_EQ(lines["sort"], (Json::array({{{"column", "iMoney"}, {"descending", true}}})));
  files().save("sums", R"({"report": "fx-wt", "pivot": "仓库/月份/金额,Quantity", "sort": ["-金额"]})", false);
  const Json pivot = get("layouts/sums")["pivot"];
  EXPECT_EQ(pivot["rows"], Json{"cWhCode"});
  EXPECT_EQ(pivot["columns"], Json{"month"});
  EXPECT_EQ(pivot["measures"], (Json{"amount", "quantity"}));
  EXPECT_EQ(pivot["sort"], (Json::array({{{"column", "amount"}, {"descending", true}}})));
}

TEST_F(DeskLayouts, AreListedByReport) {
  ASSERT_EQ(keep("a", {{"report", "sfc-item"}, {"layout", "tree"}}).status, 200);
  ASSERT_EQ(keep("b", {{"report", "fx-wt"}}).status, 200);
  files().save("broken", "{", false);
  const Json all = get("layouts");
  ASSERT_THAT(all, SizeIs(3));
  EXPECT_EQ(all[2]["name"], "broken");
  EXPECT_EQ(all[2]["report"], Json());
  const Json some = get("layouts", {{"report", "fx-wt"}});
  ASSERT_THAT(some, SizeIs(1));
  EXPECT_EQ(some[0]["name"], "b");
  EXPECT_EQ(get("layouts/b")["layout"], "vouchers") << "the report's first";

  EXPECT_EQ(ask("DELETE", "layouts/a").status, 200);
  EXPECT_EQ(ask("DELETE", "layouts/a").status, 404);
  EXPECT_EQ(ask("GET", "layouts/a").status, 404);
  EXPECT_EQ(ask("DELETE", "layouts/broken").status, 200) << "whatever is wrong with it";
}

TEST_F(DeskLayouts, AreRefusedWithAReason) {
  const Json body = {{"report", "sfc-item"}, {"layout", "tree"}};
  for (const char* name : {"..", "a*b", "x.json", "con", "Tree", "pivot"})
    EXPECT_EQ(keep(name, body).code(), "name") << name;
  ASSERT_EQ(keep("a", body).status, 200);
  const test::Answer other = keep("a", {{"report", "fx-wt"}});
  EXPECT_EQ(other.code(), "name");
  EXPECT_EQ(other.message(), "there is a layout \"a\" of sfc-item already; give another name");
  EXPECT_EQ(keep("a", {{"report", "sfc-item"}}).status, 200) << "its own report replaces it";
  EXPECT_EQ(get("layouts/a")["layout"], "summary");

  EXPECT_EQ(keep("x", {{"report", "nothing"}}).status, 404);
  EXPECT_EQ(keep("x", {{"layout", "tree"}}).code(), "form");
  EXPECT_EQ(keep("x", {{"report", "sfc-item"}, {"layout", "ledger"}}).code(), "layout");
  EXPECT_EQ(keep("x", {{"report", "sfc-item"}, {"columns", "a"}}).code(), "form");
  EXPECT_EQ(keep("x", {{"report", "sfc-item"}, {"pivot", {{"rows", {"nothing"}}, {"measures", {"amount"}}}}}).code(),
            "layout");
  EXPECT_EQ(keep("x", {{"report", "sfc-item"}, {"pivot", "a"}}).code(), "form");
  EXPECT_EQ(ask("POST", "layouts/x", body.dump()).status, 404);
  EXPECT_EQ(ask("GET", "layouts/x/y").status, 404);
  EXPECT_EQ(get("layouts"), (Json::array({get("layouts")[0]})));

  files().save("broken", "{\"report\": 1}", false);
  const test::Answer broken = ask("GET", "layouts/broken");
  EXPECT_EQ(broken.status, 422);
  EXPECT_EQ(broken.message(), "broken.json, line 1: \"report\" must be a text");
  EXPECT_THAT(broken.message(), Not(HasSubstr(layouts_.path().string())));
}

}  // namespace
}  // namespace quillon::workbench::desk
