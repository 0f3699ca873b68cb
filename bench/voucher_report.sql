-- The statements of the voucher report (one year, with quantities and unit costs), translated by hand into SQLite's SQL:
-- the report with the T-SQL front end is compared with these. $year is put in. Figures lie in the account as
-- scaled integers, quantities with 6 digits and amounts with 4; dates count 1/300 seconds from 1900 on. Quotients are
-- floats that become exact again; what lies next to a half rounds by SQLite's arithmetic here, so that these alone may
-- differ in the last digit.

Select cValue
From AccInformation
Where cSysID = 'IA' And cName = 'dIAFirstDate';
Select cValue
From AccInformation
Where cSysID = 'AA' And cName = 'iStrsQuanDecDgt';
Select cValue
From AccInformation
Where cSysID = 'AA' And cName = 'iStrsPriDecDgt';

drop table if exists bench_detail;
create table bench_detail(
  dVouDate INTEGER, cVouCode TEXT COLLATE Chinese_PRC_CI_AS, dKeepDate INTEGER, cAccounter TEXT COLLATE
  Chinese_PRC_CI_AS, cBusCode TEXT COLLATE Chinese_PRC_CI_AS, strContractCode TEXT COLLATE Chinese_PRC_CI_AS,
  cproordercode TEXT COLLATE Chinese_PRC_CI_AS, iproorderids INTEGER, cworkprocode TEXT COLLATE Chinese_PRC_CI_AS,
  cworkcentercode TEXT COLLATE Chinese_PRC_CI_AS, cworkcentername TEXT COLLATE Chinese_PRC_CI_AS, cProCode TEXT
  COLLATE Chinese_PRC_CI_AS, csaleordercode TEXT COLLATE Chinese_PRC_CI_AS, isaleorderids INTEGER, exoCode TEXT
  COLLATE Chinese_PRC_CI_AS, iExRowno INTEGER, centrustordercode TEXT COLLATE Chinese_PRC_CI_AS, cpurordercode TEXT
  COLLATE Chinese_PRC_CI_AS, cIMOrderCode TEXT COLLATE Chinese_PRC_CI_AS, cDemandCode TEXT COLLATE
  Chinese_PRC_CI_AS, cdemandmemo TEXT COLLATE Chinese_PRC_CI_AS, cItem_Class TEXT COLLATE Chinese_PRC_CI_AS,
  cItem_Classname TEXT COLLATE Chinese_PRC_CI_AS, cItemCode TEXT COLLATE Chinese_PRC_CI_AS, cName TEXT COLLATE
  Chinese_PRC_CI_AS, iPzid INTEGER, cPZdigest TEXT COLLATE Chinese_PRC_CI_AS, cBusType TEXT COLLATE
  Chinese_PRC_CI_AS, cWhCode TEXT COLLATE Chinese_PRC_CI_AS, cWhName TEXT COLLATE Chinese_PRC_CI_AS, cCCCode TEXT
  COLLATE Chinese_PRC_CI_AS, cCusName TEXT COLLATE Chinese_PRC_CI_AS, cVCCode TEXT COLLATE Chinese_PRC_CI_AS,
  cVenName TEXT COLLATE Chinese_PRC_CI_AS, cDepName TEXT COLLATE Chinese_PRC_CI_AS, cHandler TEXT COLLATE
  Chinese_PRC_CI_AS, cDefine1 TEXT COLLATE Chinese_PRC_CI_AS, cDefine2 TEXT COLLATE Chinese_PRC_CI_AS, cDefine3 TEXT
  COLLATE Chinese_PRC_CI_AS, cDefine4 INTEGER, cDefine5 INTEGER, cDefine6 INTEGER, cDefine7 REAL, cDefine8 TEXT
  COLLATE Chinese_PRC_CI_AS, cDefine9 TEXT COLLATE Chinese_PRC_CI_AS, cDefine10 TEXT COLLATE Chinese_PRC_CI_AS,
  cDefine11 TEXT COLLATE Chinese_PRC_CI_AS, cDefine12 TEXT COLLATE Chinese_PRC_CI_AS, cDefine13 TEXT COLLATE
  Chinese_PRC_CI_AS, cDefine14 TEXT COLLATE Chinese_PRC_CI_AS, cDefine15 INTEGER, cDefine16 INTEGER, cDefine22 TEXT
  COLLATE Chinese_PRC_CI_AS, cDefine23 TEXT COLLATE Chinese_PRC_CI_AS, cDefine24 TEXT COLLATE Chinese_PRC_CI_AS,
  cDefine25 TEXT COLLATE Chinese_PRC_CI_AS, cDefine26 REAL, cDefine27 REAL, cDefine28 TEXT COLLATE
  Chinese_PRC_CI_AS, cDefine29 TEXT COLLATE Chinese_PRC_CI_AS, cDefine30 TEXT COLLATE Chinese_PRC_CI_AS, cDefine31
  TEXT COLLATE Chinese_PRC_CI_AS, cDefine32 TEXT COLLATE Chinese_PRC_CI_AS, cDefine33 TEXT COLLATE
  Chinese_PRC_CI_AS, cDefine34 INTEGER, cDefine35 INTEGER, cDefine36 INTEGER, cDefine37 INTEGER, cCCName TEXT
  COLLATE Chinese_PRC_CI_AS, cCusCode TEXT COLLATE Chinese_PRC_CI_AS, cVCName TEXT COLLATE Chinese_PRC_CI_AS,
  cVenCode TEXT COLLATE Chinese_PRC_CI_AS, cAccDep TEXT COLLATE Chinese_PRC_CI_AS, cInvCCode TEXT COLLATE
  Chinese_PRC_CI_AS, cInvCode TEXT COLLATE Chinese_PRC_CI_AS, cInvName TEXT COLLATE Chinese_PRC_CI_AS, cInvAddCode
  TEXT COLLATE Chinese_PRC_CI_AS, cFree1 TEXT COLLATE Chinese_PRC_CI_AS, cFree2 TEXT COLLATE Chinese_PRC_CI_AS,
  cFree3 TEXT COLLATE Chinese_PRC_CI_AS, cFree4 TEXT COLLATE Chinese_PRC_CI_AS, cFree5 TEXT COLLATE
  Chinese_PRC_CI_AS, cFree6 TEXT COLLATE Chinese_PRC_CI_AS, cFree7 TEXT COLLATE Chinese_PRC_CI_AS, cFree8 TEXT
  COLLATE Chinese_PRC_CI_AS, cFree9 TEXT COLLATE Chinese_PRC_CI_AS, cFree10 TEXT COLLATE Chinese_PRC_CI_AS, cInvStd
  TEXT COLLATE Chinese_PRC_CI_AS, cComUnitName TEXT COLLATE Chinese_PRC_CI_AS, cAssComUnitName TEXT COLLATE
  Chinese_PRC_CI_AS, cInvDefine1 TEXT COLLATE Chinese_PRC_CI_AS, cInvDefine2 TEXT COLLATE Chinese_PRC_CI_AS,
  cInvDefine3 TEXT COLLATE Chinese_PRC_CI_AS, cInvDefine4 TEXT COLLATE Chinese_PRC_CI_AS, cInvDefine5 TEXT COLLATE
  Chinese_PRC_CI_AS, cInvDefine6 TEXT COLLATE Chinese_PRC_CI_AS, cInvDefine7 TEXT COLLATE Chinese_PRC_CI_AS,
  cInvDefine8 TEXT COLLATE Chinese_PRC_CI_AS, cInvDefine9 TEXT COLLATE Chinese_PRC_CI_AS, cInvDefine10 TEXT COLLATE
  Chinese_PRC_CI_AS, cInvDefine11 INTEGER, cInvDefine12 INTEGER, cInvDefine13 REAL, cInvDefine14 REAL, cInvDefine15
  INTEGER, cInvDefine16 INTEGER, cRdCode TEXT COLLATE Chinese_PRC_CI_AS, cRdName TEXT COLLATE Chinese_PRC_CI_AS,
  cMemo TEXT COLLATE Chinese_PRC_CI_AS, iAInQuantity ANY, iInCost ANY, iAInPrice INTEGER, iAOutQuantity ANY,
  iOutCost ANY, iAOutPrice INTEGER, cfxcCode TEXT COLLATE Chinese_PRC_CI_AS, cfxcName TEXT COLLATE
  Chinese_PRC_CI_AS, cfxCode TEXT COLLATE Chinese_PRC_CI_AS, cfxName TEXT COLLATE Chinese_PRC_CI_AS, cAmoType TEXT
  COLLATE Chinese_PRC_CI_AS, cAmoID TEXT COLLATE Chinese_PRC_CI_AS, cAmoName TEXT COLLATE Chinese_PRC_CI_AS,
  iItemInQuantity ANY, iIteminCost ANY, iIteminPrice INTEGER, iItemoutQuantity ANY, iItemoutCost ANY, iItemOutPrice
  INTEGER, iUnitUsed ANY, iUnitCost ANY, cPzID TEXT COLLATE Chinese_PRC_CI_AS, AutoID INTEGER NOT NULL, cVouType
  TEXT COLLATE Chinese_PRC_CI_AS NOT NULL, PzNoId TEXT COLLATE Chinese_PRC_CI_AS, cDeptID TEXT COLLATE
  Chinese_PRC_CI_AS, costDepName TEXT COLLATE Chinese_PRC_CI_AS, cBatchia TEXT COLLATE Chinese_PRC_CI_AS) STRICT;

create table bench_result(
  dVouDate INTEGER, cVouCode TEXT COLLATE Chinese_PRC_CI_AS, dKeepDate INTEGER, cAccounter TEXT COLLATE
  Chinese_PRC_CI_AS, cBusCode TEXT COLLATE Chinese_PRC_CI_AS, strContractCode TEXT COLLATE Chinese_PRC_CI_AS,
  cproordercode TEXT COLLATE Chinese_PRC_CI_AS, iproorderids INTEGER, cworkprocode TEXT COLLATE Chinese_PRC_CI_AS,
  cworkcentercode TEXT COLLATE Chinese_PRC_CI_AS, cworkcentername TEXT COLLATE Chinese_PRC_CI_AS, cProCode TEXT
  COLLATE Chinese_PRC_CI_AS, csaleordercode TEXT COLLATE Chinese_PRC_CI_AS, isaleorderids INTEGER, exoCode TEXT
  COLLATE Chinese_PRC_CI_AS, iExRowno INTEGER, centrustordercode TEXT COLLATE Chinese_PRC_CI_AS, cpurordercode TEXT
  COLLATE Chinese_PRC_CI_AS, cIMOrderCode TEXT COLLATE Chinese_PRC_CI_AS, cDemandCode TEXT COLLATE
  Chinese_PRC_CI_AS, cdemandmemo TEXT COLLATE Chinese_PRC_CI_AS, cItem_Class TEXT COLLATE Chinese_PRC_CI_AS,
  cItem_Classname TEXT COLLATE Chinese_PRC_CI_AS, cItemCode TEXT COLLATE Chinese_PRC_CI_AS, cName TEXT COLLATE
  Chinese_PRC_CI_AS, iPzid INTEGER, cPZdigest TEXT COLLATE Chinese_PRC_CI_AS, cBusType TEXT COLLATE
  Chinese_PRC_CI_AS, cWhCode TEXT COLLATE Chinese_PRC_CI_AS, cWhName TEXT COLLATE Chinese_PRC_CI_AS, cCCCode TEXT
  COLLATE Chinese_PRC_CI_AS, cCusName TEXT COLLATE Chinese_PRC_CI_AS, cVCCode TEXT COLLATE Chinese_PRC_CI_AS,
  cVenName TEXT COLLATE Chinese_PRC_CI_AS, cDepName TEXT COLLATE Chinese_PRC_CI_AS, cHandler TEXT COLLATE
  Chinese_PRC_CI_AS, cDefine1 TEXT COLLATE Chinese_PRC_CI_AS, cDefine2 TEXT COLLATE Chinese_PRC_CI_AS, cDefine3 TEXT
  COLLATE Chinese_PRC_CI_AS, cDefine4 INTEGER, cDefine5 INTEGER, cDefine6 INTEGER, cDefine7 REAL, cDefine8 TEXT
  COLLATE Chinese_PRC_CI_AS, cDefine9 TEXT COLLATE Chinese_PRC_CI_AS, cDefine10 TEXT COLLATE Chinese_PRC_CI_AS,
  cDefine11 TEXT COLLATE Chinese_PRC_CI_AS, cDefine12 TEXT COLLATE Chinese_PRC_CI_AS, cDefine13 TEXT COLLATE
  Chinese_PRC_CI_AS, cDefine14 TEXT COLLATE Chinese_PRC_CI_AS, cDefine15 INTEGER, cDefine16 INTEGER, cDefine22 TEXT
  COLLATE Chinese_PRC_CI_AS, cDefine23 TEXT COLLATE Chinese_PRC_CI_AS, cDefine24 TEXT COLLATE Chinese_PRC_CI_AS,
  cDefine25 TEXT COLLATE Chinese_PRC_CI_AS, cDefine26 REAL, cDefine27 REAL, cDefine28 TEXT COLLATE
  Chinese_PRC_CI_AS, cDefine29 TEXT COLLATE Chinese_PRC_CI_AS, cDefine30 TEXT COLLATE Chinese_PRC_CI_AS, cDefine31
  TEXT COLLATE Chinese_PRC_CI_AS, cDefine32 TEXT COLLATE Chinese_PRC_CI_AS, cDefine33 TEXT COLLATE
  Chinese_PRC_CI_AS, cDefine34 INTEGER, cDefine35 INTEGER, cDefine36 INTEGER, cDefine37 INTEGER, cCCName TEXT
  COLLATE Chinese_PRC_CI_AS, cCusCode TEXT COLLATE Chinese_PRC_CI_AS, cVCName TEXT COLLATE Chinese_PRC_CI_AS,
  cVenCode TEXT COLLATE Chinese_PRC_CI_AS, cAccDep TEXT COLLATE Chinese_PRC_CI_AS, cInvCCode TEXT COLLATE
  Chinese_PRC_CI_AS, cInvCode TEXT COLLATE Chinese_PRC_CI_AS, cInvName TEXT COLLATE Chinese_PRC_CI_AS, cInvAddCode
  TEXT COLLATE Chinese_PRC_CI_AS, cFree1 TEXT COLLATE Chinese_PRC_CI_AS, cFree2 TEXT COLLATE Chinese_PRC_CI_AS,
  cFree3 TEXT COLLATE Chinese_PRC_CI_AS, cFree4 TEXT COLLATE Chinese_PRC_CI_AS, cFree5 TEXT COLLATE
  Chinese_PRC_CI_AS, cFree6 TEXT COLLATE Chinese_PRC_CI_AS, cFree7 TEXT COLLATE Chinese_PRC_CI_AS, cFree8 TEXT
  COLLATE Chinese_PRC_CI_AS, cFree9 TEXT COLLATE Chinese_PRC_CI_AS, cFree10 TEXT COLLATE Chinese_PRC_CI_AS, cInvStd
  TEXT COLLATE Chinese_PRC_CI_AS, cComUnitName TEXT COLLATE Chinese_PRC_CI_AS, cAssComUnitName TEXT COLLATE
  Chinese_PRC_CI_AS, cInvDefine1 TEXT COLLATE Chinese_PRC_CI_AS, cInvDefine2 TEXT COLLATE Chinese_PRC_CI_AS,
  cInvDefine3 TEXT COLLATE Chinese_PRC_CI_AS, cInvDefine4 TEXT COLLATE Chinese_PRC_CI_AS, cInvDefine5 TEXT COLLATE
  Chinese_PRC_CI_AS, cInvDefine6 TEXT COLLATE Chinese_PRC_CI_AS, cInvDefine7 TEXT COLLATE Chinese_PRC_CI_AS,
  cInvDefine8 TEXT COLLATE Chinese_PRC_CI_AS, cInvDefine9 TEXT COLLATE Chinese_PRC_CI_AS, cInvDefine10 TEXT COLLATE
  Chinese_PRC_CI_AS, cInvDefine11 INTEGER, cInvDefine12 INTEGER, cInvDefine13 REAL, cInvDefine14 REAL, cInvDefine15
  INTEGER, cInvDefine16 INTEGER, cRdCode TEXT COLLATE Chinese_PRC_CI_AS, cRdName TEXT COLLATE Chinese_PRC_CI_AS,
  cMemo TEXT COLLATE Chinese_PRC_CI_AS, iAInQuantity ANY, iInCost ANY, iAInPrice INTEGER, iAOutQuantity ANY,
  iOutCost ANY, iAOutPrice INTEGER, cfxcCode TEXT COLLATE Chinese_PRC_CI_AS, cfxcName TEXT COLLATE
  Chinese_PRC_CI_AS, cfxCode TEXT COLLATE Chinese_PRC_CI_AS, cfxName TEXT COLLATE Chinese_PRC_CI_AS, cAmoType TEXT
  COLLATE Chinese_PRC_CI_AS, cAmoID TEXT COLLATE Chinese_PRC_CI_AS, cAmoName TEXT COLLATE Chinese_PRC_CI_AS,
  iItemInQuantity ANY, iIteminCost ANY, iIteminPrice INTEGER, iItemoutQuantity ANY, iItemoutCost ANY, iItemOutPrice
  INTEGER, iUnitUsed ANY, iUnitCost ANY, cPzID TEXT COLLATE Chinese_PRC_CI_AS, AutoID INTEGER NOT NULL, cVouType
  TEXT COLLATE Chinese_PRC_CI_AS NOT NULL, PzNoId TEXT COLLATE Chinese_PRC_CI_AS, cDeptID TEXT COLLATE
  Chinese_PRC_CI_AS, costDepName TEXT COLLATE Chinese_PRC_CI_AS, cBatchia TEXT COLLATE Chinese_PRC_CI_AS) STRICT;

Select cValue
From AccInformation
Where cSysID = 'IA' And cName = 'bZYXS';

insert into bench_detail (dVouDate, cVouCode, dKeepDate, cAccounter, cBusCode, strContractCode, cproordercode,
  iproorderids, cworkprocode, cworkcentercode, cworkcentername, cProCode, csaleordercode, isaleorderids, exoCode,
  iExRowno, centrustordercode, cpurordercode, cIMOrderCode, cDemandCode, cdemandmemo, cItem_Class, cItem_Classname,
  cItemCode, cName, iPzid, cPZdigest, cBusType, cWhCode, cWhName, cCCCode, cCusName, cVCCode, cVenName, cDepName,
  cHandler, cDefine1, cDefine2, cDefine3, cDefine4, cDefine5, cDefine6, cDefine7, cDefine8, cDefine9, cDefine10,
  cDefine11, cDefine12, cDefine13, cDefine14, cDefine15, cDefine16, cDefine22, cDefine23, cDefine24, cDefine25,
  cDefine26, cDefine27, cDefine28, cDefine29, cDefine30, cDefine31, cDefine32, cDefine33, cDefine34, cDefine35,
  cDefine36, cDefine37, cCCName, cCusCode, cVCName, cVenCode, cAccDep, cInvCCode, cInvCode, cInvName, cInvAddCode,
  cFree1, cFree2, cFree3, cFree4, cFree5, cFree6, cFree7, cFree8, cFree9, cFree10, cInvStd, cComUnitName,
  cAssComUnitName, cInvDefine1, cInvDefine2, cInvDefine3, cInvDefine4, cInvDefine5, cInvDefine6, cInvDefine7,
  cInvDefine8, cInvDefine9, cInvDefine10, cInvDefine11, cInvDefine12, cInvDefine13, cInvDefine14, cInvDefine15,
  cInvDefine16, cRdCode, cRdName, cMemo, iAInQuantity, iInCost, iAInPrice, iAOutQuantity, iOutCost, iAOutPrice,
  cfxcCode, cfxcName, cfxCode, cfxName, cAmoType, cAmoID, cAmoName, iItemInQuantity, iIteminCost, iIteminPrice,
  iItemoutQuantity, iItemoutCost, iItemOutPrice, iUnitUsed, iUnitCost, cPzID, AutoID, cVouType, PzNoId, cDeptID,
  costDepName, cBatchia)
select base.dVouDate, base.cVouCode, base.dKeepDate, base.cAccounter, base.cBusCode, base.strContractCode,
  base.cproordercode, base.iproorderids, base.cworkprocode, base.cworkcentercode, base.cworkcentername, base.cProCode,
  base.csaleordercode, base.isaleorderids, base.exoCode, base.iExRowno, base.centrustordercode, base.cpurordercode,
  base.cIMOrderCode, base.cDemandCode, base.cdemandmemo, base.cItem_Class, base.cItemCName as cItem_Classname,
  base.cItemCode, base.cName, base.iPzid, base.cPZdigest, base.cBusType as cBusType, base.cWhCode, Warehouse.cWhName,
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
left join (
  select iItemDetailID, iItemID, iSubID, SUM(iItemInQuantity) iItemInQuantity, SUM(iItemInPrice) iItemInPrice,
  SUM(iItemOutPrice) iItemOutPrice, SUM(iItemOutQuantity) iItemOutQuantity, bRdFlag, iMonth, iYear, iItemInCost,
  iItemOutCost from ia_subsidiary_Item group by iItemDetailID, iItemID, iSubID, bRdFlag, iMonth, iYear, iItemInCost,
  iItemOutCost) base_Item on base_Item.isubid=base.autoid
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
where base.cVouType not in ('33', '34') And base.dKeepDate >= cast(julianday('$year-01-01') - julianday('1900-01-01')
  as integer) * 25920000 And base.dKeepDate <= cast(julianday('$year-12-31') - julianday('1900-01-01') as integer) *
  25920000 And base.dKeepDate >= cast(julianday((select cValue from AccInformation where cSysID = 'IA' and cName =
  'dIAFirstDate')) - julianday('1900-01-01') as integer) * 25920000 And Not (base.cVouType = '20' And
  ifnull(base.IAInPrice, 0) = 0 And ifnull(base.iDebitDifCost, 0) = 0 And ifnull(base.iCreditDifCost, 0) = 0)
order by ifnull(base.BakID, base.AutoID);

update bench_detail set cBusType = AA.EnumName
from AA_Enum AA
where bench_detail.cBusType = AA.EnumCode and AA.EnumType = 'IA.BusType' and AA.LocaleId = 'zh-CN';

insert into bench_result
select dVouDate, cVouCode, dKeepDate, cAccounter, cBusCode, strContractCode, cproordercode, iproorderids,
  cworkprocode, cworkcentercode, cworkcentername, cProCode, csaleordercode, isaleorderids, exoCode, iExRowno,
  centrustordercode, cpurordercode, cIMOrderCode, cDemandCode, cdemandmemo, cItem_Class, cItem_Classname, cItemCode,
  cName, iPzid, cPZdigest, cBusType, cWhCode, cWhName, cCCCode, cCusName, cVCCode, cVenName, cDepName, cHandler,
  cDefine1, cDefine2, cDefine3, cDefine4, cDefine5, cDefine6, cDefine7, cDefine8, cDefine9, cDefine10, cDefine11,
  cDefine12, cDefine13, cDefine14, cDefine15, cDefine16, cDefine22, cDefine23, cDefine24, cDefine25, cDefine26,
  cDefine27, cDefine28, cDefine29, cDefine30, cDefine31, cDefine32, cDefine33, cDefine34, cDefine35, cDefine36,
  cDefine37, cCCName, cCusCode, cVCName, cVenCode, cAccDep, cInvCCode, cInvCode, cInvName, cInvAddCode, cFree1,
  cFree2, cFree3, cFree4, cFree5, cFree6, cFree7, cFree8, cFree9, cFree10, cInvStd, cComUnitName, cAssComUnitName,
  cInvDefine1, cInvDefine2, cInvDefine3, cInvDefine4, cInvDefine5, cInvDefine6, cInvDefine7, cInvDefine8, cInvDefine9,
  cInvDefine10, cInvDefine11, cInvDefine12, cInvDefine13, cInvDefine14, cInvDefine15, cInvDefine16, cRdCode, cRdName,
  cMemo, Sum(iAInQuantity) as iAInQuantity, sum(iInCost) as iInCost, sum(iAInPrice) as iAInPrice, sum(iAOutQuantity)
  as iAOutQuantity, sum(iOutCost) as iOutCost, sum(iAOutPrice) as iAOutPrice, cfxcCode, cfxcName, cfxCode, cfxName,
  cAmoType, cAmoID, cAmoName, sum(iItemInQuantity) as iItemInQuantity, sum(iIteminCost) as iIteminCost,
  sum(iIteminPrice) as iIteminPrice, sum(iItemoutQuantity) as iItemoutQuantity, sum(iItemoutCost) as iItemoutCost,
  sum(iItemOutPrice) as iItemOutPrice, sum(iUnitUsed) as iUnitUsed, sum(iUnitCost) as iUnitCost, cPzID, AutoID,
  cVouType, PzNoId, cDeptID, costDepName, cBatchia
from bench_detail
group by dVouDate, cVouCode, dKeepDate, cAccounter, cBusCode, strContractCode, cproordercode, iproorderids,
  cworkprocode, cworkcentercode, cworkcentername, cProCode, csaleordercode, isaleorderids, exoCode, iExRowno,
  centrustordercode, cpurordercode, cIMOrderCode, cDemandCode, cdemandmemo, cItem_Class, cItem_Classname, cItemCode,
  cName, iPzid, cPZdigest, cBusType, cWhCode, cWhName, cCCCode, cCusName, cVCCode, cVenName, cDepName, cHandler,
  cDefine1, cDefine2, cDefine3, cDefine4, cDefine5, cDefine6, cDefine7, cDefine8, cDefine9, cDefine10, cDefine11,
  cDefine12, cDefine13, cDefine14, cDefine15, cDefine16, cDefine22, cDefine23, cDefine24, cDefine25, cDefine26,
  cDefine27, cDefine28, cDefine29, cDefine30, cDefine31, cDefine32, cDefine33, cDefine34, cDefine35, cDefine36,
  cDefine37, cCCName, cCusCode, cVCName, cVenCode, cAccDep, cInvCCode, cInvCode, cInvName, cInvAddCode, cFree1,
  cFree2, cFree3, cFree4, cFree5, cFree6, cFree7, cFree8, cFree9, cFree10, cInvStd, cComUnitName, cAssComUnitName,
  cInvDefine1, cInvDefine2, cInvDefine3, cInvDefine4, cInvDefine5, cInvDefine6, cInvDefine7, cInvDefine8, cInvDefine9,
  cInvDefine10, cInvDefine11, cInvDefine12, cInvDefine13, cInvDefine14, cInvDefine15, cInvDefine16, cRdCode, cRdName,
  cMemo, cfxcCode, cfxcName, cfxCode, cfxName, cAmoType, cAmoID, cAmoName, cPzID, AutoID, cVouType, PzNoId, cDeptID,
  costDepName, cBatchia;

drop table if exists bench_detail;
