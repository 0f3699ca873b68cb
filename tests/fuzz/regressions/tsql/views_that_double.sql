Create View v0 As Select a From t
Create View v1 As Select x.a From v0 x, v0 y
Create View v2 As Select x.a From v1 x, v1 y
Create View v3 As Select x.a From v2 x, v2 y
Create View v4 As Select x.a From v3 x, v3 y
Create View v5 As Select x.a From v4 x, v4 y
Create View v6 As Select x.a From v5 x, v5 y
Create View v7 As Select x.a From v6 x, v6 y
Create View v8 As Select x.a From v7 x, v7 y
Create View v9 As Select x.a From v8 x, v8 y
Create View v10 As Select x.a From v9 x, v9 y
Create View v11 As Select x.a From v10 x, v10 y
Create View v12 As Select x.a From v11 x, v11 y
Create View v13 As Select x.a From v12 x, v12 y
Create View v14 As Select x.a From v13 x, v13 y
Create View v15 As Select x.a From v14 x, v14 y
Create View v16 As Select x.a From v15 x, v15 y
Create View v17 As Select x.a From v16 x, v16 y
Create View v18 As Select x.a From v17 x, v17 y
Create View v19 As Select x.a From v18 x, v18 y
Create View v20 As Select x.a From v19 x, v19 y
Select * From v20