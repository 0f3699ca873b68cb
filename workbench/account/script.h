// An account as a T-SQL script for a server.
#pragma once

#include <ostream>

#include "workbench/account/transfer.h"

namespace quillon::account {

// Writes the statements that make the account in an empty database of SQL Server 2012 or later: the system database
// orvsystem with its tables, the account's tables with keys and identities, the rows, then indexes, functions and views.
// The batches end with a line `go`. Memory does not grow with the rows.
//
// The script means the same to whichever program sends it, sqlcmd, tsql or bsqldb:
//   - a text holds no line break and no other control character as it stands, so no line of a text can look like `go`
//     or like a command of the program;
//   - no "$(", which sqlcmd takes for a variable;
//   - no line is longer than the 4095 bytes that bsqldb reads at once;
//   - settings and columns say what otherwise depends on the program: whether a column takes NULL, and how long texts
//     and trailing blanks are treated;
//   - dates stand in the forms that no language setting reads in another way.
//
// Throws AccountError when orvsystem holds a view or a function: a server makes those from within their database only.
TransferCounts writeScript(tsql::Connection& connection, std::ostream& out, const TransferProgress& progress = {});

}  // namespace quillon::account
