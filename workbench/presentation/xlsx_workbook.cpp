#include "workbench/presentation/xlsx_workbook.h"

#include <xlsxwriter.h>

#include <algorithm>
#include <array>
#include <charconv>
#include <cstdio>
#include <fstream>
#include <map>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "workbench/platform/user_error.h"
#include "workbench/presentation/ledger_rows.h"
#include "workbench/presentation/output_file.h"
#include "workbench/presentation/text_cells.h"
#include "workbench/presentation/value_output.h"
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

constexpr int exactDigits = 15;  // of a number in a cell, which is a double
constexpr int moneyDecimals = 2;
constexpr double textWidth = 14, dateWidth = 11, numberWidth = 15;  // in characters

enum class Style { plain, title, bold, heading, total };

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

// Whether a double tells `number` ("-1234.5600") from its neighbours.
bool fitsCell(std::string_view number) {
  std::string digits;
  std::ranges::copy_if(number, std::back_inserter(digits), [](char c) { return c >= '0' && c <= '9'; });
  const std::size_t first = digits.find_first_not_of('0');
  return first == std::string::npos || digits.find_last_not_of('0') - first < exactDigits;
}

int decimalsOf(const ReportDocument& document, ColumnRole role) {
  if (role == ColumnRole::unitCost) return document.unitCostDecimals;
  return isMoney(role) ? moneyDecimals : document.quantityDecimals;
}

std::string numberFormat(int decimals) {
  return decimals == 0 ? "#,##0" : "#,##0." + std::string(static_cast<std::size_t>(decimals), '0');
}

// The one sheet, written from top to bottom, each row from left to right.
class Sheet {
 public:
  Sheet(const std::filesystem::path& file, const std::string& name) : file_(utf8FromPath(file)), output_(file) {
    lxw_workbook_options options{};
    options.constant_memory = LXW_TRUE;
    workbook_.reset(workbook_new_opt(utf8FromPath(output_.path()).c_str(), &options));
    if (!workbook_) throw UserError("cannot write " + file_ + ": no temporary file can be made for it");
    sheet_ = workbook_add_worksheet(workbook_.get(), name.c_str());
    if (sheet_ == nullptr) throw UserError("cannot write " + file_ + ": no temporary file can be made for it");
    worksheet_set_landscape(sheet_);
    worksheet_fit_to_pages(sheet_, 1, 0);
  }

  lxw_row_t row() const { return row_; }
  void endRow() {
    ++row_;
    column_ = 0;
  }
  // Passes over the next cell; it has the style all the same.
  void blank(Style style) { check(worksheet_write_blank(sheet_, row_, column_++, format(style, ""))); }
  void text(std::string_view text, Style style) {
    check(worksheet_write_string(sheet_, row_, column_++, cellString(text).c_str(), format(style, "")));
  }
  // `exact` as tsql::toText gives it; an empty `numberFormat` shows the number as it is.
  void number(std::string_view exact, Style style, const std::string& numberFormat) {
    if (!fitsCell(exact)) {
      text(exact, style);
      return;
    }
    double value = 0;
    std::from_chars(exact.data(), exact.data() + exact.size(), value);
    check(worksheet_write_number(sheet_, row_, column_++, value, format(style, numberFormat)));
  }
  void date(tsql::DateTime time, Style style) {
    const std::string text = tsql::toText(time).value();  // yyyy-mm-dd hh:mm:ss.fff
    const auto part = [text = std::string_view(text)](std::size_t at, std::size_t count) {
      return tsql::text::wholeNumber(text.substr(at, count)).value();
    };
    if (time.ticks < 0) {
      this->text(plainText(time, ""), style);
      return;
    }
    lxw_datetime cell{part(0, 4), part(5, 2), part(8, 2), part(11, 2), part(14, 2), std::stod(text.substr(17))};
    const bool day = time.ticks % tsql::DateTime::ticksPerDay == 0;
    check(worksheet_write_datetime(sheet_, row_, column_++, &cell,
                                   format(style, day ? "yyyy-mm-dd" : "yyyy-mm-dd hh:mm:ss")));
  }
  // A value of a column with this role.
  void value(const ReportDocument& document, ColumnRole role, const tsql::Value& value, Style style) {
    if (tsql::isNull(value)) {
      blank(style);
    } else if (const auto* text = std::get_if<std::string>(&value)) {
      this->text(*text, style);
    } else if (const auto* time = std::get_if<tsql::DateTime>(&value)) {
      date(*time, style);
    } else if (const auto* real = std::get_if<double>(&value)) {
      check(worksheet_write_number(sheet_, row_, column_++, *real,
                                   format(style, isNumber(role) ? numberFormat(decimalsOf(document, role)) : "")));
    } else {
      number(tsql::toText(value).value(), style, isNumber(role) ? numberFormat(decimalsOf(document, role)) : "");
    }
  }

  // Column `column` shall be at least so wide.
  void widen(std::size_t column, double width) {
    if (widths_.size() <= column) widths_.resize(column + 1);
    widths_[column] = std::max(widths_[column], width);
  }
  // The row of headings can filter the rows below it, down to the one before the current one, and every printed page
  // repeats it.
  void filter(lxw_row_t headings, std::size_t columns) {
    check(worksheet_autofilter(sheet_, headings, 0, row_ - 1, static_cast<lxw_col_t>(columns - 1)));
    check(worksheet_repeat_rows(sheet_, headings, headings));
  }

  void save() {
    for (std::size_t column = 0; column < widths_.size(); ++column) {
      const auto number = static_cast<lxw_col_t>(column);
      check(worksheet_set_column(sheet_, number, number, widths_[column], nullptr));
    }
    // libxlsxwriter would say in its own words, and in the terms of the C library, that a file cannot be begun.
    std::ofstream file(output_.path(), std::ios::binary);
    file.close();
    if (!file) output_.fail();
    // Closing frees the workbook even when it fails.
    check(workbook_close(workbook_.release()));
    output_.complete();
  }

 private:
  struct Free {
    void operator()(lxw_workbook* workbook) const { lxw_workbook_free(workbook); }
  };

  void check(lxw_error error) const {
    if (error == LXW_NO_ERROR) return;
    throw UserError("cannot write " + file_ + ": " + reasonOf(error) + ", or write --format csv");
  }

  // libxlsxwriter's own words speak of its calls.
  static std::string reasonOf(lxw_error error) {
    switch (error) {
      case LXW_ERROR_MEMORY_MALLOC_FAILED:
        return "there is not enough memory; show fewer rows with --limit";
      case LXW_ERROR_CREATING_TMPFILE:
      case LXW_ERROR_READING_TMPFILE:
        return "its temporary file cannot be used; check the temporary folder and its free space";
      case LXW_ERROR_MAX_STRING_LENGTH_EXCEEDED:
        return "a text is longer than the 32,767 characters of a cell; leave its row out with the filter";
      default:
        return "the workbook could not be put together; check the folder and its free space";
    }
  }

  lxw_format* format(Style style, const std::string& numberFormat) {
    if (style == Style::plain && numberFormat.empty()) return nullptr;
    lxw_format*& format = formats_[{style, numberFormat}];
    if (format != nullptr) return format;
    format = workbook_add_format(workbook_.get());
    if (!numberFormat.empty()) format_set_num_format(format, numberFormat.c_str());
    if (style != Style::plain) format_set_bold(format);
    if (style == Style::title) format_set_font_size(format, 14);
    if (style == Style::heading || style == Style::total) format_set_bg_color(format, 0xEEF1F5);
    if (style == Style::heading) {
      format_set_align(format, LXW_ALIGN_CENTER);
      format_set_align(format, LXW_ALIGN_VERTICAL_CENTER);
      format_set_text_wrap(format);
      format_set_bottom(format, LXW_BORDER_THIN);
    }
    return format;
  }

  std::string file_;
  OutputFile output_;
  std::unique_ptr<lxw_workbook, Free> workbook_;
  lxw_worksheet* sheet_ = nullptr;  // the workbook's
  std::map<std::pair<Style, std::string>, lxw_format*> formats_;
  std::vector<double> widths_;
  lxw_row_t row_ = 0;
  lxw_col_t column_ = 0;
};

void writeConditions(Sheet& sheet, const ReportDocument& document) {
  sheet.text(document.title, Style::title);
  sheet.endRow();
  for (const auto& [caption, text] : document.conditions) {
    sheet.text(caption, Style::bold);
    sheet.text(text, Style::plain);
    sheet.endRow();
  }
  sheet.endRow();
}

void writeCross(Sheet& sheet, const ReportDocument& document) {
  sheet.text(document.text(crossCaption), Style::bold);
  sheet.endRow();
  sheet.text(document.text(codeCaption), Style::heading);
  sheet.text(document.text(costItemCaption), Style::heading);
  for (const CrossState& state : document.crossStates) {
    sheet.text(crossHeading(document, state, quantityCaption), Style::heading);
    sheet.text(crossHeading(document, state, moneyCaption), Style::heading);
  }
  sheet.endRow();
  const auto writeSums = [&](const CrossRow& row, Style style) {
    for (std::size_t state = 0; state < document.crossStates.size(); ++state) {
      sheet.number(row.quantity[state], style, numberFormat(document.quantityDecimals));
      sheet.number(row.money[state], style, numberFormat(moneyDecimals));
    }
    sheet.endRow();
  };
  for (const CrossRow& row : document.cross.rows) {
    sheet.text(row.code, Style::plain);
    sheet.text(costItemName(document, row), Style::plain);
    writeSums(row, Style::plain);
  }
  sheet.text(document.text(totalCaption), Style::total);
  sheet.blank(Style::total);
  writeSums(document.cross.total, Style::total);
  for (std::size_t column = 2; column < 2 + 2 * document.crossStates.size(); ++column)
    sheet.widen(column, numberWidth);
  sheet.endRow();
}

// The rows below `sheet`'s current one, the totals and the count of rows have to fit.
void requireRoom(const Sheet& sheet, const ReportDocument& document, std::optional<std::int64_t> limit) {
  constexpr std::int64_t besideRows = 5;  // caption, headings, totals, blank, count of rows
  const std::int64_t room = std::int64_t{LXW_ROW_MAX} - std::int64_t{sheet.row()} - besideRows;
  const std::int64_t rows = std::min(limit.value_or(document.rowCount), document.rowCount);
  if (rows <= room) return;
  throw UserError("the report has " + std::to_string(rows) + " rows and a sheet has room for " + std::to_string(room) +
                  "; write --format csv, or fewer rows with --limit or a narrower filter");
}

double widthOf(const ReportColumn& column) {
  if (isNumber(column.role)) return numberWidth;
  return column.role == ColumnRole::date ? dateWidth : textWidth;
}

void writeRows(Sheet& sheet, const ReportDocument& document, const ResultTable& table,
               std::optional<std::int64_t> limit) {
  sheet.text(document.text(rowsCaption), Style::bold);
  sheet.endRow();
  const lxw_row_t headings = sheet.row();
  for (std::size_t i = 0; i < document.columns.size(); ++i) {
    sheet.text(document.columns[i].caption(document.language), Style::heading);
    sheet.widen(i, widthOf(document.columns[i]));
  }
  sheet.endRow();
  const auto cursor = table.rows(document.columns);
  for (std::int64_t shown = 0; (!limit || shown < *limit) && cursor->next(); ++shown) {
    for (std::size_t i = 0; i < document.columns.size(); ++i)
      sheet.value(document, document.columns[i].role, cursor->value(i), Style::plain);
    sheet.endRow();
  }
  sheet.filter(headings, document.columns.size());
  for (std::size_t i = 0; i < document.columns.size(); ++i) {
    if (const auto& total = document.totals[i]) {
      sheet.number(*total, Style::total, numberFormat(decimalsOf(document, document.columns[i].role)));
    } else {
      sheet.text(totalText(document, i), Style::total);
    }
  }
  sheet.endRow();
}

void writeLedger(Sheet& sheet, const ReportDocument& document, const ResultTable& table,
                 std::optional<std::int64_t> limit) {
  const lxw_row_t headings = sheet.row();
  const std::vector<ReportColumn> columns = ledgerColumns(document);
  for (std::size_t i = 0; i < columns.size(); ++i) {
    sheet.text(columns[i].caption(document.language), Style::heading);
    sheet.widen(i, widthOf(columns[i]));
  }
  sheet.endRow();
  LedgerRows rows(document, table);
  for (std::int64_t shown = 0; (!limit || shown < *limit) && rows.next(); ++shown) {
    const LedgerRow& row = rows.row();
    for (std::size_t i = 0; i < columns.size(); ++i)
      sheet.value(document, columns[i].role, row.values[i], isBalance(row.kind) ? Style::total : Style::plain);
    sheet.endRow();
  }
  sheet.filter(headings, columns.size());
}

}  // namespace

void writeXlsx(const std::filesystem::path& file, const ReportDocument& document, const ResultTable& table,
               std::optional<std::int64_t> limit) {
  Sheet sheet(file, document.report);
  sheet.widen(0, textWidth);
  writeConditions(sheet, document);
  if (document.rowCount == 0) {
    sheet.text(document.text(noRowsCaption), Style::plain);
  } else {
    if (!document.crossStates.empty()) writeCross(sheet, document);
    requireRoom(sheet, document, limit);
    if (document.ledger) {
      writeLedger(sheet, document, table, limit);
    } else {
      writeRows(sheet, document, table, limit);
    }
    sheet.endRow();
    sheet.text(rowCountText(document, limit), Style::plain);
  }
  sheet.save();
}

}  // namespace quillon::workbench
