// Fingerprints of values as they lie in SQLite: the same for values that SQLite, by the collation, finds equal, and for
// others as good as never. Null has one of its own.
#pragma once

#include <cstdint>

struct sqlite3_stmt;
struct sqlite3_value;

namespace quillon::tsql {

std::uint64_t fingerprint(sqlite3_stmt* statement, int column);
std::uint64_t fingerprint(sqlite3_value* value);

// Spreads the bits, so that any of them may choose a slot.
std::uint64_t mixed(std::uint64_t value);
// That of several values, in their order: begin with 0.
inline std::uint64_t joined(std::uint64_t before, std::uint64_t next) {
  return mixed(before * 31 + next);
}

}  // namespace quillon::tsql
