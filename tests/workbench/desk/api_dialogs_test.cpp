// The interface's account, reports and dialogs.
#include "tests/workbench/desk/desk_test_base.h"
#include "workbench/catalogue/catalogue.h"
#include "workbench/tsql/values/utf8_path.h"

namespace quillon::workbench::desk {
namespace {

using testing::AllOf;
using testing::Contains;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;
using testing::SizeIs;

class DeskDialogs : public test::DeskTest {
 protected:
  // Opens a dialog; gives the answer.
  test::Answer openDialog(const std::string& report, const Json& values = Json::object(),
                          const std::string& lang = "en") {
    return post("dialogs", {{"report", report}, {"lang", lang}, {"values", values}});
  }
  std::string pathOf(const test::Answer& opened) { return "dialogs/" + opened.json["id"].dump(); }
  static Json item(const Json& state, const std::string& key) {
    for (const Json& each : state["items"]) {
      if (each["key"] == key) return each;
    }
    ADD_FAILURE() << "no item " << key;
    return {};
  }
};

TEST_F(DeskDialogs, TheAccountIsToldWithoutItsPath) {
  const Json account = get("account");
  EXPECT_EQ(account["name"], accountFile().filename().string());
  EXPECT_THAT(account.dump(), Not(HasSubstr(accountFile().parent_path().string())));
  EXPECT_EQ(account["currentYear"], 2024);
  ASSERT_THAT(account["years"], SizeIs(3));
  EXPECT_EQ(account["years"][0]["year"], 2022);
  EXPECT_EQ(account["years"][0]["firstMonth"], 4);
  EXPECT_GT(account["years"][2]["lines"], 0);
}

TEST_F(DeskDialogs, ReportsComeWithTheirLayoutsAndRegisteredItems) {
  const Json all = get("reports");
  ASSERT_EQ(all.size(), reports().size());
  EXPECT_EQ(all[3]["name"], "fx-wt");
  EXPECT_EQ(all[3]["opensDocuments"], true);
  EXPECT_EQ(all[3]["layouts"][0]["name"], "vouchers");
  EXPECT_EQ(all[3]["layouts"][0]["caption"]["zh"], "单据");
  EXPECT_EQ(all[0]["items"].size(), reports()[0].registration.items.size());
  EXPECT_EQ(all[0]["items"][0]["key"], "iYear");
}

TEST_F(DeskDialogs, AboutHasVersionAndLicences) {
  const Json about = get("about");
  EXPECT_EQ(about["version"], "1.0.0");
  EXPECT_EQ(about["licences"][0], (Json{{"name", "regular-table"}, {"licence", "Apache-2.0"}, {"text", "words"}}));
}

TEST_F(DeskDialogs, EveryReportsDialogOpensWithItsDefaults) {
  for (const Report& report : reports()) {
    const test::Answer opened = openDialog(report.registration.name);
    ASSERT_EQ(opened.status, 201) << report.registration.name << opened.response.body;
    const Json& state = opened.json["state"];
    EXPECT_EQ(state["report"], report.registration.name);
    EXPECT_THAT(state["messages"], IsEmpty());
    EXPECT_EQ(state["items"].size(), report.registration.items.size());
    EXPECT_EQ(ask("DELETE", pathOf(opened)).status, 200);
    EXPECT_EQ(ask("DELETE", pathOf(opened)).status, 404);
  }
}

TEST_F(DeskDialogs, TheClassFillsDefaultsChoicesAndView) {
  const Json state = openDialog("sfc-item").json["state"];
  EXPECT_EQ(item(state, "iYear")["value"], "2024");
  EXPECT_THAT(item(state, "iYear")["choices"], SizeIs(testing::Ge(3U)));
  EXPECT_EQ(item(state, "cModal")["kind"], "choice");
  EXPECT_EQ(item(state, "cInvCode")["lookup"], true);
}

TEST_F(DeskDialogs, AChangeGoesThroughTheCallbacks) {
  const test::Answer opened = openDialog("sfc-item");
  EXPECT_EQ(item(opened.json["state"], "iGrade")["available"], true);
  const test::Answer changed = post(pathOf(opened) + "/set", {{"key", "cModal"}, {"value", "1"}});
  ASSERT_EQ(changed.status, 200) << changed.response.body;
  EXPECT_EQ(item(changed.json["state"], "cModal")["value"], "1");
  EXPECT_EQ(item(changed.json["state"], "iGrade")["available"], false);
  const test::Answer refused = post(pathOf(opened) + "/set", {{"key", "iGrade"}, {"value", "2"}});
  EXPECT_EQ(refused.status, 422);
  EXPECT_EQ(refused.json["error"]["item"], "iGrade");
  EXPECT_THAT(refused.message(), HasSubstr("does not let it be entered"));
  EXPECT_EQ(refused.json["state"]["report"], "sfc-item");
}

TEST_F(DeskDialogs, ValuesAreTakenAsTheFilterKeepsThem) {
  const test::Answer opened = openDialog("fx-wt");
  const std::string path = pathOf(opened) + "/set";
  Json state = post(path, {{"key", "cVouCode"}, {"value", "a, b..c=d"}}).json["state"];
  EXPECT_EQ(item(state, "cVouCode")["value"], "a, b..c=d") << "one text, whatever signs it has";
  state = post(path, {{"key", "dVouDate"}, {"value", "2024-01-01"}, {"value2", "2024-01-31"}}).json["state"];
  EXPECT_EQ(item(state, "dVouDate")["value2"], "2024-01-31");
  state = post(path, {{"key", "cWhCode"}, {"value", "01\t02"}}).json["state"];
  EXPECT_EQ(item(state, "cWhCode")["value"], "01\t02");
}

TEST_F(DeskDialogs, WhatIsRefusedLeavesTheItemAsItWas) {
  const test::Answer opened = openDialog("fx-wt");
  const std::string path = pathOf(opened) + "/set";
  post(path, {{"key", "dVouDate"}, {"value", "2024-01-01"}, {"value2", "2024-01-31"}});
  const test::Answer refused = post(path, {{"key", "dVouDate"}, {"value", "2024-02-01"}, {"value2", "2024-01-31"}});
  EXPECT_EQ(refused.status, 422);
  EXPECT_EQ(refused.code(), "value");
  EXPECT_EQ(item(refused.json["state"], "dVouDate")["value"], "2024-01-01");
  EXPECT_EQ(post(path, {{"key", "dVouDate"}, {"value", "soon"}}).status, 422);
  const test::Answer missing = post(path, {{"key", "nothing"}, {"value", "1"}});
  EXPECT_EQ(missing.status, 422);
  EXPECT_EQ(missing.code(), "item");
}

TEST_F(DeskDialogs, AClickIsAcceptedOrSaysWhatIsMissing) {
  const test::Answer opened = openDialog("fx-detail", Json::object(), "zh");
  const Json refused = post(pathOf(opened) + "/click").json;
  EXPECT_EQ(refused["accepted"], false);
  ASSERT_FALSE(refused["state"]["messages"].empty());
  const Json& message = refused["state"]["messages"][0];
  EXPECT_EQ(message["item"], "cWhCode");
  EXPECT_THAT(message["text"].get<std::string>(), AllOf(HasSubstr("仓库"), HasSubstr("不能为空")));
  const Json english = post(pathOf(openDialog("fx-detail")) + "/click").json["state"]["messages"];
  ASSERT_EQ(english.size(), 2U);
  EXPECT_EQ(english[0]["item"], "cWhCode");
  EXPECT_THAT(english[1]["text"].get<std::string>(), HasSubstr("to be given for cWhCode (Warehouse)"));
  const test::Answer summary = openDialog("sfc-item");
  EXPECT_EQ(post(pathOf(summary) + "/click").json["accepted"], true);
}

TEST_F(DeskDialogs, AClickAsksForWhatTheReportMustHave) {
  const test::Answer opened = openDialog("fx-detail", {{"cWhCode", {{"value", "07"}}}}, "zh");
  const Json refused = post(pathOf(opened) + "/click").json;
  EXPECT_EQ(refused["accepted"], false);
  ASSERT_FALSE(refused["state"]["messages"].empty());
  EXPECT_EQ(refused["state"]["messages"][0], (Json{{"item", "cInvCode"}, {"text", "存货不能为空"}}));
  EXPECT_EQ(post("runs", {{"report", "fx-detail"}, {"dialog", opened.json["id"]}}).code(), "state");
  const Json offered = get(pathOf(opened) + "/lookup", {{"item", "cInvCode"}, {"limit", "1"}});
  post(pathOf(opened) + "/set", {{"key", "cInvCode"}, {"value", offered["rows"][0]["code"]}});
  EXPECT_EQ(post(pathOf(opened) + "/click").json["accepted"], true);
  // What was confirmed is no more once it is changed.
  post(pathOf(opened) + "/set", {{"key", "cInvCode"}, {"value", ""}});
  EXPECT_EQ(post("runs", {{"report", "fx-detail"}, {"dialog", opened.json["id"]}}).code(), "state");
}

TEST_F(DeskDialogs, ALinkOpensTheDialogWithItsValues) {
  const Json values = {{"cModal", {{"value", "1"}}},
                       {"dKeepDate", {{"value", "2024-01-01"}, {"value2", "2024-03-31"}}},
                       {"iYear", {{"value", "1066"}}},
                       {"cNothing", {{"value", "x"}}}};
  const test::Answer opened = openDialog("sfc-item", values);
  ASSERT_EQ(opened.status, 201) << opened.response.body;
  const Json& state = opened.json["state"];
  EXPECT_EQ(item(state, "cModal")["value"], "1");
  EXPECT_EQ(item(state, "dKeepDate")["value2"], "2024-03-31");
  EXPECT_EQ(item(state, "iYear")["value"], "") << "there is no such year";
  ASSERT_THAT(state["messages"], SizeIs(2));
  EXPECT_EQ(state["messages"][0]["item"], nullptr);
  EXPECT_EQ(state["messages"][1]["item"], "iYear");
}

TEST_F(DeskDialogs, CodesAreLookedUpPageByPage) {
  const std::string path = pathOf(openDialog("sfc-item", Json::object(), "zh")) + "/lookup";
  const Json first = get(path, {{"item", "cInvCode"}, {"limit", "3"}});
  EXPECT_THAT(first["rows"], SizeIs(3));
  EXPECT_GT(first["count"], 3);
  const Json second = get(path, {{"item", "cInvCode"}, {"offset", "2"}, {"limit", "3"}});
  EXPECT_EQ(second["rows"][0], first["rows"][2]);
  const std::string name = first["rows"][0]["name"];
  const Json found = get(path, {{"item", "cInvCode"}, {"search", name}});
  EXPECT_EQ(found["rows"][0]["name"], name);
  EXPECT_THAT(get(path, {{"item", "cInvCode"}, {"search", "there is none"}})["rows"], IsEmpty());
}

TEST_F(DeskDialogs, ACallbackRestrictsALookup) {
  const test::Answer opened = openDialog("sfc-item");
  const std::string lookup = pathOf(opened) + "/lookup";
  const Json all = get(lookup, {{"item", "cInvCode"}});
  const Json classes = get(lookup, {{"item", "cInvClass"}});
  const std::string inventoryClass = classes["rows"].back()["code"];
  ASSERT_EQ(post(pathOf(opened) + "/set", {{"key", "cInvClass"}, {"value", inventoryClass}}).status, 200);
  const Json some = get(lookup, {{"item", "cInvCode"}});
  EXPECT_GT(some["count"], 0);
  EXPECT_LT(some["count"], all["count"]);
}

TEST_F(DeskDialogs, LookupsOfOtherItemsAreRefused) {
  const std::string path = pathOf(openDialog("sfc-item")) + "/lookup";
  EXPECT_EQ(ask("GET", path, {}, {{"item", "dKeepDate"}}).code(), "lookup");
  EXPECT_EQ(ask("GET", path, {}, {{"item", "nothing"}}).code(), "item");
  EXPECT_EQ(ask("GET", path, {}, {{"item", "cInvCode"}, {"limit", "many"}}).code(), "form");
}

TEST_F(DeskDialogs, WrongRequestsAreRefused) {
  EXPECT_EQ(ask("POST", "dialogs", "{").code(), "json");
  EXPECT_EQ(ask("POST", "dialogs", "[]").code(), "form");
  EXPECT_EQ(ask("POST", "dialogs", "{}").code(), "form");
  EXPECT_EQ(ask("POST", "dialogs", R"({"report":7})").code(), "form");
  EXPECT_EQ(post("dialogs", {{"report", "nothing"}}).status, 404);
  EXPECT_EQ(post("dialogs", {{"report", "sfc-item"}, {"lang", "la"}}).code(), "form");
  EXPECT_EQ(post("dialogs", {{"report", "sfc-item"}, {"values", 1}}).code(), "form");
  EXPECT_EQ(post("dialogs", {{"report", "sfc-item"}, {"values", {{"iYear", "2024"}}}}).code(), "form");
  for (const char* path : {"dialogs/7/click", "dialogs/x/click", "dialogs/7/set", "dialogs/7/nothing", "nothing", "",
                           "dialogs/", "account/more"}) {
    EXPECT_EQ(ask("POST", path, R"({"key":"a"})").status, 404) << path;
  }
  const std::string dialog = pathOf(openDialog("sfc-item"));
  EXPECT_EQ(ask("POST", dialog + "/set", "{}").code(), "form");
  EXPECT_EQ(ask("GET", dialog).status, 404);
}

TEST_F(DeskDialogs, RefusalsComeInTheLanguageOfTheRequest) {
  const std::string path = pathOf(openDialog("sfc-item"));
  const auto words = [&](Language language) {
    language_ = language;
    const std::string report = post("dialogs", {{"report", "sfc-itm"}}).message();
    const std::string value = post(path + "/set", {{"key", "dKeepDate"}, {"value", "soon"}}).message();
    const std::string name = ask("PUT", "filters/x.json", R"({"report":"sfc-item"})").message();
    const std::string form = ask("POST", "dialogs", R"({"report":7})").message();
    const std::string address = ask("GET", "nothing").message();
    return std::vector<std::string>{report, value, name, form, address};
  };
  EXPECT_THAT(words(Language::chinese),
              ElementsAre(HasSubstr("您要的是 sfc-item 吗"), HasSubstr("“soon”不是日期"),
                          "“x.json”不能作过滤条件的名称：它的结尾像文件名", "“report”必须是文本", "没有这个地址"));
  EXPECT_THAT(words(Language::english),
              ElementsAre(HasSubstr("did you mean sfc-item?"), HasSubstr("\"soon\" is no date"),
                          "\"x.json\" is no name for a filter: it ends like a file's", "\"report\" must be a text",
                          "there is no such address"));
}

TEST_F(DeskDialogs, WhatIsLeftOutIsToldInTheDialogsLanguage) {
  const Json values = {{"iYear", {{"value", "soon"}}}};
  const auto told = [&](const Json& lang) {
    const test::Answer opened = post("dialogs", {{"report", "sfc-item"}, {"lang", lang}, {"values", values}});
    return opened.json["state"]["messages"][0]["text"].get<std::string>();
  };
  EXPECT_THAT(told("zh"), HasSubstr("过滤项 iYear"));
  EXPECT_THAT(told("en"), HasSubstr("filter item iYear"));
  EXPECT_THAT(told(nullptr), HasSubstr("filter item iYear")) << "as the request was made";
}

TEST_F(DeskDialogs, WhatIsToldHoldsNoPath) {
  const std::string folder = utf8FromPath(accountFile().parent_path());
  const test::Answer opened = openDialog("sfc-item", {{"iYear", {{"value", folder + "/x"}}}});
  EXPECT_THAT(opened.json["state"]["messages"][0]["text"].get<std::string>(),
              AllOf(HasSubstr("iYear"), HasSubstr("\"x\"")));
  const test::Answer refused = post(pathOf(opened) + "/set", {{"key", "iYear"}, {"value", folder + "/x"}});
  EXPECT_THAT(refused.message(), HasSubstr("\"x\""));
}

TEST_F(DeskDialogs, DialogsAreLimited) {
  open({.dialogs = 1});
  const test::Answer first = openDialog("sfc-item");
  const test::Answer second = openDialog("sfc-item");
  EXPECT_EQ(second.status, 429);
  EXPECT_EQ(second.code(), "limit");
  ask("DELETE", pathOf(first));
  EXPECT_EQ(openDialog("sfc-item").status, 201);
}

TEST_F(DeskDialogs, ADialogThatNobodyUsesIsClosed) {
  open({.idleDialog = std::chrono::seconds(0), .sweep = std::chrono::milliseconds(5)});
  const std::string path = pathOf(openDialog("sfc-item"));
  int status = 200;
  for (int i = 0; i < 400 && status != 404; ++i) {
    std::this_thread::sleep_for(std::chrono::milliseconds(10));
    status = ask("GET", path + "/lookup", {}, {{"item", "cInvCode"}, {"limit", "1"}}).status;
  }
  EXPECT_EQ(status, 404);
}

TEST_F(DeskDialogs, FiltersAreSavedListedAndRemoved) {
  const Json values = {{"cModal", {{"value", "1"}}}, {"cWhCode", {{"value", "01\t02"}}}};
  EXPECT_EQ(get("filters"), Json::array());
  EXPECT_EQ(ask("PUT", "filters/月末", Json{{"report", "sfc-item"}, {"values", values}}.dump()).status, 200);
  EXPECT_EQ(ask("PUT", "filters/other", Json{{"report", "fx-wt"}, {"values", Json::object()}}.dump()).status, 200);
  EXPECT_THAT(get("filters"), SizeIs(2));
  const Json list = get("filters", {{"report", "sfc-item"}});
  ASSERT_THAT(list, SizeIs(1));
  EXPECT_EQ(list[0]["name"], "月末");
  EXPECT_THAT(list[0]["changed"].get<std::string>(), testing::MatchesRegex("20..-..-..T..:..:..Z"));
  const Json filter = get("filters/月末");
  EXPECT_EQ(filter["report"], "sfc-item");
  EXPECT_EQ(filter["values"]["cWhCode"]["value"], "01\t02");
  EXPECT_EQ(ask("DELETE", "filters/月末").status, 200);
  EXPECT_EQ(ask("DELETE", "filters/月末").status, 404);
  EXPECT_EQ(ask("GET", "filters/月末").status, 404);
}

TEST_F(DeskDialogs, FiltersThatCannotBeAreRefused) {
  const Json body = {{"report", "sfc-item"}, {"values", Json::object()}};
  for (const char* name : {"..", "a:b", "con", "x.json", " x"})
    EXPECT_EQ(ask("PUT", std::string("filters/") + name, body.dump()).code(), "name") << name;
  EXPECT_EQ(ask("GET", "filters/..").status, 404);
  EXPECT_EQ(ask("PUT", "filters/x", R"({"report":"nothing"})").status, 404);
  EXPECT_EQ(ask("PUT", "filters/x", R"({"report":"sfc-item","values":{"nothing":{"value":"1"}}})").status, 422);
  EXPECT_EQ(ask("POST", "filters/x", body.dump()).status, 404);
}

}  // namespace
}  // namespace quillon::workbench::desk
