#include "tests/workbench/account/fake_connection.h"

#include <algorithm>

#include "workbench/tsql/values/text.h"

namespace quillon::account::testing {
namespace {

const TableDefinition& definitionOf(std::string_view table) {
  const auto found = std::ranges::find(tables(), table, &TableDefinition::name);
  if (found == tables().end()) throw std::out_of_range("no table " + std::string(table));
  return *found;
}

void checkValue(const ColumnDefinition& column, const tsql::Value& value) {
  const std::string_view type = column.type.substr(0, column.type.find(" not null"));
  const bool required = type.size() != column.type.size();
  const auto fail = [&](const char* what) { throw std::invalid_argument(std::string(column.name) + ": " + what); };
  if (tsql::isNull(value)) {
    if (required) fail("null in a required column");
    return;
  }
  if (type == "int" || type == "bit") {
    const auto* number = std::get_if<std::int64_t>(&value);
    if (number == nullptr || *number < -2147483648LL || *number > 2147483647LL) fail("no int");
    if (type == "bit" && *number != 0 && *number != 1) fail("no bit");
  } else if (type == "money" || type == "decimal(18,6)") {
    const auto* exact = std::get_if<tsql::Exact>(&value);
    if (exact == nullptr || exact->scale != (type == "money" ? 4 : 6)) fail("no exact number of its scale");
    constexpr std::int64_t eighteenDigits = 999'999'999'999'999'999;
    if (!exact->units.fitsInt64() || exact->units.toInt64() > eighteenDigits ||
        exact->units.toInt64() < -eighteenDigits) {
      fail("out of range");
    }
  } else if (type == "float") {
    if (!std::holds_alternative<double>(value)) fail("no float");
  } else if (type == "datetime") {
    if (!std::holds_alternative<tsql::DateTime>(value)) fail("no datetime");
  } else {
    const auto* text = std::get_if<std::string>(&value);
    if (text == nullptr || !type.starts_with("nvarchar(")) fail("no text");
    if (tsql::text::widerThan(*text, std::stoll(std::string(type.substr(9))))) fail("too long");
  }
}

class FakeWriter : public tsql::BulkWriter {
 public:
  FakeWriter(std::string_view table, std::span<const std::string> columns, const RowListener& listener)
      : table_(table), columns_(columns.begin(), columns.end()), listener_(listener) {
    for (const std::string& column : columns_) {
      const auto all = definitionOf(table).columns;
      const auto found = std::ranges::find(all, column, &ColumnDefinition::name);
      if (found == all.end()) throw std::out_of_range("no column " + table_ + "." + column);
      definitions_.push_back(&*found);
    }
    for (const ColumnDefinition& column : definitionOf(table).columns) {
      const bool written = std::ranges::find(columns_, column.name) != columns_.end();
      if (!written && column.type.ends_with("not null")) throw std::out_of_range(table_ + " is never given its keys");
    }
  }

  void write(std::span<const tsql::Value> values) override {
    if (values.size() != definitions_.size()) throw std::invalid_argument(table_ + ": a row of another width");
    for (std::size_t i = 0; i < values.size(); ++i)
      checkValue(*definitions_[i], values[i]);
    listener_(table_, columns_, values);
  }

 private:
  std::string table_;
  std::vector<std::string> columns_;
  std::vector<const ColumnDefinition*> definitions_;
  const RowListener& listener_;
};

}  // namespace

std::unique_ptr<tsql::BulkWriter> FakeConnection::bulkWriter(std::string_view table,
                                                             std::span<const std::string> columns) {
  return std::make_unique<FakeWriter>(table, columns, listener_);
}

const RecordedTable& RecordedSample::table(std::string_view name) const {
  static const RecordedTable empty;
  const auto found = tables.find(name);
  return found == tables.end() ? empty : found->second;
}

}  // namespace quillon::account::testing
