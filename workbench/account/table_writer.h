// Rows of a table, written value by value from C++ types.
#pragma once

#include <cstdint>
#include <initializer_list>
#include <memory>
#include <optional>
#include <span>
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

// Makes `value` hold what is given. A text that held one keeps its memory.
template <typename Held>
void hold(tsql::Value& value, const Held& held) {
  if (auto* const known = std::get_if<Held>(&value)) {
    *known = held;
  } else {
    value.emplace<Held>(held);
  }
}
inline void setValue(tsql::Value& value, std::nullptr_t) {
  value.emplace<std::monostate>();
}
inline void setValue(tsql::Value& value, std::int64_t number) {
  hold(value, number);
}
inline void setValue(tsql::Value& value, int number) {
  hold(value, std::int64_t{number});
}
inline void setValue(tsql::Value& value, bool flag) {
  hold(value, std::int64_t{flag});
}
inline void setValue(tsql::Value& value, double number) {
  hold(value, number);
}
inline void setValue(tsql::Value& value, std::string_view text) {
  if (auto* const known = std::get_if<std::string>(&value)) {
    known->assign(text);
  } else {
    value.emplace<std::string>(text);
  }
}
inline void setValue(tsql::Value& value, const char* text) {
  setValue(value, std::string_view(text));
}
inline void setValue(tsql::Value& value, const std::string& text) {
  setValue(value, std::string_view(text));
}
inline void setValue(tsql::Value& value, Day day) {
  hold(value, toDateTime(day));
}
// Into decimal(18,6), money and decimal(18,6).
inline void setValue(tsql::Value& value, Quantity quantity) {
  constexpr std::int64_t factor = 10'000;
  hold(value, tsql::Exact{quantity.hundredths * factor, 6});
}
inline void setValue(tsql::Value& value, Amount amount) {
  constexpr std::int64_t factor = 100;
  hold(value, tsql::Exact{amount.cents * factor, 4});
}
inline void setValue(tsql::Value& value, UnitCost cost) {
  constexpr std::int64_t factor = 100;
  hold(value, tsql::Exact{cost.tenThousandths * factor, 6});
}
template <typename T>
void setValue(tsql::Value& value, const std::optional<T>& held) {
  if (held) {
    setValue(value, *held);
  } else {
    setValue(value, nullptr);
  }
}
template <typename T>
tsql::Value toValue(const T& held) {
  tsql::Value value;
  setValue(value, held);
  return value;
}

class TableWriter {
 public:
  TableWriter(tsql::Connection& connection, std::string_view table, std::initializer_list<std::string_view> columns)
      : TableWriter(connection, table, std::vector<std::string>(columns.begin(), columns.end())) {}
  TableWriter(tsql::Connection& connection, std::string_view table, const std::vector<std::string>& columns)
      : writer_(connection.bulkWriter(table, columns)), row_(columns.size()) {}

  // One row: a value for each column, in their order.
  template <typename... Values>
  void add(const Values&... values) {
    beginRow();
    append(values...);
    endRow();
  }
  void addRow(const std::vector<tsql::Value>& row) { writer_->write(row); }

  // The same bit by bit: between these two, append() gives the next values. So many are given as there are columns.
  void beginRow() { next_ = 0; }
  template <typename... Values>
  void append(const Values&... values) {
    (setValue(row_.at(next_++), values), ...);
  }
  void endRow() { writer_->write(std::span(row_).first(next_)); }

 private:
  std::unique_ptr<tsql::BulkWriter> writer_;
  std::vector<tsql::Value> row_;  // as long as the writer, so that its texts keep their memory
  std::size_t next_ = 0;
};

}  // namespace quillon::account
