#include "reports/fx_detail/statements.h"

#include <array>
#include <string_view>

#include "frame/column_list.h"
#include "frame/inventory_checks.h"
#include "frame/statement.h"

namespace quillon::fx_detail {

namespace {

// --- Column lists, by their bare names ------------------------------------------------------------------------------

constexpr std::string_view orderColumns =
    "cworkprocodedis,cworkcentercode,csaleordercode,isaleorderids,exoCode,iExRowno,centrustordercode,cOrderCode,";
// The ledger has no document fields 17 to 21.
constexpr std::string_view definedColumns =
    "cDefine1,cDefine2,cDefine3,cDefine4,cDefine5,cDefine6,cDefine7,cDefine8,"
    "cDefine9,cDefine10,cDefine11,cDefine12,cDefine13,cDefine14,cDefine15,cDefine16,"
    "cDefine22,cDefine23,cDefine24,cDefine25,cDefine26,cDefine27,cDefine28,cDefine29,"
    "cDefine30,cDefine31,cDefine32,cDefine33,cDefine34,cDefine35,cDefine36,cDefine37,"
    "cInvDefine1,cInvDefine2,cInvDefine3,cInvDefine4,cInvDefine5,cInvDefine6,cInvDefine7,cInvDefine8,"
    "cInvDefine9,cInvDefine10,cInvDefine11,cInvDefine12,cInvDefine13,cInvDefine14,cInvDefine15,cInvDefine16,";
constexpr std::string_view batchAndFreeItems =
    "cbatchia,cFree1,cFree2,cFree3,cFree4,cFree5,cFree6,cFree7,cFree8,cFree9,cFree10";
// As the second work table names them.
constexpr std::string_view secondBatchAndFreeItems =
    "cbatchia,cfree1,cfree2,cfree3,cfree4,cfree5,cfree6,cfree7,cfree8,cfree9,cfree10";
constexpr std::string_view lineBatchAndFreeItems =
    "base.cbatchia,base.cFree1,base.cFree2,base.cFree3,base.cFree4,base.cFree5,base.cFree6,base.cFree7,base.cFree8,base.cFree9,base.cFree10,";

// --- Batch and free items, as far as the inventory is checked for them ----------------------------------------------

constexpr std::string_view batchColumn =
    "case when IsNull(Inv.bCheckBatch, 0) = 1 then IsNull(base.cbatchia, '') else cast('' as nvarchar(255)) end as cbatchia,";
constexpr std::string_view groupedBatch =
    "case when IsNull(Inv.bCheckBatch, 0) = 1 then IsNull(base.cbatchia, '') else cast('' as nvarchar(255)) end,";

// The ten free items with a comma between them; `last` ends the tenth. When `name` is not empty, " as ", `name` and the
// item's number stand behind each.
std::string freeItems(std::string_view name, std::string_view last) {
  std::string columns;
  for (std::size_t i = 1; i <= freeItemCount; ++i) {
    const std::string number = std::to_string(i);
    columns += concatenated({"case when IsNull(Inv.bCheckFree", number, ", 0) = 1 then IsNull(base.cFree", number,
                             ", '') else cast('' as nvarchar(20)) end"});
    if (!name.empty()) columns += concatenated({" as ", name, number});
    columns += i < freeItemCount ? "," : last;
  }
  return columns;
}
std::string unnamedFreeItems() {
  return freeItems("", " ");
}
std::string freeItemColumns() {
  return freeItems("cFree", " ");
}
std::string secondFreeItemColumns() {
  return freeItems("cfree", " ");
}

// --- The place by which costs are kept ------------------------------------------------------------------------------

// How the statements name a department or warehouse, the place by which costs are kept.
struct Place {
  // Its columns, code and name.
  std::string_view inserted = {};
  std::string_view insertedByMonth = {};
  std::string_view selected = {};
  std::string_view grouped = {};
  // Its code alone, where its table is not joined.
  std::string_view code = {};
  std::string_view lineCode = {};
  // Conditions; the chosen place's code and a quote follow.
  std::string_view isChosen = {};  // without the ledger's alias
  std::string_view isLinesChosen = {};
  std::string_view isMovementsChosen = {};
  // Between a balance row (temp) and the balance (a) that belongs to it.
  std::string_view isTheSame = {};
};
constexpr Place noPlace;
constexpr Place department{
    .inserted = "cDepCode,cDepName,",
    .insertedByMonth = "cDepCode,cdepname,",
    .selected = "base.cDepCode,cDepName,",
    .grouped = "base.cDepCode,cdepname,",
    .code = "cDepCode,",
    .lineCode = "base.cDepCode,",
    .isChosen = " and cDepCode=N'",
    .isLinesChosen = " and base.cDepCode=N'",
    .isMovementsChosen = " and Base.cDepCode=N'",
    .isTheSame = " and temp.cDepCode=a.cdepcode ",
};
constexpr Place warehouse{
    .inserted = "cwhcode,cwhname,",
    .insertedByMonth = "cwhcode,cwhname,",
    .selected = "base.cwhcode,cwhname,",
    .grouped = "base.cwhcode,cwhname,",
    .code = "cwhcode,",
    .lineCode = "base.cwhcode,",
    .isChosen = " and cwhcode=N'",
    .isLinesChosen = " and base.cwhcode=N'",
    .isMovementsChosen = " and base.cwhcode=N'",
    .isTheSame = " and temp.cwhcode=a.cwhcode ",
};

const Place& place(const Build& build) {
  switch (build.costsKeptBy) {
    case CostsKeptBy::department:
      return department;
    case CostsKeptBy::warehouse:
      return warehouse;
    case CostsKeptBy::inventoryAlone:
      break;
  }
  return noPlace;
}

// `condition` of a place with the chosen one's code and `end`; nothing when costs are not kept by place.
std::string chosenPlace(const Build& build, std::string_view condition, std::string_view end) {
  if (condition.empty()) return {};
  return concatenated({condition, build.placeCode, end});
}

// --- Sources --------------------------------------------------------------------------------------------------------

std::string inventoryJoin(const Build& build) {
  return "left join " + build.inventoryTable + " Inv on base.cinvcode=Inv.cinvcode ";
}
constexpr std::string_view costItemJoins =
    "left join Ca_Fxdef on base_Item.iItemID=Ca_Fxdef.ifxid "
    "left join Ca_FxClassDef on Ca_Fxdef.cFxCID=Ca_FxClassDef.iFxCId ";
std::string warehouseJoin(const Build& build) {
  return "left join " + build.warehouseTable + " Warehouse on Warehouse.cwhcode=base.cwhcode ";
}
std::string departmentJoin(const Build& build) {
  if (build.costsKeptBy != CostsKeptBy::department) return {};
  return "left join Department on Department.cdepcode=base.cdepcode ";
}
std::string placeJoin(const Build& build) {
  return build.costsKeptBy == CostsKeptBy::warehouse ? warehouseJoin(build) : departmentJoin(build);
}

// --- Conditions -----------------------------------------------------------------------------------------------------

// The chosen place and inventory and the condition on lines.
std::string atPlace(const Build& build) {
  return concatenated({
      chosenPlace(build, place(build).isLinesChosen, "' "),
      " and Base.cinvCode=N'" + build.inventoryCode + "' ",
      build.condition,
      lineBreak,
  });
}

std::string year(const Build& build) {
  return std::to_string(build.range.year);
}
std::string beforeStart(const Build& build) {
  return "where (Base.dKeepDate<'" + build.range.startDate + "' or Base.imonth=0) and Base.iYear=" + year(build);
}
std::string entered(const Build& build) {
  return "where Base.imonth=0 and Base.iYear=" + year(build);
}
std::string sinceCostItemsBeforeStart(const Build& build) {
  return "where (Base.dKeepDate<'" + build.range.startDate +
         "' and Base.imonth>=" + std::to_string(build.range.fxFromMonth) + ") and Base.iYear=" + year(build);
}
// The last month ends with the range.
std::string untilEndOf(const Build& build, int month) {
  return concatenated({
      "where ",
      month < build.range.endPeriod ? " base.imonth<" + std::to_string(month + 1)
                                    : "dKeepDate<=N'" + build.range.endDate + "'",
      " and Base.iYear=" + year(build),
  });
}

// --- Balances -------------------------------------------------------------------------------------------------------

// A column of a balance per cost item.
struct BalanceColumn {
  std::string_view name;
  std::string_view fromLedger;
  std::string_view fromCollected;  // from what the second work table has collected
};
constexpr std::array balanceColumns{
    BalanceColumn{"cfxName", "Ca_Fxdef.cfxName", "base.cfxName"},
    BalanceColumn{"cfxCName", "Ca_FxClassDef.cfxCName", "base.cfxCName"},
    BalanceColumn{"cfxCode", "Ca_Fxdef.cfxCode", "base.cfxCode"},
    BalanceColumn{"cfxCCode", "Ca_FxClassDef.cfxCCode", "base.cfxCCode"},
    BalanceColumn{"iItemDetailID", "Base_Item.iItemDetailID", "Base.iItemDetailID"},
    BalanceColumn{"iItemQuantity", "sum(isnull(Base_Item.iItemInQuantity,0)-isnull(Base_Item.iItemoutQuantity,0))",
                  "sum(isnull(Base.iItemInQuantity,0)-isnull(Base.iItemoutQuantity,0))"},
    BalanceColumn{"iItemPrice", "sum(isnull(Base_Item.iItemInprice,0)-isnull(Base_Item.iItemoutprice,0))",
                  "sum(isnull(Base.iItemInprice,0)-isnull(Base.iItemoutprice,0))"},
};

// The head of an insert of balances; `placeColumns` are the names of the place's columns.
std::string insertBalances(const Build& build, std::string_view placeColumns) {
  return concatenated({
      "insert  into " + build.main.name() + " (",
      columnList(balanceColumns, &BalanceColumn::name, ","),
      ",cPZdigest,Datatype,curimonth,id,",
      "cinvcode,",
      placeColumns,
      batchAndFreeItems,
      ")",
  });
}
// The columns from the ledger. `digest` is the rows' text; `kind` their Datatype, curimonth and id.
std::string selectedBalance(const Build& build, const std::string& digest, const std::string& kind) {
  return concatenated({
      "select ",
      columnList(balanceColumns, &BalanceColumn::fromLedger, ","),
      ",N'" + digest + "' as cPZdigest," + kind,
      "base.cinvcode,",
      place(build).selected,
      batchColumn,
      unnamedFreeItems(),
      lineBreak,
  });
}
std::string groupedBalance(const Build& build) {
  return concatenated({
      "group by Base.cinvcode,",
      place(build).grouped,
      "Base_Item.iItemDetailID,Ca_Fxdef.cfxName,Ca_FxClassDef.cfxCName,",
      "Ca_Fxdef.cfxCode,Ca_FxClassDef.cfxCCode,",
      groupedBatch,
      unnamedFreeItems(),
  });
}

// The inventory's own balance (a) beside its balance rows (temp).
std::string setInventoryBalance(const Build& build) {
  const std::string& table = build.main.name();
  return concatenated({
      "update " + table + " set  iQuantity=a.iQuantity,iPrice=a.iPrice  from " + table + " temp inner join ",
      "(select sum(isnull(Base.iainquantity,0)-isnull(Base.iaoutquantity,0)) as iquantity,sum(isnull(Base.iainprice,0)-isnull(Base.iaoutprice,0)) as iprice,",
      "base.cinvcode,",
      place(build).code,
  });
}
// It comes from the ledger lines that meet `condition`.
std::string ofLedgerLines(const Build& build, const std::string& condition) {
  return concatenated({
      batchColumn,
      freeItemColumns(),
      "from IA_Subsidiary Base ",
      inventoryJoin(build),
      condition,
      chosenPlace(build, place(build).isChosen, "' "),
      " and Base.cinvCode=N'" + build.inventoryCode + "' ",
      build.condition,
      lineBreak,
      "group by Base.cinvcode,",
      place(build).code,
      groupedBatch,
      unnamedFreeItems(),
  });
}

// Joins the balance rows (temp) with the balance (a) of the same batch, free items and place.
std::string sameBatchFreeItemsAndPlace(const Build& build) {
  return concatenated({
      " and isnull(temp.cbatchia,N'')=isnull(a.cbatchia,N'') ",
      "and isnull(temp.cFree1,N'')=isnull(a.cFree1,N'') and isnull(temp.cFree2,N'')=isnull(a.cFree2,N'') and isnull(temp.cFree3,N'')=isnull(a.cFree3,N'')",
      "and isnull(temp.cFree4,N'')=isnull(a.cFree4,N'') and isnull(temp.cFree5,N'')=isnull(a.cFree5,N'') and isnull(temp.cFree6,N'')=isnull(a.cFree6,N'')",
      "and isnull(temp.cFree7,N'')=isnull(a.cFree7,N'') and isnull(temp.cFree8,N'')=isnull(a.cFree8,N'') and isnull(temp.cFree9,N'')=isnull(a.cFree9,N'')",
      "and isnull(temp.cFree10,N'')=isnull(a.cFree10,N'')",
      place(build).isTheSame,
  });
}

std::string monthDigest(const Build& build, int month) {
  return std::to_string(month) + " " + build.monthText;
}
std::string balancesOf(const Build& build, int month) {
  return " where temp.cPZdigest=N'" + monthDigest(build, month) + "' and Datatype=2";
}

// --- Numbers with the account's decimal places ----------------------------------------------------------------------

enum class Decimals { quantity, unitCost, amount };

// `value` with the decimal places of its kind, as column `name`, and a comma.
std::string rounded(const Build& build, std::string_view value, Decimals decimals, std::string_view name) {
  constexpr int ofAmounts = 2;
  const int places = decimals == Decimals::quantity   ? build.quantityDecimals
                     : decimals == Decimals::unitCost ? build.unitCostDecimals
                                                      : ofAmounts;
  return concatenated({"cast(", value, " as decimal(38,", std::to_string(places), ")) as ", name, ","});
}

}  // namespace

std::string createMainTable(const Build& build) {
  return concatenated({
      "select (base.autoid+1) as id,base.BakID,base.cwhcode as cwhcode,cast(N'' as nvarchar(20)) as cwhname,base.cdepcode,cast(N'' as nvarchar(255)) as cdepname,base.cinvcode as cinvcode,inv.cinvname as cinvname,inv.cinvaddcode,inv.cinvstd,Unit.cComUnitName as cunitName,",
      "dvoudate as cVouDate,dKeepDate,cast(N'' as nvarchar(20)) as cPZCode,base.cPZID,base.iPZID,cast(N'' as nvarchar(200)) as cVouType,cVouCode,cPZdigest,cast(N'' as nvarchar(20)) as bRdFlag,",
      "cBusCode,base.cvencode,Ven.cvenname,base.ccuscode,cus.ccusname,base.citem_class,citemcname,caccounter,strcontractcode,cproordercode,iproorderids,",
      orderColumns,
      definedColumns,
      lineBatchAndFreeItems,
      "iainQuantity as iQuantity,iInCost as iCost,iainPrice as iPrice,cItemCode,cName,cast(N'' as nvarchar(128)) as cfxName,cast(N'' as nvarchar(40)) as cfxCode,cast(N'' as nvarchar(128)) as cfxCName,cast(N'' as nvarchar(40)) as cfxCCode,base_Item.iItemDetailID,base_Item.iIteminPrice as iItemPrice,",
      "base_Item.iIteminQuantity as iItemQuantity,base_Item.iIteminCost as iItemCost,1 as Datatype,base.imonth as curimonth,Base.cBusType ",
      "into " + build.main.name() + " from ia_subsidiary base ",
      "inner join ia_subsidiary_Item base_Item on base_Item.isubid=base.autoid ",
      "inner join " + build.inventoryTable + " inv on base.cinvcode=inv.cinvcode ",
      "left join ComputationUnit unit on inv.cComunitCode = unit.ccomunitcode ",
      "left join Vendor Ven on base.cvencode=Ven.cvencode ",
      "left join Customer cus on base.ccuscode=cus.ccuscode where 1=0",
  });
}

// --- Opening balances -----------------------------------------------------------------------------------------------

std::string insertOpenings(const Build& build) {
  return concatenated({
      insertBalances(build, place(build).inserted),
      selectedBalance(build, build.openingText, "0,0,0,"),
      "from IA_Subsidiary Base left join IA_Subsidiary_Item Base_Item on Base.AutoID=Base_Item.isubid",
      lineBreak,
      inventoryJoin(build),
      costItemJoins,
      placeJoin(build),
      beforeStart(build),
      atPlace(build),
      groupedBalance(build),
  });
}

std::string setInventoryOpenings(const Build& build) {
  return concatenated({
      setInventoryBalance(build),
      ofLedgerLines(build, beforeStart(build)),
      ") a on a.cinvcode=temp.cinvcode ",
      sameBatchFreeItemsAndPlace(build),
  });
}

namespace {

// A column of the second work table: of a cost item, and of the line itself.
struct CollectedColumn {
  std::string_view name;
  std::string_view source;
};
constexpr std::array collectedCostItem{
    CollectedColumn{"cfxName", "Ca_Fxdef.cfxName"},
    CollectedColumn{"cfxCName", "Ca_FxClassDef.cfxCName"},
    CollectedColumn{"cfxCode", "Ca_Fxdef.cfxCode"},
    CollectedColumn{"cfxCCode", "Ca_FxClassDef.cfxCCode"},
    CollectedColumn{"iItemDetailID", "Base_Item.iItemDetailID"},
    CollectedColumn{"iItemInQuantity", "Base_Item.iItemInQuantity"},
    CollectedColumn{"iItemoutQuantity", "Base_Item.iItemoutQuantity"},
    CollectedColumn{"iItemInprice", "Base_Item.iItemInprice"},
    CollectedColumn{"iItemoutprice", "Base_Item.iItemoutprice"},
};
constexpr std::array collectedLine{
    CollectedColumn{"autoid", "Base.autoid"},
    CollectedColumn{"iainquantity", "Base.iainquantity"},
    CollectedColumn{"iaoutquantity", "Base.iaoutquantity"},
    CollectedColumn{"iainprice", "Base.iainprice"},
    CollectedColumn{"iaoutprice", "Base.iaoutprice"},
    CollectedColumn{"cinvcode", "base.cinvcode"},
};
static_assert(allEndWithTheirNames(collectedCostItem, &CollectedColumn::source) &&
              allEndWithTheirNames(collectedLine, &CollectedColumn::source));

// `columns` by name or by source, with a comma behind the last.
template <typename Columns>
std::string collected(const Columns& columns, std::string_view CollectedColumn::*text) {
  return columnList(columns, text, ",") + ",";
}

}  // namespace

std::string collectEnteredOpenings(const Build& build) {
  return concatenated({
      "select ",
      collected(collectedCostItem, &CollectedColumn::source),
      collected(collectedLine, &CollectedColumn::source),
      place(build).selected,
      batchColumn,
      secondFreeItemColumns(),
      "into " + build.second.name(),
      " from IA_Subsidiary_QC Base left join IA_Subsidiary_QC_Item Base_Item on Base.AutoID=Base_Item.isubqcid",
      lineBreak,
      inventoryJoin(build),
      costItemJoins,
      placeJoin(build),
      entered(build),
      atPlace(build),
  });
}

std::string collectMovementsSince(const Build& build) {
  return concatenated({
      "insert into " + build.second.name() + "(",
      collected(collectedCostItem, &CollectedColumn::name),
      collected(collectedLine, &CollectedColumn::name),
      place(build).inserted,
      secondBatchAndFreeItems,
      ")",
      "select ",
      collected(collectedCostItem, &CollectedColumn::source),
      collected(collectedLine, &CollectedColumn::source),
      place(build).selected,
      batchColumn,
      secondFreeItemColumns(),
      " from IA_Subsidiary Base left join IA_Subsidiary_Item Base_Item on Base.AutoID=Base_Item.isubid",
      lineBreak,
      inventoryJoin(build),
      costItemJoins,
      placeJoin(build),
      sinceCostItemsBeforeStart(build),
      atPlace(build),
  });
}

std::string insertCollectedOpenings(const Build& build) {
  return concatenated({
      insertBalances(build, place(build).inserted),
      "select ",
      columnList(balanceColumns, &BalanceColumn::fromCollected, ","),
      ",N'" + build.openingText + "' as cPZdigest,0,0,0,",
      "base.cinvcode,",
      place(build).selected,
      batchAndFreeItems,
      " from " + build.second.name() + " base ",
      "group by Base.cinvcode,",
      place(build).grouped,
      "Base.iItemDetailID,base.cfxName,base.cfxCName,",
      "base.cfxCode,base.cfxCCode,",
      batchAndFreeItems,
  });
}

std::string collectEnteredInventoryOpenings(const Build& build) {
  return concatenated({
      "select ",
      collected(collectedLine, &CollectedColumn::source),
      place(build).selected,
      batchColumn,
      secondFreeItemColumns(),
      "into " + build.second.name() + " from IA_Subsidiary_QC Base ",
      inventoryJoin(build),
      placeJoin(build),
      entered(build),
      atPlace(build),
  });
}

std::string collectInventoryMovementsSince(const Build& build) {
  return concatenated({
      "insert into " + build.second.name() + "(",
      collected(collectedLine, &CollectedColumn::name),
      place(build).code,
      secondBatchAndFreeItems,
      ")",
      "select ",
      collected(collectedLine, &CollectedColumn::source),
      place(build).lineCode,
      batchColumn,
      secondFreeItemColumns(),
      " from IA_Subsidiary Base ",
      inventoryJoin(build),
      sinceCostItemsBeforeStart(build),
      atPlace(build),
  });
}

std::string setCollectedInventoryOpenings(const Build& build) {
  return concatenated({
      setInventoryBalance(build),
      batchAndFreeItems,
      " from " + build.second.name() + " base ",
      "group by Base.cinvcode,",
      place(build).code,
      batchAndFreeItems,
      ") a on a.cinvcode=temp.cinvcode ",
      sameBatchFreeItemsAndPlace(build),
  });
}

// --- Movements ------------------------------------------------------------------------------------------------------

namespace {

// A column of a movement.
struct MovementColumn {
  std::string_view name;
  std::string_view source;
  bool onlyByDepartment = false;
};
// A figure of a movement: what a receipt has, what an issue has, and how it is rounded.
struct MovementFigure {
  std::string_view name;
  std::string_view ofReceipt;
  std::string_view ofIssue;
  Decimals decimals;
};

// In the order of the insert, with the figures behind the first and the second group.
constexpr std::array movementColumns{
    MovementColumn{"cInvCode", "base.cinvcode as cinvcode"},
    MovementColumn{"cInvName", "inv.cinvname as cinvname"},
    MovementColumn{"cInvAddCode", "inv.cinvaddcode"},
    MovementColumn{"cInvStd", "inv.cinvstd"},
    MovementColumn{"cUnitName", "Unit.cComUnitName as cunitName"},
    // Movements carry their warehouse whatever the costing basis.
    MovementColumn{"cwhcode", "base.cwhcode as cwhcode"},
    MovementColumn{"cwhname", "Warehouse.cwhname as cwhname"},
    // A movement shows its department's code in place of its name.
    MovementColumn{"cdepcode", "base.cdepcode as cdepcode", true},
    MovementColumn{"cdepname", "Department.cdepcode as cdepname", true},
    MovementColumn{"cVouDate", "dvoudate as cVouDate"},
    MovementColumn{"dKeepDate", "dKeepDate"},
    MovementColumn{"cPZCode", "null"},
    MovementColumn{"cPZID", "cPZID"},
    MovementColumn{"iPZID", "iPZID"},
    MovementColumn{"cVouType", "cVouType"},
    MovementColumn{"cVouCode", "cVouCode"},
    MovementColumn{"cPZdigest", "cPZdigest"},
    MovementColumn{"bRdFlag", "Rd.cRdName as bRdFlag"},
    MovementColumn{"cBusCode", "cBusCode"},
    MovementColumn{"cVenCode", "base.cvencode"},
    MovementColumn{"cVenName", "Ven.cvenname"},
    MovementColumn{"cCusCode", "base.ccuscode"},
    MovementColumn{"cCusName", "cus.ccusname"},
    MovementColumn{"cItem_class", "citem_class"},
    MovementColumn{"cItemCName", "citemcname"},
    MovementColumn{"cAccounter", "caccounter"},
    MovementColumn{"strContractCode", "strcontractcode"},
    MovementColumn{"cproordercode", "cproordercode"},
    MovementColumn{"iproorderids", "iproorderids"},
    MovementColumn{orderColumns, orderColumns},
    MovementColumn{definedColumns, definedColumns},
    MovementColumn{batchAndFreeItems, lineBatchAndFreeItems},
};
constexpr std::array movementFigures{
    MovementFigure{"iQuantity", "iainQuantity", "iaoutQuantity", Decimals::quantity},
    MovementFigure{"iCost", "iInCost", "ioutCost", Decimals::unitCost},
    MovementFigure{"iPrice", "iainPrice", "iaoutPrice", Decimals::amount},
};
constexpr std::array movementCostItem{
    MovementColumn{"cItemCode", "base.cItemCode"},
    MovementColumn{"cName", "base.cName"},
    MovementColumn{"cfxName", "Ca_Fxdef.cfxName"},
    MovementColumn{"cfxCName", "Ca_FxClassDef.cfxCName"},
    MovementColumn{"cfxCode", "Ca_Fxdef.cfxCode"},
    MovementColumn{"cfxCCode", "Ca_FxClassDef.cfxCCode"},
    MovementColumn{"iItemDetailID", "base_Item.iItemDetailID"},
};
constexpr std::array movementCostItemFigures{
    MovementFigure{"iItemPrice", "base_Item.iIteminPrice", "base_Item.iItemoutPrice", Decimals::amount},
    MovementFigure{"iItemQuantity", "base_Item.iIteminQuantity", "base_Item.iItemoutQuantity", Decimals::quantity},
    MovementFigure{"iItemCost", "base_Item.iIteminCost", "base_Item.iItemoutCost", Decimals::unitCost},
};
constexpr std::array movementKeys{
    MovementColumn{"Datatype", "1"},
    MovementColumn{"curimonth", "base.imonth"},
    MovementColumn{"id", "base.autoid"},
    MovementColumn{"BakID", "base.BakID"},
    MovementColumn{"cBusType", "base.cBusType"},
};

// One list of columns, without a comma at its end, and of figures.
template <typename Columns>
std::string movement(const Build& build, const Columns& columns, std::string_view MovementColumn::*text) {
  const auto shown = [&](const MovementColumn& column) {
    return column.onlyByDepartment && build.costsKeptBy != CostsKeptBy::department ? std::string_view() : column.*text;
  };
  return columnList(columns, shown, ",");
}
template <typename Figures>
std::string selectedFigures(const Build& build, const Figures& figures) {
  const auto source = [&](const MovementFigure& figure) {
    const std::string value =
        concatenated({"case when base.brdflag=1 then ", figure.ofReceipt, " else ", figure.ofIssue, " end"});
    return rounded(build, value, figure.decimals, figure.name);
  };
  return columnList(figures, source, ",");
}

}  // namespace

std::string insertMovements(const Build& build) {
  return concatenated({
      "insert into " + build.main.name() + " (",
      movement(build, movementColumns, &MovementColumn::name),
      ",",
      columnList(movementFigures, &MovementFigure::name, ","),
      ",",
      movement(build, movementCostItem, &MovementColumn::name),
      ",",
      columnList(movementCostItemFigures, &MovementFigure::name, ","),
      ",",
      movement(build, movementKeys, &MovementColumn::name),
      ") select ",
      movement(build, movementColumns, &MovementColumn::source),
      selectedFigures(build, movementFigures),
      movement(build, movementCostItem, &MovementColumn::source),
      ",",
      selectedFigures(build, movementCostItemFigures),
      movement(build, movementKeys, &MovementColumn::source),
      " from ia_subsidiary base ",
      "left join ia_subsidiary_Item base_Item on base_Item.isubid=base.autoid ",
      "inner join " + build.inventoryTable + " inv on base.cinvcode=inv.cinvcode ",
      costItemJoins,
      "left join ComputationUnit unit on inv.cComunitCode = unit.ccomunitcode ",
      warehouseJoin(build),
      departmentJoin(build),
      "left join Vendor Ven on base.cvencode=Ven.cvencode ",
      "left join Customer cus on base.ccuscode=cus.ccuscode ",
      "left join Rd_Style Rd on base.cRdCode=Rd.cRdCode ",
      "where dKeepDate>=N'" + build.range.startDate + "' and dKeepDate<=N'" + build.range.endDate +
          "' and base.imonth>=" + std::to_string(build.range.startPeriod) + " and base.iyear=" + year(build),
      chosenPlace(build, place(build).isMovementsChosen, "'"),
      " and base.cinvCode=N'" + build.inventoryCode + "'",
      build.condition,
  });
}

// --- Month balances -------------------------------------------------------------------------------------------------

std::string insertMonthBalances(const Build& build, int month) {
  const std::string number = std::to_string(month);
  return concatenated({
      insertBalances(build, place(build).insertedByMonth),
      selectedBalance(build, monthDigest(build, month), "2," + number + "," + number + ", "),
      "from IA_Subsidiary Base left join IA_Subsidiary_Item Base_Item on Base.AutoID=Base_Item.isubid ",
      inventoryJoin(build),
      costItemJoins,
      placeJoin(build),
      untilEndOf(build, month),
      atPlace(build),
      // The month touches the word after it, which reads as two.
      build.range.splitOpening ? "and base.imonth>=" + std::to_string(build.range.fxFromMonth) : "",
      groupedBalance(build),
  });
}

std::string addEnteredOpenings(const Build& build, int month) {
  return concatenated({
      "update " + build.main.name() +
          " set  iItemQuantity=iItemQuantity+a.iQuantity,iItemPrice=iItemPrice+a.iPrice  from " + build.main.name() +
          " temp inner join ",
      "(select Base_Item.iItemdetailID, sum(isnull(Base_Item.iItemInQuantity,0)-isnull(Base_Item.iItemoutQuantity,0)) as iquantity,sum(isnull(Base_Item.iItemInprice,0)-isnull(Base_Item.iItemoutprice,0)) as iprice,",
      "base.cinvcode,",
      place(build).code,
      batchColumn,
      freeItemColumns(),
      "from IA_Subsidiary_QC Base left join IA_Subsidiary_QC_Item Base_Item on Base.AutoID=Base_Item.isubQCid ",
      inventoryJoin(build),
      "where Base.iYear=" + year(build),
      chosenPlace(build, place(build).isChosen, "'"),
      " and Base.cinvCode=N'" + build.inventoryCode + "'",
      build.condition,
      "group by Base.cinvcode,Base_Item.iItemdetailID,",
      place(build).code,
      groupedBatch,
      freeItems("", ""),
      ")a on a.cinvcode=temp.cinvcode ",
      sameBatchFreeItemsAndPlace(build),
      " and temp.iItemdetailID=a.iItemdetailID",
      balancesOf(build, month),
  });
}

// The inventory's own balance counts from the start of the year, also when cost items started later.
std::string setInventoryMonthBalances(const Build& build, int month) {
  return concatenated({
      setInventoryBalance(build),
      ofLedgerLines(build, untilEndOf(build, month)),
      ")a on a.cinvcode=temp.cinvcode ",
      sameBatchFreeItemsAndPlace(build),
      balancesOf(build, month),
  });
}

std::string setUnitCosts(const Build& build) {
  return "update " + build.main.name() +
         " set iCost=case when isnull(iQuantity,0)=0 then null else iPrice/iQuantity end  where datatype in (0,2)";
}

// --- Numbering, voucher texts, result -------------------------------------------------------------------------------

namespace {

constexpr std::string_view reportColumns =
    "cWhCode,cWhName,cInvCode,cInvName,cInvAddCode,cInvStd,cUnitName,cVouDate,dKeepDate,cPZCode,cPZID,iPZID,cVouType,cVouCode,"
    "cPZdigest,bRdFlag,cBusCode,cVenCode,cVenName,cCusCode,cCusName,cItem_class,cItemCName,cAccounter,strContractCode,cproordercode,iproorderids,";

std::string amounts(const Build& build) {
  return concatenated({
      rounded(build, "iQuantity", Decimals::quantity, "iQuantity"),
      rounded(build, "iCost", Decimals::unitCost, "iCost"),
      rounded(build, "iPrice", Decimals::amount, "iPrice"),
  });
}
std::string itemAmounts(const Build& build) {
  return concatenated({
      rounded(build, "iItemPrice", Decimals::amount, "iItemPrice"),
      rounded(build, "iItemQuantity", Decimals::quantity, "iItemQuantity"),
      rounded(build, "iItemCost", Decimals::unitCost, "iItemCost"),
  });
}

}  // namespace

std::string numberRows(const Build& build) {
  return concatenated({
      "select IDENTITY(int,1,1) as RowNo,id,datatype,",
      reportColumns,
      orderColumns,
      definedColumns,
      batchAndFreeItems,
      ",",
      amounts(build),
      "cfxName,cfxCName,cfxCode,cfxCCode,",
      itemAmounts(build),
      "cItemCode,cName,cBusType ",
      "into " + build.second.name() + " from " + build.main.name(),
      // By month; opening balances, movements, month balances; then as the ledger was written.
      " order by curimonth,datatype,dKeepDate,isnull(bakid,id),id",
  });
}

std::string setLedgerVoucherTexts(const Build& build) {
  return "Update " + build.second.name() +
         " set cPZCode=gl_AccVouch.csign + ' ' + Cast(gl_AccVouch.ino_id As nvarchar(10))  from  " +
         build.second.name() + " temp inner join gl_AccVouch on gl_AccVouch.coutNo_ID=temp.cPzID";
}

// Voucher type 3201 has no name of its own: it is a sales issue, as 32 is.
std::string nameSalesIssues(const Build& build) {
  return "update " + build.second.name() +
         " set cvoutype=(select a.EnumName from  AA_Enum a inner join  VouchType b   on b.cVouchName=a.enumcode  where  a.EnumType ='IA.vchtype' and a.LocaleId=DBO.UDF_GetLocaleID()  and   b.cVouchtype='32') where cvoutype='3201' ";
}

std::string createResult(const Build& build) {
  return concatenated({
      "select (temp.rowno+1) as rowno,id,datatype,",
      reportColumns,
      orderColumns,
      definedColumns,
      batchAndFreeItems,
      ",",
      amounts(build),
      // A cost item is shown with its class before it.
      "cfxName,cfxCName,(cfxCCode + cfxCode) as cfxCode,cfxCCode,",
      itemAmounts(build),
      "cItemCode,cName,cBusType ",
      "into " + build.resultTable + " from " + build.second.name() + " temp",
  });
}

std::string shareRowNumbers(const Build& build) {
  return concatenated({
      "update " + build.resultTable + " set RowNo=base.RowNo from " + build.resultTable + " temp inner join ",
      lineBreak,
      "(select id,min(RowNo) as RowNo,datatype from " + build.resultTable + " group by id,datatype) base",
      lineBreak,
      "on base.id=temp.id and base.datatype=temp.datatype",
  });
}

std::string createEmptyResult(const Build& build) {
  return concatenated({
      "select id,datatype,cInvCode,cInvName,cInvAddCode,cInvStd,cUnitName,cVouDate,dKeepDate,cPZCode,cPZID,iPZID,cVouType,cVouCode,cPZdigest,bRdFlag,",
      "cDepCode,cDepName,cwhcode,cwhname,",
      "cBusCode,cVenCode,cVenName,cCusCode,cCusName,cItem_class,cItemCName,cAccounter,strContractCode,cproordercode,iproorderids,",
      orderColumns,
      definedColumns,
      "isnull(cbatchia,'') as cbatchia,cFree1,cFree2,cFree3,cFree4,cFree5,cFree6,cFree7,cFree8,cFree9,cFree10,",
      amounts(build),
      "cfxName,cfxCode,cfxCName,cfxCCode,",
      itemAmounts(build),
      "cItemCode,cName ",
      "into " + build.resultTable + " from " + build.main.name() + " temp",
  });
}

}  // namespace quillon::fx_detail
