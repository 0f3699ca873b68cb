// What the detail ledger, its dialog and its drill-through find of the workbench's platform: environment, periods,
// voucher components, the row that is drilled through, and what the user is shown.
#include <functional>
#include <string>
#include <vector>

#include "automation/class_lookup.h"
#include "component/platform_bindings.h"
#include "tests/workbench/com/ado_fixture.h"
#include "workbench/com/argument_object.h"
#include "workbench/com/exposed_platform.h"
#include "workbench/com/login_object.h"
#include "workbench/com/variant_list.h"

namespace quillon::workbench {
namespace {

using automation::LateBound;
using automation::Variant;
namespace bindings = component::bindings;

constexpr HResult badIndex = static_cast<HResult>(0x8002000BU);

class DetailLedgerObjectsTest : public test::AdoTest {
 protected:
  EmbeddedPlatformOptions options() const {
    EmbeddedPlatformOptions result;
    result.account = AccountSource::inFile(file_);
    return result;
  }
  static LateBound login() {
    return {loginObject(std::make_shared<WorkbenchLogin>(LoginDetails{.accountConnection = "a", .accountCode = "001"})),
            "login"};
  }
  void execute(const char* sql) { openConnection().call(L"Execute", {sql}); }
};

// --- Environment ----------------------------------------------------------------------------------------------------

TEST_F(DetailLedgerObjectsTest, TheEnvironmentFillsTheAccountOptions) {
  execute(
      "Create Table AccInformation (cSysID nvarchar(10), cName nvarchar(60), cValue nvarchar(255)) "
      "Insert Into AccInformation Values (N'IA', N'cValueStyle', N'按部门核算')");
  EmbeddedPlatform platform(options());
  const PlatformStandIn standIn(platform, nullptr);
  const LateBound account = automation::createObject(bindings::accountLogin);
  const LateBound environment = automation::createObject(bindings::environment);
  const LateBound filled = automation::createObject(bindings::accountOptions);
  EXPECT_EQ(codeOf([&] { filled.text(L"CostingBasis"); }), hresult::unexpected) << "nothing has filled them";

  account.call(L"Init", {connectionString(file_), ";PWD="});
  environment.call(L"Init", {account.object()});
  Variant table;
  Variant second("before");
  environment.call(L"GetTableNames", {Variant::reference(table), Variant::reference(second)});
  EXPECT_NE(automation::toText(table), "");
  EXPECT_EQ(automation::toText(second), "");
  environment.call(L"FillAccountOptions", {filled.object(), account.object(), automation::toText(table)});
  EXPECT_EQ(filled.text(L"CostingBasis"), "按部门核算");
  EXPECT_EQ(filled.text(L"InventoryTable"), "Inventory");
  EXPECT_EQ(filled.text(L"WarehouseTable"), "Warehouse");
}

TEST_F(DetailLedgerObjectsTest, TheEnvironmentRefusesForeignObjects) {
  EmbeddedPlatform platform(options());
  const PlatformStandIn standIn(platform, nullptr);
  const LateBound account = automation::createObject(bindings::accountLogin);
  const LateBound environment = automation::createObject(bindings::environment);
  const LateBound filled = automation::createObject(bindings::accountOptions);
  const Variant nothing(static_cast<IDispatch*>(nullptr));
  for (const Variant& foreign : {Variant(environment.object()), Variant(filled.object()), nothing}) {
    EXPECT_EQ(codeOf([&] { environment.call(L"Init", {foreign}); }), hresult::invalidArgument);
    EXPECT_EQ(codeOf([&] {
                environment.call(L"FillAccountOptions", {filled.object(), foreign, "t"});
              }),
              hresult::invalidArgument);
  }
  EXPECT_EQ(codeOf([&] {
              environment.call(L"FillAccountOptions", {account.object(), account.object(), "t"});
            }),
            hresult::invalidArgument);
}

TEST_F(DetailLedgerObjectsTest, EveryWorkTableHasANumberOfItsOwn) {
  EmbeddedPlatform platform(options());
  const PlatformStandIn standIn(platform, nullptr);
  const auto number = [] {
    return automation::toInteger(automation::createObject(bindings::workTableNumber).getById(DISPID_VALUE, L"number"));
  };
  EXPECT_NE(number(), number());
}

// --- Periods --------------------------------------------------------------------------------------------------------

TEST_F(DetailLedgerObjectsTest, ThePublicComponentKnowsThePeriods) {
  execute(
      "Create Table AccInformation (cSysID nvarchar(10), cName nvarchar(60), cValue nvarchar(255)) "
      "Insert Into AccInformation Values (N'IA', N'dIAStartDate', N'2023-05-01') "
      "Create Table IA_PeriodState (iYear int, iMonth int, bSettled bit) "
      "Insert Into IA_PeriodState Values (2024, 0, 1) Insert Into IA_PeriodState Values (2024, 1, 1) "
      "Insert Into IA_PeriodState Values (2024, 2, 0) "
      "Create Table orvsystem..UA_Period (cAcc_Id nvarchar(3), iYear int, iId int, dBegin datetime, dEnd datetime) "
      "Insert Into orvsystem..UA_Period Values (N'001', 2024, 2, '2024-02-01', '2024-02-29')");
  EmbeddedPlatform platform(options());
  const PlatformStandIn standIn(platform, nullptr);
  const LateBound component = automation::createObject(bindings::publicComponent);
  const LateBound connection = openConnection();
  EXPECT_TRUE(component.flag(L"IsFxFinishQC", {connection.get(), 2024}));
  EXPECT_FALSE(component.flag(L"IsFxFinishQC", {connection.get(), 2023}));
  SHORT month = 0;
  SHORT year = 0;
  component.call(L"StartMonthYear", {"IA", connection.get(), Variant::reference(month), Variant::reference(year)});
  EXPECT_EQ(month, 5);
  EXPECT_EQ(year, 2023);
  Variant begin;
  DATE end = 0;
  component.call(L"GetDateFromPeriod",
                 {connection.get(), "001", 2024, 2, Variant::reference(begin), Variant::dateReference(end)});
  EXPECT_EQ(begin.vt, VT_DATE);
  EXPECT_EQ(automation::toText(begin), "2024-02-01");
  EXPECT_EQ(automation::toText(Variant::fromDate(end)), "2024-02-29");
  component.call(L"GetPeriodFromDate", {connection.get(), Variant::fromIsoDate("2024-02-29"), Variant::reference(year),
                                        Variant::reference(month)});
  EXPECT_EQ(year, 2024);
  EXPECT_EQ(month, 2);
  EXPECT_TRUE(component.flag(L"GetMonthState", {connection.get(), 2024, 1}));
  EXPECT_FALSE(component.flag(L"GetMonthState", {connection.get(), 2024, 2}));
  EXPECT_EQ(component.text(L"GetComputerName")
                .find_first_not_of("ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789_"),
            std::string::npos);
}

// --- Voucher components ---------------------------------------------------------------------------------------------

// Notes what the component behind the automation object was called with.
class NotingSourceVouchers final : public SourceVoucherComponent {
 public:
  explicit NotingSourceVouchers(std::vector<std::string>& calls) : calls_(calls) {}

  void initialise(Login& login, Session&, std::string_view version) override {
    calls_.push_back("Init " + login.accountCode() + " " + std::string(version));
  }
  void showVoucher(VoucherGroup, const SourceVoucher& voucher, Session&) override { note("ShowVoucher", voucher); }
  void showCostItemAdjustment(const SourceVoucher& voucher, Session&) override { note("ShowProJust", voucher); }
  void showDifferences(const SourceVoucher& voucher, bool commercial, std::string_view method, Session&) override {
    note("ShowDifVouchs " + std::string(commercial ? "commercial " : "industrial ") + std::string(method), voucher);
  }
  void showPriceAdjustment(const SourceVoucher& voucher) override { note("ShowCostJustVouch", voucher); }

 private:
  void note(const std::string& member, const SourceVoucher& voucher) {
    calls_.push_back(member + " " + voucher.type + " " + voucher.code + " " + std::to_string(voucher.lineId));
  }

  std::vector<std::string>& calls_;
};

TEST_F(DetailLedgerObjectsTest, SourceDocumentsAreAskedForInThePortsTerms) {
  std::vector<std::string> calls;
  const LateBound component(sourceVoucherObject(std::make_unique<NotingSourceVouchers>(calls)), "clsUniVch");
  const LateBound connection = openConnection();
  component.call(L"Init", {login().object(), connection.get(), "工业"});
  component.call(L"ShowVoucher", {"32", " 7 ", 815, connection.get()});
  component.call(L"ShowProJust", {connection.get(), 816});
  component.call(L"ShowDifVouchs", {"35", "8", 817, connection.get(), true, "按仓库核算"});
  component.call(L"ShowDifVouchs", {"35", "8", 817, connection.get(), false, ""});
  component.call(L"ShowCostJustVouch", {"9"});
  EXPECT_EQ(calls, (std::vector<std::string>{"Init 001 工业", "ShowVoucher 32  7  815", "ShowProJust   816",
                                             "ShowDifVouchs commercial 按仓库核算 35 8 817",
                                             "ShowDifVouchs industrial  35 8 817", "ShowCostJustVouch  9 0"}));
}

TEST_F(DetailLedgerObjectsTest, GeneralLedgerVouchersNeedTheirModule) {
  EmbeddedPlatform platform(options());
  const PlatformStandIn standIn(platform, nullptr);
  const LateBound module = automation::createObject(bindings::ledgerModule);
  const LateBound component = automation::createObject(bindings::ledgerVoucher);
  EXPECT_EQ(codeOf([&] {
              module.call(L"InitPubs2", {connectionString(file_), ";PWD=", 2024, "001", "2024-06-30"});
            }),
            hresult::unexpected)
      << "it has no login";
  EXPECT_EQ(codeOf([&] { component.putObject(L"zzSys", component.object()); }), hresult::invalidArgument);
  EXPECT_EQ(codeOf([&] { component.call(L"StartUpPz", {"*IACXPZ", "", "17"}); }), hresult::unexpected);
}

TEST_F(DetailLedgerObjectsTest, AGeneralLedgerVoucherIsShownToTheUser) {
  execute(
      "Create Table gl_AccVouch (i_id int, iYear int, iPeriod int, cSign nvarchar(10), ino_id int, inid int, "
      "dbill_date datetime, cBill nvarchar(20), cDigest nvarchar(60), cCode nvarchar(20), md money, mc money, "
      "coutNo_ID nvarchar(20)) "
      "Insert Into gl_AccVouch Values (17, 2024, 3, N'转', 26, 1, '2024-03-31', N'Li', N'issue', N'5001', 12.5, 0, "
      "N'p1') "
      "Insert Into gl_AccVouch Values (18, 2024, 3, N'转', 26, 2, '2024-03-31', N'Li', N'issue', N'1403', 0, 12.5, "
      "N'p1') "
      "Create Table Code (iYear int, cCode nvarchar(20), cCode_Name nvarchar(60)) "
      "Insert Into Code Values (2024, N'5001', N'生产成本')");
  std::vector<OpenedVoucher> opened;
  EmbeddedPlatformOptions listening = options();
  listening.vouchers = [&opened](const OpenedVoucher& voucher) { opened.push_back(voucher); };
  EmbeddedPlatform platform(listening);
  const PlatformStandIn standIn(platform, nullptr);
  const LateBound module = automation::createObject(bindings::ledgerModule);
  const LateBound component = automation::createObject(bindings::ledgerVoucher);
  module.putObject(L"g_business", login().object());
  module.putObject(L"oLogIn", login().object());
  module.call(L"InitPubs2", {connectionString(file_), ";PWD=", 2024, "001", "2024-06-30"});
  component.putObject(L"zzLogin", login().object());
  component.putObject(L"zzSys", module.object());
  component.call(L"StartUpPz", {"*IACXPZ", "存货核算", "17"});
  ASSERT_EQ(opened.size(), 1U);

  const LateBound voucher(openedVoucherObject(opened.front(), Language::english), "voucher");
  EXPECT_EQ(voucher.text(L"Member"), "StartUpPz");
  EXPECT_EQ(voucher.text(L"Title"), "General-ledger voucher");
  EXPECT_EQ(voucher.text(L"Heading", {"INO_ID"}), "26");
  EXPECT_EQ(voucher.text(L"Heading", {"moduleTitle"}), "存货核算");
  EXPECT_EQ(voucher.integer(L"LineCount"), 2);
  EXPECT_EQ(voucher.text(L"Line", {1, "cCode_Name"}), "生产成本");
  EXPECT_EQ(voucher.text(L"Line", {2, "cCode"}), "1403");
  EXPECT_EQ(codeOf([&] { voucher.text(L"Heading", {"cColour"}); }), badIndex);
  EXPECT_EQ(codeOf([&] { voucher.text(L"Line", {0, "cCode"}); }), badIndex);
  EXPECT_EQ(codeOf([&] { voucher.text(L"Line", {3, "cCode"}); }), badIndex);
  EXPECT_EQ(codeOf([&] { voucher.text(L"Line", {1, "cColour"}); }), badIndex);
  const std::string text = voucher.text(L"Text");
  EXPECT_TRUE(text.starts_with("General-ledger voucher\r\nVoucher class: 转\r\nVoucher number: 26\r\n")) << text;
  EXPECT_NE(text.find("\r\nDigest\tAccount code\tAccount\tDebit\tCredit\r\nissue\t5001\t生产成本\t12.5"),
            std::string::npos)
      << text;
}

// --- Row, texts, collections ----------------------------------------------------------------------------------------

TEST_F(DetailLedgerObjectsTest, ARowIsTheArgumentsOrOneThatItIsTold) {
  const auto signedIn = std::make_shared<WorkbenchLogin>(LoginDetails{});
  const LateBound e(argumentObject(std::make_shared<WorkbenchArgument>(
                        signedIn, RowValues{{"ID", "815"}, {"cVouType", "销售出库单"}}, "Vouch")),
                    "e");
  EXPECT_EQ(e.text(L"Action"), "Vouch");
  const LateBound row = e.object(L"RelateData", "row");
  EXPECT_EQ(row.text(L"GetData", {"id"}), "815");
  EXPECT_EQ(row.text(L"GetData", {"cVouType"}), "销售出库单");
  EXPECT_EQ(row.text(L"GetData", {"cPZID"}), "");

  const LateBound connection = openConnection();
  const LateBound rows = openRecordset(connection, "Select cCode, cName, iMoney From Material Order By cCode Desc");
  row.call(L"TakeRow", {rows.object()});
  EXPECT_EQ(row.text(L"GetData", {"cCode"}), "M2");
  EXPECT_EQ(row.text(L"GetData", {"cName"}), "") << "null";
  EXPECT_EQ(row.text(L"GetData", {"iMoney"}), "-7.5");
  EXPECT_EQ(row.text(L"GetData", {"ID"}), "") << "the row before is gone";
  EXPECT_EQ(e.object(L"RelateData", "row").text(L"GetData", {"cCode"}), "M2") << "the argument keeps it";
}

TEST_F(DetailLedgerObjectsTest, AnArgumentOfAReportRunHasNoRowOfItsOwn) {
  const auto signedIn = std::make_shared<WorkbenchLogin>(LoginDetails{});
  const LateBound e(argumentObject(std::make_shared<WorkbenchArgument>(
                        std::make_shared<FilterObject>(ReportRegistration{}), signedIn, "Result")),
                    "e");
  EXPECT_EQ(codeOf([&] { e.object(L"RelateData", "row").text(L"GetData", {"ID"}); }), hresult::notImplemented);
}

TEST_F(DetailLedgerObjectsTest, AReportMayNameItsTableItself) {
  const auto signedIn = std::make_shared<WorkbenchLogin>(LoginDetails{});
  const auto argument =
      std::make_shared<WorkbenchArgument>(std::make_shared<FilterObject>(ReportRegistration{}), signedIn, "Result");
  const LateBound source = LateBound(argumentObject(argument), "e").object(L"DataSource", "data source");
  source.put(L"SQL", "Other");
  EXPECT_EQ(source.text(L"SQL"), "Other");
  EXPECT_EQ(argument->dataSourceState().resultTable, "Other");
}

TEST_F(DetailLedgerObjectsTest, ATextTakesItsArguments) {
  EmbeddedPlatformOptions english = options();
  english.language = Language::english;
  EmbeddedPlatform platform(english);
  const PlatformStandIn standIn(platform, nullptr);
  automation::ComPtr<bindings::IResourceService> service;
  ASSERT_EQ(automation::createObject(bindings::resourceService)
                .get()
                ->QueryInterface(bindings::resourceServiceId, reinterpret_cast<void**>(service.out())),
            S_OK);
  automation::Bstr text;
  const std::vector<std::string> colour = {"Colour"};
  ASSERT_EQ(service->FormatText(Variant("Mirel.IA.Mirel71.00228"), Variant::textArray(colour), text.out()), S_OK);
  EXPECT_EQ(text.utf8(), "Colour must be given");
}

class Owner : public automation::DispatchObject<Owner> {
 public:
  static std::span<const Member> members() {
    static constexpr Member table[] = {{L"Things", 1, automation::readable, 0, 1, &Owner::things}};
    return table;
  }

 private:
  Variant things(automation::Call& call) { return collectionMember(call, {Variant("a"), Variant("b")}); }
};

TEST_F(DetailLedgerObjectsTest, ACollectionIsCountedFromOne) {
  const LateBound owner(automation::makeObject<Owner>(), "owner");
  const LateBound things = owner.object(L"Things", "things");
  EXPECT_EQ(things.integer(L"Count"), 2);
  EXPECT_EQ(things.text(L"Item", {2}), "b");
  EXPECT_EQ(owner.text(L"Things", {1}), "a") << "as Basic writes it";
  EXPECT_EQ(codeOf([&] { things.text(L"Item", {0}); }), badIndex);
  EXPECT_EQ(codeOf([&] { owner.text(L"Things", {3}); }), badIndex);
}

TEST_F(DetailLedgerObjectsTest, AMessageIsItsText) {
  const LateBound message(messageObject("Careful", 48), "message");
  EXPECT_EQ(automation::toText(Variant(message.object())), "Careful");
  EXPECT_EQ(message.integer(L"Flags"), 48);
}

}  // namespace
}  // namespace quillon::workbench
