-- The statements of the outbound summary (by cost-item class, one year), translated by hand into SQLite's SQL: the
-- report with the T-SQL front end is compared with these. $year is put in. Figures lie in the account as scaled
-- integers, so adding them needs no help.

Select cValue
From AccInformation
Where cSysID = 'CA' And cID = '11002';

drop table if exists bench_detail;
create table bench_detail(
  autoid INTEGER, cSource TEXT COLLATE Chinese_PRC_CI_AS, dVouDate INTEGER, cVouType TEXT COLLATE Chinese_PRC_CI_AS,
  cBusType TEXT COLLATE Chinese_PRC_CI_AS, cVouCode TEXT COLLATE Chinese_PRC_CI_AS, cWhCode TEXT COLLATE
  Chinese_PRC_CI_AS, cWhName TEXT COLLATE Chinese_PRC_CI_AS, cInvCCode TEXT COLLATE Chinese_PRC_CI_AS, cInvCode TEXT
  COLLATE Chinese_PRC_CI_AS, cInvName TEXT COLLATE Chinese_PRC_CI_AS, cInvStd TEXT COLLATE Chinese_PRC_CI_AS,
  cInvAddCode TEXT COLLATE Chinese_PRC_CI_AS, cInvPspCode TEXT COLLATE Chinese_PRC_CI_AS, cInvPspName TEXT COLLATE
  Chinese_PRC_CI_AS, dKeepDate INTEGER, RdCode TEXT COLLATE Chinese_PRC_CI_AS, RdName TEXT COLLATE
  Chinese_PRC_CI_AS, cCostCenter TEXT COLLATE Chinese_PRC_CI_AS, cCostCenterName TEXT COLLATE Chinese_PRC_CI_AS,
  cDepCode TEXT COLLATE Chinese_PRC_CI_AS, cDepName TEXT COLLATE Chinese_PRC_CI_AS, cProCode TEXT COLLATE
  Chinese_PRC_CI_AS, cWhDep TEXT COLLATE Chinese_PRC_CI_AS, cWhDepName TEXT COLLATE Chinese_PRC_CI_AS, cCusCCode
  TEXT COLLATE Chinese_PRC_CI_AS, cCusCName TEXT COLLATE Chinese_PRC_CI_AS, cCusCode TEXT COLLATE Chinese_PRC_CI_AS,
  cCusName TEXT COLLATE Chinese_PRC_CI_AS, cVenCode TEXT COLLATE Chinese_PRC_CI_AS, cVenName TEXT COLLATE
  Chinese_PRC_CI_AS, cItem_Class TEXT COLLATE Chinese_PRC_CI_AS, cItem_ClassName TEXT COLLATE Chinese_PRC_CI_AS,
  cItemCCode TEXT COLLATE Chinese_PRC_CI_AS, cItemCName TEXT COLLATE Chinese_PRC_CI_AS, cItemCode TEXT COLLATE
  Chinese_PRC_CI_AS, cItemName TEXT COLLATE Chinese_PRC_CI_AS, cOppHead TEXT COLLATE Chinese_PRC_CI_AS, cOppHeadName
  TEXT COLLATE Chinese_PRC_CI_AS, strContractCode TEXT COLLATE Chinese_PRC_CI_AS, cProordercode TEXT COLLATE
  Chinese_PRC_CI_AS, iProorderids INTEGER, cworkprocode TEXT COLLATE Chinese_PRC_CI_AS, cworkcentercode TEXT COLLATE
  Chinese_PRC_CI_AS, cworkcentername TEXT COLLATE Chinese_PRC_CI_AS, cSaleorderCode TEXT COLLATE Chinese_PRC_CI_AS,
  isaleorderids INTEGER, exoCode TEXT COLLATE Chinese_PRC_CI_AS, iexrowno INTEGER, cImordercode TEXT COLLATE
  Chinese_PRC_CI_AS, cpurorderCode TEXT COLLATE Chinese_PRC_CI_AS, centrustordercode TEXT COLLATE Chinese_PRC_CI_AS,
  cBuscode TEXT COLLATE Chinese_PRC_CI_AS, cperson TEXT COLLATE Chinese_PRC_CI_AS, cPersonName TEXT COLLATE
  Chinese_PRC_CI_AS, cMaker TEXT COLLATE Chinese_PRC_CI_AS, cMakerName TEXT COLLATE Chinese_PRC_CI_AS, cDefine1 TEXT
  COLLATE Chinese_PRC_CI_AS, cDefine2 TEXT COLLATE Chinese_PRC_CI_AS, cDefine3 TEXT COLLATE Chinese_PRC_CI_AS,
  cDefine4 INTEGER, cDefine5 INTEGER, cDefine6 INTEGER, cDefine7 REAL, cDefine8 TEXT COLLATE Chinese_PRC_CI_AS,
  cDefine9 TEXT COLLATE Chinese_PRC_CI_AS, cDefine10 TEXT COLLATE Chinese_PRC_CI_AS, cDefine11 TEXT COLLATE
  Chinese_PRC_CI_AS, cDefine12 TEXT COLLATE Chinese_PRC_CI_AS, cDefine13 TEXT COLLATE Chinese_PRC_CI_AS, cDefine14
  TEXT COLLATE Chinese_PRC_CI_AS, cDefine15 INTEGER, cDefine16 INTEGER, cDefine22 TEXT COLLATE Chinese_PRC_CI_AS,
  cDefine23 TEXT COLLATE Chinese_PRC_CI_AS, cDefine24 TEXT COLLATE Chinese_PRC_CI_AS, cDefine25 TEXT COLLATE
  Chinese_PRC_CI_AS, cDefine26 REAL, cDefine27 REAL, cDefine28 TEXT COLLATE Chinese_PRC_CI_AS, cDefine29 TEXT
  COLLATE Chinese_PRC_CI_AS, cDefine30 TEXT COLLATE Chinese_PRC_CI_AS, cDefine31 TEXT COLLATE Chinese_PRC_CI_AS,
  cDefine32 TEXT COLLATE Chinese_PRC_CI_AS, cDefine33 TEXT COLLATE Chinese_PRC_CI_AS, cDefine34 INTEGER, cDefine35
  INTEGER, cDefine36 INTEGER, cDefine37 INTEGER, cInvDefine1 TEXT COLLATE Chinese_PRC_CI_AS, cInvDefine2 TEXT
  COLLATE Chinese_PRC_CI_AS, cInvDefine3 TEXT COLLATE Chinese_PRC_CI_AS, cInvDefine4 TEXT COLLATE Chinese_PRC_CI_AS,
  cInvDefine5 TEXT COLLATE Chinese_PRC_CI_AS, cInvDefine6 TEXT COLLATE Chinese_PRC_CI_AS, cInvDefine7 TEXT COLLATE
  Chinese_PRC_CI_AS, cInvDefine8 TEXT COLLATE Chinese_PRC_CI_AS, cInvDefine9 TEXT COLLATE Chinese_PRC_CI_AS,
  cInvDefine10 TEXT COLLATE Chinese_PRC_CI_AS, cInvDefine11 INTEGER, cInvDefine12 INTEGER, cInvDefine13 REAL,
  cInvDefine14 REAL, cInvDefine15 INTEGER, cInvDefine16 INTEGER, cBatchia TEXT COLLATE Chinese_PRC_CI_AS, cFree1
  TEXT COLLATE Chinese_PRC_CI_AS, cFree2 TEXT COLLATE Chinese_PRC_CI_AS, cFree3 TEXT COLLATE Chinese_PRC_CI_AS,
  cFree4 TEXT COLLATE Chinese_PRC_CI_AS, cFree5 TEXT COLLATE Chinese_PRC_CI_AS, cFree6 TEXT COLLATE
  Chinese_PRC_CI_AS, cFree7 TEXT COLLATE Chinese_PRC_CI_AS, cFree8 TEXT COLLATE Chinese_PRC_CI_AS, cFree9 TEXT
  COLLATE Chinese_PRC_CI_AS, cFree10 TEXT COLLATE Chinese_PRC_CI_AS, cFXCode TEXT COLLATE Chinese_PRC_CI_AS, cFXName
  TEXT COLLATE Chinese_PRC_CI_AS, iQuantity INTEGER, iMoney INTEGER, iFXMoney INTEGER, cCross TEXT COLLATE
  Chinese_PRC_CI_AS, cFxCName TEXT COLLATE Chinese_PRC_CI_AS, cAmoCode TEXT COLLATE Chinese_PRC_CI_AS, cAmoName TEXT
  COLLATE Chinese_PRC_CI_AS) STRICT;

create table bench_result(
  autoid INTEGER, cSource TEXT COLLATE Chinese_PRC_CI_AS, dVouDate INTEGER, cVouType TEXT COLLATE Chinese_PRC_CI_AS,
  cBusType TEXT COLLATE Chinese_PRC_CI_AS, cVouCode TEXT COLLATE Chinese_PRC_CI_AS, cWhCode TEXT COLLATE
  Chinese_PRC_CI_AS, cWhName TEXT COLLATE Chinese_PRC_CI_AS, cInvCCode TEXT COLLATE Chinese_PRC_CI_AS, cInvCode TEXT
  COLLATE Chinese_PRC_CI_AS, cInvName TEXT COLLATE Chinese_PRC_CI_AS, cInvStd TEXT COLLATE Chinese_PRC_CI_AS,
  cInvAddCode TEXT COLLATE Chinese_PRC_CI_AS, cInvPspCode TEXT COLLATE Chinese_PRC_CI_AS, cInvPspName TEXT COLLATE
  Chinese_PRC_CI_AS, dKeepDate INTEGER, RdCode TEXT COLLATE Chinese_PRC_CI_AS, RdName TEXT COLLATE
  Chinese_PRC_CI_AS, cCostCenter TEXT COLLATE Chinese_PRC_CI_AS, cCostCenterName TEXT COLLATE Chinese_PRC_CI_AS,
  cDepCode TEXT COLLATE Chinese_PRC_CI_AS, cDepName TEXT COLLATE Chinese_PRC_CI_AS, cProCode TEXT COLLATE
  Chinese_PRC_CI_AS, cWhDep TEXT COLLATE Chinese_PRC_CI_AS, cWhDepName TEXT COLLATE Chinese_PRC_CI_AS, cCusCCode
  TEXT COLLATE Chinese_PRC_CI_AS, cCusCName TEXT COLLATE Chinese_PRC_CI_AS, cCusCode TEXT COLLATE Chinese_PRC_CI_AS,
  cCusName TEXT COLLATE Chinese_PRC_CI_AS, cVenCode TEXT COLLATE Chinese_PRC_CI_AS, cVenName TEXT COLLATE
  Chinese_PRC_CI_AS, cItem_Class TEXT COLLATE Chinese_PRC_CI_AS, cItem_ClassName TEXT COLLATE Chinese_PRC_CI_AS,
  cItemCCode TEXT COLLATE Chinese_PRC_CI_AS, cItemCName TEXT COLLATE Chinese_PRC_CI_AS, cItemCode TEXT COLLATE
  Chinese_PRC_CI_AS, cItemName TEXT COLLATE Chinese_PRC_CI_AS, cOppHead TEXT COLLATE Chinese_PRC_CI_AS, cOppHeadName
  TEXT COLLATE Chinese_PRC_CI_AS, strContractCode TEXT COLLATE Chinese_PRC_CI_AS, cProordercode TEXT COLLATE
  Chinese_PRC_CI_AS, iProorderids INTEGER, cworkprocode TEXT COLLATE Chinese_PRC_CI_AS, cworkcentercode TEXT COLLATE
  Chinese_PRC_CI_AS, cworkcentername TEXT COLLATE Chinese_PRC_CI_AS, cSaleorderCode TEXT COLLATE Chinese_PRC_CI_AS,
  isaleorderids INTEGER, exoCode TEXT COLLATE Chinese_PRC_CI_AS, iexrowno INTEGER, cImordercode TEXT COLLATE
  Chinese_PRC_CI_AS, cpurorderCode TEXT COLLATE Chinese_PRC_CI_AS, centrustordercode TEXT COLLATE Chinese_PRC_CI_AS,
  cBuscode TEXT COLLATE Chinese_PRC_CI_AS, cperson TEXT COLLATE Chinese_PRC_CI_AS, cPersonName TEXT COLLATE
  Chinese_PRC_CI_AS, cMaker TEXT COLLATE Chinese_PRC_CI_AS, cMakerName TEXT COLLATE Chinese_PRC_CI_AS, cDefine1 TEXT
  COLLATE Chinese_PRC_CI_AS, cDefine2 TEXT COLLATE Chinese_PRC_CI_AS, cDefine3 TEXT COLLATE Chinese_PRC_CI_AS,
  cDefine4 INTEGER, cDefine5 INTEGER, cDefine6 INTEGER, cDefine7 REAL, cDefine8 TEXT COLLATE Chinese_PRC_CI_AS,
  cDefine9 TEXT COLLATE Chinese_PRC_CI_AS, cDefine10 TEXT COLLATE Chinese_PRC_CI_AS, cDefine11 TEXT COLLATE
  Chinese_PRC_CI_AS, cDefine12 TEXT COLLATE Chinese_PRC_CI_AS, cDefine13 TEXT COLLATE Chinese_PRC_CI_AS, cDefine14
  TEXT COLLATE Chinese_PRC_CI_AS, cDefine15 INTEGER, cDefine16 INTEGER, cDefine22 TEXT COLLATE Chinese_PRC_CI_AS,
  cDefine23 TEXT COLLATE Chinese_PRC_CI_AS, cDefine24 TEXT COLLATE Chinese_PRC_CI_AS, cDefine25 TEXT COLLATE
  Chinese_PRC_CI_AS, cDefine26 REAL, cDefine27 REAL, cDefine28 TEXT COLLATE Chinese_PRC_CI_AS, cDefine29 TEXT
  COLLATE Chinese_PRC_CI_AS, cDefine30 TEXT COLLATE Chinese_PRC_CI_AS, cDefine31 TEXT COLLATE Chinese_PRC_CI_AS,
  cDefine32 TEXT COLLATE Chinese_PRC_CI_AS, cDefine33 TEXT COLLATE Chinese_PRC_CI_AS, cDefine34 INTEGER, cDefine35
  INTEGER, cDefine36 INTEGER, cDefine37 INTEGER, cInvDefine1 TEXT COLLATE Chinese_PRC_CI_AS, cInvDefine2 TEXT
  COLLATE Chinese_PRC_CI_AS, cInvDefine3 TEXT COLLATE Chinese_PRC_CI_AS, cInvDefine4 TEXT COLLATE Chinese_PRC_CI_AS,
  cInvDefine5 TEXT COLLATE Chinese_PRC_CI_AS, cInvDefine6 TEXT COLLATE Chinese_PRC_CI_AS, cInvDefine7 TEXT COLLATE
  Chinese_PRC_CI_AS, cInvDefine8 TEXT COLLATE Chinese_PRC_CI_AS, cInvDefine9 TEXT COLLATE Chinese_PRC_CI_AS,
  cInvDefine10 TEXT COLLATE Chinese_PRC_CI_AS, cInvDefine11 INTEGER, cInvDefine12 INTEGER, cInvDefine13 REAL,
  cInvDefine14 REAL, cInvDefine15 INTEGER, cInvDefine16 INTEGER, cBatchia TEXT COLLATE Chinese_PRC_CI_AS, cFree1
  TEXT COLLATE Chinese_PRC_CI_AS, cFree2 TEXT COLLATE Chinese_PRC_CI_AS, cFree3 TEXT COLLATE Chinese_PRC_CI_AS,
  cFree4 TEXT COLLATE Chinese_PRC_CI_AS, cFree5 TEXT COLLATE Chinese_PRC_CI_AS, cFree6 TEXT COLLATE
  Chinese_PRC_CI_AS, cFree7 TEXT COLLATE Chinese_PRC_CI_AS, cFree8 TEXT COLLATE Chinese_PRC_CI_AS, cFree9 TEXT
  COLLATE Chinese_PRC_CI_AS, cFree10 TEXT COLLATE Chinese_PRC_CI_AS, cFXCode TEXT COLLATE Chinese_PRC_CI_AS, cFXName
  TEXT COLLATE Chinese_PRC_CI_AS, iQuantity INTEGER, iMoney INTEGER, iFXMoney INTEGER, cCross TEXT COLLATE
  Chinese_PRC_CI_AS, cFxCName TEXT COLLATE Chinese_PRC_CI_AS, cAmoCode TEXT COLLATE Chinese_PRC_CI_AS, cAmoName TEXT
  COLLATE Chinese_PRC_CI_AS) STRICT;

Insert Into bench_detail (autoid, dVouDate, cVouType, cBusType, cVouCode, cWhCode, cWhName, cInvCCode, cInvCode,
  cInvName, cInvStd, cInvAddCode, cInvPspCode, cInvPspName, dKeepDate, RdCode, RdName, cCostCenter, cCostCenterName,
  cDepCode, cDepName, cProCode, cWhDep, cWhDepName, cCusCCode, cCusCName, cCusCode, cCusName, cVenCode, cVenName,
  cItem_Class, cItem_ClassName, cItemCCode, cItemCName, cItemCode, cItemName, cOppHead, cOppHeadName, strContractCode,
  cProordercode, iProorderids, cworkprocode, cworkcentercode, cworkcentername, cSaleorderCode, isaleorderids, exoCode,
  iexrowno, cImordercode, cpurorderCode, centrustordercode, cBuscode, cperson, cPersonName, cMaker, cMakerName,
  cDefine1, cDefine2, cDefine3, cDefine4, cDefine5, cDefine6, cDefine7, cDefine8, cDefine9, cDefine10, cDefine11,
  cDefine12, cDefine13, cDefine14, cDefine15, cDefine16, cDefine22, cDefine23, cDefine24, cDefine25, cDefine26,
  cDefine27, cDefine28, cDefine29, cDefine30, cDefine31, cDefine32, cDefine33, cDefine34, cDefine35, cDefine36,
  cDefine37, cInvDefine1,cInvDefine2,cInvDefine3,cInvDefine4,cInvDefine5,cInvDefine6,cInvDefine7,cInvDefine8,
  cInvDefine9,cInvDefine10,cInvDefine11,cInvDefine12,cInvDefine13,cInvDefine14,cInvDefine15,cInvDefine16,
  cbatchia,cFree1, cFree2, cFree3, cFree4, cFree5, cFree6, cFree7, cFree8, cFree9, cFree10, cFXCode, cFXName,
  iQuantity, iMoney, iFXMoney)
Select base.autoid, base.dVouDate, base.cVouType, base.cBusType, base.cVouCode, wh.cWhCode, wh.cWhName, inv.cInvCCode,
  inv.cInvCode, inv.cInvName, inv.cInvStd, inv.cInvAddCode, base.cPspCode As cInvPspCode, psp.cInvName As cInvPspName,
  base.dKeepDate, base.cRdCode As RdCode, Rd_Style.cRdName As RdName, cost.cCostCenter, cost.cCostCenterName,
  base.cAccDep As cDepCode, dep.cDepName, base.cProCode, base.cDepCode As cWhDep, whdep.cDepName As cWhDepName,
  cus.cCCCode As cCusCCode, cuscls.cCCName As cCusCName, base.cCusCode, cus.cCusName, base.cVenCode, ven.cVenName,
  base.cItem_Class, fItem.citem_name As cItem_ClassName, '' As cItemCCode, base.cItemCName, base.cItemCode, base.cName
  As cItemName, base.cOppHead, code.ccode_name As cOppHeadName, base.strContractCode, base.cProordercode,
  base.iProorderids, base.cworkprocode, base.cworkcentercode, base.cworkcentername, base.cSaleorderCode,
  base.isaleorderids, base.exoCode, base.iexrowno, base.cImordercode, base.cpurorderCode, base.centrustordercode,
  base.cBuscode, base.cPersonCode As cperson, person.cPersonName, base.cMaker, maker.cUser_Name As cMakerName,
  base.cDefine1,base.cDefine2,base.cDefine3,base.cDefine4,base.cDefine5,base.cDefine6,base.cDefine7,base.cDefine8,
  base.cDefine9,base.cDefine10,base.cDefine11,base.cDefine12,base.cDefine13,base.cDefine14,base.cDefine15,base.cDefine16,
  base.cDefine22,base.cDefine23,base.cDefine24,base.cDefine25,base.cDefine26,base.cDefine27,base.cDefine28,base.cDefine29,
  base.cDefine30,base.cDefine31,base.cDefine32,base.cDefine33,base.cDefine34,base.cDefine35,base.cDefine36,base.cDefine37,
  inv.cInvDefine1,inv.cInvDefine2,inv.cInvDefine3,inv.cInvDefine4,inv.cInvDefine5,inv.cInvDefine6,inv.cInvDefine7,inv.cInvDefine8,
  inv.cInvDefine9,inv.cInvDefine10,inv.cInvDefine11,inv.cInvDefine12,inv.cInvDefine13,inv.cInvDefine14,inv.cInvDefine15,inv.cInvDefine16,
  base.cBatchia,base.cFree1,base.cFree2,base.cFree3,base.cFree4,base.cFree5,base.cFree6,base.cFree7,base.cFree8,base.cFree9,base.cFree10,
  ifnull(fxcls.cFxCCode, Ca_FxClassDef.cFxCCode) As cFXCode, ifnull(fxcls.cfxCName, Ca_FxClassDef.cfxCName) As
  cFXName, item.iItemOutQuantity As iQuantity,item.iItemOutPrice As iMoney, item.iItemOutPrice As iFXMoney
from ia_subsidiary_Item item
Left Join ia_subsidiary base ON item.iSubID = base.AutoID
Left Join Warehouse wh ON wh.cWhCode = base.cWhCode
Left Join Inventory inv ON inv.cInvCode = base.cInvCode
Left Join Inventory psp ON psp.cInvCode = base.cPspCode
Left Join Rd_Style ON Rd_Style.cRdCode = base.cRdCode
Left Join sfc_workcenter work ON work.Description = base.cworkcentername
Left Join CA_CostCenterMap costmap ON costmap.cDepCode = Case When bISWCID = 1 Then work.WcCode Else base.cAccDep End
Left Join CA_CostCenter cost ON cost.cCostCenter = costmap.cCostCenter
Left Join ComputationUnit unit ON unit.cComunitCode = inv.cComunitCode
Left Join Customer cus ON cus.cCusCode = base.cCusCode
Left Join CustomerClass cuscls ON cuscls.cCCCode = cus.cCCCode
Left Join Vendor ven ON ven.cVenCode = base.cVenCode
Left Join Department dep ON dep.cDepCode = base.cAccDep
Left Join Department whdep ON whdep.cDepCode = base.cDepCode
Left Join Code code ON code.ccode = base.cOppHead And code.iyear = base.iYear
Left Join Person person ON person.cPersonCode = base.cPersonCode
Left Join "orvsystem..ua_user" maker ON maker.cUser_Id = base.cMaker
Left Join fItem ON fItem.citem_class = base.cItem_Class
Left Join Ca_FxDef ON item.iItemID = Ca_FxDef.ifxID
Left Join Ca_FxClassDef ON Ca_FxDef.cFxCID = Ca_FxClassDef.iFxCID
Left Join Ca_FxClassDef fxcls ON Ca_FxClassDef.cFxCCode like fxcls.cFxCCode || '%' And fxcls.iGrade = 1
Where 1 = 1 And base.iYear = $year And wh.cWhCode Is Not Null And base.bRdflag = 0 And base.iYear = $year;

Insert Into bench_detail (autoid, dVouDate, cVouType, cBusType, cVouCode, cWhCode, cWhName, cInvCCode, cInvCode,
  cInvName, cInvStd, cInvAddCode, cInvPspCode, cInvPspName, dKeepDate, RdCode, RdName, cCostCenter, cCostCenterName,
  cDepCode, cDepName, cProCode, cWhDep, cWhDepName, cCusCCode, cCusCName, cCusCode, cCusName, cVenCode, cVenName,
  cItem_Class, cItem_ClassName, cItemCCode, cItemCName, cItemCode, cItemName, cOppHead, cOppHeadName, strContractCode,
  cProordercode, iProorderids, cworkprocode, cworkcentercode, cworkcentername, cSaleorderCode, isaleorderids, exoCode,
  iexrowno, cImordercode, cpurorderCode, centrustordercode, cBuscode, cperson, cPersonName, cMaker, cMakerName,
  cDefine1, cDefine2, cDefine3, cDefine4, cDefine5, cDefine6, cDefine7, cDefine8, cDefine9, cDefine10, cDefine11,
  cDefine12, cDefine13, cDefine14, cDefine15, cDefine16, cDefine22, cDefine23, cDefine24, cDefine25, cDefine26,
  cDefine27, cDefine28, cDefine29, cDefine30, cDefine31, cDefine32, cDefine33, cDefine34, cDefine35, cDefine36,
  cDefine37, cInvDefine1,cInvDefine2,cInvDefine3,cInvDefine4,cInvDefine5,cInvDefine6,cInvDefine7,cInvDefine8,
  cInvDefine9,cInvDefine10,cInvDefine11,cInvDefine12,cInvDefine13,cInvDefine14,cInvDefine15,cInvDefine16,
  cbatchia,cFree1, cFree2, cFree3, cFree4, cFree5, cFree6, cFree7, cFree8, cFree9, cFree10, cFXCode, cFXName,
  iQuantity, iMoney, iFXMoney)
Select base.autoid, base.dVouDate, base.cVouType, base.cBusType, base.cVouCode, wh.cWhCode, wh.cWhName, inv.cInvCCode,
  inv.cInvCode, inv.cInvName, inv.cInvStd, inv.cInvAddCode, base.cPspCode As cInvPspCode, psp.cInvName As cInvPspName,
  base.dKeepDate, base.cRdCode As RdCode, Rd_Style.cRdName As RdName, cost.cCostCenter, cost.cCostCenterName,
  base.cAccDep As cDepCode, dep.cDepName, base.cProCode, base.cDepCode As cWhDep, whdep.cDepName As cWhDepName,
  cus.cCCCode As cCusCCode, cuscls.cCCName As cCusCName, base.cCusCode, cus.cCusName, base.cVenCode, ven.cVenName,
  base.cItem_Class, fItem.citem_name As cItem_ClassName, '' As cItemCCode, base.cItemCName, base.cItemCode, base.cName
  As cItemName, base.cOppHead, code.ccode_name As cOppHeadName, base.strContractCode, base.cProordercode,
  base.iProorderids, base.cworkprocode, base.cworkcentercode, base.cworkcentername, base.cSaleorderCode,
  base.isaleorderids, base.exoCode, base.iexrowno, base.cImordercode, base.cpurorderCode, base.centrustordercode,
  base.cBuscode, base.cPersonCode As cperson, person.cPersonName, base.cMaker, maker.cUser_Name As cMakerName,
  base.cDefine1,base.cDefine2,base.cDefine3,base.cDefine4,base.cDefine5,base.cDefine6,base.cDefine7,base.cDefine8,
  base.cDefine9,base.cDefine10,base.cDefine11,base.cDefine12,base.cDefine13,base.cDefine14,base.cDefine15,base.cDefine16,
  base.cDefine22,base.cDefine23,base.cDefine24,base.cDefine25,base.cDefine26,base.cDefine27,base.cDefine28,base.cDefine29,
  base.cDefine30,base.cDefine31,base.cDefine32,base.cDefine33,base.cDefine34,base.cDefine35,base.cDefine36,base.cDefine37,
  inv.cInvDefine1,inv.cInvDefine2,inv.cInvDefine3,inv.cInvDefine4,inv.cInvDefine5,inv.cInvDefine6,inv.cInvDefine7,inv.cInvDefine8,
  inv.cInvDefine9,inv.cInvDefine10,inv.cInvDefine11,inv.cInvDefine12,inv.cInvDefine13,inv.cInvDefine14,inv.cInvDefine15,inv.cInvDefine16,
  base.cBatchia,base.cFree1,base.cFree2,base.cFree3,base.cFree4,base.cFree5,base.cFree6,base.cFree7,base.cFree8,base.cFree9,base.cFree10,
  null as cFxCode, null as cFxName, base.iAOutQuantity As iQuantity,base.iAOutPrice As iMoney, null As iFXMoney
from ia_subsidiary base
Left Join Warehouse wh ON wh.cWhCode = base.cWhCode
Left Join Inventory inv ON inv.cInvCode = base.cInvCode
Left Join Inventory psp ON psp.cInvCode = base.cPspCode
Left Join Rd_Style ON Rd_Style.cRdCode = base.cRdCode
Left Join sfc_workcenter work ON work.Description = base.cworkcentername
Left Join CA_CostCenterMap costmap ON costmap.cDepCode = Case When bISWCID = 1 Then work.WcCode Else base.cAccDep End
Left Join CA_CostCenter cost ON cost.cCostCenter = costmap.cCostCenter
Left Join ComputationUnit unit ON unit.cComunitCode = inv.cComunitCode
Left Join Customer cus ON cus.cCusCode = base.cCusCode
Left Join CustomerClass cuscls ON cuscls.cCCCode = cus.cCCCode
Left Join Vendor ven ON ven.cVenCode = base.cVenCode
Left Join Department dep ON dep.cDepCode = base.cAccDep
Left Join Department whdep ON whdep.cDepCode = base.cDepCode
Left Join Code code ON code.ccode = base.cOppHead And code.iyear = base.iYear
Left Join Person person ON person.cPersonCode = base.cPersonCode
Left Join "orvsystem..ua_user" maker ON maker.cUser_Id = base.cMaker
Left Join fItem ON fItem.citem_class = base.cItem_Class
Where 1 = 1 And base.iYear = $year And wh.cWhCode Is Not Null And base.bRdflag = 0 And base.iYear = $year
And Not Exists(Select 1 From ia_subsidiary_Item item Where item.iSubID = base.AutoID);

Select Distinct base.cItem_Class, fItem.cClasstable, fItem.ctable
From bench_detail base
Left Join fItem On base.cItem_Class = fItem.citem_class
Where base.cItem_Class Is not null;

update bench_detail set cItemCCode = invcls.cInvCCode, cItemCName = invcls.cInvCName
from Inventory inv
inner join InventoryClass invcls on inv.cInvCCode = invcls.cInvCCode
where bench_detail.cItemCode = inv.cInvCode and bench_detail.cItem_Class = 'ch';

update bench_detail set cItemCCode = tarcls.cItemCCode, cItemCName = tarcls.cItemCName
from fItem_Project tar
inner join fItem_ProjectClass tarcls on tar.cItemCCode = tarcls.cItemCCode
where bench_detail.cItemCode = tar.cItemCode and bench_detail.cItem_Class = '00';

update bench_detail set cItemCCode = tarcls.cItemCCode, cItemCName = tarcls.cItemCName
from fItem_Research tar
inner join fItem_ResearchClass tarcls on tar.cItemCCode = tarcls.cItemCCode
where bench_detail.cItemCode = tar.cItemCode and bench_detail.cItem_Class = '01';

Insert Into bench_result (autoid, dVouDate, cVouType, cBusType, cVouCode, cWhCode, cWhName, cInvCCode, cInvCode,
  cInvName, cInvStd, cInvAddCode, cInvPspCode, cInvPspName, dKeepDate, RdCode, RdName, cCostCenter, cCostCenterName,
  cDepCode, cDepName, cProCode, cWhDep, cWhDepName, cCusCCode, cCusCName, cCusCode, cCusName, cVenCode, cVenName,
  cItem_Class, cItem_ClassName, cItemCCode, cItemCName, cItemCode, cItemName, cOppHead, cOppHeadName, strContractCode,
  cProordercode, iProorderids, cworkprocode, cworkcentercode, cworkcentername, cSaleorderCode, isaleorderids, exoCode,
  iexrowno, cImordercode, cpurorderCode, centrustordercode, cBuscode, cperson, cPersonName, cMaker, cMakerName,
  cDefine1, cDefine2, cDefine3, cDefine4, cDefine5, cDefine6, cDefine7, cDefine8, cDefine9, cDefine10, cDefine11,
  cDefine12, cDefine13, cDefine14, cDefine15, cDefine16, cDefine22, cDefine23, cDefine24, cDefine25, cDefine26,
  cDefine27, cDefine28, cDefine29, cDefine30, cDefine31, cDefine32, cDefine33, cDefine34, cDefine35, cDefine36,
  cDefine37, cInvDefine1,cInvDefine2,cInvDefine3,cInvDefine4,cInvDefine5,cInvDefine6,cInvDefine7,cInvDefine8,
  cInvDefine9,cInvDefine10,cInvDefine11,cInvDefine12,cInvDefine13,cInvDefine14,cInvDefine15,cInvDefine16,
  cbatchia,cFree1, cFree2, cFree3, cFree4, cFree5, cFree6, cFree7, cFree8, cFree9, cFree10, cFXCode, cFXName,
  iQuantity, iMoney, iFXMoney, cFxCName, cAmoCode, cAmoName)
Select autoid, dVouDate, cVouType, cBusType, cVouCode, cWhCode, cWhName, cInvCCode, cInvCode, cInvName, cInvStd,
  cInvAddCode, cInvPspCode, cInvPspName, dKeepDate, RdCode, RdName, cCostCenter, cCostCenterName, cDepCode, cDepName,
  cProCode, cWhDep, cWhDepName, cCusCCode, cCusCName, cCusCode, cCusName, cVenCode, cVenName, cItem_Class,
  cItem_ClassName, cItemCCode, cItemCName, cItemCode, cItemName, cOppHead, cOppHeadName, strContractCode,
  cProordercode, iProorderids, cworkprocode, cworkcentercode, cworkcentername, cSaleorderCode, isaleorderids, exoCode,
  iexrowno, cImordercode, cpurorderCode, centrustordercode, cBuscode, cperson, cPersonName, cMaker, cMakerName,
  cDefine1, cDefine2, cDefine3, cDefine4, cDefine5, cDefine6, cDefine7, cDefine8, cDefine9, cDefine10, cDefine11,
  cDefine12, cDefine13, cDefine14, cDefine15, cDefine16, cDefine22, cDefine23, cDefine24, cDefine25, cDefine26,
  cDefine27, cDefine28, cDefine29, cDefine30, cDefine31, cDefine32, cDefine33, cDefine34, cDefine35, cDefine36,
  cDefine37, cInvDefine1,cInvDefine2,cInvDefine3,cInvDefine4,cInvDefine5,cInvDefine6,cInvDefine7,cInvDefine8,
  cInvDefine9,cInvDefine10,cInvDefine11,cInvDefine12,cInvDefine13,cInvDefine14,cInvDefine15,cInvDefine16,
  ifnull(cbatchia,''),cFree1, cFree2, cFree3, cFree4, cFree5, cFree6, cFree7, cFree8, cFree9, cFree10, ifnull(cFXCode,
  '') As cFXCode, ifnull(cFXName, '') As cFXName, iQuantity, iMoney, iFXMoney, cFxCName, cAmoCode, cAmoName
From bench_detail;

update bench_result set cBusType = AA.EnumName
from AA_Enum AA
where bench_result.cBusType = AA.EnumCode and AA.EnumType = 'IA.BusType' and AA.LocaleId = 'zh-CN';

update bench_result set cVouType = AA_Enum.EnumName
from VouchType
inner join AA_Enum on VouchType.cVouchName = AA_Enum.EnumCode
where case when bench_result.cVouType = '3201' then '32' else bench_result.cVouType end = VouchType.cVouchType
  and AA_Enum.EnumType = 'IA.vchtype' and AA_Enum.LocaleId = 'zh-CN';

drop table if exists bench_detail;
