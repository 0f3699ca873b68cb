// The classes that the catalogue names are those of Quillon.dll: in its type library, made by its class factories, with
// the members that the catalogue says they have.
#include <gtest/gtest.h>

#include <string>
#include <string_view>

#include "automation/late_bound.h"
#include "automation/text.h"
#include "tests/automation/com_scope.h"
#include "tests/component/quillon_library.h"
#include "workbench/catalogue/catalogue.h"

namespace quillon::workbench {
namespace {

class CatalogueClasses : public testing::Test {
 protected:
  automation::LateBound create(std::string_view name) const {
    return {library_.create<IDispatch>(component::test::QuillonLibrary::classId(automation::toWide(name))),
            std::string(name)};
  }

 private:
  const automation::test::ComScope com_;
  const component::test::QuillonLibrary library_;
};

TEST_F(CatalogueClasses, MakeTheReports) {
  for (const Report& report : reports()) {
    SCOPED_TRACE(report.reportClass);
    const automation::LateBound object = create(report.reportClass);
    ASSERT_TRUE(object);
    EXPECT_TRUE(object.offers(L"GETSQL"));
    EXPECT_TRUE(object.offers(L"Execute"));
  }
}

TEST_F(CatalogueClasses, ServeTheDialogs) {
  for (const DialogClass* dialog : dialogClasses()) {
    SCOPED_TRACE(dialog->name);
    const automation::LateBound object = create(dialog->name);
    ASSERT_TRUE(object);
    for (const wchar_t* member : {L"CallBack_FilterInit", L"CallBack_ValueChange", L"CallBack_FilterClick"})
      EXPECT_TRUE(object.offers(member));
    for (const wchar_t* member : {L"CallBack_ReportViewInit", L"CallBack_ReportViewChange"})
      EXPECT_EQ(object.offers(member), dialog->hasViews);
    for (const wchar_t* member : {L"InitYear", L"InitGrade"})
      EXPECT_EQ(object.offers(member), dialog->hasLists);
  }
}

}  // namespace
}  // namespace quillon::workbench
