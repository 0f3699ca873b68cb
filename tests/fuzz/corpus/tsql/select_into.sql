Select a, d * 2 As twice, Identity(int, 1, 1) As id Into #w From t
Select * From #w
Drop Table #w