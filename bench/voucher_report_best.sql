-- The rows of the voucher report (one year, with quantities and unit costs) by the shortest way: no work table, no
-- grouping of rows that are known to be single. It shows how much of the report's time is due to the form of its own
-- statements; nothing passes or fails by it.
create table bench_result as
select base.dVouDate, base.cVouCode, base.dKeepDate, base.cAccounter, base.cBusCode, base.strContractCode,
  base.cproordercode, base.iproorderids, base.cworkprocode, base.cworkcentercode, base.cworkcentername, base.cProCode,
  base.csaleordercode, base.isaleorderids, base.exoCode, base.iExRowno, base.centrustordercode, base.cpurordercode,
  base.cIMOrderCode, base.cDemandCode, base.cdemandmemo, base.cItem_Class, base.cItemCName as cItem_Classname,
  base.cItemCode, base.cName, base.iPzid, base.cPZdigest,
  ifnull(AA.EnumName, base.cBusType) as cBusType, base.cWhCode, Warehouse.cWhName,
  Customer.cCCCode, Customer.cCusName, Vendor.cVCCode, Vendor.cVenName, Department.cDepName, base.cHandler,
  base.cDefine1, base.cDefine2, base.cDefine3, base.cDefine4, base.cDefine5, base.cDefine6, base.cDefine7,
  base.cDefine8, base.cDefine9, base.cDefine10, base.cDefine11, base.cDefine12, base.cDefine13, base.cDefine14,
  base.cDefine15, base.cDefine16, base.cDefine22, base.cDefine23, base.cDefine24, base.cDefine25, base.cDefine26,
  base.cDefine27, base.cDefine28, base.cDefine29, base.cDefine30, base.cDefine31, base.cDefine32, base.cDefine33,
  base.cDefine34, base.cDefine35, base.cDefine36, base.cDefine37, CustomerClass.cCCName, base.cCusCode,
  VendorClass.cVCName, base.cVenCode, base.cAccDep, Inventory.cInvCCode, base.cInvCode, Inventory.cInvName,
  Inventory.cInvAddCode, base.cFree1, base.cFree2, base.cFree3, base.cFree4, base.cFree5, base.cFree6, base.cFree7,
  base.cFree8, base.cFree9, base.cFree10, Inventory.cInvStd, Unit1.cComUnitName, Unit2.cComUnitName as
  cAssComUnitName, Inventory.cInvDefine1, Inventory.cInvDefine2, Inventory.cInvDefine3, Inventory.cInvDefine4,
  Inventory.cInvDefine5, Inventory.cInvDefine6, Inventory.cInvDefine7, Inventory.cInvDefine8, Inventory.cInvDefine9,
  Inventory.cInvDefine10, Inventory.cInvDefine11, Inventory.cInvDefine12, Inventory.cInvDefine13,
  Inventory.cInvDefine14, Inventory.cInvDefine15, Inventory.cInvDefine16, base.cRdCode, Rd_Style.cRdName, base.cMemo,
  base.iAInQuantity, base.iInCost, base.iAInPrice, base.iAOutQuantity, base.iOutCost, base.iAOutPrice,
  Ca_FxClassDef.cFxCCode as cfxcCode, Ca_FxClassDef.cFxCName as cfxcName, Ca_Fxdef.cFxCode as cfxCode,
  Ca_Fxdef.cFxName as cfxName, Ca_AmoTypeName.cAmoTypeName as cAmoType, case when Ca_FxMapExpDID.cAmotype = 0 then
  Ca_FxMapExpDetails.cInvCode else Ca_FxMapExpDetails.cAmoID end as cAmoID, case when Ca_FxMapExpDID.cAmotype = 0 then
  inv.cInvName else Ca_CostExpDetail_Period.cAmoName end as cAmoName, base_Item.iItemInQuantity,
  cast(round(base_Item.iItemInPrice / 10000.0 / (nullif(base_Item.iItemInQuantity, 0) / 1000000.0) * 10000.0) as
  integer) as iIteminCost, base_Item.iItemInPrice as iIteminPrice, base_Item.iItemOutQuantity as iItemoutQuantity,
  cast(round(base_Item.iItemOutPrice / 10000.0 / (nullif(base_Item.iItemOutQuantity, 0) / 1000000.0) * 10000.0) as
  integer) as iItemoutCost, base_Item.iItemOutPrice, case when base.bRdFlag=1 then
  cast(round(nullif(base_Item.iItemInQuantity, 0) / 1000000.0 / (nullif(base.iAInQuantity, 0) / 1000000.0) * 100.0) as
  integer) else cast(round(nullif(base_Item.iItemOutQuantity, 0) / 1000000.0 / (nullif(base.iAOutQuantity, 0) /
  1000000.0) * 100.0) as integer) end as iUnitUsed, case when base.bRdFlag=1 then cast(round(base_Item.iItemInPrice /
  10000.0 / (nullif(base_Item.iItemInQuantity, 0) / 1000000.0) * 10000.0) as integer) else
  cast(round(base_Item.iItemOutPrice / 10000.0 / (nullif(base_Item.iItemOutQuantity, 0) / 1000000.0) * 10000.0) as
  integer) end as iUnitCost, base.cPzID, base.AutoID, base.cVouType, null as PzNoId, CAQ_CostCenterMap.cDeptID,
  CAQ_CostCenter.cDeptName as costDepName, base.cBatchia
from ia_subsidiary base
left join ia_subsidiary_Item base_Item on base_Item.iSubID = base.AutoID
left join Warehouse on base.cWhCode=Warehouse.cWhCode
left join Department on base.cAccDep=Department.cDepCode
left join CAQ_CostCenterMap on base.cAccDep=CAQ_CostCenterMap.cBusID
left join CAQ_CostCenter on CAQ_CostCenterMap.cDeptID=CAQ_CostCenter.cDeptID
left join Inventory on base.cInvCode=Inventory.cInvCode
left join ComputationUnit Unit1 on Inventory.cComUnitCode=Unit1.cComUnitCode
left join (select cGroupCode, min(cComUnitCode) as cComUnitCode from ComputationUnit where bMainUnit=0 group by
  cGroupCode) FirstUnit on Inventory.cGroupCode=FirstUnit.cGroupCode
left join ComputationUnit Unit2 on FirstUnit.cComUnitCode=Unit2.cComUnitCode
left join Vendor on base.cVenCode=Vendor.cVenCode
left join VendorClass on Vendor.cVCCode=VendorClass.cVCCode
left join Customer on base.cCusCode=Customer.cCusCode
left join CustomerClass on Customer.cCCCode=CustomerClass.cCCCode
left join Rd_Style on base.cRdCode=Rd_Style.cRdCode
left join Ca_Fxdef on base_Item.iItemID=Ca_Fxdef.iFxID
left join Ca_FxClassDef on Ca_Fxdef.cFxCID=Ca_FxClassDef.iFxCId
left join Ca_FxMapExpDID on base_Item.iItemDetailID=Ca_FxMapExpDID.iFxDID
left join Ca_FxMapExpDetails on base_Item.iItemDetailID=Ca_FxMapExpDetails.iFxDID and Ca_Fxdef.bHasDetails=1
left join Inventory inv on Ca_FxMapExpDetails.cInvCode=inv.cInvCode
left join Ca_CostExpDetail_Period on Ca_FxMapExpDetails.cAmoID=Ca_CostExpDetail_Period.cAmoID and
  Ca_FxMapExpDetails.cAmotype=Ca_CostExpDetail_Period.cAmoType and Ca_FxMapExpDetails.cInvCode is null and
  Ca_CostExpDetail_Period.iPeriod=base.iYear || case when length(base.iMonth) = 1 then '0' else '' end || base.iMonth
left join Ca_AmoTypeName on Ca_FxMapExpDID.cAmotype=Ca_AmoTypeName.cAmoType and Ca_AmoTypeName.localid='zh-CN'
left join AA_Enum AA on AA.EnumType = 'IA.BusType' and AA.EnumCode = base.cBusType and AA.LocaleId = 'zh-CN'
where base.cVouType not in ('33', '34') And base.dKeepDate >= cast(julianday('$year-01-01') - julianday('1900-01-01')
  as integer) * 25920000 And base.dKeepDate <= cast(julianday('$year-12-31') - julianday('1900-01-01') as integer) *
  25920000 And base.dKeepDate >= cast(julianday((select cValue from AccInformation where cSysID = 'IA' and cName =
  'dIAFirstDate')) - julianday('1900-01-01') as integer) * 25920000 And Not (base.cVouType = '20' And
  ifnull(base.IAInPrice, 0) = 0 And ifnull(base.iDebitDifCost, 0) = 0 And ifnull(base.iCreditDifCost, 0) = 0);
