#include "workbench/presentation/columnar_layout.h"

#include <algorithm>
#include <memory>
#include <set>
#include <utility>

#include "workbench/presentation/figure_columns.h"

namespace quillon::workbench {

namespace {

constexpr Caption costItemsCaption{"成本项目（发出为负）", "Cost items (issues negative)"};
constexpr Caption classesCaption{"项目分类（发出为负）", "Cost-item classes (issues negative)"};
constexpr Caption monthReceiptsCaption{"本月收入", "Month's receipts"};
constexpr Caption monthIssuesCaption{"本月发出", "Month's issues"};
constexpr Caption monthEndCaption{"月末结存", "Month-end balance"};
constexpr const char* noCostItemName = "noCostItem";

// Amounts by cost item, and what falls to none.
struct AcrossAmounts {
  std::map<std::size_t, ExactSum> byCostItem;
  ExactSum withoutCostItem;

  void add(const LedgerLine& line) {
    for (const LedgerPart& part : line.parts) {
      if (part.costItem) put(byCostItem[*part.costItem], part.amount, line.receipt);
    }
    put(withoutCostItem, amountWithoutCostItem(line).value(), line.receipt);
  }

 private:
  static void put(ExactSum& sum, const tsql::Value& amount, bool receipt) {
    if (receipt) {
      sum.add(amount);
    } else {
      sum.subtract(amount);
    }
  }
};

AcrossAmounts acrossOf(const LedgerLine& line) {
  AcrossAmounts across;
  across.add(line);
  return across;
}

AcrossAmounts acrossOf(const LedgerBalance& balance) {
  return {.byCostItem = balance.amountsByCostItem(), .withoutCostItem = balance.amountWithoutCostItem()};
}

AcrossAmounts acrossOf(const BalanceDifference& difference) {
  AcrossAmounts across{.byCostItem = {}, .withoutCostItem = difference.withoutCostItem};
  for (const auto& [item, figures] : difference.byCostItem)
    across.byCostItem[item] = figures.amount;
  return across;
}

bool differsInAmounts(const BalanceDifference& difference) {
  return !difference.figures.amount.isZero() || !difference.withoutCostItem.isZero() ||
         std::ranges::any_of(difference.byCostItem, [](const auto& of) { return !of.second.amount.isZero(); });
}

class ColumnarRowsMaker {
 public:
  ColumnarRowsMaker(const LedgerBook& book, const LedgerSheet& sheet)
      : book_(book), sheet_(sheet), balance_(book.opening) {}

  void make() {
    rows_.push_back(balanceRow(RowKind::opening, sheet_.namedCells(sheet_.openingName())));
    std::set<int> months;
    for (const LedgerLine& line : book_.lines)
      months.insert(line.month);
    for (const auto& [month, balances] : book_.monthEnds) {
      if (book_.hasMonthEnd(month)) months.insert(month);
    }
    auto line = book_.lines.begin();
    for (const int month : months) {
      const auto first = line;
      while (line != book_.lines.end() && line->month == month)
        ++line;
      if (line != first) addMonth(month, std::span(first, line));
      if (book_.hasMonthEnd(month))
        addDifferences(rows_, book_.monthEnds.at(month), sheet_.monthEndDifferenceName(), month);
    }
    if (const BalancesByGroup* closing = book_.closing())
      addDifferences(totals_, *closing, sheet_.closingDifferenceName(), {});
    totals_.push_back(balanceRow(RowKind::closing, sheet_.namedCells(sheet_.closingName())));
  }

  std::vector<ViewRow> takeRows() { return std::move(rows_); }
  std::vector<ViewRow> takeTotals() { return std::move(totals_); }

 private:
  // Behind the leading cells: receipts, issues, balance, the cost items in their order, what falls to none.
  ViewRow row(RowKind kind, std::vector<tsql::Value> cells, tsql::Value receipts, tsql::Value issues,
              tsql::Value balance, const AcrossAmounts& across) const {
    cells.push_back(std::move(receipts));
    cells.push_back(std::move(issues));
    cells.push_back(std::move(balance));
    for (std::size_t item = 0; item < book_.costItems.size(); ++item) {
      const auto found = across.byCostItem.find(item);
      cells.push_back(found == across.byCostItem.end() ? tsql::Value() : shown(found->second));
    }
    cells.push_back(shown(across.withoutCostItem));
    return {.kind = kind, .cells = std::move(cells)};
  }

  // A cell without an amount stays empty, so that the amounts are seen.
  tsql::Value shown(const ExactSum& sum) const { return sum.isZero() ? tsql::Value() : sheet_.amount(sum); }

  ViewRow balanceRow(RowKind kind, std::vector<tsql::Value> cells) const {
    return row(kind, std::move(cells), {}, {}, sheet_.amount(balance_.total().amount), acrossOf(balance_));
  }

  void addMonth(int month, std::span<const LedgerLine> lines) {
    ExactSum receipts;
    ExactSum issues;
    AcrossAmounts received;
    AcrossAmounts issued;
    for (const LedgerLine& line : lines) {
      balance_.add(line);
      (line.receipt ? receipts : issues).add(line.amount);
      (line.receipt ? received : issued).add(line);
      rows_.push_back(row(RowKind::line, sheet_.lineCells(line), line.receipt ? line.amount : tsql::Value(),
                          line.receipt ? tsql::Value() : line.amount, sheet_.amount(balance_.total().amount),
                          acrossOf(line)));
      rows_.back().ledgerLine = line.id;
    }
    const auto named = [&](const Caption& caption) {
      return sheet_.namedCells(std::string(sheet_.text(caption)), month);
    };
    rows_.push_back(row(RowKind::monthTotal, named(monthReceiptsCaption), sheet_.amount(receipts), {}, {}, received));
    rows_.push_back(row(RowKind::monthTotal, named(monthIssuesCaption), {}, sheet_.amount(issues), {}, issued));
    rows_.push_back(balanceRow(RowKind::monthTotal, named(monthEndCaption)));
  }

  void addDifferences(std::vector<ViewRow>& rows, const BalancesByGroup& balances, const std::string& name,
                      std::optional<int> month) const {
    for (const BalanceDifference& difference : balance_.differences(balances)) {
      if (!differsInAmounts(difference)) continue;
      rows.push_back(row(RowKind::difference, sheet_.namedCells(name, month, difference.group), {}, {},
                         sheet_.amount(difference.figures.amount), acrossOf(difference)));
    }
  }

  const LedgerBook& book_;
  const LedgerSheet& sheet_;
  LedgerBalance balance_;
  std::vector<ViewRow> rows_;
  std::vector<ViewRow> totals_;
};

bool hasAmount(std::span<const ViewRow> rows, std::size_t cell) {
  return std::ranges::any_of(rows, [cell](const ViewRow& row) { return !tsql::isNull(row.cells[cell]); });
}

}  // namespace

View columnarView(const LayoutRequest& request, const ReportDocument& heading, const LedgerRequest& ledger) {
  const LedgerBook book = readLedger(request.table, request.report.columns, ledger.breakdown);
  const LedgerSheet sheet(book, heading, request.report.columns, request.allColumns);
  ColumnarRowsMaker maker(book, sheet);
  maker.make();
  std::vector<ViewRow> rows = maker.takeRows();

  View view;
  view.totals = maker.takeTotals();
  view.columns = sheet.columns();
  using enum ColumnRole;
  view.columns.push_back(groupedColumn("iInPrice", receiptsCaption, money, amountColumn));
  view.columns.push_back(groupedColumn("iOutPrice", issuesCaption, money, amountColumn));
  view.columns.push_back(groupedColumn("iBalancePrice", balanceCaption, amount, amountColumn));
  const Caption& across = ledger.breakdown == Breakdown::costItem ? costItemsCaption : classesCaption;
  for (const CostItem& item : book.costItems)
    view.columns.push_back(
        groupedColumn(item.code.empty() ? item.name : item.code, {item.name, item.name}, money, across));
  view.columns.push_back(groupedColumn(noCostItemName, noCostItemCaption, money, across));
  if (const std::size_t last = view.columns.size() - 1; !hasAmount(rows, last) && !hasAmount(view.totals, last)) {
    view.columns.pop_back();
    for (ViewRow& row : rows)
      row.cells.pop_back();
    for (ViewRow& row : view.totals)
      row.cells.pop_back();
  }
  view.rows = heldRows(std::make_shared<const std::vector<ViewRow>>(std::move(rows)));
  view.lineCount = static_cast<std::int64_t>(book.lines.size());
  view.columnsLeftOut = sheet.columnsLeftOut();
  return view;
}

}  // namespace quillon::workbench
