// Where the codes of an account are looked up by whoever knows a part of them, or of a name: warehouses, inventory,
// batches, voucher types and the like. Filter items name the lookup of their codes; commands show one page by page.
#pragma once

#include <cstddef>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "frame/session.h"
#include "workbench/platform/language.h"

namespace quillon::workbench {

struct Lookup {
  std::string_view kind;  // what a user calls it: "warehouses"
  Caption noun;           // what an entry is: "warehouse"
  // A Select of two texts, entryCode and entryName; {language} stands in it for zh-CN or en-US. Empty: makeRows makes it,
  // or nothing when the account has no entries.
  std::string_view rows;
  std::string_view example;  // a code, to show how one is written
  // The name is of the entry itself, so that it may stand for the code. A batch has none: its inventory stands there.
  bool named = true;
  std::string (*makeRows)(Session& session) = nullptr;
};

// All lookups, in the order in which they are listed to the user.
std::span<const Lookup* const> lookups();
// Nullptr when there is none of that kind.
const Lookup* lookupOf(std::string_view kind);

// Where the codes of a column of the ledger are looked up; nullptr for a column that holds none.
const Lookup* lookupOfLedgerColumn(std::string_view column);

// `lookup.rows` in a language.
std::string entryRows(const Lookup& lookup, Language language);

struct LookupRow {
  std::string code;
  std::string name;

  bool operator==(const LookupRow&) const = default;
};

struct LookupQuery {
  // Words, each of which is a part of the code or of the name, or the pinyin initials of a part of the name. Letter case,
  // width and the blanks and signs within a name do not count. Empty: every entry.
  std::string search = {};
  std::size_t offset = 0;
  std::optional<std::size_t> limit = {};
  Language language = Language::chinese;
  // What a dialog restricts the entries to: a condition with #FN[column] for columns of the looked-up table. It counts
  // where the lookup reads one table and nothing else.
  std::string restriction = {};
};

struct LookupPage {
  std::vector<LookupRow> rows = {};
  std::size_t count = 0;  // of all entries that were found
};

// The entries that `query` finds, by code; one whose code or name is what was searched for stands first. Reads the whole
// lookup, so that initials can be compared. Throws AutomationError when the account cannot be asked.
LookupPage findEntries(const Lookup& lookup, const LookupQuery& query, Session& session);

// Whether the account has an entry of this code, or when `beginning` is set one whose code begins with it.
bool hasCode(const Lookup& lookup, std::string_view code, bool beginning, Session& session);
// The entries of exactly this name, in whichever letter case and width, by code. Both throw AutomationError as findEntries() does.
std::vector<LookupRow> entriesNamed(const Lookup& lookup, std::string_view name, Language language, Session& session);

// "07 线边库": an entry for a reader; the name is left out when it says no more than the code.
std::string entryText(const LookupRow& row);

// --- The lookups ------------------------------------------------------------------------------------------------------

inline constexpr Lookup warehouses{
    "warehouses", {"仓库", "warehouse"}, "Select cWhCode As entryCode, cWhName As entryName From Warehouse", "07"};
inline constexpr Lookup departments{
    "departments", {"部门", "department"}, "Select cDepCode As entryCode, cDepName As entryName From Department", "05"};
inline constexpr Lookup inventories{"inventory",
                                    {"存货", "inventory"},
                                    "Select cInvCode As entryCode, cInvName As entryName From Inventory",
                                    "0301-00237"};
inline constexpr Lookup inventoryClasses{"inventory-classes",
                                         {"存货分类", "inventory class"},
                                         "Select cInvCCode As entryCode, cInvCName As entryName From InventoryClass",
                                         "0301"};
// With the inventory as the name, so that a batch is found by it, too.
inline constexpr Lookup batches{
    "batches",
    {"批号", "batch"},
    "Select Distinct line.cBatchIA As entryCode, line.cInvCode + IsNull(N' ' + inv.cInvName, N'') As entryName "
    "From (Select cBatchIA, cInvCode From ia_subsidiary Union Select cBatchIA, cInvCode From IA_Subsidiary_QC) line "
    "Left Join Inventory inv On inv.cInvCode = line.cInvCode Where line.cBatchIA <> N''",
    "B202401-1",
    false};
inline constexpr Lookup costItemClasses{"classes",
                                        {"成本项目分类", "cost-item class"},
                                        "Select cFxCCode As entryCode, cFxCName As entryName From Ca_FxClassDef",
                                        "0101"};
inline constexpr Lookup costItems{
    "cost-items", {"成本项目", "cost item"}, "Select cFxCode As entryCode, cFxName As entryName From Ca_FxDef", "CI01"};
inline constexpr Lookup customers{
    "customers", {"客户", "customer"}, "Select cCusCode As entryCode, cCusName As entryName From Customer", "C0001"};
inline constexpr Lookup customerClasses{"customer-classes",
                                        {"客户分类", "customer class"},
                                        "Select cCCCode As entryCode, cCCName As entryName From CustomerClass",
                                        "01"};
inline constexpr Lookup vendors{
    "vendors", {"供应商", "vendor"}, "Select cVenCode As entryCode, cVenName As entryName From Vendor", "V0001"};
inline constexpr Lookup vendorClasses{"vendor-classes",
                                      {"供应商分类", "vendor class"},
                                      "Select cVCCode As entryCode, cVCName As entryName From VendorClass",
                                      "01"};
inline constexpr Lookup persons{
    "persons", {"业务员", "person"}, "Select cPersonCode As entryCode, cPersonName As entryName From Person", "P001"};
inline constexpr Lookup users{"users",
                              {"操作员", "user"},
                              "Select cUser_Id As entryCode, cUser_Name As entryName From orvsystem..ua_user",
                              "u01"};
inline constexpr Lookup receiptIssueTypes{"receipt-issue-types",
                                          {"收发类别", "receipt/issue type"},
                                          "Select cRdCode As entryCode, cRdName As entryName From Rd_Style",
                                          "101"};
// Of receipts that are posted at an estimated price the voucher report's dialog has types of its own.
inline constexpr Lookup voucherTypes{
    "voucher-types",
    {"单据类型", "voucher type"},
    "Select kind.cVouchType As entryCode, IsNull(name.EnumName, kind.cVouchName) As entryName From VouchType kind "
    "Left Join AA_Enum name On name.EnumType = N'IA.BillforVch' And name.EnumCode = kind.cVouchName "
    "And name.LocaleId = N'{language}' "
    "Union Select N'011', EnumName From AA_Enum "
    "Where EnumType = N'IA.BillforVch' And EnumCode = N'采购入库单(暂估记账)' And LocaleId = N'{language}' "
    "Union Select N'301', EnumName From AA_Enum "
    "Where EnumType = N'IA.BillforVch' And EnumCode = N'蓝字回冲单(暂估)' And LocaleId = N'{language}' "
    "Union Select N'701', EnumName From AA_Enum "
    "Where EnumType = N'IA.BillforVch' And EnumCode = N'代管挂账确认单(暂估记账)' And LocaleId = N'{language}'",
    "01"};
inline constexpr Lookup businessTypes{"business-types",
                                      {"业务类型", "business type"},
                                      "Select EnumCode As entryCode, EnumName As entryName From AA_Enum "
                                      "Where EnumType = N'IA.BusType' And LocaleId = N'{language}'",
                                      "普通采购"};
inline constexpr Lookup costCentres{"cost-centres",
                                    {"成本中心", "cost centre"},
                                    "Select cDeptID As entryCode, cDeptName As entryName From CAQ_CostCenter",
                                    "CC01"};
// A ledger line names its work centre in full.
inline constexpr Lookup workCentres{"work-centres",
                                    {"工作中心", "work centre"},
                                    "Select Description As entryCode, Description As entryName From sfc_workcenter",
                                    "泵类装配线"};
inline constexpr Lookup projectClasses{"project-classes",
                                       {"项目大类", "project class"},
                                       "Select cItem_Class As entryCode, cItem_Name As entryName From fItem",
                                       "00"};
// The items of all project classes; each class keeps its own in a table that it names.
std::string projectItemRows(Session& session);
inline constexpr Lookup projectItems{"project-items", {"项目", "project item"}, {}, "G2201", true, projectItemRows};
inline constexpr Lookup ledgerAccounts{"ledger-accounts",
                                       {"会计科目", "ledger account"},
                                       "Select Distinct cCode As entryCode, cCode_Name As entryName From Code",
                                       "5001"};
inline constexpr Lookup expenseTypes{
    "expense-types",
    {"费用类型", "expense type"},
    "Select Cast(cAmoType As nvarchar(20)) As entryCode, cAmoTypeName As entryName From Ca_AmoTypeName "
    "Where localid = N'{language}'",
    "1"};
inline constexpr Lookup expenseItems{
    "expense-items",
    {"费用项目", "expense item"},
    "Select Distinct cAmoID As entryCode, cAmoName As entryName From Ca_CostExpDetail_Period",
    "RG01"};
inline constexpr Lookup units{"units",
                              {"计量单位", "unit"},
                              "Select cComUnitCode As entryCode, cComUnitName As entryName From ComputationUnit",
                              "0101"};
inline constexpr Lookup years{"years",
                              {"会计年度", "year"},
                              "Select Distinct Cast(iYear As nvarchar(20)) As entryCode, Cast(iYear As nvarchar(20)) "
                              "As entryName From orvsystem..UA_Period Where iYear < 9999",
                              "2024"};

}  // namespace quillon::workbench
