// Rows of a table, written value by value from C++ types.
#pragma once

#include <cstdint>
#include <initializer_list>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "workbench/account/calendar.h"
#include "workbench/tsql/engine/engine.h"

namespace quillon::account {

// Quantities are counted in hundredths of a unit, amounts in hundredths of the currency unit (cents), unit costs in
// ten-thousandths: 64 bits hold every product that the sample forms.
struct Quantity {
  std::int64_t hundredths = 0;
};
struct Amount {
  std::int64_t cents = 0;
};
struct UnitCost {
  std::int64_t tenThousandths = 0;
};

inline tsql::Value toValue(std::nullptr_t) {
  return {};
}
inline tsql::Value toValue(std::int64_t number) {
  return number;
}
inline tsql::Value toValue(int number) {
  return std::int64_t{number};
}
inline tsql::Value toValue(bool flag) {
  return std::int64_t{flag};
}
inline tsql::Value toValue(double number) {
  return number;
}
inline tsql::Value toValue(std::string_view text) {
  return std::string(text);
}
inline tsql::Value toValue(const char* text) {
  return std::string(text);
}
inline tsql::Value toValue(std::string text) {
  return tsql::Value(std::move(text));
}
inline tsql::Value toValue(Day day) {
  return toDateTime(day);
}
// Into decimal(18,6), money and decimal(18,6).
inline tsql::Value toValue(Quantity quantity) {
  constexpr std::int64_t factor = 10'000;
  return tsql::Exact{quantity.hundredths * factor, 6};
}
inline tsql::Value toValue(Amount amount) {
  constexpr std::int64_t factor = 100;
  return tsql::Exact{amount.cents * factor, 4};
}
inline tsql::Value toValue(UnitCost cost) {
  constexpr std::int64_t factor = 100;
  return tsql::Exact{cost.tenThousandths * factor, 6};
}
template <typename T>
tsql::Value toValue(const std::optional<T>& value) {
  return value ? toValue(*value) : tsql::Value();
}

class TableWriter {
 public:
  TableWriter(tsql::Connection& connection, std::string_view table, std::initializer_list<std::string_view> columns)
      : TableWriter(connection, table, std::vector<std::string>(columns.begin(), columns.end())) {}
  TableWriter(tsql::Connection& connection, std::string_view table, const std::vector<std::string>& columns)
      : writer_(connection.bulkWriter(table, columns)) {}

  // One row: a value for each column, in their order.
  template <typename... Values>
  void add(Values&&... values) {
    row_.clear();
    (row_.push_back(toValue(std::forward<Values>(values))), ...);
    writer_->write(row_);
  }
  void addRow(const std::vector<tsql::Value>& row) { writer_->write(row); }

 private:
  std::unique_ptr<tsql::BulkWriter> writer_;
  std::vector<tsql::Value> row_;
};

}  // namespace quillon::account
