// An account as a T-SQL script for a server.
#pragma once

#include <ostream>
#include <string>

#include "workbench/account/transfer.h"

namespace quillon::account {

struct ScriptOptions {
  // The account's id on the server; empty: the one that it has, on a server without a system database.
  std::string accountId;
  // The most rows that come in one batch. A server takes 1000 in one list of values, but needs ever longer to plan it.
  int batchRows = 100;
};

inline constexpr int mostBatchRows = 1000;

// Writes the statements that make the account in an empty database of SQL Server 2012 or later: the system database
// orvsystem with its tables, the account's tables with keys and identities, the rows, then indexes, functions and views.
// The batches end with a line `go`. Memory does not grow with the rows.
//
// Sent once more after a break, the script goes on: what is there is not made again, and a batch of rows whose first is
// there is passed over, because the rows of a batch come all or none. Twice is as once. At the end it counts the rows of
// every table, lists the tables that hold more or fewer than they have to, and raises an error if there are any.
//
// With an account id the server may have a system database with other accounts. Of its tables, those with a column cAcc_Id
// get the account's rows under that id, in place of those that have it; to the others, as to the users, rows are added
// whose keys are missing. Whatever else is in them stays as it is.
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
// Throws AccountError when the id is too long for its column or holds control characters, and when orvsystem holds a view or a function: a server makes those from within their database only.
TransferCounts writeScript(tsql::Connection& connection, std::ostream& out, const ScriptOptions& options = {},
                           const TransferProgress& progress = {});

}  // namespace quillon::account
