#include "workbench/presentation/html_page.h"

#include <algorithm>
#include <sstream>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "workbench/presentation/exact_sum.h"
#include "workbench/presentation/html_style.h"
#include "workbench/presentation/html_text.h"
#include "workbench/presentation/page_plan.h"
#include "workbench/presentation/sha256.h"
#include "workbench/presentation/svg_chart.h"

namespace quillon::workbench {

namespace {

constexpr Caption companyCaption{"单位", "Company"};
constexpr Caption periodCaption{"期间", "Period"};
constexpr Caption printedCaption{"打印日期", "Printed"};

// The classes of a row: "o" for all that are set off, then which one it is.
std::string_view rowClass(RowKind kind) {
  switch (kind) {
    case RowKind::line:
      return "";
    case RowKind::detail:
      return "d";
    case RowKind::group:
      return "o g";
    case RowKind::subtotal:
      return "o s";
    case RowKind::opening:
      return "o b";
    case RowKind::monthTotal:
      return "o m";
    case RowKind::yearTotal:
      return "o y";
    case RowKind::closing:
      return "o c";
    case RowKind::difference:
      return "o x";
    case RowKind::total:
      return "o t";
  }
  return "";
}

// "k0" is the first key, "kl" ends the last one.
std::string keyClasses(std::size_t position, std::size_t span, std::size_t keys) {
  return "k k" + std::to_string(position) + (position + span == keys ? " kl" : "");
}

std::string classAttribute(const std::string& classes) {
  if (classes.empty()) return "";
  return classes.find(' ') == std::string::npos ? " class=" + classes : " class=\"" + classes + '"';
}

// So many empty cells take more bytes than one cell in their place.
constexpr std::size_t manyEmptyCells = 4;

// How many cells from `position` on are empty, up to the end of the keys or of the row.
std::size_t emptyRun(const std::vector<SpannedCell>& cells, std::size_t position, std::size_t keys) {
  const std::size_t end = position < keys ? std::min(keys, cells.size()) : cells.size();
  std::size_t last = position;
  while (last < end && cells[last].text.empty() && cells[last].span == 1)
    ++last;
  return last - position;
}

// Whether a line is shorter with its empty cells joined, though it then says of each number that it is one.
bool isSparse(const View& view, const std::vector<SpannedCell>& cells, std::size_t keys) {
  constexpr std::size_t emptyCell = 4, joinedCell = 14, numberClass = 8;
  std::size_t saved = 0, added = numberClass;
  for (std::size_t i = 0; i < cells.size();) {
    const std::size_t run = emptyRun(cells, i, keys);
    if (run >= manyEmptyCells) saved += run * emptyCell - joinedCell;
    if (run == 0 && isNumber(view.columns[cells[i].column].column.role)) added += numberClass;
    i += std::max<std::size_t>(run, 1);
  }
  return saved > added;
}

// Cells of spans stand for as many columns as they span, so the ends of the keys are counted in columns.
void joinEmptyCells(std::vector<SpannedCell>& cells, std::size_t keys) {
  std::vector<SpannedCell> joined;
  std::size_t position = 0, keyCells = 0;
  for (std::size_t i = 0; i < cells.size() && position < keys; ++i, ++keyCells)
    position += cells[i].span;
  for (std::size_t i = 0; i < cells.size();) {
    const std::size_t run = emptyRun(cells, i, keyCells);
    if (run >= manyEmptyCells) {
      joined.push_back({.column = cells[i].column, .span = run, .text = ""});
      i += run;
    } else {
      joined.push_back(std::move(cells[i++]));
    }
  }
  cells = std::move(joined);
}

// A section as it is written: its rows cut, and where they stand.
struct PlannedSection {
  const ReportSection& section;
  View view;
  PagePlan plan;
  std::string id;

  std::string tableId(std::size_t block) const { return id + "b" + std::to_string(block + 1); }
  std::string keysId() const { return id + "k"; }
  std::string_view caption(Language language) const { return layoutCaption(section.layout).in(language); }
};

class PageWriter {
 public:
  PageWriter(std::ostream& out, const LaidOutReport& report) : out_(out), report_(report), document_(report.heading) {
    for (const ReportSection& section : report.sections) {
      View view = section.cut() ? limited(section.view, *section.limit) : section.view;
      PagePlan plan = planPage(document_, view);
      if (plan.split()) {
        view = numberedLines(std::move(view));
        plan = planPage(document_, view);
      }
      sections_.push_back({.section = section,
                           .view = std::move(view),
                           .plan = std::move(plan),
                           .id = "s" + std::to_string(sections_.size() + 1)});
    }
  }

  void write() {
    writeHead();
    writeHeading();
    if (sections_.empty()) out_ << "<p class=note>" << document_.text(noRowsCaption) << "</p>\n";
    // A summary says in figures what the charts draw, so it stands before them.
    const bool summaryFirst = !sections_.empty() && sections_.front().section.layout == Layout::summary;
    if (!summaryFirst) writeCharts();
    for (std::size_t i = 0; i < sections_.size(); ++i) {
      writeSection(sections_[i]);
      if (i == 0 && summaryFirst) writeCharts();
    }
    writeFingerprint();
    out_ << "</main>\n</body>\n</html>\n";
  }

 private:
  std::string style() const {
    std::string sheet(commonStyle());
    sheet += marginStyle(document_);
    for (const PlannedSection& section : sections_) {
      for (std::size_t block = 0; block < section.plan.blocks.size(); ++block)
        sheet += tableStyle(section.tableId(block), section.view, section.plan, section.plan.blocks[block]);
      if (section.plan.split()) sheet += tableStyle(section.keysId(), section.view, section.plan, section.plan.keys);
    }
    return sheet;
  }

  void writeHead() {
    const std::string sheet = style();
    out_ << "<!DOCTYPE html>\n<html lang=\"" << (document_.language == Language::chinese ? "zh-CN" : "en")
         << "\">\n<head>\n<meta charset=\"utf-8\">\n<meta http-equiv=\"Content-Security-Policy\" content=\"default-src "
            "'none'; style-src 'sha256-"
         << sha256Base64(sheet) << "'; base-uri 'none'; form-action 'none'\">\n"
         << "<meta name=\"viewport\" content=\"width=device-width, initial-scale=1\">\n<title>"
         << escaped(document_.title);
    if (!document_.period.empty()) out_ << " · " << escaped(document_.period);
    out_ << "</title>\n<style>" << sheet << "</style>\n</head>\n<body>\n<main>\n";
  }

  void writeHeading() {
    out_ << "<h1>" << escaped(document_.title) << "</h1>\n<dl>\n";
    writeFact(document_.text(companyCaption), document_.company);
    writeFact(document_.text(periodCaption), document_.period);
    for (const auto& [caption, text] : document_.conditions)
      writeFact(caption, text);
    writeFact(document_.text(printedCaption), document_.printed);
    out_ << "</dl>\n";
  }

  void writeFact(std::string_view caption, std::string_view text) {
    if (!text.empty()) out_ << "<dt>" << escaped(caption) << "</dt><dd>" << escaped(text) << "</dd>\n";
  }

  // What the run came to, for whoever reads the page, and as a whole for `quillon verify`.
  void writeFingerprint() {
    if (!report_.fingerprint) return;
    const std::string text = canonicalText(*report_.fingerprint);
    std::string digest = fingerprintDigest(text);
    std::erase(digest, ' ');
    out_ << "<footer " << fingerprintAttribute << "=\"" << attributeText(digest + " " + text) << "\">\n";
    for (const FingerprintFact& fact : factsOf(*report_.fingerprint, document_.language))
      if (!fact.text.empty())
        out_ << "<p class=note>" << escaped(fact.caption) << ' ' << escaped(fact.text) << "</p>\n";
    out_ << "</footer>\n";
  }

  void writeCharts() {
    for (std::size_t i = 0; i < report_.charts.size(); ++i)
      writeChart(report_.charts[i], "c" + std::to_string(i + 1));
  }

  void writeChart(const Chart& chart, const std::string& id) {
    if (chart.points.empty()) return;
    out_ << "<figure>\n<figcaption>" << escaped(chart.title) << "</figcaption>\n<div class=chart>\n";
    writeSvg(out_, document_, chart, id);
    out_ << "<table>\n<thead><tr class=h><th scope=col>" << escaped(chart.labels) << "<th scope=col>"
         << escaped(chart.measure) << "\n<tbody>\n";
    ExactSum sum;
    for (const ChartPoint& point : chart.points) {
      out_ << "<tr><th scope=row>" << escaped(point.label) << "<td class=n>"
           << escaped(figureText(document_, chart, point.value)) << '\n';
      sum.add(point.value);
    }
    if (chart.kind == Chart::Kind::bars) {
      out_ << "<tfoot>\n<tr><th scope=row>" << document_.text(totalCaption) << "<td class=n>"
           << escaped(figureText(document_, chart, sum.value())) << '\n';
    }
    out_ << "</table>\n</div>\n</figure>\n";
  }

  void writeSection(const PlannedSection& section) {
    out_ << "<section>\n<h2 id=" << section.id << "h>" << escaped(section.caption(document_.language))
         << "</h2>\n<p class=note>" << escaped(lineCountText(document_, section.section))
         << "</p>\n<div class=scroll role=region tabindex=0 aria-labelledby=" << section.id << "h>\n";
    const PagePlan& plan = section.plan;
    if (plan.split()) {
      out_ << "<div class=side>\n";
      writeTable(section, plan.keys, section.keysId(), "rows keys", "");
    }
    for (std::size_t block = 0; block < plan.blocks.size(); ++block)
      writeTable(section, plan.blocks[block], section.tableId(block), plan.split() ? "rows part" : "rows",
                 blockCaption(section, block));
    if (plan.split()) out_ << "</div>\n";
    out_ << "</div>\n</section>\n";
  }

  std::string blockCaption(const PlannedSection& section, std::size_t block) const {
    std::string caption(section.caption(document_.language));
    if (!section.plan.split()) return caption;
    const std::string number = std::to_string(block + 1), count = std::to_string(section.plan.blocks.size());
    return document_.language == Language::chinese ? caption + "（第 " + number + " 部分，共 " + count + " 部分）"
                                                   : caption + " (part " + number + " of " + count + ")";
  }

  // A table without a caption stands beside others that have what it has.
  void writeTable(const PlannedSection& section, const std::vector<std::size_t>& columns, const std::string& id,
                  std::string_view classes, const std::string& caption) {
    out_ << "<table class=\"" << classes << "\" id=" << id << (caption.empty() ? " aria-hidden=true" : "") << ">\n";
    if (!caption.empty()) out_ << "<caption>" << escaped(caption) << "</caption>\n";
    const std::size_t keys = leadingKeys(section.plan, columns);
    writeColumnHeads(section.view, columns, keys);
    out_ << "<tbody>\n";
    {
      for (const auto rows = section.view.rows(); rows->next();)
        writeRow(section.view, section.plan, rows->row(), columns, keys);
    }
    if (!section.view.totals.empty()) out_ << "<tfoot>\n";
    for (const ViewRow& row : section.view.totals)
      writeRow(section.view, section.plan, row, columns, keys);
    out_ << "</table>\n";
  }

  void writeColumnHeads(const View& view, const std::vector<std::size_t>& columns, std::size_t keys) {
    bool grouped = false;
    for (const ViewColumn& column : view.columns)
      grouped = grouped || !column.group(document_.language).empty();
    out_ << "<thead>\n<tr class=h>";
    std::string second;
    for (std::size_t i = 0; i < columns.size();) {
      const ViewColumn& column = view.columns[columns[i]];
      const std::string& group = column.group(document_.language);
      if (group.empty()) {
        writeColumnHead(out_, column, i, keys, grouped ? " rowspan=2" : "");
        ++i;
        continue;
      }
      std::size_t end = i;
      std::ostringstream captions;
      // Keys may be hidden, so that a heading does not go on from them to other columns.
      const std::size_t last = i < keys ? keys : columns.size();
      for (; end < last && view.columns[columns[end]].group(document_.language) == group; ++end)
        writeColumnHead(captions, view.columns[columns[end]], end, keys, "");
      second += captions.str();
      out_ << "<th scope=colgroup colspan=" << end - i;
      if (i < keys) out_ << " class=\"" << keyClasses(i, end - i, keys) << '"';
      out_ << '>' << escaped(group);
      i = end;
    }
    out_ << '\n';
    if (grouped) out_ << "<tr class=h>" << second << '\n';
  }

  void writeColumnHead(std::ostream& out, const ViewColumn& column, std::size_t position, std::size_t keys,
                       std::string_view attributes) {
    out << "<th scope=col";
    if (position < keys) out << " class=\"" << keyClasses(position, 1, keys) << '"';
    out << attributes << '>' << escaped(column.caption(document_.language));
  }

  void writeRow(const View& view, const PagePlan& plan, const ViewRow& row, const std::vector<std::size_t>& columns,
                std::size_t keys) {
    std::vector<SpannedCell> cells;
    if (isSetOff(row.kind)) {
      cells = spannedCells(document_, view, row, columns, keys);
    } else {
      for (const std::size_t column : columns)
        cells.push_back(
            {.column = column, .text = cellText(document_, view.columns[column].column, row.cells[column])});
    }
    // A detail that has nothing to say in a block keeps its place on the screen, beside the others, and takes none on paper.
    if (row.kind == RowKind::detail && plan.split() && columns.size() > keys &&
        emptyRun(cells, keys, keys) == cells.size() - keys) {
      out_ << "<tr class=e><td colspan=" << columns.size() << ">\n";
      return;
    }
    std::string classes(rowClass(row.kind));
    const bool sparse = row.kind != RowKind::line || isSparse(view, cells, keys);
    if (sparse && row.kind == RowKind::line) classes = "f";
    if (sparse) joinEmptyCells(cells, keys);
    out_ << "<tr" << classAttribute(classes) << '>';
    constexpr int deepest = 6;
    int indent = std::min(indentation(row), deepest);
    std::size_t position = 0;
    for (const SpannedCell& cell : cells) {
      const bool number = isNumber(view.columns[cell.column].column.role);
      classes.clear();
      if (sparse && position < keys && !plan.split()) classes = keyClasses(position, cell.span, keys);
      if (sparse && !cell.text.empty()) {
        if (number) classes += classes.empty() ? "n" : " n";
        if (plan.breaks[cell.column] && cell.span == 1)
          classes += (classes.empty() ? "w" : " w") + std::to_string(position);
      }
      if (indent > 0 && !number && !cell.text.empty()) {
        classes += (classes.empty() ? "i" : " i") + std::to_string(indent);
        indent = 0;
      }
      out_ << (position < std::max<std::size_t>(keys, 1) ? "<th" : "<td");
      if (cell.span > 1) out_ << " colspan=" << cell.span;
      out_ << classAttribute(classes) << '>' << escaped(cell.text);
      position += cell.span;
    }
    out_ << '\n';
  }

  std::ostream& out_;
  const LaidOutReport& report_;
  const ReportDocument& document_;
  std::vector<PlannedSection> sections_;
};

}  // namespace

void writeHtml(std::ostream& out, const LaidOutReport& report) {
  PageWriter(out, report).write();
}

}  // namespace quillon::workbench
