#include "reports/fx_detail/statements.h"

#include <string_view>

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

// The ten free items, each with ` as ` and `name` and its number behind it when `name` is not empty; `last` ends the
// tenth.
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

// --- What depends on the costing basis ------------------------------------------------------------------------------

// `text` when the account is costed by department (by warehouse), else nothing.
std::string_view dept(const DetailBuild& build, std::string_view text) {
  return build.byDepartment ? text : std::string_view();
}
std::string_view wh(const DetailBuild& build, std::string_view text) {
  return build.byWarehouse ? text : std::string_view();
}

// The place's columns with their names, as they are inserted, selected and grouped by.
std::string insertedPlace(const DetailBuild& build) {
  return concatenated({dept(build, "cDepCode,cDepName,"), wh(build, "cwhcode,cwhname,")});
}
std::string insertedMonthPlace(const DetailBuild& build) {
  return concatenated({dept(build, "cDepCode,cdepname,"), wh(build, "cwhcode,cwhname,")});
}
std::string selectedPlace(const DetailBuild& build) {
  return concatenated({dept(build, "base.cDepCode,cDepName,"), wh(build, "base.cwhcode,cwhname,")});
}
std::string groupedPlace(const DetailBuild& build) {
  return concatenated({dept(build, "base.cDepCode,cdepname,"), wh(build, "base.cwhcode,cwhname,")});
}
// The place's code alone, where its table is not joined.
std::string placeCode(const DetailBuild& build) {
  return concatenated({dept(build, "cDepCode,"), wh(build, "cwhcode,")});
}
std::string linePlaceCode(const DetailBuild& build) {
  return concatenated({dept(build, "base.cDepCode,"), wh(build, "base.cwhcode,")});
}

std::string inventoryJoin(const DetailBuild& build) {
  return "left join " + build.inventoryTable + " Inv on base.cinvcode=Inv.cinvcode ";
}
constexpr std::string_view costItemJoins =
    "left join Ca_Fxdef on base_Item.iItemID=Ca_Fxdef.ifxid "
    "left join Ca_FxClassDef on Ca_Fxdef.cFxCID=Ca_FxClassDef.iFxCId ";
std::string placeJoins(const DetailBuild& build) {
  return concatenated({
      wh(build, "left join " + build.warehouseTable + " Warehouse on Warehouse.cwhcode=base.cwhcode "),
      dept(build, "left join Department on Department.cdepcode=base.cdepcode "),
  });
}
std::string allJoins(const DetailBuild& build) {
  return concatenated({inventoryJoin(build), costItemJoins, placeJoins(build)});
}

// --- Conditions -----------------------------------------------------------------------------------------------------

// The chosen place and inventory and the condition on lines.
std::string atPlace(const DetailBuild& build) {
  return concatenated({
      wh(build, " and base.cwhcode=N'" + build.warehouseCode + "' "),
      dept(build, " and base.cDepCode=N'" + build.departmentCode + "' "),
      " and Base.cinvCode=N'" + build.inventoryCode + "' ",
      build.condition,
      lineBreak,
  });
}
// The same without the ledger's alias before the place.
std::string atPlaceCode(const DetailBuild& build) {
  return concatenated({
      wh(build, " and cwhcode=N'" + build.warehouseCode + "' "),
      dept(build, " and cDepCode=N'" + build.departmentCode + "' "),
      " and Base.cinvCode=N'" + build.inventoryCode + "' ",
      build.condition,
      lineBreak,
  });
}

std::string year(const DetailBuild& build) {
  return std::to_string(build.range.year);
}
std::string beforeStart(const DetailBuild& build) {
  return "where (Base.dKeepDate<'" + build.range.startDate + "' or Base.imonth=0) and Base.iYear=" + year(build);
}
std::string entered(const DetailBuild& build) {
  return "where Base.imonth=0 and Base.iYear=" + year(build);
}
std::string sinceCostItemsBeforeStart(const DetailBuild& build) {
  return "where (Base.dKeepDate<'" + build.range.startDate +
         "' and Base.imonth>=" + std::to_string(build.range.fxFromMonth) + ") and Base.iYear=" + year(build);
}
// The last month ends with the range.
std::string untilEndOf(const DetailBuild& build, int month) {
  return concatenated({
      "where ",
      month < build.range.endPeriod ? " base.imonth<" + std::to_string(month + 1)
                                    : "dKeepDate<=N'" + build.range.endDate + "'",
      " and Base.iYear=" + year(build),
  });
}

// --- Balances -------------------------------------------------------------------------------------------------------

std::string balanceColumns(const std::string& place) {
  return concatenated({
      "cfxName,cfxCName,cfxCode,cfxCCode,iItemDetailID,iItemQuantity,iItemPrice,cPZdigest,Datatype,curimonth,id,",
      "cinvcode,",
      place,
      batchAndFreeItems,
  });
}

// The columns of a balance per cost item. `digest` is the row's text; `kind` its Datatype, curimonth and id.
std::string selectedBalance(const DetailBuild& build, const std::string& digest, const std::string& kind) {
  return concatenated({
      "select Ca_Fxdef.cfxName,Ca_FxClassDef.cfxCName,Ca_Fxdef.cfxCode,Ca_FxClassDef.cfxCCode,Base_Item.iItemDetailID,sum(isnull(Base_Item.iItemInQuantity,0)-isnull(Base_Item.iItemoutQuantity,0)),",
      "sum(isnull(Base_Item.iItemInprice,0)-isnull(Base_Item.iItemoutprice,0)),N'" + digest + "' as cPZdigest," + kind,
      "base.cinvcode,",
      selectedPlace(build),
      batchColumn,
      unnamedFreeItems(),
      lineBreak,
  });
}
std::string groupedBalance(const DetailBuild& build) {
  return concatenated({
      "group by Base.cinvcode,",
      groupedPlace(build),
      "Base_Item.iItemDetailID,Ca_Fxdef.cfxName,Ca_FxClassDef.cfxCName,",
      "Ca_Fxdef.cfxCode,Ca_FxClassDef.cfxCCode,",
      groupedBatch,
      unnamedFreeItems(),
  });
}

constexpr std::string_view inventoryBalance =
    "(select sum(isnull(Base.iainquantity,0)-isnull(Base.iaoutquantity,0)) as iquantity,sum(isnull(Base.iainprice,0)-isnull(Base.iaoutprice,0)) as iprice,"
    "base.cinvcode,";

std::string setInventoryBalance(const DetailBuild& build) {
  return "update " + build.main + " set  iQuantity=a.iQuantity,iPrice=a.iPrice  from " + build.main +
         " temp inner join ";
}
// The inventory's own balance from the ledger lines that meet `condition`: a derived table, without its closing
// bracket.
std::string inventoryBalanceOf(const DetailBuild& build, const std::string& condition) {
  return concatenated({
      inventoryBalance,
      placeCode(build),
      batchColumn,
      freeItemColumns(),
      "from IA_Subsidiary Base ",
      inventoryJoin(build),
      condition,
      atPlaceCode(build),
      "group by Base.cinvcode,",
      placeCode(build),
      groupedBatch,
      unnamedFreeItems(),
  });
}

// Joins the balance rows (temp) with the balance (a) of the same batch, free items and place.
std::string sameBatchFreeItemsAndPlace(const DetailBuild& build) {
  return concatenated({
      " and isnull(temp.cbatchia,N'')=isnull(a.cbatchia,N'') ",
      "and isnull(temp.cFree1,N'')=isnull(a.cFree1,N'') and isnull(temp.cFree2,N'')=isnull(a.cFree2,N'') and isnull(temp.cFree3,N'')=isnull(a.cFree3,N'')",
      "and isnull(temp.cFree4,N'')=isnull(a.cFree4,N'') and isnull(temp.cFree5,N'')=isnull(a.cFree5,N'') and isnull(temp.cFree6,N'')=isnull(a.cFree6,N'')",
      "and isnull(temp.cFree7,N'')=isnull(a.cFree7,N'') and isnull(temp.cFree8,N'')=isnull(a.cFree8,N'') and isnull(temp.cFree9,N'')=isnull(a.cFree9,N'')",
      "and isnull(temp.cFree10,N'')=isnull(a.cFree10,N'')",
      dept(build, " and temp.cDepCode=a.cdepcode "),
      wh(build, " and temp.cwhcode=a.cwhcode "),
  });
}

std::string monthDigest(const DetailBuild& build, int month) {
  return std::to_string(month) + " " + build.monthText;
}
std::string balancesOf(const DetailBuild& build, int month) {
  return " where temp.cPZdigest=N'" + monthDigest(build, month) + "' and Datatype=2";
}

// --- Numbers with the account's decimal places ----------------------------------------------------------------------

std::string quantity(const DetailBuild& build, std::string_view value, std::string_view name) {
  return "cast(" + std::string(value) + " as decimal(38," + std::to_string(build.quantityDecimals) + ")) as " +
         std::string(name);
}
std::string unitCost(const DetailBuild& build, std::string_view value, std::string_view name) {
  return "cast(" + std::string(value) + " as decimal(38," + std::to_string(build.unitCostDecimals) + ")) as " +
         std::string(name);
}
std::string amount(std::string_view value, std::string_view name) {
  return "cast(" + std::string(value) + " as decimal(38,2)) as " + std::string(name);
}

}  // namespace

std::string dropWorkTable(const std::string& table) {
  return "if exists(select id from  tempdb..sysobjects where id=object_id(N'tempdb.." + table + "')) drop table " +
         table;
}

std::string createMainTable(const DetailBuild& build) {
  return concatenated({
      "select (base.autoid+1) as id,base.BakID,base.cwhcode as cwhcode,cast(N'' as nvarchar(20)) as cwhname,base.cdepcode,cast(N'' as nvarchar(255)) as cdepname,base.cinvcode as cinvcode,inv.cinvname as cinvname,inv.cinvaddcode,inv.cinvstd,Unit.cComUnitName as cunitName,",
      "dvoudate as cVouDate,dKeepDate,cast(N'' as nvarchar(20)) as cPZCode,base.cPZID,base.iPZID,cast(N'' as nvarchar(200)) as cVouType,cVouCode,cPZdigest,cast(N'' as nvarchar(20)) as bRdFlag,",
      "cBusCode,base.cvencode,Ven.cvenname,base.ccuscode,cus.ccusname,base.citem_class,citemcname,caccounter,strcontractcode,cproordercode,iproorderids,",
      orderColumns,
      definedColumns,
      lineBatchAndFreeItems,
      "iainQuantity as iQuantity,iInCost as iCost,iainPrice as iPrice,cItemCode,cName,cast(N'' as nvarchar(128)) as cfxName,cast(N'' as nvarchar(40)) as cfxCode,cast(N'' as nvarchar(128)) as cfxCName,cast(N'' as nvarchar(40)) as cfxCCode,base_Item.iItemDetailID,base_Item.iIteminPrice as iItemPrice,",
      "base_Item.iIteminQuantity as iItemQuantity,base_Item.iIteminCost as iItemCost,1 as Datatype,base.imonth as curimonth,Base.cBusType ",
      "into " + build.main + " from ia_subsidiary base ",
      "inner join ia_subsidiary_Item base_Item on base_Item.isubid=base.autoid ",
      "inner join " + build.inventoryTable + " inv on base.cinvcode=inv.cinvcode ",
      "left join ComputationUnit unit on inv.cComunitCode = unit.ccomunitcode ",
      "left join Vendor Ven on base.cvencode=Ven.cvencode ",
      "left join Customer cus on base.ccuscode=cus.ccuscode where 1=0",
  });
}

// --- Opening balances -----------------------------------------------------------------------------------------------

std::string insertOpenings(const DetailBuild& build) {
  return concatenated({
      "insert  into " + build.main + " (" + balanceColumns(insertedPlace(build)) + ")",
      selectedBalance(build, build.openingText, "0,0,0,"),
      "from IA_Subsidiary Base left join IA_Subsidiary_Item Base_Item on Base.AutoID=Base_Item.isubid",
      lineBreak,
      allJoins(build),
      beforeStart(build),
      atPlace(build),
      groupedBalance(build),
  });
}

std::string setInventoryOpenings(const DetailBuild& build) {
  return concatenated({
      setInventoryBalance(build),
      inventoryBalanceOf(build, beforeStart(build)),
      ") a on a.cinvcode=temp.cinvcode ",
      sameBatchFreeItemsAndPlace(build),
  });
}

namespace {

// What the second work table collects of a line, and of its cost item before it.
std::string collectedLine(const std::string& place) {
  return concatenated({
      "Base.autoid,Base.iainquantity,Base.iaoutquantity,Base.iainprice,Base.iaoutprice,",
      "base.cinvcode,",
      place,
      batchColumn,
      secondFreeItemColumns(),
  });
}
std::string selectedCollectedCostItem(const DetailBuild& build) {
  return concatenated({
      "select Ca_Fxdef.cfxName,Ca_FxClassDef.cfxCName,Ca_Fxdef.cfxCode,Ca_FxClassDef.cfxCCode,Base_Item.iItemDetailID,Base_Item.iItemInQuantity,Base_Item.iItemoutQuantity,",
      "Base_Item.iItemInprice,Base_Item.iItemoutprice,",
      collectedLine(selectedPlace(build)),
  });
}

}  // namespace

std::string collectEnteredOpenings(const DetailBuild& build) {
  return concatenated({
      selectedCollectedCostItem(build),
      "into " + build.second,
      " from IA_Subsidiary_QC Base left join IA_Subsidiary_QC_Item Base_Item on Base.AutoID=Base_Item.isubqcid",
      lineBreak,
      allJoins(build),
      entered(build),
      atPlace(build),
  });
}

std::string collectMovementsSince(const DetailBuild& build) {
  return concatenated({
      "insert into " + build.second,
      "(cfxName,cfxCName,cfxCode,cfxCCode,iItemDetailID,iItemInQuantity,iItemoutQuantity,iItemInprice,iItemoutprice,autoid,iainquantity,",
      "iaoutquantity,iainprice,iaoutprice,cinvcode,",
      insertedPlace(build),
      secondBatchAndFreeItems,
      ")",
      selectedCollectedCostItem(build),
      " from IA_Subsidiary Base left join IA_Subsidiary_Item Base_Item on Base.AutoID=Base_Item.isubid",
      lineBreak,
      allJoins(build),
      sinceCostItemsBeforeStart(build),
      atPlace(build),
  });
}

std::string insertCollectedOpenings(const DetailBuild& build) {
  return concatenated({
      "insert  into " + build.main + " (" + balanceColumns(insertedPlace(build)) + ")",
      "select base.cfxName,base.cfxCName,base.cfxCode,base.cfxCCode,Base.iItemDetailID,sum(isnull(Base.iItemInQuantity,0)-isnull(Base.iItemoutQuantity,0)),",
      "sum(isnull(Base.iItemInprice,0)-isnull(Base.iItemoutprice,0)),N'" + build.openingText + "' as cPZdigest,0,0,0,",
      "base.cinvcode,",
      selectedPlace(build),
      batchAndFreeItems,
      " from " + build.second + " base ",
      "group by Base.cinvcode,",
      groupedPlace(build),
      "Base.iItemDetailID,base.cfxName,base.cfxCName,",
      "base.cfxCode,base.cfxCCode,",
      batchAndFreeItems,
  });
}

std::string collectEnteredInventoryOpenings(const DetailBuild& build) {
  return concatenated({
      "select ",
      collectedLine(selectedPlace(build)),
      "into " + build.second + " from IA_Subsidiary_QC Base ",
      inventoryJoin(build),
      placeJoins(build),
      entered(build),
      atPlace(build),
  });
}

std::string collectInventoryMovementsSince(const DetailBuild& build) {
  return concatenated({
      "insert into " + build.second,
      "(autoid,iainquantity,",
      "iaoutquantity,iainprice,iaoutprice,cinvcode,",
      placeCode(build),
      secondBatchAndFreeItems,
      ")",
      "select ",
      collectedLine(linePlaceCode(build)),
      " from IA_Subsidiary Base ",
      inventoryJoin(build),
      sinceCostItemsBeforeStart(build),
      atPlace(build),
  });
}

std::string setCollectedInventoryOpenings(const DetailBuild& build) {
  return concatenated({
      setInventoryBalance(build),
      inventoryBalance,
      placeCode(build),
      batchAndFreeItems,
      " from " + build.second + " base ",
      "group by Base.cinvcode,",
      placeCode(build),
      batchAndFreeItems,
      ") a on a.cinvcode=temp.cinvcode ",
      sameBatchFreeItemsAndPlace(build),
  });
}

// --- Movements ------------------------------------------------------------------------------------------------------

std::string insertMovements(const DetailBuild& build) {
  return concatenated({
      "insert into " + build.main + " (cInvCode,cInvName,cInvAddCode,cInvStd,cUnitName,",
      "cwhcode,cwhname,",
      dept(build, "cdepcode,cdepname,"),
      "cVouDate,dKeepDate,cPZCode,cPZID,iPZID,cVouType,cVouCode,cPZdigest,bRdFlag,",
      "cBusCode,cVenCode,cVenName,cCusCode,cCusName,cItem_class,cItemCName,cAccounter,strContractCode,cproordercode,iproorderids,",
      orderColumns,
      definedColumns,
      batchAndFreeItems,
      ",iQuantity,iCost,iPrice,cItemCode,cName,",
      "cfxName,cfxCName,cfxCode,cfxCCode,iItemDetailID,iItemPrice,iItemQuantity,iItemCost,Datatype,curimonth,id,BakID,cBusType) ",
      "select base.cinvcode as cinvcode,inv.cinvname as cinvname,inv.cinvaddcode,inv.cinvstd,Unit.cComUnitName as cunitName,",
      // Movements carry their warehouse whatever the costing basis.
      "base.cwhcode as cwhcode,Warehouse.cwhname as cwhname,",
      // A movement's department goes by its code, not by its name.
      dept(build, "base.cdepcode as cdepcode,Department.cdepcode as cdepname,"),
      "dvoudate as cVouDate,dKeepDate,null,cPZID,iPZID,cVouType,cVouCode,cPZdigest,Rd.cRdName as bRdFlag,",
      "cBusCode,base.cvencode,Ven.cvenname,base.ccuscode,cus.ccusname,citem_class,citemcname,caccounter,strcontractcode,cproordercode,iproorderids,",
      orderColumns,
      definedColumns,
      lineBatchAndFreeItems,
      quantity(build, "case when base.brdflag=1 then iainQuantity else iaoutQuantity end", "iQuantity,"),
      unitCost(build, "case when base.brdflag=1 then iInCost else ioutCost end", "iCost,"),
      amount("case when base.brdflag=1 then iainPrice else iaoutPrice end", "iPrice,"),
      "base.cItemCode,base.cName,Ca_Fxdef.cfxName,Ca_FxClassDef.cfxCName,Ca_Fxdef.cfxCode,Ca_FxClassDef.cfxCCode,base_Item.iItemDetailID,",
      amount("case when base.brdflag=1 then base_Item.iIteminPrice else base_Item.iItemoutPrice end", "iItemPrice,"),
      quantity(build, "case when base.brdflag=1 then base_Item.iIteminQuantity else base_Item.iItemoutQuantity end",
               "iItemQuantity,"),
      unitCost(build, "case when base.brdflag=1 then base_Item.iIteminCost else base_Item.iItemoutCost end",
               "iItemCost,"),
      "1,base.imonth,base.autoid,base.BakID,base.cBusType from ia_subsidiary base ",
      "left join ia_subsidiary_Item base_Item on base_Item.isubid=base.autoid ",
      "inner join " + build.inventoryTable + " inv on base.cinvcode=inv.cinvcode ",
      costItemJoins,
      "left join ComputationUnit unit on inv.cComunitCode = unit.ccomunitcode ",
      "left join " + build.warehouseTable + " Warehouse on Warehouse.cwhcode=base.cwhcode ",
      dept(build, "left join Department on Department.cdepcode=base.cdepcode "),
      "left join Vendor Ven on base.cvencode=Ven.cvencode ",
      "left join Customer cus on base.ccuscode=cus.ccuscode ",
      "left join Rd_Style Rd on base.cRdCode=Rd.cRdCode ",
      "where dKeepDate>=N'" + build.range.startDate + "' and dKeepDate<=N'" + build.range.endDate +
          "' and base.imonth>=" + std::to_string(build.range.startPeriod) + " and base.iyear=" + year(build),
      wh(build, " and base.cwhcode=N'" + build.warehouseCode + "'"),
      dept(build, " and Base.cDepCode=N'" + build.departmentCode + "'"),
      " and base.cinvCode=N'" + build.inventoryCode + "'",
      build.condition,
  });
}

// --- Month balances -------------------------------------------------------------------------------------------------

std::string insertMonthBalances(const DetailBuild& build, int month) {
  const std::string number = std::to_string(month);
  return concatenated({
      "insert  into " + build.main + " (" + balanceColumns(insertedMonthPlace(build)) + ")",
      selectedBalance(build, monthDigest(build, month), "2," + number + "," + number + ", "),
      "from IA_Subsidiary Base left join IA_Subsidiary_Item Base_Item on Base.AutoID=Base_Item.isubid ",
      allJoins(build),
      untilEndOf(build, month),
      atPlace(build),
      // The month touches the word after it, which reads as two.
      build.range.splitOpening ? "and base.imonth>=" + std::to_string(build.range.fxFromMonth) : "",
      groupedBalance(build),
  });
}

std::string addEnteredOpenings(const DetailBuild& build, int month) {
  return concatenated({
      "update " + build.main + " set  iItemQuantity=iItemQuantity+a.iQuantity,iItemPrice=iItemPrice+a.iPrice  from " +
          build.main + " temp inner join ",
      "(select Base_Item.iItemdetailID, sum(isnull(Base_Item.iItemInQuantity,0)-isnull(Base_Item.iItemoutQuantity,0)) as iquantity,sum(isnull(Base_Item.iItemInprice,0)-isnull(Base_Item.iItemoutprice,0)) as iprice,",
      "base.cinvcode,",
      placeCode(build),
      batchColumn,
      freeItemColumns(),
      "from IA_Subsidiary_QC Base left join IA_Subsidiary_QC_Item Base_Item on Base.AutoID=Base_Item.isubQCid ",
      inventoryJoin(build),
      "where Base.iYear=" + year(build),
      wh(build, " and cwhcode=N'" + build.warehouseCode + "'"),
      dept(build, " and cDepCode=N'" + build.departmentCode + "'"),
      " and Base.cinvCode=N'" + build.inventoryCode + "'",
      build.condition,
      "group by Base.cinvcode,Base_Item.iItemdetailID,",
      placeCode(build),
      groupedBatch,
      freeItems("", ""),
      ")a on a.cinvcode=temp.cinvcode ",
      sameBatchFreeItemsAndPlace(build),
      " and temp.iItemdetailID=a.iItemdetailID",
      balancesOf(build, month),
  });
}

// The inventory's own balance counts from the start of the year, also when cost items started later.
std::string setInventoryMonthBalances(const DetailBuild& build, int month) {
  return concatenated({
      setInventoryBalance(build),
      inventoryBalanceOf(build, untilEndOf(build, month)),
      ")a on a.cinvcode=temp.cinvcode ",
      sameBatchFreeItemsAndPlace(build),
      balancesOf(build, month),
  });
}

std::string setUnitCosts(const DetailBuild& build) {
  return "update " + build.main +
         " set iCost=case when isnull(iQuantity,0)=0 then null else iPrice/iQuantity end  where datatype in (0,2)";
}

// --- Numbering, voucher texts, result -------------------------------------------------------------------------------

namespace {

constexpr std::string_view reportColumns =
    "cWhCode,cWhName,cInvCode,cInvName,cInvAddCode,cInvStd,cUnitName,cVouDate,dKeepDate,cPZCode,cPZID,iPZID,cVouType,cVouCode,"
    "cPZdigest,bRdFlag,cBusCode,cVenCode,cVenName,cCusCode,cCusName,cItem_class,cItemCName,cAccounter,strContractCode,cproordercode,iproorderids,";

std::string amounts(const DetailBuild& build) {
  return concatenated(
      {quantity(build, "iQuantity", "iQuantity,"), unitCost(build, "iCost", "iCost,"), amount("iPrice", "iPrice,")});
}
std::string itemAmounts(const DetailBuild& build) {
  return concatenated({amount("iItemPrice", "iItemPrice,"), quantity(build, "iItemQuantity", "iItemQuantity,"),
                       unitCost(build, "iItemCost", "iItemCost,")});
}

}  // namespace

std::string numberRows(const DetailBuild& build) {
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
      "into " + build.second + " from " + build.main,
      // By month; opening balances, movements, month balances; then as the ledger was written.
      " order by curimonth,datatype,dKeepDate,isnull(bakid,id),id",
  });
}

std::string setLedgerVoucherTexts(const DetailBuild& build) {
  return "Update " + build.second +
         " set cPZCode=gl_AccVouch.csign + ' ' + Cast(gl_AccVouch.ino_id As nvarchar(10))  from  " + build.second +
         " temp inner join gl_AccVouch on gl_AccVouch.coutNo_ID=temp.cPzID";
}

std::string setVoucherTypeNames(const DetailBuild& build) {
  return concatenated({
      "Update " + build.second + " set cvoutype=AA_Enum.EnumName from  " + build.second +
          " temp inner join VouchType on temp.cvoutype=VouchType.cVouchType",
      lineBreak,
      "inner join AA_Enum on VouchType.cVouchName=AA_Enum.EnumCode where AA_Enum.EnumType ='IA.vchtype' and AA_Enum.LocaleId=DBO.UDF_GetLocaleID()",
  });
}

// Voucher type 3201 has no name of its own: it is a sales issue, as 32 is.
std::string nameSalesIssues(const DetailBuild& build) {
  return "update " + build.second +
         " set cvoutype=(select a.EnumName from  AA_Enum a inner join  VouchType b   on b.cVouchName=a.enumcode  where  a.EnumType ='IA.vchtype' and a.LocaleId=DBO.UDF_GetLocaleID()  and   b.cVouchtype='32') where cvoutype='3201' ";
}

std::string createResult(const DetailBuild& build) {
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
      "into " + build.resultTable + " from " + build.second + " temp",
  });
}

std::string shareRowNumbers(const DetailBuild& build) {
  return concatenated({
      "update " + build.resultTable + " set RowNo=base.RowNo from " + build.resultTable + " temp inner join ",
      lineBreak,
      "(select id,min(RowNo) as RowNo,datatype from " + build.resultTable + " group by id,datatype) base",
      lineBreak,
      "on base.id=temp.id and base.datatype=temp.datatype",
  });
}

std::string createEmptyResult(const DetailBuild& build) {
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
      "into " + build.resultTable + " from " + build.main + " temp",
  });
}

}  // namespace quillon::fx_detail
