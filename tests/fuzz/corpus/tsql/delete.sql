Delete From u Where Exists(Select 1 From t Where t.n = u.k)
Delete t From t Inner Join u On u.k = t.n
Truncate Table u