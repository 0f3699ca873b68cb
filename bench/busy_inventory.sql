-- Gives one inventory a long ledger, the same in an account of any size: 2,000 lines of 2023, all in one warehouse. Its
-- own lines of that year go to another inventory first.
update ia_subsidiary set cInvCode = (select max(cInvCode) from Inventory)
where iYear = 2023 and cInvCode = (select min(cInvCode) from Inventory where bCheckBatch = 0 and bCheckFree1 = 0
  and bCheckFree2 = 0 and bCheckFree3 = 0)
go
update ia_subsidiary set cWhCode = N'01', cInvCode = (select min(cInvCode) from Inventory where bCheckBatch = 0
  and bCheckFree1 = 0 and bCheckFree2 = 0 and bCheckFree3 = 0)
where AutoID in (select top 2000 AutoID from ia_subsidiary where iYear = 2023 and iMonth > 0
  order by AutoID % 9973, AutoID)
go
