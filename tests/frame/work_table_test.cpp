#include "frame/work_table.h"

#include <gtest/gtest.h>

#include "tests/frame/fakes.h"

namespace quillon {
namespace {

TEST(WorkTable, NameIsPrefixThenUniquePartThenSuffix) {
  fakes::FakePlatform platform;
  Module module(platform);
  module.namePrefix = "77";
  EXPECT_EQ(WorkTable::named(module, "IA_SFC_Item_DetailTmp").name(), "77u1IA_SFC_Item_DetailTmp");
  EXPECT_EQ(WorkTable::named(module, "IA_SFC_IX_GroupIndex").name(), "77u2IA_SFC_IX_GroupIndex");
}

TEST(WorkTable, StatementsReferToTheNameInBrackets) {
  EXPECT_EQ(WorkTable("77u1Tmp").reference(), "[77u1Tmp]");
}

TEST(WorkTable, IsDroppedBeforeItIsCreated) {
  EXPECT_EQ(WorkTable("77u1Tmp").dropBeforeCreating(),
            "If Exists(Select Name From Sysobjects Where Name = '77u1Tmp') Drop Table [77u1Tmp]");
}

TEST(WorkTable, IsDroppedAfterTheBuild) {
  EXPECT_EQ(WorkTable("77u1Tmp").dropAfterBuild(), "If OBJECT_ID(N'[77u1Tmp]') is not null Drop Table [77u1Tmp]");
}

TEST(WorkTable, CanBeDroppedByItsBareName) {
  EXPECT_EQ(WorkTable("77u1Tmp").dropByBareName(),
            "If Exists(Select Name From Sysobjects Where Name = '77u1Tmp') Drop Table 77u1Tmp");
}

TEST(TemporaryTable, NameIsWorkstationThenKindThenNumber) {
  fakes::FakePlatform platform;
  Module module(platform);
  EXPECT_EQ(TemporaryTable::named(module, "_FXDetail_").name(), "#BENCH_FXDetail_101");
  EXPECT_EQ(TemporaryTable::named(module, "_FXDetail2_").name(), "#BENCH_FXDetail2_102");
}

TEST(TemporaryTable, IsLookedUpInTempdbBeforeItIsDropped) {
  EXPECT_EQ(TemporaryTable("#WS_1").drop(),
            "if exists(select id from  tempdb..sysobjects where id=object_id(N'tempdb..#WS_1')) drop table #WS_1");
}

}  // namespace
}  // namespace quillon
