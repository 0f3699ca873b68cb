// Books: files that list reports, each with its filter and its layout, to be made in one go. docs/book-files.md describes the
// format for whoever writes one, docs/book-file.schema.json is the schema that the reader holds them to.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "workbench/catalogue/report.h"
#include "workbench/runs/layout_text.h"

namespace quillon::workbench {

// The schema, as it ships.
extern const std::string_view bookFileSchema;

struct BookEntry {
  std::string title = {};  // empty: the report's own
  std::string report = {};
  std::string filterFile = {};             // the file (UTF-8) that is meant; empty for none
  std::vector<std::string> settings = {};  // key=value, over the filter
  LayoutText layout = {};
};

// A fault of an entry that shows before it is run.
struct BookFault {
  std::size_t entry = 0;  // counted from 1
  Message reason;
};

struct Book {
  std::string title = {};
  std::string company = {};
  std::vector<BookEntry> entries = {};
  std::vector<BookFault> faults = {};

  // What entry number `entry`, counted from 1, is called: "2 (Issues)".
  std::string nameOf(std::size_t entry) const;
};

// The book in `path` (UTF-8). Throws UserError, with the line, for a file that is no book. What an entry names and does not
// exist, a report, a filter, an item, a layout, is among the faults; what needs an account is not looked at.
Book readBook(const std::string& path);

// Which entries took a setting, counted from 1.
struct TakenSetting {
  std::string setting;
  std::vector<std::size_t> entries;
};
// Sets filter items, each a "key=value", in all entries whose report has the item, over what stands there. Throws UserError
// for an item that no entry has.
std::vector<TakenSetting> setInAll(Book& book, const std::vector<std::string>& settings);

}  // namespace quillon::workbench
