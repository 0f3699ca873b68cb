// A report made on an account and what its layouts are made from, for tests that look at the layouts' rows.
#pragma once

#include <algorithm>
#include <map>
#include <memory>
#include <optional>
#include <sstream>
#include <string>
#include <string_view>
#include <vector>

#include "frame/text.h"
#include "workbench/catalogue/catalogue.h"
#include "workbench/cli/run_notes.h"
#include "workbench/presentation/layout_request.h"
#include "workbench/presentation/ledger_sheet.h"
#include "workbench/presentation/report_document.h"
#include "workbench/presentation/view.h"
#include "workbench/runs/report_run.h"

namespace quillon::workbench::test {

class MadeLayout {
 public:
  // Without the report's dialog, which would ask for the batches of inventories that are kept by batch.
  MadeLayout(std::string_view report, const std::filesystem::path& account, std::vector<std::string> settings,
             Language language = Language::english)
      : report_(reportNamed(report)),
        made_(makeReport({.report = std::string(report),
                          .account = AccountSource::inFile(account),
                          .settings = std::move(settings),
                          .dialog = false,
                          .language = language},
                         observer_)),
        table_(made_->table()) {
    document_.language = language;
    document_.report = report;
    document_.rowCount = table_.rowCount();
  }

  const ResultTable& table() const { return table_; }
  const ReportDocument& document() const { return document_; }
  LayoutRequest request(Arrangement arrangement = {}, bool allColumns = false) const {
    return {.report = report_,
            .table = table_,
            .mode = "",
            .language = document_.language,
            .arrangement = std::move(arrangement),
            .allColumns = allColumns};
  }
  LedgerBeginning beginning(int year, const std::string& from = "") const {
    return ledgerBeginning(year, from, *made_->account().login, *made_->account().session);
  }
  // Changes the result table, which `statement` calls Result.
  void doctor(std::string statement) {
    replaceAll(statement, "Result", table_.name());
    made_->connection().execute(statement);
  }

 private:
  std::ostringstream notes_;
  RunNotes observer_{notes_, Language::english};
  const Report& report_;
  std::unique_ptr<MadeReport> made_;
  ResultTable table_;
  ReportDocument document_;
};

// A view read to its end, its totals behind the rows.
class ReadView {
 public:
  explicit ReadView(const View& view) : view_(view) {
    for (const auto rows = view.rows(); rows->next();)
      rows_.push_back(rows->row());
    rows_.insert(rows_.end(), view.totals.begin(), view.totals.end());
  }

  const std::vector<ViewRow>& rows() const { return rows_; }
  std::vector<ViewRow> rows(RowKind kind) const {
    std::vector<ViewRow> chosen;
    std::ranges::copy_if(rows_, std::back_inserter(chosen), [kind](const ViewRow& row) { return row.kind == kind; });
    return chosen;
  }
  bool has(std::string_view column) const { return place(column) < view_.columns.size(); }
  const tsql::Value& value(const ViewRow& row, std::string_view column) const { return row.cells.at(place(column)); }
  // As exact text; empty for nothing.
  std::string text(const ViewRow& row, std::string_view column) const {
    return tsql::toText(value(row, column)).value_or("");
  }
  // A date without its time of day.
  std::string line(const ViewRow& row, std::initializer_list<std::string_view> columns) const {
    std::string text;
    for (const std::string_view column : columns) {
      const std::string cell = this->text(row, column);
      constexpr std::size_t dateLength = 10;
      const bool date = std::holds_alternative<tsql::DateTime>(value(row, column));
      text += (text.empty() ? "" : "|") + (date ? cell.substr(0, dateLength) : cell.empty() ? "-" : cell);
    }
    return text;
  }

 private:
  std::size_t place(std::string_view column) const {
    const auto found = std::ranges::find_if(
        view_.columns, [column](const auto& of) { return equalIgnoringCase(of.column.name, column); });
    return static_cast<std::size_t>(found - view_.columns.begin());
  }

  View view_;
  std::vector<ViewRow> rows_;
};

using Lines = std::vector<std::string>;

inline const char* kindName(RowKind kind) {
  switch (kind) {
    case RowKind::line:
      return "line";
    case RowKind::detail:
      return "detail";
    case RowKind::opening:
      return "opening";
    case RowKind::monthTotal:
      return "month";
    case RowKind::yearTotal:
      return "year";
    case RowKind::closing:
      return "closing";
    case RowKind::difference:
      return "difference";
    case RowKind::group:
      return "group";
    case RowKind::subtotal:
      return "subtotal";
    case RowKind::total:
      break;
  }
  return "total";
}

// All rows, what they are and some of their columns.
inline Lines shown(const ReadView& view, std::initializer_list<std::string_view> columns) {
  Lines lines;
  for (const ViewRow& row : view.rows())
    lines.push_back(std::string(kindName(row.kind)) + ": " + view.line(row, columns));
  return lines;
}

}  // namespace quillon::workbench::test
