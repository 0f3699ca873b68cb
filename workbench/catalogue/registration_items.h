// Filter items that several reports register alike.
#pragma once

#include <optional>
#include <span>
#include <string>
#include <vector>

#include "workbench/platform/filter_object.h"

namespace quillon::workbench {

// No and yes, "0" and "1".
std::vector<Choice> yesNo();

// What the summary reports begin with: iYear, cModal and iGrade.
std::vector<ItemRegistration> summaryReportItems();

// The free items of an inventory: cFree1 to cFree10.
std::vector<ItemRegistration> freeItems();

// The user-defined fields of the ledger, texts first, then dates, then numbers: cDefine1 to cDefine16 and cDefine22 to
// cDefine37; 17 to 21 belong to document lines and are not in the ledger.
std::vector<ItemRegistration> definedFields();

// The inventory master's own fields, cInvDefine1 to cInvDefine16: texts, of which several values may be selected when
// `multiple` is set, then numbers, then dates. `table` is the master's name in the report's conditions.
std::vector<ItemRegistration> inventoryFields(const std::string& table, bool multiple);

// A code of a master, looked up there; of `references` several may be selected. Without `master`, the item takes the
// beginning of a code, or a code that an account keeps in no one table.
ItemRegistration reference(const char* key, const char* chinese, const char* english, const char* column,
                           std::optional<Master> master = {});
ItemRegistration references(const char* key, const char* chinese, const char* english, const char* column,
                            std::optional<Master> master = {});

// The masters of an account.
inline constexpr Master warehouses{"warehouse", "Warehouse", "cWhCode", "cWhName"};
inline constexpr Master inventories{"inventory", "Inventory", "cInvCode", "cInvName"};
inline constexpr Master departments{"department", "Department", "cDepCode", "cDepName"};
inline constexpr Master customers{"customer", "Customer", "cCusCode", "cCusName"};
inline constexpr Master vendors{"vendor", "Vendor", "cVenCode", "cVenName"};
inline constexpr Master persons{"person", "Person", "cPersonCode", "cPersonName"};
inline constexpr Master users{"user", "orvsystem..ua_user", "cUser_Id", "cUser_Name"};
inline constexpr Master receiptIssueTypes{"receipt/issue type", "Rd_Style", "cRdCode", "cRdName"};
inline constexpr Master projectClasses{"project class", "fItem", "cItem_Class", "cItem_Name"};
inline constexpr Master ledgerAccounts{"ledger account", "Code", "cCode", "cCode_Name"};
inline constexpr Master workCentres{"work centre", "sfc_workcenter", "Description",
                                    "Description"};  // a line names it in full
inline constexpr Master costCentres{"cost centre", "CAQ_CostCenter", "cDeptID", "cDeptName"};

// Fields numbered `numbers`: key, captions and column are the texts given with the number behind them.
struct NumberedField {
  std::string key;
  std::string chinese;
  std::string english;
  std::string column;
};
std::vector<ItemRegistration> numberedFields(const NumberedField& field, std::span<const int> numbers, InputKind kind,
                                             bool multiple);

// Puts `more` behind `items`.
void append(std::vector<ItemRegistration>& items, std::vector<ItemRegistration> more);

}  // namespace quillon::workbench
