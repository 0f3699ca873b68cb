// How fast the rows of receipts, issues and balance are written once they are there, in MB of text a second; of a
// workbook the sheet before it is packed. Medians of several runs, a line each (name, blank, value):
//
//   rows, csv_mb, csv_mb_s, json_mb_s, xlsx_sheet_mb_s
//
//   writers_bench ACCOUNT YEAR
#include <algorithm>
#include <chrono>
#include <cstdint>
#include <exception>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <iterator>
#include <stdexcept>
#include <streambuf>
#include <string>
#include <string_view>
#include <vector>

#include "workbench/account/account.h"
#include "workbench/cli/run_notes.h"
#include "workbench/presentation/view_files.h"
#include "workbench/presentation/xlsx_workbook.h"
#include "workbench/runs/report_layouts.h"

namespace quillon::workbench {
namespace {

// Counts what is written and drops it.
class Counter final : public std::streambuf {
 public:
  std::int64_t bytes() const { return bytes_; }

 protected:
  int_type overflow(int_type c) override {
    ++bytes_;
    return traits_type::not_eof(c);
  }
  std::streamsize xsputn(const char* /*text*/, std::streamsize count) override {
    bytes_ += count;
    return count;
  }

 private:
  std::int64_t bytes_ = 0;
};

std::size_t littleEndian(std::string_view bytes, std::size_t at, std::size_t count) {
  std::size_t number = 0;
  for (std::size_t i = count; i-- > 0;)
    number = number * 256 + static_cast<unsigned char>(bytes[at + i]);
  return number;
}

// How long the sheets of a workbook are, unpacked, as its directory says.
std::int64_t sheetBytes(const std::filesystem::path& file) {
  std::ifstream in(file, std::ios::binary);
  const std::string bytes{std::istreambuf_iterator<char>(in), {}};
  constexpr std::string_view entry("PK\x01\x02", 4);
  constexpr std::size_t entrySize = 46;
  std::int64_t sum = 0;
  for (std::size_t at = bytes.find(entry); at != std::string::npos; at = bytes.find(entry, at + 1)) {
    if (at + entrySize > bytes.size()) break;
    const std::string_view name = std::string_view(bytes).substr(at + entrySize, littleEndian(bytes, at + 28, 2));
    if (name.starts_with("xl/worksheets/")) sum += static_cast<std::int64_t>(littleEndian(bytes, at + 24, 4));
  }
  if (sum == 0) throw std::runtime_error("the workbook has no sheet");
  return sum;
}

// MB a second; `write` gives the bytes.
template <typename Write>
double speed(Write write) {
  constexpr std::size_t runs = 5;
  std::vector<double> speeds;
  for (std::size_t run = 0; run < runs; ++run) {
    const auto start = std::chrono::steady_clock::now();
    const std::int64_t bytes = write();
    const std::chrono::duration<double> seconds = std::chrono::steady_clock::now() - start;
    speeds.push_back(static_cast<double>(bytes) / 1'000'000 / seconds.count());
  }
  std::ranges::sort(speeds);
  return speeds[runs / 2];
}

void measure(const std::string& accountFile, const std::string& year) {
  RunNotes notes(std::cerr, Language::english);
  const auto report = makeReport({.report = "sfc-item",
                                  .account = AccountSource::inFile(accountFile),
                                  .settings = {"iYear=" + year},
                                  .language = Language::english},
                                 notes);
  const LayoutOptions options{.layout = Layout::lines, .allColumns = true};
  LaidOutReport laid = laidOut(*report, Language::english, options, LayoutOutput::table);
  ReportSection& section = laid.sections.front();
  section.view = limited(section.view, section.view.lineCount);  // holds the rows in memory

  std::int64_t csvBytes = 0;
  const auto written = [&](const auto& write) {
    Counter counter;
    std::ostream out(&counter);
    write(out);
    return counter.bytes();
  };
  const double csv =
      speed([&] { return csvBytes = written([&](std::ostream& out) { writeCsv(out, laid.heading, section, {}); }); });
  const double json = speed([&] { return written([&](std::ostream& out) { writeJson(out, laid.heading, section); }); });
  const account::Scratch scratch;
  const std::filesystem::path workbook = scratch.file().parent_path() / "rows.xlsx";
  const double xlsx = speed([&] {
    writeXlsx(workbook, laid);
    return sheetBytes(workbook);
  });
  std::cout << "rows " << section.view.lineCount << "\ncsv_mb " << static_cast<double>(csvBytes) / 1'000'000
            << "\ncsv_mb_s " << csv << "\njson_mb_s " << json << "\nxlsx_sheet_mb_s " << xlsx << '\n';
}

}  // namespace
}  // namespace quillon::workbench

int main(int argc, char** argv) {
  try {
    if (argc != 3) throw std::runtime_error("usage: writers_bench ACCOUNT YEAR");
    quillon::workbench::measure(argv[1], argv[2]);
    return 0;
  } catch (const std::exception& error) {
    std::cerr << "writers_bench: " << error.what() << '\n';
    return 1;
  }
}
