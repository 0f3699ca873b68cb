#include "workbench/runs/report_layouts.h"

#include <algorithm>
#include <utility>
#include <vector>

#include "workbench/messages/check.h"
#include "workbench/messages/pivot.h"
#include "workbench/messages/report.h"
#include "workbench/platform/embedded_platform.h"
#include "workbench/platform/filter_input.h"
#include "workbench/platform/lookup.h"
#include "workbench/platform/user_error.h"
#include "workbench/presentation/arranged_view.h"
#include "workbench/presentation/columnar_layout.h"
#include "workbench/presentation/ledger_layout.h"
#include "workbench/presentation/lines_layout.h"
#include "workbench/presentation/report_charts.h"
#include "workbench/presentation/summary_layout.h"
#include "workbench/presentation/tree_layout.h"
#include "workbench/presentation/vouchers_layout.h"
#include "workbench/runs/run_fingerprint.h"
#include "workbench/tsql/values/datetime.h"
#include "workbench/tsql/values/text.h"

namespace quillon::workbench {

namespace {

constexpr Caption chosenCaption{"只显示", "Shown only"};
constexpr Caption comparedCaption{"对比", "Compared with"};
constexpr Caption accountCaption{"账套", "Account"};

std::string entered(FilterObject& filter, std::string_view key) {
  const FilterEntry* entry = filter.find(key);
  return entry == nullptr ? "" : entry->value;
}

// "07 线边库"; the code alone when the account does not have it.
std::string withName(Session& session, const Lookup& lookup, const std::string& code, Language language) {
  if (!lookup.named) return code;
  try {
    const LookupPage found = findEntries(lookup, {.search = code, .limit = 1, .language = language}, session);
    return found.rows.empty() || found.rows.front().code != code ? code : entryText(found.rows.front());
  } catch (const AutomationError&) {
    return code;  // an account of another make may keep its codes elsewhere
  }
}

// What was entered, each code with its name behind it.
std::string describedWithNames(const FilterEntry& entry, Session& session, Language language) {
  if (entry.item.lookup == nullptr || !entry.item.choices.empty() || entry.item.range || !entry.sql.empty())
    return describeEntry(entry, language);
  std::string text;
  std::string_view rest = entry.value;
  for (bool more = !rest.empty(); more;) {
    const std::size_t tab = rest.find('\t');
    more = tab != std::string_view::npos;
    text +=
        (text.empty() ? "" : ", ") + withName(session, *entry.item.lookup, std::string(rest.substr(0, tab)), language);
    if (more) rest.remove_prefix(tab + 1);
  }
  return text;
}

// Year, mode and, by class, the grade, or the ledger's breakdown; then whatever differs from its default.
std::vector<std::pair<std::string, std::string>> conditions(const MadeReport& report, Language language) {
  FilterObject& filter = report.filter();
  const bool byClass = entered(filter, "cModal") == "0";
  std::vector<std::pair<std::string, std::string>> lines;
  for (const auto& entry : filter.entries()) {
    const std::string& key = entry->item.key;
    const bool always = key == "iYear" || key == "cModal" || key == "cCaType" || (key == "iGrade" && byClass);
    const bool upperBound = !entry->value2.empty() && entry->value2 != entry->value;
    const bool changed = entry->value != entry->item.defaultValue || upperBound || !entry->sql.empty();
    if (!always && !changed) continue;
    std::string text = describedWithNames(*entry, *report.account().session, language);
    if (!text.empty()) lines.emplace_back(entry->item.caption(language), std::move(text));
  }
  return lines;
}

// The account's option `name` of system AA, a number of decimals.
int decimals(Session& session, std::string_view name, int otherwise) {
  const std::string text = AccountPublicComponent().accountInformation("AA", name, session);
  return std::clamp(tsql::text::leadingNumber(text).value_or(otherwise), 0, 6);
}

// The days that the filter names, else its year.
std::string periodOf(FilterObject& filter) {
  const FilterEntry* days = filter.find("dKeepDate");
  if (days != nullptr && (!days->value.empty() || !days->value2.empty())) return days->value + " .. " + days->value2;
  return entered(filter, "iYear");
}

std::string today() {
  constexpr std::size_t dateLength = 10;
  return tsql::toText(tsql::currentDateTime()).substr(0, dateLength);
}

// What the columns of `view` may be called: with the heading that they share in front.
std::vector<ReportColumn> namesIn(const View& view) {
  std::vector<ReportColumn> names;
  for (const ViewColumn& column : view.columns) {
    names.push_back(column.column);
    if (!column.groupChinese.empty()) {
      names.back().chinese = column.groupChinese + column.column.chinese;
      names.back().english = column.groupEnglish + " " + column.column.english;
    }
  }
  return names;
}

bool isLedger(Layout layout) {
  return layout == Layout::ledger || layout == Layout::columnar;
}

LedgerRequest ledgerRequest(const MadeReport& report) {
  FilterObject& filter = report.filter();
  const FilterEntry* days = filter.find("dKeepDate");
  const int year = tsql::text::leadingNumber(entered(filter, "iYear")).value_or(0);
  return {.beginning = ledgerBeginning(year, days == nullptr ? "" : days->value, *report.account().login,
                                       *report.account().session),
          .breakdown = breakdownOf(entered(filter, "cCaType"))};
}

void cutToPage(ReportSection& section, const LayoutOptions& options) {
  if (section.limit || !options.rowsOfPage) return;
  // The rows of the table have nothing that belongs to them.
  const std::int64_t lines =
      section.layout == Layout::lines ? *options.rowsOfPage : linesWithin(section.view, *options.rowsOfPage);
  if (lines < section.view.lineCount) section.limit = lines;
}

class Layouts {
 public:
  Layouts(const MadeReport& report, Language language, const LayoutOptions& options, const ReportDocument& heading,
          LayoutOutput output)
      : table_(report.table()),
        request_{.report = report.report(),
                 .table = table_,
                 .mode = entered(report.filter(), "cModal"),
                 .language = language,
                 .allColumns = options.allColumns,
                 .ledgerLines = options.ledgerLines},
        options_(options),
        heading_(heading),
        forPrograms_(output == LayoutOutput::fields) {
    if (report.report().isLedger) ledger_ = ledgerRequest(report);
    ledger_.parts = options.details;
  }

  // What a page shows beside the section `asked`, which has all columns and rows that the figures are taken from.
  std::vector<Chart> charts(const ReportSection& asked) {
    const ArrangementText& text = options_.arrangement;
    if (!text.columns.empty() || !text.groupBy.empty()) return {};
    if (asked.layout == Layout::summary) return structureCharts(asked.view, heading_.language);
    if (asked.layout == Layout::ledger && text.empty()) return ledgerCharts(asked.view, table_, heading_.language);
    return {};
  }

  // `asked` is the section that the reader arranges; in what stands beside it the same rows count.
  ReportSection section(Layout layout, bool asked) {
    ReportSection section = whole(layout, asked);
    cutToPage(section, options_);
    return section;
  }

 private:
  ReportSection whole(Layout layout, bool asked) {
    ReportSection section{.layout = layout, .view = {}, .limit = options_.limit};
    request_.arrangement = {};
    if (!options_.arranged && options_.arrangement.empty()) {
      section.view = view(layout);
      addOffered(section);
      return section;
    }
    const std::vector<ReportColumn> known = columnsPresent(request_);
    if (!asked) {
      request_.arrangement = arrangement({.where = true}, known);
    } else if (layout == Layout::lines) {
      request_.arrangement = arrangement(all, known);
    } else if (layout == Layout::vouchers) {
      request_.arrangement = arrangement({.sort = true, .groupBy = true, .where = true}, vouchersColumns(request_));
      request_.arrangement.columns = arrangement({.columns = true}, vouchersShownColumns(request_)).columns;
    } else if (isLedger(layout)) {
      // The balances run over all lines: what is shown of them is chosen afterwards.
      section.view = view(layout);
      section.offered = namesIn(section.view);
      const Arrangement own = arrangement(all, section.offered);
      section.grouped = !own.groupBy.empty();
      section.view = arranged(std::move(section.view), own, heading_.language);
      return section;
    } else {
      // Conditions and groups are of the table, columns and order of what the layout makes of it.
      request_.arrangement = arrangement({.groupBy = true, .where = true}, known);
      section.offered = namesIn(view(layout));
      const Arrangement own = arrangement({.columns = true, .sort = true}, section.offered);
      request_.arrangement.columns = own.columns;
      request_.arrangement.sort = own.sort;
    }
    section.grouped = !request_.arrangement.groupBy.empty();
    section.view = view(layout);
    addOffered(section);
    return section;
  }

  // --- Pivots ---

 public:
  Pivot pivot(const PivotOptions& options) {
    request_.arrangement = arrangement({.where = true}, columnsPresent(request_));
    return {request_, options_.pivot.value(), options};
  }
  PivotChoices pivotChoices() const { return workbench::pivotChoices(request_); }

 private:
  static constexpr ArrangementParts all{.columns = true, .sort = true, .groupBy = true, .where = true};

  void addOffered(ReportSection& section) {
    if (!options_.offers || !section.offered.empty()) return;
    if (section.layout != Layout::lines && section.layout != Layout::vouchers) {
      section.offered = namesIn(section.view);
      return;
    }
    section.offered = table_.filledColumns(request_.report.columns);
    if (section.layout == Layout::vouchers) section.offered.push_back(vouchersColumns(request_).back());
  }

  // What was asked for, as names of `known`.
  Arrangement arrangement(ArrangementParts parts, std::span<const ReportColumn> known) const {
    if (options_.arranged) return resolved(*options_.arranged, parts, known);
    const ArrangementText& text = options_.arrangement;
    return parseArrangement({.columns = parts.columns ? text.columns : std::vector<std::string>(),
                             .sort = parts.sort ? text.sort : std::vector<std::string>(),
                             .groupBy = parts.groupBy ? text.groupBy : std::vector<std::string>(),
                             .where = parts.where ? text.where : std::vector<std::string>()},
                            known);
  }

  View view(Layout layout) {
    switch (layout) {
      case Layout::summary:
        return summaryView(request_);
      case Layout::tree:
        return treeView(request_);
      case Layout::ledger:
        return ledgerView(request_, heading_, ledger_);
      case Layout::columnar:
        return columnarView(request_, heading_, ledger_);
      case Layout::vouchers:
        return vouchersView(request_, heading_, forPrograms_ ? VouchersForm::keyedFields : VouchersForm::list);
      case Layout::lines:
      case Layout::pivot:
        break;
    }
    return linesView(request_);
  }

  ResultTable table_;
  LayoutRequest request_;
  LedgerRequest ledger_;
  const LayoutOptions& options_;
  const ReportDocument& heading_;
  bool forPrograms_;
};

}  // namespace

void checkLayout(const Report& report, const LayoutOptions& options) {
  if (options.pivot) {
    // What a mode does not have, or how deep classes lie, shows when the report was made.
    constexpr std::string_view modeWithAll = "1";
    constexpr int anyGrade = 9;
    planPivot(report, modeWithAll, anyGrade, *options.pivot);
  }
  if (!options.layout || std::ranges::find(report.layouts, *options.layout) != report.layouts.end()) return;
  std::vector<std::string> names;
  for (const Layout layout : report.layouts)
    names.emplace_back(layoutName(layout));
  throw UserError(messages::noSuchLayout(report.registration.name, layoutName(*options.layout), listOf(names)));
}

ReportDocument headingOf(const MadeReport& report, Language language, const std::string& company) {
  ReportDocument heading;
  heading.language = language;
  heading.report = report.report().registration.name;
  heading.title = report.report().registration.title(language);
  heading.conditions = conditions(report, language);
  Session& session = *report.account().session;
  heading.quantityDecimals = decimals(session, "iStrsQuanDecDgt", heading.quantityDecimals);
  heading.unitCostDecimals = decimals(session, "iStrsPriDecDgt", heading.unitCostDecimals);
  heading.company = company.empty()
                        ? std::string(accountCaption.in(language)) + " " + report.account().login->accountCode()
                        : company;
  heading.period = periodOf(report.filter());
  heading.printed = today();
  heading.rowCount = report.table().rowCount();
  return heading;
}

Pivot pivotOf(const MadeReport& report, Language language, const LayoutOptions& options, const PivotOptions& pivot) {
  const ReportDocument heading;
  return Layouts(report, language, options, heading, LayoutOutput::table).pivot(pivot);
}

Comparison comparisonOf(const MadeReport& report, Language language, const LayoutOptions& options,
                        const PivotOptions& pivot) {
  const MadeReport& other = *options.comparedWith;
  if (&other.report() != &report.report()) throw UserError(messages::comparedReports());
  checkComparison(*options.pivot);
  // The order is that of the comparison, whose columns it names.
  LayoutOptions unsorted = options;
  unsorted.pivot->sort.clear();
  ComparedNames names = namesByConditions(conditions(report, language), conditions(other, language), language);
  if (names.one.empty() && names.other.empty()) {
    const std::string one = fingerprintOfAccount(report.account()).accountName;
    const std::string second = fingerprintOfAccount(other.account()).accountName;
    if (one != second) names = {.one = one, .other = second};
  }
  return {pivotOf(report, language, unsorted, pivot),
          pivotOf(other, language, unsorted, pivot),
          names,
          options.pivot->sort,
          language,
          pivot.form};
}

PivotChoices pivotChoicesOf(const MadeReport& report, Language language) {
  const ReportDocument heading;
  return Layouts(report, language, {}, heading, LayoutOutput::table).pivotChoices();
}

LaidOutReport laidOut(const MadeReport& report, Language language, const LayoutOptions& options, LayoutOutput output) {
  LaidOutReport laidOut;
  laidOut.heading = headingOf(report, language, options.company);
  for (const std::string& condition : options.arrangement.where)
    laidOut.heading.conditions.emplace_back(laidOut.heading.text(chosenCaption), condition);
  for (const std::string& warning : options.warnings)
    laidOut.heading.conditions.emplace_back(messages::checkCaption.in(language), warning);
  // Of nothing there is nothing to show, unless it is held against something.
  const bool otherHasRows = options.comparedWith != nullptr && options.comparedWith->table().rowCount() > 0;
  if (laidOut.heading.rowCount == 0 && !otherHasRows) return laidOut;
  if (options.pivot) {
    const PivotOptions pivotOptions{.form = output == LayoutOutput::fields ? PivotForm::apart : PivotForm::joined,
                                    .unitCostDecimals = laidOut.heading.unitCostDecimals};
    View view;
    if (options.comparedWith != nullptr) {
      const Comparison comparison = comparisonOf(report, language, options, pivotOptions);
      laidOut.heading.conditions.emplace_back(laidOut.heading.text(comparedCaption), comparison.names().other);
      for (const auto& line : comparison.heading())
        laidOut.heading.conditions.push_back(line);
      view = comparison.view();
    } else {
      const Pivot pivot = pivotOf(report, language, options, pivotOptions);
      for (const auto& line : pivot.heading())
        laidOut.heading.conditions.push_back(line);
      view = pivot.view();
    }
    laidOut.sections.push_back({.layout = Layout::pivot,
                                .view = std::move(view),
                                .grouped = options.pivot->rows.size() > 1,
                                .limit = options.limit});
    cutToPage(laidOut.sections.back(), options);
    return laidOut;
  }
  Layouts layouts(report, language, options, laidOut.heading, output);
  const std::vector<Layout>& offered = report.report().layouts;
  const Layout asked = options.layout.value_or(offered.front());
  const auto addBeside = [&](Layout layout) {
    if (output == LayoutOutput::workbook && asked != layout && std::ranges::find(offered, layout) != offered.end())
      laidOut.sections.push_back(layouts.section(layout, false));
  };
  addBeside(Layout::summary);
  laidOut.sections.push_back(layouts.section(asked, true));
  if (output == LayoutOutput::page) laidOut.charts = layouts.charts(laidOut.sections.back());
  addBeside(Layout::lines);
  return laidOut;
}

}  // namespace quillon::workbench
