-- The rows of the outbound summary (by cost-item class, one year) by the shortest way: one pass over the ledger, no
-- detail table, names looked up where they are needed. It shows how much of the report's time is due to the form of its
-- own statements; nothing passes or fails by it.
create table bench_result as
with grade as (
  select def.iFxID, ifnull(top.cFxCCode, cls.cFxCCode) as code, ifnull(top.cFxCName, cls.cFxCName) as name
  from Ca_FxDef def
  left join Ca_FxClassDef cls on cls.iFxCID = def.cFxCID
  left join Ca_FxClassDef top on cls.cFxCCode like top.cFxCCode || '%' and top.iGrade = 1)
Select base.autoid, base.dVouDate, ifnull(vouch.EnumName, base.cVouType) As cVouType, ifnull(bus.EnumName,
  base.cBusType) As cBusType, base.cVouCode, wh.cWhCode, wh.cWhName, inv.cInvCCode, inv.cInvCode, inv.cInvName,
  inv.cInvStd, inv.cInvAddCode, base.cPspCode As cInvPspCode, psp.cInvName As cInvPspName, base.dKeepDate,
  base.cRdCode As RdCode, Rd_Style.cRdName As RdName, cost.cCostCenter, cost.cCostCenterName, base.cAccDep As
  cDepCode, dep.cDepName, base.cProCode, base.cDepCode As cWhDep, whdep.cDepName As cWhDepName, cus.cCCCode As
  cCusCCode, cuscls.cCCName As cCusCName, base.cCusCode, cus.cCusName, base.cVenCode, ven.cVenName, base.cItem_Class,
  fItem.citem_name As cItem_ClassName, coalesce(goods.cInvCCode, project.cItemCCode, research.cItemCCode, '') As
  cItemCCode, coalesce(goods.cInvCName, project.cItemCName, research.cItemCName, base.cItemCName) As cItemCName,
  base.cItemCode, base.cName As cItemName, base.cOppHead, code.ccode_name As cOppHeadName, base.strContractCode,
  base.cProordercode, base.iProorderids, base.cworkprocode, base.cworkcentercode, base.cworkcentername,
  base.cSaleorderCode, base.isaleorderids, base.exoCode, base.iexrowno, base.cImordercode, base.cpurorderCode,
  base.centrustordercode, base.cBuscode, base.cPersonCode As cperson, person.cPersonName, base.cMaker,
  maker.cUser_Name As cMakerName, base.cDefine1, base.cDefine2, base.cDefine3, base.cDefine4, base.cDefine5,
  base.cDefine6, base.cDefine7, base.cDefine8, base.cDefine9, base.cDefine10, base.cDefine11, base.cDefine12,
  base.cDefine13, base.cDefine14, base.cDefine15, base.cDefine16, base.cDefine22, base.cDefine23, base.cDefine24,
  base.cDefine25, base.cDefine26, base.cDefine27, base.cDefine28, base.cDefine29, base.cDefine30, base.cDefine31,
  base.cDefine32, base.cDefine33, base.cDefine34, base.cDefine35, base.cDefine36, base.cDefine37, inv.cInvDefine1,
  inv.cInvDefine2, inv.cInvDefine3, inv.cInvDefine4, inv.cInvDefine5, inv.cInvDefine6, inv.cInvDefine7,
  inv.cInvDefine8, inv.cInvDefine9, inv.cInvDefine10, inv.cInvDefine11, inv.cInvDefine12, inv.cInvDefine13,
  inv.cInvDefine14, inv.cInvDefine15, inv.cInvDefine16, ifnull(base.cBatchia, '') As cbatchia, base.cFree1,
  base.cFree2, base.cFree3, base.cFree4, base.cFree5, base.cFree6, base.cFree7, base.cFree8, base.cFree9,
  base.cFree10, ifnull(grade.code, '') As cFXCode, ifnull(grade.name, '') As cFXName, case when item.AutoID is null
  then base.iAOutQuantity else item.iItemOutQuantity end As iQuantity, case when item.AutoID is null then
  base.iAOutPrice else item.iItemOutPrice end As iMoney, item.iItemOutPrice As iFXMoney
from ia_subsidiary base
left join ia_subsidiary_Item item on item.iSubID = base.AutoID
left join grade on grade.iFxID = item.iItemID
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
left join AA_Enum bus on bus.EnumType = 'IA.BusType' and bus.EnumCode = base.cBusType and bus.LocaleId = 'zh-CN'
left join VouchType type on type.cVouchType = case when base.cVouType = '3201' then '32' else base.cVouType end
left join AA_Enum vouch on vouch.EnumType = 'IA.vchtype' and vouch.EnumCode = type.cVouchName
  and vouch.LocaleId = 'zh-CN'
left join (Inventory master inner join InventoryClass goods on goods.cInvCCode = master.cInvCCode)
  on base.cItem_Class = 'ch' and master.cInvCode = base.cItemCode
left join (fItem_Project target inner join fItem_ProjectClass project on project.cItemCCode = target.cItemCCode)
  on base.cItem_Class = '00' and target.cItemCode = base.cItemCode
left join (fItem_Research subject inner join fItem_ResearchClass research on research.cItemCCode = subject.cItemCCode)
  on base.cItem_Class = '01' and subject.cItemCode = base.cItemCode
where base.iYear = $year and base.bRdFlag = 0 and wh.cWhCode is not null;
