#include "workbench/cli/report_comparison.h"

#include <algorithm>
#include <sstream>
#include <string>

#include "frame/text.h"
#include "workbench/messages/report.h"
#include "workbench/presentation/value_output.h"
#include "workbench/tsql/values/agreement.h"

namespace quillon::workbench {

namespace {

using tsql::Agreement;

class ResultComparison {
 public:
  ResultComparison(tsql::Cursor& first, tsql::Cursor& second, const ComparisonOptions& options, std::ostream& out)
      : first_(first), second_(second), options_(options), out_(out) {}

  bool run() {
    if (!findPartners()) {
      say(messages::firstHasColumns(columnsText(first_.columns())));
      say(messages::secondHasColumns(columnsText(second_.columns())));
      say(messages::differentColumns());
      return false;
    }
    tellTypes();
    for (;;) {
      const bool one = first_.next(), two = second_.next();
      if (!one && !two) break;
      firstRows_ += one ? 1 : 0;
      secondRows_ += two ? 1 : 0;
      if (one && two) {
        compareRows();
      } else if (++different_ <= options_.shown) {
        say(one ? messages::rowOfFirst(rowNumber(), rowText(first_))
                : messages::rowOfSecond(rowNumber(), rowText(second_)));
      }
    }
    sumUp();
    return different_ == 0;
  }

 private:
  struct Partner {
    std::size_t place;  // in the second result
    bool quotient;
  };

  void say(const Message& line) { out_ << line.in(options_.language) << '\n'; }

  std::string rowNumber() const { return groupedCount(std::max(firstRows_, secondRows_)); }

  static std::string columnsText(std::span<const tsql::Column> columns) {
    std::ostringstream out;
    writeJsonColumns(out, columns);
    return out.str();
  }

  // False when a column has no partner.
  bool findPartners() {
    const std::span<const tsql::Column> one = first_.columns(), two = second_.columns();
    if (one.size() != two.size()) return false;
    if (options_.exact) {
      const auto same = [](const tsql::Column& a, const tsql::Column& b) {
        return a.name == b.name && a.type == b.type;
      };
      if (!std::ranges::equal(one, two, same)) return false;
    }
    for (const tsql::Column& column : one) {
      const auto isIt = [&column](const std::string& name) { return equalIgnoringCase(name, column.name); };
      const auto place = std::ranges::find_if(two, isIt, &tsql::Column::name);
      if (place == two.end()) return false;
      partners_.push_back({.place = static_cast<std::size_t>(place - two.begin()),
                           .quotient = std::ranges::any_of(options_.quotients, isIt)});
    }
    return true;
  }

  void tellTypes() {
    for (std::size_t i = 0; i < partners_.size(); ++i) {
      const tsql::Column &one = first_.columns()[i], &two = second_.columns()[partners_[i].place];
      if (one.type != two.type) say(messages::otherTypes(one.name, one.type.name(), two.type.name()));
    }
  }

  Agreement agreementAt(std::size_t i) const {
    const tsql::Value &one = first_.value(i), &two = second_.value(partners_[i].place);
    if (options_.exact) return one == two ? Agreement::same : Agreement::different;
    return tsql::agreementOf(one, two, partners_[i].quotient);
  }

  void compareRows() {
    Agreement row = Agreement::same;
    for (std::size_t i = 0; i < partners_.size(); ++i)
      row = std::max(row, agreementAt(i));
    if (row == Agreement::same) return;
    const bool isDifferent = row == Agreement::different;
    if (++(isDifferent ? different_ : lastDigits_) > options_.shown) return;
    say(isDifferent ? messages::rowOfBoth(rowNumber(), changesText())
                    : messages::rowButForDigits(rowNumber(), changesText()));
  }

  // The columns in which the rows differ, with both values.
  std::string changesText() const {
    std::ostringstream out;
    const char* separator = "";
    for (std::size_t i = 0; i < partners_.size(); ++i) {
      const Agreement agreement = agreementAt(i);
      if (agreement == Agreement::same) continue;
      out << separator << first_.columns()[i].name << ' ';
      writeJsonValue(out, first_.value(i));
      out << (agreement == Agreement::different ? " | " : " ≈ ");
      writeJsonValue(out, second_.value(partners_[i].place));
      separator = ", ";
    }
    return out.str();
  }

  static std::string rowText(const tsql::Cursor& row) {
    std::ostringstream out;
    const char* separator = "";
    for (std::size_t i = 0; i < row.columns().size(); ++i) {
      if (tsql::isNull(row.value(i))) continue;
      out << separator << row.columns()[i].name << ' ';
      writeJsonValue(out, row.value(i));
      separator = ", ";
    }
    return out.str();
  }

  void sumUp() {
    if (different_ > options_.shown) say(messages::moreRows(groupedCount(different_ - options_.shown)));
    if (lastDigits_ > options_.shown) say(messages::moreRowsButForDigits(groupedCount(lastDigits_ - options_.shown)));
    if (lastDigits_ > 0) say(messages::equalButForDigits(groupedCount(lastDigits_)));
    if (different_ == 0) {
      say(messages::equalRows(groupedCount(firstRows_), partners_.size()));
    } else {
      say(messages::differentRows(groupedCount(different_), groupedCount(firstRows_), groupedCount(secondRows_)));
    }
  }

  tsql::Cursor& first_;
  tsql::Cursor& second_;
  const ComparisonOptions& options_;
  std::ostream& out_;
  std::vector<Partner> partners_;  // of the first result's columns
  std::int64_t firstRows_ = 0, secondRows_ = 0, different_ = 0, lastDigits_ = 0;
};

}  // namespace

bool compareResults(tsql::Cursor& first, tsql::Cursor& second, const ComparisonOptions& options, std::ostream& out) {
  return ResultComparison(first, second, options, out).run();
}

}  // namespace quillon::workbench
