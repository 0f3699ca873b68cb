// The interface's checks of an account, and what a run says of those that touch it.
#include <set>
#include <string>
#include <thread>

#include "tests/workbench/desk/desk_test_base.h"
#include "workbench/account/schema.h"
#include "workbench/runs/account_check.h"

namespace quillon::workbench::desk {
namespace {

using testing::AllOf;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;
using testing::SizeIs;

// Three receipts whose cost items sum to 0.0625 too much each.
class DeskChecks : public test::DeskTest {
 protected:
  static void SetUpTestSuite() {
    DeskTest::SetUpTestSuite();
    const auto account = tsql::Connection::open(accountFile(), tsql::OpenMode::existing);
    const auto rows = account->query(
        "Select Top 3 iSubID, Max(AutoID) From ia_subsidiary_Item Where bRdFlag = 1 And iMonth > 0 And iYear = 2024 "
        "Group By iSubID Order By iSubID");
    std::string parts;
    while (rows->next()) {
      lines_.insert(*tsql::toText(rows->value(0)));
      parts += (parts.empty() ? "" : ", ") + *tsql::toText(rows->value(1));
    }
    account->execute("Update ia_subsidiary_Item Set iItemInPrice = iItemInPrice + 0.0625 Where AutoID In (" + parts +
                     ")");
  }

  // A desk over another account.
  void openOver(const std::filesystem::path& file) {
    api_ = std::make_unique<DeskApi>(DeskOptions{.account = AccountSource::inFile(file),
                                                 .filters = SavedFilters(filters_.path()),
                                                 .layouts = KeptLayouts(layouts_.path())});
  }
  // Starts the checks and waits for their end.
  Json checked() {
    const test::Answer started = post("account/checks");
    EXPECT_EQ(started.status, 201) << started.response.body;
    return ended("account/checks");
  }
  Json ended(const std::string& path) {
    while (true) {
      Json info = get(path);
      if (info["state"] != "running") return info;
      std::this_thread::sleep_for(std::chrono::milliseconds(20));
    }
  }
  static Json named(const Json& info, const std::string& name) {
    for (const Json& check : info["checks"]) {
      if (check["name"] == name) return check;
    }
    ADD_FAILURE() << "no check " << name;
    return {};
  }

  static inline std::set<std::string> lines_;  // AutoIDs of those that do not sum
};

TEST_F(DeskChecks, AreMadeWhenAskedFor) {
  const Json none = get("account/checks");
  EXPECT_EQ(none["state"], "none");
  EXPECT_THAT(none["checks"], IsEmpty());
  const test::Answer early = ask("GET", "account/checks/line-sum");
  EXPECT_EQ(early.status, 409);
  EXPECT_EQ(early.message(), "the account has not been checked");
}

TEST_F(DeskChecks, TellEachCheckInItsOrder) {
  const Json info = checked();
  EXPECT_EQ(info["state"], "done");
  EXPECT_EQ(info["error"], nullptr);
  EXPECT_TRUE(info["started"].is_string());
  std::vector<std::string> names;
  for (const Json& check : info["checks"])
    names.push_back(check["name"]);
  EXPECT_EQ(names, checkNames());

  const Json found = named(info, "line-sum");
  EXPECT_EQ(found["rank"], "error");
  EXPECT_EQ(found["rows"], 3);
  EXPECT_EQ(found["amount"], "-0.1875") << "exactly, as a text";
  EXPECT_EQ(found["title"],
            (Json{{"zh", "成本项目之和不等于明细账记录"}, {"en", "cost items that do not sum to their ledger line"}}));
  EXPECT_THAT(found["advice"]["en"].get<std::string>(), HasSubstr("split these lines anew"));
  EXPECT_EQ(found["reports"], (Json{"sfc-item", "outsum-item", "fx-detail", "fx-wt"}));

  const Json clean = named(info, "stray-item");
  EXPECT_EQ(clean["rows"], 0);
  EXPECT_EQ(clean["amount"], "0.00");
  EXPECT_EQ(named(info, "never-split")["rank"], "note");
  EXPECT_EQ(named(info, "class-tree")["amount"], nullptr) << "its rows have no amounts";
}

TEST_F(DeskChecks, GiveRowsByThePage) {
  checked();
  std::set<std::string> found;
  for (const int offset : {0, 2}) {
    const Json page = get("account/checks/line-sum", {{"offset", std::to_string(offset)}, {"limit", "2"}});
    EXPECT_EQ(page["rowCount"], 3);
    EXPECT_EQ(page["kept"], 3);
    EXPECT_THAT(page["rows"], SizeIs(offset == 0 ? 2 : 1));
    for (const Json& row : page["rows"]) {
      found.insert(row["line"].dump());
      EXPECT_EQ(row["year"], 2024);
      EXPECT_EQ(row["amount"], "-0.0625");
      EXPECT_THAT(row["what"].get<std::string>(), AllOf(HasSubstr("line "), HasSubstr(", cost items ")));
    }
  }
  EXPECT_EQ(found, lines_);
  EXPECT_THAT(get("account/checks/line-sum", {{"offset", "3"}})["rows"], IsEmpty());
  EXPECT_THAT(get("account/checks/stray-item")["rows"], IsEmpty());
  language_ = Language::chinese;
  EXPECT_THAT(get("account/checks/line-sum")["rows"][0]["what"].get<std::string>(), HasSubstr("成本项目 "));
  language_ = Language::english;
  const test::Answer wrong = ask("GET", "account/checks/line-sums");
  EXPECT_EQ(wrong.status, 404);
  EXPECT_EQ(wrong.message(), "there is no check \"line-sums\"");
}

TEST_F(DeskChecks, SayWhenTheyKeepOnlyTheFirstRows) {
  DeskLimits limits;
  limits.checkRows = 2;
  open(limits);
  EXPECT_EQ(named(checked(), "line-sum")["rows"], 3);
  const Json page = get("account/checks/line-sum");
  EXPECT_EQ(page["rowCount"], 3);
  EXPECT_EQ(page["kept"], 2);
  EXPECT_THAT(page["rows"], SizeIs(2));
}

TEST_F(DeskChecks, FindDoubledKeysAndAreMadeAnew) {
  const test::TemporaryFile other(".account");
  const auto execute = [&other](const std::string& sql) {
    tsql::Connection::open(other.path(), tsql::OpenMode::existing)->execute(sql);
  };
  account::createTables(*tsql::Connection::open(other.path(), tsql::OpenMode::createNew));
  execute("Drop Table Warehouse");
  execute("Create Table Warehouse (cWhCode nvarchar(10), cWhName nvarchar(20))");
  execute("Insert Into Warehouse Values (N'01', N'x'), (N'01', N'y'), (N'02', N'z')");
  openOver(other.path());
  EXPECT_EQ(named(checked(), "join-keys")["rows"], 1);
  const Json page = get("account/checks/join-keys");
  ASSERT_THAT(page["rows"], SizeIs(1));
  EXPECT_EQ(page["rows"][0]["what"], "Warehouse: cWhCode = 01, 2 rows");
  EXPECT_EQ(page["rows"][0]["line"], nullptr);
  execute("Delete From Warehouse Where cWhName = N'y'");
  EXPECT_EQ(named(checked(), "join-keys")["rows"], 0);
}

TEST_F(DeskChecks, AreStopped) {
  EXPECT_EQ(post("account/checks/stop").status, 200) << "there are none";
  post("account/checks");
  EXPECT_EQ(post("account/checks/stop").status, 200);
  const Json info = ended("account/checks");
  EXPECT_THAT((std::set<std::string>{"stopped", "done"}), testing::Contains(info["state"].get<std::string>()));
  EXPECT_EQ(checked()["state"], "done") << "and may be begun again";
}

TEST_F(DeskChecks, TellARunWhatTouchesIt) {
  const std::string path = done("sfc-item", {{"iYear", {{"value", "2024"}}}});
  const Json info = ended(path + "/checks");
  EXPECT_EQ(info["state"], "done");
  ASSERT_THAT(info["checks"], SizeIs(1));
  EXPECT_EQ(info["checks"][0]["name"], "line-sum");
  EXPECT_EQ(info["checks"][0]["rows"], 3);
  EXPECT_EQ(info["checks"][0]["amount"], "-0.1875");
}

TEST_F(DeskChecks, TellARunOfTheYearsOfItsFilterAlone) {
  const std::string path = done("fx-wt", {{"dKeepDate", {{"value", "2022-01-01"}, {"value2", "2022-12-31"}}}});
  EXPECT_THAT(ended(path + "/checks")["checks"], IsEmpty());
}

TEST_F(DeskChecks, OfARunGoWithIt) {
  const std::string path = done("sfc-item");
  get(path + "/checks");
  EXPECT_EQ(ask("DELETE", path).status, 200);
  EXPECT_EQ(ask("GET", path + "/checks").status, 404);
}

TEST_F(DeskChecks, OfAnAccountThatIsNoneFailWithoutItsPath) {
  const test::TemporaryFile other(".account");
  tsql::Connection::open(other.path(), tsql::OpenMode::createNew);
  openOver(other.path());
  const Json info = checked();
  EXPECT_EQ(info["state"], "failed");
  EXPECT_THAT(info["error"].get<std::string>(),
              AllOf(Not(IsEmpty()), Not(HasSubstr(other.path().parent_path().string()))));
}

}  // namespace
}  // namespace quillon::workbench::desk
