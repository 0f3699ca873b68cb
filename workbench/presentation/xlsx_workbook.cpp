#include "workbench/presentation/xlsx_workbook.h"

#include <xlsxwriter.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdio>
#include <fstream>
#include <map>
#include <memory>
#include <string>
#include <tuple>
#include <utility>
#include <vector>

#include "workbench/messages/keeping.h"
#include "workbench/messages/report.h"
#include "workbench/platform/user_error.h"
#include "workbench/presentation/output_file.h"
#include "workbench/presentation/run_fingerprint.h"
#include "workbench/presentation/text_cells.h"
#include "workbench/presentation/value_output.h"
#include "workbench/presentation/xlsx_formulas.h"
#include "workbench/tsql/values/text.h"
#include "workbench/tsql/values/utf8_path.h"

#ifdef _WIN32
// How libxlsxwriter opens the workbook's file (cmake/libraries.cmake): its name is UTF-8, which Windows' own fopen would
// take for its code page.
extern "C" FILE* quillon_open_utf8(const char* name, const char* mode) {
  const std::string_view narrow = mode;
  return _wfopen(quillon::pathFromUtf8(name).c_str(), std::wstring(narrow.begin(), narrow.end()).c_str());
}
#endif

namespace quillon::workbench {

namespace {

constexpr int moneyDecimals = 2;
constexpr int shareDecimals = 4;  // of a part of one, which is shown in per cent with two fewer

enum class Style {
  plain,
  title,
  heading,
  detail,
  outerGroup,
  group,
  subtotal,
  opening,
  monthTotal,
  yearTotal,
  closing,
  difference,
  total
};

// How a cell looks.
struct Look {
  Style style = Style::plain;
  std::string numberFormat = {};  // empty shows a number as it is
  int indent = 0;
  // Else texts stand on the left and numbers on the right.
  lxw_format_alignments align = LXW_ALIGN_NONE;
  friend bool operator==(const Look&, const Look&) = default;
  friend bool operator<(const Look& one, const Look& other) {
    return std::tie(one.style, one.numberFormat, one.indent, one.align) <
           std::tie(other.style, other.numberFormat, other.indent, other.align);
  }
};

// `text` as XML 1.0 can hold it: other control characters in Excel's own notation _xHHHH_, and what looks like that
// notation escaped by it; what is no character becomes U+FFFD.
std::string cellString(std::string_view text) {
  const auto isHexadecimal = [](char c) {
    return std::string_view("0123456789abcdefABCDEF").find(c) != std::string_view::npos;
  };
  std::string result;
  while (!text.empty()) {
    const std::string_view before = text;
    const char32_t character = takeCharacter(text);
    const bool notation = character == '_' && text.size() >= 6 && text[0] == 'x' && text[5] == '_' &&
                          std::all_of(text.begin() + 1, text.begin() + 5, isHexadecimal);
    if (notation || (character < ' ' && character != '\n' && character != '\t')) {
      std::array<char, 8> escape{};
      std::snprintf(escape.data(), escape.size(), "_x%04X_", static_cast<unsigned>(character));
      result += escape.data();
    } else if ((character >= 0xD800 && character <= 0xDFFF) || (character >= 0xFFFD && character <= 0xFFFF)) {
      result += "\xEF\xBF\xBD";
    } else {
      result += before.substr(0, before.size() - text.size());
    }
  }
  return result;
}

int decimalsOf(const ReportDocument& document, ColumnRole role) {
  if (role == ColumnRole::unitCost) return document.unitCostDecimals;
  if (role == ColumnRole::share) return shareDecimals;
  return isMoney(role) ? moneyDecimals : document.quantityDecimals;
}

std::string numberFormat(int decimals) {
  return decimals == 0 ? "#,##0" : "#,##0." + std::string(static_cast<std::size_t>(decimals), '0');
}

std::string numberFormat(const ReportDocument& document, ColumnRole role) {
  return role == ColumnRole::share ? "0.00%" : numberFormat(decimalsOf(document, role));
}

// A number that is a text stands where numbers do.
Look asText(const Look& look) {
  return {.style = look.style, .align = look.numberFormat.empty() ? LXW_ALIGN_NONE : LXW_ALIGN_RIGHT};
}

lxw_datetime cellTime(tsql::DateTime time) {
  const std::string text = tsql::toText(time).value();  // yyyy-mm-dd hh:mm:ss.fff
  const auto part = [text = std::string_view(text)](std::size_t at, std::size_t count) {
    return tsql::text::wholeNumber(text.substr(at, count)).value();
  };
  return {part(0, 4), part(5, 2), part(8, 2), part(11, 2), part(14, 2), std::stod(text.substr(17))};
}

// What is not worth a mark in the corner of a cell: codes are texts, and formulas sum what they are meant to sum.
void ignoreWarnings(lxw_worksheet& sheet) {
  constexpr const char* everywhere = "A1:XFD1048576";
  for (const lxw_ignore_errors warning :
       {LXW_IGNORE_NUMBER_STORED_AS_TEXT, LXW_IGNORE_FORMULA_DIFFERS, LXW_IGNORE_FORMULA_RANGE})
    worksheet_ignore_errors(&sheet, static_cast<std::uint8_t>(warning), everywhere);
}

class Workbook;

// A sheet, written from top to bottom, each row from left to right.
class Sheet {
 public:
  Sheet(Workbook& book, lxw_worksheet& sheet) : book_(book), sheet_(sheet) {
    worksheet_set_landscape(&sheet_);
    worksheet_set_paper(&sheet_, paperA4);
    worksheet_fit_to_pages(&sheet_, 1, 0);
    ignoreWarnings(sheet_);
  }

  lxw_row_t row() const { return row_; }
  lxw_col_t column() const { return column_; }
  lxw_worksheet* worksheet() { return &sheet_; }
  void endRow() {
    ++row_;
    column_ = 0;
  }
  // Passes over the next cell; it has the look all the same.
  void blank(const Look& look);
  void text(std::string_view text, const Look& look);
  // Over the next `columns` cells.
  void textOver(std::string_view text, std::size_t columns, const Look& look);
  // An exact number; one that a cell cannot hold is a text.
  void number(const tsql::Value& exact, const Look& look);
  void formula(const std::string& formula, double result, const Look& look);
  void date(tsql::DateTime time, Look look);
  // A value of a column with this role.
  void value(const ReportDocument& document, ColumnRole role, const tsql::Value& value, Look look);
  // The current row lies so deep in an outline.
  void outline(int level);

  // Column `column` shall be at least so wide.
  void widen(std::size_t column, double width) {
    if (widths_.size() <= column) widths_.resize(column + 1);
    widths_[column] = std::max(widths_[column], width);
  }
  const std::vector<double>& widths() const { return widths_; }
  void setWidths();

 private:
  static constexpr std::uint8_t paperA4 = 9;

  void real(double number, const Look& look);

  Workbook& book_;
  lxw_worksheet& sheet_;
  std::vector<double> widths_;
  lxw_row_t row_ = 0;
  lxw_col_t column_ = 0;
};

class Workbook {
 public:
  explicit Workbook(const std::filesystem::path& file) : file_(utf8FromPath(file)), output_(file) {
    lxw_workbook_options options{};
    options.constant_memory = LXW_TRUE;
    workbook_.reset(workbook_new_opt(utf8FromPath(output_.path()).c_str(), &options));
    if (!workbook_) failToBegin();
  }

  // It stays as long as the workbook.
  Sheet& add(const std::string& name) {
    lxw_worksheet* sheet = workbook_add_worksheet(workbook_.get(), name.c_str());
    if (sheet == nullptr) failToBegin();
    return *sheets_.emplace_back(std::make_unique<Sheet>(*this, *sheet));
  }

  void describe(std::string title, std::string company) {
    lxw_doc_properties properties{};
    properties.title = title.data();
    properties.company = company.data();
    check(workbook_set_properties(workbook_.get(), &properties));
  }

  void save() {
    for (const auto& sheet : sheets_)
      sheet->setWidths();
    // libxlsxwriter would say in its own words, and in the terms of the C library, that a file cannot be begun.
    std::ofstream file(output_.path(), std::ios::binary);
    file.close();
    if (!file) output_.fail();
    // Closing frees the workbook even when it fails.
    check(workbook_close(workbook_.release()));
    output_.complete();
  }

  void check(lxw_error error) const {
    if (error == LXW_NO_ERROR) return;
    throw UserError(messages::workbookNotWritten(file_, reasonOf(error)));
  }

  lxw_format* format(const Look& look) {
    if (look == Look()) return nullptr;
    lxw_format*& format = formats_[look];
    if (format != nullptr) return format;
    format = workbook_add_format(workbook_.get());
    if (!look.numberFormat.empty()) format_set_num_format(format, look.numberFormat.c_str());
    if (look.indent > 0) format_set_indent(format, static_cast<std::uint8_t>(look.indent));
    if (look.align != LXW_ALIGN_NONE) format_set_align(format, static_cast<std::uint8_t>(look.align));
    dress(*format, look.style);
    return format;
  }

 private:
  struct Free {
    void operator()(lxw_workbook* workbook) const { lxw_workbook_free(workbook); }
  };

  [[noreturn]] void failToBegin() const { throw UserError(messages::noTemporaryFile(file_)); }

  // libxlsxwriter's own words speak of its calls.
  static Message reasonOf(lxw_error error) {
    switch (error) {
      case LXW_ERROR_MEMORY_MALLOC_FAILED:
        return messages::workbookMemory();
      case LXW_ERROR_CREATING_TMPFILE:
      case LXW_ERROR_READING_TMPFILE:
        return messages::workbookTemporary();
      case LXW_ERROR_MAX_STRING_LENGTH_EXCEEDED:
        return messages::workbookLongText();
      default:
        return messages::workbookFailed();
    }
  }

  static void dress(lxw_format& format, Style style) {
    constexpr lxw_color_t strong = 0xDCE3EC, shaded = 0xEEF1F5, faint = 0xF7F8FA, grey = 0x555555, red = 0xC00000;
    const auto fill = [&format](lxw_color_t color) { format_set_bg_color(&format, color); };
    if (style != Style::plain && style != Style::detail) format_set_bold(&format);
    switch (style) {
      case Style::plain:
        break;
      case Style::title:
        format_set_font_size(&format, 14);
        break;
      case Style::heading:
        fill(shaded);
        format_set_align(&format, LXW_ALIGN_CENTER);
        format_set_align(&format, LXW_ALIGN_VERTICAL_CENTER);
        format_set_text_wrap(&format);
        format_set_bottom(&format, LXW_BORDER_THIN);
        break;
      case Style::detail:
        format_set_font_color(&format, grey);
        break;
      case Style::outerGroup:
        fill(strong);
        break;
      case Style::group:
      case Style::yearTotal:
        fill(shaded);
        break;
      case Style::opening:
      case Style::monthTotal:
        fill(faint);
        break;
      case Style::subtotal:
        fill(faint);
        format_set_top(&format, LXW_BORDER_HAIR);
        break;
      case Style::closing:
      case Style::total:
        fill(shaded);
        format_set_top(&format, LXW_BORDER_THIN);
        break;
      case Style::difference:
        format_set_font_color(&format, red);
        break;
    }
  }

  std::string file_;
  OutputFile output_;
  std::unique_ptr<lxw_workbook, Free> workbook_;
  std::vector<std::unique_ptr<Sheet>> sheets_;
  std::map<Look, lxw_format*> formats_;
};

void Sheet::blank(const Look& look) {
  book_.check(worksheet_write_blank(&sheet_, row_, column_++, book_.format(look)));
}

void Sheet::text(std::string_view text, const Look& look) {
  book_.check(worksheet_write_string(&sheet_, row_, column_++, cellString(text).c_str(), book_.format(look)));
}

void Sheet::textOver(std::string_view text, std::size_t columns, const Look& look) {
  if (columns == 1) {
    this->text(text, look);
    return;
  }
  const auto last = static_cast<lxw_col_t>(column_ + columns - 1);
  book_.check(worksheet_merge_range(&sheet_, row_, column_, row_, last, cellString(text).c_str(), book_.format(look)));
  column_ = static_cast<lxw_col_t>(last + 1);
}

void Sheet::real(double number, const Look& look) {
  book_.check(worksheet_write_number(&sheet_, row_, column_++, number, book_.format(look)));
}

void Sheet::number(const tsql::Value& exact, const Look& look) {
  if (const auto number = cellNumber(exact)) {
    real(*number, look);
  } else {
    text(tsql::toText(exact).value(), asText(look));
  }
}

void Sheet::formula(const std::string& formula, double result, const Look& look) {
  const std::string text = "=" + formula;
  book_.check(worksheet_write_formula_num(&sheet_, row_, column_++, text.c_str(), book_.format(look), result));
}

void Sheet::date(tsql::DateTime time, Look look) {
  if (time.ticks < 0) {
    text(plainText(time, ""), look);
    return;
  }
  lxw_datetime cell = cellTime(time);
  const bool day = time.ticks % tsql::DateTime::ticksPerDay == 0;
  look.align = LXW_ALIGN_LEFT;
  look.numberFormat = day ? "yyyy-mm-dd" : "yyyy-mm-dd hh:mm:ss";
  book_.check(worksheet_write_datetime(&sheet_, row_, column_++, &cell, book_.format(look)));
}

void Sheet::value(const ReportDocument& document, ColumnRole role, const tsql::Value& value, Look look) {
  if (tsql::isNull(value)) {
    blank(look);
  } else if (const auto* text = std::get_if<std::string>(&value)) {
    this->text(*text, look);
  } else if (const auto* time = std::get_if<tsql::DateTime>(&value)) {
    date(*time, look);
  } else {
    if (isNumber(role)) {
      look.numberFormat = numberFormat(document, role);
    } else {
      look.align = LXW_ALIGN_LEFT;  // a code or a month
    }
    if (const auto* real = std::get_if<double>(&value)) {
      this->real(*real, look);
    } else {
      number(value, look);
    }
  }
}

void Sheet::outline(int level) {
  constexpr int deepest = 7;
  if (level <= 0) return;
  lxw_row_col_options options{};
  options.level = static_cast<std::uint8_t>(std::min(level, deepest));
  book_.check(worksheet_set_row_opt(&sheet_, row_, LXW_DEF_ROW_HEIGHT, nullptr, &options));
}

void Sheet::setWidths() {
  for (std::size_t column = 0; column < widths_.size(); ++column) {
    const auto number = static_cast<lxw_col_t>(column);
    if (widths_[column] > 0) book_.check(worksheet_set_column(&sheet_, number, number, widths_[column], nullptr));
  }
}

// What a heading says beside conditions.
constexpr Caption companyCaption{"单位", "Company"};
constexpr Caption periodCaption{"期间", "Period"};
constexpr Caption printedCaption{"打印日期", "Printed"};
constexpr Caption pageFooter{"第 &P 页，共 &N 页", "Page &P of &N"};

// In characters, as a column's width is counted.
constexpr std::size_t leastWidth = 6, greatestWidth = 48, greatestHeadingWidth = 22, frozenWidth = 70;
constexpr std::size_t headingLineWidth = 110;

// `text` in what is printed above and below pages, where & begins a code.
std::string pageText(std::string_view text) {
  constexpr std::size_t longest = 60;
  std::string result;
  for (const char c : shortened(oneLine(text), longest))
    result.append(c == '&' ? 2 : 1, c);
  return result;
}

// A name that a sheet may have, shorter by what tells sheets of one name apart.
std::string legalName(std::string_view text) {
  constexpr std::size_t longest = 22;
  std::string name;
  for (std::size_t length = 0; !text.empty() && length < longest; ++length) {
    const std::string_view before = text;
    const char32_t character = takeCharacter(text);
    const bool legal =
        character >= ' ' && std::u32string_view(U"[]:*?/\\'").find(character) == std::u32string_view::npos;
    name += legal ? before.substr(0, before.size() - text.size()) : " ";
  }
  return name;
}

Style styleOf(const ViewRow& row) {
  switch (row.kind) {
    case RowKind::line:
      return Style::plain;
    case RowKind::detail:
      return Style::detail;
    case RowKind::group:
      return row.level == 0 ? Style::outerGroup : Style::group;
    case RowKind::subtotal:
      return Style::subtotal;
    case RowKind::opening:
      return Style::opening;
    case RowKind::monthTotal:
      return Style::monthTotal;
    case RowKind::yearTotal:
      return Style::yearTotal;
    case RowKind::closing:
      return Style::closing;
    case RowKind::difference:
      return Style::difference;
    case RowKind::total:
      break;
  }
  return Style::total;
}

// What stands above the columns of each sheet, a line each: title; company, period and day of printing; conditions, as
// many beside each other as are read at a glance, because the lines stay in sight.
std::vector<std::string> headingLines(const ReportDocument& document) {
  const bool chinese = document.language == Language::chinese;
  const std::string_view colon = chinese ? "：" : ": ", blank = chinese ? "　" : "   ";
  std::vector<std::string> lines = {document.title};
  const auto add = [&](std::string_view caption, const std::string& text, bool first) {
    if (text.empty()) return;
    const std::string item = std::string(caption).append(colon).append(oneLine(text));
    const bool fits = cellWidth(lines.back()) + cellWidth(item) + cellWidth(blank) <= headingLineWidth;
    if (first || lines.size() == 1 || !fits) {
      lines.push_back(item);
    } else {
      lines.back().append(blank).append(item);
    }
  };
  add(document.text(companyCaption), document.company, false);
  add(document.text(periodCaption), document.period, false);
  add(document.text(printedCaption), document.printed, false);
  bool first = true;
  for (const auto& [caption, text] : document.conditions) {
    add(caption, text, first);
    first = first && text.empty();
  }
  return lines;
}

void writeHeading(Sheet& sheet, const std::vector<std::string>& lines) {
  for (std::size_t i = 0; i < lines.size(); ++i) {
    sheet.text(lines[i], {i == 0 ? Style::title : Style::plain});
    sheet.endRow();
  }
}

// A section on its sheets.
class SectionSheets {
 public:
  SectionSheets(Workbook& book, const ReportDocument& document, const ReportSection& section, const std::string& name,
                std::int64_t rowsOfSheet)
      : book_(book),
        document_(document),
        section_(section),
        view_(section.cut() ? limited(section.view, *section.limit) : section.view),
        lines_(headingLines(document)),
        grouped_(
            std::ranges::any_of(view_.columns, [](const ViewColumn& column) { return !column.groupChinese.empty(); })),
        capacity_(capacityOf(rowsOfSheet)),
        places_(name, static_cast<std::int64_t>(headRows()) + 1, capacity_),
        formulas_(view_, decimalsOfColumns(), places_),
        linesLevel_(levelAboveSubtotals()) {}

  void write() {
    beginSheet();
    auto rows = view_.rows();
    bool more = rows->next();
    if (more && rows->row().kind == RowKind::group) {
      rows.reset();
      formulas_.readGroups();
      rows = view_.rows();
      more = rows->next();
    }
    for (; more; more = rows->next(), ++row_) {
      if (row_ > 0 && row_ % capacity_ == 0) {
        endSheet();
        beginSheet();
      }
      writeRow(rows->row(), formulas_.ofRow(rows->row()));
    }
    endBody();
    for (const ViewRow& total : view_.totals)
      writeRow(total, section_.cut() ? XlsxFormulas::Row(total.cells.size()) : formulas_.ofTotal(total));
    sheet_->endRow();
    sheet_->text(lineCountText(document_, section_), {});
    finishSheet();
  }

 private:
  std::size_t headRows() const { return lines_.size() + (grouped_ ? 2 : 1); }

  std::int64_t capacityOf(std::int64_t rowsOfSheet) const {
    const std::size_t beside = headRows() + view_.totals.size() + 2;  // a blank row and the count of rows
    return std::max<std::int64_t>(rowsOfSheet - static_cast<std::int64_t>(beside), 1);
  }

  std::vector<int> decimalsOfColumns() const {
    std::vector<int> decimals;
    for (const ViewColumn& column : view_.columns)
      decimals.push_back(decimalsOf(document_, column.column.role));
    return decimals;
  }

  void beginSheet() {
    sheet_ = &book_.add(places_.sheetName(places_.sheetOf(row_)));
    onlyLines_ = true;
    writeHeading(*sheet_, lines_);
    if (grouped_) writeGroups();
    for (std::size_t i = 0; i < view_.columns.size(); ++i) {
      const std::string& caption = view_.columns[i].caption(document_.language);
      sheet_->text(caption, {Style::heading});
      widen(i, std::min(cellWidth(caption) + filterArrow, greatestHeadingWidth));
    }
    sheet_->endRow();
  }

  // The headings that neighbours share.
  void writeGroups() {
    for (std::size_t i = 0; i < view_.columns.size();) {
      const std::string& group = view_.columns[i].group(document_.language);
      std::size_t end = i + 1;
      while (!group.empty() && end < view_.columns.size() && view_.columns[end].group(document_.language) == group)
        ++end;
      if (group.empty()) {
        sheet_->blank({Style::heading});
      } else {
        sheet_->textOver(group, end - i, {Style::heading});
        for (std::size_t column = i; column < end; ++column)
          widen(column, std::min(cellWidth(group) / (end - i) + 2, greatestHeadingWidth));
      }
      i = end;
    }
    sheet_->endRow();
  }

  void writeRow(const ViewRow& row, const XlsxFormulas::Row& formulas) {
    onlyLines_ = onlyLines_ && row.kind == RowKind::line;
    const int level = levelOf(row);
    sheet_->outline(level);
    const Look look{styleOf(row)};
    for (std::size_t i = 0; i < view_.columns.size(); ++i) {
      const ReportColumn& column = view_.columns[i].column;
      const tsql::Value& value = row.cells[i];
      if (row_ < rowsMeasured || isSetOff(row.kind)) measure(i, value, level);
      if (!formulas[i].empty()) {
        sheet_->formula(formulas[i], cellNumber(value).value_or(0), {look.style, numberFormat(document_, column.role)});
      } else if (i == 0 && heads_ && level > 0 && std::holds_alternative<std::string>(value)) {
        sheet_->value(document_, column.role, value, {.style = look.style, .indent = level});
      } else {
        sheet_->value(document_, column.role, value, look);
      }
    }
    sheet_->endRow();
  }

  // How deep a row lies: what is below the head of a group is one deeper than this, and so are a line's details.
  int levelOf(const ViewRow& row) {
    switch (row.kind) {
      case RowKind::group:
        below_ = row.level + 1;
        heads_ = headBefore_ = true;
        return row.level;
      case RowKind::subtotal:
        ends_ = true;
        return row.level;
      case RowKind::line:
        if (headBefore_) nested_ = row.level >= below_;
        headBefore_ = false;
        return nested_ ? row.level : std::max({row.level, below_, linesLevel_});
      case RowKind::detail:
        heads_ = true;
        return std::max({row.level, below_ + 1, linesLevel_ + 1});
      default:
        return 0;
    }
  }

  // How deep lines lie above the subtotals that sum them, the innermost of which comes first.
  int levelAboveSubtotals() const {
    if (!section_.grouped) return 0;
    for (const auto rows = view_.rows(); rows->next();) {
      if (rows->row().kind == RowKind::subtotal) return rows->row().level + 1;
    }
    return 0;
  }

  void measure(std::size_t column, const tsql::Value& value, int indent) {
    const auto depth = static_cast<std::size_t>(column == 0 ? indent : 0);
    const std::size_t width = cellWidth(cellText(document_, view_.columns[column].column, value));
    if (width > 0) widen(column, std::min(width + margin + depth, greatestWidth));
  }
  void widen(std::size_t column, std::size_t width) {
    widths_.resize(view_.columns.size(), leastWidth);
    widths_[column] = std::max(widths_[column], width);
  }

  void endBody() {
    // A filter would tear lines from the rows that head and sum them.
    lxw_worksheet* sheet = sheet_->worksheet();
    if (onlyLines_ && sheet_->row() > headRows()) {
      book_.check(worksheet_autofilter(sheet, static_cast<lxw_row_t>(headRows() - 1), 0, sheet_->row() - 1,
                                       static_cast<lxw_col_t>(view_.columns.size() - 1)));
    }
    if (heads_ || ends_)
      worksheet_outline_settings(sheet, LXW_TRUE, heads_ ? LXW_FALSE : LXW_TRUE, LXW_TRUE, LXW_FALSE);
  }

  void endSheet() {
    endBody();
    finishSheet();
  }

  void finishSheet() {
    lxw_worksheet* sheet = sheet_->worksheet();
    for (std::size_t i = 0; i < widths_.size(); ++i)
      sheet_->widen(i, static_cast<double>(widths_[i]));
    worksheet_freeze_panes(sheet, static_cast<lxw_row_t>(headRows()), keyColumns(frozenWidth));
    const auto headings = static_cast<lxw_row_t>(headRows() - 1);
    book_.check(worksheet_repeat_rows(sheet, grouped_ ? headings - 1 : headings, headings));
    setPages(*sheet);
  }

  // The keys that the columns begin with and that leave room beside them.
  lxw_col_t keyColumns(std::size_t room) const {
    std::size_t width = 0;
    lxw_col_t keys = 0;
    while (keys < view_.columns.size() && view_.columns[keys].key) {
      width += widths_[keys];
      if (width > room) break;
      ++keys;
    }
    return keys;
  }

  // One page wide when figures then are at least half their size, else as few pages as keep that, each with the keys.
  void setPages(lxw_worksheet& sheet) {
    constexpr double pageWidth = 140;  // the characters that an A4 page has room for at full size
    constexpr double least = 0.5;
    constexpr double edge = 0.4, top = 0.6;  // inches
    double width = 0;
    for (const std::size_t column : widths_)
      width += static_cast<double>(column) + 0.7;
    const auto pages = static_cast<std::uint16_t>(std::max(1.0, std::ceil(width * least / pageWidth)));
    worksheet_fit_to_pages(&sheet, pages, 0);
    const lxw_col_t keys = keyColumns(static_cast<std::size_t>(pageWidth / least / 3));
    if (pages > 1 && keys > 0) book_.check(worksheet_repeat_columns(&sheet, 0, static_cast<lxw_col_t>(keys - 1)));
    worksheet_set_margins(&sheet, edge, edge, top, top);
    const std::string head = "&L" + pageText(document_.company) + "&R" + pageText(document_.title);
    const std::string foot = "&L" + pageText(document_.period) + "&C" + std::string(document_.text(pageFooter)) + "&R" +
                             pageText(document_.printed);
    book_.check(worksheet_set_header(&sheet, head.c_str()));
    book_.check(worksheet_set_footer(&sheet, foot.c_str()));
  }

  static constexpr std::int64_t rowsMeasured = 1000;
  static constexpr std::size_t margin = 2, filterArrow = 3;

  Workbook& book_;
  const ReportDocument& document_;
  const ReportSection& section_;
  View view_;
  std::vector<std::string> lines_;
  bool grouped_;
  std::int64_t capacity_;
  XlsxPlaces places_;
  XlsxFormulas formulas_;
  int linesLevel_;
  Sheet* sheet_ = nullptr;
  std::int64_t row_ = 0;
  std::vector<std::size_t> widths_;
  bool onlyLines_ = true;
  bool nested_ = false;                // lines below heads say themselves how deep they lie
  bool headBefore_ = false;            // the row above is a head
  bool heads_ = false, ends_ = false;  // whether rows head others, or sum those above them
  int below_ = 0;                      // the level of what the last head is above
};

// The first `longest` characters of `text`.
std::string beginning(std::string_view text, std::size_t longest) {
  std::string_view rest = text;
  for (std::size_t length = 0; !rest.empty() && length < longest; ++length)
    takeCharacter(rest);
  return std::string(text.substr(0, text.size() - rest.size()));
}

std::size_t lengthOf(std::string_view text) {
  std::size_t length = 0;
  for (; !text.empty(); ++length)
    takeCharacter(text);
  return length;
}

// "2 成本项目 明细": of a long name only so much that its layout can be read.
std::string sheetName(const std::string& name, std::string_view layout) {
  if (name.empty()) return legalName(layout);
  constexpr std::size_t longest = 21, least = 6;
  const std::size_t ofLayout = std::min(lengthOf(layout), longest - least);
  return legalName(beginning(name, longest - ofLayout).append(" ").append(layout));
}

// The fingerprint of one of the reports in a workbook.
struct NamedFingerprint {
  std::string title;
  Language language;
  RunFingerprint fingerprint;
};

// What the runs came to, for whoever reads the workbook, and as a whole for `quillon verify`. It stands in cells because
// these are what every spreadsheet keeps.
void writeFingerprints(Sheet& sheet, const std::vector<NamedFingerprint>& fingerprints) {
  constexpr double captionWidth = 22, textWidth = 100;
  sheet.widen(0, captionWidth);
  sheet.widen(1, textWidth);
  for (const auto& [title, language, fingerprint] : fingerprints) {
    sheet.text(title, {Style::title});
    sheet.endRow();
    for (const FingerprintFact& fact : factsOf(fingerprint, language)) {
      sheet.text(fact.caption, {Style::detail});
      sheet.text(fact.text, {});
      sheet.endRow();
    }
    for (const std::string& cell : fingerprintCells(fingerprint)) {
      sheet.text(messages::fingerprintForPrograms.in(language), {Style::detail});
      sheet.text(cell, {});
      sheet.endRow();
    }
    sheet.endRow();
  }
}

}  // namespace

class XlsxBook::Sheets {
 public:
  Sheets(const std::filesystem::path& file, const std::string& title, const std::string& company,
         const XlsxLimits& limits)
      : limits_(limits), book_(file) {
    book_.describe(title, company);
  }

  void add(const LaidOutReport& report, const std::string& name) {
    const ReportDocument& document = report.heading;
    if (report.sections.empty()) {
      Sheet& sheet = book_.add(unused(legalName(name.empty() ? document.title : name)));
      writeHeading(sheet, headingLines(document));
      sheet.endRow();
      sheet.text(document.text(noRowsCaption), {});
    }
    for (const ReportSection& section : report.sections) {
      const std::string own = unused(sheetName(name, document.text(layoutCaption(section.layout))));
      SectionSheets(book_, document, section, own, limits_.rowsOfSheet).write();
    }
    if (report.fingerprint) fingerprints_.push_back({document.title, document.language, *report.fingerprint});
  }

  void save() {
    if (!fingerprints_.empty()) {
      const std::string_view name = messages::fingerprintCaption.in(fingerprints_.front().language);
      writeFingerprints(book_.add(unused(std::string(name))), fingerprints_);
    }
    book_.save();
  }

 private:
  // `name`, with a number behind it when there are sheets of that name.
  std::string unused(std::string name) {
    if (const int number = ++names_[name]; number > 1) name += " " + std::to_string(number);
    return name;
  }

  XlsxLimits limits_;
  Workbook book_;
  std::map<std::string, int> names_;
  std::vector<NamedFingerprint> fingerprints_;
};

XlsxBook::XlsxBook(const std::filesystem::path& file, const std::string& title, const std::string& company,
                   const XlsxLimits& limits)
    : sheets_(std::make_unique<Sheets>(file, title, company, limits)) {}

XlsxBook::~XlsxBook() = default;

void XlsxBook::add(const LaidOutReport& report, const std::string& name) {
  sheets_->add(report, name);
}

void XlsxBook::save() {
  sheets_->save();
}

void writeXlsx(const std::filesystem::path& file, const LaidOutReport& report, const XlsxLimits& limits) {
  XlsxBook book(file, report.heading.title, report.heading.company, limits);
  book.add(report);
  book.save();
}

void writeXlsx(const std::filesystem::path& file, const LaidOutReport& report) {
  writeXlsx(file, report, {});
}

}  // namespace quillon::workbench
