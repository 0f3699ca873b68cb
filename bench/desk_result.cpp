// A result of 700,000 rows and 100 columns on the desk: how long its first rows, a page far down and a sort take, and how
// much memory the program has by then. It takes a few minutes and a gigabyte in the folder for temporary files. The last
// lines are for bench/run.sh (name, blank, value): seconds until the first rows, those of the view whose rows are all
// shown and which took longest; until those of the view that shows some; and a sort, until a page in the middle, as a part
// of the same query alone.
//
//   build/native/bin/desk_result [ROWS]
#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <exception>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <nlohmann/json.hpp>
#include <string>

#include "frame/text.h"
#include "workbench/account/account.h"
#include "workbench/cli/run_notes.h"
#include "workbench/desk/view_window.h"

namespace quillon::workbench {
namespace {

using Clock = std::chrono::steady_clock;

// In MiB, as Linux tells it; 0 elsewhere.
long residentMemory() {
  std::ifstream status("/proc/self/status");
  for (std::string line; std::getline(status, line);) {
    if (line.starts_with("VmRSS:")) return std::strtol(line.c_str() + 6, nullptr, 10) / 1024;
  }
  return 0;
}

template <typename Work>
double timed(const char* what, Work work) {
  const std::clock_t begun = std::clock();
  const auto start = Clock::now();
  work();
  const double seconds = std::chrono::duration<double>(Clock::now() - start).count();
  const double processor = static_cast<double>(std::clock() - begun) / CLOCKS_PER_SEC;
  std::printf("%-58s %8.3f s %8.3f s processor   %5ld MiB\n", what, seconds, processor, residentMemory());
  std::fflush(stdout);
  return seconds;
}

constexpr std::int64_t ledgerLines = 20'000;

// Copies of the report's rows, each with a text or a number in every column, and each of a ledger line of its own.
void enlarge(const MadeReport& report, std::int64_t rows) {
  const std::string table = report.table().name();
  std::string list, copies;
  for (const tsql::Column& column : report.table().columns()) {
    const bool text = column.type.kind == tsql::Kind::nVarChar || column.type.kind == tsql::Kind::varChar;
    const std::string otherwise = text ? "N'x'" : column.type.kind == tsql::Kind::dateTime ? "'2024-03-31'" : "1";
    const char* const separator = list.empty() ? "" : ", ";
    list.append(separator).append(column.name);
    copies.append(separator).append("IsNull(").append(column.name).append(", ").append(otherwise).append(")");
    if (equalIgnoringCase(column.name, "AutoID")) copies += " + LINES";
  }
  std::int64_t lines = ledgerLines;
  for (std::int64_t count = report.table().rowCount(); count < rows; count = report.table().rowCount()) {
    std::string values = copies;
    values.replace(values.find("LINES"), 5, std::to_string(lines));
    std::string statement = "Insert Into " + table;
    statement.append(" (").append(list).append(") Select Top ").append(std::to_string(rows - count));
    statement.append(" ").append(values).append(" From ").append(table);
    report.connection().execute(statement);
    lines *= 2;
  }
}

desk::ViewRequest lines() {
  return {.layout = Layout::lines, .allColumns = true, .language = Language::english};
}

class Measurement {
 public:
  Measurement(const MadeReport& report, std::filesystem::path folder) : report_(report), folder_(std::move(folder)) {}

  void view(const char* what, const desk::ViewRequest& request) {
    std::printf("\n%s\n", what);
    nlohmann::ordered_json description;
    std::string rows;
    std::unique_ptr<desk::ViewWindow> window;
    const double first = timed("  the view and its first 200 rows", [&] {
      ++views_;
      window = std::make_unique<desk::ViewWindow>(views_, report_.reader(), request,
                                                  folder_ / ("rows-" + std::to_string(views_)));
      description = window->description();
      rows = window->rows(0, 200);
    });
    const std::int64_t count = description["lineCount"];
    const double order =
        timed("  a page in the middle, which waits for the order", [&] { rows = window->rows(count / 2, 200); });
    timed("  the page after it", [&] { rows = window->rows(count / 2 + 200, 200); });
    timed("  the last page", [&] { rows = window->rows(count - 200, 200); });
    std::printf("  %lld rows, %zu columns\n", static_cast<long long>(count), description["columns"].size());
    const double query = alone(request, first);
    double& slowest = request.arrangement.where.empty() ? firstRows_ : firstRowsOfSome_;
    slowest = std::max(slowest, first);
    if (!request.arrangement.sort.empty()) sort_ = std::max(sort_, (first + order) / query);
  }

  void figures() const {
    std::printf("\nfirst_rows_seconds %.3f\nfirst_rows_of_some_seconds %.3f\nsort_ratio %.3f\n", firstRows_,
                firstRowsOfSome_, sort_);
  }

 private:
  // The statement of the lines by itself, read to its end.
  double alone(const desk::ViewRequest& request, double first) {
    const auto reader = report_.reader();
    const LaidOutReport laid = laidOut(*reader, request.language, request.options(), LayoutOutput::table);
    std::int64_t count = 0;
    double untilFirst = 0;
    const double query = timed("  the same query alone", [&] {
      const auto start = Clock::now();
      const auto rows = laid.sections.front().view.rows();
      while (rows->next()) {
        if (count++ == 0) untilFirst = std::chrono::duration<double>(Clock::now() - start).count();
      }
    });
    std::printf("  its first row after %.3f s, its last after %.3f s; the desk's first rows took %.2f of the former\n",
                untilFirst, query, first / untilFirst);
    return query;
  }

  const MadeReport& report_;
  std::filesystem::path folder_;
  std::int64_t views_ = 0;
  double firstRows_ = 0, firstRowsOfSome_ = 0, sort_ = 0;
};

int measure(std::int64_t rows) {
  const account::Scratch scratch;
  const std::filesystem::path file = scratch.file().parent_path() / "sample.account";
  account::createSample(file, {.rows = ledgerLines});
  RunNotes notes(std::cerr, Language::english);
  const auto report = makeReport({.report = "fx-wt", .account = AccountSource::inFile(file), .dialog = false}, notes);
  timed("making the result", [&] { enlarge(*report, rows); });
  report->keepFacts();
  timed("what a run finds out about its result: row count", [&] { report->table().rowCount(); });
  timed("what a run finds out about its result: filled columns",
        [&] { report->table().filledColumns(report->report().columns); });
  Measurement measurement(*report, scratch.file().parent_path());
  measurement.view("lines in the report's order", lines());
  desk::ViewRequest request = lines();
  request.arrangement.sort = {{"iAOutPrice", true}};
  measurement.view("sorted by amount", request);
  request.arrangement.sort = {{"cInvName", false}, {"dVouDate", true}};
  measurement.view("sorted by inventory name and date", request);
  request.arrangement.where = {{.column = "cInvCode", .kind = RowCondition::Kind::contains, .values = {"03"}}};
  measurement.view("sorted and filtered", request);
  measurement.figures();
  return 0;
}

}  // namespace
}  // namespace quillon::workbench

int main(int argc, char** argv) {
  constexpr std::int64_t usualRows = 700'000;
  try {
    return quillon::workbench::measure(argc > 1 ? std::atoll(argv[1]) : usualRows);
  } catch (const std::exception& error) {
    std::fprintf(stderr, "desk_result: %s\n", error.what());
    return 1;
  }
}
