#include "workbench/presentation/html_style.h"

#include <algorithm>
#include <sstream>

#include "workbench/presentation/html_text.h"
#include "workbench/tsql/values/exact.h"

namespace quillon::workbench {

namespace {

// Cells have half a letter's size left and right of their text; shared with the plan's widths.
constexpr std::string_view pageSheet = R"(
:root { color-scheme: light; --paper: #fff; --ink: #1b1f24; --soft: #535c67; --rule: #c8ced6; --head: #e6ebf1;
  --band: #f6f8fa; --sum: #eef2f6; --edge: #76818e; --bar: #2c69ad; --wrong: #a1260d; }
@media screen and (prefers-color-scheme: dark) {
  :root { color-scheme: dark; --paper: #14171b; --ink: #e4e8ec; --soft: #a9b2bc; --rule: #3a424c; --head: #262e38;
    --band: #191d22; --sum: #20272f; --edge: #8b96a3; --bar: #76aee9; --wrong: #ff9d85; }
}
body { font: 13px/1.45 "Noto Sans CJK SC", "Source Han Sans SC", "Microsoft YaHei", "PingFang SC", "DengXian",
  "WenQuanYi Micro Hei", "Segoe UI", sans-serif; color: var(--ink); background: var(--paper); margin: 1.5rem; }
h1 { font-size: 1.5rem; margin: 0 0 .5rem; }
h2 { font-size: 1.15rem; margin: 1.8rem 0 .3rem; }
dl { display: grid; grid-template-columns: max-content auto; gap: .1rem 1rem; margin: 0; }
dt { color: var(--soft); }
dd { margin: 0; }
footer { margin-top: 1.8rem; border-top: 1px solid var(--rule); }
footer .note { margin: .3rem 0 0; overflow-wrap: anywhere; }
.note { color: var(--soft); margin: .3rem 0 .6rem; }
table { border-collapse: separate; border-spacing: 0; font-variant-numeric: tabular-nums; }
th, td { box-sizing: content-box; padding: .2em .5em; border: solid var(--rule); border-width: 0 1px 1px 0;
  text-align: left; font-weight: inherit; white-space: nowrap; background: inherit; vertical-align: top; }
thead tr { background: var(--head); height: 1.9em; }
thead th { text-align: center; vertical-align: bottom; font-weight: 700; }
tbody tr { background: var(--paper); }
.n { text-align: right; }
.i1 { padding-left: 1.8em; }
.i2 { padding-left: 3.1em; }
.i3 { padding-left: 4.4em; }
.i4 { padding-left: 5.7em; }
.i5 { padding-left: 7em; }
.i6 { padding-left: 8.3em; }
.rows :where(tbody tr:nth-child(even)) { background: var(--band); }
.rows tr.d { color: var(--soft); }
.rows tr.o { font-weight: 700; background: var(--sum); }
.rows tr.g { background: var(--sum); }
.rows tr:is(.c, .t) { background: var(--head); }
.rows tr:is(.s, .y, .b) > * { border-bottom-color: var(--edge); }
.rows tr:is(.c, .t) > * { border-top: 2px solid var(--edge); }
.rows tr.t + tr.t > * { border-top-width: 0; }
.rows tr.x { color: var(--wrong); font-style: italic; }
caption { text-align: left; color: var(--soft); }
.rows:not(.part) caption { position: absolute; width: 1px; height: 1px; overflow: hidden; clip-path: inset(50%); }
.scroll { position: relative; width: fit-content; max-width: 100%; border: 1px solid var(--rule); }
figure { margin: 1.2rem 0; break-inside: avoid; }
figcaption { font-size: 1.15rem; font-weight: 700; margin-bottom: .4rem; }
.chart { display: flex; flex-wrap: wrap; gap: 1.5rem; align-items: flex-start; }
.chart table { border: solid var(--rule); border-width: 1px 0 0 1px; }
.chart tfoot tr { background: var(--sum); font-weight: 700; }
svg { max-width: 100%; height: auto; }
svg text { font-size: 12px; fill: var(--ink); font-variant-numeric: tabular-nums; }
svg .mark { fill: var(--soft); }
svg .figure { paint-order: stroke; stroke: var(--paper); stroke-width: 3px; }
.grid { stroke: var(--rule); }
.zero { stroke: var(--edge); }
.bar { fill: var(--bar); }
.line { fill: none; stroke: var(--bar); stroke-width: 2; }
.point { fill: var(--paper); stroke: var(--bar); stroke-width: 2; }
@media screen {
  .part caption { position: absolute; width: 1px; height: 1px; overflow: hidden; clip-path: inset(50%); }
  .scroll { overflow: auto; max-height: 90vh; }
  .scroll:focus-visible { outline: 2px solid var(--bar); }
  .side { display: flex; width: max-content; }
  .rows tr { height: 27px; }
  .rows tr:is(.c, .t) { height: 29px; }
  .rows :is(th, td) { line-height: 19px; padding-top: 3px; padding-bottom: 3px; vertical-align: middle; }
  .rows thead { position: sticky; top: 0; z-index: 3; }
  .rows tfoot { position: sticky; bottom: 0; z-index: 2; }
  .keys { left: 0; z-index: 4; }
  .keys :is(th, td):last-child { border-right: 2px solid var(--edge); }
}
@page { size: A4 landscape; margin: 12mm 10mm 13mm; }
@media print {
  body { margin: 0; font-size: 9pt; }
  .scroll { border: 0; }
  .rows { margin-bottom: 5mm; }
  .rows thead tr:first-child th { border-top-width: 1px; }
  .rows tr > :first-child { border-left-width: 1px; }
  .keys, .e { display: none; }
  th, td { padding-top: .12em; padding-bottom: .12em; }
  .rows thead th { white-space: normal; word-break: keep-all; }
  thead { display: table-header-group; }
  tfoot { display: table-row-group; }
  tr { break-inside: avoid; }
  h2, caption, figcaption, .note, thead, .g, .b { break-after: avoid; }
  .rows tfoot tr, .c, .t, .x, .m, .y, .s { break-before: avoid; }
  figure { margin: 3mm 0; }
  .chart table { font-size: 8pt; }
  svg { max-width: 135mm; }
}
)";

// Hundredths of a font's size.
std::string letters(int width) {
  return tsql::toText(tsql::Exact{.units = width, .scale = 2}) + "em";
}

// The cells of plain rows, those without cells that span columns, in columns at these positions.
std::string plainCells(const std::string& table, const std::vector<std::size_t>& positions) {
  std::string list;
  for (const std::size_t position : positions)
    list += (list.empty() ? ":nth-child(" : ", :nth-child(") + std::to_string(position + 1) + ")";
  return "#" + table + " tr:not(.o, .h, .d, .f) > :is(" + list + ")";
}

std::string marginBox(std::string_view place, const std::string& content) {
  return "  @" + std::string(place) + " { content: " + content + "; }\n";
}

// Where the keys would take more than half of the window, they scroll like the other columns.
std::string neededWindow(const PagePlan& plan, const std::vector<std::size_t>& keys) {
  constexpr int fontPixels = 13;
  int width = 0;
  for (const std::size_t key : keys)
    width += plan.screenWidths[key] + cellSpace;
  return std::to_string(width * fontPixels * 2 / 100) + "px";
}

// Keys keep to their widths, so that each begins where the one before it ends.
std::string stayingKeys(const std::string& table, const PagePlan& plan, const std::vector<std::size_t>& columns) {
  const std::size_t keys = leadingKeys(plan, columns);
  std::ostringstream rules;
  int left = 0;
  for (std::size_t i = 0; i < keys; ++i) {
    const std::string cells = plainCells(table, {i}), width = letters(plan.screenWidths[columns[i]]);
    rules << "  " << cells << ", #" << table << " thead .k" << i << ":not([colspan]) { min-width: " << width
          << "; max-width: " << width << "; }\n  " << cells << ", #" << table << " .k" << i
          << " { position: sticky; left: calc(" << letters(left) << " + " << i << "px); z-index: 1; }\n";
    if (i + 1 == keys) rules << "  " << cells << ", #" << table << " .kl { border-right: 2px solid var(--edge); }\n";
    left += plan.screenWidths[columns[i]] + cellSpace;
  }
  if (keys == 0) return "";
  return "@media screen and (min-width: " +
         neededWindow(plan, {columns.begin(), columns.begin() + static_cast<std::ptrdiff_t>(keys)}) + ") {\n" +
         rules.str() + "}\n";
}

}  // namespace

std::string_view commonStyle() {
  return pageSheet;
}

std::string marginStyle(const ReportDocument& document) {
  const bool chinese = document.language == Language::chinese;
  const std::string number = chinese ? R"("第 " counter(page) " 页，共 " counter(pages) " 页")"
                                     : R"("Page " counter(page) " of " counter(pages))";
  std::string style =
      "@page {\n  font: 8pt \"Noto Sans CJK SC\", \"Microsoft YaHei\", \"WenQuanYi Micro Hei\", sans-serif;\n";
  style += marginBox("top-left", styleString(document.company));
  style += marginBox("top-center", styleString(document.title));
  style += marginBox("top-right", styleString(document.period));
  if (!document.printed.empty())
    style += marginBox("bottom-left", styleString((chinese ? "打印日期 " : "Printed ") + document.printed));
  return style + marginBox("bottom-right", number) + "}\n";
}

std::size_t leadingKeys(const PagePlan& plan, const std::vector<std::size_t>& columns) {
  std::size_t keys = 0;
  while (keys < columns.size() && std::ranges::find(plan.keys, columns[keys]) != plan.keys.end())
    ++keys;
  return keys;
}

std::string tableStyle(const std::string& table, const View& view, const PagePlan& plan,
                       const std::vector<std::size_t>& columns) {
  std::ostringstream style, paper;
  std::vector<std::size_t> numbers;
  paper << "  #" << table << " { font-size: " << tsql::toText(tsql::Exact{.units = plan.paperFont, .scale = 1})
        << "pt; }\n";
  for (std::size_t i = 0; i < columns.size(); ++i) {
    if (isNumber(view.columns[columns[i]].column.role)) numbers.push_back(i);
    if (!plan.breaks[columns[i]]) continue;
    const std::string width = letters(plan.paperWidths[columns[i]]);
    paper << "  " << plainCells(table, {i}) << ", #" << table << " .w" << i
          << " { white-space: normal; overflow-wrap: anywhere; min-width: " << width;
    // A block is as wide as was planned; one table takes what the sheet has left.
    if (plan.split()) paper << "; max-width: " << width;
    paper << "; }\n";
  }
  if (!numbers.empty()) style << plainCells(table, numbers) << " { text-align: right; }\n";
  style << "@media print {\n" << paper.str() << "}\n";
  if (!plan.split()) {
    style << stayingKeys(table, plan, columns);
  } else if (columns.size() > plan.keys.size()) {
    // Beside the table of the keys, a block needs them only for those who do not see the screen.
    style << "@media screen {\n  #" << table << " :is(tbody, tfoot) th, #" << table
          << " .k { font-size: 0; line-height: 0; padding: 0; border-right: 0; max-width: 0; overflow: hidden; }\n}\n";
  } else {
    style << "@media screen and (min-width: " << neededWindow(plan, columns) << ") {\n  #" << table
          << " { position: sticky; }\n}\n";
  }
  return style.str();
}

}  // namespace quillon::workbench
