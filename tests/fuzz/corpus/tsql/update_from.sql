Update u Set q = u.q + t.d, k = N'x' From u, t Where u.k = t.n
Update t Set m = $1.5 Where b Is Not Null