#include "workbench/tsql/engine/fingerprint.h"

#include <sqlite3.h>

#include <bit>
#include <cmath>
#include <functional>
#include <string_view>

#include "workbench/tsql/engine/value_functions.h"
#include "workbench/tsql/values/collation.h"

namespace quillon::tsql {
namespace {

// A column of the current row, read as sqlite3_value_...() reads a value.
struct ColumnReader {
  sqlite3_stmt* statement;
  int column;
  int type() const { return sqlite3_column_type(statement, column); }
  std::int64_t integer() const { return sqlite3_column_int64(statement, column); }
  double real() const { return sqlite3_column_double(statement, column); }
  std::string_view text() const {
    const auto* const bytes = reinterpret_cast<const char*>(sqlite3_column_text(statement, column));
    return {bytes, static_cast<std::size_t>(sqlite3_column_bytes(statement, column))};
  }
  std::string_view blob() const {
    const auto* const bytes = static_cast<const char*>(sqlite3_column_blob(statement, column));
    return {bytes == nullptr ? "" : bytes, static_cast<std::size_t>(sqlite3_column_bytes(statement, column))};
  }
};

struct ValueReader {
  sqlite3_value* value;
  int type() const { return sqlite3_value_type(value); }
  std::int64_t integer() const { return sqlite3_value_int64(value); }
  double real() const { return sqlite3_value_double(value); }
  std::string_view text() const { return textOf(value); }
  std::string_view blob() const { return bytesOf(value); }
};

template <typename Reader>
std::uint64_t fingerprintOf(const Reader& reader) {
  switch (reader.type()) {
    case SQLITE_INTEGER:
      return mixed(static_cast<std::uint64_t>(reader.integer()));
    case SQLITE_FLOAT: {
      // SQLite finds 2.0 equal to 2.
      const double value = reader.real();
      constexpr double beyond = 9e18;
      if (std::fabs(value) < beyond && value == std::trunc(value)) {
        return mixed(static_cast<std::uint64_t>(static_cast<std::int64_t>(value)));
      }
      return mixed(std::bit_cast<std::uint64_t>(value));
    }
    case SQLITE_TEXT:
      return mixed(textFingerprint(reader.text()) + 1);
    case SQLITE_BLOB:
      return mixed(std::hash<std::string_view>()(reader.blob()) + 2);
    default:
      return 0x9ae16a3b2f90404f;
  }
}

}  // namespace

std::uint64_t fingerprint(sqlite3_stmt* statement, int column) {
  return fingerprintOf(ColumnReader{statement, column});
}

std::uint64_t fingerprint(sqlite3_value* value) {
  return fingerprintOf(ValueReader{value});
}

std::uint64_t mixed(std::uint64_t value) {
  value = (value ^ (value >> 32U)) * 0xd6e8feb86659fd93;
  value = (value ^ (value >> 32U)) * 0xd6e8feb86659fd93;
  return value ^ (value >> 32U);
}

}  // namespace quillon::tsql
