#include "workbench/presentation/vouchers_list.h"

#include <algorithm>
#include <array>
#include <initializer_list>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "frame/text.h"
#include "workbench/presentation/figure_columns.h"

namespace quillon::workbench {

namespace {

constexpr Caption nameCaption{"名称", "Name"};
constexpr Caption noteCaption{"说明", "Particulars"};
constexpr Caption dateCaption{"日期", "Date"};
constexpr Caption warehouseCaption{"仓库", "Warehouse"};
constexpr Caption partnerCaption{"往来单位", "Customer or vendor"};
constexpr Caption unitCaption{"单位", "Unit"};

constexpr std::string_view between = " · ";

// The columns of words.
enum Place : std::size_t {
  codePlace,
  namePlace,
  notePlace,
  datePlace,
  warehousePlace,
  partnerPlace,
  unitPlace,
  placeCount
};
struct PlaceColumn {
  std::string_view name;
  const Caption& caption;
  ColumnRole role = ColumnRole::text;
};
constexpr std::array<PlaceColumn, placeCount> placeColumns = {{{"code", codeCaption},
                                                               {"name", nameCaption},
                                                               {"note", noteCaption},
                                                               {"dVouDate", dateCaption, ColumnRole::date},
                                                               {"cWhName", warehouseCaption},
                                                               {"partner", partnerCaption},
                                                               {"cComUnitName", unitCaption}}};

// Where a column stands that is not one of the particulars.
struct Placed {
  std::string_view column;
  Place place;
};
constexpr std::array<Placed, 11> placedColumns = {{{"cVouCode", codePlace},
                                                   {"cInvCode", codePlace},
                                                   {"cfxCode", codePlace},
                                                   {"cVouTypeName", namePlace},
                                                   {"cInvName", namePlace},
                                                   {"cfxName", namePlace},
                                                   {"dVouDate", datePlace},
                                                   {"cWhName", warehousePlace},
                                                   {"cCusName", partnerPlace},
                                                   {"cVenName", partnerPlace},
                                                   {"cComUnitName", unitPlace}}};

// Particulars that their value alone does not tell.
struct Labelled {
  std::string_view column;
  Caption label;
};
constexpr std::array<Labelled, 3> labelledColumns = {
    {{"cPzID", {"凭证 ", "voucher "}}, {"PzNoId", {"凭证号 ", "voucher number "}}, {"cBatchia", {"批号 ", "batch "}}}};

// The type is shown by its name; a cost centre goes with the department.
constexpr std::array<std::string_view, 2> unlisted = {"cVouType", "costDepName"};
constexpr std::string_view postingDateName = "dKeepDate";
// Of the same words as the type's name and the digest, and left out where these have them.
constexpr std::array<std::string_view, 2> classifications = {"cBusType", "cRdName"};

constexpr std::string_view usageName = "iUnitUsed", partCostName = "iUnitCost", partAmountName = "iItemPrice";
constexpr std::array<std::string_view, 3> receiptFigures = {"iAInQuantity", "iInCost", "iAInPrice"};
constexpr std::array<std::string_view, 3> issueFigures = {"iAOutQuantity", "iOutCost", "iAOutPrice"};

std::size_t placeIn(const View& view, std::string_view column) {
  const auto found = std::ranges::find_if(
      view.columns, [column](const ViewColumn& of) { return equalIgnoringCase(of.column.name, column); });
  return static_cast<std::size_t>(found - view.columns.begin());
}

bool isOneOfNames(std::string_view column, std::span<const std::string_view> names) {
  return std::ranges::any_of(names, [column](auto other) { return equalIgnoringCase(column, other); });
}

struct Particular {
  std::size_t from = 0;
  std::string_view label;
  bool classifies = false;
};

// A figure of the list: the documents' and lines' own, and which column has it on a part of a receipt or of an issue.
struct Figure {
  std::size_t from = 0;
  std::optional<std::size_t> ofReceiptPart = {};
  std::optional<std::size_t> ofIssuePart = {};
};

// Where the cells of a row come from.
struct ListPlan {
  ReportDocument document;
  std::vector<ReportColumn> read;  // the columns of the rows that are read
  std::vector<Place> before;       // the columns of words in front of the figures, those that there are
  std::vector<Place> behind;       // and those behind them
  std::array<std::vector<std::size_t>, placeCount> from;
  std::vector<Particular> particulars;
  std::vector<Figure> figures;
  std::size_t receipt = 0;
  std::optional<std::size_t> posting;  // the posting date, among the columns read

  std::string text(const ViewRow& row, std::size_t column) const {
    return cellText(document, read[column], row.cells[column]);
  }
};

void add(std::string& text, std::string_view piece) {
  if (!text.empty() && !piece.empty()) text += between;
  text += piece;
}

class ListRows final : public ViewRows {
 public:
  ListRows(std::shared_ptr<const ListPlan> plan, std::unique_ptr<ViewRows> rows)
      : plan_(std::move(plan)), rows_(std::move(rows)) {}

  bool next() override {
    if (!rows_->next()) return false;
    take(rows_->row());
    return true;
  }
  const ViewRow& row() const override { return row_; }

  static ViewRow listed(const ListPlan& plan, const ViewRow& read) {
    // A part belongs to the line above it and stands in from it.
    ViewRow row{.kind = read.kind, .level = read.kind == RowKind::detail ? read.level - 1 : read.level, .cells = {}};
    row.ledgerLine = read.ledgerLine;
    putWords(plan, read, plan.before, row);
    const auto* const flag = std::get_if<std::int64_t>(&read.cells[plan.receipt]);
    const bool receipt = flag != nullptr && *flag == 1;
    for (const Figure& figure : plan.figures) {
      const auto part = receipt ? figure.ofReceiptPart : figure.ofIssuePart;
      if (read.kind != RowKind::detail) {
        row.cells.push_back(read.cells[figure.from]);
      } else {
        row.cells.push_back(part ? read.cells[*part] : tsql::Value());
      }
    }
    putWords(plan, read, plan.behind, row);
    return row;
  }

 private:
  void take(const ViewRow& read) {
    if (read.kind == RowKind::group) document_ = read;
    row_ = listed(*plan_, read);
    if (read.kind == RowKind::line) putPostingDate(read);
  }

  // Lines are posted one by one, and not always on the document's day.
  void putPostingDate(const ViewRow& line) {
    const auto date = std::ranges::find(plan_->before, datePlace);
    if (!plan_->posting || date == plan_->before.end()) return;
    const ViewRow& posted = tsql::isNull(line.cells[*plan_->posting]) ? document_ : line;
    if (plan_->text(posted, *plan_->posting) == plan_->text(document_, plan_->from[datePlace].front())) return;
    row_.cells[static_cast<std::size_t>(date - plan_->before.begin())] = posted.cells[*plan_->posting];
  }

  static void putWords(const ListPlan& plan, const ViewRow& read, const std::vector<Place>& shown, ViewRow& row) {
    for (const Place place : shown)
      row.cells.push_back(place == notePlace ? words(particulars(plan, read)) : placed(plan, read, place));
  }

  static tsql::Value words(std::string text) { return text.empty() ? tsql::Value() : tsql::Value(std::move(text)); }

  static tsql::Value placed(const ListPlan& plan, const ViewRow& read, Place place) {
    const auto& from = plan.from[place];
    if (from.size() == 1) return read.cells[from.front()];
    std::string text;
    for (const std::size_t column : from)
      add(text, plan.text(read, column));
    return words(std::move(text));
  }

  static std::string particulars(const ListPlan& plan, const ViewRow& read) {
    std::vector<std::string> texts;
    for (const Particular& each : plan.particulars)
      texts.push_back(plan.text(read, each.from));
    std::string all;
    for (std::size_t i = 0; i < texts.size(); ++i) {
      const Particular& each = plan.particulars[i];
      if (texts[i].empty() || (each.classifies && isSaidElsewhere(plan, read, texts, i))) continue;
      add(all, std::string(each.label) + texts[i]);
    }
    return all;
  }

  // In the name or in another particular.
  static bool isSaidElsewhere(const ListPlan& plan, const ViewRow& read, const std::vector<std::string>& texts,
                              std::size_t which) {
    const std::string& text = texts[which];
    const auto has = [&text](const std::string& other) { return other.find(text) != std::string::npos; };
    if (std::ranges::any_of(plan.from[namePlace], [&](std::size_t column) { return has(plan.text(read, column)); }))
      return true;
    for (std::size_t i = 0; i < texts.size(); ++i) {
      if (i == which || !has(texts[i])) continue;
      // Of two that are alike and both classify, the first stays.
      if (!plan.particulars[i].classifies || i < which || texts[i] != text) return true;
    }
    return false;
  }

  std::shared_ptr<const ListPlan> plan_;
  std::unique_ptr<ViewRows> rows_;
  ViewRow row_;
  ViewRow document_;  // whose rows come, as it was read
};

void planWords(ListPlan& plan, View& list) {
  const Language language = plan.document.language;
  for (std::size_t i = 0; i < plan.read.size(); ++i) {
    const ReportColumn& column = plan.read[i];
    if (isNumber(column.role) || column.role == ColumnRole::internal) continue;
    if (equalIgnoringCase(column.name, postingDateName)) {
      plan.posting = i;
      continue;
    }
    if (isOneOfNames(column.name, unlisted)) {
      ++list.columnsLeftOut;
      continue;
    }
    const auto* const found = std::ranges::find_if(
        placedColumns, [&column](const Placed& of) { return equalIgnoringCase(of.column, column.name); });
    if (found != placedColumns.end()) {
      plan.from[found->place].push_back(i);
      continue;
    }
    const auto* const label = std::ranges::find_if(
        labelledColumns, [&column](const Labelled& of) { return equalIgnoringCase(of.column, column.name); });
    plan.from[notePlace].push_back(i);
    plan.particulars.push_back({.from = i,
                                .label = label == labelledColumns.end() ? "" : label->label.in(language),
                                .classifies = isOneOfNames(column.name, classifications)});
  }
}

// Those of the columns that there are.
std::vector<Place> addColumns(const ListPlan& plan, std::initializer_list<Place> columns, View& list) {
  std::vector<Place> added;
  for (const Place place : columns) {
    if (plan.from[place].empty()) continue;
    const PlaceColumn& column = placeColumns[place];
    added.push_back(place);
    list.columns.push_back({.column = layoutColumn(column.name, column.caption, column.role),
                            .key = place == codePlace || place == namePlace});
  }
  return added;
}

void planFigures(ListPlan& plan, const View& vouchers, View& list, std::span<const ReportColumn> filled) {
  const auto isFilled = [&filled](std::string_view column) {
    return std::ranges::any_of(filled, [column](const auto& of) { return equalIgnoringCase(of.name, column); });
  };
  if (isFilled(usageName)) {
    const std::size_t usage = placeIn(vouchers, usageName);
    list.columns.push_back(
        {.column = layoutColumn(usageName, usagePerUnitColumn, vouchers.columns[usage].column.role)});
    plan.figures.push_back({.from = usage, .ofReceiptPart = usage, .ofIssuePart = usage});
  }
  const auto addDirection = [&](const std::array<std::string_view, 3>& columns, auto part) {
    if (std::ranges::none_of(columns, isFilled)) return;
    const std::array<std::optional<std::size_t>, 3> parts = {std::nullopt, placeIn(vouchers, partCostName),
                                                             placeIn(vouchers, partAmountName)};
    for (std::size_t i = 0; i < columns.size(); ++i) {
      const std::size_t from = placeIn(vouchers, columns[i]);
      list.columns.push_back(vouchers.columns[from]);
      plan.figures.push_back({.from = from});
      plan.figures.back().*part = parts[i];
    }
  };
  addDirection(receiptFigures, &Figure::ofReceiptPart);
  addDirection(issueFigures, &Figure::ofIssuePart);
}

}  // namespace

View vouchersList(View vouchers, const ReportDocument& heading, std::span<const ReportColumn> filled) {
  auto plan = std::make_shared<ListPlan>();
  plan->document.language = heading.language;
  plan->document.quantityDecimals = heading.quantityDecimals;
  plan->document.unitCostDecimals = heading.unitCostDecimals;
  plan->receipt = placeIn(vouchers, receiptFlagColumn);
  for (const ViewColumn& column : vouchers.columns)
    plan->read.push_back(column.column);
  View list;
  list.lineCount = vouchers.lineCount;
  list.columnsLeftOut = vouchers.columnsLeftOut;
  planWords(*plan, list);
  plan->before = addColumns(*plan, {codePlace, namePlace, datePlace, warehousePlace, unitPlace}, list);
  planFigures(*plan, vouchers, list, filled);
  plan->behind = addColumns(*plan, {partnerPlace, notePlace}, list);
  for (const ViewRow& total : vouchers.totals) {
    list.totals.push_back(ListRows::listed(*plan, total));
    // Its words go on over the empty name.
    std::swap(list.totals.back().cells[codePlace], list.totals.back().cells[namePlace]);
  }
  list.rows = [plan = std::shared_ptr<const ListPlan>(std::move(plan)),
               rows = std::move(vouchers.rows)]() -> std::unique_ptr<ViewRows> {
    return std::make_unique<ListRows>(plan, rows());
  };
  return list;
}

}  // namespace quillon::workbench
