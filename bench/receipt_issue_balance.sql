-- The statements of the receipt/issue/balance report (by cost item, one year, with a warehouse), translated by hand
-- into SQLite's SQL: the report with the T-SQL front end is compared with these. $year is put in.
-- Figures lie in the account as scaled integers, so adding them needs no help.

drop table if exists bench_detail;
create table bench_result(
  autoid INTEGER, cWhCode TEXT COLLATE Chinese_PRC_CI_AS, cWhName TEXT COLLATE Chinese_PRC_CI_AS,
  cInvCode TEXT COLLATE Chinese_PRC_CI_AS, cInvName TEXT COLLATE Chinese_PRC_CI_AS,
  cInvStd TEXT COLLATE Chinese_PRC_CI_AS, cInvAddCode TEXT COLLATE Chinese_PRC_CI_AS,
  cUnitCode TEXT COLLATE Chinese_PRC_CI_AS, cUnitName TEXT COLLATE Chinese_PRC_CI_AS,
  cBatchIA TEXT COLLATE Chinese_PRC_CI_AS, cFree1 TEXT COLLATE Chinese_PRC_CI_AS,
  cFree2 TEXT COLLATE Chinese_PRC_CI_AS, cFree3 TEXT COLLATE Chinese_PRC_CI_AS, cFree4 TEXT COLLATE Chinese_PRC_CI_AS,
  cFree5 TEXT COLLATE Chinese_PRC_CI_AS, cFree6 TEXT COLLATE Chinese_PRC_CI_AS, cFree7 TEXT COLLATE Chinese_PRC_CI_AS,
  cFree8 TEXT COLLATE Chinese_PRC_CI_AS, cFree9 TEXT COLLATE Chinese_PRC_CI_AS, cFree10 TEXT COLLATE Chinese_PRC_CI_AS,
  cInvDefine1 TEXT COLLATE Chinese_PRC_CI_AS, cInvDefine2 TEXT COLLATE Chinese_PRC_CI_AS,
  cInvDefine3 TEXT COLLATE Chinese_PRC_CI_AS, cInvDefine4 TEXT COLLATE Chinese_PRC_CI_AS,
  cInvDefine5 TEXT COLLATE Chinese_PRC_CI_AS, cInvDefine6 TEXT COLLATE Chinese_PRC_CI_AS,
  cInvDefine7 TEXT COLLATE Chinese_PRC_CI_AS, cInvDefine8 TEXT COLLATE Chinese_PRC_CI_AS,
  cInvDefine9 TEXT COLLATE Chinese_PRC_CI_AS, cInvDefine10 TEXT COLLATE Chinese_PRC_CI_AS, cInvDefine11 INTEGER,
  cInvDefine12 INTEGER, cInvDefine13 REAL, cInvDefine14 REAL, cInvDefine15 INTEGER, cInvDefine16 INTEGER,
  cDefine1 TEXT COLLATE Chinese_PRC_CI_AS, cDefine2 TEXT COLLATE Chinese_PRC_CI_AS,
  cDefine3 TEXT COLLATE Chinese_PRC_CI_AS, cDefine4 INTEGER, cDefine5 INTEGER, cDefine6 INTEGER, cDefine7 REAL,
  cDefine8 TEXT COLLATE Chinese_PRC_CI_AS, cDefine9 TEXT COLLATE Chinese_PRC_CI_AS,
  cDefine10 TEXT COLLATE Chinese_PRC_CI_AS, cDefine11 TEXT COLLATE Chinese_PRC_CI_AS,
  cDefine12 TEXT COLLATE Chinese_PRC_CI_AS, cDefine13 TEXT COLLATE Chinese_PRC_CI_AS,
  cDefine14 TEXT COLLATE Chinese_PRC_CI_AS, cDefine15 INTEGER, cDefine16 INTEGER,
  cDefine22 TEXT COLLATE Chinese_PRC_CI_AS, cDefine23 TEXT COLLATE Chinese_PRC_CI_AS,
  cDefine24 TEXT COLLATE Chinese_PRC_CI_AS, cDefine25 TEXT COLLATE Chinese_PRC_CI_AS, cDefine26 REAL, cDefine27 REAL,
  cDefine28 TEXT COLLATE Chinese_PRC_CI_AS, cDefine29 TEXT COLLATE Chinese_PRC_CI_AS,
  cDefine30 TEXT COLLATE Chinese_PRC_CI_AS, cDefine31 TEXT COLLATE Chinese_PRC_CI_AS,
  cDefine32 TEXT COLLATE Chinese_PRC_CI_AS, cDefine33 TEXT COLLATE Chinese_PRC_CI_AS, cDefine34 INTEGER,
  cDefine35 INTEGER, cDefine36 INTEGER, cDefine37 INTEGER, cDepCode TEXT COLLATE Chinese_PRC_CI_AS,
  cDepName TEXT COLLATE Chinese_PRC_CI_AS, dKeepDate INTEGER, dVouDate INTEGER, cFXCode TEXT COLLATE Chinese_PRC_CI_AS,
  cFXName TEXT COLLATE Chinese_PRC_CI_AS, iQcQuantity INTEGER, iQcMoney INTEGER, iInQuantity INTEGER, iInMoney INTEGER,
  iOutQuantity INTEGER, iOutMoney INTEGER, iQmQuantity INTEGER, iQmMoney INTEGER,
  cJudgeQuantity TEXT COLLATE Chinese_PRC_CI_AS, cJudgeMoney TEXT COLLATE Chinese_PRC_CI_AS,
  cJudgeCost TEXT COLLATE Chinese_PRC_CI_AS, cState TEXT COLLATE Chinese_PRC_CI_AS, iState INTEGER, iQuantity INTEGER,
  iMoney INTEGER, cFSType TEXT COLLATE Chinese_PRC_CI_AS, cFxCName TEXT COLLATE Chinese_PRC_CI_AS,
  cAmoCode TEXT COLLATE Chinese_PRC_CI_AS, cAmoName TEXT COLLATE Chinese_PRC_CI_AS) STRICT;

create table bench_detail(
  autoid INTEGER, cWhCode TEXT COLLATE Chinese_PRC_CI_AS, cWhName TEXT COLLATE Chinese_PRC_CI_AS,
  cInvCode TEXT COLLATE Chinese_PRC_CI_AS, cInvName TEXT COLLATE Chinese_PRC_CI_AS,
  cInvStd TEXT COLLATE Chinese_PRC_CI_AS, cInvAddCode TEXT COLLATE Chinese_PRC_CI_AS,
  cUnitCode TEXT COLLATE Chinese_PRC_CI_AS, cUnitName TEXT COLLATE Chinese_PRC_CI_AS,
  cBatchIA TEXT COLLATE Chinese_PRC_CI_AS, cFree1 TEXT COLLATE Chinese_PRC_CI_AS,
  cFree2 TEXT COLLATE Chinese_PRC_CI_AS, cFree3 TEXT COLLATE Chinese_PRC_CI_AS, cFree4 TEXT COLLATE Chinese_PRC_CI_AS,
  cFree5 TEXT COLLATE Chinese_PRC_CI_AS, cFree6 TEXT COLLATE Chinese_PRC_CI_AS, cFree7 TEXT COLLATE Chinese_PRC_CI_AS,
  cFree8 TEXT COLLATE Chinese_PRC_CI_AS, cFree9 TEXT COLLATE Chinese_PRC_CI_AS, cFree10 TEXT COLLATE Chinese_PRC_CI_AS,
  cInvDefine1 TEXT COLLATE Chinese_PRC_CI_AS, cInvDefine2 TEXT COLLATE Chinese_PRC_CI_AS,
  cInvDefine3 TEXT COLLATE Chinese_PRC_CI_AS, cInvDefine4 TEXT COLLATE Chinese_PRC_CI_AS,
  cInvDefine5 TEXT COLLATE Chinese_PRC_CI_AS, cInvDefine6 TEXT COLLATE Chinese_PRC_CI_AS,
  cInvDefine7 TEXT COLLATE Chinese_PRC_CI_AS, cInvDefine8 TEXT COLLATE Chinese_PRC_CI_AS,
  cInvDefine9 TEXT COLLATE Chinese_PRC_CI_AS, cInvDefine10 TEXT COLLATE Chinese_PRC_CI_AS, cInvDefine11 INTEGER,
  cInvDefine12 INTEGER, cInvDefine13 REAL, cInvDefine14 REAL, cInvDefine15 INTEGER, cInvDefine16 INTEGER,
  cDefine1 TEXT COLLATE Chinese_PRC_CI_AS, cDefine2 TEXT COLLATE Chinese_PRC_CI_AS,
  cDefine3 TEXT COLLATE Chinese_PRC_CI_AS, cDefine4 INTEGER, cDefine5 INTEGER, cDefine6 INTEGER, cDefine7 REAL,
  cDefine8 TEXT COLLATE Chinese_PRC_CI_AS, cDefine9 TEXT COLLATE Chinese_PRC_CI_AS,
  cDefine10 TEXT COLLATE Chinese_PRC_CI_AS, cDefine11 TEXT COLLATE Chinese_PRC_CI_AS,
  cDefine12 TEXT COLLATE Chinese_PRC_CI_AS, cDefine13 TEXT COLLATE Chinese_PRC_CI_AS,
  cDefine14 TEXT COLLATE Chinese_PRC_CI_AS, cDefine15 INTEGER, cDefine16 INTEGER,
  cDefine22 TEXT COLLATE Chinese_PRC_CI_AS, cDefine23 TEXT COLLATE Chinese_PRC_CI_AS,
  cDefine24 TEXT COLLATE Chinese_PRC_CI_AS, cDefine25 TEXT COLLATE Chinese_PRC_CI_AS, cDefine26 REAL, cDefine27 REAL,
  cDefine28 TEXT COLLATE Chinese_PRC_CI_AS, cDefine29 TEXT COLLATE Chinese_PRC_CI_AS,
  cDefine30 TEXT COLLATE Chinese_PRC_CI_AS, cDefine31 TEXT COLLATE Chinese_PRC_CI_AS,
  cDefine32 TEXT COLLATE Chinese_PRC_CI_AS, cDefine33 TEXT COLLATE Chinese_PRC_CI_AS, cDefine34 INTEGER,
  cDefine35 INTEGER, cDefine36 INTEGER, cDefine37 INTEGER, cDepCode TEXT COLLATE Chinese_PRC_CI_AS,
  cDepName TEXT COLLATE Chinese_PRC_CI_AS, dKeepDate INTEGER, dVouDate INTEGER, cFXCode TEXT COLLATE Chinese_PRC_CI_AS,
  cFXName TEXT COLLATE Chinese_PRC_CI_AS, iQcQuantity INTEGER, iQcMoney INTEGER, iInQuantity INTEGER, iInMoney INTEGER,
  iOutQuantity INTEGER, iOutMoney INTEGER, iQmQuantity INTEGER, iQmMoney INTEGER,
  cJudgeQuantity TEXT COLLATE Chinese_PRC_CI_AS, cJudgeMoney TEXT COLLATE Chinese_PRC_CI_AS,
  cJudgeCost TEXT COLLATE Chinese_PRC_CI_AS, cState TEXT COLLATE Chinese_PRC_CI_AS, iState INTEGER, iQuantity INTEGER,
  iMoney INTEGER, cFSType TEXT COLLATE Chinese_PRC_CI_AS, cFxCName TEXT COLLATE Chinese_PRC_CI_AS,
  cAmoCode TEXT COLLATE Chinese_PRC_CI_AS, cAmoName TEXT COLLATE Chinese_PRC_CI_AS) STRICT;

Insert Into bench_detail
(autoid,cWhCode, cWhName, cInvCode, cInvName, cInvStd, cInvAddCode, cUnitCode, cUnitName,
cBatchia,cFree1, cFree2, cFree3, cFree4, cFree5, cFree6, cFree7, cFree8, cFree9, cFree10,
cInvDefine1,cInvDefine2,cInvDefine3,cInvDefine4,cInvDefine5,cInvDefine6,cInvDefine7,cInvDefine8,
cInvDefine9,cInvDefine10,cInvDefine11,cInvDefine12,cInvDefine13,cInvDefine14,cInvDefine15,cInvDefine16,
cDefine1, cDefine2, cDefine3, cDefine4, cDefine5, cDefine6, cDefine7, cDefine8,
cDefine9, cDefine10, cDefine11, cDefine12, cDefine13, cDefine14, cDefine15, cDefine16,
cDefine22, cDefine23, cDefine24, cDefine25, cDefine26, cDefine27, cDefine28, cDefine29,
cDefine30, cDefine31, cDefine32, cDefine33, cDefine34, cDefine35, cDefine36, cDefine37,
cDepCode, cDepName, dKeepDate, dVouDate, cFXCode, cFXName,
cState, iState, iQuantity, iMoney,
iQcQuantity, iQcMoney, iInQuantity, iInMoney, iOutQuantity, iOutMoney, iQmQuantity, iQmMoney)
Select base.autoid,wh.cWhCode, wh.cWhName, inv.cInvCode, inv.cInvName, inv.cInvStd, inv.cInvAddCode as cInvAddCode, unit.ccomunitcode As cUnitCode, unit.cComUnitName As cUnitName,
base.cBatchia,base.cFree1,base.cFree2,base.cFree3,base.cFree4,base.cFree5,base.cFree6,base.cFree7,base.cFree8,base.cFree9,base.cFree10,
cInvDefine1,cInvDefine2,cInvDefine3,cInvDefine4,cInvDefine5,cInvDefine6,cInvDefine7,cInvDefine8,
cInvDefine9,cInvDefine10,cInvDefine11,cInvDefine12,cInvDefine13,cInvDefine14,cInvDefine15,cInvDefine16,
base.cDefine1,base.cDefine2,base.cDefine3,base.cDefine4,base.cDefine5,base.cDefine6,base.cDefine7,base.cDefine8,
base.cDefine9,base.cDefine10,base.cDefine11,base.cDefine12,base.cDefine13,base.cDefine14,base.cDefine15,base.cDefine16,
base.cDefine22,base.cDefine23,base.cDefine24,base.cDefine25,base.cDefine26,base.cDefine27,base.cDefine28,base.cDefine29,
base.cDefine30,base.cDefine31,base.cDefine32,base.cDefine33,base.cDefine34,base.cDefine35,base.cDefine36,base.cDefine37,
dep.cDepCode, dep.cDepName, base.dKeepDate, base.dVouDate,
Ca_FxDef.cFxCode, Ca_FxDef.cFxName,
'期初结存' As cState,1 As iState,
(ifnull(item.iItemInquantity, 0) - ifnull(item.iItemOutquantity, 0)) As iQuantity, (ifnull(item.iItemInPrice, 0) - ifnull(item.iItemOutPrice, 0)) As iMoney ,
0 As iQcQuantity, 0 As iQcMoney,
0 As iInQuantity, 0 As iInMoney, 0 As iOutQuantity, 0 As iOutMoney,
(ifnull(item.iItemInquantity, 0) - ifnull(item.iItemOutquantity, 0)) As iQmQuantity , (ifnull(item.iItemInPrice, 0) - ifnull(item.iItemOutPrice, 0))  As iQmMoney
from ia_subsidiary_Item item
Left Join ia_subsidiary base ON item.iSubID = base.AutoID
Left Join Warehouse wh ON wh.cWhCode = base.cWhCode
left join Inventory inv ON base.cInvCode = inv.cInvCode
left join ComputationUnit unit on inv.cComunitCode = unit.ccomunitcode
left join Department dep on dep.cDepCode = base.cDepCode
Left Join Ca_FxDef ON item.iItemID = Ca_FxDef.ifxID
Where 1 = 1 And base.iYear = $year And wh.cWhCode Is Not Null
 And base.cvoutype = '34' And base.iYear = $year;

Insert Into bench_detail
(autoid,cWhCode, cWhName, cInvCode, cInvName, cInvStd, cInvAddCode, cUnitCode, cUnitName,
cBatchia,cFree1, cFree2, cFree3, cFree4, cFree5, cFree6, cFree7, cFree8, cFree9, cFree10,
cInvDefine1,cInvDefine2,cInvDefine3,cInvDefine4,cInvDefine5,cInvDefine6,cInvDefine7,cInvDefine8,
cInvDefine9,cInvDefine10,cInvDefine11,cInvDefine12,cInvDefine13,cInvDefine14,cInvDefine15,cInvDefine16,
cDefine1, cDefine2, cDefine3, cDefine4, cDefine5, cDefine6, cDefine7, cDefine8,
cDefine9, cDefine10, cDefine11, cDefine12, cDefine13, cDefine14, cDefine15, cDefine16,
cDefine22, cDefine23, cDefine24, cDefine25, cDefine26, cDefine27, cDefine28, cDefine29,
cDefine30, cDefine31, cDefine32, cDefine33, cDefine34, cDefine35, cDefine36, cDefine37,
cDepCode, cDepName, dKeepDate, dVouDate, cFXCode, cFXName,
cState, iState, iQuantity, iMoney,
iQcQuantity, iQcMoney, iInQuantity, iInMoney, iOutQuantity, iOutMoney, iQmQuantity, iQmMoney)
Select base.autoid,wh.cWhCode, wh.cWhName, inv.cInvCode, inv.cInvName, inv.cInvStd, inv.cInvAddCode as cInvAddCode, unit.ccomunitcode As cUnitCode, unit.cComUnitName As cUnitName,
base.cBatchia,base.cFree1,base.cFree2,base.cFree3,base.cFree4,base.cFree5,base.cFree6,base.cFree7,base.cFree8,base.cFree9,base.cFree10,
cInvDefine1,cInvDefine2,cInvDefine3,cInvDefine4,cInvDefine5,cInvDefine6,cInvDefine7,cInvDefine8,
cInvDefine9,cInvDefine10,cInvDefine11,cInvDefine12,cInvDefine13,cInvDefine14,cInvDefine15,cInvDefine16,
base.cDefine1,base.cDefine2,base.cDefine3,base.cDefine4,base.cDefine5,base.cDefine6,base.cDefine7,base.cDefine8,
base.cDefine9,base.cDefine10,base.cDefine11,base.cDefine12,base.cDefine13,base.cDefine14,base.cDefine15,base.cDefine16,
base.cDefine22,base.cDefine23,base.cDefine24,base.cDefine25,base.cDefine26,base.cDefine27,base.cDefine28,base.cDefine29,
base.cDefine30,base.cDefine31,base.cDefine32,base.cDefine33,base.cDefine34,base.cDefine35,base.cDefine36,base.cDefine37,
dep.cDepCode, dep.cDepName, base.dKeepDate, base.dVouDate,
Ca_FxDef.cFxCode, Ca_FxDef.cFxName,
Case When base.bRdFlag = 1 Then '收入' Else '发出' End As cState,Case When base.bRdFlag = 1 Then 2 Else 3 End As iState,
(ifnull(item.iItemInQuantity, 0) + ifnull(item.iItemOutQuantity, 0)) As iQuantity, (ifnull(item.iItemInPrice, 0) + ifnull(item.iItemOutPrice, 0)) As iMoney ,
0 As iQcQuantity, 0 As iQcMoney, 0 As iInQuantity, 0 iInMoney,
0 As iOutQuantity, 0 As iOutMoney,
(ifnull(item.iItemInquantity, 0) - ifnull(item.iItemOutquantity, 0)) As iQmQuantity, (ifnull(item.iItemInPrice, 0) - ifnull(item.iItemOutPrice, 0))  As iQmMoney
from ia_subsidiary_Item item
Left Join ia_subsidiary base ON item.iSubID = base.AutoID
Left Join Warehouse wh ON wh.cWhCode = base.cWhCode
left join Inventory inv ON base.cInvCode = inv.cInvCode
left join ComputationUnit unit on inv.cComunitCode = unit.ccomunitcode
left join Department dep on dep.cDepCode = base.cDepCode
Left Join Ca_FxDef ON item.iItemID = Ca_FxDef.ifxID
Where 1 = 1 And base.iYear = $year And wh.cWhCode Is Not Null
 And base.iMonth > 0 And base.iYear = $year;

Insert Into bench_detail
(autoid,cWhCode, cWhName, cInvCode, cInvName, cInvStd, cInvAddCode, cUnitCode, cUnitName,
cBatchia,cFree1, cFree2, cFree3, cFree4, cFree5, cFree6, cFree7, cFree8, cFree9, cFree10,
cInvDefine1,cInvDefine2,cInvDefine3,cInvDefine4,cInvDefine5,cInvDefine6,cInvDefine7,cInvDefine8,
cInvDefine9,cInvDefine10,cInvDefine11,cInvDefine12,cInvDefine13,cInvDefine14,cInvDefine15,cInvDefine16,
cDefine1, cDefine2, cDefine3, cDefine4, cDefine5, cDefine6, cDefine7, cDefine8,
cDefine9, cDefine10, cDefine11, cDefine12, cDefine13, cDefine14, cDefine15, cDefine16,
cDefine22, cDefine23, cDefine24, cDefine25, cDefine26, cDefine27, cDefine28, cDefine29,
cDefine30, cDefine31, cDefine32, cDefine33, cDefine34, cDefine35, cDefine36, cDefine37,
cDepCode, cDepName, dKeepDate, dVouDate, cFXCode, cFXName,
cState, iState, iQuantity, iMoney,
iQcQuantity, iQcMoney, iInQuantity, iInMoney, iOutQuantity, iOutMoney, iQmQuantity, iQmMoney)
Select base.autoid,wh.cWhCode, wh.cWhName, inv.cInvCode, inv.cInvName, inv.cInvStd, inv.cInvAddCode as cInvAddCode, unit.ccomunitcode As cUnitCode, unit.cComUnitName As cUnitName,
base.cBatchia,base.cFree1,base.cFree2,base.cFree3,base.cFree4,base.cFree5,base.cFree6,base.cFree7,base.cFree8,base.cFree9,base.cFree10,
cInvDefine1,cInvDefine2,cInvDefine3,cInvDefine4,cInvDefine5,cInvDefine6,cInvDefine7,cInvDefine8,
cInvDefine9,cInvDefine10,cInvDefine11,cInvDefine12,cInvDefine13,cInvDefine14,cInvDefine15,cInvDefine16,
base.cDefine1,base.cDefine2,base.cDefine3,base.cDefine4,base.cDefine5,base.cDefine6,base.cDefine7,base.cDefine8,
base.cDefine9,base.cDefine10,base.cDefine11,base.cDefine12,base.cDefine13,base.cDefine14,base.cDefine15,base.cDefine16,
base.cDefine22,base.cDefine23,base.cDefine24,base.cDefine25,base.cDefine26,base.cDefine27,base.cDefine28,base.cDefine29,
base.cDefine30,base.cDefine31,base.cDefine32,base.cDefine33,base.cDefine34,base.cDefine35,base.cDefine36,base.cDefine37,
dep.cDepCode, dep.cDepName, base.dKeepDate, base.dVouDate,
'' As cFXCode, '' As cFXName,
'期初结存' As cState,1 As iState,
null As  iQuantity, null As iMoney ,
(ifnull(base.IaInQuantity, 0) - ifnull(base.IaOutQuantity, 0)) As iQcQuantity, (ifnull(base.iainprice, 0) - ifnull(base.iaoutprice, 0)) As iQcMoney,
0 As iInQuantity, 0 As iInMoney, 0 As iOutQuantity, 0 As iOutMoney,
(ifnull(base.IaInQuantity, 0) - ifnull(base.IaOutQuantity, 0)) As iQmQuantity, (ifnull(base.iainprice, 0) - ifnull(base.iaoutprice, 0))  As iQmMoney
from ia_subsidiary base
Left Join Warehouse wh ON wh.cWhCode = base.cWhCode
left join Inventory inv ON base.cInvCode = inv.cInvCode
left join ComputationUnit unit on inv.cComunitCode = unit.ccomunitcode
left join Department dep on dep.cDepCode = base.cDepCode
Where 1 = 1 And base.iYear = $year And wh.cWhCode Is Not Null
 And base.cvoutype = '34' And base.iYear = $year;

Insert Into bench_detail
(autoid,cWhCode, cWhName, cInvCode, cInvName, cInvStd, cInvAddCode, cUnitCode, cUnitName,
cBatchia,cFree1, cFree2, cFree3, cFree4, cFree5, cFree6, cFree7, cFree8, cFree9, cFree10,
cInvDefine1,cInvDefine2,cInvDefine3,cInvDefine4,cInvDefine5,cInvDefine6,cInvDefine7,cInvDefine8,
cInvDefine9,cInvDefine10,cInvDefine11,cInvDefine12,cInvDefine13,cInvDefine14,cInvDefine15,cInvDefine16,
cDefine1, cDefine2, cDefine3, cDefine4, cDefine5, cDefine6, cDefine7, cDefine8,
cDefine9, cDefine10, cDefine11, cDefine12, cDefine13, cDefine14, cDefine15, cDefine16,
cDefine22, cDefine23, cDefine24, cDefine25, cDefine26, cDefine27, cDefine28, cDefine29,
cDefine30, cDefine31, cDefine32, cDefine33, cDefine34, cDefine35, cDefine36, cDefine37,
cDepCode, cDepName, dKeepDate, dVouDate, cFXCode, cFXName,
cState, iState, iQuantity, iMoney,
iQcQuantity, iQcMoney, iInQuantity, iInMoney, iOutQuantity, iOutMoney, iQmQuantity, iQmMoney)
Select base.autoid,wh.cWhCode, wh.cWhName, inv.cInvCode, inv.cInvName, inv.cInvStd, inv.cInvAddCode as cInvAddCode, unit.ccomunitcode As cUnitCode, unit.cComUnitName As cUnitName,
base.cBatchia,base.cFree1,base.cFree2,base.cFree3,base.cFree4,base.cFree5,base.cFree6,base.cFree7,base.cFree8,base.cFree9,base.cFree10,
cInvDefine1,cInvDefine2,cInvDefine3,cInvDefine4,cInvDefine5,cInvDefine6,cInvDefine7,cInvDefine8,
cInvDefine9,cInvDefine10,cInvDefine11,cInvDefine12,cInvDefine13,cInvDefine14,cInvDefine15,cInvDefine16,
base.cDefine1,base.cDefine2,base.cDefine3,base.cDefine4,base.cDefine5,base.cDefine6,base.cDefine7,base.cDefine8,
base.cDefine9,base.cDefine10,base.cDefine11,base.cDefine12,base.cDefine13,base.cDefine14,base.cDefine15,base.cDefine16,
base.cDefine22,base.cDefine23,base.cDefine24,base.cDefine25,base.cDefine26,base.cDefine27,base.cDefine28,base.cDefine29,
base.cDefine30,base.cDefine31,base.cDefine32,base.cDefine33,base.cDefine34,base.cDefine35,base.cDefine36,base.cDefine37,
dep.cDepCode, dep.cDepName, base.dKeepDate, base.dVouDate,
'' As cFXCode, '' As cFXName,
Case When base.bRdFlag = 1 Then '收入' Else '发出' End As cState,Case When base.bRdFlag = 1 Then 2 Else 3 End As iState,
null As  iQuantity, null As iMoney ,
0 As iQcQuantity, 0 As iQcMoney, ifnull(base.IaInQuantity, 0) As iInQuantity, ifnull(base.iainprice, 0) As iInMoney,
ifnull(base.IaOutQuantity, 0) As iOutQuantity, ifnull(base.iaoutprice, 0) As iOutMoney,
(ifnull(base.IaInQuantity, 0) - ifnull(base.IaOutQuantity, 0)) As iQmQuantity, (ifnull(base.iainprice, 0) - ifnull(base.iaoutprice, 0))  As iQmMoney
from ia_subsidiary base
Left Join Warehouse wh ON wh.cWhCode = base.cWhCode
left join Inventory inv ON base.cInvCode = inv.cInvCode
left join ComputationUnit unit on inv.cComunitCode = unit.ccomunitcode
left join Department dep on dep.cDepCode = base.cDepCode
Where 1 = 1 And base.iYear = $year And wh.cWhCode Is Not Null
 And base.iMonth > 0 And base.iYear = $year;

Insert Into bench_detail
(autoid,cWhCode, cWhName, cInvCode, cInvName, cInvStd, cInvAddCode, cUnitCode, cUnitName,
cBatchia,cFree1, cFree2, cFree3, cFree4, cFree5, cFree6, cFree7, cFree8, cFree9, cFree10,
cInvDefine1,cInvDefine2,cInvDefine3,cInvDefine4,cInvDefine5,cInvDefine6,cInvDefine7,cInvDefine8,
cInvDefine9,cInvDefine10,cInvDefine11,cInvDefine12,cInvDefine13,cInvDefine14,cInvDefine15,cInvDefine16,
cDefine1, cDefine2, cDefine3, cDefine4, cDefine5, cDefine6, cDefine7, cDefine8,
cDefine9, cDefine10, cDefine11, cDefine12, cDefine13, cDefine14, cDefine15, cDefine16,
cDefine22, cDefine23, cDefine24, cDefine25, cDefine26, cDefine27, cDefine28, cDefine29,
cDefine30, cDefine31, cDefine32, cDefine33, cDefine34, cDefine35, cDefine36, cDefine37,
cDepCode, cDepName, dKeepDate, dVouDate, cFXCode, cFXName,
cState, iState, iQuantity, iMoney)
Select autoid, cWhCode, cWhName, cInvCode, cInvName, cInvStd, cInvAddCode, cUnitCode, cUnitName,
cBatchia,cFree1, cFree2, cFree3, cFree4, cFree5, cFree6, cFree7, cFree8, cFree9, cFree10,
cInvDefine1,cInvDefine2,cInvDefine3,cInvDefine4,cInvDefine5,cInvDefine6,cInvDefine7,cInvDefine8,
cInvDefine9,cInvDefine10,cInvDefine11,cInvDefine12,cInvDefine13,cInvDefine14,cInvDefine15,cInvDefine16,
cDefine1, cDefine2, cDefine3, cDefine4, cDefine5, cDefine6, cDefine7, cDefine8,
cDefine9, cDefine10, cDefine11, cDefine12, cDefine13, cDefine14, cDefine15, cDefine16,
cDefine22, cDefine23, cDefine24, cDefine25, cDefine26, cDefine27, cDefine28, cDefine29,
cDefine30, cDefine31, cDefine32, cDefine33, cDefine34, cDefine35, cDefine36, cDefine37,
cDepCode, cDepName, dKeepDate, dVouDate, cFXCode, cFXName,
'期末结存', 4 As iState,
iQmQuantity,
iQmMoney
From bench_detail  where ifnull(cfxcode,'')<>'';

update bench_detail as old set cfxcode=oldquan.cfxcode,cfxname=oldquan.cfxname
from bench_detail oldquan
where old.autoid=oldquan.autoid and old.iState=oldquan.iState
and ifnull(old.cfxcode,'')='' and ifnull(oldquan.cfxcode,'')<>'';

Insert Into bench_result
(autoid, cWhCode, cWhName, cInvCode, cInvName, cInvStd, cInvAddCode, cUnitCode, cUnitName,
cBatchia,cFree1, cFree2, cFree3, cFree4, cFree5, cFree6, cFree7, cFree8, cFree9, cFree10,
cInvDefine1,cInvDefine2,cInvDefine3,cInvDefine4,cInvDefine5,cInvDefine6,cInvDefine7,cInvDefine8,
cInvDefine9,cInvDefine10,cInvDefine11,cInvDefine12,cInvDefine13,cInvDefine14,cInvDefine15,cInvDefine16,
cDefine1, cDefine2, cDefine3, cDefine4, cDefine5, cDefine6, cDefine7, cDefine8,
cDefine9, cDefine10, cDefine11, cDefine12, cDefine13, cDefine14, cDefine15, cDefine16,
cDefine22, cDefine23, cDefine24, cDefine25, cDefine26, cDefine27, cDefine28, cDefine29,
cDefine30, cDefine31, cDefine32, cDefine33, cDefine34, cDefine35, cDefine36, cDefine37,
cDepCode, cDepName, cFXCode, cFXName, cState, iState, iQuantity, iMoney,
iQcQuantity, iQcMoney, iInQuantity, iInMoney, iOutQuantity, iOutMoney, iQmQuantity, iQmMoney, cFSType, cFxCName, cAmoCode, cAmoName)
Select src.autoid,src.cWhCode, cWhName, src.cInvCode, cInvName, cInvStd, cInvAddCode, cUnitCode, cUnitName,
ifnull(cBatchia,''),cFree1, cFree2, cFree3, cFree4, cFree5, cFree6, cFree7, cFree8, cFree9, cFree10,
cInvDefine1,cInvDefine2,cInvDefine3,cInvDefine4,cInvDefine5,cInvDefine6,cInvDefine7,cInvDefine8,
cInvDefine9,cInvDefine10,cInvDefine11,cInvDefine12,cInvDefine13,cInvDefine14,cInvDefine15,cInvDefine16,
cDefine1, cDefine2, cDefine3, cDefine4, cDefine5, cDefine6, cDefine7, cDefine8,
cDefine9, cDefine10, cDefine11, cDefine12, cDefine13, cDefine14, cDefine15, cDefine16,
cDefine22, cDefine23, cDefine24, cDefine25, cDefine26, cDefine27, cDefine28, cDefine29,
cDefine30, cDefine31, cDefine32, cDefine33, cDefine34, cDefine35, cDefine36, cDefine37,
cDepCode, cDepName, cFXCode, cFXName, cState, iState,Sum(iQuantity) As iQuantity, Sum(iMoney) As iMoney,
Sum(iQcQuantity), Sum(iQcMoney), Sum(iInQuantity), Sum(iInMoney), Sum(iOutQuantity), Sum(iOutMoney),
Sum(ifnull(iQcQuantity, 0) + ifnull(iInQuantity, 0) - ifnull(iOutQuantity, 0)) As iQmQuantity,
Sum(ifnull(iQcMoney, 0) + ifnull(iInMoney, 0) - ifnull(iOutMoney, 0)) As iQmMoney,
'0' As cFSType, cFxCName, cAmoCode, cAmoName
From bench_detail src
group by  src.autoid,src.cWhCode, cWhName, src.cInvCode, cInvName, cInvStd, cInvAddCode, cUnitCode, cUnitName,
ifnull(cBatchia,''),cFree1, cFree2, cFree3, cFree4, cFree5, cFree6, cFree7, cFree8, cFree9, cFree10,
cInvDefine1,cInvDefine2,cInvDefine3,cInvDefine4,cInvDefine5,cInvDefine6,cInvDefine7,cInvDefine8,
cInvDefine9,cInvDefine10,cInvDefine11,cInvDefine12,cInvDefine13,cInvDefine14,cInvDefine15,cInvDefine16,
cDefine1, cDefine2, cDefine3, cDefine4, cDefine5, cDefine6, cDefine7, cDefine8,
cDefine9, cDefine10, cDefine11, cDefine12, cDefine13, cDefine14, cDefine15, cDefine16,
cDefine22, cDefine23, cDefine24, cDefine25, cDefine26, cDefine27, cDefine28, cDefine29,
cDefine30, cDefine31, cDefine32, cDefine33, cDefine34, cDefine35, cDefine36, cDefine37,
cDepCode, cDepName, cFXCode, cFXName,cState, iState, cFxCName, cAmoCode, cAmoName;

delete from bench_result where ifnull(cfxcode,'')='' and ifnull(cfxname,'')='';

drop table if exists bench_detail;
