#include "tests/workbench/presentation/xlsx_evaluation.h"

#include <cmath>
#include <stdexcept>
#include <string_view>

namespace quillon::workbench::test {

namespace {

struct Area {
  const XlsxSheet* sheet;
  std::string column;
  int first, last;
};

// Reads one formula from left to right.
class Reader {
 public:
  Reader(std::string_view formula, const std::vector<XlsxSheet>& sheets, std::size_t home)
      : rest_(formula), sheets_(sheets), home_(home) {}

  double value() {
    double sum = term();
    while (!rest_.empty()) {
      if (take("+")) {
        sum += term();
      } else if (take("-")) {
        sum -= term();
      } else {
        throw std::runtime_error("unknown formula at " + std::string(rest_));
      }
    }
    return sum;
  }

 private:
  bool take(std::string_view text) {
    if (!rest_.starts_with(text)) return false;
    rest_.remove_prefix(text.size());
    return true;
  }
  void need(std::string_view text) {
    if (!take(text)) throw std::runtime_error("no " + std::string(text) + " at " + std::string(rest_));
  }
  std::string upTo(std::string_view ends) {
    std::string taken(rest_.substr(0, rest_.find_first_of(ends)));
    rest_.remove_prefix(taken.size());
    return taken;
  }

  Area area() {
    const XlsxSheet* sheet = &sheets_.at(home_);
    if (take("'")) {
      const std::string name = upTo("'");
      need("'!");
      sheet = nullptr;
      for (const XlsxSheet& other : sheets_) {
        if (other.name() == name) sheet = &other;
      }
      if (sheet == nullptr) throw std::runtime_error("no sheet " + name);
    }
    const std::string column = upTo("0123456789");
    const int first = std::stoi(upTo(":,)+-/"));
    int last = first;
    if (take(":")) {
      if (upTo("0123456789") != column) throw std::runtime_error("an area of several columns");
      last = std::stoi(upTo(",)+-"));
    }
    return {sheet, column, first, last};
  }

  double term() {
    if (take("SUBTOTAL(9,")) return subtotal();
    if (take("SUMIFS(")) return conditionalSum();
    if (take("SUM(")) return sumOfRow();
    if (take("ROUND(")) return roundedQuotient();
    const Area cell = area();
    const XlsxCell found = cell.sheet->cell(cell.column + std::to_string(cell.first));
    if (!found.text.empty()) throw std::runtime_error("a text is added");
    return found.number.value_or(0);
  }

  double subtotal() {
    double sum = 0;
    do {
      const Area cells = area();
      for (int row = cells.first; row <= cells.last; ++row) {
        const XlsxCell cell = cells.sheet->cell(cells.column + std::to_string(row));
        if (!cell.formula.starts_with("SUBTOTAL")) sum += cell.number.value_or(0);
      }
    } while (take(","));
    need(")");
    return sum;
  }

  // Of cells of one row: "C7,E7", "C7:F7".
  double sumOfRow() {
    double sum = 0;
    do {
      const std::size_t first = columnNumber(upTo("0123456789"));
      const std::string row = upTo(":,)");
      std::size_t last = first;
      if (take(":")) {
        last = columnNumber(upTo("0123456789"));
        if (upTo(",)") != row) throw std::runtime_error("an area of several rows");
      }
      for (const auto& [place, cell] : sheets_.at(home_).cells()) {
        const std::size_t digits = place.find_first_of("0123456789");
        const std::size_t column = columnNumber(place.substr(0, digits));
        if (place.substr(digits) != row || column < first || column > last) continue;
        if (!cell.text.empty()) throw std::runtime_error("a text is added");
        sum += cell.number.value_or(0);
      }
    } while (take(","));
    need(")");
    return sum;
  }

  // Half away from zero.
  double roundedQuotient() {
    const double dividend = term();
    need("/");
    const double divisor = term();
    need(",");
    const double power = std::pow(10.0, std::stoi(upTo(")")));
    need(")");
    return std::round(dividend / divisor * power) / power;
  }

  static std::size_t columnNumber(const std::string& letters) {
    std::size_t number = 0;
    for (const char letter : letters)
      number = number * 26 + static_cast<std::size_t>(letter - 'A') + 1;
    return number;
  }

  double conditionalSum() {
    const Area figures = area();
    need(",");
    std::vector<std::pair<Area, std::string>> conditions;
    do {
      const Area cells = area();
      need(",\"");
      conditions.emplace_back(cells, upTo("\""));
      need("\"");
    } while (take(","));
    need(")");
    double sum = 0;
    for (int row = figures.first; row <= figures.last; ++row) {
      bool meets = true;
      for (const auto& [cells, condition] : conditions) {
        const XlsxCell asked = cells.sheet->cell(cells.column + std::to_string(cells.first + row - figures.first));
        const bool holds = asked.number.has_value() || !asked.text.empty();
        meets = meets && (condition == "<>" ? holds : asked.text == condition);
      }
      if (meets) sum += figures.sheet->cell(figures.column + std::to_string(row)).number.value_or(0);
    }
    return sum;
  }

  std::string_view rest_;
  const std::vector<XlsxSheet>& sheets_;
  std::size_t home_;
};

}  // namespace

XlsxEvaluation::XlsxEvaluation(const std::filesystem::path& file) {
  sheets_.emplace_back(file);
  for (std::size_t number = 2; number <= sheets_.front().names().size(); ++number)
    sheets_.emplace_back(file, number);
}

double XlsxEvaluation::valueOf(const std::string& formula, std::size_t home) const {
  return Reader(formula, sheets_, home).value();
}

std::vector<std::string> XlsxEvaluation::disagreements() const {
  std::vector<std::string> result;
  for (std::size_t home = 0; home < sheets_.size(); ++home) {
    for (const auto& [place, cell] : sheets_[home].cells()) {
      if (cell.formula.empty()) continue;
      const double value = valueOf(cell.formula, home);
      if (std::abs(value - cell.number.value()) < 0.0005) continue;
      result.push_back(sheets_[home].name() + "!" + place + " =" + cell.formula + " is " + std::to_string(value) +
                       ", not " + std::to_string(cell.number.value()));
    }
  }
  return result;
}

std::size_t XlsxEvaluation::formulaCount() const {
  std::size_t count = 0;
  for (const XlsxSheet& sheet : sheets_) {
    for (const auto& [place, cell] : sheet.cells())
      count += cell.formula.empty() ? 0 : 1;
  }
  return count;
}

}  // namespace quillon::workbench::test
