-- The statements of the detail ledger (one inventory in one warehouse, a whole year, openings from the ledger),
-- translated by hand into SQLite's SQL: the report with the T-SQL front end is compared with these. $year,
-- $inventory and $warehouse are put in; what stands between "for each month" and "end" is run for $month 1 to 12.
-- Figures lie in the account as scaled integers: quantities and unit costs with 6 digits, amounts with 4. Dates count
-- 1/300 seconds from 1900 on. Texts that are put together compare as the account's columns do.

Select cValue From AccInformation Where cSysID = 'AA' And cName = 'iStrsQuanDecDgt';
Select cValue From AccInformation Where cSysID = 'AA' And cName = 'iStrsPriDecDgt';

drop table if exists temp.bench_work;
create temp table bench_work(
  id INTEGER, BakID INTEGER, cDepCode TEXT COLLATE Chinese_PRC_CI_AS, cDepName TEXT COLLATE Chinese_PRC_CI_AS, cWhCode
  TEXT COLLATE Chinese_PRC_CI_AS, cWhName TEXT COLLATE Chinese_PRC_CI_AS, cInvCode TEXT COLLATE Chinese_PRC_CI_AS,
  cInvName TEXT COLLATE Chinese_PRC_CI_AS, cInvAddCode TEXT COLLATE Chinese_PRC_CI_AS, cInvStd TEXT COLLATE
  Chinese_PRC_CI_AS, cUnitName TEXT COLLATE Chinese_PRC_CI_AS, cVouDate INTEGER, dKeepDate INTEGER, cPZCode TEXT
  COLLATE Chinese_PRC_CI_AS, cPZID TEXT COLLATE Chinese_PRC_CI_AS, iPZID INTEGER, cVouType TEXT COLLATE
  Chinese_PRC_CI_AS, cVouCode TEXT COLLATE Chinese_PRC_CI_AS, cPZdigest TEXT COLLATE Chinese_PRC_CI_AS, bRdFlag TEXT
  COLLATE Chinese_PRC_CI_AS, cBusCode TEXT COLLATE Chinese_PRC_CI_AS, cVenCode TEXT COLLATE Chinese_PRC_CI_AS,
  cVenName TEXT COLLATE Chinese_PRC_CI_AS, cCusCode TEXT COLLATE Chinese_PRC_CI_AS, cCusName TEXT COLLATE
  Chinese_PRC_CI_AS, cItem_class TEXT COLLATE Chinese_PRC_CI_AS, cItemCName TEXT COLLATE Chinese_PRC_CI_AS, cAccounter
  TEXT COLLATE Chinese_PRC_CI_AS, strContractCode TEXT COLLATE Chinese_PRC_CI_AS, cproordercode TEXT COLLATE
  Chinese_PRC_CI_AS, iproorderids INTEGER, cworkprocodedis TEXT COLLATE Chinese_PRC_CI_AS, cworkcentercode TEXT
  COLLATE Chinese_PRC_CI_AS, csaleordercode TEXT COLLATE Chinese_PRC_CI_AS, isaleorderids INTEGER, exoCode TEXT
  COLLATE Chinese_PRC_CI_AS, iExRowno INTEGER, centrustordercode TEXT COLLATE Chinese_PRC_CI_AS, cOrderCode TEXT
  COLLATE Chinese_PRC_CI_AS, cDefine1 TEXT COLLATE Chinese_PRC_CI_AS, cDefine2 TEXT COLLATE Chinese_PRC_CI_AS,
  cDefine3 TEXT COLLATE Chinese_PRC_CI_AS, cDefine4 INTEGER, cDefine5 INTEGER, cDefine6 INTEGER, cDefine7 REAL,
  cDefine8 TEXT COLLATE Chinese_PRC_CI_AS, cDefine9 TEXT COLLATE Chinese_PRC_CI_AS, cDefine10 TEXT COLLATE
  Chinese_PRC_CI_AS, cDefine11 TEXT COLLATE Chinese_PRC_CI_AS, cDefine12 TEXT COLLATE Chinese_PRC_CI_AS, cDefine13
  TEXT COLLATE Chinese_PRC_CI_AS, cDefine14 TEXT COLLATE Chinese_PRC_CI_AS, cDefine15 INTEGER, cDefine16 INTEGER,
  cDefine22 TEXT COLLATE Chinese_PRC_CI_AS, cDefine23 TEXT COLLATE Chinese_PRC_CI_AS, cDefine24 TEXT COLLATE
  Chinese_PRC_CI_AS, cDefine25 TEXT COLLATE Chinese_PRC_CI_AS, cDefine26 REAL, cDefine27 REAL, cDefine28 TEXT COLLATE
  Chinese_PRC_CI_AS, cDefine29 TEXT COLLATE Chinese_PRC_CI_AS, cDefine30 TEXT COLLATE Chinese_PRC_CI_AS, cDefine31
  TEXT COLLATE Chinese_PRC_CI_AS, cDefine32 TEXT COLLATE Chinese_PRC_CI_AS, cDefine33 TEXT COLLATE Chinese_PRC_CI_AS,
  cDefine34 INTEGER, cDefine35 INTEGER, cDefine36 INTEGER, cDefine37 INTEGER, cInvDefine1 TEXT COLLATE
  Chinese_PRC_CI_AS, cInvDefine2 TEXT COLLATE Chinese_PRC_CI_AS, cInvDefine3 TEXT COLLATE Chinese_PRC_CI_AS,
  cInvDefine4 TEXT COLLATE Chinese_PRC_CI_AS, cInvDefine5 TEXT COLLATE Chinese_PRC_CI_AS, cInvDefine6 TEXT COLLATE
  Chinese_PRC_CI_AS, cInvDefine7 TEXT COLLATE Chinese_PRC_CI_AS, cInvDefine8 TEXT COLLATE Chinese_PRC_CI_AS,
  cInvDefine9 TEXT COLLATE Chinese_PRC_CI_AS, cInvDefine10 TEXT COLLATE Chinese_PRC_CI_AS, cInvDefine11 INTEGER,
  cInvDefine12 INTEGER, cInvDefine13 REAL, cInvDefine14 REAL, cInvDefine15 INTEGER, cInvDefine16 INTEGER, cBatchIA
  TEXT COLLATE Chinese_PRC_CI_AS, cFree1 TEXT COLLATE Chinese_PRC_CI_AS, cFree2 TEXT COLLATE Chinese_PRC_CI_AS, cFree3
  TEXT COLLATE Chinese_PRC_CI_AS, cFree4 TEXT COLLATE Chinese_PRC_CI_AS, cFree5 TEXT COLLATE Chinese_PRC_CI_AS, cFree6
  TEXT COLLATE Chinese_PRC_CI_AS, cFree7 TEXT COLLATE Chinese_PRC_CI_AS, cFree8 TEXT COLLATE Chinese_PRC_CI_AS, cFree9
  TEXT COLLATE Chinese_PRC_CI_AS, cFree10 TEXT COLLATE Chinese_PRC_CI_AS, iQuantity INTEGER, iCost INTEGER, iPrice
  INTEGER, cfxName TEXT COLLATE Chinese_PRC_CI_AS, cfxCName TEXT COLLATE Chinese_PRC_CI_AS, cfxCode TEXT COLLATE
  Chinese_PRC_CI_AS, cfxCCode TEXT COLLATE Chinese_PRC_CI_AS, iItemDetailID INTEGER, iItemPrice INTEGER, iItemQuantity
  INTEGER, iItemCost INTEGER, Datatype INTEGER, curimonth INTEGER, cItemCode TEXT COLLATE Chinese_PRC_CI_AS, cName
  TEXT COLLATE Chinese_PRC_CI_AS, cBusType TEXT COLLATE Chinese_PRC_CI_AS) STRICT;

select bCheckBatch, bCheckFree1, bCheckFree2, bCheckFree3, bCheckFree4, bCheckFree5, bCheckFree6, bCheckFree7,
  bCheckFree8, bCheckFree9, bCheckFree10 from Inventory where cInvCode = '$inventory';
Select cValue From AccInformation Where cSysID = 'CA' And cID = '11002';
Select bSettled From IA_PeriodState Where iYear = $year And iMonth = 0;
Select cValue From AccInformation Where cSysID = 'IA' And cName = 'dIAStartDate';
Select dBegin, dEnd From "orvsystem..UA_Period" Where cAcc_Id = '001' And iYear = $year And iId = 1;
Select dBegin, dEnd From "orvsystem..UA_Period" Where cAcc_Id = '001' And iYear = $year And iId = 12;
-- for each month
Select bSettled From IA_PeriodState Where iYear = $year And iMonth = $month;
-- end

insert into bench_work(
  cfxName, cfxCName, cfxCode, cfxCCode, iItemDetailID, iItemQuantity, iItemPrice, cPZdigest, Datatype, curimonth, id,
  cInvCode, cWhCode, cWhName, cBatchIA, cFree1, cFree2, cFree3, cFree4, cFree5, cFree6, cFree7, cFree8, cFree9,
  cFree10)
select Ca_Fxdef.cfxName, Ca_FxClassDef.cfxCName, Ca_Fxdef.cfxCode, Ca_FxClassDef.cfxCCode, item.iItemDetailID,
  sum(ifnull(item.iItemInQuantity, 0) - ifnull(item.iItemOutQuantity, 0)),
  sum(ifnull(item.iItemInPrice, 0) - ifnull(item.iItemOutPrice, 0)), '期初结存', 0, 0, 0, base.cInvCode,
  base.cWhCode, cWhName,
  case when ifnull(inv.bCheckBatch, 0) = 1 then ifnull(base.cBatchIA, '') else '' end,
  case when ifnull(inv.bCheckFree1, 0) = 1 then ifnull(base.cFree1, '') else '' end,
  case when ifnull(inv.bCheckFree2, 0) = 1 then ifnull(base.cFree2, '') else '' end,
  case when ifnull(inv.bCheckFree3, 0) = 1 then ifnull(base.cFree3, '') else '' end,
  case when ifnull(inv.bCheckFree4, 0) = 1 then ifnull(base.cFree4, '') else '' end,
  case when ifnull(inv.bCheckFree5, 0) = 1 then ifnull(base.cFree5, '') else '' end,
  case when ifnull(inv.bCheckFree6, 0) = 1 then ifnull(base.cFree6, '') else '' end,
  case when ifnull(inv.bCheckFree7, 0) = 1 then ifnull(base.cFree7, '') else '' end,
  case when ifnull(inv.bCheckFree8, 0) = 1 then ifnull(base.cFree8, '') else '' end,
  case when ifnull(inv.bCheckFree9, 0) = 1 then ifnull(base.cFree9, '') else '' end,
  case when ifnull(inv.bCheckFree10, 0) = 1 then ifnull(base.cFree10, '') else '' end
from ia_subsidiary base
left join ia_subsidiary_Item item on base.AutoID = item.iSubID
left join Inventory inv on base.cInvCode = inv.cInvCode
left join Ca_FxDef on item.iItemID = Ca_FxDef.ifxID
left join Ca_FxClassDef on Ca_FxDef.cFxCID = Ca_FxClassDef.iFxCId
left join Warehouse on Warehouse.cWhCode = base.cWhCode
where (base.dKeepDate < (cast(julianday('$year-01-01') - julianday('1900-01-01') as integer) * 25920000)
    or base.iMonth = 0) and base.iYear = $year and base.cWhCode = '$warehouse'
  and base.cInvCode = '$inventory' and 1 = 1 and base.cVouType <> '33'
  and ifnull(base.cBusType, '') collate Chinese_PRC_CI_AS not in ('直运销售', '直运采购')
group by base.cInvCode, base.cWhCode, cWhName, item.iItemDetailID, Ca_Fxdef.cfxName, Ca_FxClassDef.cfxCName,
  Ca_Fxdef.cfxCode, Ca_FxClassDef.cfxCCode,
  case when ifnull(inv.bCheckBatch, 0) = 1 then ifnull(base.cBatchIA, '') else '' end collate Chinese_PRC_CI_AS,
  case when ifnull(inv.bCheckFree1, 0) = 1 then ifnull(base.cFree1, '') else '' end collate Chinese_PRC_CI_AS,
  case when ifnull(inv.bCheckFree2, 0) = 1 then ifnull(base.cFree2, '') else '' end collate Chinese_PRC_CI_AS,
  case when ifnull(inv.bCheckFree3, 0) = 1 then ifnull(base.cFree3, '') else '' end collate Chinese_PRC_CI_AS,
  case when ifnull(inv.bCheckFree4, 0) = 1 then ifnull(base.cFree4, '') else '' end collate Chinese_PRC_CI_AS,
  case when ifnull(inv.bCheckFree5, 0) = 1 then ifnull(base.cFree5, '') else '' end collate Chinese_PRC_CI_AS,
  case when ifnull(inv.bCheckFree6, 0) = 1 then ifnull(base.cFree6, '') else '' end collate Chinese_PRC_CI_AS,
  case when ifnull(inv.bCheckFree7, 0) = 1 then ifnull(base.cFree7, '') else '' end collate Chinese_PRC_CI_AS,
  case when ifnull(inv.bCheckFree8, 0) = 1 then ifnull(base.cFree8, '') else '' end collate Chinese_PRC_CI_AS,
  case when ifnull(inv.bCheckFree9, 0) = 1 then ifnull(base.cFree9, '') else '' end collate Chinese_PRC_CI_AS,
  case when ifnull(inv.bCheckFree10, 0) = 1 then ifnull(base.cFree10, '') else '' end collate Chinese_PRC_CI_AS;

update bench_work as temp set iQuantity = a.iQuantity, iPrice = a.iPrice
from (select sum(ifnull(base.iAInQuantity, 0) - ifnull(base.iAOutQuantity, 0)) as iQuantity,
  sum(ifnull(base.iAInPrice, 0) - ifnull(base.iAOutPrice, 0)) as iPrice, base.cInvCode, cWhCode,
  case when ifnull(inv.bCheckBatch, 0) = 1 then ifnull(base.cBatchIA, '') else '' end collate Chinese_PRC_CI_AS as cBatchIA,
  case when ifnull(inv.bCheckFree1, 0) = 1 then ifnull(base.cFree1, '') else '' end collate Chinese_PRC_CI_AS as cFree1,
  case when ifnull(inv.bCheckFree2, 0) = 1 then ifnull(base.cFree2, '') else '' end collate Chinese_PRC_CI_AS as cFree2,
  case when ifnull(inv.bCheckFree3, 0) = 1 then ifnull(base.cFree3, '') else '' end collate Chinese_PRC_CI_AS as cFree3,
  case when ifnull(inv.bCheckFree4, 0) = 1 then ifnull(base.cFree4, '') else '' end collate Chinese_PRC_CI_AS as cFree4,
  case when ifnull(inv.bCheckFree5, 0) = 1 then ifnull(base.cFree5, '') else '' end collate Chinese_PRC_CI_AS as cFree5,
  case when ifnull(inv.bCheckFree6, 0) = 1 then ifnull(base.cFree6, '') else '' end collate Chinese_PRC_CI_AS as cFree6,
  case when ifnull(inv.bCheckFree7, 0) = 1 then ifnull(base.cFree7, '') else '' end collate Chinese_PRC_CI_AS as cFree7,
  case when ifnull(inv.bCheckFree8, 0) = 1 then ifnull(base.cFree8, '') else '' end collate Chinese_PRC_CI_AS as cFree8,
  case when ifnull(inv.bCheckFree9, 0) = 1 then ifnull(base.cFree9, '') else '' end collate Chinese_PRC_CI_AS as cFree9,
  case when ifnull(inv.bCheckFree10, 0) = 1 then ifnull(base.cFree10, '') else '' end collate Chinese_PRC_CI_AS as cFree10
from ia_subsidiary base
left join Inventory inv on base.cInvCode = inv.cInvCode
where (base.dKeepDate < (cast(julianday('$year-01-01') - julianday('1900-01-01') as integer) * 25920000)
    or base.iMonth = 0) and base.iYear = $year and cWhCode = '$warehouse'
  and base.cInvCode = '$inventory' and 1 = 1 and base.cVouType <> '33'
  and ifnull(base.cBusType, '') collate Chinese_PRC_CI_AS not in ('直运销售', '直运采购')
group by base.cInvCode, cWhCode,
  case when ifnull(inv.bCheckBatch, 0) = 1 then ifnull(base.cBatchIA, '') else '' end collate Chinese_PRC_CI_AS,
  case when ifnull(inv.bCheckFree1, 0) = 1 then ifnull(base.cFree1, '') else '' end collate Chinese_PRC_CI_AS,
  case when ifnull(inv.bCheckFree2, 0) = 1 then ifnull(base.cFree2, '') else '' end collate Chinese_PRC_CI_AS,
  case when ifnull(inv.bCheckFree3, 0) = 1 then ifnull(base.cFree3, '') else '' end collate Chinese_PRC_CI_AS,
  case when ifnull(inv.bCheckFree4, 0) = 1 then ifnull(base.cFree4, '') else '' end collate Chinese_PRC_CI_AS,
  case when ifnull(inv.bCheckFree5, 0) = 1 then ifnull(base.cFree5, '') else '' end collate Chinese_PRC_CI_AS,
  case when ifnull(inv.bCheckFree6, 0) = 1 then ifnull(base.cFree6, '') else '' end collate Chinese_PRC_CI_AS,
  case when ifnull(inv.bCheckFree7, 0) = 1 then ifnull(base.cFree7, '') else '' end collate Chinese_PRC_CI_AS,
  case when ifnull(inv.bCheckFree8, 0) = 1 then ifnull(base.cFree8, '') else '' end collate Chinese_PRC_CI_AS,
  case when ifnull(inv.bCheckFree9, 0) = 1 then ifnull(base.cFree9, '') else '' end collate Chinese_PRC_CI_AS,
  case when ifnull(inv.bCheckFree10, 0) = 1 then ifnull(base.cFree10, '') else '' end collate Chinese_PRC_CI_AS) a
where a.cInvCode = temp.cInvCode
  and ifnull(temp.cBatchIA, '') collate Chinese_PRC_CI_AS = ifnull(a.cBatchIA, '')
  and ifnull(temp.cFree1, '') collate Chinese_PRC_CI_AS = ifnull(a.cFree1, '')
  and ifnull(temp.cFree2, '') collate Chinese_PRC_CI_AS = ifnull(a.cFree2, '')
  and ifnull(temp.cFree3, '') collate Chinese_PRC_CI_AS = ifnull(a.cFree3, '')
  and ifnull(temp.cFree4, '') collate Chinese_PRC_CI_AS = ifnull(a.cFree4, '')
  and ifnull(temp.cFree5, '') collate Chinese_PRC_CI_AS = ifnull(a.cFree5, '')
  and ifnull(temp.cFree6, '') collate Chinese_PRC_CI_AS = ifnull(a.cFree6, '')
  and ifnull(temp.cFree7, '') collate Chinese_PRC_CI_AS = ifnull(a.cFree7, '')
  and ifnull(temp.cFree8, '') collate Chinese_PRC_CI_AS = ifnull(a.cFree8, '')
  and ifnull(temp.cFree9, '') collate Chinese_PRC_CI_AS = ifnull(a.cFree9, '')
  and ifnull(temp.cFree10, '') collate Chinese_PRC_CI_AS = ifnull(a.cFree10, '')
  and temp.cWhCode = a.cWhCode;

insert into bench_work(
  cWhCode, cWhName, cInvCode, cInvName, cInvAddCode, cInvStd, cUnitName, cVouDate, dKeepDate, cPZCode, cPZID, iPZID,
  cVouType, cVouCode, cPZdigest, bRdFlag, cBusCode, cVenCode, cVenName, cCusCode, cCusName, cItem_class, cItemCName,
  cAccounter, strContractCode, cproordercode, iproorderids, cworkprocodedis, cworkcentercode, csaleordercode,
  isaleorderids, exoCode, iExRowno, centrustordercode, cOrderCode, cDefine1, cDefine2, cDefine3, cDefine4, cDefine5,
  cDefine6, cDefine7, cDefine8, cDefine9, cDefine10, cDefine11, cDefine12, cDefine13, cDefine14, cDefine15, cDefine16,
  cDefine22, cDefine23, cDefine24, cDefine25, cDefine26, cDefine27, cDefine28, cDefine29, cDefine30, cDefine31,
  cDefine32, cDefine33, cDefine34, cDefine35, cDefine36, cDefine37, cInvDefine1, cInvDefine2, cInvDefine3,
  cInvDefine4, cInvDefine5, cInvDefine6, cInvDefine7, cInvDefine8, cInvDefine9, cInvDefine10, cInvDefine11,
  cInvDefine12, cInvDefine13, cInvDefine14, cInvDefine15, cInvDefine16, cBatchIA, cFree1, cFree2, cFree3, cFree4,
  cFree5, cFree6, cFree7, cFree8, cFree9, cFree10, iQuantity, iCost, iPrice, cItemCode, cName, cfxName, cfxCName,
  cfxCode, cfxCCode, iItemDetailID, iItemPrice, iItemQuantity, iItemCost, Datatype, curimonth, id, BakID, cBusType)
select base.cWhCode, Warehouse.cWhName, base.cInvCode, inv.cInvName, inv.cInvAddCode, inv.cInvStd, unit.cComUnitName,
  dVouDate, dKeepDate, null, cPZID, iPZID, cVouType, cVouCode, cPZdigest, Rd.cRdName, cBusCode, base.cVenCode,
  Ven.cVenName, base.cCusCode, cus.cCusName, cItem_class, cItemCName, cAccounter, strContractCode, cproordercode,
  iproorderids, cworkprocodedis, cworkcentercode, csaleordercode, isaleorderids, exoCode, iExRowno, centrustordercode,
  cOrderCode,
  cDefine1, cDefine2, cDefine3, cDefine4, cDefine5, cDefine6, cDefine7, cDefine8, cDefine9, cDefine10, cDefine11,
  cDefine12, cDefine13, cDefine14, cDefine15, cDefine16, cDefine22, cDefine23, cDefine24, cDefine25, cDefine26,
  cDefine27, cDefine28, cDefine29, cDefine30, cDefine31, cDefine32, cDefine33, cDefine34, cDefine35, cDefine36,
  cDefine37, cInvDefine1, cInvDefine2, cInvDefine3, cInvDefine4, cInvDefine5, cInvDefine6, cInvDefine7, cInvDefine8,
  cInvDefine9, cInvDefine10, cInvDefine11, cInvDefine12, cInvDefine13, cInvDefine14, cInvDefine15, cInvDefine16,
  base.cBatchIA, base.cFree1, base.cFree2, base.cFree3, base.cFree4, base.cFree5, base.cFree6, base.cFree7,
  base.cFree8, base.cFree9, base.cFree10,
  (case when base.bRdFlag = 1 then base.iAInQuantity else base.iAOutQuantity end
    + sign(case when base.bRdFlag = 1 then base.iAInQuantity else base.iAOutQuantity end) * 5000) / 10000 * 10000,
  (case when base.bRdFlag = 1 then base.iInCost else base.iOutCost end
    + sign(case when base.bRdFlag = 1 then base.iInCost else base.iOutCost end) * 50) / 100 * 100,
  (case when base.bRdFlag = 1 then base.iAInPrice else base.iAOutPrice end
    + sign(case when base.bRdFlag = 1 then base.iAInPrice else base.iAOutPrice end) * 50) / 100 * 100,
  base.cItemCode, base.cName, Ca_FxDef.cfxName, Ca_FxClassDef.cfxCName, Ca_FxDef.cfxCode, Ca_FxClassDef.cfxCCode,
  item.iItemDetailID,
  (case when base.bRdFlag = 1 then item.iItemInPrice else item.iItemOutPrice end
    + sign(case when base.bRdFlag = 1 then item.iItemInPrice else item.iItemOutPrice end) * 50) / 100 * 100,
  (case when base.bRdFlag = 1 then item.iItemInQuantity else item.iItemOutQuantity end
    + sign(case when base.bRdFlag = 1 then item.iItemInQuantity else item.iItemOutQuantity end) * 5000) / 10000 * 10000,
  (case when base.bRdFlag = 1 then item.iItemInCost else item.iItemOutCost end
    + sign(case when base.bRdFlag = 1 then item.iItemInCost else item.iItemOutCost end) * 50) / 100 * 100,
  1, base.iMonth, base.AutoID, base.BakID, base.cBusType
from ia_subsidiary base
left join ia_subsidiary_Item item on item.iSubID = base.AutoID
join Inventory inv on base.cInvCode = inv.cInvCode
left join Ca_FxDef on item.iItemID = Ca_FxDef.ifxID
left join Ca_FxClassDef on Ca_FxDef.cFxCID = Ca_FxClassDef.iFxCId
left join ComputationUnit unit on inv.cComUnitCode = unit.cComUnitCode
left join Warehouse on Warehouse.cWhCode = base.cWhCode
left join Vendor Ven on base.cVenCode = Ven.cVenCode
left join Customer cus on base.cCusCode = cus.cCusCode
left join Rd_Style Rd on base.cRdCode = Rd.cRdCode
where dKeepDate >= (cast(julianday('$year-01-01') - julianday('1900-01-01') as integer) * 25920000)
  and dKeepDate <= (cast(julianday('$year-12-31') - julianday('1900-01-01') as integer) * 25920000)
  and base.iMonth >= 1 and base.iYear = $year and base.cWhCode = '$warehouse' and base.cInvCode = '$inventory' and 1 = 1
  and base.cVouType <> '33' and ifnull(base.cBusType, '') collate Chinese_PRC_CI_AS not in ('直运销售', '直运采购');

-- for each month
insert into bench_work(
  cfxName, cfxCName, cfxCode, cfxCCode, iItemDetailID, iItemQuantity, iItemPrice, cPZdigest, Datatype, curimonth, id,
  cInvCode, cWhCode, cWhName, cBatchIA, cFree1, cFree2, cFree3, cFree4, cFree5, cFree6, cFree7, cFree8, cFree9,
  cFree10)
select Ca_Fxdef.cfxName, Ca_FxClassDef.cfxCName, Ca_Fxdef.cfxCode, Ca_FxClassDef.cfxCCode, item.iItemDetailID,
  sum(ifnull(item.iItemInQuantity, 0) - ifnull(item.iItemOutQuantity, 0)),
  sum(ifnull(item.iItemInPrice, 0) - ifnull(item.iItemOutPrice, 0)), '$month 月末结存', 2, $month, $month, base.cInvCode,
  base.cWhCode, cWhName,
  case when ifnull(inv.bCheckBatch, 0) = 1 then ifnull(base.cBatchIA, '') else '' end,
  case when ifnull(inv.bCheckFree1, 0) = 1 then ifnull(base.cFree1, '') else '' end,
  case when ifnull(inv.bCheckFree2, 0) = 1 then ifnull(base.cFree2, '') else '' end,
  case when ifnull(inv.bCheckFree3, 0) = 1 then ifnull(base.cFree3, '') else '' end,
  case when ifnull(inv.bCheckFree4, 0) = 1 then ifnull(base.cFree4, '') else '' end,
  case when ifnull(inv.bCheckFree5, 0) = 1 then ifnull(base.cFree5, '') else '' end,
  case when ifnull(inv.bCheckFree6, 0) = 1 then ifnull(base.cFree6, '') else '' end,
  case when ifnull(inv.bCheckFree7, 0) = 1 then ifnull(base.cFree7, '') else '' end,
  case when ifnull(inv.bCheckFree8, 0) = 1 then ifnull(base.cFree8, '') else '' end,
  case when ifnull(inv.bCheckFree9, 0) = 1 then ifnull(base.cFree9, '') else '' end,
  case when ifnull(inv.bCheckFree10, 0) = 1 then ifnull(base.cFree10, '') else '' end
from ia_subsidiary base
left join ia_subsidiary_Item item on base.AutoID = item.iSubID
left join Inventory inv on base.cInvCode = inv.cInvCode
left join Ca_FxDef on item.iItemID = Ca_FxDef.ifxID
left join Ca_FxClassDef on Ca_FxDef.cFxCID = Ca_FxClassDef.iFxCId
left join Warehouse on Warehouse.cWhCode = base.cWhCode
where base.iMonth < $month + 1 and base.iYear = $year and base.cWhCode = '$warehouse'
  and base.cInvCode = '$inventory' and 1 = 1 and base.cVouType <> '33'
  and ifnull(base.cBusType, '') collate Chinese_PRC_CI_AS not in ('直运销售', '直运采购')
group by base.cInvCode, base.cWhCode, cWhName, item.iItemDetailID, Ca_Fxdef.cfxName, Ca_FxClassDef.cfxCName,
  Ca_Fxdef.cfxCode, Ca_FxClassDef.cfxCCode,
  case when ifnull(inv.bCheckBatch, 0) = 1 then ifnull(base.cBatchIA, '') else '' end collate Chinese_PRC_CI_AS,
  case when ifnull(inv.bCheckFree1, 0) = 1 then ifnull(base.cFree1, '') else '' end collate Chinese_PRC_CI_AS,
  case when ifnull(inv.bCheckFree2, 0) = 1 then ifnull(base.cFree2, '') else '' end collate Chinese_PRC_CI_AS,
  case when ifnull(inv.bCheckFree3, 0) = 1 then ifnull(base.cFree3, '') else '' end collate Chinese_PRC_CI_AS,
  case when ifnull(inv.bCheckFree4, 0) = 1 then ifnull(base.cFree4, '') else '' end collate Chinese_PRC_CI_AS,
  case when ifnull(inv.bCheckFree5, 0) = 1 then ifnull(base.cFree5, '') else '' end collate Chinese_PRC_CI_AS,
  case when ifnull(inv.bCheckFree6, 0) = 1 then ifnull(base.cFree6, '') else '' end collate Chinese_PRC_CI_AS,
  case when ifnull(inv.bCheckFree7, 0) = 1 then ifnull(base.cFree7, '') else '' end collate Chinese_PRC_CI_AS,
  case when ifnull(inv.bCheckFree8, 0) = 1 then ifnull(base.cFree8, '') else '' end collate Chinese_PRC_CI_AS,
  case when ifnull(inv.bCheckFree9, 0) = 1 then ifnull(base.cFree9, '') else '' end collate Chinese_PRC_CI_AS,
  case when ifnull(inv.bCheckFree10, 0) = 1 then ifnull(base.cFree10, '') else '' end collate Chinese_PRC_CI_AS;

update bench_work as temp set iQuantity = a.iQuantity, iPrice = a.iPrice
from (select sum(ifnull(base.iAInQuantity, 0) - ifnull(base.iAOutQuantity, 0)) as iQuantity,
  sum(ifnull(base.iAInPrice, 0) - ifnull(base.iAOutPrice, 0)) as iPrice, base.cInvCode, cWhCode,
  case when ifnull(inv.bCheckBatch, 0) = 1 then ifnull(base.cBatchIA, '') else '' end collate Chinese_PRC_CI_AS as cBatchIA,
  case when ifnull(inv.bCheckFree1, 0) = 1 then ifnull(base.cFree1, '') else '' end collate Chinese_PRC_CI_AS as cFree1,
  case when ifnull(inv.bCheckFree2, 0) = 1 then ifnull(base.cFree2, '') else '' end collate Chinese_PRC_CI_AS as cFree2,
  case when ifnull(inv.bCheckFree3, 0) = 1 then ifnull(base.cFree3, '') else '' end collate Chinese_PRC_CI_AS as cFree3,
  case when ifnull(inv.bCheckFree4, 0) = 1 then ifnull(base.cFree4, '') else '' end collate Chinese_PRC_CI_AS as cFree4,
  case when ifnull(inv.bCheckFree5, 0) = 1 then ifnull(base.cFree5, '') else '' end collate Chinese_PRC_CI_AS as cFree5,
  case when ifnull(inv.bCheckFree6, 0) = 1 then ifnull(base.cFree6, '') else '' end collate Chinese_PRC_CI_AS as cFree6,
  case when ifnull(inv.bCheckFree7, 0) = 1 then ifnull(base.cFree7, '') else '' end collate Chinese_PRC_CI_AS as cFree7,
  case when ifnull(inv.bCheckFree8, 0) = 1 then ifnull(base.cFree8, '') else '' end collate Chinese_PRC_CI_AS as cFree8,
  case when ifnull(inv.bCheckFree9, 0) = 1 then ifnull(base.cFree9, '') else '' end collate Chinese_PRC_CI_AS as cFree9,
  case when ifnull(inv.bCheckFree10, 0) = 1 then ifnull(base.cFree10, '') else '' end collate Chinese_PRC_CI_AS as cFree10
from ia_subsidiary base
left join Inventory inv on base.cInvCode = inv.cInvCode
where base.iMonth < $month + 1 and base.iYear = $year and cWhCode = '$warehouse'
  and base.cInvCode = '$inventory' and 1 = 1 and base.cVouType <> '33'
  and ifnull(base.cBusType, '') collate Chinese_PRC_CI_AS not in ('直运销售', '直运采购')
group by base.cInvCode, cWhCode,
  case when ifnull(inv.bCheckBatch, 0) = 1 then ifnull(base.cBatchIA, '') else '' end collate Chinese_PRC_CI_AS,
  case when ifnull(inv.bCheckFree1, 0) = 1 then ifnull(base.cFree1, '') else '' end collate Chinese_PRC_CI_AS,
  case when ifnull(inv.bCheckFree2, 0) = 1 then ifnull(base.cFree2, '') else '' end collate Chinese_PRC_CI_AS,
  case when ifnull(inv.bCheckFree3, 0) = 1 then ifnull(base.cFree3, '') else '' end collate Chinese_PRC_CI_AS,
  case when ifnull(inv.bCheckFree4, 0) = 1 then ifnull(base.cFree4, '') else '' end collate Chinese_PRC_CI_AS,
  case when ifnull(inv.bCheckFree5, 0) = 1 then ifnull(base.cFree5, '') else '' end collate Chinese_PRC_CI_AS,
  case when ifnull(inv.bCheckFree6, 0) = 1 then ifnull(base.cFree6, '') else '' end collate Chinese_PRC_CI_AS,
  case when ifnull(inv.bCheckFree7, 0) = 1 then ifnull(base.cFree7, '') else '' end collate Chinese_PRC_CI_AS,
  case when ifnull(inv.bCheckFree8, 0) = 1 then ifnull(base.cFree8, '') else '' end collate Chinese_PRC_CI_AS,
  case when ifnull(inv.bCheckFree9, 0) = 1 then ifnull(base.cFree9, '') else '' end collate Chinese_PRC_CI_AS,
  case when ifnull(inv.bCheckFree10, 0) = 1 then ifnull(base.cFree10, '') else '' end collate Chinese_PRC_CI_AS) a
where a.cInvCode = temp.cInvCode
  and ifnull(temp.cBatchIA, '') collate Chinese_PRC_CI_AS = ifnull(a.cBatchIA, '')
  and ifnull(temp.cFree1, '') collate Chinese_PRC_CI_AS = ifnull(a.cFree1, '')
  and ifnull(temp.cFree2, '') collate Chinese_PRC_CI_AS = ifnull(a.cFree2, '')
  and ifnull(temp.cFree3, '') collate Chinese_PRC_CI_AS = ifnull(a.cFree3, '')
  and ifnull(temp.cFree4, '') collate Chinese_PRC_CI_AS = ifnull(a.cFree4, '')
  and ifnull(temp.cFree5, '') collate Chinese_PRC_CI_AS = ifnull(a.cFree5, '')
  and ifnull(temp.cFree6, '') collate Chinese_PRC_CI_AS = ifnull(a.cFree6, '')
  and ifnull(temp.cFree7, '') collate Chinese_PRC_CI_AS = ifnull(a.cFree7, '')
  and ifnull(temp.cFree8, '') collate Chinese_PRC_CI_AS = ifnull(a.cFree8, '')
  and ifnull(temp.cFree9, '') collate Chinese_PRC_CI_AS = ifnull(a.cFree9, '')
  and ifnull(temp.cFree10, '') collate Chinese_PRC_CI_AS = ifnull(a.cFree10, '')
  and temp.cWhCode = a.cWhCode
  and temp.cPZdigest = '$month 月末结存' and Datatype = 2;
-- end

update bench_work set iCost = case when ifnull(iQuantity, 0) = 0 then null
  else cast(round(iPrice * 100000000.0 / iQuantity) as integer) end where Datatype in (0, 2);

drop table if exists temp.bench_numbered;
create temp table bench_numbered(
  RowNo INTEGER PRIMARY KEY, id INTEGER, Datatype INTEGER, cWhCode TEXT COLLATE Chinese_PRC_CI_AS, cWhName TEXT
  COLLATE Chinese_PRC_CI_AS, cInvCode TEXT COLLATE Chinese_PRC_CI_AS, cInvName TEXT COLLATE Chinese_PRC_CI_AS,
  cInvAddCode TEXT COLLATE Chinese_PRC_CI_AS, cInvStd TEXT COLLATE Chinese_PRC_CI_AS, cUnitName TEXT COLLATE
  Chinese_PRC_CI_AS, cVouDate INTEGER, dKeepDate INTEGER, cPZCode TEXT COLLATE Chinese_PRC_CI_AS, cPZID TEXT COLLATE
  Chinese_PRC_CI_AS, iPZID INTEGER, cVouType TEXT COLLATE Chinese_PRC_CI_AS, cVouCode TEXT COLLATE Chinese_PRC_CI_AS,
  cPZdigest TEXT COLLATE Chinese_PRC_CI_AS, bRdFlag TEXT COLLATE Chinese_PRC_CI_AS, cBusCode TEXT COLLATE
  Chinese_PRC_CI_AS, cVenCode TEXT COLLATE Chinese_PRC_CI_AS, cVenName TEXT COLLATE Chinese_PRC_CI_AS, cCusCode TEXT
  COLLATE Chinese_PRC_CI_AS, cCusName TEXT COLLATE Chinese_PRC_CI_AS, cItem_class TEXT COLLATE Chinese_PRC_CI_AS,
  cItemCName TEXT COLLATE Chinese_PRC_CI_AS, cAccounter TEXT COLLATE Chinese_PRC_CI_AS, strContractCode TEXT COLLATE
  Chinese_PRC_CI_AS, cproordercode TEXT COLLATE Chinese_PRC_CI_AS, iproorderids INTEGER, cworkprocodedis TEXT COLLATE
  Chinese_PRC_CI_AS, cworkcentercode TEXT COLLATE Chinese_PRC_CI_AS, csaleordercode TEXT COLLATE Chinese_PRC_CI_AS,
  isaleorderids INTEGER, exoCode TEXT COLLATE Chinese_PRC_CI_AS, iExRowno INTEGER, centrustordercode TEXT COLLATE
  Chinese_PRC_CI_AS, cOrderCode TEXT COLLATE Chinese_PRC_CI_AS, cDefine1 TEXT COLLATE Chinese_PRC_CI_AS, cDefine2 TEXT
  COLLATE Chinese_PRC_CI_AS, cDefine3 TEXT COLLATE Chinese_PRC_CI_AS, cDefine4 INTEGER, cDefine5 INTEGER, cDefine6
  INTEGER, cDefine7 REAL, cDefine8 TEXT COLLATE Chinese_PRC_CI_AS, cDefine9 TEXT COLLATE Chinese_PRC_CI_AS, cDefine10
  TEXT COLLATE Chinese_PRC_CI_AS, cDefine11 TEXT COLLATE Chinese_PRC_CI_AS, cDefine12 TEXT COLLATE Chinese_PRC_CI_AS,
  cDefine13 TEXT COLLATE Chinese_PRC_CI_AS, cDefine14 TEXT COLLATE Chinese_PRC_CI_AS, cDefine15 INTEGER, cDefine16
  INTEGER, cDefine22 TEXT COLLATE Chinese_PRC_CI_AS, cDefine23 TEXT COLLATE Chinese_PRC_CI_AS, cDefine24 TEXT COLLATE
  Chinese_PRC_CI_AS, cDefine25 TEXT COLLATE Chinese_PRC_CI_AS, cDefine26 REAL, cDefine27 REAL, cDefine28 TEXT COLLATE
  Chinese_PRC_CI_AS, cDefine29 TEXT COLLATE Chinese_PRC_CI_AS, cDefine30 TEXT COLLATE Chinese_PRC_CI_AS, cDefine31
  TEXT COLLATE Chinese_PRC_CI_AS, cDefine32 TEXT COLLATE Chinese_PRC_CI_AS, cDefine33 TEXT COLLATE Chinese_PRC_CI_AS,
  cDefine34 INTEGER, cDefine35 INTEGER, cDefine36 INTEGER, cDefine37 INTEGER, cInvDefine1 TEXT COLLATE
  Chinese_PRC_CI_AS, cInvDefine2 TEXT COLLATE Chinese_PRC_CI_AS, cInvDefine3 TEXT COLLATE Chinese_PRC_CI_AS,
  cInvDefine4 TEXT COLLATE Chinese_PRC_CI_AS, cInvDefine5 TEXT COLLATE Chinese_PRC_CI_AS, cInvDefine6 TEXT COLLATE
  Chinese_PRC_CI_AS, cInvDefine7 TEXT COLLATE Chinese_PRC_CI_AS, cInvDefine8 TEXT COLLATE Chinese_PRC_CI_AS,
  cInvDefine9 TEXT COLLATE Chinese_PRC_CI_AS, cInvDefine10 TEXT COLLATE Chinese_PRC_CI_AS, cInvDefine11 INTEGER,
  cInvDefine12 INTEGER, cInvDefine13 REAL, cInvDefine14 REAL, cInvDefine15 INTEGER, cInvDefine16 INTEGER, cBatchIA
  TEXT COLLATE Chinese_PRC_CI_AS, cFree1 TEXT COLLATE Chinese_PRC_CI_AS, cFree2 TEXT COLLATE Chinese_PRC_CI_AS, cFree3
  TEXT COLLATE Chinese_PRC_CI_AS, cFree4 TEXT COLLATE Chinese_PRC_CI_AS, cFree5 TEXT COLLATE Chinese_PRC_CI_AS, cFree6
  TEXT COLLATE Chinese_PRC_CI_AS, cFree7 TEXT COLLATE Chinese_PRC_CI_AS, cFree8 TEXT COLLATE Chinese_PRC_CI_AS, cFree9
  TEXT COLLATE Chinese_PRC_CI_AS, cFree10 TEXT COLLATE Chinese_PRC_CI_AS, iQuantity INTEGER, iCost INTEGER, iPrice
  INTEGER, cfxName TEXT COLLATE Chinese_PRC_CI_AS, cfxCName TEXT COLLATE Chinese_PRC_CI_AS, cfxCode TEXT COLLATE
  Chinese_PRC_CI_AS, cfxCCode TEXT COLLATE Chinese_PRC_CI_AS, iItemPrice INTEGER, iItemQuantity INTEGER, iItemCost
  INTEGER, cItemCode TEXT COLLATE Chinese_PRC_CI_AS, cName TEXT COLLATE Chinese_PRC_CI_AS, cBusType TEXT COLLATE
  Chinese_PRC_CI_AS) STRICT;

insert into bench_numbered(
  id, Datatype, cWhCode, cWhName, cInvCode, cInvName, cInvAddCode, cInvStd, cUnitName, cVouDate, dKeepDate, cPZCode,
  cPZID, iPZID, cVouType, cVouCode, cPZdigest, bRdFlag, cBusCode, cVenCode, cVenName, cCusCode, cCusName, cItem_class,
  cItemCName, cAccounter, strContractCode, cproordercode, iproorderids, cworkprocodedis, cworkcentercode,
  csaleordercode, isaleorderids, exoCode, iExRowno, centrustordercode, cOrderCode, cDefine1, cDefine2, cDefine3,
  cDefine4, cDefine5, cDefine6, cDefine7, cDefine8, cDefine9, cDefine10, cDefine11, cDefine12, cDefine13, cDefine14,
  cDefine15, cDefine16, cDefine22, cDefine23, cDefine24, cDefine25, cDefine26, cDefine27, cDefine28, cDefine29,
  cDefine30, cDefine31, cDefine32, cDefine33, cDefine34, cDefine35, cDefine36, cDefine37, cInvDefine1, cInvDefine2,
  cInvDefine3, cInvDefine4, cInvDefine5, cInvDefine6, cInvDefine7, cInvDefine8, cInvDefine9, cInvDefine10,
  cInvDefine11, cInvDefine12, cInvDefine13, cInvDefine14, cInvDefine15, cInvDefine16, cBatchIA, cFree1, cFree2,
  cFree3, cFree4, cFree5, cFree6, cFree7, cFree8, cFree9, cFree10, iQuantity, iCost, iPrice, cfxName, cfxCName,
  cfxCode, cfxCCode, iItemPrice, iItemQuantity, iItemCost, cItemCode, cName, cBusType)
select
  id, Datatype, cWhCode, cWhName, cInvCode, cInvName, cInvAddCode, cInvStd, cUnitName, cVouDate, dKeepDate, cPZCode,
  cPZID, iPZID, cVouType, cVouCode, cPZdigest, bRdFlag, cBusCode, cVenCode, cVenName, cCusCode, cCusName, cItem_class,
  cItemCName, cAccounter, strContractCode, cproordercode, iproorderids, cworkprocodedis, cworkcentercode,
  csaleordercode, isaleorderids, exoCode, iExRowno, centrustordercode, cOrderCode, cDefine1, cDefine2, cDefine3,
  cDefine4, cDefine5, cDefine6, cDefine7, cDefine8, cDefine9, cDefine10, cDefine11, cDefine12, cDefine13, cDefine14,
  cDefine15, cDefine16, cDefine22, cDefine23, cDefine24, cDefine25, cDefine26, cDefine27, cDefine28, cDefine29,
  cDefine30, cDefine31, cDefine32, cDefine33, cDefine34, cDefine35, cDefine36, cDefine37, cInvDefine1, cInvDefine2,
  cInvDefine3, cInvDefine4, cInvDefine5, cInvDefine6, cInvDefine7, cInvDefine8, cInvDefine9, cInvDefine10,
  cInvDefine11, cInvDefine12, cInvDefine13, cInvDefine14, cInvDefine15, cInvDefine16, cBatchIA, cFree1, cFree2,
  cFree3, cFree4, cFree5, cFree6, cFree7, cFree8, cFree9, cFree10, (iQuantity + sign(iQuantity) * 5000) / 10000,
  (iCost + sign(iCost) * 50) / 100, (iPrice + sign(iPrice) * 50) / 100, cfxName, cfxCName, cfxCode, cfxCCode,
  (iItemPrice + sign(iItemPrice) * 50) / 100, (iItemQuantity + sign(iItemQuantity) * 5000) / 10000, (iItemCost +
  sign(iItemCost) * 50) / 100, cItemCode, cName, cBusType
from bench_work order by curimonth, Datatype, dKeepDate, ifnull(BakID, id), id;

update bench_numbered as temp set cPZCode = gl_AccVouch.csign || ' ' || gl_AccVouch.ino_id
from gl_AccVouch where gl_AccVouch.coutNo_ID = temp.cPZID;

update bench_numbered as temp set cVouType = AA_Enum.EnumName
from VouchType join AA_Enum on VouchType.cVouchName = AA_Enum.EnumCode
where temp.cVouType = VouchType.cVouchType and AA_Enum.EnumType = 'IA.vchtype' and AA_Enum.LocaleId = 'zh-CN';

update bench_numbered set cVouType = (select a.EnumName from AA_Enum a join VouchType b on b.cVouchName = a.EnumCode
  where a.EnumType = 'IA.vchtype' and a.LocaleId = 'zh-CN' and b.cVouchType = '32') where cVouType = '3201';

create table bench_result(
  rowno INTEGER, id INTEGER, Datatype INTEGER, cWhCode TEXT COLLATE Chinese_PRC_CI_AS, cWhName TEXT COLLATE
  Chinese_PRC_CI_AS, cInvCode TEXT COLLATE Chinese_PRC_CI_AS, cInvName TEXT COLLATE Chinese_PRC_CI_AS, cInvAddCode
  TEXT COLLATE Chinese_PRC_CI_AS, cInvStd TEXT COLLATE Chinese_PRC_CI_AS, cUnitName TEXT COLLATE Chinese_PRC_CI_AS,
  cVouDate INTEGER, dKeepDate INTEGER, cPZCode TEXT COLLATE Chinese_PRC_CI_AS, cPZID TEXT COLLATE Chinese_PRC_CI_AS,
  iPZID INTEGER, cVouType TEXT COLLATE Chinese_PRC_CI_AS, cVouCode TEXT COLLATE Chinese_PRC_CI_AS, cPZdigest TEXT
  COLLATE Chinese_PRC_CI_AS, bRdFlag TEXT COLLATE Chinese_PRC_CI_AS, cBusCode TEXT COLLATE Chinese_PRC_CI_AS, cVenCode
  TEXT COLLATE Chinese_PRC_CI_AS, cVenName TEXT COLLATE Chinese_PRC_CI_AS, cCusCode TEXT COLLATE Chinese_PRC_CI_AS,
  cCusName TEXT COLLATE Chinese_PRC_CI_AS, cItem_class TEXT COLLATE Chinese_PRC_CI_AS, cItemCName TEXT COLLATE
  Chinese_PRC_CI_AS, cAccounter TEXT COLLATE Chinese_PRC_CI_AS, strContractCode TEXT COLLATE Chinese_PRC_CI_AS,
  cproordercode TEXT COLLATE Chinese_PRC_CI_AS, iproorderids INTEGER, cworkprocodedis TEXT COLLATE Chinese_PRC_CI_AS,
  cworkcentercode TEXT COLLATE Chinese_PRC_CI_AS, csaleordercode TEXT COLLATE Chinese_PRC_CI_AS, isaleorderids
  INTEGER, exoCode TEXT COLLATE Chinese_PRC_CI_AS, iExRowno INTEGER, centrustordercode TEXT COLLATE Chinese_PRC_CI_AS,
  cOrderCode TEXT COLLATE Chinese_PRC_CI_AS, cDefine1 TEXT COLLATE Chinese_PRC_CI_AS, cDefine2 TEXT COLLATE
  Chinese_PRC_CI_AS, cDefine3 TEXT COLLATE Chinese_PRC_CI_AS, cDefine4 INTEGER, cDefine5 INTEGER, cDefine6 INTEGER,
  cDefine7 REAL, cDefine8 TEXT COLLATE Chinese_PRC_CI_AS, cDefine9 TEXT COLLATE Chinese_PRC_CI_AS, cDefine10 TEXT
  COLLATE Chinese_PRC_CI_AS, cDefine11 TEXT COLLATE Chinese_PRC_CI_AS, cDefine12 TEXT COLLATE Chinese_PRC_CI_AS,
  cDefine13 TEXT COLLATE Chinese_PRC_CI_AS, cDefine14 TEXT COLLATE Chinese_PRC_CI_AS, cDefine15 INTEGER, cDefine16
  INTEGER, cDefine22 TEXT COLLATE Chinese_PRC_CI_AS, cDefine23 TEXT COLLATE Chinese_PRC_CI_AS, cDefine24 TEXT COLLATE
  Chinese_PRC_CI_AS, cDefine25 TEXT COLLATE Chinese_PRC_CI_AS, cDefine26 REAL, cDefine27 REAL, cDefine28 TEXT COLLATE
  Chinese_PRC_CI_AS, cDefine29 TEXT COLLATE Chinese_PRC_CI_AS, cDefine30 TEXT COLLATE Chinese_PRC_CI_AS, cDefine31
  TEXT COLLATE Chinese_PRC_CI_AS, cDefine32 TEXT COLLATE Chinese_PRC_CI_AS, cDefine33 TEXT COLLATE Chinese_PRC_CI_AS,
  cDefine34 INTEGER, cDefine35 INTEGER, cDefine36 INTEGER, cDefine37 INTEGER, cInvDefine1 TEXT COLLATE
  Chinese_PRC_CI_AS, cInvDefine2 TEXT COLLATE Chinese_PRC_CI_AS, cInvDefine3 TEXT COLLATE Chinese_PRC_CI_AS,
  cInvDefine4 TEXT COLLATE Chinese_PRC_CI_AS, cInvDefine5 TEXT COLLATE Chinese_PRC_CI_AS, cInvDefine6 TEXT COLLATE
  Chinese_PRC_CI_AS, cInvDefine7 TEXT COLLATE Chinese_PRC_CI_AS, cInvDefine8 TEXT COLLATE Chinese_PRC_CI_AS,
  cInvDefine9 TEXT COLLATE Chinese_PRC_CI_AS, cInvDefine10 TEXT COLLATE Chinese_PRC_CI_AS, cInvDefine11 INTEGER,
  cInvDefine12 INTEGER, cInvDefine13 REAL, cInvDefine14 REAL, cInvDefine15 INTEGER, cInvDefine16 INTEGER, cBatchIA
  TEXT COLLATE Chinese_PRC_CI_AS, cFree1 TEXT COLLATE Chinese_PRC_CI_AS, cFree2 TEXT COLLATE Chinese_PRC_CI_AS, cFree3
  TEXT COLLATE Chinese_PRC_CI_AS, cFree4 TEXT COLLATE Chinese_PRC_CI_AS, cFree5 TEXT COLLATE Chinese_PRC_CI_AS, cFree6
  TEXT COLLATE Chinese_PRC_CI_AS, cFree7 TEXT COLLATE Chinese_PRC_CI_AS, cFree8 TEXT COLLATE Chinese_PRC_CI_AS, cFree9
  TEXT COLLATE Chinese_PRC_CI_AS, cFree10 TEXT COLLATE Chinese_PRC_CI_AS, iQuantity INTEGER, iCost INTEGER, iPrice
  INTEGER, cfxName TEXT COLLATE Chinese_PRC_CI_AS, cfxCName TEXT COLLATE Chinese_PRC_CI_AS, cfxCode TEXT COLLATE
  Chinese_PRC_CI_AS, cfxCCode TEXT COLLATE Chinese_PRC_CI_AS, iItemPrice INTEGER, iItemQuantity INTEGER, iItemCost
  INTEGER, cItemCode TEXT COLLATE Chinese_PRC_CI_AS, cName TEXT COLLATE Chinese_PRC_CI_AS, cBusType TEXT COLLATE
  Chinese_PRC_CI_AS) STRICT;

insert into bench_result(
  rowno, id, Datatype, cWhCode, cWhName, cInvCode, cInvName, cInvAddCode, cInvStd, cUnitName, cVouDate, dKeepDate,
  cPZCode, cPZID, iPZID, cVouType, cVouCode, cPZdigest, bRdFlag, cBusCode, cVenCode, cVenName, cCusCode, cCusName,
  cItem_class, cItemCName, cAccounter, strContractCode, cproordercode, iproorderids, cworkprocodedis, cworkcentercode,
  csaleordercode, isaleorderids, exoCode, iExRowno, centrustordercode, cOrderCode, cDefine1, cDefine2, cDefine3,
  cDefine4, cDefine5, cDefine6, cDefine7, cDefine8, cDefine9, cDefine10, cDefine11, cDefine12, cDefine13, cDefine14,
  cDefine15, cDefine16, cDefine22, cDefine23, cDefine24, cDefine25, cDefine26, cDefine27, cDefine28, cDefine29,
  cDefine30, cDefine31, cDefine32, cDefine33, cDefine34, cDefine35, cDefine36, cDefine37, cInvDefine1, cInvDefine2,
  cInvDefine3, cInvDefine4, cInvDefine5, cInvDefine6, cInvDefine7, cInvDefine8, cInvDefine9, cInvDefine10,
  cInvDefine11, cInvDefine12, cInvDefine13, cInvDefine14, cInvDefine15, cInvDefine16, cBatchIA, cFree1, cFree2,
  cFree3, cFree4, cFree5, cFree6, cFree7, cFree8, cFree9, cFree10, iQuantity, iCost, iPrice, cfxName, cfxCName,
  cfxCode, cfxCCode, iItemPrice, iItemQuantity, iItemCost, cItemCode, cName, cBusType)
select RowNo + 1,
  id, Datatype, cWhCode, cWhName, cInvCode, cInvName, cInvAddCode, cInvStd, cUnitName, cVouDate, dKeepDate, cPZCode,
  cPZID, iPZID, cVouType, cVouCode, cPZdigest, bRdFlag, cBusCode, cVenCode, cVenName, cCusCode, cCusName, cItem_class,
  cItemCName, cAccounter, strContractCode, cproordercode, iproorderids, cworkprocodedis, cworkcentercode,
  csaleordercode, isaleorderids, exoCode, iExRowno, centrustordercode, cOrderCode, cDefine1, cDefine2, cDefine3,
  cDefine4, cDefine5, cDefine6, cDefine7, cDefine8, cDefine9, cDefine10, cDefine11, cDefine12, cDefine13, cDefine14,
  cDefine15, cDefine16, cDefine22, cDefine23, cDefine24, cDefine25, cDefine26, cDefine27, cDefine28, cDefine29,
  cDefine30, cDefine31, cDefine32, cDefine33, cDefine34, cDefine35, cDefine36, cDefine37, cInvDefine1, cInvDefine2,
  cInvDefine3, cInvDefine4, cInvDefine5, cInvDefine6, cInvDefine7, cInvDefine8, cInvDefine9, cInvDefine10,
  cInvDefine11, cInvDefine12, cInvDefine13, cInvDefine14, cInvDefine15, cInvDefine16, cBatchIA, cFree1, cFree2,
  cFree3, cFree4, cFree5, cFree6, cFree7, cFree8, cFree9, cFree10, iQuantity, iCost, iPrice, cfxName, cfxCName,
  cfxCCode || cfxCode, cfxCCode, iItemPrice, iItemQuantity, iItemCost, cItemCode, cName, cBusType
from bench_numbered;

update bench_result as temp set rowno = base.rowno
from (select id, min(rowno) as rowno, Datatype from bench_result group by id, Datatype) base
where base.id = temp.id and base.Datatype = temp.Datatype;

drop table bench_work;
drop table bench_numbered;
