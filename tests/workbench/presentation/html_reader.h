// A page as a test reads it: its tables with their rows and cells, and the attributes that these have.
#pragma once

#include <string>
#include <vector>

namespace quillon::workbench::test {

struct PageCell {
  std::string tag;         // "th" or "td"
  std::string attributes;  // as they stand
  std::string text;        // as it stands: < is &lt;
};

struct PageRow {
  std::string attributes;
  bool inFoot = false;
  std::vector<PageCell> cells;

  std::vector<std::string> texts() const;
};

struct PageTable {
  std::string attributes;
  std::string caption;
  std::vector<PageRow> head;
  std::vector<PageRow> rows;  // totals included
};

std::vector<PageTable> tablesOf(const std::string& page);

// What stands between the first `begin` and the next `end` behind it; empty when there is none.
std::string between(const std::string& text, const std::string& begin, const std::string& end);

// How often `part` stands in `text`.
std::size_t countOf(const std::string& text, const std::string& part);

}  // namespace quillon::workbench::test
