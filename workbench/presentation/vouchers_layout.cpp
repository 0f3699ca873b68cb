#include "workbench/presentation/vouchers_layout.h"

#include <algorithm>
#include <array>
#include <memory>
#include <optional>
#include <stdexcept>
#include <utility>

#include "frame/text.h"
#include "workbench/presentation/exact_sum.h"
#include "workbench/presentation/figure_columns.h"
#include "workbench/presentation/value_output.h"

namespace quillon::workbench {

namespace {

constexpr Caption voucherTypeCaption{"单据类型", "Voucher type"};
constexpr Caption structureCaption{"成本构成", "Cost structure"};

// The figures of a ledger line, and as which column they stand in the view.
struct LineFigure {
  std::string_view name;
  std::string_view ledger;  // as the query calls what the ledger has
  const Caption& caption;
  const Caption& group;
  ColumnRole role;
};
constexpr std::array<LineFigure, 6> lineFigures = {{
    {"iAInQuantity", "ledgerInQuantity", quantityHeading, receiptsCaption, ColumnRole::quantity},
    {"iInCost", "ledgerInCost", unitCostHeading, receiptsCaption, ColumnRole::unitCost},
    {"iAInPrice", "ledgerInPrice", amountHeading, receiptsCaption, ColumnRole::money},
    {"iAOutQuantity", "ledgerOutQuantity", quantityHeading, issuesCaption, ColumnRole::quantity},
    {"iOutCost", "ledgerOutCost", unitCostHeading, issuesCaption, ColumnRole::unitCost},
    {"iAOutPrice", "ledgerOutPrice", amountHeading, issuesCaption, ColumnRole::money},
}};
enum LineFigurePlace : std::size_t { inQuantity, inCost, inAmount, outQuantity, outCost, outAmount };

// What is read of a part besides the columns that are shown.
constexpr std::array<std::string_view, 5> partFigures = {"iItemInQuantity", "iIteminPrice", "iItemoutQuantity",
                                                         "iItemOutPrice", "cfxCode"};

constexpr std::array<std::string_view, 15> partColumns = {
    "cfxcCode",         "cfxcName",     "cfxCode",         "cfxName",     "cAmoType",
    "cAmoID",           "cAmoName",     "iItemInQuantity", "iIteminCost", "iIteminPrice",
    "iItemoutQuantity", "iItemoutCost", "iItemOutPrice",   "iUnitUsed",   "iUnitCost"};
constexpr std::array<std::string_view, 7> inventoryColumns = {
    "cInvCCode", "cInvCode", "cInvName", "cInvStd", "cInvAddCode", "cComUnitName", "cAssComUnitName"};
// Behind the order by document and line.
constexpr std::array<std::string_view, 6> documentOrder = {"cVouType", "dVouDate", "cVouCode",
                                                           "AutoID",   "cfxCode",  "cAmoID"};
constexpr std::array<std::string_view, 3> documentKey = {"cVouType", "dVouDate", "cVouCode"};

// What a document is told by comes first.
constexpr std::array<std::string_view, 10> leadingColumns = {"cVouType", "cVouCode",   "dVouDate", "cBusType",
                                                             "cRdName",  "cWhName",    "cDepName", "cCusName",
                                                             "cVenName", "costDepName"};

bool isOneOf(std::string_view name, std::span<const std::string_view> names) {
  return std::ranges::any_of(names, [name](auto other) { return equalIgnoringCase(name, other); });
}

bool isFigure(std::string_view name) {
  return std::ranges::any_of(lineFigures, [name](const auto& figure) { return equalIgnoringCase(name, figure.name); });
}

// Of a line, whatever its document is.
bool isOfLine(std::string_view name) {
  constexpr std::string_view freeItem = "cFree";
  constexpr std::string_view inventoryField = "cInvDefine";
  return isOneOf(name, inventoryColumns) || equalIgnoringCase(name, "cBatchia") || name.starts_with(freeItem) ||
         name.starts_with(inventoryField);
}

// The result table with the voucher type's name and the figures that the ledger has. 3201 has no name of its own: it is
// a sales issue, as 32 is.
std::string voucherLines(const ResultTable& table) {
  std::string figures;
  for (const LineFigure& figure : lineFigures)
    figures += std::string(", IsNull(line.")
                   .append(figure.name)
                   .append(", temp.")
                   .append(figure.name)
                   .append(") As ")
                   .append(figure.ledger);
  return "(Select temp.*, IsNull(types.EnumName, temp.cVouType) As cVouTypeName, line.bRdFlag As ledgerReceipt" +
         figures + " From " + table.name() +
         " temp left join ia_subsidiary line on line.AutoID = temp.AutoID left join (Select VouchType.cVouchType, "
         "Min(AA_Enum.EnumName) As EnumName From VouchType inner join AA_Enum on AA_Enum.EnumCode = "
         "VouchType.cVouchName Where AA_Enum.EnumType = N'IA.vchtype' And AA_Enum.LocaleId = DBO.UDF_GetLocaleID() "
         "Group By VouchType.cVouchType) types on types.cVouchType = Case When temp.cVouType = N'3201' Then N'32' Else "
         "temp.cVouType End) shown";
}

// Each column once: a server refuses one that comes twice.
std::string orderText(const VouchersRequest& request) {
  std::vector<std::string> names;
  std::string text;
  const auto add = [&](const std::string& name, bool descending) {
    if (std::ranges::any_of(names, [&name](const auto& other) { return equalIgnoringCase(name, other); })) return;
    names.push_back(name);
    text += (text.empty() ? "" : ", ") + name + (descending ? " Desc" : "");
  };
  for (const std::string& name : request.groupBy)
    add(name, false);
  for (const SortKey& key : request.sort) {
    if (!isOfPart(key.column)) add(key.column, key.descending);
  }
  for (const std::string_view name : documentOrder) {
    if (equalIgnoringCase(name, "cfxCode")) {
      for (const SortKey& key : request.sort)
        add(key.column, key.descending);
    }
    add(std::string(name), false);
  }
  return text;
}

struct Sums {
  ExactSum inQuantity;
  ExactSum inAmount;
  ExactSum outQuantity;
  ExactSum outAmount;
};

// How the columns of a view are read and shown.
struct Plan {
  ReportDocument document;
  VouchersRequest request;
  std::string query;
  std::size_t shared = 0;    // columns that a document may have alike: the first ones
  std::size_t ofLine = 0;    // behind them: of the line
  std::size_t ofPart = 0;    // behind the figures: of the part, before usage, unit cost and amount
  std::size_t costItem = 0;  // where the cost item's name stands among the columns

  std::size_t figures() const { return shared + ofLine; }
  std::size_t parts() const { return figures() + lineFigures.size(); }
  std::size_t usage() const { return parts() + ofPart; }
  std::size_t width() const { return usage() + 3; }
  // In a row of the query: the view's columns up to the parts' and the usage, then these.
  std::size_t partFiguresRead() const { return usage() + 1; }
  std::size_t lineRead() const { return partFiguresRead() + partFigures.size(); }
  std::size_t receiptRead() const { return lineRead() + 1; }
  std::size_t documentRead() const { return receiptRead() + 1; }
  std::size_t groupsRead() const { return documentRead() + documentKey.size(); }
  std::size_t readWidth() const { return groupsRead() + request.groupBy.size(); }
};

using ReadRow = std::vector<tsql::Value>;

bool isReceipt(const tsql::Value& value) {
  const auto* number = std::get_if<std::int64_t>(&value);
  return number != nullptr && *number == 1;
}

bool allAlike(std::span<const ReadRow> rows, std::size_t cell) {
  return std::ranges::all_of(rows, [&](const ReadRow& row) { return row[cell] == rows.front()[cell]; });
}

// Quantities and amounts into the columns of the figures; what was not received or issued stays empty.
void putSums(const Plan& plan, const Sums& sums, bool quantities, ViewRow& row) {
  const auto put = [&](std::size_t place, const ExactSum& sum) {
    if (!sum.isZero()) row.cells[plan.figures() + place] = sum.value();
  };
  if (quantities) put(inQuantity, sums.inQuantity);
  put(inAmount, sums.inAmount);
  if (quantities) put(outQuantity, sums.outQuantity);
  put(outAmount, sums.outAmount);
}

class VoucherRows final : public ViewRows {
 public:
  VoucherRows(std::shared_ptr<const Plan> plan, tsql::Database& account)
      : plan_(std::move(plan)), cursor_(account.query(plan_->query)), subtotals_(plan_->request.groupBy.size()) {
    read();
  }

  bool next() override {
    if (++position_ < rows_.size()) return true;
    rows_.clear();
    position_ = 0;
    if (pending_.empty()) return false;
    takeDocument();
    return true;
  }
  const ViewRow& row() const override { return rows_[position_]; }

 private:
  // The next row of the account into pending_; empty past the last one.
  void read() {
    pending_.clear();
    if (!cursor_->next()) return;
    for (std::size_t i = 0; i < plan_->readWidth(); ++i)
      pending_.push_back(cursor_->value(i));
  }

  void takeDocument() {
    std::vector<ReadRow> document;
    do {
      document.push_back(std::move(pending_));
      read();
    } while (!pending_.empty() && ofOneDocument(document.front(), pending_));
    makeDocument(document);
    addSubtotals(document.front());
  }

  bool ofOneDocument(const ReadRow& one, const ReadRow& other) const {
    for (std::size_t i = plan_->documentRead(); i < plan_->readWidth(); ++i) {
      if (one[i] != other[i]) return false;
    }
    return true;
  }

  void makeDocument(std::span<const ReadRow> rows) {
    std::vector<bool> alike(plan_->shared);
    ViewRow head = emptyRow(RowKind::group, 0);
    for (std::size_t i = 0; i < plan_->shared; ++i) {
      alike[i] = allAlike(rows, i);
      if (alike[i]) head.cells[i] = rows.front()[i];
    }
    rows_.push_back(std::move(head));
    Sums sums;
    for (auto row = rows.begin(); row != rows.end();) {
      const auto end = std::find_if(
          row, rows.end(), [&](const ReadRow& other) { return other[plan_->lineRead()] != (*row)[plan_->lineRead()]; });
      addLine(std::span(row, end), alike, sums);
      row = end;
    }
    putSums(*plan_, sums, false, rows_.front());
    for (Sums& subtotal : subtotals_) {
      subtotal.inQuantity.add(sums.inQuantity);
      subtotal.inAmount.add(sums.inAmount);
      subtotal.outQuantity.add(sums.outQuantity);
      subtotal.outAmount.add(sums.outAmount);
    }
  }

  ViewRow emptyRow(RowKind kind, int below) const {
    return {.kind = kind,
            .level = static_cast<int>(plan_->request.groupBy.size()) + below,
            .cells = std::vector<tsql::Value>(plan_->width())};
  }

  void addLine(std::span<const ReadRow> parts, const std::vector<bool>& alike, Sums& sums) {
    const ReadRow& read = parts.front();
    ViewRow line = emptyRow(RowKind::line, 1);
    for (std::size_t i = 0; i < plan_->parts(); ++i) {
      if (i >= plan_->shared || !alike[i] || plan_->request.everyKey) line.cells[i] = read[i];
    }
    const std::size_t figures = plan_->figures();
    sums.inQuantity.add(read[figures + inQuantity]);
    sums.inAmount.add(read[figures + inAmount]);
    sums.outQuantity.add(read[figures + outQuantity]);
    sums.outAmount.add(read[figures + outAmount]);
    rows_.push_back(std::move(line));
    for (const ReadRow& part : parts)
      addPart(part);
  }

  void addPart(const ReadRow& read) {
    ViewRow part = emptyRow(RowKind::detail, 2);
    if (plan_->request.everyKey) std::copy_n(read.begin(), plan_->figures(), part.cells.begin());
    std::copy_n(read.begin() + static_cast<std::ptrdiff_t>(plan_->parts()), plan_->ofPart + 1,
                part.cells.begin() + static_cast<std::ptrdiff_t>(plan_->parts()));
    const bool receipt = isReceipt(read[plan_->receiptRead()]);
    const auto ofPart = read.begin() + static_cast<std::ptrdiff_t>(plan_->partFiguresRead());
    const bool none =
        std::all_of(ofPart, ofPart + partFigures.size(), [](const auto& value) { return tsql::isNull(value); });
    const std::size_t usage = plan_->usage();
    if (none) {
      part.cells[plan_->costItem] = std::string(plan_->document.text(noCostItemCaption));
      part.cells[usage + 1] = read[plan_->figures() + (receipt ? inCost : outCost)];
      part.cells[usage + 2] = read[plan_->figures() + (receipt ? inAmount : outAmount)];
    } else {
      ExactSum quantity;
      ExactSum amount;
      quantity.add(ofPart[receipt ? 0 : 2]);
      amount.add(ofPart[receipt ? 1 : 3]);
      part.cells[usage + 1] = unitCostOf(amount, quantity, plan_->document.unitCostDecimals);
      part.cells[usage + 2] = ofPart[receipt ? 1 : 3];
    }
    rows_.push_back(std::move(part));
  }

  // Of the groups that end with the document.
  void addSubtotals(const ReadRow& document) {
    std::size_t same = 0;
    const std::size_t count = subtotals_.size();
    while (!pending_.empty() && same < count &&
           document[plan_->groupsRead() + same] == pending_[plan_->groupsRead() + same])
      ++same;
    for (std::size_t level = count; level-- > same;) {
      ViewRow row = emptyRow(RowKind::subtotal, 0);
      row.level = static_cast<int>(level);
      const std::string value = plainText(document[plan_->groupsRead() + level], "");
      row.cells[0] = plan_->document.language == Language::chinese ? value + " 小计" : "Subtotal " + value;
      putSums(*plan_, subtotals_[level], true, row);
      rows_.push_back(std::move(row));
      subtotals_[level] = {};
    }
  }

  std::shared_ptr<const Plan> plan_;
  std::unique_ptr<tsql::Cursor> cursor_;
  ReadRow pending_;
  std::vector<ViewRow> rows_;  // of one document
  std::size_t position_ = 0;
  std::vector<Sums> subtotals_;  // one a column of groupBy
};

std::string counted(const ReportDocument& document, std::int64_t documents, std::int64_t lines) {
  const std::string all = groupedNumber(std::to_string(documents), 0);
  const std::string ofThem = groupedNumber(std::to_string(lines), 0);
  return document.language == Language::chinese ? "合计（" + all + " 张单据，" + ofThem + " 行）"
                                                : "Total (" + all + " documents, " + ofThem + " lines)";
}

std::int64_t countOf(tsql::Database& account, const std::string& query) {
  const auto cursor = account.query(query);
  return cursor->next() ? std::get<std::int64_t>(cursor->value(0)) : 0;
}

// Lines, and what they received and issued: each line counts once.
void addTotals(const ResultTable& table, const Plan& plan, View& view) {
  const std::string chosen = " From " + voucherLines(table) + " Where " + plan.request.where;
  const std::int64_t documents = countOf(
      table.account(), "Select Count(*) From (Select Distinct cVouType, dVouDate, cVouCode" + chosen + ") documents");
  const auto sums = table.account().query(
      "Select Count(*), Sum(ledgerInQuantity), Sum(ledgerInPrice), Sum(ledgerOutQuantity), Sum(ledgerOutPrice) From "
      "(Select AutoID, Max(ledgerInQuantity) As ledgerInQuantity, Max(ledgerInPrice) As ledgerInPrice, "
      "Max(ledgerOutQuantity) As ledgerOutQuantity, Max(ledgerOutPrice) As ledgerOutPrice" +
      chosen + " Group By AutoID) lines");
  if (!sums->next()) return;
  view.lineCount = std::get<std::int64_t>(sums->value(0));
  ViewRow total{.kind = RowKind::total, .cells = std::vector<tsql::Value>(plan.width())};
  total.cells[0] = counted(plan.document, documents, view.lineCount);
  total.cells[plan.figures() + inQuantity] = sums->value(1);
  total.cells[plan.figures() + inAmount] = sums->value(2);
  total.cells[plan.figures() + outQuantity] = sums->value(3);
  total.cells[plan.figures() + outAmount] = sums->value(4);
  view.totals.push_back(std::move(total));
}

// Sets the view's columns, and in the plan where they stand.
void planColumns(Plan& plan, View& view) {
  const auto put = [&view](const ReportColumn& column) {
    const bool key =
        isOneOf(column.name, std::array<std::string_view, 4>{voucherTypeNameColumn, "cVouCode", "cInvCode", "cfxName"});
    view.columns.push_back({.column = column, .key = key});
  };
  const std::vector<ReportColumn> all = vouchersColumns(plan.document.columns);
  for (const ReportColumn& column : all) {
    if (!isOfLine(column.name) && !isOfPart(column.name)) put(column);
  }
  plan.shared = view.columns.size();
  for (const ReportColumn& column : all) {
    if (isOfLine(column.name)) put(column);
  }
  plan.ofLine = view.columns.size() - plan.shared;
  for (const LineFigure& figure : lineFigures)
    view.columns.push_back(groupedColumn(figure.name, figure.caption, figure.role, figure.group));
  for (const ReportColumn& column : all) {
    if (!isOfPart(column.name)) continue;
    put(column);
    view.columns.back().groupChinese = structureCaption.chinese;
    view.columns.back().groupEnglish = structureCaption.english;
  }
  plan.ofPart = view.columns.size() - plan.parts();
}

}  // namespace

bool isOfPart(std::string_view column) {
  return isOneOf(column, partColumns);
}

std::vector<ReportColumn> vouchersColumns(std::span<const ReportColumn> columns) {
  std::vector<ReportColumn> result = {layoutColumn(voucherTypeNameColumn, voucherTypeCaption)};
  for (const std::string_view name : leadingColumns) {
    const auto found =
        std::ranges::find_if(columns, [name](const auto& column) { return equalIgnoringCase(column.name, name); });
    if (found != columns.end()) result.push_back(*found);
  }
  bool costItem = false;
  for (const ReportColumn& column : columns) {
    if (column.role == ColumnRole::internal || isFigure(column.name)) continue;
    if (isOneOf(column.name, leadingColumns) || (isOfPart(column.name) && isNumber(column.role))) continue;
    costItem = costItem || equalIgnoringCase(column.name, "cfxName");
    result.push_back(column);
  }
  // It has the words for lines without cost items, and these may be all.
  if (!costItem) result.push_back(layoutColumn("cfxName", costItemCaption));
  return result;
}

View vouchersView(const ResultTable& table, const ReportDocument& document, const VouchersRequest& request) {
  if (std::ranges::any_of(request.groupBy, isOfPart))
    throw std::invalid_argument("documents are not grouped by what their lines are made of");
  auto plan = std::make_shared<Plan>(Plan{.document = document, .request = request, .query = {}});
  View view;
  planColumns(*plan, view);
  for (std::size_t i = 0; i < view.columns.size(); ++i) {
    if (equalIgnoringCase(view.columns[i].column.name, "cfxName")) plan->costItem = i;
  }

  std::string list;
  const auto read = [&list](std::string_view name) { list.append(list.empty() ? "" : ", ").append(name); };
  for (std::size_t i = 0; i < view.columns.size(); ++i) {
    const bool figure = i >= plan->figures() && i < plan->parts();
    read(figure ? lineFigures[i - plan->figures()].ledger : std::string_view(view.columns[i].column.name));
  }
  read("iUnitUsed");
  for (const std::string_view name : partFigures)
    read(name);
  for (const std::string_view name : std::array<std::string_view, 2>{"AutoID", "ledgerReceipt"})
    read(name);
  for (const std::string_view name : documentKey)
    read(name);
  for (const std::string& name : request.groupBy)
    read(name);
  plan->query =
      "Select " + list + " From " + voucherLines(table) + " Where " + request.where + " Order By " + orderText(request);

  view.columns.push_back(
      groupedColumn("iUnitUsed", {"单位用量", "Usage per unit"}, ColumnRole::movement, structureCaption));
  view.columns.push_back(groupedColumn("iUnitCost", unitCostHeading, ColumnRole::unitCost, structureCaption));
  view.columns.push_back(groupedColumn("iItemPrice", amountHeading, ColumnRole::amount, structureCaption));
  addTotals(table, *plan, view);
  view.rows = [plan = std::shared_ptr<const Plan>(plan), &account = table.account()]() -> std::unique_ptr<ViewRows> {
    return std::make_unique<VoucherRows>(plan, account);
  };
  view.columnsLeftOut = document.columnsLeftOut;
  return view;
}

}  // namespace quillon::workbench
