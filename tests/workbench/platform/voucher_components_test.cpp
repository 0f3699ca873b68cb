#include "workbench/platform/voucher_components.h"

#include <gmock/gmock.h>

#include <optional>

#include "tests/workbench/platform/temporary_file.h"
#include "workbench/account/schema.h"
#include "workbench/platform/account_source.h"
#include "workbench/platform/argument.h"

namespace quillon::workbench {
namespace {

using testing::ElementsAre;

// An account with one material issue of two lines, the first of them broken down, and the voucher it is posted to.
class VoucherComponents : public testing::Test {
 protected:
  void SetUp() override {
    const auto account = tsql::Connection::open(file_.path(), tsql::OpenMode::createNew);
    account::createTables(*account);
    account->execute(
        "Insert Into VouchType Values (N'11', N'材料出库单'), (N'22', N'计划价调整单')\n"
        "Insert Into AA_Enum Values (N'IA.vchtype', N'材料出库单', N'zh-CN', N'材料出库单'), "
        "(N'IA.vchtype', N'材料出库单', N'en-US', N'Material issue')\n"
        "Insert Into Warehouse Values (N'01', N'原材料库')\n"
        "Insert Into Ca_FxDef Values (7, N'A01', N'直接材料', 1, 0), (8, N'B01', N'直接人工', 1, 0)");
    account->execute(
        "Insert Into Inventory (cInvCode, cInvName, cInvCCode, cComUnitCode, bCheckBatch, bCheckFree1, bCheckFree2, "
        "bCheckFree3, bCheckFree4, bCheckFree5, bCheckFree6, bCheckFree7, bCheckFree8, bCheckFree9, bCheckFree10) "
        "Values (N'M1', N'钢板', N'1', N'KG', 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0)");
    account->execute(
        "Insert Into ia_subsidiary (AutoID, iYear, iMonth, dVouDate, dKeepDate, cVouType, cVouCode, cBusType, bRdFlag, "
        "bFlag, cWhCode, cInvCode, iAOutQuantity, iAOutPrice, cBatchIA, cMaker) Values "
        "(41, 2024, 3, '2024-03-05', '2024-03-06', N'11', N'L-1', N'领料', 0, 0, N'01', N'M1', 4, 10, N'B1', N'U1'), "
        "(42, 2024, 3, '2024-03-05', '2024-03-06', N'11', N'L-1', N'领料', 0, 0, N'01', N'M1', 1.5, 6.25, N'B2', "
        "N'U1'), "
        "(43, 2024, 3, '2024-03-05', '2024-03-06', N'22', N'L-1', null, 1, 0, N'01', N'M1', null, null, null, null)");
    account->execute(
        "Insert Into ia_subsidiary_Item (AutoID, iSubID, iItemID, iItemDetailID, iYear, iMonth, bRdFlag, "
        "iItemOutQuantity, iItemOutPrice) Values (1, 41, 7, 70, 2024, 3, 0, 4, 7.5), (2, 41, 8, 80, 2024, 3, 0, 0, "
        "2.5)");
    account->execute(
        "Insert Into Code Values (2024, N'5001', N'生产成本'), (2024, N'1403', N'原材料')\n"
        "Insert Into gl_AccVouch Values "
        "(91, 2024, 3, N'转', 12, 1, '2024-03-31', N'张', N'领料', N'5001', 16.25, 0, N'IA', N'IA0012'), "
        "(92, 2024, 3, N'转', 12, 2, '2024-03-31', N'张', N'领料', N'1403', 0, 16.25, N'IA', N'IA0012'), "
        "(93, 2024, 3, N'转', 13, 1, '2024-03-31', N'张', N'其他', N'5001', 1, 0, N'IA', N'IA0013')");
    session_.setConnectionString(connectionString(file_.path()));
    session_.open("", "", optionsUnspecified);
  }

  EmbeddedPlatform platform(Language language = Language::chinese) {
    return EmbeddedPlatform(
        {.language = language, .vouchers = [this](const OpenedVoucher& voucher) { opened_ = voucher; }});
  }

  // The heading's fields that have a value, as "name=value".
  std::vector<std::string> heading() const {
    std::vector<std::string> fields;
    for (const auto& [field, value] : opened_->heading) {
      if (!value.empty()) fields.push_back(std::string(field.name) + "=" + value);
    }
    return fields;
  }

  // Opens general-ledger voucher `id` of `year`.
  void openLedgerVoucher(EmbeddedPlatform& platform, const std::string& id, int year) {
    const auto module = platform.createLedgerModule();
    module->initialise(connectionString(file_.path()), ";PWD=", year, login_);
    const auto component = platform.createLedgerVoucherComponent();
    component->setLogin(login_);
    component->setModule(*module);
    component->open({.id = id, .menuCode = "*IACXPZ", .moduleTitle = "存货核算"});
  }

  const SourceVoucher document_{.type = "11", .code = "L-1", .lineId = 41};
  const LedgerVoucher ledgerVoucher_{.id = "91", .menuCode = "*IACXPZ", .moduleTitle = "存货核算"};
  test::TemporaryFile file_{".qacc"};
  AccountSession session_;
  WorkbenchLogin login_{{}};
  std::optional<OpenedVoucher> opened_;
};

TEST_F(VoucherComponents, ShowsTheDocumentOfALineWithItsCostItems) {
  EmbeddedPlatform host = platform();
  const auto component = host.createSourceVoucherComponent();
  component->initialise(login_, session_, "工业");
  component->showVoucher(VoucherGroup::other, {.type = "11", .code = "L-1", .lineId = 41}, session_);
  ASSERT_TRUE(opened_);
  EXPECT_EQ(opened_->member, "ShowVoucher");
  EXPECT_EQ(opened_->title.chinese, "源单据");
  EXPECT_THAT(heading(), ElementsAre("cVouType=11", "cVouName=材料出库单", "cVouCode=L-1", "dVouDate=2024-03-05",
                                     "dKeepDate=2024-03-06", "cBusType=领料", "cWhName=原材料库", "cMaker=U1"));
  EXPECT_THAT(opened_->lines, ElementsAre(ElementsAre("41", "M1", "钢板", "B1", "A01", "直接材料", "4", "7.5"),
                                          ElementsAre("41", "M1", "钢板", "B1", "B01", "直接人工", "0", "2.5"),
                                          ElementsAre("42", "M1", "钢板", "B2", "", "", "1.5", "6.25")));
}

TEST_F(VoucherComponents, NamesTheDocumentInTheLanguageOfThePlatform) {
  EmbeddedPlatform host = platform(Language::english);
  const auto component = host.createSourceVoucherComponent();
  component->initialise(login_, session_, "工业");
  component->showVoucher(VoucherGroup::other, {.type = "11", .code = "L-1", .lineId = 42}, session_);
  ASSERT_TRUE(opened_);
  EXPECT_EQ(heading()[1], "cVouName=Material issue");
}

TEST_F(VoucherComponents, TellsWhichMemberOpenedTheDocument) {
  EmbeddedPlatform host = platform();
  const auto component = host.createSourceVoucherComponent();
  component->initialise(login_, session_, "工业");
  const SourceVoucher voucher{.type = "21", .code = "L-1", .lineId = 41};
  component->showCostItemAdjustment(voucher, session_);
  EXPECT_EQ(opened_->member, "ShowProJust");
  component->showDifferences(voucher, true, "按仓库核算", session_);
  EXPECT_EQ(opened_->member, "ShowDifVouchs");
}

TEST_F(VoucherComponents, FindsAPriceAdjustmentByItsCode) {
  EmbeddedPlatform host = platform();
  const auto component = host.createSourceVoucherComponent();
  component->initialise(login_, session_, "工业");
  component->showPriceAdjustment({.type = "22", .code = "L-1", .lineId = 0});
  EXPECT_EQ(opened_->member, "ShowCostJustVouch");
  EXPECT_THAT(opened_->lines, ElementsAre(ElementsAre("43", "M1", "钢板", "", "", "", "", "")));
}

TEST_F(VoucherComponents, RefuseADocumentThatTheLedgerDoesNotHave) {
  EmbeddedPlatform host = platform();
  const auto component = host.createSourceVoucherComponent();
  component->initialise(login_, session_, "工业");
  try {
    component->showVoucher(VoucherGroup::other, {.type = "11", .code = "L-9", .lineId = 99}, session_);
    ADD_FAILURE() << "nothing was refused";
  } catch (const AutomationError& error) {
    EXPECT_EQ(error.source(), "PellUniVch.clsUniVch");
    EXPECT_EQ(error.description(), "The ledger has no line of document L-9 (type 11, line 99); run the report again.");
  }
  EXPECT_FALSE(opened_);
}

TEST_F(VoucherComponents, RefuseADocumentBeforeTheyAreInitialised) {
  EmbeddedPlatform host = platform();
  EXPECT_THROW(host.createSourceVoucherComponent()->showVoucher(VoucherGroup::other, document_, session_),
               AutomationError);
  EXPECT_THROW(host.createSourceVoucherComponent()->showPriceAdjustment(document_), AutomationError);
  EXPECT_THROW(host.createLedgerVoucherComponent()->open(ledgerVoucher_), AutomationError);
  const auto module = host.createLedgerModule();
  const auto component = host.createLedgerVoucherComponent();
  component->setModule(*module);
  EXPECT_THROW(component->open(ledgerVoucher_), AutomationError) << "the module is not initialised";
}

TEST_F(VoucherComponents, ShowAllEntriesOfAGeneralLedgerVoucher) {
  EmbeddedPlatform host = platform();
  openLedgerVoucher(host, "91", 2024);
  ASSERT_TRUE(opened_);
  EXPECT_EQ(opened_->member, "StartUpPz");
  EXPECT_EQ(opened_->title.english, "General-ledger voucher");
  EXPECT_THAT(heading(), ElementsAre("cSign=转", "ino_id=12", "dbill_date=2024-03-31", "iPeriod=3", "cBill=张",
                                     "menuCode=*IACXPZ", "moduleTitle=存货核算"));
  EXPECT_THAT(opened_->lines, ElementsAre(ElementsAre("领料", "5001", "生产成本", "16.25", "0"),
                                          ElementsAre("领料", "1403", "原材料", "0", "16.25")));
}

TEST_F(VoucherComponents, RefuseAGeneralLedgerVoucherOfAnotherYear) {
  EmbeddedPlatform host = platform();
  try {
    openLedgerVoucher(host, "91", 2023);
    ADD_FAILURE() << "nothing was refused";
  } catch (const AutomationError& error) {
    EXPECT_EQ(error.source(), "ZzPz.clsPZ");
    EXPECT_EQ(error.description(), "The general ledger of 2023 has no voucher 91; run the report again.");
  }
  EXPECT_THROW(openLedgerVoucher(host, "", 2024), AutomationError);
  EXPECT_THROW(openLedgerVoucher(host, "9 Or 1=1", 2024), AutomationError) << "the number is pasted into a statement";
}

TEST_F(VoucherComponents, OpenForNobody) {
  EmbeddedPlatform host({});
  const auto component = host.createSourceVoucherComponent();
  component->initialise(login_, session_, "工业");
  EXPECT_NO_THROW(component->showVoucher(VoucherGroup::other, document_, session_));
}

}  // namespace
}  // namespace quillon::workbench
