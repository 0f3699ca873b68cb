#include "workbench/presentation/result_page.h"

#include <string>

#include "workbench/presentation/html_text.h"
#include "workbench/presentation/ledger_rows.h"

namespace quillon::workbench {

namespace {

constexpr std::string_view resultStyleSheet = R"(
:root { color-scheme: light; }
body { font: 13px/1.45 "Noto Sans CJK SC", "Source Han Sans SC", "Microsoft YaHei", "PingFang SC", "DengXian",
       "Segoe UI", sans-serif; color: #1c1f23; margin: 2rem; }
h1 { font-size: 1.5rem; margin: 0 0 .6rem; }
h2 { font-size: 1.1rem; margin: 1.8rem 0 .5rem; }
dl { display: grid; grid-template-columns: max-content auto; gap: .1rem 1rem; margin: 0; }
dt { color: #5b626b; }
dd { margin: 0; }
table { border-collapse: collapse; font-variant-numeric: tabular-nums; }
th, td { border: 1px solid #c9ced6; padding: .2rem .5rem; text-align: left; white-space: nowrap; }
thead th { background: #eef1f5; font-weight: 600; text-align: center; }
tbody tr:nth-child(even) { background: #f8f9fb; }
tbody tr.balance td { background: #eef1f5; font-weight: 600; }
tbody tr.line td { border-top: 2px solid #8a93a0; }
tfoot td { background: #eef1f5; font-weight: 600; border-top: 2px solid #8a93a0; }
.n { text-align: right; }
.note { color: #5b626b; }
@page { size: A4 landscape; margin: 12mm; }
@media print {
  body { margin: 0; font-size: 8.5pt; }
  .rows { font-size: 7pt; }
  th, td { padding: .1rem .25rem; white-space: normal; }
  .n { white-space: nowrap; }
  thead { display: table-header-group; }
  tfoot { display: table-row-group; }
  tr { break-inside: avoid; }
  h2 { break-after: avoid; }
}
)";

void writeCell(std::ostream& out, std::string_view text, bool number) {
  out << (number ? "<td class=\"n\">" : "<td>") << escaped(text) << "</td>";
}

void writeConditions(std::ostream& out, const ReportDocument& document) {
  if (document.conditions.empty()) return;
  out << "<dl>\n";
  for (const auto& [caption, text] : document.conditions)
    out << "<dt>" << escaped(caption) << "</dt><dd>" << escaped(text) << "</dd>\n";
  out << "</dl>\n";
}

void writeCrossRow(std::ostream& out, const ReportDocument& document, const CrossRow& row) {
  for (std::size_t state = 0; state < document.crossStates.size(); ++state) {
    writeCell(out, quantityText(document, row.quantity[state]), true);
    writeCell(out, moneyText(row.money[state]), true);
  }
  out << "</tr>\n";
}

void writeCross(std::ostream& out, const ReportDocument& document) {
  out << "<h2>" << document.text(crossCaption) << "</h2>\n<table class=\"cross\">\n<thead>\n<tr><th rowspan=\"2\">"
      << document.text(codeCaption) << "</th><th rowspan=\"2\">" << document.text(costItemCaption) << "</th>";
  for (const CrossState& state : document.crossStates)
    out << "<th colspan=\"2\">" << escaped(stateName(document, state)) << "</th>";
  out << "</tr>\n<tr>";
  for (std::size_t state = 0; state < document.crossStates.size(); ++state) {
    out << "<th>" << document.text(quantityCaption) << "</th><th>" << document.text(moneyCaption) << "</th>";
  }
  out << "</tr>\n</thead>\n<tbody>\n";
  for (const CrossRow& row : document.cross.rows) {
    out << "<tr>";
    writeCell(out, row.code, false);
    writeCell(out, costItemName(document, row), false);
    writeCrossRow(out, document, row);
  }
  out << "</tbody>\n<tfoot>\n<tr><td colspan=\"2\">" << document.text(totalCaption) << "</td>";
  writeCrossRow(out, document, document.cross.total);
  out << "</tfoot>\n</table>\n";
}

void writeRows(std::ostream& out, const ReportDocument& document, const ResultTable& table,
               std::optional<std::int64_t> limit) {
  out << "<h2>" << document.text(rowsCaption) << "</h2>\n<table class=\"rows\">\n<thead>\n<tr>";
  for (const ReportColumn& column : document.columns)
    out << "<th>" << escaped(column.caption(document.language)) << "</th>";
  out << "</tr>\n</thead>\n<tbody>\n";
  const auto cursor = table.rows(document.columns);
  for (std::int64_t shown = 0; (!limit || shown < *limit) && cursor->next(); ++shown) {
    out << "<tr>";
    for (std::size_t i = 0; i < document.columns.size(); ++i) {
      const ReportColumn& column = document.columns[i];
      writeCell(out, cellText(document, column, cursor->value(i)), isNumber(column.role));
    }
    out << "</tr>\n";
  }
  out << "</tbody>\n<tfoot>\n<tr>";
  for (std::size_t i = 0; i < document.columns.size(); ++i) {
    writeCell(out, totalText(document, i), document.totals[i].has_value());
  }
  out << "</tr>\n</tfoot>\n</table>\n";
}

// Balances are set off, and a rule stands above each ledger line.
void writeLedger(std::ostream& out, const ReportDocument& document, const ResultTable& table,
                 std::optional<std::int64_t> limit) {
  const std::vector<ReportColumn> columns = ledgerColumns(document);
  out << "<table class=\"rows\">\n<thead>\n<tr>";
  for (const ReportColumn& column : columns)
    out << "<th>" << escaped(column.caption(document.language)) << "</th>";
  out << "</tr>\n</thead>\n<tbody>\n";
  LedgerRows rows(document, table);
  for (std::int64_t shown = 0; (!limit || shown < *limit) && rows.next(); ++shown) {
    const LedgerRow& row = rows.row();
    out << "<tr class=\"" << (isBalance(row.kind) ? "balance" : "movement") << (row.beginsLine ? " line" : "") << "\">";
    for (std::size_t i = 0; i < columns.size(); ++i)
      writeCell(out, cellText(document, columns[i], row.values[i]), isNumber(columns[i].role));
    out << "</tr>\n";
  }
  out << "</tbody>\n</table>\n";
}

}  // namespace

void writeHtml(std::ostream& out, const ReportDocument& document, const ResultTable& table,
               std::optional<std::int64_t> limit) {
  out << "<!DOCTYPE html>\n<html lang=\"" << (document.language == Language::chinese ? "zh-CN" : "en")
      << "\">\n<head>\n<meta charset=\"utf-8\"/>\n"
      << "<meta name=\"viewport\" content=\"width=device-width\"/>\n<title>" << escaped(document.title)
      << "</title>\n<style>" << resultStyleSheet << "</style>\n</head>\n<body>\n<h1>" << escaped(document.title)
      << "</h1>\n";
  writeConditions(out, document);
  if (document.rowCount == 0) {
    out << "<p class=\"note\">" << document.text(noRowsCaption) << "</p>\n";
  } else {
    if (document.ledger) {
      writeLedger(out, document, table, limit);
    } else {
      if (!document.crossStates.empty()) writeCross(out, document);
      writeRows(out, document, table, limit);
    }
    out << "<p class=\"note\">" << rowCountText(document, limit) << "</p>\n";
  }
  out << "</body>\n</html>\n";
}

}  // namespace quillon::workbench
