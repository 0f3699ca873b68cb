// Filters that are saved with a report or a dialog, and used by name.
#include "workbench/cli/filters_command.h"

#include <gmock/gmock.h>

#include <sstream>

#include "tests/workbench/cli/command_test.h"
#include "workbench/cli/dialog_command.h"
#include "workbench/cli/report_command.h"
#include "workbench/platform/user_error.h"
#include "workbench/tsql/values/utf8_path.h"

namespace quillon::workbench {
namespace {

using testing::EndsWith;
using testing::HasSubstr;

class FiltersCommand : public test::CommandTest {};

TEST_F(FiltersCommand, SavesAndUsesAReportsFilter) {
  const std::vector<std::string> common = {"report", "sfc-item", "--account", "ACCOUNT", "--format", "csv"};
  std::vector<std::string> saving = common, naming = common, plain = common;
  saving.insert(saving.end(), {"--set", "仓库=线边库", "--set", "cModal=1", "--save-filter", "线边"});
  naming.insert(naming.end(), {"--filter", "线边"});
  plain.insert(plain.end(), {"--set", "cWhCode=07", "--set", "cModal=1"});
  const test::End saved = run(saving);
  EXPECT_EQ(saved.status, 0) << saved.errors;
  EXPECT_EQ(saved.errors, "quillon: 过滤条件已保存：线边\n");
  EXPECT_EQ(run(naming).out, run(plain).out);
  EXPECT_EQ(saved.out, run(plain).out);

  EXPECT_EQ(run({"filters", "list"}).out,
            "名称  报表      条件\n"
            "----  --------  ----------------------------\n"
            "线边  sfc-item  报表方式=按成本项目, 仓库=07\n");
  EXPECT_THAT(run({"filters", "list", "--lang", "en"}).out, EndsWith("Report mode=by cost item, Warehouse=07\n"));
  const test::End shown = run({"filters", "show", "线边"});
  EXPECT_THAT(shown.out, HasSubstr("\"name\": \"cWhCode\""));
  EXPECT_EQ(shown.out.find("iYear"), std::string::npos) << "the dialog's own defaults are not kept";

  const test::End again = run(saving);
  EXPECT_EQ(again.status, 1);
  EXPECT_EQ(again.out, "") << "it is refused before the report is run";
  EXPECT_EQ(again.errors, "there is a filter \"线边\" already; give --replace-filter, or another name");
  saving.insert(saving.end(), {"--set", "cDepCode=05", "--replace-filter"});
  EXPECT_EQ(run(saving).status, 0);
  EXPECT_THAT(run({"filters", "list"}).out, HasSubstr("部门=05"));

  EXPECT_EQ(run({"filters", "remove", "线边"}).status, 0);
  EXPECT_THAT(run({"filters", "list", "--lang", "en"}).out, testing::StartsWith("no filters are saved in "));
  EXPECT_EQ(run({"filters", "remove", "线边"}).errors, "there is no saved filter \"线边\"; see quillon filters list");
  EXPECT_EQ(run({"filters", "show", "线边"}).errors, "there is no saved filter \"线边\"; see quillon filters list");
  EXPECT_THAT(run(naming).errors, testing::StartsWith("there is no saved filter \"线边\", and no file"));
}

TEST_F(FiltersCommand, SavesNoFilterThatIsNotAccepted) {
  EXPECT_EQ(run({"report", "fx-detail", "--account", "ACCOUNT", "--save-filter", "x"}).status, 1);
  EXPECT_EQ(run({"report", "sfc-item", "--account", "ACCOUNT", "--set", "cModal=9", "--save-filter", "x"}).status, 1);
  EXPECT_EQ(run({"report", "sfc-item", "--account", "ACCOUNT", "--save-filter", "a/b"}).errors,
            "\"a/b\" is no name for a filter: it may have letters, digits, blanks and - _ . ( ) + , in it");
  EXPECT_EQ(run({"report", "sfc-item", "--account", "ACCOUNT", "--replace-filter"}).status, 2);
  EXPECT_FALSE(std::filesystem::exists(folder_ / "config"));
}

TEST_F(FiltersCommand, SavesWhatADialogWasGiven) {
  const test::End end = run({"dialog", "outsum-item", "--account", "ACCOUNT", "--step", "init", "--step",
                             "change:Warehouse=线边库", "--step", "click", "--save-filter", "d"});
  EXPECT_EQ(end.status, 0) << end.errors;
  EXPECT_THAT(run({"filters", "list"}).out, EndsWith("\nd     outsum-item  仓库=07\n"));
  const test::End open = run({"dialog", "outsum-item", "--account", "ACCOUNT", "--step", "init", "--save-filter", "e"});
  EXPECT_EQ(open.status, 1);
  EXPECT_THAT(open.errors, HasSubstr("the filter is not saved: the last step does not confirm it (--step click)"));
  EXPECT_THAT(run({"dialog", "outsum-item", "--account", "ACCOUNT", "--filter", "d", "--format", "json"}).out,
              HasSubstr("07"));
}

TEST_F(FiltersCommand, ListsAFileThatItCannotRead) {
  const SavedFilters filters = SavedFilters::ofUser();
  filters.save("broken", "{\"items\":7}", false);
  filters.save("plain", R"({"id":null,"items":[{"name":"cWhCode","value":"07"}]})", false);
  EXPECT_EQ(run({"filters", "list", "--lang", "en"}).out,
            "Name    Report  Items\n"
            "------  ------  ----------------\n"
            "broken          (cannot be read)\n"
            "plain           cWhCode=07\n");
  EXPECT_THAT(run({"report", "sfc-item", "--account", "ACCOUNT", "--filter", "broken"}).errors,
              EndsWith("broken.json, line 1: \"items\" must be a list"));
}

TEST_F(FiltersCommand, ComparesAccountsWithASavedFilterAndSavesItOnce) {
  const test::End end = run({"report", "sfc-item", "--account", "ACCOUNT", "--compare", "ACCOUNT", "--set", "cModal=1",
                             "--save-filter", "both"});
  EXPECT_EQ(end.status, 0) << end.errors;
  EXPECT_THAT(run({"filters", "list"}).out, HasSubstr("both"));
}

}  // namespace
}  // namespace quillon::workbench
