#include "workbench/presentation/ledger_layout.h"

#include <memory>
#include <set>
#include <utility>

#include "workbench/presentation/figure_columns.h"

namespace quillon::workbench {

namespace {

constexpr Caption monthTotalCaption{"本月合计", "Month total"};
constexpr Caption costItemCodeCaption{"成本项目编码", "Cost item code"};

// Quantity, unit cost and amount of receipts, of issues and of the balance: what a row shows in these nine columns.
struct RowFigures {
  const Figures* receipts = nullptr;
  const Figures* issues = nullptr;
  const Figures* balance = nullptr;
};

class LedgerRowsMaker {
 public:
  LedgerRowsMaker(const LedgerBook& book, const LedgerSheet& sheet, std::string sinceBeginning, bool parts)
      : book_(book), sheet_(sheet), sinceBeginning_(std::move(sinceBeginning)), parts_(parts), balance_(book.opening) {}

  void make() {
    rows_.push_back(row(RowKind::opening, sheet_.namedCells(sheet_.openingName()), {.balance = &balance_.total()}));
    std::set<int> months;
    for (const LedgerLine& line : book_.lines)
      months.insert(line.month);
    for (const auto& [month, balances] : book_.monthEnds) {
      if (book_.hasMonthEnd(month)) months.insert(month);
    }
    auto line = book_.lines.begin();
    for (const int month : months) {
      const auto first = line;
      Figures receipts;
      Figures issues;
      for (; line != book_.lines.end() && line->month == month; ++line) {
        (line->receipt ? receipts : issues).add(line->figures());
        addLine(*line);
      }
      if (line != first) addSums(month, receipts, issues);
      if (book_.hasMonthEnd(month))
        addDifferences(rows_, book_.monthEnds.at(month), sheet_.monthEndDifferenceName(), month);
    }
    if (const BalancesByGroup* closing = book_.closing())
      addDifferences(totals_, *closing, sheet_.closingDifferenceName(), {});
    totals_.push_back(row(RowKind::closing, sheet_.namedCells(sheet_.closingName()), {.balance = &balance_.total()}));
  }

  std::vector<ViewRow> takeRows() { return std::move(rows_); }
  std::vector<ViewRow> takeTotals() { return std::move(totals_); }

 private:
  ViewRow row(RowKind kind, std::vector<tsql::Value> cells, const RowFigures& figures) const {
    if (parts_) cells.resize(cells.size() + 2);
    for (const Figures* of : {figures.receipts, figures.issues, figures.balance}) {
      cells.push_back(of != nullptr ? sheet_.quantity(of->quantity) : tsql::Value());
      cells.push_back(of != nullptr ? sheet_.unitCost(*of) : tsql::Value());
      cells.push_back(of != nullptr ? sheet_.amount(of->amount) : tsql::Value());
    }
    return {.kind = kind, .cells = std::move(cells)};
  }

  // Puts what a line or a part has of its own, its unit cost as the ledger keeps it, in place of what sums say.
  void putMovement(ViewRow& row, bool receipt, tsql::Value quantity, tsql::Value unitCost, tsql::Value amount) const {
    const std::size_t at = sheet_.columns().size() + (parts_ ? 2 : 0) + (receipt ? 0 : 3);
    row.cells[at] = std::move(quantity);
    row.cells[at + 1] = std::move(unitCost);
    row.cells[at + 2] = std::move(amount);
  }

  void addLine(const LedgerLine& line) {
    balance_.add(line);
    ViewRow shown = row(RowKind::line, sheet_.lineCells(line), {.balance = &balance_.total()});
    putMovement(shown, line.receipt, line.quantity, line.unitCost, line.amount);
    shown.ledgerLine = line.id;
    rows_.push_back(std::move(shown));
    if (!parts_) return;
    bool brokenDown = false;
    for (const LedgerPart& part : line.parts) {
      if (!part.costItem) continue;
      const CostItem& item = book_.costItems[*part.costItem];
      addPart(line, item.code, item.name, part.quantity, part.unitCost, part.amount);
      brokenDown = true;
    }
    const std::string nothing(sheet_.text(noCostItemCaption));
    if (!brokenDown) {
      addPart(line, "", nothing, line.quantity, line.unitCost, line.amount);
    } else if (const ExactSum rest = amountWithoutCostItem(line); !rest.isZero()) {
      addPart(line, "", nothing, {}, {}, sheet_.amount(rest));
    }
  }

  void addPart(const LedgerLine& line, const std::string& code, const std::string& name, tsql::Value quantity,
               tsql::Value unitCost, tsql::Value amount) {
    ViewRow part = row(RowKind::detail, std::vector<tsql::Value>(sheet_.columns().size()), {});
    const std::size_t at = sheet_.columns().size();
    if (!code.empty()) part.cells[at] = code;
    part.cells[at + 1] = name;
    putMovement(part, line.receipt, std::move(quantity), std::move(unitCost), std::move(amount));
    part.ledgerLine = line.id;
    rows_.push_back(std::move(part));
  }

  void addSums(int month, const Figures& receipts, const Figures& issues) {
    receipts_.add(receipts);
    issues_.add(issues);
    const Figures& balance = balance_.total();
    rows_.push_back(row(RowKind::monthTotal, sheet_.namedCells(std::string(sheet_.text(monthTotalCaption)), month),
                        {.receipts = &receipts, .issues = &issues, .balance = &balance}));
    rows_.push_back(row(RowKind::yearTotal, sheet_.namedCells(sinceBeginning_, month),
                        {.receipts = &receipts_, .issues = &issues_, .balance = &balance}));
  }

  void addDifferences(std::vector<ViewRow>& rows, const BalancesByGroup& balances, const std::string& name,
                      std::optional<int> month) const {
    for (const BalanceDifference& difference : balance_.differences(balances)) {
      if (difference.figures.isZero()) continue;
      ViewRow shown =
          row(RowKind::difference, sheet_.namedCells(name, month, difference.group), {.balance = &difference.figures});
      shown.cells[shown.cells.size() - 2] = {};  // a difference has no unit cost
      rows.push_back(std::move(shown));
    }
  }

  const LedgerBook& book_;
  const LedgerSheet& sheet_;
  std::string sinceBeginning_;
  bool parts_;
  LedgerBalance balance_;
  Figures receipts_;  // since the beginning
  Figures issues_;
  std::vector<ViewRow> rows_;
  std::vector<ViewRow> totals_;
};

}  // namespace

View ledgerView(const LayoutRequest& request, const ReportDocument& heading, const LedgerRequest& ledger) {
  const LedgerBook book = readLedger(request.table, request.report.columns, Breakdown::costItem);
  const LedgerSheet sheet(book, heading, request.report.columns, request.allColumns);
  LedgerRowsMaker maker(book, sheet, sinceBeginningName(ledger.beginning, heading.language), ledger.parts);
  maker.make();

  View view;
  view.columns = sheet.columns();
  if (ledger.parts) {
    view.columns.push_back({.column = layoutColumn("cfxCode", costItemCodeCaption)});
    view.columns.push_back({.column = layoutColumn("cfxName", costItemCaption)});
  }
  using enum ColumnRole;
  view.columns.push_back(groupedColumn("iInQuantity", quantityColumn, quantity, receiptsCaption));
  view.columns.push_back(groupedColumn("iInCost", unitCostColumn, unitCost, receiptsCaption));
  view.columns.push_back(groupedColumn("iInPrice", amountColumn, money, receiptsCaption));
  view.columns.push_back(groupedColumn("iOutQuantity", quantityColumn, quantity, issuesCaption));
  view.columns.push_back(groupedColumn("iOutCost", unitCostColumn, unitCost, issuesCaption));
  view.columns.push_back(groupedColumn("iOutPrice", amountColumn, money, issuesCaption));
  // Balances are not summed.
  view.columns.push_back(groupedColumn("iBalanceQuantity", quantityColumn, movement, balanceCaption));
  view.columns.push_back(groupedColumn("iBalanceCost", unitCostColumn, unitCost, balanceCaption));
  view.columns.push_back(groupedColumn("iBalancePrice", amountColumn, ColumnRole::amount, balanceCaption));
  view.rows = heldRows(std::make_shared<const std::vector<ViewRow>>(maker.takeRows()));
  view.totals = maker.takeTotals();
  view.lineCount = static_cast<std::int64_t>(book.lines.size());
  view.columnsLeftOut = sheet.columnsLeftOut();
  return view;
}

}  // namespace quillon::workbench
