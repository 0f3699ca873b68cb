// Pivots of a result of 700,000 rows: seconds from asking to the last row of the view, for bench/run.sh. A name and a figure
// on each line.
//
//   build/native/bin/pivot_bench [ROWS]
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <exception>
#include <filesystem>
#include <iostream>
#include <string>
#include <vector>

#include "workbench/account/account.h"
#include "workbench/cli/run_notes.h"
#include "workbench/runs/report_layouts.h"

namespace quillon::workbench {
namespace {

// The report's own rows again and again.
void enlarge(const MadeReport& report, std::int64_t rows) {
  const std::string table = report.table().name();
  for (std::int64_t count = report.table().rowCount(); count < rows; count = report.table().rowCount()) {
    std::string statement = "Insert Into " + table + " Select Top ";
    report.connection().execute(statement.append(std::to_string(rows - count)).append(" * From ").append(table));
  }
}

void measure(const MadeReport& report, const char* name, const char* pivot) {
  const auto start = std::chrono::steady_clock::now();
  const View view = pivotOf(report, Language::chinese, {.pivot = parsePivot(pivot)}, {}).view();
  std::int64_t rows = 0;
  for (const auto reader = view.rows(); reader->next();)
    ++rows;
  const double seconds = std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
  std::printf("%s %.3f\n%s_cells %lld\n", name, seconds, name,
              static_cast<long long>(rows) * static_cast<long long>(view.columns.size()));
}

void run(std::int64_t rows) {
  const account::Scratch scratch;
  const std::filesystem::path file = scratch.file().parent_path() / "sample.account";
  account::createSample(file, {.rows = 20'000});
  RunNotes notes(std::cerr, Language::english);
  const auto report = makeReport({.report = "outsum-item",
                                  .account = AccountSource::inFile(file),
                                  .settings = {"iYear=2024", "cModal=1"},
                                  .dialog = false},
                                 notes);
  enlarge(*report, rows);
  measure(*report, "one", "成本项目//数量,金额,单价");
  measure(*report, "three", "仓库,成本项目/月份/数量,金额,单价");
  measure(*report, "many", "存货,成本项目/月份/金额,金额:row");
}

}  // namespace
}  // namespace quillon::workbench

int main(int argc, char** argv) {
  constexpr std::int64_t usualRows = 700'000;
  try {
    quillon::workbench::run(argc > 1 ? std::atoll(argv[1]) : usualRows);
    return 0;
  } catch (const std::exception& error) {
    std::fprintf(stderr, "pivot_bench: %s\n", error.what());
    return 1;
  }
}
