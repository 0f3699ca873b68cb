// A row as SQLite's file format stores it: a header, which begins with its own length and has a number for each column that
// says the value's type and length, and behind it the values in the same order. All numbers of the header are of one to
// nine bytes, seven bits in each.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "workbench/tsql/values/value.h"

struct sqlite3_stmt;
struct sqlite3_value;

namespace quillon::tsql {

// Where the columns of a record lie in it.
class RecordFields {
 public:
  // The record stays where it is as long as its parts are asked for. `most`: how many columns of it are looked at. Throws
  // SqlError 824 when these are damaged.
  void read(std::string_view record, std::size_t most = SIZE_MAX);

  std::size_t count() const { return count_; }  // of those looked at
  bool isNull(std::size_t column) const { return column >= count() || record_[begins_[column].type] == 0; }
  // Reads the column, whose declared type is `type`, into `value`, whose memory for a text is used again. Throws SqlError 824
  // when it is no value of the type.
  void read(std::size_t column, const Type& type, Value& value) const;
  // Gives the statement's parameter the value of the column.
  void bind(std::size_t column, sqlite3_stmt* statement, int parameter) const;
  // The types or the values of the columns from `first` on, as they lie in the record.
  std::string_view types(std::size_t first, std::size_t count) const;
  std::string_view values(std::size_t first, std::size_t count) const;
  // Of the columns that were not looked at.
  std::string_view otherTypes() const { return record_.substr(begins_[count_].type, header_ - begins_[count_].type); }
  std::string_view otherValues() const { return record_.substr(begins_[count_].value); }

 private:
  struct Field {
    std::uint64_t type;
    std::string_view bytes;
  };
  Field field(std::size_t column) const;

  std::string_view record_;
  std::size_t header_ = 0;  // its length
  std::size_t count_ = 0;
  struct Begin {
    std::uint32_t type = 0, value = 0;
  };
  std::vector<Begin> begins_;  // of each column, and of what would follow the last
};

// Puts a record together, column by column.
class RecordBuilder {
 public:
  void clear();
  void addNulls(std::size_t count);
  // Columns of another record. What it does not have is null.
  void add(const RecordFields& fields, std::size_t first, std::size_t count);
  // The columns that were not looked at.
  void addOthers(const RecordFields& fields);
  // An integer, a floating-point number, a text, bytes or null.
  void add(sqlite3_value* value);
  // The same in a column of floating-point numbers: there SQLite keeps a whole number as an integer of up to six bytes,
  // zero without its sign.
  void addReal(sqlite3_value* value);
  // Until the next call.
  std::string_view record();

 private:
  void addInteger(std::int64_t number);
  void addType(std::uint64_t type);
  void addBytes(std::uint64_t number, int count);

  std::string types_, values_, record_;
};

}  // namespace quillon::tsql
