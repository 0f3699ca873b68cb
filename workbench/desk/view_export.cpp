#include "workbench/desk/view_export.h"

#include <array>
#include <fstream>
#include <ios>
#include <memory>
#include <ostream>
#include <streambuf>
#include <system_error>
#include <utility>

#include "workbench/presentation/html_page.h"
#include "workbench/presentation/view_files.h"
#include "workbench/presentation/xlsx_workbook.h"
#include "workbench/runs/run_fingerprint.h"

namespace quillon::workbench::desk {

namespace {

// A browser shows more lines than these too slowly.
constexpr std::int64_t linesOfAPage = 20'000;

constexpr std::size_t chunkSize = 65'536;

class SinkBuffer final : public std::streambuf {
 public:
  explicit SinkBuffer(Sink& sink) : sink_(sink) { setp(bytes_.data(), bytes_.data() + bytes_.size()); }

 protected:
  int_type overflow(int_type c) override {
    if (sync() != 0) return traits_type::eof();
    if (!traits_type::eq_int_type(c, traits_type::eof())) sputc(traits_type::to_char_type(c));
    return traits_type::not_eof(c);
  }
  int sync() override {
    const bool taken = sink_.write({pbase(), static_cast<std::size_t>(pptr() - pbase())});
    setp(bytes_.data(), bytes_.data() + bytes_.size());
    return taken ? 0 : -1;
  }

 private:
  Sink& sink_;
  std::array<char, chunkSize> bytes_{};
};

class WithoutDetails final : public ViewRows {
 public:
  explicit WithoutDetails(std::unique_ptr<ViewRows> rows) : rows_(std::move(rows)) {}

  bool next() override {
    while (rows_->next()) {
      if (rows_->row().kind != RowKind::detail) return true;
    }
    return false;
  }
  const ViewRow& row() const override { return rows_->row(); }

 private:
  std::unique_ptr<ViewRows> rows_;
};

View withoutDetails(View view) {
  view.rows = [rows = std::move(view.rows)]() -> std::unique_ptr<ViewRows> {
    return std::make_unique<WithoutDetails>(rows());
  };
  return view;
}

class WithoutSpans final : public ViewRows {
 public:
  WithoutSpans(std::unique_ptr<ViewRows> rows, const std::vector<RowSpan>& spans)
      : rows_(std::move(rows)), spans_(spans) {}

  bool next() override {
    while (rows_->next()) {
      const std::int64_t number = ++number_;
      while (span_ < spans_.size() && spans_[span_].second <= number)
        ++span_;
      if (span_ == spans_.size() || number < spans_[span_].first) return true;
    }
    return false;
  }
  const ViewRow& row() const override { return rows_->row(); }

 private:
  std::unique_ptr<ViewRows> rows_;
  const std::vector<RowSpan>& spans_;
  std::size_t span_ = 0;
  std::int64_t number_ = -1;
};

// `spans` outlives the view.
View without(const std::vector<RowSpan>& spans, View view) {
  view.rows = [&spans, rows = std::move(view.rows)]() -> std::unique_ptr<ViewRows> {
    return std::make_unique<WithoutSpans>(rows(), spans);
  };
  return view;
}

// A file that goes with the object.
class PassingFile {
 public:
  explicit PassingFile(std::filesystem::path path) : path_(std::move(path)) {}
  PassingFile(const PassingFile&) = delete;
  PassingFile& operator=(const PassingFile&) = delete;
  ~PassingFile() {
    std::error_code ignored;
    std::filesystem::remove(path_, ignored);
  }
  const std::filesystem::path& path() const { return path_; }

 private:
  std::filesystem::path path_;
};

void send(const std::filesystem::path& file, Sink& sink) {
  std::ifstream in(file, std::ios::binary);
  std::array<char, chunkSize> bytes{};
  while (in.read(bytes.data(), bytes.size()) || in.gcount() > 0) {
    if (!sink.write({bytes.data(), static_cast<std::size_t>(in.gcount())})) return;
  }
}

}  // namespace

std::string_view endingOf(ExportFormat format) {
  switch (format) {
    case ExportFormat::xlsx:
      return "xlsx";
    case ExportFormat::html:
      return "html";
    case ExportFormat::csv:
      break;
  }
  return "csv";
}

std::string_view contentTypeOf(ExportFormat format) {
  switch (format) {
    case ExportFormat::xlsx:
      return "application/vnd.openxmlformats-officedocument.spreadsheetml.sheet";
    case ExportFormat::html:
      return "text/html";
    case ExportFormat::csv:
      break;
  }
  return "text/csv";
}

void exportView(const MadeReport& report, const ViewRequest& request, ExportFormat format, bool captions,
                const std::filesystem::path& file, Sink& sink, const std::vector<RowSpan>& folded,
                const MadeReport* comparedWith) {
  LayoutOptions options = request.optionsOfExport();
  options.comparedWith = comparedWith;
  if (format == ExportFormat::html) options.limit = linesOfAPage;
  LaidOutReport laid = laidOut(report, request.language, options, LayoutOutput::table);
  if (format != ExportFormat::csv) laid.fingerprint = fingerprintOf(report);
  if (!request.details) {
    for (ReportSection& section : laid.sections)
      section.view = withoutDetails(std::move(section.view));
  }
  if (!folded.empty()) {
    for (ReportSection& section : laid.sections)
      section.view = without(folded, std::move(section.view));
  }
  if (format == ExportFormat::xlsx) {
    const PassingFile workbook(file);
    writeXlsx(workbook.path(), laid);
    send(workbook.path(), sink);
    return;
  }
  SinkBuffer buffer(sink);
  std::ostream out(&buffer);
  out.exceptions(std::ios::badbit);
  try {
    if (format == ExportFormat::html) {
      writeHtml(out, laid);
    } else if (!laid.sections.empty()) {
      writeCsv(out, laid.heading, laid.sections.front(), {.captions = captions, .bom = true, .guarded = true});
    }
    out.flush();
  } catch (const std::ios_base::failure&) {
    if (sink.open()) throw;
  }
}

}  // namespace quillon::workbench::desk
