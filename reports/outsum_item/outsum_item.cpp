#include "reports/outsum_item/outsum_item.h"

#include <vector>

#include "frame/display_names.h"
#include "frame/text.h"
#include "reports/outsum_item/statements.h"

namespace quillon {

namespace {

using namespace outsum_item;

constexpr std::string_view detailSuffix = "IA_OutSum_Item_DetailTmp";

// A project-item class of the collected rows, with the tables that fItem names for it; empty where it names none.
struct ProjectItemClass {
  std::string code;
  std::string classTable;
  std::string itemTable;
};

std::vector<ProjectItemClass> projectItemClasses(const Build& build, Session& session) {
  const auto rows = session.query(queryProjectItemClasses(build), readOnlyLookup);
  std::vector<ProjectItemClass> classes;
  for (; !rows->eof(); rows->moveNext()) {
    classes.push_back({.code = rows->text(0).value_or(""),
                       .classTable = std::string(trimBlanks(rows->text(1).value_or(""))),
                       .itemTable = std::string(trimBlanks(rows->text(2).value_or("")))});
  }
  rows->close();
  return classes;
}

// Class "ch" is the inventory itself. A class that fItem does not know or names no tables for keeps its rows unnamed.
void nameItemClasses(const Build& build, Session& session) {
  for (const ProjectItemClass& itemClass : projectItemClasses(build, session)) {
    if (equalIgnoringCase(itemClass.code, "ch")) {
      session.execute(nameInventoryItemClasses(build, itemClass.code));
    } else if (!itemClass.itemTable.empty() && !itemClass.classTable.empty()) {
      session.execute(nameProjectItemClasses(build, itemClass.code, itemClass.itemTable, itemClass.classTable));
    }
  }
}

}  // namespace

void OutsumItem::build(Filter& filter, const std::string& resultTable, Module& module, Session& session) {
  translateFilter(filter, module, conditions_);
  const Build build{
      .conditions = conditions_, .resultTable = resultTable, .detail = WorkTable::named(module, detailSuffix)};

  session.execute(build.detail.dropBeforeCreating());
  session.execute(createDetailTable(build));
  session.execute(createResultTable(build));
  if (byExpenseItem(build)) {
    session.execute(insertExpenseItems(build, module.loginInUse().languageRegion()));
  } else {
    session.execute(insertSplitLines(build));
    session.execute(insertUnsplitLines(build));
  }
  nameItemClasses(build, session);
  session.execute(insertReportRows(build));
  session.execute(nameBusinessTypes(resultTable));
  session.execute(nameVoucherTypes(build));
  session.execute(build.detail.dropAfterBuild());
}

}  // namespace quillon
