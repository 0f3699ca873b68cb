#include "reports/fx_wt/voucher_types.h"

#include <gtest/gtest.h>

#include <ostream>
#include <string>
#include <vector>

namespace quillon::fx_wt {
namespace {

TEST(VoucherTypeCondition, IsEmptyWhenNoTypeIsChosen) {
  EXPECT_EQ(voucherTypeCondition(""), "");
}

TEST(VoucherTypeCondition, KeepsTypesWithoutFlavours) {
  EXPECT_EQ(voucherTypeCondition("'09'"), " (base.cVouType in ('09'))");
  EXPECT_EQ(voucherTypeCondition("'10','11','20'"), " (base.cVouType in ('10','11','20'))");
}

TEST(VoucherTypeCondition, AddsTheTypesThatBelongToAChosenOne) {
  EXPECT_EQ(voucherTypeCondition("'32'"), " (base.cVouType in ('32','3201'))");
  EXPECT_EQ(voucherTypeCondition("'25'"), " (base.cVouType in ('25','2501'))");
  EXPECT_EQ(voucherTypeCondition("'05'"), " (base.cVouType in ('05','06'))");
  EXPECT_EQ(voucherTypeCondition("'05','25','32'"), " (base.cVouType in ('05','06','25','2501','32','3201'))");
}

// Each pair alone, in the four ways in which it can be chosen.
struct Pair {
  std::string plain;
  std::string second;
};

// GoogleTest would print the bytes of the texts, those that were never set as well.
void PrintTo(const Pair& pair, std::ostream* out) {
  *out << pair.plain << ", " << pair.second;
}
class VoucherTypePairs : public testing::TestWithParam<Pair> {};

TEST_P(VoucherTypePairs, TheFirstFlavourAloneLeavesNoList) {
  const std::string& plain = GetParam().plain;
  EXPECT_EQ(voucherTypeCondition("'" + plain + "'"), " ( (cVouType='" + plain + "' and bFlag<>1) )");
}

TEST_P(VoucherTypePairs, TheSecondFlavourAloneIsTheTypeWithItsFlag) {
  EXPECT_EQ(voucherTypeCondition("'" + GetParam().second + "'"),
            " ( (cVouType='" + GetParam().plain + "' and bFlag=1) )");
}

TEST_P(VoucherTypePairs, BothFlavoursAreTheTypeWhateverItsFlag) {
  const std::string plain = "'" + GetParam().plain + "'";
  const std::string second = "'" + GetParam().second + "'";
  EXPECT_EQ(voucherTypeCondition(plain + "," + second), " (base.cVouType in (" + plain + "," + plain + "))");
  EXPECT_EQ(voucherTypeCondition(second + "," + plain), " (base.cVouType in (" + plain + "," + plain + "))");
}

TEST_P(VoucherTypePairs, AFlavourIsTakenOutOfTheListWhereverItStands) {
  const std::string& plain = GetParam().plain;
  for (const std::string& chosen : {plain, GetParam().second}) {
    const std::string extra = " or  (cVouType='" + plain + "' and bFlag" + (chosen == plain ? "<>" : "=") + "1) )";
    const std::string type = "'" + chosen + "'";
    EXPECT_EQ(voucherTypeCondition(type + ",'08','09'"), " (base.cVouType in ('08','09')" + extra);
    EXPECT_EQ(voucherTypeCondition("'08'," + type + ",'09'"), " (base.cVouType in ('08','09')" + extra);
    EXPECT_EQ(voucherTypeCondition("'08','09'," + type), " (base.cVouType in ('08','09')" + extra);
  }
}

INSTANTIATE_TEST_SUITE_P(Pairs, VoucherTypePairs,
                         testing::Values(Pair{"01", "011"}, Pair{"30", "301"}, Pair{"70", "701"}),
                         [](const auto& pair) { return "Type" + pair.param.plain; });

TEST(VoucherTypeCondition, JoinsTheFlavoursOfSeveralTypesInTheOrderOfTheTypes) {
  EXPECT_EQ(voucherTypeCondition("'011','30'"), " ( (cVouType='01' and bFlag=1)  OR (cVouType='30' and bFlag<>1) )");
  EXPECT_EQ(voucherTypeCondition("'30','011'"), " ( (cVouType='01' and bFlag=1)  OR (cVouType='30' and bFlag<>1) )");
  EXPECT_EQ(voucherTypeCondition("'70','301','01'"),
            " ( (cVouType='01' and bFlag<>1)  OR (cVouType='30' and bFlag=1)  OR (cVouType='70' and bFlag<>1) )");
}

TEST(VoucherTypeCondition, MixesEveryRule) {
  EXPECT_EQ(voucherTypeCondition("'01','05','30','301','32','701'"),
            " (base.cVouType in ('05','06','30','30','32','3201')"
            " or  (cVouType='01' and bFlag<>1)  OR (cVouType='70' and bFlag=1) )");
}

TEST(VoucherTypeCondition, TakesATypeForItselfAndNotForTheBeginningOfAnother) {
  EXPECT_EQ(voucherTypeCondition("'3201'"), " (base.cVouType in ('3201'))");
  EXPECT_EQ(voucherTypeCondition("'EX26'"), " (base.cVouType in ('EX26'))");
  EXPECT_EQ(voucherTypeCondition("'0111'"), " (base.cVouType in ('0111'))");
}

}  // namespace
}  // namespace quillon::fx_wt
