// A report ready to be written: its heading, what is shown of it and how. Tables, pages, workbooks and files are written from
// this one form.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "workbench/catalogue/report_layout.h"
#include "workbench/presentation/report_document.h"
#include "workbench/presentation/run_fingerprint.h"
#include "workbench/presentation/view.h"

namespace quillon::workbench {

struct ChartPoint {
  std::string label;
  tsql::Value value;  // an exact number
};

// Figures for people who look rather than read. The same figures stand beside it as a table.
struct Chart {
  enum class Kind {
    bars,  // one figure a label, such as the amount of each cost item
    line,  // a figure over time
  };
  Kind kind = Kind::bars;
  std::string title = {};
  std::string labels;                   // the heading of the labels
  std::string measure;                  // the heading of the figures
  ColumnRole role = ColumnRole::money;  // how the figures are shown
  std::vector<ChartPoint> points = {};
};

struct ReportSection {
  Layout layout = Layout::lines;
  View view;
  bool grouped = false;                    // lines stand under subtotals
  std::optional<std::int64_t> limit = {};  // lines shown; nothing: all

  // What an arrangement of the section may name: the columns that hold something, or that the layout makes.
  std::vector<ReportColumn> offered = {};

  bool cut() const { return limit && *limit < view.lineCount; }
};

// How many lines the section has and, when they are cut, how many of them are shown and how to get all; how many columns are
// not shown.
std::string lineCountText(const ReportDocument& heading, const ReportSection& section);

struct LaidOutReport {
  ReportDocument heading;
  std::vector<ReportSection> sections;  // the summary first, where there is one; empty when no row meets the conditions
  std::vector<Chart> charts;
  // Printed on pages and workbooks, where it is there.
  std::optional<RunFingerprint> fingerprint = {};
};

}  // namespace quillon::workbench
