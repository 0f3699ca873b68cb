#include "tests/workbench/tds/tokens.h"

#include <bit>

#include "tests/workbench/tds/code_page.h"
#include "tests/workbench/tds/login.h"

namespace quillon::tds {

namespace {

using tsql::Kind;

enum class Token : Byte {
  columns = 0x81,
  error = 0xaa,
  info = 0xab,
  loginAck = 0xad,
  row = 0xd1,
  change = 0xe3,
  done = 0xfd
};
enum class Change : Byte { database = 1, language = 2, packetSize = 4, collation = 7 };
// Types that take a value or none.
enum class WireType : Byte {
  integer = 0x26,
  bit = 0x68,
  decimal = 0x6a,
  real = 0x6d,
  money = 0x6e,
  dateTime = 0x6f,
  varChar = 0xa7,
  nVarChar = 0xe7
};

constexpr std::uint16_t longestMessageText = 2047;  // in UTF-16 units, as servers have it

constexpr Byte sizeOfBit = 1, sizeOfInt = 4, sizeOfEight = 8;
constexpr std::uint16_t nullable = 0x0001, maybeUpdatable = 0x0008;
// Texts of columns without a limit go in pieces; shorter ones have a length of two bytes.
constexpr std::size_t longestShortText = 8000, noLimit = 0xffff, nullText = 0xffff;
constexpr std::uint64_t nullLongText = 0xffffffffffffffff;

template <typename Name>
void put(Bytes& bytes, Name name) {
  putU8(bytes, static_cast<Byte>(name));
}

// A token whose length stands in two bytes behind its name.
template <typename PutBody>
void putWithLength(Bytes& bytes, Token token, PutBody putBody) {
  Bytes body;
  putBody(body);
  put(bytes, token);
  putU16(bytes, body.size());
  putBytes(bytes, body);
}

void putTextChange(Bytes& bytes, Change change, std::string_view now, std::string_view before) {
  putWithLength(bytes, Token::change, [&](Bytes& body) {
    put(body, change);
    putShortText(body, now);
    putShortText(body, before);
  });
}

// How many bytes the digits of a decimal take.
std::size_t bytesOfPrecision(int precision) {
  constexpr int ofOne = 9, ofTwo = 19, ofThree = 28;
  if (precision <= ofOne) return 4;
  if (precision <= ofTwo) return 8;
  return precision <= ofThree ? 12 : 16;
}

// The most bytes that a value of a text column takes; noLimit for a column without a limit.
std::size_t longestOf(const tsql::Type& type) {
  // The width of a varchar counts bytes.
  const std::size_t bytesOfUnit = type.kind == Kind::nVarChar ? 2 : 1;
  const auto width = static_cast<std::size_t>(type.width);
  return width > longestShortText / bytesOfUnit ? noLimit : width * bytesOfUnit;
}

void putType(Bytes& bytes, const tsql::Type& type) {
  const auto putSized = [&bytes](WireType wireType, std::size_t size) {
    put(bytes, wireType);
    putU8(bytes, size);
  };
  switch (type.kind) {
    case Kind::integer:
      return putSized(WireType::integer, sizeOfInt);
    case Kind::bigInt:
      return putSized(WireType::integer, sizeOfEight);
    case Kind::bit:
      return putSized(WireType::bit, sizeOfBit);
    case Kind::real:
      return putSized(WireType::real, sizeOfEight);
    case Kind::money:
      return putSized(WireType::money, sizeOfEight);
    case Kind::dateTime:
      return putSized(WireType::dateTime, sizeOfEight);
    case Kind::decimal:
      putSized(WireType::decimal, 1 + bytesOfPrecision(type.precision));
      putU8(bytes, static_cast<Byte>(type.precision));
      putU8(bytes, static_cast<Byte>(type.scale));
      return;
    case Kind::nVarChar:
    case Kind::varChar:
      put(bytes, type.kind == Kind::nVarChar ? WireType::nVarChar : WireType::varChar);
      putU16(bytes, longestOf(type));
      putBytes(bytes, collation);
      return;
  }
}

void putDecimal(Bytes& bytes, const tsql::Type& type, const tsql::Exact& number) {
  const bool isNegative = number.units.negative();
  const tsql::Int128 units = isNegative ? -number.units : number.units;
  const std::size_t size = bytesOfPrecision(type.precision);
  putU8(bytes, 1 + size);
  putU8(bytes, isNegative ? 0 : 1);
  Bytes digits;
  putU64(digits, units.low());
  putU64(digits, static_cast<std::uint64_t>(units.high()));
  for (std::size_t i = size; i < digits.size(); ++i) {
    if (digits[i] != 0) throw tsql::SqlError(8115, "A value has more digits than " + type.name() + ".");
  }
  putBytes(bytes, std::span(digits).first(size));
}

void putMoney(Bytes& bytes, const tsql::Exact& number) {
  constexpr unsigned half = 32;
  const auto units = static_cast<std::uint64_t>(number.units.toInt64());
  putU8(bytes, sizeOfEight);
  putU32(bytes, units >> half);
  putU32(bytes, units);
}

void putDateTime(Bytes& bytes, tsql::DateTime time) {
  std::int64_t days = time.ticks / tsql::DateTime::ticksPerDay;
  std::int64_t ticks = time.ticks % tsql::DateTime::ticksPerDay;
  if (ticks < 0) {
    ticks += tsql::DateTime::ticksPerDay;
    --days;
  }
  putU8(bytes, sizeOfEight);
  putU32(bytes, static_cast<std::uint64_t>(days));
  putU32(bytes, static_cast<std::uint64_t>(ticks));
}

void putTextValue(Bytes& bytes, const tsql::Column& column, const std::string& value) {
  const Bytes text = column.type.kind == Kind::nVarChar ? utf16Of(value) : codePageOf(value);
  const std::size_t longest = longestOf(column.type);
  if (longest != noLimit) {
    if (text.size() > longest)
      throw tsql::SqlError(8152, "A text of column " + column.name + " is longer than " + column.type.name() + ".");
    putU16(bytes, text.size());
    putBytes(bytes, text);
    return;
  }
  putU64(bytes, text.size());
  if (!text.empty()) {
    putU32(bytes, text.size());
    putBytes(bytes, text);
  }
  putU32(bytes, 0);  // no further piece
}

void putNull(Bytes& bytes, const tsql::Type& type) {
  if (type.kind != Kind::nVarChar && type.kind != Kind::varChar) return putU8(bytes, 0);
  if (longestOf(type) == noLimit) return putU64(bytes, nullLongText);
  putU16(bytes, nullText);
}

void putValue(Bytes& bytes, const tsql::Column& column, const tsql::Value& value) {
  if (tsql::isNull(value)) return putNull(bytes, column.type);
  switch (column.type.kind) {
    case Kind::integer:
      putU8(bytes, sizeOfInt);
      return putU32(bytes, static_cast<std::uint64_t>(std::get<std::int64_t>(value)));
    case Kind::bigInt:
      putU8(bytes, sizeOfEight);
      return putU64(bytes, static_cast<std::uint64_t>(std::get<std::int64_t>(value)));
    case Kind::bit:
      putU8(bytes, sizeOfBit);
      return putU8(bytes, static_cast<std::uint64_t>(std::get<std::int64_t>(value)));
    case Kind::real:
      putU8(bytes, sizeOfEight);
      return putU64(bytes, std::bit_cast<std::uint64_t>(std::get<double>(value)));
    case Kind::decimal:
      return putDecimal(bytes, column.type, std::get<tsql::Exact>(value));
    case Kind::money:
      return putMoney(bytes, std::get<tsql::Exact>(value));
    case Kind::dateTime:
      return putDateTime(bytes, std::get<tsql::DateTime>(value));
    case Kind::nVarChar:
    case Kind::varChar:
      return putTextValue(bytes, column, std::get<std::string>(value));
  }
}

}  // namespace

void putLoginAck(Bytes& bytes) {
  putWithLength(bytes, Token::loginAck, [](Bytes& body) {
    constexpr Byte transactSql = 1;
    putU8(body, transactSql);
    putBytes(body, std::to_array<Byte>({0x74, 0x00, 0x00, 0x04}));  // the version, its high byte first
    putShortText(body, programName);
    putBytes(body, std::to_array<Byte>({11, 0, 0x0c, 0x38}));
  });
}

void putDatabaseChange(Bytes& bytes, std::string_view now, std::string_view before) {
  putTextChange(bytes, Change::database, now, before);
}

void putLanguageChange(Bytes& bytes, std::string_view now, std::string_view before) {
  putTextChange(bytes, Change::language, now, before);
}

void putPacketSizeChange(Bytes& bytes, std::size_t now, std::size_t before) {
  putTextChange(bytes, Change::packetSize, std::to_string(now), std::to_string(before));
}

void putCollationChange(Bytes& bytes) {
  putWithLength(bytes, Token::change, [](Bytes& body) {
    put(body, Change::collation);
    putU8(body, std::size(collation));
    putBytes(body, collation);
    putU8(body, 0);  // there was none before
  });
}

void putMessage(Bytes& bytes, const ServerMessage& message) {
  constexpr int lastOfInformation = 10;
  putWithLength(bytes, message.severity > lastOfInformation ? Token::error : Token::info, [&message](Bytes& body) {
    putU32(body, static_cast<std::uint64_t>(message.number));
    putU8(body, static_cast<std::uint64_t>(message.state));
    putU8(body, static_cast<std::uint64_t>(message.severity));
    putText(body, message.text, longestMessageText);
    putShortText(body, serverName);
    putShortText(body, "");  // of no procedure
    putU32(body, static_cast<std::uint64_t>(message.line));
  });
}

void putColumns(Bytes& bytes, std::span<const tsql::Column> columns) {
  put(bytes, Token::columns);
  putU16(bytes, columns.size());
  for (const tsql::Column& column : columns) {
    putU32(bytes, 0);  // no type of a user's
    putU16(bytes, nullable | maybeUpdatable);
    putType(bytes, column.type);
    putShortText(bytes, column.name);
  }
}

void putRow(Bytes& bytes, std::span<const tsql::Column> columns, std::span<const tsql::Value> values) {
  put(bytes, Token::row);
  for (std::size_t i = 0; i < columns.size(); ++i)
    putValue(bytes, columns[i], values[i]);
}

void putDone(Bytes& bytes, const Done& done) {
  constexpr std::uint16_t more = 0x01, failed = 0x02, counts = 0x10, attention = 0x20;
  const bool hasCount = done.rows >= 0;
  put(bytes, Token::done);
  putU16(bytes, (done.more ? more : 0U) | (done.failed ? failed : 0U) | (hasCount ? counts : 0U) |
                    (done.attention ? attention : 0U));
  putU16(bytes, 0);  // of no statement in particular
  putU64(bytes, hasCount ? static_cast<std::uint64_t>(done.rows) : 0);
}

}  // namespace quillon::tds
