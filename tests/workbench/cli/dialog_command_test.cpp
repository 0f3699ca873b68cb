// The whole way: the command, the library's filter-control class, an account of a few rows whose lists are known.
#include "workbench/cli/dialog_command.h"

#include <gmock/gmock.h>
#include <CLI/CLI.hpp>

#include <algorithm>
#include <fstream>
#include <nlohmann/json.hpp>
#include <sstream>

#include "tests/workbench/platform/temporary_file.h"
#include "workbench/account/schema.h"
#include "workbench/catalogue/catalogue.h"
#include "workbench/platform/account_source.h"
#include "workbench/tsql/values/utf8_path.h"

namespace quillon::workbench {
namespace {

using Json = nlohmann::json;

// Cost items begin in April 2023; 2022 has none. Valued by department now, by inventory in 2023. The issues of 2024 are
// sales, by both of their voucher types, and one direct sale that no list takes up; 2023 has only a receipt.
class DialogCommand : public testing::Test {
 protected:
  void SetUp() override {
    const auto account = tsql::Connection::open(file_.path(), tsql::OpenMode::createNew);
    account::createTables(*account);
    account->execute(
        "Insert Into orvsystem..UA_Period (cAcc_Id, iYear, iId, dBegin, dEnd) Values "
        "(N'001', 2022, 12, '2022-12-01', '2022-12-31'), (N'001', 2023, 12, '2023-12-01', '2023-12-31'), "
        "(N'001', 2024, 12, '2024-12-01', '2024-12-31'), (N'001', 9999, 1, '9999-01-01', '9999-12-31')");
    account->execute("Insert Into IA_PeriodState (iYear, iMonth, bSettled) Values (2023, 12, 1), (2024, 12, 0)");
    account->execute(
        "Insert Into AccInformation (cSysID, cID, cName, cValue) Values "
        "(N'CA', N'11002', N'iFxStart', N'202304'), (N'IA', N'1', N'cValueStyle', N'按部门核算')");
    account->execute(
        "Insert Into IA_HisOption (iYear, cSysID, cName, cValue) Values (2023, N'IA', N'cValueStyle', N'按存货核算')");
    account->execute(
        "Insert Into Ca_FxClassDef (iFxCId, cFxCCode, cFxCName, iGrade) Values (1, N'01', N'材料', 1), "
        "(2, N'0101', N'金属', 2)");
    account->execute(
        "Insert Into VouchType (cVouchType, cVouchName) Values (N'01', N'采购入库单'), (N'32', N'销售出库单'), "
        "(N'05', N'发货单')");
    account->execute(
        "Insert Into AA_Enum (EnumType, EnumCode, LocaleId, EnumName) Values "
        "(N'IA.VchType', N'销售出库单', N'zh-CN', N'销售出库'), (N'IA.VchType', N'发货单', N'zh-CN', N'发货'), "
        "(N'IA.VchType', N'采购入库单', N'zh-CN', N'采购入库'), (N'IA.VchType', N'其他出库单', N'zh-CN', N'其他出库票'), "
        "(N'IA.VchType', N'销售出库单', N'en-US', N'Sales issue'), "
        "(N'IA.Bustype', N'普通销售', N'zh-CN', N'销售'), (N'IA.Bustype', N'直运销售', N'zh-CN', N'直运'), "
        "(N'IA.Bustype', N'其他出库', N'zh-CN', N'其他')");
    account->execute(
        "Insert Into ia_subsidiary (AutoID, iYear, iMonth, cVouType, cBusType, bRdFlag, bFlag) Values "
        "(1, 2023, 5, N'01', N'普通采购', 1, 0), (2, 2024, 1, N'3201', N'普通销售', 0, 0), "
        "(3, 2024, 1, N'32', N'普通销售', 0, 0), (4, 2024, 2, N'05', N'直运销售', 0, 0)");
  }

  // One object a step.
  std::vector<Json> steps(const std::string& report, std::vector<std::string> steps, const std::string& filter = "") {
    std::ostringstream out;
    runDialog({.report = report,
               .account = AccountSource::inFile(file_.path()),
               .filterFile = filter,
               .steps = std::move(steps),
               .format = DialogFormat::json,
               .language = Language::english},
              out, notes_);
    std::vector<Json> objects;
    std::istringstream lines(out.str());
    for (std::string line; std::getline(lines, line);)
      objects.push_back(Json::parse(line));
    return objects;
  }

  std::string refusalOf(const std::string& report, std::vector<std::string> some) {
    try {
      steps(report, std::move(some));
    } catch (const std::exception& error) {
      EXPECT_EQ(std::string_view(error.what()).find('\n'), std::string_view::npos);
      return error.what();
    }
    return "nothing was refused";
  }

  test::TemporaryFile file_{".qacc"};
  std::ostringstream notes_;
};

Json itemOf(const Json& step, const std::string& key) {
  for (const Json& item : step["items"]) {
    if (item["key"] == key) return item;
  }
  ADD_FAILURE() << "no item " << key;
  return {};
}

Json valueOf(const Json& step, const std::string& key) {
  return itemOf(step, key)["value"];
}

bool available(const Json& step, const std::string& key) {
  return itemOf(step, key)["available"];
}

// "32 name, 05 name"
std::string choicesOf(const Json& step, const std::string& key) {
  const Json item = itemOf(step, key);
  std::string text;
  for (const Json& choice : item["choices"]) {
    const std::string name = choice["name"];
    text += (text.empty() ? "" : ", ") + choice["code"].get<std::string>() + (name.empty() ? "" : " " + name);
  }
  return text;
}

TEST_F(DialogCommand, FillsTheOutboundSummarysDialog) {
  const Json init = steps("outsum-item", {"init"}).at(0);
  EXPECT_EQ(valueOf(init, "iYear"), "2024");
  EXPECT_EQ(choicesOf(init, "iYear"), "2023, 2024") << "cost items begin in 2023";
  EXPECT_EQ(valueOf(init, "cModal"), "0");
  EXPECT_EQ(valueOf(init, "cSource"), "0");
  EXPECT_EQ(valueOf(init, "iGrade"), "1");
  EXPECT_EQ(choicesOf(init, "iGrade"), "1 1, 2 2");
  EXPECT_EQ(choicesOf(init, "cVouType"), "32 销售出库") << "3201 goes with 32, direct sales are left out";
  EXPECT_EQ(choicesOf(init, "cBusType"), "普通销售 销售");
  EXPECT_EQ(valueOf(init, "dIncludeExpire"), "") << "the dialog leaves it to the user";
  EXPECT_FALSE(available(init, "cWhCode"));
  EXPECT_TRUE(available(init, "cDepCode"));
  EXPECT_EQ(init["view"], nullptr);
}

TEST_F(DialogCommand, FillsTheReceiptIssueBalanceDialog) {
  const Json init = steps("sfc-item", {"init"}).at(0);
  EXPECT_EQ(valueOf(init, "iYear"), "2024");
  EXPECT_EQ(choicesOf(init, "iYear"), "2023, 2024");
  EXPECT_EQ(valueOf(init, "cModal"), "0");
  EXPECT_EQ(valueOf(init, "cFSType"), "0");
  EXPECT_EQ(valueOf(init, "iGrade"), "1");
  EXPECT_EQ(valueOf(init, "bIncludeExpire"), "1");
  EXPECT_EQ(valueOf(init, "bIncludeTransVouch"), "1");
  EXPECT_FALSE(available(init, "bIncludeTransVouch")) << "only where inventories are valued as one";
  EXPECT_FALSE(available(init, "cWhCode"));
  EXPECT_TRUE(available(init, "cDepCode"));
}

TEST_F(DialogCommand, FollowsTheYear) {
  const auto shown = steps("outsum-item", {"init", "change:iYear=2023", "change:iYear=2024"});
  EXPECT_FALSE(available(shown[1], "cWhCode"));
  EXPECT_FALSE(available(shown[1], "cDepCode"));
  EXPECT_EQ(choicesOf(shown[1], "cVouType"), "08 其他出库票") << "a year without issues";
  EXPECT_EQ(choicesOf(shown[1], "cBusType"), "其他出库 其他");
  EXPECT_TRUE(available(shown[2], "cDepCode"));
  EXPECT_EQ(choicesOf(shown[2], "cVouType"), "32 销售出库");
}

TEST_F(DialogCommand, MakesTransfersAChoiceOnlyByInventory) {
  const auto shown =
      steps("sfc-item", {"init", "change:iYear=2023", "change:bIncludeTransVouch=0", "change:iYear=2024"});
  EXPECT_TRUE(available(shown[1], "bIncludeTransVouch"));
  EXPECT_EQ(valueOf(shown[2], "bIncludeTransVouch"), "0");
  EXPECT_FALSE(available(shown[3], "bIncludeTransVouch"));
  EXPECT_EQ(valueOf(shown[3], "bIncludeTransVouch"), "1");
}

TEST_F(DialogCommand, TiesTheGradeAndTheViewToTheMode) {
  const auto shown = steps("outsum-item", {"init", "view", "change:cModal=2", "change:cModal=1", "change:cModal=0"});
  EXPECT_EQ(shown[1]["view"], "cross");
  EXPECT_EQ(shown[2]["view"], "ordin");
  EXPECT_FALSE(available(shown[2], "iGrade"));
  EXPECT_EQ(shown[3]["view"], "cross");
  EXPECT_FALSE(available(shown[3], "iGrade"));
  EXPECT_TRUE(available(shown[4], "iGrade"));
}

TEST_F(DialogCommand, NarrowsTheInventoryLookupToTheClass) {
  const Json outbound = steps("outsum-item", {"init", "change:cInvCCode=01'0"}).at(1);
  EXPECT_EQ(itemOf(outbound, "cInvCode")["lookup"], "#FN[cInvCCode] Like '01'0%'") << "quotes pass as they are";
  const Json balance = steps("sfc-item", {"init", "change:cInvClass=02"}).at(1);
  EXPECT_EQ(itemOf(balance, "cInvCode")["lookup"], "#FN[cInvCCode] Like '02%'");
}

TEST_F(DialogCommand, KeepsTheValuesWithWhichItBegins) {
  const test::TemporaryFile filter(".json");
  std::ofstream(filter.path(), std::ios::binary)
      << R"({"items":[{"name":"iYear","value":"2023"},{"name":"cSource","value":"1"},{"name":"iGrade","value":"2"}]})";
  const Json init = steps("outsum-item", {"init"}, utf8FromPath(filter.path())).at(0);
  EXPECT_EQ(valueOf(init, "iYear"), "2023");
  EXPECT_EQ(valueOf(init, "cSource"), "1");
  EXPECT_EQ(valueOf(init, "iGrade"), "2");
  EXPECT_EQ(choicesOf(init, "cVouType"), "08 其他出库票") << "the lists are those of its year";
  EXPECT_FALSE(available(init, "cDepCode"));
}

TEST_F(DialogCommand, TakesCaptionsAndNames) {
  const test::TemporaryFile filter(".json");
  std::ofstream(filter.path(), std::ios::binary)
      << R"({"items":[{"name":"报表方式","value":"by cost item"},{"name":"单据类型","value":"销售出库"}]})";
  const auto shown = steps("outsum-item", {"init", "change:业务类型=销售"}, utf8FromPath(filter.path()));
  EXPECT_EQ(valueOf(shown[0], "cModal"), "1");
  EXPECT_EQ(valueOf(shown[0], "cVouType"), Json::array({"32"})) << "a choice that the dialog makes";
  EXPECT_EQ(valueOf(shown[1], "cBusType"), Json::array({"普通销售"}));
}

TEST_F(DialogCommand, GoesThroughInitViewAndClickWithoutSteps) {
  const auto shown = steps("sfc-item", {});
  ASSERT_EQ(shown.size(), 3U);
  EXPECT_EQ(shown[0]["step"], "init");
  EXPECT_EQ(shown[1]["step"], "view");
  EXPECT_EQ(shown[2]["step"], "click");
  EXPECT_EQ(shown[2]["accepted"], true);
}

TEST_F(DialogCommand, TakesStepsInAnyOrder) {
  const auto shown = steps("outsum-item", {"click", "view", "change:cModal=2", "init", "init"});
  EXPECT_EQ(shown[0]["accepted"], true);
  EXPECT_EQ(shown[1]["view"], "cross") << "an empty mode is no 2";
  EXPECT_EQ(shown[2]["view"], "ordin");
  EXPECT_EQ(valueOf(shown[3], "cModal"), "2") << "what is there is kept";
  EXPECT_EQ(shown[4]["items"], shown[3]["items"]);
}

TEST_F(DialogCommand, RefusesWhatCannotBeDoneInOneLine) {
  EXPECT_EQ(refusalOf("outsum-item", {"init", "cancel"}),
            "there is no step \"cancel\"; the steps are: init, view, click, change:KEY=VALUE");
  EXPECT_EQ(refusalOf("outsum-item", {"init", "change:iYear=2022"}),
            "step change:iYear=2022: filter item iYear (Year): there is no choice \"2022\"; choose of 2023, 2024");
  EXPECT_EQ(refusalOf("outsum-item", {"change:iYear=2023"}),
            "step change:iYear=2023: The dialog has no connection to the account yet; call CallBack_FilterInit first.");
  EXPECT_EQ(refusalOf("no-report", {}), "there is no report \"no-report\"; the reports are: " + reportNames());
}

TEST_F(DialogCommand, ShowsWhatWentWellBeforeAStepFailed) {
  std::ostringstream out;
  EXPECT_THROW(runDialog({.report = "sfc-item",
                          .account = AccountSource::inFile(file_.path()),
                          .steps = {"init", "change:iYear=1999"},
                          .language = Language::english},
                         out, notes_),
               std::exception);
  EXPECT_THAT(out.str(), testing::StartsWith("Step: init\nKey  "));
  EXPECT_THAT(out.str(), testing::Not(testing::HasSubstr("1999")));
}

TEST_F(DialogCommand, ShowsATableAStep) {
  std::ostringstream out;
  runDialog({.report = "outsum-item", .account = AccountSource::inFile(file_.path()), .steps = {"init", "click"}}, out,
            notes_);
  EXPECT_THAT(out.str(), testing::StartsWith("步骤：init\n关键字  "));
  EXPECT_THAT(out.str(), testing::HasSubstr("\n\n步骤：click\n关键字  "));
  EXPECT_THAT(out.str(), testing::EndsWith("\n确认：接受\n"));
}

TEST_F(DialogCommand, RefusesWrongUsage) {
  const auto refused = [](std::vector<std::string> arguments) {
    CLI::App app;
    addDialogCommand(app);
    std::ranges::reverse(arguments);
    EXPECT_THROW(app.parse(std::move(arguments)), CLI::ParseError);
  };
  refused({"dialog"});
  refused({"dialog", "sfc-item"});
  refused({"dialog", "sfc-item", "--account", "a", "--format", "html"});
  refused({"dialog", "sfc-item", "--account", "a", "--step"});
}

}  // namespace
}  // namespace quillon::workbench
