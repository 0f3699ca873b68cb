#include "workbench/com/variant_list.h"

#include <gtest/gtest.h>

namespace quillon::workbench {
namespace {

std::vector<automation::Variant> threeNumbers() {
  return {automation::Variant(1), automation::Variant(2), automation::Variant(3)};
}

TEST(VariantListTest, GivesItsValuesInOrderAndThenNoMore) {
  const auto list = automation::makeObject<VariantList>(threeNumbers());
  automation::Variant values[2];
  ULONG fetched = 0;
  EXPECT_EQ(list->Next(2, values, &fetched), S_OK);
  EXPECT_EQ(fetched, 2U);
  EXPECT_EQ(values[0].lVal, 1);
  EXPECT_EQ(values[1].lVal, 2);
  EXPECT_EQ(list->Next(2, values, &fetched), S_FALSE);
  EXPECT_EQ(fetched, 1U);
  EXPECT_EQ(values[0].lVal, 3);
  EXPECT_EQ(list->Next(1, values, nullptr), S_FALSE);
}

TEST(VariantListTest, SkipsResetsAndClonesItsPosition) {
  const auto list = automation::makeObject<VariantList>(threeNumbers());
  EXPECT_EQ(list->Skip(2), S_OK);
  automation::ComPtr<IEnumVARIANT> copy;
  ASSERT_EQ(list->Clone(copy.out()), S_OK);
  automation::Variant value;
  EXPECT_EQ(copy->Next(1, value.out(), nullptr), S_OK);
  EXPECT_EQ(value.lVal, 3);
  EXPECT_EQ(list->Skip(2), S_FALSE);
  EXPECT_EQ(list->Reset(), S_OK);
  EXPECT_EQ(list->Next(1, value.out(), nullptr), S_OK);
  EXPECT_EQ(value.lVal, 1);
}

TEST(VariantListTest, RefusesManyValuesWithoutACount) {
  const auto list = automation::makeObject<VariantList>(threeNumbers());
  automation::Variant values[2];
  EXPECT_EQ(list->Next(2, values, nullptr), E_POINTER);
}

TEST(VariantListTest, TheVariantHoldsTheOnlyReference) {
  const long before = automation::LiveCount::value();
  { const automation::Variant holder = enumeratorOf(threeNumbers()); }
  EXPECT_EQ(automation::LiveCount::value(), before);
}

}  // namespace
}  // namespace quillon::workbench
