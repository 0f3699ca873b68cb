Insert Into u(k, q) Select n, Sum(d) From t Group By n
Insert Into u Values(N'z', 1e3)