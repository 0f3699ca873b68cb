// What a server answers, token by token: the columns and rows of results, counts, errors and messages, changes of the
// connection. Each function puts one token behind `bytes`.
#pragma once

#include "tests/workbench/tds/bytes.h"
#include "workbench/tsql/values/database.h"

namespace quillon::tds {

// Chinese_PRC_CI_AS: language, what it does not distinguish, no old sort order.
inline constexpr Byte collation[5] = {0x04, 0x08, 0xd0, 0x00, 0x00};

inline constexpr std::string_view serverName = "QUILLON", programName = "Quillon test endpoint";

// The login is taken, in version 7.4 of the protocol.
void putLoginAck(Bytes& bytes);
void putDatabaseChange(Bytes& bytes, std::string_view now, std::string_view before);
void putLanguageChange(Bytes& bytes, std::string_view now, std::string_view before);
void putPacketSizeChange(Bytes& bytes, std::size_t now, std::size_t before);
void putCollationChange(Bytes& bytes);

struct ServerMessage {
  int number = 0;
  int state = 1;
  int severity = 0;  // above 10: an error
  std::string text;
  int line = 1;  // of the batch; 0 when it has no place there
};
void putMessage(Bytes& bytes, const ServerMessage& message);

// The types of the engine are the server's int, bigint, bit, decimal, money, float, datetime, nvarchar and varchar.
void putColumns(Bytes& bytes, std::span<const tsql::Column> columns);
// One value a column. A value must be of its column's form, a text no longer than its column; anything else throws
// SqlError.
void putRow(Bytes& bytes, std::span<const tsql::Column> columns, std::span<const tsql::Value> values);

// The end of one statement's results.
struct Done {
  bool more = false;       // results of another statement follow
  bool failed = false;     // the statement has failed
  bool attention = false;  // this answers the client's attention
  std::int64_t rows = -1;  // that it gave or changed; negative when it counts none
};
void putDone(Bytes& bytes, const Done& done);

}  // namespace quillon::tds
