#include "workbench/presentation/report_output.h"

#include <algorithm>

#include "frame/text.h"
#include "workbench/account/csv.h"
#include "workbench/presentation/ledger_rows.h"
#include "workbench/presentation/text_table.h"
#include "workbench/presentation/value_output.h"

namespace quillon::workbench {

namespace {

void writeCrossTable(std::ostream& out, const ReportDocument& document) {
  std::vector<TableColumn> columns = {{std::string(document.text(codeCaption))},
                                      {std::string(document.text(costItemCaption))}};
  for (const CrossState& state : document.crossStates) {
    for (const Caption& measure : {quantityCaption, moneyCaption})
      columns.push_back({crossHeading(document, state, measure), Align::right});
  }
  TextTable table(out, std::move(columns));
  const auto write = [&](const CrossRow& row, std::string code, std::string name) {
    std::vector<std::string> cells = {std::move(code), std::move(name)};
    for (std::size_t state = 0; state < document.crossStates.size(); ++state) {
      cells.push_back(quantityText(document, row.quantity[state]));
      cells.push_back(moneyText(row.money[state]));
    }
    table.row(std::move(cells));
  };
  for (const CrossRow& row : document.cross.rows)
    write(row, row.code, costItemName(document, row));
  table.rule();
  write(document.cross.total, std::string(document.text(totalCaption)), "");
  table.finish();
}

std::vector<TableColumn> headings(const ReportDocument& document, std::span<const ReportColumn> columns) {
  std::vector<TableColumn> headings;
  for (const ReportColumn& column : columns)
    headings.push_back({column.caption(document.language), isNumber(column.role) ? Align::right : Align::left});
  return headings;
}

void writeRowTable(std::ostream& out, const ReportDocument& document, const ResultTable& result,
                   std::optional<std::int64_t> limit) {
  TextTable table(out, headings(document, document.columns));
  const auto cursor = result.rows(document.columns);
  for (std::int64_t shown = 0; (!limit || shown < *limit) && cursor->next(); ++shown) {
    std::vector<std::string> cells;
    for (std::size_t i = 0; i < document.columns.size(); ++i) {
      cells.push_back(cellText(document, document.columns[i], cursor->value(i)));
    }
    table.row(std::move(cells));
  }
  table.rule();
  std::vector<std::string> cells;
  for (std::size_t i = 0; i < document.columns.size(); ++i) {
    cells.push_back(totalText(document, i));
  }
  table.row(std::move(cells));
  table.finish();
}

// Balances stand between rules.
void writeLedgerTable(std::ostream& out, const ReportDocument& document, const ResultTable& result,
                      std::optional<std::int64_t> limit) {
  const std::vector<ReportColumn> columns = ledgerColumns(document);
  TextTable table(out, headings(document, columns));
  LedgerRows rows(document, result);
  bool balanceBefore = false;
  for (std::int64_t shown = 0; (!limit || shown < *limit) && rows.next(); ++shown) {
    const bool balance = isBalance(rows.row().kind);
    if (shown > 0 && rows.row().beginsLine && (balance || balanceBefore)) table.rule();
    std::vector<std::string> cells;
    for (std::size_t i = 0; i < columns.size(); ++i)
      cells.push_back(cellText(document, columns[i], rows.row().values[i]));
    table.row(std::move(cells));
    balanceBefore = balance;
  }
  table.finish();
}

}  // namespace

void writeCsv(std::ostream& out, const ResultTable& table) {
  const auto cursor = table.rows();
  const auto columns = cursor->columns();
  // Null and an empty text are both nothing: the file goes to spreadsheets, which do not tell them apart.
  const auto writeRecord = [&out, &columns](const auto& textOf) {
    std::string record;
    for (std::size_t i = 0; i < columns.size(); ++i) {
      if (i > 0) record += ',';
      account::appendCsvText(record, textOf(i), account::EmptyText::bare);
    }
    out << record << "\r\n";
  };
  writeRecord([&columns](std::size_t i) { return columns[i].name; });
  while (cursor->next())
    writeRecord([&cursor](std::size_t i) { return plainText(cursor->value(i), ""); });
}

void writeJson(std::ostream& out, const ReportDocument& document, const ResultTable& table,
               std::span<const ReportColumn> known) {
  const auto cursor = table.rows();
  const auto columns = cursor->columns();
  out << "{\"report\":";
  writeJsonText(out, document.report);
  out << ",\"title\":";
  writeJsonText(out, document.title);
  out << ",\n\"columns\":";
  writeJsonColumns(out, columns);
  out << ",\n\"captions\":{";
  const char* separator = "";
  for (const tsql::Column& column : columns) {
    const auto caption =
        std::ranges::find_if(known, [&](const auto& entry) { return equalIgnoringCase(entry.name, column.name); });
    if (caption == known.end()) continue;
    out << separator;
    writeJsonText(out, column.name);
    out << ':';
    writeJsonText(out, caption->caption(document.language));
    separator = ",";
  }
  out << "},\n\"rows\":[";
  separator = "\n";
  while (cursor->next()) {
    out << separator << '[';
    for (std::size_t i = 0; i < columns.size(); ++i) {
      if (i > 0) out << ',';
      writeJsonValue(out, cursor->value(i));
    }
    out << ']';
    separator = ",\n";
  }
  out << "\n]}\n";
}

void writeTable(std::ostream& out, const ReportDocument& document, const ResultTable& table,
                std::optional<std::int64_t> limit) {
  out << document.title << '\n';
  const std::string_view colon = document.language == Language::chinese ? "：" : ": ";
  for (const auto& [caption, text] : document.conditions)
    out << caption << colon << text << '\n';
  out << '\n';
  if (document.rowCount == 0) {
    out << document.text(noRowsCaption) << '\n';
    return;
  }
  if (document.ledger) {
    writeLedgerTable(out, document, table, limit);
  } else {
    if (!document.crossStates.empty()) {
      out << document.text(crossCaption) << '\n';
      writeCrossTable(out, document);
      out << '\n' << document.text(rowsCaption) << '\n';
    }
    writeRowTable(out, document, table, limit);
  }
  out << '\n' << rowCountText(document, limit) << '\n';
}

}  // namespace quillon::workbench
