-- The rows of the receipt/issue/balance report (by cost item, one year, with a warehouse) by the shortest way: no detail
-- table, no grouping of rows that are known to be single. It shows how much of the report's time is due to the form of
-- its own statements; nothing passes or fails by it.
--
-- Every cost item of a line gives two rows: its own opening balance, receipt or issue, and the closing balance. The first
-- one of a line takes the line's own figures too.
create table bench_result as
with item as (
  select iSubID, iItemID, row_number() over (partition by iSubID order by iItemID) as place,
         sum(ifnull(iItemInQuantity, 0) + ifnull(iItemOutQuantity, 0)) as moved,
         sum(ifnull(iItemInPrice, 0) + ifnull(iItemOutPrice, 0)) as movedMoney,
         sum(ifnull(iItemInQuantity, 0) - ifnull(iItemOutQuantity, 0)) as net,
         sum(ifnull(iItemInPrice, 0) - ifnull(iItemOutPrice, 0)) as netMoney
  from ia_subsidiary_Item where iSubID in (select AutoID from ia_subsidiary where iYear = $year)
  group by iSubID, iItemID),
state(closing) as (values (0), (1))
select base.AutoID as autoid, wh.cWhCode, wh.cWhName, inv.cInvCode, inv.cInvName, inv.cInvStd, inv.cInvAddCode,
  unit.cComUnitCode as cUnitCode, unit.cComUnitName as cUnitName, ifnull(base.cBatchIA, '') as cBatchIA,
  base.cFree1, base.cFree2, base.cFree3, base.cFree4, base.cFree5, base.cFree6, base.cFree7, base.cFree8, base.cFree9,
  base.cFree10, cInvDefine1, cInvDefine2, cInvDefine3, cInvDefine4, cInvDefine5, cInvDefine6, cInvDefine7, cInvDefine8,
  cInvDefine9, cInvDefine10, cInvDefine11, cInvDefine12, cInvDefine13, cInvDefine14, cInvDefine15, cInvDefine16,
  cDefine1, cDefine2, cDefine3, cDefine4, cDefine5, cDefine6, cDefine7, cDefine8, cDefine9, cDefine10, cDefine11,
  cDefine12, cDefine13, cDefine14, cDefine15, cDefine16, cDefine22, cDefine23, cDefine24, cDefine25, cDefine26,
  cDefine27, cDefine28, cDefine29, cDefine30, cDefine31, cDefine32, cDefine33, cDefine34, cDefine35, cDefine36,
  cDefine37, dep.cDepCode, dep.cDepName, def.cFxCode as cFXCode, def.cFxName as cFXName,
  case when closing then '期末结存' when base.iMonth = 0 then '期初结存' when base.bRdFlag then '收入' else '发出' end as cState,
  case when closing then 4 when base.iMonth = 0 then 1 when base.bRdFlag then 2 else 3 end as iState,
  case when closing or base.iMonth = 0 then net else moved end as iQuantity,
  case when closing or base.iMonth = 0 then netMoney else movedMoney end as iMoney,
  case when closing then null when place = 1 and base.iMonth = 0 then ifnull(base.iAInQuantity, 0) - ifnull(base.iAOutQuantity, 0) else 0 end as iQcQuantity,
  case when closing then null when place = 1 and base.iMonth = 0 then ifnull(base.iAInPrice, 0) - ifnull(base.iAOutPrice, 0) else 0 end as iQcMoney,
  case when closing then null when place = 1 and base.iMonth > 0 then ifnull(base.iAInQuantity, 0) else 0 end as iInQuantity,
  case when closing then null when place = 1 and base.iMonth > 0 then ifnull(base.iAInPrice, 0) else 0 end as iInMoney,
  case when closing then null when place = 1 and base.iMonth > 0 then ifnull(base.iAOutQuantity, 0) else 0 end as iOutQuantity,
  case when closing then null when place = 1 and base.iMonth > 0 then ifnull(base.iAOutPrice, 0) else 0 end as iOutMoney,
  case when closing or place > 1 then 0 else ifnull(base.iAInQuantity, 0) - ifnull(base.iAOutQuantity, 0) end as iQmQuantity,
  case when closing or place > 1 then 0 else ifnull(base.iAInPrice, 0) - ifnull(base.iAOutPrice, 0) end as iQmMoney,
  '0' as cFSType
from item
join ia_subsidiary base on base.AutoID = item.iSubID
join Warehouse wh on wh.cWhCode = base.cWhCode
left join Inventory inv on inv.cInvCode = base.cInvCode
left join ComputationUnit unit on unit.cComUnitCode = inv.cComUnitCode
left join Department dep on dep.cDepCode = base.cDepCode
join Ca_FxDef def on def.iFxID = item.iItemID
cross join state
where base.iYear = $year and (base.iMonth > 0 or base.cVouType = '34');
