Create Table [a b](x int Identity(1,1) Not Null, y nvarchar(10) Default N'q', Primary Key(x))
Create Index i On [a b](y)
Insert Into [a b](y) Values('1')
Drop Index [a b].i