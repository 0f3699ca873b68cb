#include "workbench/presentation/svg_chart.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdlib>
#include <vector>

#include "workbench/presentation/html_text.h"
#include "workbench/presentation/text_cells.h"
#include "workbench/presentation/value_output.h"
#include "workbench/tsql/values/exact.h"

namespace quillon::workbench {

namespace {

constexpr int drawingWidth = 640;
constexpr int letterSize = 12;

// Where something stands on the drawing needs no exact numbers.
double place(const tsql::Value& value) {
  if (const auto* exact = std::get_if<tsql::Exact>(&value)) return tsql::toDouble(*exact);
  if (const auto* integer = std::get_if<std::int64_t>(&value)) return static_cast<double>(*integer);
  return 0;
}

int textWidth(std::string_view text) {
  return shownWidth(text) * letterSize / 100;
}

// In tenths, which is as fine as a page draws.
std::string number(double value) {
  const auto tenths = static_cast<long long>(std::llround(value * 10));
  return tsql::toText(tsql::Exact{.units = tenths, .scale = 1});
}

struct AxisUnit {
  int exponent;
  Caption name;
};
constexpr std::array<AxisUnit, 2> chineseUnits = {{{8, {"亿", ""}}, {4, {"万", ""}}}};
constexpr std::array<AxisUnit, 3> englishUnits = {
    {{9, {"", "billions"}}, {6, {"", "millions"}}, {3, {"", "thousands"}}}};

std::string_view unitName(int unit, Language language) {
  const auto name = [&](const auto& units) -> std::string_view {
    for (const AxisUnit& entry : units) {
      if (entry.exponent == unit) return entry.name.in(language);
    }
    return "";
  };
  return language == Language::chinese ? name(chineseUnits) : name(englishUnits);
}

std::string axisCaption(const Chart& chart, int unit, Language language) {
  const std::string_view name = unitName(unit, language);
  if (name.empty()) return chart.measure;
  return language == Language::chinese ? chart.measure + "（" + std::string(name) + "）"
                                       : chart.measure + " (" + std::string(name) + ")";
}

class Drawing {
 public:
  Drawing(std::ostream& out, const ReportDocument& document, const Chart& chart, const std::string& id)
      : out_(out), document_(document), chart_(chart), id_(id) {
    double least = 0, greatest = 0;
    for (const ChartPoint& point : chart.points) {
      least = std::min(least, place(point.value));
      greatest = std::max(greatest, place(point.value));
    }
    marks_ = axisMarks(least, greatest);
    unit_ = axisUnit(marks_, document.language);
  }

  void bars() {
    constexpr int barHeight = 15, rowHeight = 24, top = 8, axisHeight = 40;
    constexpr std::size_t labelCells = 22;
    std::vector<std::string> labels, figures;
    int labelWidth = 0, figureWidth = 0;
    for (const ChartPoint& point : chart_.points) {
      labels.push_back(shortened(point.label, labelCells));
      figures.push_back(figureText(document_, chart_, point.value));
      labelWidth = std::max(labelWidth, textWidth(labels.back()));
      figureWidth = std::max(figureWidth, textWidth(figures.back()));
    }
    // The figure of a bar to the left of zero stands left of it.
    const bool negative = marks_.first < 0;
    const double left = labelWidth + 12 + (negative ? figureWidth + 6 : 0);
    const double right = drawingWidth - figureWidth - 8;
    const auto x = [&](double value) {
      return left +
             (value - marks_.at(marks_.first)) / (marks_.at(marks_.last) - marks_.at(marks_.first)) * (right - left);
    };
    const double bottom = top + rowHeight * static_cast<double>(labels.size());
    open(static_cast<int>(bottom) + axisHeight);
    for (int mark = marks_.first; mark <= marks_.last; ++mark) {
      line(mark == 0 ? "zero" : "grid", x(marks_.at(mark)), top, x(marks_.at(mark)), bottom + 4);
      text("mark", "middle", x(marks_.at(mark)), bottom + 17, marks_.text(mark, unit_));
    }
    text("mark", "end", drawingWidth - 4, bottom + 34, axisCaption(chart_, unit_, document_.language));
    for (std::size_t i = 0; i < labels.size(); ++i) {
      const double at = top + rowHeight * static_cast<double>(i);
      const double value = place(chart_.points[i].value);
      const double begin = std::min(x(0), x(value)), width = std::abs(x(value) - x(0));
      text("label", "end", labelWidth + 4, at + 16, labels[i]);
      out_ << "<rect class=\"bar\" x=\"" << number(begin) << "\" y=\"" << number(at + 4) << "\" width=\""
           << number(std::max(width, 0.5)) << "\" height=\"" << barHeight << "\"><title>"
           << escaped(chart_.points[i].label) << ' ' << figures[i] << "</title></rect>\n";
      text("figure", value < 0 ? "end" : "start", value < 0 ? begin - 5 : begin + width + 5, at + 16, figures[i]);
    }
    out_ << "</svg>\n";
  }

  void line() {
    constexpr int height = 314, top = 44, bottom = 262;
    int markWidth = 0;
    for (int mark = marks_.first; mark <= marks_.last; ++mark)
      markWidth = std::max(markWidth, textWidth(marks_.text(mark, unit_)));
    const std::size_t count = chart_.points.size();
    const double left = markWidth + 34, right = drawingWidth - 40;
    const auto x = [&](std::size_t point) {
      return count == 1 ? (left + right) / 2
                        : left + (right - left) * static_cast<double>(point) / static_cast<double>(count - 1);
    };
    const auto y = [&](double value) {
      return bottom -
             (value - marks_.at(marks_.first)) / (marks_.at(marks_.last) - marks_.at(marks_.first)) * (bottom - top);
    };
    open(height);
    text("mark", "start", 4, 14, axisCaption(chart_, unit_, document_.language));
    for (int mark = marks_.first; mark <= marks_.last; ++mark) {
      const double at = y(marks_.at(mark));
      line(mark == 0 ? "zero" : "grid", markWidth + 12, at, drawingWidth - 4, at);
      text("mark", "end", markWidth + 6, at + 4, marks_.text(mark, unit_));
    }
    monthLabels(x, bottom);
    out_ << "<polyline class=\"line\" points=\"";
    for (std::size_t i = 0; i < count; ++i)
      out_ << (i > 0 ? " " : "") << number(x(i)) << ',' << number(y(place(chart_.points[i].value)));
    out_ << "\"/>\n";
    for (std::size_t i = 0; i < count; ++i) {
      out_ << "<circle class=\"point\" cx=\"" << number(x(i)) << "\" cy=\"" << number(y(place(chart_.points[i].value)))
           << "\" r=\"3.5\"><title>" << escaped(chart_.points[i].label) << ' '
           << figureText(document_, chart_, chart_.points[i].value) << "</title></circle>\n";
    }
    lineFigures(x, y, markWidth + 12, bottom);
    text("mark", "end", drawingWidth - 4, height - 8, chart_.labels);
    out_ << "</svg>\n";
  }

 private:
  // As many labels as have room.
  template <typename X>
  void monthLabels(const X& x, double bottom) {
    double free = 0;
    for (std::size_t i = 0; i < chart_.points.size(); ++i) {
      const std::string& label = chart_.points[i].label;
      const double half = textWidth(label) / 2.0;
      if (x(i) - half < free) continue;
      text("mark", "middle", x(i), bottom + 20, label);
      free = x(i) + half + 6;
    }
  }

  // The figures of the greatest, the least, the last and the first point, as far as they do not lie over each other.
  template <typename X, typename Y>
  void lineFigures(const X& x, const Y& y, double left, double bottom) {
    const auto& points = chart_.points;
    const auto value = [](const ChartPoint& point) { return place(point.value); };
    const auto [least, greatest] = std::ranges::minmax_element(points, {}, value);
    struct Taken {
      double begin, end, height;
    };
    std::vector<Taken> taken;
    for (const std::size_t i : {points.size() - 1, static_cast<std::size_t>(greatest - points.begin()),
                                static_cast<std::size_t>(least - points.begin()), std::size_t{0}}) {
      const std::string figure = figureText(document_, chart_, points[i].value);
      const double half = textWidth(figure) / 2.0;
      const double middle = std::clamp(x(i), left + half, drawingWidth - half - 4);
      constexpr double drop = 18;  // below a point; not below the last grid line, where the months stand
      const double height = y(value(points[i]));
      const bool below =
          i == static_cast<std::size_t>(least - points.begin()) && least != greatest && height + drop < bottom;
      const double at = height + (below ? drop : -9);
      const bool covered = std::ranges::any_of(taken, [&](const Taken& other) {
        return middle - half < other.end && middle + half > other.begin && std::abs(at - other.height) < letterSize + 2;
      });
      if (covered) continue;
      taken.push_back({middle - half - 4, middle + half + 4, at});
      text("figure", "middle", middle, at, figure);
    }
  }

  void open(int height) {
    out_ << "<svg role=\"img\" aria-labelledby=\"" << id_ << "t " << id_ << "d\" viewBox=\"0 0 " << drawingWidth << ' '
         << height << "\" width=\"" << drawingWidth << "\" height=\"" << height << "\">\n<title id=\"" << id_ << "t\">"
         << escaped(chart_.title) << "</title>\n<desc id=\"" << id_ << "d\">";
    const std::string_view between = document_.language == Language::chinese ? "；" : "; ";
    std::string_view separator;
    for (const ChartPoint& point : chart_.points) {
      out_ << separator << escaped(point.label) << ' ' << figureText(document_, chart_, point.value);
      separator = between;
    }
    out_ << "</desc>\n";
  }

  void text(std::string_view kind, std::string_view anchor, double x, double y, std::string_view words) {
    out_ << "<text class=\"" << kind << "\" text-anchor=\"" << anchor << "\" x=\"" << number(x) << "\" y=\""
         << number(y) << "\">" << escaped(words) << "</text>\n";
  }

  void line(std::string_view kind, double x1, double y1, double x2, double y2) {
    out_ << "<line class=\"" << kind << "\" x1=\"" << number(x1) << "\" y1=\"" << number(y1) << "\" x2=\"" << number(x2)
         << "\" y2=\"" << number(y2) << "\"/>\n";
  }

  std::ostream& out_;
  const ReportDocument& document_;
  const Chart& chart_;
  const std::string& id_;
  AxisMarks marks_;
  int unit_ = 0;
};

}  // namespace

double AxisMarks::at(int mark) const {
  return static_cast<double>(mark) * step * std::pow(10.0, exponent);
}

std::string AxisMarks::text(int mark, int unit) const {
  tsql::Exact value{.units = tsql::Int128{mark} * step, .scale = 0};
  const int shift = exponent - unit;
  if (shift >= 0) {
    value.units = value.units * tsql::powerOfTen(shift);
  } else {
    value.scale = -shift;
  }
  return mark == 0 ? "0" : groupedNumber(tsql::toText(value), std::max(-shift, 0));
}

AxisMarks axisMarks(double least, double greatest) {
  constexpr int wanted = 5;
  least = std::min(least, 0.0);
  greatest = std::max(greatest, 0.0);
  const double range = greatest > least ? greatest - least : 1;
  AxisMarks marks;
  marks.exponent = static_cast<int>(std::floor(std::log10(range / wanted)));
  for (const auto& [step, exponent] : std::array<std::array<int, 2>, 4>{{{1, 0}, {2, 0}, {5, 0}, {1, 1}}}) {
    AxisMarks tried = marks;
    tried.step = step;
    tried.exponent += exponent;
    tried.last = static_cast<int>(std::ceil(greatest / tried.at(1) - 1e-9));
    tried.first = static_cast<int>(std::floor(least / tried.at(1) + 1e-9));
    if (tried.last == tried.first) tried.last = 1;
    if (tried.last - tried.first <= wanted + 1) return tried;
  }
  return marks;  // not reached: ten times the power below range / wanted covers the range in five steps
}

int axisUnit(const AxisMarks& marks, Language language) {
  const double reach = std::max(std::abs(marks.at(marks.first)), std::abs(marks.at(marks.last)));
  const auto find = [reach](const auto& units) {
    for (const AxisUnit& unit : units) {
      if (reach >= std::pow(10.0, unit.exponent + 1)) return unit.exponent;
    }
    return 0;
  };
  return language == Language::chinese ? find(chineseUnits) : find(englishUnits);
}

std::string figureText(const ReportDocument& document, const Chart& chart, const tsql::Value& value) {
  return cellText(document, {.name = "", .chinese = "", .english = "", .role = chart.role}, value);
}

void writeSvg(std::ostream& out, const ReportDocument& document, const Chart& chart, const std::string& id) {
  if (chart.points.empty()) return;
  Drawing drawing(out, document, chart, id);
  if (chart.kind == Chart::Kind::bars) {
    drawing.bars();
  } else {
    drawing.line();
  }
}

}  // namespace quillon::workbench
