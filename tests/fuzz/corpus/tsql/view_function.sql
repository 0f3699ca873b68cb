Create View vw As Select a, n From t Where a > 0
go