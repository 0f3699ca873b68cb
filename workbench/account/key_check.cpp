#include "workbench/account/key_check.h"

#include <memory>
#include <string_view>
#include <utility>

#include "workbench/account/account.h"

namespace quillon::account {
namespace {

constexpr std::string_view summaryReports = "sfc-item, outsum-item";
constexpr std::string_view outboundSummary = "outsum-item";
constexpr std::string_view receiptIssueBalance = "sfc-item";
constexpr std::string_view voucherReport = "fx-wt";
constexpr std::string_view lineReports = "outsum-item, fx-wt";  // those that show ledger lines one by one
constexpr std::string_view summaryAndVoucherReports = "sfc-item, outsum-item, fx-wt";

struct JoinKey {
  std::string_view table;
  std::string_view columns;  // comma-separated
  std::string_view reports;
};

// In the order in which the reports join the tables.
constexpr JoinKey joinKeys[] = {
    {"ia_subsidiary", "AutoID", summaryAndVoucherReports},
    {"IA_Subsidiary_QC", "AutoID", receiptIssueBalance},
    {"Warehouse", "cWhCode", summaryAndVoucherReports},
    {"Inventory", "cInvCode", summaryAndVoucherReports},
    {"Rd_Style", "cRdCode", lineReports},
    {"sfc_workcenter", "Description", outboundSummary},
    {"CA_CostCenterMap", "cDepCode, bIsWCID", outboundSummary},
    {"CA_CostCenter", "cCostCenter", outboundSummary},
    {"CAQ_CostCenterMap", "cBusID", voucherReport},
    {"CAQ_CostCenter", "cDeptID", voucherReport},
    {"ComputationUnit", "cComUnitCode", summaryAndVoucherReports},
    {"Customer", "cCusCode", lineReports},
    {"CustomerClass", "cCCCode", lineReports},
    {"Vendor", "cVenCode", lineReports},
    {"VendorClass", "cVCCode", voucherReport},
    {"Department", "cDepCode", summaryAndVoucherReports},
    {"Code", "iYear, cCode", outboundSummary},
    {"Person", "cPersonCode", outboundSummary},
    {"orvsystem..ua_user", "cUser_Id", outboundSummary},
    {"fItem", "cItem_Class", outboundSummary},
    {"Ca_FxDef", "iFxID", summaryAndVoucherReports},
    {"Ca_FxClassDef", "iFxCId", summaryAndVoucherReports},
    {"Ca_FxMapExpDID", "iFxDID", summaryAndVoucherReports},
    {"Ca_FxMapExpDetails", "iFxDID", summaryAndVoucherReports},
    {"Ca_CostExpDetail_Period", "cAmoID, cAmoType, iPeriod", summaryAndVoucherReports},
    {"Ca_AmoTypeName", "cAmoType, localid", summaryAndVoucherReports},
};

std::string textOf(const tsql::Cursor& cursor, std::size_t column) {
  return tsql::toText(cursor.value(column)).value_or("");
}

// Runs `sql`, whose last column is a count, and hands each row to `describe` for its key; an empty one is passed over.
template <typename Describe>
void collect(tsql::Database& connection, const std::string& sql, std::string_view table, std::string_view reports,
             std::vector<BrokenKey>& broken, Describe describe) {
  const std::unique_ptr<tsql::Cursor> rows = connection.query(sql);
  const std::size_t count = rows->columns().size() - 1;
  while (rows->next()) {
    std::string key = describe(*rows);
    if (key.empty()) continue;
    broken.push_back(
        {std::string(table), std::move(key), std::get<std::int64_t>(rows->value(count)), std::string(reports)});
  }
}

// A null never joins: it is counted here and passed over by keyText.
std::string duplicatesOf(const JoinKey& key) {
  const std::string columns(key.columns);
  return "Select " + columns + ", Count(*) From " + std::string(key.table) + " Group By " + columns +
         " Having Count(*) > 1 Order By " + columns;
}

// "iYear = 2024, cCode = 6602"; empty when a part of the key is null.
std::string keyText(const tsql::Cursor& row) {
  std::string text;
  for (std::size_t column = 0; column + 1 < row.columns().size(); ++column) {
    if (tsql::isNull(row.value(column))) return {};
    text += (text.empty() ? "" : ", ") + row.columns()[column].name + " = " + textOf(row, column);
  }
  return text;
}

// An issue at a mapped work centre finds that row of the map and, where its accounting department is mapped as well,
// the department's.
constexpr const char* doublyMapped =
    "Select work.WcCode, base.cAccDep, Count(Distinct costmap.bIsWCID) From ia_subsidiary base "
    "Inner Join sfc_workcenter work On work.Description = base.cworkcentername "
    "Inner Join CA_CostCenterMap costmap On costmap.cDepCode = Case When costmap.bIsWCID = 1 Then work.WcCode Else "
    "base.cAccDep End "
    "Where base.bRdFlag = 0 "
    "Group By work.WcCode, base.cAccDep Having Count(Distinct costmap.bIsWCID) > 1 "
    "Order By work.WcCode, base.cAccDep";

// By class, a class is shown under each class of the chosen grade with whose code its own begins.
constexpr const char* ambiguousClasses =
    "Select cls.cFxCCode, upper_class.iGrade, Count(*) From Ca_FxClassDef cls "
    "Inner Join Ca_FxClassDef upper_class On cls.cFxCCode Like (upper_class.cFxCCode + '%') "
    "Group By cls.iFxCId, cls.cFxCCode, upper_class.iGrade Having Count(*) > 1 "
    "Order By cls.cFxCCode, upper_class.iGrade";

}  // namespace

std::vector<BrokenKey> brokenKeys(tsql::Database& connection) {
  requireAccount(connection);
  std::vector<BrokenKey> broken;
  for (const JoinKey& key : joinKeys) {
    collect(connection, duplicatesOf(key), key.table, key.reports, broken, keyText);
  }
  collect(connection, doublyMapped, "CA_CostCenterMap", outboundSummary, broken, [](const tsql::Cursor& row) {
    return "work centre " + textOf(row, 0) + " and department " + textOf(row, 1) + " of the same issues";
  });
  collect(connection, ambiguousClasses, "Ca_FxClassDef", summaryReports, broken, [](const tsql::Cursor& row) {
    return "classes of grade " + textOf(row, 1) + " at the beginning of cFxCCode = " + textOf(row, 0);
  });
  return broken;
}

}  // namespace quillon::account
