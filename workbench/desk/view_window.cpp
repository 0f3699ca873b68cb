#include "workbench/desk/view_window.h"

#include <algorithm>
#include <array>
#include <chrono>
#include <span>
#include <utility>

#include "frame/text.h"
#include "workbench/messages/pivot.h"
#include "workbench/presentation/row_conditions.h"

namespace quillon::workbench::desk {

namespace {

// Rows of a long result that are there before it is ordered.
constexpr std::int64_t firstPageRows = 500;

std::string_view roleName(ColumnRole role) {
  switch (role) {
    case ColumnRole::date:
      return "date";
    case ColumnRole::quantity:
    case ColumnRole::movement:
      return "quantity";
    case ColumnRole::money:
    case ColumnRole::amount:
      return "money";
    case ColumnRole::unitCost:
      return "unitCost";
    case ColumnRole::share:
      return "share";
    default:
      return "text";
  }
}

// What a ledger has for the cost items beneath its lines, and what else these columns may be called.
constexpr std::array<std::string_view, 2> partColumns = {"cfxCode", "cfxName"};
constexpr std::array<std::string_view, 6> partNames = {"cfxCode",  "cfxName",        "成本项目编码",
                                                       "成本项目", "Cost item code", "Cost item"};

bool isPart(const std::string& name) {
  return std::ranges::any_of(partNames, [&name](std::string_view part) { return equalIgnoringCase(name, part); });
}

std::string_view kindName(RowCondition::Kind kind) {
  if (kind == RowCondition::Kind::range) return "range";
  return kind == RowCondition::Kind::contains ? "contains" : "equals";
}

Json conditionsJson(const std::vector<RowCondition>& conditions) {
  Json list = Json::array();
  for (const RowCondition& condition : conditions)
    list.push_back({{"column", condition.column}, {"kind", kindName(condition.kind)}, {"values", condition.values}});
  return list;
}

// Up to `limit` of the items from `offset` on.
template <typename Item>
std::vector<Item> partOf(const std::vector<Item>& items, std::int64_t offset, std::int64_t limit) {
  const std::size_t first = std::min(static_cast<std::size_t>(offset), items.size());
  const std::span<const Item> part =
      std::span(items).subspan(first, std::min(static_cast<std::size_t>(limit), items.size() - first));
  return {part.begin(), part.end()};
}

// As a JSON text. What comes from an account may be no UTF-8.
void appendJson(std::string& json, const std::string& text) {
  const auto plain = [](unsigned char c) { return c >= 0x20 && c < 0x7F && c != '"' && c != '\\'; };
  if (std::ranges::all_of(text, plain)) {
    json.append("\"").append(text).append("\"");
  } else {
    json += Json(text).dump(-1, ' ', false, Json::error_handler_t::replace);
  }
}

}  // namespace

LayoutOptions ViewRequest::options() const {
  return {.layout = layout,
          .arranged = arrangement,
          .pivot = pivot,
          .allColumns = allColumns,
          // Folded parts are read, too, so that they can be folded out.
          .details = true,
          .ledgerLines = true,
          .offers = true};
}

bool ViewRequest::hidesParts() const {
  return layout == Layout::ledger && !details && std::ranges::none_of(arrangement.groupBy, isPart) &&
         std::ranges::none_of(arrangement.sort, isPart, &SortKey::column) &&
         std::ranges::none_of(arrangement.where, isPart, &RowCondition::column);
}

LayoutOptions ViewRequest::optionsOfExport() const {
  LayoutOptions all = options();
  if (!hidesParts()) return all;
  std::vector<std::string>& columns = all.arranged->columns;
  const bool named = !columns.empty();
  std::erase_if(columns, isPart);
  if (named && columns.empty()) return options();
  all.details = false;
  return all;
}

bool ViewRequest::isOfParts(const ViewColumn& column) const {
  return hidesParts() && std::ranges::any_of(partColumns, [&column](std::string_view name) {
           return equalIgnoringCase(column.column.name, name);
         });
}

ViewWindow::ViewWindow(std::int64_t id, std::unique_ptr<MadeReport> reader, ViewRequest request,
                       std::filesystem::path file, std::unique_ptr<MadeReport> other)
    : id_(id),
      report_(reader->report()),
      request_(std::move(request)),
      file_(std::move(file)),
      reader_(std::move(reader)),
      other_(std::move(other)) {
  thread_.post([this] { make(); });
}

ViewWindow::~ViewWindow() {
  thread_.stop();
  try {
    thread_.call([this] {
      reader_.reset();
      other_.reset();
    });
  } catch (const ApiError&) {
    // The thread never ends before this.
  }
}

void ViewWindow::make() {
  try {
    ReportSection section = this->section();
    describe(section);
    view_ = std::move(section.view);
    if (view_.tableRows && accountFile() != nullptr) {
      readFirstPage();
    } else {
      spool_ = std::make_unique<RowSpool>(file_, !request_.details);
    }
    {
      const std::scoped_lock lock(mutex_);
      made_ = true;
      complete_ = spool_ == nullptr;
    }
    changed_.notify_all();
    if (spool_) {
      spoolRows();
    } else {
      orderRows();
    }
  } catch (...) {
    fail();
  }
}

// Of a report without rows, the layout alone.
ReportSection ViewWindow::section() {
  ReportSection section;
  section.layout = request_.layout;
  const LayoutOptions options = request_.options();
  if (request_.pivot) {
    heading_ = headingOf(*reader_, request_.language, "");
    if (other_ != nullptr) {
      LayoutOptions compared = options;
      compared.comparedWith = other_.get();
      if (heading_.rowCount == 0 && other_->table().rowCount() == 0) return section;
      comparison_ =
          comparisonOf(*reader_, request_.language, compared, {.unitCostDecimals = heading_.unitCostDecimals});
      section.view = comparison_->view();
      return section;
    }
    if (heading_.rowCount == 0) return section;
    pivot_ = pivotOf(*reader_, request_.language, options, {.unitCostDecimals = heading_.unitCostDecimals});
    section.view = pivot_->view();
    return section;
  }
  LaidOutReport laid = laidOut(*reader_, request_.language, options, LayoutOutput::table);
  heading_ = std::move(laid.heading);
  if (!laid.sections.empty()) section = std::move(laid.sections.front());
  return section;
}

void ViewWindow::fail() {
  {
    const std::scoped_lock lock(mutex_);
    error_ = std::current_exception();
  }
  changed_.notify_all();
}

void ViewWindow::describe(const ReportSection& section) {
  const Language language = request_.language;
  Json columns = Json::array(), totals = Json::array(), hidden = Json::array();
  for (const ViewColumn& column : section.view.columns) {
    columns.push_back({{"name", column.column.name},
                       {"caption", column.caption(language)},
                       {"group", column.group(language)},
                       {"role", roleName(column.column.role)},
                       {"key", column.key}});
    if (request_.isOfParts(column)) columns.back()["ofDetails"] = true;
  }
  for (const ReportColumn& column : section.offered) {
    const auto isIt = [&column](const ViewColumn& shown) { return equalIgnoringCase(shown.column.name, column.name); };
    if (std::ranges::none_of(section.view.columns, isIt))
      hidden.push_back({{"name", column.name}, {"caption", column.caption(language)}});
  }
  view_.columns = section.view.columns;
  // Rows of a pivot are counted with its total, which can be asked for what is behind it.
  for (const ViewRow& row : request_.pivot ? std::vector<ViewRow>() : section.view.totals)
    totals.push_back({{"kind", rowKindName(row.kind)},
                      {"level", row.level},
                      {"cells", Json::parse(cellsOf(row.cells))},
                      {"opens", false}});
  description_ = {{"id", id_},
                  {"layout", layoutName(request_.layout)},
                  {"columns", std::move(columns)},
                  {"lineCount", section.view.lineCount},
                  {"rowCount", section.view.tableRows ? section.view.lineCount : -1},
                  {"totals", std::move(totals)},
                  {"columnsLeftOut", section.view.columnsLeftOut},
                  {"hidden", std::move(hidden)}};
  if (request_.comparedWith) description_["comparedWith"] = *request_.comparedWith;
  // A condition may be of a column that is never shown.
  Json conditions = Json::array();
  for (const RowCondition& condition : request_.arrangement.where) {
    const auto isIt = [&condition](const ReportColumn& each) { return equalIgnoringCase(each.name, condition.column); };
    const auto column = std::ranges::find_if(report_.columns, isIt);
    if (column == report_.columns.end()) continue;
    conditions.push_back({{"name", condition.column}, {"caption", column->caption(language)}});
    if (column->role == ColumnRole::internal) sayInWords(condition, conditions.back());
  }
  if (!conditions.empty()) description_["conditions"] = std::move(conditions);
}

// What pivots choose rows by may be a number that nobody is shown, such as that of a state: its values are said in the words
// that the rows have for them.
void ViewWindow::sayInWords(const RowCondition& condition, Json& told) const {
  if (condition.kind != RowCondition::Kind::equals) return;
  for (const ReportDimension& dimension : pivotChoicesOf(*reader_, request_.language).dimensions) {
    if (dimension.nameColumn.empty() || !equalIgnoringCase(dimension.column, condition.column)) continue;
    const ResultTable table = reader_->table();
    Json words = Json::array();
    for (const std::string& value : condition.values) {
      const RowCondition one{.column = condition.column, .kind = condition.kind, .values = {value}};
      const auto rows = table.query("Select Top 1 " + dimension.nameColumn + " From " + table.name() + " Where " +
                                    conditionText({&one, 1}, table.columns()));
      words.push_back(rows->next() ? tsql::toText(rows->value(0)).value_or(value) : value);
    }
    told["caption"] = dimension.caption(request_.language);
    told["words"] = std::move(words);
    return;
  }
}

tsql::Connection* ViewWindow::accountFile() const {
  return dynamic_cast<tsql::Connection*>(&reader_->connection());
}

void ViewWindow::readFirstPage() {
  const TableRows& rows = *view_.tableRows;
  firstPage_ = read(*accountFile()->rowsAt(
      rows.table, rows.list, accountFile()->orderedRows(rows.table, rows.where, rows.order, firstPageRows)));
}

void ViewWindow::orderRows() {
  const TableRows& rows = *view_.tableRows;
  if (view_.lineCount <= std::ssize(firstPage_)) {
    reader_.reset();
  } else {
    order_ = accountFile()->orderedRows(rows.table, rows.where, rows.order);
  }
}

void ViewWindow::spoolRows() {
  if (view_.rows) {
    constexpr std::int64_t rowsANotice = 512;
    std::int64_t count = 0;
    for (const auto rows = view_.rows(); rows->next();) {
      tsql::endIfStopped();
      if (request_.pivot) noteSubtotal(rows->row(), count);
      spool_->add(windowRow(rows->row()));
      if (++count % rowsANotice == 0) changed_.notify_all();
    }
  }
  if (request_.pivot) {
    for (const ViewRow& total : view_.totals)
      spool_->add(windowRow(total));
  }
  spool_->finish();
  view_.rows = nullptr;
  reader_.reset();
  other_.reset();
  {
    const std::scoped_lock lock(mutex_);
    complete_ = true;
  }
  changed_.notify_all();
}

// Subtotals follow the rows that they sum: those since the last subtotal of their level or of one further out.
void ViewWindow::noteSubtotal(const ViewRow& row, std::int64_t number) {
  if (row.kind != RowKind::subtotal) return;
  const auto level = static_cast<std::size_t>(row.level);
  if (groupsBegin_.size() <= level) groupsBegin_.resize(level + 1, groupsBegin_.empty() ? 0 : groupsBegin_.back());
  {
    const std::scoped_lock lock(mutex_);
    sums_[number] = groupsBegin_[level];
  }
  std::fill(groupsBegin_.begin() + row.level, groupsBegin_.end(), number + 1);
}

std::string ViewWindow::cellsOf(const std::vector<tsql::Value>& cells) const {
  std::string json = "[";
  for (std::size_t i = 0; i < cells.size(); ++i) {
    if (i > 0) json += ',';
    if (tsql::isNull(cells[i])) {
      json += "null";
    } else {
      appendJson(json, cellText(heading_, view_.columns[i].column, cells[i]));
    }
  }
  return json + "]";
}

WindowRow ViewWindow::windowRow(const ViewRow& row) const {
  return {.kind = row.kind, .level = row.level, .ledgerLine = row.ledgerLine, .cells = cellsOf(row.cells)};
}

std::vector<WindowRow> ViewWindow::read(tsql::Cursor& cursor) const {
  std::vector<WindowRow> rows;
  ViewRow row;
  row.cells.resize(view_.columns.size());
  while (cursor.next()) {
    for (std::size_t i = 0; i < row.cells.size(); ++i)
      row.cells[i] = cursor.value(i);
    if (view_.tableRows->ledgerLines) row.ledgerLine = ledgerLineOf(cursor.value(row.cells.size()));
    rows.push_back(windowRow(row));
  }
  return rows;
}

// Of the result table; on the thread.
std::vector<WindowRow> ViewWindow::linesAt(std::int64_t offset, std::int64_t limit) {
  const TableRows& rows = *view_.tableRows;
  return read(*accountFile()->rowsAt(rows.table, rows.list, partOf(order_, offset, limit)));
}

std::vector<WindowRow> ViewWindow::rowsAt(std::int64_t offset, std::int64_t limit) {
  if (spool_) return spool_->read(offset, limit);
  const std::int64_t behind = std::min(offset + limit, view_.lineCount);
  if (offset >= behind) return {};
  if (behind <= std::ssize(firstPage_)) return partOf(firstPage_, offset, behind - offset);
  return thread_.call([&] {
    {
      const std::scoped_lock lock(mutex_);
      if (error_) std::rethrow_exception(error_);
    }
    return linesAt(offset, behind - offset);
  });
}

template <typename Condition>
void ViewWindow::waitUntil(Condition condition) {
  std::unique_lock lock(mutex_);
  changed_.wait(lock, [&] { return error_ != nullptr || made_; });
  constexpr std::chrono::milliseconds longest(500);
  changed_.wait_for(lock, longest, [&] { return error_ != nullptr || complete_ || condition(); });
  if (error_) std::rethrow_exception(error_);
}

Json ViewWindow::description() {
  waitUntil([] { return false; });
  Json described = description_;
  const std::scoped_lock lock(mutex_);
  if (spool_ && complete_) described["rowCount"] = spool_->size();
  return described;
}

std::string ViewWindow::rows(std::int64_t offset, std::int64_t limit) {
  waitUntil([&] { return !spool_ || spool_->size() >= offset + limit; });
  bool complete = false;
  {
    const std::scoped_lock lock(mutex_);
    complete = complete_;
  }
  const std::int64_t count = spool_ ? spool_->size() : view_.lineCount;
  return "{\"rowCount\":" + std::to_string(count) + ",\"complete\":" + (complete ? "true" : "false") +
         ",\"rows\":" + json(rowsAt(offset, limit), offset) + "}";
}

std::string ViewWindow::details(std::int64_t row) {
  waitUntil([&] { return !spool_ || spool_->size() > row; });
  return "{\"rows\":" + json(spool_ ? spool_->details(row) : std::vector<WindowRow>(), {}) + "}";
}

Json ViewWindow::behind(std::int64_t row, std::int64_t column) {
  waitUntil([&] { return spool_ && spool_->size() > row; });
  if (!pivot_ && !comparison_) throw unknown(messages::noSuchRowOfView(row));
  if (column >= std::ssize(view_.columns)) throw unknown(messages::noSuchColumnOfView(column));
  if (row >= spool_->size()) throw unknown(messages::noSuchRowOfView(row));
  const auto rowNumber = static_cast<std::size_t>(row), columnNumber = static_cast<std::size_t>(column);
  if (!comparison_) return {{"where", conditionsJson(pivot_->where(rowNumber, columnNumber))}};
  const std::optional<Comparison::Source> source = comparison_->where(rowNumber, columnNumber);
  if (!source) throw ApiError(404, "unknown", messages::comparedNoRows());
  return {{"run", source->ofOther ? Json(*request_.comparedWith) : Json()}, {"where", conditionsJson(source->where)}};
}

void ViewWindow::fold(const std::vector<std::int64_t>& subtotals) {
  waitUntil([] { return false; });
  std::vector<RowSpan> spans;
  const std::scoped_lock lock(mutex_);
  for (const std::int64_t row : subtotals) {
    const auto sum = sums_.find(row);
    if (sum == sums_.end()) throw unknown(messages::noSuchRowOfView(row));
    spans.emplace_back(sum->second, row);
  }
  // Of nested ones the outer counts.
  std::ranges::sort(spans, [](const RowSpan& one, const RowSpan& other) {
    return one.first != other.first ? one.first < other.first : one.second > other.second;
  });
  std::int64_t end = 0;
  std::erase_if(spans, [&end](const RowSpan& span) {
    if (span.second <= end) return true;
    end = span.second;
    return false;
  });
  folded_ = std::move(spans);
}

std::vector<RowSpan> ViewWindow::folded() {
  const std::scoped_lock lock(mutex_);
  return folded_;
}

std::int64_t ViewWindow::ledgerLine(std::int64_t row) {
  waitUntil([&] { return !spool_ || spool_->size() > row; });
  const std::vector<WindowRow> rows = rowsAt(row, 1);
  if (rows.empty()) throw unknown(messages::noSuchRowOfView(row));
  if (!rows.front().ledgerLine) throw ApiError(404, "document", messages::opensNoDocument());
  return *rows.front().ledgerLine;
}

std::string ViewWindow::json(const std::vector<WindowRow>& rows, std::optional<std::int64_t> first) const {
  const bool opensDocuments = report_.opensDocuments();
  const auto firstOf = [this](std::int64_t number) -> std::optional<std::int64_t> {
    const std::scoped_lock lock(mutex_);
    const auto sum = sums_.find(number);
    return sum == sums_.end() ? std::nullopt : std::optional(sum->second);
  };
  std::string text = "[";
  for (const WindowRow& row : rows) {
    if (text.size() > 1) text += ',';
    text += '{';
    if (first) text += "\"n\":" + std::to_string(*first) + ',';
    text.append("\"kind\":\"").append(rowKindName(row.kind));
    text.append("\",\"level\":").append(std::to_string(row.level)).append(",\"cells\":").append(row.cells);
    if (!first) {
      text += '}';
      continue;
    }
    const std::int64_t number = (*first)++;
    if (row.kind == RowKind::subtotal) {
      if (const auto sums = firstOf(number)) text += ",\"first\":" + std::to_string(*sums);
    }
    if (row.details > 0) text += ",\"details\":" + std::to_string(row.details);
    text.append(",\"opens\":").append(opensDocuments && row.ledgerLine ? "true" : "false").append("}");
  }
  return text + "]";
}

}  // namespace quillon::workbench::desk
