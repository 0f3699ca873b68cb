#include "workbench/cli/item_help.h"

#include <gmock/gmock.h>

#include "workbench/catalogue/catalogue.h"
#include "workbench/platform/filter_input.h"

namespace quillon::workbench {
namespace {

using testing::AllOf;
using testing::HasSubstr;

std::string lineOf(const std::string& help, const std::string& key) {
  const auto begin = help.find("\n" + key + " ");
  return begin == std::string::npos ? std::string() : help.substr(begin + 1, help.find('\n', begin + 1) - begin - 1);
}

TEST(ItemHelp, TellsEachItemOnALine) {
  const std::string help = itemHelp(reportNamed("fx-detail"));
  EXPECT_THAT(help,
              testing::StartsWith("Filter items of fx-detail (明细账（按成本项目）, Cost-item detail ledger).\n"));
  EXPECT_THAT(lineOf(help, "cWhCode"),
              AllOf(HasSubstr(" 仓库 "), HasSubstr(" Warehouse "), HasSubstr(" code "), HasSubstr(" one "),
                    HasSubstr(" --set cWhCode=07 "), HasSubstr(" quillon list warehouses")));
  EXPECT_THAT(lineOf(help, "cInvCCode"), HasSubstr(" beginning of a code "));
  EXPECT_THAT(lineOf(help, "cInvCode"), HasSubstr(" one, required "));
  EXPECT_THAT(lineOf(help, "cCaType"), AllOf(HasSubstr(" choice "), HasSubstr(" --set cCaType=成本项目 "),
                                             HasSubstr("项目分类 by cost-item class, 成本项目 by cost item")));
  EXPECT_THAT(lineOf(help, "dKeepDate"), AllOf(HasSubstr(" range "), HasSubstr("dKeepDate=2024-03-01..2024-03-31")));
  EXPECT_THAT(lineOf(help, "cBatchIA"), AllOf(HasSubstr(" list "), HasSubstr(" quillon list batches")));
  EXPECT_THAT(lineOf(itemHelp(reportNamed("sfc-item")), "bIncludeExpire"),
              AllOf(HasSubstr(" yes or no "), HasSubstr("bIncludeExpire=0"), HasSubstr("0 no, 1 yes")));
}

TEST(ItemHelp, HasEveryItemWithAnExampleThatIsAccepted) {
  for (const Report& report : reports()) {
    const std::string help = itemHelp(report);
    for (const ItemRegistration& item : report.registration.items) {
      const std::string line = lineOf(help, item.key);
      EXPECT_THAT(line, AllOf(HasSubstr(item.chinese), HasSubstr(item.english), HasSubstr("--set " + exampleOf(item))))
          << report.registration.name << ' ' << item.key;
      FilterObject filter(report.registration, InitialValues::none);
      EXPECT_NO_THROW(setFilterItems(filter, std::vector<std::string>{exampleOf(item)})) << exampleOf(item);
      EXPECT_NO_THROW(checkItem(*filter.find(item.key))) << exampleOf(item);
    }
  }
}

}  // namespace
}  // namespace quillon::workbench
