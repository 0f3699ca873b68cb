#include "workbench/tsql/engine/record.h"

#include <sqlite3.h>

#include <algorithm>
#include <array>
#include <bit>
#include <cmath>

#include "workbench/tsql/binding/sqlite_notation.h"
#include "workbench/tsql/engine/sqlite.h"
#include "workbench/tsql/engine/value_functions.h"
#include "workbench/tsql/values/exact.h"
#include "workbench/tsql/values/type_rules.h"

namespace quillon::tsql {
namespace {

// The types of the header. Whole numbers have 1, 2, 3, 4, 6 or 8 bytes; from firstText on an odd type is a text and an even
// one bytes, with two types for each length.
constexpr std::uint64_t nullType = 0, realType = 7, zeroType = 8, oneType = 9, firstBytes = 12, firstText = 13;
constexpr auto lengths = std::to_array<std::uint32_t>({0, 1, 2, 3, 4, 6, 8, 8, 0, 0, 0, 0});

constexpr int bitsInByte = 8, bitsInVarint = 7;
constexpr unsigned more = 0x80, varintMask = 0x7f;  // of a byte in the header
constexpr int longestVarint = 9;

[[noreturn]] void refuse() {
  throw SqlError(damagedFile, "A row of the account file does not fit together.");
}

// Reads the number at `at`, which moves behind it. Types of one byte, which are nearly all, are read by who calls.
std::uint64_t varintAt(std::string_view record, std::size_t& at) {
  std::uint64_t number = 0;
  for (int i = 1; i <= longestVarint; ++i) {
    if (at == record.size()) refuse();
    const auto byte = static_cast<unsigned char>(record[at++]);
    if (i == longestVarint) return number << bitsInByte | byte;
    number = number << bitsInVarint | (byte & varintMask);
    if ((byte & more) == 0) break;
  }
  return number;
}

void appendVarint(std::string& text, std::uint64_t number) {
  std::array<char, longestVarint + 1> bytes{};
  std::size_t first = bytes.size();
  for (unsigned mark = 0; mark == 0 || number != 0; mark = more) {
    bytes.at(--first) = static_cast<char>((number & varintMask) | mark);
    number >>= bitsInVarint;
  }
  text.append(bytes.data() + first, bytes.size() - first);
}

std::uint64_t lengthOf(std::uint64_t type) {
  return type < lengths.size() ? lengths[static_cast<std::size_t>(type)] : (type - firstBytes) / 2;
}

// The whole number, or the bits of a floating-point one.
std::int64_t numberIn(std::uint64_t type, std::string_view bytes) {
  if (type == zeroType || type == oneType) return type == oneType ? 1 : 0;
  // The first byte has the sign.
  std::uint64_t number = (static_cast<unsigned char>(bytes[0]) & more) != 0 ? ~std::uint64_t{0} : 0;
  for (const char byte : bytes)
    number = number << bitsInByte | static_cast<unsigned char>(byte);
  return static_cast<std::int64_t>(number);
}

}  // namespace

void RecordFields::read(std::string_view record, std::size_t most) {
  record_ = record;
  std::size_t at = 0;
  const std::uint64_t header = varintAt(record, at);
  if (header < at || header > record.size()) refuse();
  // A type has a byte at least.
  if (begins_.size() < header) begins_.resize(static_cast<std::size_t>(header));
  std::uint64_t value = header;
  count_ = 0;
  header_ = static_cast<std::size_t>(header);
  while (at < header && count_ < most) {
    begins_[count_++] = {.type = static_cast<std::uint32_t>(at), .value = static_cast<std::uint32_t>(value)};
    std::uint64_t type = static_cast<unsigned char>(record[at]);
    if (type < more) {
      ++at;
      if (type > oneType && type < firstBytes) refuse();
    } else {
      // SQLite takes no more bytes than a type needs: null is one, which is zero.
      if (type == more) refuse();
      type = varintAt(record, at);
    }
    value += lengthOf(type);
    if (value > record.size()) refuse();
  }
  if (at > header) refuse();
  begins_[count_] = {.type = static_cast<std::uint32_t>(at), .value = static_cast<std::uint32_t>(value)};
}

RecordFields::Field RecordFields::field(std::size_t column) const {
  std::size_t at = begins_[column].type;
  const std::uint64_t type = varintAt(record_, at);
  return {type, values(column, 1)};
}

void RecordFields::read(std::size_t column, const Type& type, Value& value) const {
  if (isNull(column)) {
    value.emplace<std::monostate>();
    return;
  }
  const Field field = this->field(column);
  const bool isTextHere = field.type >= firstText && field.type % 2 == firstText % 2;
  if (isTextHere != isText(type)) refuse();
  if (isTextHere) {
    if (auto* const known = std::get_if<std::string>(&value)) {
      known->assign(field.bytes);
    } else {
      value.emplace<std::string>(field.bytes);
    }
    return;
  }
  const bool isExactType = type.kind == Kind::decimal || type.kind == Kind::money;
  if (field.type >= firstBytes) {
    if (!isExactType) refuse();
    value = Exact{decodeUnits(field.bytes), scaleOf(type)};
    return;
  }
  if (type.kind == Kind::real) {
    value = field.type == realType ? std::bit_cast<double>(numberIn(field.type, field.bytes))
                                   : static_cast<double>(numberIn(field.type, field.bytes));
    return;
  }
  if (field.type == realType) refuse();
  const std::int64_t number = numberIn(field.type, field.bytes);
  if (isExactType) {
    value = Exact{Int128(number), scaleOf(type)};
  } else if (type.kind == Kind::dateTime) {
    value = DateTime{number};
  } else {
    value = number;
  }
}

void RecordFields::bind(std::size_t column, sqlite3_stmt* statement, int parameter) const {
  const Field field = this->field(column);
  const std::string_view bytes = field.bytes;
  if (field.type == nullType) {
    sqlite3_bind_null(statement, parameter);
  } else if (field.type >= firstBytes) {
    const auto size = static_cast<int>(bytes.size());
    if (field.type % 2 == firstText % 2) {
      sqlite3_bind_text(statement, parameter, bytes.data(), size, SQLITE_TRANSIENT);
    } else {
      sqlite3_bind_blob(statement, parameter, bytes.data(), size, SQLITE_TRANSIENT);
    }
  } else if (field.type == realType) {
    sqlite3_bind_double(statement, parameter, std::bit_cast<double>(numberIn(field.type, bytes)));
  } else {
    sqlite3_bind_int64(statement, parameter, numberIn(field.type, bytes));
  }
}

std::string_view RecordFields::types(std::size_t first, std::size_t count) const {
  return record_.substr(begins_[first].type, begins_[first + count].type - begins_[first].type);
}

std::string_view RecordFields::values(std::size_t first, std::size_t count) const {
  return record_.substr(begins_[first].value, begins_[first + count].value - begins_[first].value);
}

void RecordBuilder::clear() {
  types_.clear();
  values_.clear();
}

void RecordBuilder::addNulls(std::size_t count) {
  types_.append(count, static_cast<char>(nullType));
}

void RecordBuilder::add(const RecordFields& fields, std::size_t first, std::size_t count) {
  const std::size_t given = first < fields.count() ? std::min(count, fields.count() - first) : 0;
  if (given > 0) {
    types_ += fields.types(first, given);
    values_ += fields.values(first, given);
  }
  addNulls(count - given);
}

void RecordBuilder::addOthers(const RecordFields& fields) {
  types_ += fields.otherTypes();
  values_ += fields.otherValues();
}

void RecordBuilder::addType(std::uint64_t type) {
  if (type < more) {
    types_ += static_cast<char>(type);
  } else {
    appendVarint(types_, type);
  }
}

// The highest byte first.
void RecordBuilder::addBytes(std::uint64_t number, int count) {
  for (int i = count - 1; i >= 0; --i)
    values_ += static_cast<char>(number >> (i * bitsInByte));
}

void RecordBuilder::addInteger(std::int64_t number) {
  if (number == 0 || number == 1) {
    addType(number == 0 ? zeroType : oneType);
    return;
  }
  // The fewest bytes whose numbers with a sign reach it.
  const auto magnitude = static_cast<std::uint64_t>(number < 0 ? ~number : number);
  const auto bits = static_cast<std::uint32_t>(std::bit_width(magnitude)) + 1;
  std::uint64_t type = 1;
  while (lengths[static_cast<std::size_t>(type)] * bitsInByte < bits)
    ++type;
  addType(type);
  addBytes(static_cast<std::uint64_t>(number), static_cast<int>(lengths[static_cast<std::size_t>(type)]));
}

void RecordBuilder::addReal(sqlite3_value* value) {
  constexpr double beyondSixBytes = 0x1p47;
  const double number = sqlite3_value_type(value) == SQLITE_FLOAT ? sqlite3_value_double(value) : beyondSixBytes;
  if (number >= -beyondSixBytes && number < beyondSixBytes && number == std::trunc(number)) {
    addInteger(static_cast<std::int64_t>(number));
  } else {
    add(value);
  }
}

void RecordBuilder::add(sqlite3_value* value) {
  switch (sqlite3_value_type(value)) {
    case SQLITE_INTEGER:
      addInteger(sqlite3_value_int64(value));
      return;
    case SQLITE_FLOAT:
      addType(realType);
      addBytes(std::bit_cast<std::uint64_t>(sqlite3_value_double(value)), sizeof(double));
      return;
    case SQLITE_TEXT: {
      const std::string_view text = textOf(value);
      addType(firstText + 2 * static_cast<std::uint64_t>(text.size()));
      values_ += text;
      return;
    }
    case SQLITE_BLOB: {
      const std::string_view bytes = bytesOf(value);
      addType(firstBytes + 2 * static_cast<std::uint64_t>(bytes.size()));
      values_ += bytes;
      return;
    }
    default:
      addNulls(1);
  }
}

std::string_view RecordBuilder::record() {
  record_.clear();
  // The length counts its own bytes.
  std::size_t length = types_.size() + 1;
  if (length > varintMask) ++length;
  if (length >> (2 * bitsInVarint) != 0) ++length;
  appendVarint(record_, length);
  record_ += types_;
  record_ += values_;
  return record_;
}

}  // namespace quillon::tsql
