#include "workbench/presentation/vouchers_layout.h"

#include <algorithm>
#include <array>
#include <memory>
#include <optional>
#include <utility>

#include "frame/text.h"
#include "workbench/messages/report.h"
#include "workbench/platform/user_error.h"
#include "workbench/presentation/arranged_view.h"
#include "workbench/presentation/exact_sum.h"
#include "workbench/presentation/figure_columns.h"
#include "workbench/presentation/row_conditions.h"
#include "workbench/presentation/value_output.h"
#include "workbench/presentation/vouchers_list.h"

namespace quillon::workbench {

namespace {

constexpr Caption voucherTypeCaption{"单据类型", "Voucher type"};
constexpr Caption emptyCaption{"为空", " empty"};
constexpr Caption subtotalCaption{" 小计", " subtotal"};
constexpr Caption structureCaption{"成本构成", "Cost structure"};
// With the heading above it, as what is not shown beside it is called.
constexpr Caption partAmountCaption{"成本构成金额", "Cost structure amount"};
constexpr std::string_view partAmountColumn = "iItemPrice";

constexpr std::string_view costItemName = "cfxName";

// The figures of a ledger line, and as which column they stand in the view.
struct LineFigure {
  std::string_view name;
  std::string_view ledger;  // as the query calls what the ledger has
  const Caption& caption;
  const Caption& group;
  ColumnRole role;
};
constexpr std::array<LineFigure, 6> lineFigures = {{
    {"iAInQuantity", "ledgerInQuantity", quantityColumn, receiptsCaption, ColumnRole::quantity},
    {"iInCost", "ledgerInCost", unitCostColumn, receiptsCaption, ColumnRole::unitCost},
    {"iAInPrice", "ledgerInPrice", amountColumn, receiptsCaption, ColumnRole::money},
    {"iAOutQuantity", "ledgerOutQuantity", quantityColumn, issuesCaption, ColumnRole::quantity},
    {"iOutCost", "ledgerOutCost", unitCostColumn, issuesCaption, ColumnRole::unitCost},
    {"iAOutPrice", "ledgerOutPrice", amountColumn, issuesCaption, ColumnRole::money},
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
std::string voucherOrder(const Arrangement& request) {
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
  std::vector<std::string> groupBy;
  bool everyKey = false;
  bool receiptFlag = false;  // stands in a last column
  bool showsParts = true;
  std::string where;
  std::string query;
  std::size_t shared = 0;           // columns that a document may have alike: the first ones
  std::size_t ofLine = 0;           // behind them: of the line
  std::size_t ofPart = 0;           // behind the figures: of the part, before usage, unit cost and amount
  std::size_t costItem = 0;         // where the cost item's name stands among the columns
  std::size_t label = 0;            // where the words of the total stand
  std::vector<std::size_t> groups;  // where the columns of groupBy stand
  std::vector<std::string> groupCaptions;

  std::size_t figures() const { return shared + ofLine; }
  std::size_t parts() const { return figures() + lineFigures.size(); }
  std::size_t usage() const { return parts() + ofPart; }
  std::size_t width() const { return usage() + 3 + (receiptFlag ? 1 : 0); }
  // In a row of the query: the view's columns up to the parts' and the usage, then these.
  std::size_t partFiguresRead() const { return usage() + 1; }
  std::size_t lineRead() const { return partFiguresRead() + partFigures.size(); }
  std::size_t receiptRead() const { return lineRead() + 1; }
  std::size_t documentRead() const { return receiptRead() + 1; }
  std::size_t groupsRead() const { return documentRead() + documentKey.size(); }
  std::size_t readWidth() const { return groupsRead() + groupBy.size(); }
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
      : plan_(std::move(plan)), cursor_(account.query(plan_->query)), subtotals_(plan_->groupBy.size()) {
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
      if (compareValues(one[i], other[i]) != 0) return false;
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
    head.ledgerLine = ledgerLineOf(rows.front()[plan_->lineRead()]);  // of its first line
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
            .level = static_cast<int>(plan_->groupBy.size()) + below,
            .cells = std::vector<tsql::Value>(plan_->width())};
  }

  void addLine(std::span<const ReadRow> parts, const std::vector<bool>& alike, Sums& sums) {
    const ReadRow& read = parts.front();
    ViewRow line = emptyRow(RowKind::line, 1);
    for (std::size_t i = 0; i < plan_->parts(); ++i) {
      if (i >= plan_->shared || !alike[i] || plan_->everyKey) line.cells[i] = read[i];
    }
    line.ledgerLine = ledgerLineOf(read[plan_->lineRead()]);
    const std::size_t figures = plan_->figures();
    sums.inQuantity.add(read[figures + inQuantity]);
    sums.inAmount.add(read[figures + inAmount]);
    sums.outQuantity.add(read[figures + outQuantity]);
    sums.outAmount.add(read[figures + outAmount]);
    rows_.push_back(std::move(line));
    if (!plan_->showsParts) return;
    for (const ReadRow& part : parts)
      addPart(part);
  }

  void addPart(const ReadRow& read) {
    ViewRow part = emptyRow(RowKind::detail, 2);
    part.ledgerLine = ledgerLineOf(read[plan_->lineRead()]);
    if (plan_->everyKey) std::copy_n(read.begin(), plan_->figures(), part.cells.begin());
    std::copy_n(read.begin() + static_cast<std::ptrdiff_t>(plan_->parts()), plan_->ofPart + 1,
                part.cells.begin() + static_cast<std::ptrdiff_t>(plan_->parts()));
    const bool receipt = isReceipt(read[plan_->receiptRead()]);
    const auto ofPart = read.begin() + static_cast<std::ptrdiff_t>(plan_->partFiguresRead());
    const bool none =
        std::all_of(ofPart, ofPart + partFigures.size(), [](const auto& value) { return tsql::isNull(value); });
    const std::size_t usage = plan_->usage();
    if (plan_->receiptFlag) part.cells.back() = std::int64_t{receipt};
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
           compareValues(document[plan_->groupsRead() + same], pending_[plan_->groupsRead() + same]) == 0)
      ++same;
    for (std::size_t level = count; level-- > same;) {
      ViewRow row = emptyRow(RowKind::subtotal, 0);
      row.level = static_cast<int>(level);
      for (std::size_t outer = 0; outer < level; ++outer)
        row.cells[plan_->groups[outer]] = document[plan_->groupsRead() + outer];
      std::string name = plainText(document[plan_->groupsRead() + level], "");
      if (name.empty()) name = plan_->groupCaptions[level] + std::string(plan_->document.text(emptyCaption));
      row.cells[plan_->groups[level]] = name + std::string(plan_->document.text(subtotalCaption));
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
  const std::string chosen = " From " + voucherLines(table) + " Where " + plan.where;
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
  total.cells[plan.label] = counted(plan.document, documents, view.lineCount);
  total.cells[plan.figures() + inQuantity] = sums->value(1);
  total.cells[plan.figures() + inAmount] = sums->value(2);
  total.cells[plan.figures() + outQuantity] = sums->value(3);
  total.cells[plan.figures() + outAmount] = sums->value(4);
  view.totals.push_back(std::move(total));
}

bool isAmong(std::string_view name, std::span<const std::string> names) {
  return std::ranges::any_of(names, [name](const auto& other) { return equalIgnoringCase(name, other); });
}

bool isOnTypeName(const RowCondition& condition) {
  return equalIgnoringCase(condition.column, voucherTypeNameColumn);
}

bool isAsked(std::string_view name, const Arrangement& arrangement) {
  return isAmong(name, arrangement.columns) || isAmong(name, arrangement.groupBy);
}

// The condition on the type's name is left out: the table does not have it.
std::vector<ReportColumn> columnsHolding(const LayoutRequest& request) {
  std::vector<RowCondition> where = request.arrangement.where;
  std::erase_if(where, isOnTypeName);
  return request.table.filledColumns(request.report.columns, conditionText(where, request.table.columns()));
}

// The columns that hold something or are asked for, in the layout's order. Counts what is only shown when asked for.
std::vector<ReportColumn> columnsShown(const LayoutRequest& request, std::span<const ReportColumn> holding,
                                       std::size_t& leftOut) {
  std::vector<ReportColumn> filled;
  for (const ReportColumn& column : columnsPresent(request)) {
    if (column.role == ColumnRole::internal) continue;
    if (isAsked(column.name, request.arrangement) ||
        std::ranges::find(holding, column.name, &ReportColumn::name) != holding.end())
      filled.push_back(column);
  }
  std::vector<ReportColumn> columns = {layoutColumn(voucherTypeNameColumn, voucherTypeCaption)};
  const auto put = [&](const ReportColumn& column) {
    if (isFigure(column.name) || (isOfPart(column.name) && isNumber(column.role))) return;
    const bool whenAsked = column.role == ColumnRole::userDefined || column.role == ColumnRole::further;
    if (whenAsked && !request.allColumns && !isAsked(column.name, request.arrangement)) {
      ++leftOut;
    } else {
      columns.push_back(column);
    }
  };
  for (const std::string_view name : leadingColumns) {
    const auto found =
        std::ranges::find_if(filled, [name](const auto& column) { return equalIgnoringCase(column.name, name); });
    if (found != filled.end()) put(*found);
  }
  for (const ReportColumn& column : filled) {
    if (!isOneOf(column.name, leadingColumns)) put(column);
  }
  // It has the words for lines without cost items, and these may be all.
  const auto isCostItem = [](const auto& column) { return equalIgnoringCase(column.name, costItemName); };
  if (std::ranges::none_of(columns, isCostItem)) columns.push_back(layoutColumn(costItemName, costItemCaption));
  return columns;
}

// Sets the view's columns, and in the plan where they stand.
void planColumns(const LayoutRequest& request, std::span<const ReportColumn> holding, Plan& plan, View& view) {
  const auto put = [&view](const ReportColumn& column) {
    constexpr std::array<std::string_view, 4> keys = {voucherTypeNameColumn, "cVouCode", "cInvCode", costItemName};
    view.columns.push_back({.column = column, .key = isOneOf(column.name, keys)});
  };
  const std::vector<ReportColumn> all = columnsShown(request, holding, view.columnsLeftOut);
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
  // The cost item is a key and goes before the heading that the others share, which blocks of a page would split.
  plan.costItem = view.columns.size();
  for (const ReportColumn& column : all) {
    if (equalIgnoringCase(column.name, costItemName)) put(column);
  }
  for (const ReportColumn& column : all) {
    if (!isOfPart(column.name) || equalIgnoringCase(column.name, costItemName)) continue;
    put(column);
    view.columns.back().groupChinese = structureCaption.chinese;
    view.columns.back().groupEnglish = structureCaption.english;
  }
  plan.ofPart = view.columns.size() - plan.parts();
  view.columns.push_back(groupedColumn("iUnitUsed", usagePerUnitColumn, ColumnRole::movement, structureCaption));
  view.columns.push_back(groupedColumn("iUnitCost", unitCostColumn, ColumnRole::unitCost, structureCaption));
  view.columns.push_back(groupedColumn(partAmountColumn, amountColumn, ColumnRole::amount, structureCaption));
  if (plan.receiptFlag)
    view.columns.push_back({.column = layoutColumn(receiptFlagColumn, receiptsCaption, ColumnRole::internal)});
}

bool asksForFields(const LayoutRequest& request) {
  const Arrangement& asked = request.arrangement;
  return request.allColumns || !asked.columns.empty() || !asked.sort.empty() || !asked.groupBy.empty();
}

// The columns in the order in which they are shown, by name; nothing when that is the view's own.
std::vector<std::string> columnOrder(const Arrangement& arrangement, const View& view) {
  std::vector<std::string> names = arrangement.groupBy;
  if (names.empty() && arrangement.columns.empty()) return names;
  const auto add = [&names](const std::string& name) {
    if (!isAmong(name, names)) names.push_back(name);
  };
  for (const std::string& name : arrangement.columns)
    add(name);
  if (arrangement.columns.empty()) {
    for (const ViewColumn& column : view.columns)
      add(column.column.name);
  }
  return names;
}

std::optional<std::size_t> placeOf(const View& view, std::string_view name) {
  const auto found = std::ranges::find_if(
      view.columns, [name](const auto& column) { return equalIgnoringCase(column.column.name, name); });
  if (found == view.columns.end()) return std::nullopt;
  return static_cast<std::size_t>(found - view.columns.begin());
}

// Where subtotals and the total have their words, and whether parts are to be seen, when columns are chosen.
void planChoice(const std::vector<std::string>& names, Plan& plan, const View& view) {
  for (const std::string& name : plan.groupBy) {
    plan.groups.push_back(placeOf(view, name).value_or(0));
    plan.groupCaptions.push_back(view.columns[plan.groups.back()].caption(plan.document.language));
  }
  if (names.empty()) return;
  const auto words = std::ranges::find_if(names, [&view](const std::string& name) {
    const auto place = placeOf(view, name);
    return place && !isNumber(view.columns[*place].column.role);
  });
  plan.label = words == names.end() ? 0 : placeOf(view, *words).value_or(0);
  plan.showsParts = std::ranges::any_of(names, [&](const std::string& name) {
    const auto place = placeOf(view, name);
    return place && *place >= plan.parts();
  });
}

std::string voucherQuery(const LayoutRequest& request, const Plan& plan, const View& view) {
  std::string list;
  const auto read = [&list](std::string_view name) { list.append(list.empty() ? "" : ", ").append(name); };
  for (std::size_t i = 0; i < plan.usage(); ++i) {
    const bool figure = i >= plan.figures() && i < plan.parts();
    read(figure ? lineFigures[i - plan.figures()].ledger : std::string_view(view.columns[i].column.name));
  }
  read("iUnitUsed");
  for (const std::string_view name : partFigures)
    read(name);
  read("AutoID");
  read("ledgerReceipt");
  for (const std::string_view name : documentKey)
    read(name);
  for (const std::string& name : plan.groupBy)
    read(name);
  return "Select " + list + " From " + voucherLines(request.table) + " Where " + plan.where + " Order By " +
         voucherOrder(request.arrangement);
}

}  // namespace

bool isOfPart(std::string_view column) {
  return isOneOf(column, partColumns);
}

std::vector<ReportColumn> vouchersColumns(const LayoutRequest& request) {
  std::vector<ReportColumn> columns = columnsPresent(request);
  columns.push_back(layoutColumn(voucherTypeNameColumn, voucherTypeCaption));
  return columns;
}

std::vector<ReportColumn> vouchersShownColumns(const LayoutRequest& request) {
  std::vector<ReportColumn> columns = vouchersColumns(request);
  columns.push_back(layoutColumn(partAmountColumn, partAmountCaption, ColumnRole::amount));
  return columns;
}

View vouchersView(const LayoutRequest& request, const ReportDocument& heading, VouchersForm form) {
  const Arrangement& arrangement = request.arrangement;
  if (const auto part = std::ranges::find_if(arrangement.groupBy, isOfPart); part != arrangement.groupBy.end())
    throw UserError(messages::groupedByPart(*part));
  std::vector<tsql::Column> columns = request.table.columns();
  columns.push_back({.name = std::string(voucherTypeNameColumn), .type = {.kind = tsql::Kind::nVarChar}});
  const bool list = form == VouchersForm::list && !asksForFields(request);
  auto plan = std::make_shared<Plan>(Plan{.document = heading,
                                          .groupBy = arrangement.groupBy,
                                          .everyKey = form == VouchersForm::keyedFields,
                                          .receiptFlag = list,
                                          .where = conditionText(arrangement.where, columns),
                                          .query = {},
                                          .groups = {},
                                          .groupCaptions = {}});
  View view;
  const std::vector<ReportColumn> holding = columnsHolding(request);
  planColumns(request, holding, *plan, view);
  const std::vector<std::string> names = columnOrder(arrangement, view);
  planChoice(names, *plan, view);
  plan->query = voucherQuery(request, *plan, view);
  addTotals(request.table, *plan, view);
  view.rows = [plan = std::shared_ptr<const Plan>(plan),
               &account = request.table.account()]() -> std::unique_ptr<ViewRows> {
    return std::make_unique<VoucherRows>(plan, account);
  };
  if (!list) return names.empty() ? view : withColumns(std::move(view), names);
  view = vouchersList(std::move(view), heading, holding);
  // Which columns the documents of a type fill is not known before they are read.
  return std::ranges::any_of(arrangement.where, isOnTypeName) ? withoutEmptyColumns(std::move(view)) : view;
}

}  // namespace quillon::workbench
