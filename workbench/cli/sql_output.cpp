#include "workbench/cli/sql_output.h"

#include <utility>
#include <vector>

#include "workbench/messages/common.h"
#include "workbench/messages/program.h"
#include "workbench/presentation/csv_record.h"
#include "workbench/presentation/value_output.h"
#include "workbench/runs/run_monitor.h"

namespace quillon::workbench {

namespace {

// The error of the batch that begins in line `firstLine` of `script`, as a line for people.
void tell(std::ostream& errors, const std::string& script, const tsql::SqlError& error, int firstLine,
          Language language) {
  const Message words = errorText(error.number(), 0, error.message());
  const Message line = error.line() > 0 ? messages::atLine(script, firstLine + error.line() - 1, words)
                                        : messages::errorInBatch(script, firstLine, words);
  errors << "quillon: " << line.in(language) << '\n';
}

class JsonOutput final : public SqlOutput {
 public:
  explicit JsonOutput(std::ostream& out) : out_(out) {}

  void columns(std::span<const tsql::Column> columns) override {
    endResultSet();
    out_ << "{\"columns\":";
    writeJsonColumns(out_, columns);
    out_ << ",\"rows\":[";
    inResultSet_ = true;
    separator_ = "";
  }

  void row(std::span<const tsql::Value> values) override {
    out_ << separator_ << '[';
    separator_ = ",";
    const char* comma = "";
    for (const tsql::Value& value : values) {
      out_ << comma;
      writeJsonValue(out_, value);
      comma = ",";
    }
    out_ << ']';
  }

  void rowsAffected(std::int64_t count) override {
    if (endResultSet()) return;
    out_ << "{\"rowsAffected\":" << count << "}\n";
  }

  void error(const tsql::SqlError& error, int /*firstLine*/) override {
    endResultSet();
    out_ << "{\"error\":{\"number\":" << error.number() << ",\"message\":";
    writeJsonText(out_, error.message());
    out_ << "}}\n";
  }

 private:
  bool endResultSet() {
    const bool ended = inResultSet_;
    if (ended) out_ << "]}\n";
    inResultSet_ = false;
    return ended;
  }

  std::ostream& out_;
  bool inResultSet_ = false;
  const char* separator_ = "";
};

class TableOutput final : public SqlOutput {
 public:
  TableOutput(std::string script, std::ostream& out, std::ostream& errors, const TableStyle& style)
      : script_(std::move(script)), out_(out), errors_(errors), style_(style) {}

  void columns(std::span<const tsql::Column> columns) override {
    std::vector<TableColumn> headings;
    for (const tsql::Column& column : columns) {
      const bool text = column.type.kind == tsql::Kind::nVarChar || column.type.kind == tsql::Kind::varChar ||
                        column.type.kind == tsql::Kind::dateTime;
      headings.push_back({column.name, text ? Align::left : Align::right});
    }
    table_ = std::make_unique<TextTable>(out_, std::move(headings), style_);
  }

  void row(std::span<const tsql::Value> values) override {
    std::vector<std::string> cells;
    for (const tsql::Value& value : values)
      cells.push_back(plainText(value, "NULL"));
    table_->row(std::move(cells));
  }

  void rowsAffected(std::int64_t count) override {
    endTable();
    const Message line = count == 1 ? messages::oneRow() : messages::rowCount(count);
    out_ << line.in(style_.language) << "\n\n";
  }

  void error(const tsql::SqlError& error, int firstLine) override {
    endTable();
    tell(errors_, script_, error, firstLine, style_.language);
  }

 private:
  void endTable() {
    if (table_) table_->finish();
    table_.reset();
  }

  std::string script_;
  std::ostream& out_;
  std::ostream& errors_;
  TableStyle style_;
  std::unique_ptr<TextTable> table_;
};

class CsvOutput final : public SqlOutput {
 public:
  CsvOutput(std::string script, std::ostream& out, std::ostream& errors, Language language)
      : script_(std::move(script)), out_(out), errors_(errors), language_(language) {}

  void columns(std::span<const tsql::Column> columns) override {
    if (!first_) out_ << "\r\n";
    first_ = false;
    writeCsvRecord(out_, columns.size(), [columns](std::size_t i) { return columns[i].name; });
  }

  void row(std::span<const tsql::Value> values) override {
    writeCsvRecord(out_, values.size(), [values](std::size_t i) { return plainText(values[i], ""); });
  }

  void rowsAffected(std::int64_t /*count*/) override {}

  void error(const tsql::SqlError& error, int firstLine) override {
    tell(errors_, script_, error, firstLine, language_);
  }

 private:
  std::string script_;
  std::ostream& out_;
  std::ostream& errors_;
  Language language_;
  bool first_ = true;
};

}  // namespace

std::unique_ptr<SqlOutput> makeSqlOutput(SqlFormat format, const std::string& script, std::ostream& out,
                                         std::ostream& errors, const TableStyle& style) {
  switch (format) {
    case SqlFormat::json:
      return std::make_unique<JsonOutput>(out);
    case SqlFormat::csv:
      return std::make_unique<CsvOutput>(script, out, errors, style.language);
    case SqlFormat::table:
      break;
  }
  return std::make_unique<TableOutput>(script, out, errors, style);
}

}  // namespace quillon::workbench
