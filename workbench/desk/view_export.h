// A view as a file for the person: exactly what is shown.
#pragma once

#include <filesystem>
#include <string_view>
#include <vector>

#include "workbench/desk/handler.h"
#include "workbench/desk/view_window.h"

namespace quillon::workbench::desk {

enum class ExportFormat { csv, xlsx, html };

// Writes the view to `sink`. CSV has a byte order mark, and texts that a spreadsheet would run as a formula are guarded;
// `captions` heads its columns with captions. Of more lines than a page can show, a page has the first ones and says so. A
// workbook is made in `file` first, which is gone afterwards. Rows that are `folded` away are left out; the spans are in
// order and apart. A comparison is made with `comparedWith`. When the reader goes away, nothing more is written. Throws what
// reading the report throws.
void exportView(const MadeReport& report, const ViewRequest& request, ExportFormat format, bool captions,
                const std::filesystem::path& file, Sink& sink, const std::vector<RowSpan>& folded = {},
                const MadeReport* comparedWith = nullptr);

// "csv"; the type of its content.
std::string_view endingOf(ExportFormat format);
std::string_view contentTypeOf(ExportFormat format);

}  // namespace quillon::workbench::desk
