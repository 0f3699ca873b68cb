// Where SQLite gets its memory.
#pragma once

namespace quillon::tsql {

// Gives large blocks of SQLite pages of their own, where the system can make such blocks grow. To be called before SQLite's
// first use; later calls do nothing.
void setUpSqliteMemory();

}  // namespace quillon::tsql
